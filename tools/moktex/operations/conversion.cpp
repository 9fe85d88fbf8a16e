#include "moktex/operations/conversion.h"

#include <algorithm>
#include <ostream>

#include "moktex/files/picture_file.h"
#include "moktex/files/texture_file.h"
#include "moktex/formats/format_names.h"
#include "moktex/operations/block_size_rule.h"
#include "moktex/report/console.h"

using namespace moktexture;

namespace moktextool {

namespace {

/// One input and the planned properties of its output.
struct Conversion {
    const ConversionRequest& request;
    const std::string name;
    Console& console;
    CMOKTexture texture;
    TextureFormat target;
    EMOKTColourSpace colourSpace;
    ECompressorQuality quality;
    PlannedSize resized;                       ///< before the operations
    PlannedSize size;                          ///< after them
    std::vector<OperationContext> operations;  ///< of each operation
    bool isPictureOutput;

    bool resizes() const { return resized.width != texture.getWidth() || resized.height != texture.getHeight(); }
    bool changesPixels() const {
        return resizes() || !request.operations.empty() || isPictureOutput || !(target == formatOf(texture)) ||
               colourSpace != texture.getColourSpace();
    }
};

PlannedSize planResize(const ConversionRequest& request, const CMOKTextureHeader& header) {
    PlannedSize size{header.getWidth(), header.getHeight(), header.getDepth(), header.getNumMIPLevels()};
    if (!request.resize) return size;
    const auto [width, height] = *request.resize;
    size.width = width != 0 ? width : nearestPowerOfTwo(size.width);
    size.height = height != 0 ? height : nearestPowerOfTwo(size.height);
    if (size.width != header.getWidth() || size.height != header.getHeight()) size.levels = 1;
    return size;
}

/// The largest channel value of a format as the user writes it.
double unitOf(const TextureFormat& format) {
    const bool isPlain = isCompressed(format.pixelType) || (format.channelType != eVarFloat && !isSigned(format.channelType));
    if (!isPlain || widestChannel(format) > 16) return 1;
    return widestChannel(format) <= 8 ? 255 : 65535;
}

bool hasBorder(const CMOKTextureHeader& header) {
    unsigned int x, y, z;
    header.getBorder(x, y, z);
    return x != 0 || y != 0 || z != 0;
}

/// A Failure if the image to write as a picture does not exist.
void requireImage(const ConversionRequest& request, const CMOKTextureHeader& header, std::uint32_t levels,
                  const std::string& name) {
    const auto require = [&](const char* option, std::uint32_t index, std::uint32_t count) {
        if (index < count) return;
        throw Failure(
            ExitStatus::commandLine, name,
            std::string(option) + ' ' + std::to_string(index) + " does not exist; the last one is " + std::to_string(count - 1));
    };
    require("--level", request.level, levels);
    require("--layer", request.layer, header.getNumArrayMembers());
    require("--face", request.face, header.getNumFaces());
}

/// The options that give a size that the format can hold; "" if there are none.
std::string sizeRemedy(const SizeProblem& problem, const ConversionRequest& request, bool isPictureOutput) {
    const std::uint32_t scale = isPictureOutput ? request.level : 0;
    PlannedSize wanted{problem.width << scale, problem.height << scale, 1, 1};
    bool isPossible = problem.width != 0;
    for (auto operation = request.operations.rbegin(); isPossible && operation != request.operations.rend(); ++operation)
        isPossible = (*operation)->undoSize(wanted);
    if (!isPossible) return "";
    return "; use --resize " + std::to_string(wanted.width) + 'x' + std::to_string(wanted.height) +
           (problem.fittingLevels > 0 ? " or --mipmaps=" + std::to_string(problem.fittingLevels) : "");
}

void checkSize(const Conversion& conversion) {
    const ConversionRequest& request = conversion.request;
    PlannedSize encoded = conversion.size;
    if (conversion.isPictureOutput) {
        requireImage(request, conversion.texture, encoded.levels, conversion.name);
        encoded = {std::max(1u, encoded.width >> request.level), std::max(1u, encoded.height >> request.level), 1, 1};
    }
    if (!conversion.changesPixels()) return;
    if (const auto problem = sizeProblem(conversion.target, encoded)) {
        throw Failure(ExitStatus::notSupported, conversion.name,
                      problem->rule + sizeRemedy(*problem, request, conversion.isPictureOutput));
    }
}

void checkEncoder(const Conversion& conversion) {
    const PixelType format = conversion.target.pixelType;
    const FormatInfo* info = findCompressed(format);
    if (info != nullptr && !info->hasEncoder)
        throw Failure(ExitStatus::notSupported, conversion.name,
                      std::string(info->name) + " has no encoder; 'moktex formats' lists those that have");
}

void checkColourSpace(const ConversionRequest& request, const PlannedTexture& planned, EMOKTColourSpace wanted) {
    if (planned.holdsNormals && request.colourSpace == eColourSpaceSRGB)
        throw Failure(ExitStatus::commandLine, planned.name, "--colour-space srgb: normals are not colours; leave it out");
    if (wanted != planned.colourSpace && planned.colourSpace > eColourSpaceSRGB) {
        throw Failure(ExitStatus::notSupported, planned.name,
                      "its colour space is " + nameOf(planned.colourSpace) + "; say what it is by --assign-colour-space");
    }
}

/// A Failure if the output's layout cannot hold the result of the conversion.
void checkContainer(const Conversion& conversion, const std::string& output, bool isPremultiplied) {
    if (conversion.isPictureOutput) return;
    const auto& [format, channelType] = conversion.target;
    const CMOKTextureHeader header(format.id, 1, 1, conversion.size.depth, 1, 1, 1, conversion.colourSpace, channelType,
                                   isPremultiplied);
    requireHoldable(header, {output, conversion.request.legacyApi});
}

/// The format of the output without --format: that of the input; that of the file for a picture, and RGBA8 for normals if the
/// input has fewer than three channels.
TextureFormat defaultFormat(const TextureFormat& source, bool isPictureOutput, bool holdsNormals) {
    const bool hasThreeChannels = isCompressed(source.pixelType) || source.pixelType.layout.channelName[2] != 0;
    if (isPictureOutput) return pictureFormat(source);
    return holdsNormals && !hasThreeChannels ? rgba8Format : source;
}

Conversion plan(const ConversionRequest& request, CMOKTexture texture, const std::string& name, const std::string& output,
                Console& console) {
    if (request.assignedColourSpace) texture.setColourSpace(*request.assignedColourSpace);
    const bool isPictureOutput = outputKind(output) == OutputKind::picture;
    const TextureFormat source = formatOf(texture);
    const PlannedSize resized = planResize(request, texture);
    PlannedTexture planned{
        name, console, resized, unitOf(source), texture.getColourSpace(), texture.isPreMultiplied(), hasBorder(texture)};
    std::vector<OperationContext> contexts;
    for (const OperationPointer& operation : request.operations) {
        contexts.push_back({planned.unit, request.mipFilter});
        operation->plan(planned);
    }
    const TextureFormat target = request.format.value_or(defaultFormat(source, isPictureOutput, planned.holdsNormals));
    const EMOKTColourSpace colourSpace = request.colourSpace.value_or(planned.colourSpace);
    checkColourSpace(request, planned, colourSpace);
    Conversion conversion{request,
                          name,
                          console,
                          std::move(texture),
                          target,
                          colourSpace,
                          encoderQuality(request.quality, target.pixelType),
                          resized,
                          planned.size,
                          std::move(contexts),
                          isPictureOutput};
    if (conversion.changesPixels()) {
        requireDecodable(source, name);
        checkEncoder(conversion);
    }
    checkSize(conversion);
    checkContainer(conversion, output, planned.isPremultiplied);
    return conversion;
}

/// A format that keeps all values through any number of operations: floats, if they fit the largest data size.
TextureFormat exactFormat(const Conversion& conversion) {
    const auto pixelsOf = [](const PlannedSize& size) { return std::uint64_t{size.width} * size.height; };
    const CMOKTexture& texture = conversion.texture;
    const std::uint64_t pixels = std::max(
        {std::uint64_t{texture.getWidth()} * texture.getHeight(), pixelsOf(conversion.resized), pixelsOf(conversion.size)});
    const std::uint64_t images = std::uint64_t{texture.getNumArrayMembers()} * texture.getNumFaces() * texture.getDepth();
    const double unit = unitOf(formatOf(texture));
    if (unit == 1 || pixels * images <= maxDataSize / 16 / 4 * 3) return rgbaFloatFormat;
    return unit == 255 ? rgba8Format : rgba16Format;
}

/// The format to convert a texture to before an operation; its own if the operation accepts it.
TextureFormat operandFormat(const Conversion& conversion, OperandFormat wanted) {
    if (wanted == OperandFormat::bytes) return rgba8Format;
    if (wanted == OperandFormat::exact) return exactFormat(conversion);
    const TextureFormat format = formatOf(conversion.texture);
    if (format == rgba8Format || format == rgba16Format || format == rgbaFloatFormat) return format;
    const double unit = unitOf(format);
    return unit == 255 ? rgba8Format : unit == 65535 ? rgba16Format : rgbaFloatFormat;
}

void convertForOperation(Conversion& conversion, OperandFormat format) {
    CMOKTexture& texture = conversion.texture;
    decodeBlocks(texture, conversion.name);
    changeFormat(texture, {operandFormat(conversion, format), texture.getColourSpace()}, conversion.name, conversion.console);
}

/// The next side in a sequence of resizing steps from `current` to `wanted`. The filters sample points and are centred only when
/// they halve. So a reduction halves repeatedly; if a factor between one half and one remains, it enlarges to twice `wanted`
/// first.
std::uint32_t nextEdge(std::uint32_t current, std::uint32_t wanted) {
    if (current <= wanted || current == 2 * wanted) return wanted;
    return current > 2 * wanted ? current / 2 : 2 * wanted;
}

void require(bool succeeded, const std::string& name, const std::string& work) {
    if (!succeeded)
        throw Failure(ExitStatus::workFailed, name, work + " failed, most likely because of its size; use a smaller --resize");
}

void resize(Conversion& conversion) {
    CMOKTexture& texture = conversion.texture;
    const EResizeMode filter = conversion.request.resizeFilter;
    const PlannedSize& size = conversion.resized;
    while (conversion.resizes()) {
        std::uint32_t width = nextEdge(texture.getWidth(), size.width);
        std::uint32_t height = nextEdge(texture.getHeight(), size.height);
        const std::uint64_t pixels =
            std::uint64_t{width} * height * texture.getDepth() * texture.getNumArrayMembers() * texture.getNumFaces();
        const bool isTooLarge = pixels * texture.getBitsPerPixel() / 8 > maxDataSize;
        if (filter == eResizeNearest || isTooLarge) {
            width = size.width;
            height = size.height;
        }
        require(Resize(texture, width, height, texture.getDepth(), filter), conversion.name, "resizing");
    }
}

bool makesLevels(const ConversionRequest& request) {
    return std::any_of(request.operations.begin(), request.operations.end(),
                       [](const OperationPointer& operation) { return operation->isMipmaps(); });
}

void noteLosses(const Conversion& conversion) {
    const auto& request = conversion.request;
    const CMOKTexture& texture = conversion.texture;
    const bool isFloat = formatOf(texture).channelType == eVarFloat && !isCompressed(texture.getPixelType());
    if (isFloat && ((conversion.resizes() && request.resizeFilter == eResizeCubic) ||
                    (makesLevels(request) && request.mipFilter == eResizeCubic)))
        conversion.console.note(conversion.name + ": the cubic filter clamps values to 0 to 1; use linear to keep them");
    if (conversion.resizes() && texture.getNumMIPLevels() > 1 && !makesLevels(request))
        conversion.console.note(conversion.name + ": only the first level is resized, the others are dropped");
}

void operate(Conversion& conversion) {
    noteLosses(conversion);
    if (conversion.resizes()) {
        convertForOperation(conversion, OperandFormat::exact);
        resize(conversion);
    }
    for (std::size_t i = 0; i < conversion.operations.size(); ++i) {
        const ImageOperation& operation = *conversion.request.operations[i];
        convertForOperation(conversion, operation.operandFormat());
        require(operation.apply(conversion.texture, conversion.operations[i]), conversion.name, operation.text);
    }
}

/// Reduces the texture to the image that is written as a picture.
void pickImage(Conversion& conversion, const TextureFormat& source) {
    const auto& request = conversion.request;
    CMOKTexture& texture = conversion.texture;
    if (widestChannel(source) > 8 && pictureFormat(conversion.target) == rgba8Format)
        conversion.console.note(conversion.name + ": the picture is written with 8 bits a channel");
    if (texture.getDepth(request.level) > 1)
        conversion.console.note(conversion.name + ": the picture holds the first slice of the volume");
    texture = extractImage(texture, request.level, request.layer, request.face);
}

void report(const CMOKTexture& texture, const std::string& output, std::size_t bytes, Console& console) {
    if (console.quiet || output == standardStream) return;
    const std::uint32_t levels = texture.getNumMIPLevels();
    console.out << printable(output) << ": " << nameOf(formatOf(texture)) << ", " << texture.getWidth() << " x "
                << texture.getHeight() << ", " << levels << (levels == 1 ? " level, " : " levels, ")
                << nameOf(texture.getColourSpace()) << ", " << bytes << " bytes\n";
}

}  // namespace

void convertFile(const ConversionRequest& request, const std::string& input, const std::string& output, Console& console) {
    const std::string name = displayName(input);
    Conversion conversion = plan(request, readTexture(input, console).texture, name, output, console);
    auto& texture = conversion.texture;
    const TextureFormat source = formatOf(texture);
    CMOKTextureHeader targetHeader;
    targetHeader.setPixelFormat(conversion.target.pixelType);
    if (request.dither && targetHeader.getBitsPerPixel() >= 32)
        console.note(name + ": --dither has no effect above 31 bits a pixel");

    operate(conversion);
    if (conversion.isPictureOutput) pickImage(conversion, source);
    changeFormat(texture, {conversion.target, conversion.colourSpace, conversion.quality, request.dither}, name, console);
    if (conversion.isPictureOutput)
        changeFormat(texture, {pictureFormat(conversion.target), conversion.colourSpace}, name, console);
    const std::string caveat = containerCaveat(texture, {output, request.legacyApi});
    if (!caveat.empty()) console.note(output + ": " + caveat);
    const std::size_t bytes = writeTexture(texture, {output, request.legacyApi, request.overwrites}, console);
    report(texture, output, bytes, console);
}

}  // namespace moktextool
