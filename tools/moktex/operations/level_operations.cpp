// Operations on the chain of MIP levels.

#include <algorithm>
#include <bit>

#include "moktex/operations/operation_options.h"

using namespace moktexture;

namespace moktextool {

namespace {

class Mipmaps : public ImageOperation {
public:
    Mipmaps(const std::string& givenText, std::uint32_t wantedLevels) : ImageOperation(givenText), levels(wantedLevels) {}

    void plan(PlannedTexture& texture) const override {
        const std::uint32_t largest = std::max({texture.size.width, texture.size.height, texture.size.depth});
        const auto fullChain = static_cast<std::uint32_t>(std::bit_width(largest));
        if (levels != allMIPLevels && levels > fullChain)
            refuse(texture, ExitStatus::commandLine,
                   "more than the full chain has; use --mipmaps, or at most " + std::to_string(fullChain));
        texture.size.levels = levels == allMIPLevels ? fullChain : levels;
        texture.hasMadeLevels = true;
    }
    bool isMipmaps() const override { return true; }
    OperandForm operandForm() const override { return OperandForm::exact; }
    bool apply(CMOKTexture& texture, const OperationContext& context) const override {
        // A chain of the wanted length would be left as it is, so an old one goes first.
        return GenerateMIPMaps(texture, context.mipFilter, 1) && GenerateMIPMaps(texture, context.mipFilter, levels);
    }

private:
    const std::uint32_t levels;
};

class ColourMips : public ImageOperation {
public:
    using ImageOperation::ImageOperation;

    void plan(PlannedTexture& texture) const override {
        if (texture.size.levels == 1)
            refuse(texture, ExitStatus::commandLine, "there is no level below the first; give --mipmaps before it");
    }
    bool apply(CMOKTexture& texture, const OperationContext&) const override { return ColourMIPMaps(texture); }
};

}  // namespace

OperationPointer parseMipmaps(const std::string& text, const std::string& value) {
    if (value == "all") return std::make_unique<Mipmaps>("--mipmaps", allMIPLevels);
    const std::uint32_t levels = parseEdge(value);
    if (levels == 0 || levels > 255) throw Failure(ExitStatus::commandLine, text + ": no number of levels; use 1 to 17");
    return std::make_unique<Mipmaps>("--mipmaps=" + value, levels);
}

OperationPointer parseColourMips(const std::string& text, const std::string&) {
    return std::make_unique<ColourMips>(text);
}

}  // namespace moktextool
