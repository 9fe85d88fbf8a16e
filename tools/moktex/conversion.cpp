#include "conversion.h"

#include <algorithm>
#include <bit>
#include <ostream>

#include "block_size_rule.h"
#include "console.h"
#include "format_names.h"
#include "texture_input.h"
#include "texture_output.h"

using namespace moktexture;

namespace moktextool {

namespace {

/// One input on its way, with what is settled about its output before the work begins.
struct Conversion {
    const ConversionRequest& request;
    const std::string name;
    Console& console;
    CMOKTexture texture;
    TextureForm target;
    EMOKTColourSpace colourSpace;
    PlannedSize size;
    bool isPictureOutput;

    bool resizes() const { return size.width != texture.getWidth() || size.height != texture.getHeight(); }
    bool makesLevels() const { return request.mipmaps.has_value(); }
    bool changesPixels() const {
        return resizes() || makesLevels() || isPictureOutput || !(target == formOf(texture)) ||
               colourSpace != texture.getColourSpace();
    }
};

PlannedSize planSize(const ConversionRequest& request, const CMOKTextureHeader& header, const std::string& name) {
    PlannedSize size{header.getWidth(), header.getHeight(), header.getDepth(), header.getNumMIPLevels()};
    if (request.resize) {
        const auto [width, height] = *request.resize;
        size.width = width != 0 ? width : nearestPowerOfTwo(size.width);
        size.height = height != 0 ? height : nearestPowerOfTwo(size.height);
        if (size.width != header.getWidth() || size.height != header.getHeight()) size.levels = 1;
    }
    if (request.mipmaps) {
        const auto fullChain = static_cast<std::uint32_t>(std::bit_width(std::max({size.width, size.height, size.depth})));
        size.levels = *request.mipmaps == allMIPLevels ? fullChain : *request.mipmaps;
        if (size.levels > fullChain) {
            throw Failure(ExitStatus::commandLine, name,
                          "--mipmaps=" + std::to_string(size.levels) +
                              " is more than the full chain has; use --mipmaps, or at most " + std::to_string(fullChain));
        }
    }
    return size;
}

/// A Failure if the image that is to become a picture does not exist.
void requireImage(const ConversionRequest& request, const CMOKTextureHeader& header, std::uint32_t levels,
                  const std::string& name) {
    const auto require = [&](const char* option, std::uint32_t index, std::uint32_t count) {
        if (index < count) return;
        throw Failure(
            ExitStatus::commandLine, name,
            std::string(option) + ' ' + std::to_string(index) + " does not exist; the last one is " + std::to_string(count - 1));
    };
    require("--level", request.level, levels);
    require("--member", request.member, header.getNumArrayMembers());
    require("--face", request.face, header.getNumFaces());
}

void checkPlan(const Conversion& conversion) {
    const auto& [request, name, console, texture, target, colourSpace, size, isPictureOutput] = conversion;
    if (conversion.changesPixels()) requireDecodable(formOf(texture), name);
    if (colourSpace != texture.getColourSpace() && texture.getColourSpace() > eColourSpaceSRGB) {
        throw Failure(ExitStatus::notSupported, name,
                      "its colour space is " + nameOf(texture.getColourSpace()) + "; say what it is by --assign-colour-space");
    }
    if (const CompressedFormat* row = findCompressed(target.format);
        row != nullptr && !row->hasEncoder && conversion.changesPixels())
        throw Failure(ExitStatus::notSupported, name,
                      std::string(row->name) + " has no encoder; 'moktex formats' lists those that have");
    PlannedSize encoded = size;
    if (isPictureOutput) {
        requireImage(request, texture, size.levels, name);
        encoded = {std::max(1u, size.width >> request.level), std::max(1u, size.height >> request.level), 1, 1};
    }
    if (const std::string problem = sizeProblem(target, encoded); !problem.empty() && conversion.changesPixels())
        throw Failure(ExitStatus::notSupported, name, problem);
}

Conversion plan(const ConversionRequest& request, CMOKTexture texture, const std::string& name, const std::string& output,
                Console& console) {
    if (request.assignedColourSpace) texture.setColourSpace(*request.assignedColourSpace);
    const bool isPictureOutput = outputKind(output) == OutputKind::picture;
    const TextureForm target = request.form.value_or(isPictureOutput ? rgba8Form : formOf(texture));
    const EMOKTColourSpace colourSpace = request.colourSpace.value_or(texture.getColourSpace());
    const PlannedSize size = planSize(request, texture, name);
    Conversion conversion{request, name, console, std::move(texture), target, colourSpace, size, isPictureOutput};
    checkPlan(conversion);
    return conversion;
}

/// A form in which sizes can be changed: floats, which lose nothing in any number of steps, as long as they fit.
TextureForm workingForm(const Conversion& conversion) {
    const CMOKTexture& texture = conversion.texture;
    const std::uint64_t pixels = std::max(std::uint64_t{texture.getWidth()} * texture.getHeight(),
                                          std::uint64_t{conversion.size.width} * conversion.size.height);
    const std::uint64_t images = std::uint64_t{texture.getNumArrayMembers()} * texture.getNumFaces() * texture.getDepth();
    const TextureForm form = formOf(texture);
    const bool isInteger = form.channelType != eVarFloat && !isSigned(form.channelType) && widestChannel(form) <= 16;
    if (!isInteger || pixels * images <= maxDataSize / 16 / 4 * 3) return rgbaFloatForm;
    return widestChannel(form) <= 8 ? rgba8Form : rgba16Form;
}

/// The next edge on the way from `current` to `wanted`. The filters sample points and are centred for halving only; so a
/// reduction goes by halves, and what remains between one and a half goes up to twice the wanted edge first.
std::uint32_t nextEdge(std::uint32_t current, std::uint32_t wanted) {
    if (current <= wanted || current == 2 * wanted) return wanted;
    return current > 2 * wanted ? current / 2 : 2 * wanted;
}

void require(bool succeeded, const std::string& name, const char* work) {
    if (!succeeded)
        throw Failure(ExitStatus::workFailed, name,
                      std::string(work) + " failed, most likely for its size; use a smaller --resize");
}

void resize(Conversion& conversion) {
    auto& [request, name, console, texture, target, colourSpace, size, isPictureOutput] = conversion;
    if (texture.getNumMIPLevels() > 1 && !conversion.makesLevels())
        console.note(name + ": only the first level is resized, the others are dropped");
    while (conversion.resizes()) {
        std::uint32_t width = nextEdge(texture.getWidth(), size.width);
        std::uint32_t height = nextEdge(texture.getHeight(), size.height);
        const std::uint64_t pixels =
            std::uint64_t{width} * height * texture.getDepth() * texture.getNumArrayMembers() * texture.getNumFaces();
        const bool isTooLarge = pixels * texture.getBitsPerPixel() / 8 > maxDataSize;
        if (request.resizeFilter == eResizeNearest || isTooLarge) {
            width = size.width;
            height = size.height;
        }
        require(Resize(texture, width, height, texture.getDepth(), request.resizeFilter), name, "resizing");
    }
}

void makeLevels(Conversion& conversion) {
    CMOKTexture& texture = conversion.texture;
    // A chain of the wanted length would be left as it is, so an old one goes first.
    require(GenerateMIPMaps(texture, conversion.request.mipFilter, 1), conversion.name, "making MIP levels");
    require(GenerateMIPMaps(texture, conversion.request.mipFilter, conversion.size.levels), conversion.name, "making MIP levels");
}

void changeSize(Conversion& conversion) {
    auto& [request, name, console, texture, target, colourSpace, size, isPictureOutput] = conversion;
    const bool clampsFloats = formOf(texture).channelType == eVarFloat && !isCompressed(texture.getPixelType()) &&
                              ((conversion.resizes() && request.resizeFilter == eResizeCubic) ||
                               (conversion.makesLevels() && request.mipFilter == eResizeCubic));
    if (clampsFloats) console.note(name + ": the cubic filter clamps values to 0 to 1; use linear to keep them");
    decodeBlocks(texture, name);
    changeForm(texture, {workingForm(conversion), texture.getColourSpace()}, name, console);
    if (conversion.resizes()) resize(conversion);
    if (conversion.makesLevels()) makeLevels(conversion);
}

/// Leaves the one image that becomes a picture.
void pickImage(Conversion& conversion, const TextureForm& source) {
    auto& [request, name, console, texture, target, colourSpace, size, isPictureOutput] = conversion;
    if (widestChannel(source) > 8) console.note(name + ": the picture is written with 8 bits a channel");
    if (texture.getDepth(request.level) > 1) console.note(name + ": the picture holds the first slice of the volume");
    texture = extractImage(texture, request.level, request.member, request.face);
}

void report(const CMOKTexture& texture, const std::string& output, std::size_t bytes, Console& console) {
    if (console.quiet || output == standardStream) return;
    const std::uint32_t levels = texture.getNumMIPLevels();
    console.out << printable(output) << ": " << nameOf(formOf(texture)) << ", " << texture.getWidth() << " x "
                << texture.getHeight() << ", " << levels << (levels == 1 ? " level, " : " levels, ")
                << nameOf(texture.getColourSpace()) << ", " << bytes << " bytes\n";
}

}  // namespace

void convertFile(const ConversionRequest& request, const std::string& input, const std::string& output, Console& console) {
    const std::string name = displayName(input);
    Conversion conversion = plan(request, readTexture(input, console).texture, name, output, console);
    auto& texture = conversion.texture;
    const TextureForm source = formOf(texture);
    CMOKTextureHeader targetHeader;
    targetHeader.setPixelFormat(conversion.target.format);
    if (request.dither && targetHeader.getBitsPerPixel() >= 32)
        console.note(name + ": --dither has no effect above 31 bits a pixel");

    if (conversion.resizes() || conversion.makesLevels()) changeSize(conversion);
    if (conversion.isPictureOutput) pickImage(conversion, source);
    changeForm(texture, {conversion.target, conversion.colourSpace, request.quality, request.dither}, name, console);
    if (conversion.isPictureOutput) changeForm(texture, {rgba8Form, conversion.colourSpace}, name, console);
    const std::size_t bytes = writeTexture(texture, output, console);
    report(texture, output, bytes, console);
}

}  // namespace moktextool
