// Operations that change the orientation, the size or the number of MIP levels.

#include <algorithm>
#include <bit>

#include "moktex/operations/image_operation.h"
#include "moktex/report/console.h"

using namespace moktexture;

namespace moktextool {

namespace {

constexpr std::uint32_t largestEdge = 65536;

class FlipImage : public ImageOperation {
public:
    FlipImage(const std::string& givenText, EMOKTAxis flippedAxis) : ImageOperation(givenText), axis(flippedAxis) {}

    void plan(PlannedTexture& texture) const override {
        if (axis == eAxisZ && texture.size.depth == 1)
            texture.console.note(texture.name + ": " + text + " changes nothing, because there is only one slice");
    }
    bool apply(CMOKTexture& texture, const OperationContext&) const override { return Flip(texture, axis); }

private:
    const EMOKTAxis axis;
};

class QuarterTurn : public ImageOperation {
public:
    QuarterTurn(const std::string& givenText, bool clockwise) : ImageOperation(givenText), isClockwise(clockwise) {}

    void plan(PlannedTexture& texture) const override { std::swap(texture.size.width, texture.size.height); }
    bool undoSize(PlannedSize& size) const override {
        std::swap(size.width, size.height);
        return true;
    }
    bool apply(CMOKTexture& texture, const OperationContext&) const override {
        if (!Rotate90(texture, eAxisZ, isClockwise)) return false;
        unsigned int x, y, z;
        texture.getBorder(x, y, z);
        if (x != y) texture.setBorder(y, x, z);
        return true;
    }

private:
    const bool isClockwise;
};

class AddBorder : public ImageOperation {
public:
    AddBorder(const std::string& givenText, std::uint32_t borderX, std::uint32_t borderY)
        : ImageOperation(givenText), x(borderX), y(borderY) {}

    void plan(PlannedTexture& texture) const override {
        PlannedSize& size = texture.size;
        if (x > size.width || y > size.height)
            refuse(texture, ExitStatus::notSupported,
                   "wider than the picture, which is " + sizeText(size) + "; use at most " + std::to_string(size.width) + 'x' +
                       std::to_string(size.height));
        if (texture.hasBorder)
            refuse(texture, ExitStatus::notSupported, "there is a border already, whose width would be lost; start without it");
        if (texture.hasMadeLevels)
            refuse(texture, ExitStatus::commandLine, "drops the levels that --mipmaps made; give it before --mipmaps");
        if (size.levels > 1)
            texture.console.note(texture.name + ": " + text + " keeps only the first level; --mipmaps after it makes new ones");
        size = {size.width + 2 * x, size.height + 2 * y, size.depth, 1};
        if (std::max(size.width, size.height) > largestEdge)
            refuse(texture, ExitStatus::notSupported,
                   "makes it " + sizeText(size) + ", and sides must be at most " + std::to_string(largestEdge) +
                       "; use a smaller one");
        texture.hasBorder = true;
    }
    bool undoSize(PlannedSize& size) const override {
        if (size.width < std::max(3 * x, 1u) || size.height < std::max(3 * y, 1u)) return false;
        size.width -= 2 * x;
        size.height -= 2 * y;
        return size.width > 0 && size.height > 0;
    }
    bool apply(CMOKTexture& texture, const OperationContext&) const override { return Border(texture, x, y, 0); }

private:
    static std::string sizeText(const PlannedSize& size) {
        return std::to_string(size.width) + " x " + std::to_string(size.height);
    }

    const std::uint32_t x, y;
};

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
    OperandFormat operandFormat() const override { return OperandFormat::exact; }
    bool apply(CMOKTexture& texture, const OperationContext& context) const override {
        // GenerateMIPMaps() keeps a chain that has the wanted length already, so the old chain is removed first.
        return GenerateMIPMaps(texture, context.mipFilter, 1) && GenerateMIPMaps(texture, context.mipFilter, levels);
    }

private:
    const std::uint32_t levels;
};

}  // namespace

OperationPointer parseFlip(const std::string& text, const std::string& value) {
    if (value != "x" && value != "y" && value != "z") throw Failure(ExitStatus::commandLine, text + ": no axis; use x, y or z");
    return std::make_unique<FlipImage>(text, value == "x" ? eAxisX : value == "y" ? eAxisY : eAxisZ);
}

OperationPointer parseRotate90(const std::string& text, const std::string& value) {
    if (value != "z" && value != "-z") {
        const bool isOtherAxis = value == "x" || value == "-x" || value == "y" || value == "-y";
        throw Failure(isOtherAxis ? ExitStatus::notSupported : ExitStatus::commandLine,
                      text + ": rotation about " + (isOtherAxis ? "x or y does not give a picture" : "an unknown axis") +
                          "; use z (clockwise) or -z");
    }
    return std::make_unique<QuarterTurn>(text, value == "z");
}

OperationPointer parseBorder(const std::string& text, const std::string& value) {
    const std::size_t cross = std::min(value.find('x'), value.size());
    const std::string first = value.substr(0, cross), second = cross < value.size() ? value.substr(cross + 1) : first;
    const std::uint32_t x = parseEdge(first), y = parseEdge(second);
    if ((x == 0 && first != "0") || (y == 0 && second != "0") || (x == 0 && y == 0))
        throw Failure(ExitStatus::commandLine, text + ": no width; use a number of pixels, or two as in 4x2");
    return std::make_unique<AddBorder>(text, x, y);
}

OperationPointer parseMipmaps(const std::string& text, const std::string& value) {
    if (value == "all") return std::make_unique<Mipmaps>("--mipmaps", allMIPLevels);
    const std::uint32_t levels = parseEdge(value);
    if (levels == 0 || levels > 255) throw Failure(ExitStatus::commandLine, text + ": no number of levels; use 1 to 17");
    return std::make_unique<Mipmaps>("--mipmaps=" + value, levels);
}

}  // namespace moktextool
