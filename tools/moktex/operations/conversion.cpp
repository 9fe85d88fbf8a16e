#include "moktex/operations/conversion.h"

#include <algorithm>
#include <ostream>

#include "moktex/files/picture_file.h"
#include "moktex/files/texture_file.h"
#include "moktex/formats/format_names.h"
#include "moktex/formats/texture_size.h"
#include "moktex/operations/block_size_rule.h"
#include "moktex/operations/container_format.h"
#include "moktex/operations/format_change.h"
#include "moktex/operations/resample.h"
#include "moktex/report/console.h"

using namespace moktexture;

namespace moktextool {

namespace {

/// One input and the planned properties of its output.
struct Conversion {
    const ConversionRequest& request;
    const std::string name;
    Console& console;
    TextureInput input;
    TextureFormat target;
    EMOKTColourSpace colourSpace;
    ECompressorQuality quality;
    PlannedSize resized;             ///< before the operations
    PlannedSize size;                ///< after them
    std::vector<double> operations;  ///< the unit of each operation's values; see PlannedTexture
    bool isPictureOutput;
    bool holdsNormals;

    const CMOKTextureHeader& source() const { return input.texture; }
    bool resizes() const { return resized.width != source().getWidth() || resized.height != source().getHeight(); }
    bool changesPixels() const {
        return resizes() || !request.operations.empty() || isPictureOutput || !(target == formatOf(source())) ||
               colourSpace != source().getColourSpace();
    }
    Workplace place() const { return {name, console, request.bandPixels}; }
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

/// Throws a Failure if the image to write as a picture does not exist.
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
    return "; use --resize " + std::to_string(wanted.width) + 'x' + std::to_string(wanted.height);
}

void checkSize(const Conversion& conversion) {
    const ConversionRequest& request = conversion.request;
    PlannedSize encoded = conversion.size;
    if (conversion.isPictureOutput) {
        requireImage(request, conversion.source(), encoded.levels, conversion.name);
        encoded = {std::max(1u, encoded.width >> request.level), std::max(1u, encoded.height >> request.level), 1, 1};
    }
    if (!conversion.changesPixels()) return;
    if (const auto problem = sizeProblem(conversion.target, encoded)) {
        throw Failure(ExitStatus::notSupported, conversion.name,
                      problem->rule + sizeRemedy(*problem, request, conversion.isPictureOutput));
    }
}

/// Throws a Failure if the result cannot be a texture of the library, or would have to be one in between.
void checkLimit(const Conversion& conversion) {
    const PlannedSize& size = conversion.size;
    CMOKTextureHeader header = conversion.source();
    header.setPixelFormat(conversion.target.pixelType);
    header.setWidth(size.width);
    header.setHeight(size.height);
    header.setNumMIPLevels(size.levels);
    constexpr const char* remedy = "; use a smaller --resize, or a --format with fewer bits a pixel";
    const bool changes = conversion.changesPixels() || conversion.input.isPicture();
    if (!conversion.isPictureOutput && changes && !fitsTexture(header))
        throw Failure(ExitStatus::notSupported, conversion.name, "the result would be " + limitText(header) + remedy);
    const ImageSize picture = levelSize({size.width, size.height, 1}, conversion.request.level);
    if (conversion.isPictureOutput && !fitsPNG(pictureFormat(conversion.target), picture))
        throw Failure(ExitStatus::notSupported, conversion.name,
                      "a picture of " + std::to_string(picture.width) + " x " + std::to_string(picture.height) +
                          " is above what is written as PNG, 1 GiB of pixels; use a smaller --resize, or --level");
    header.setPixelFormat(PixelTypeRGBA8);
    header.setNumMIPLevels(1);
    if (changes && needsWholeLevels(conversion.target, conversion.request.dither) && !fitsTexture(header))
        throw Failure(ExitStatus::notSupported, conversion.name,
                      "dithering works on " + limitText(header) + "; use a smaller --resize, or leave out --dither");
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

/// The header of the output: that of the input with what the conversion changes.
CMOKTextureHeader outputHeader(const CMOKTextureHeader& input, const PlannedTexture& planned, const TextureFormat& format,
                               EMOKTColourSpace colourSpace) {
    return {format.pixelType.id,        planned.size.height, planned.size.width, planned.size.depth, planned.size.levels,
            input.getNumArrayMembers(), input.getNumFaces(), colourSpace,        format.channelType, planned.isPremultiplied};
}

/// The format of the output without --format: that of the input; that of the file for a picture, and RGBA8 for normals if the
/// input has fewer than three channels.
TextureFormat defaultFormat(const TextureFormat& source, bool isPictureOutput, bool holdsNormals) {
    const bool hasThreeChannels = isCompressed(source.pixelType) || source.pixelType.layout.channelName[2] != 0;
    if (isPictureOutput) return pictureFormat(source);
    return holdsNormals && !hasThreeChannels ? rgba8Format : source;
}

Conversion plan(const ConversionRequest& request, TextureInput input, const std::string& name, const std::string& output,
                Console& console) {
    CMOKTextureHeader& texture = input.texture;
    if (request.assignedColourSpace) texture.setColourSpace(*request.assignedColourSpace);
    const bool isPictureOutput = outputKind(output) == OutputKind::picture;
    const TextureFormat source = formatOf(texture);
    const PlannedSize resized = planResize(request, texture);
    PlannedTexture planned{
        name, console, resized, unitOf(source), texture.getColourSpace(), texture.isPreMultiplied(), hasBorder(texture)};
    std::vector<double> units;
    for (const OperationPointer& operation : request.operations) {
        units.push_back(planned.unit);
        operation->plan(planned);
    }
    const EMOKTColourSpace colourSpace = request.colourSpace.value_or(planned.colourSpace);
    TextureFormat target = request.format.value_or(defaultFormat(source, isPictureOutput, planned.holdsNormals));
    const OutputTarget place{output, request.legacyApi, false, request.layout};
    if (!request.format && !isPictureOutput) {
        target = formatHeldBy(place, outputHeader(texture, planned, target, colourSpace));
        if (widestChannel(target) < widestChannel(source))
            console.warn(name + ": " + output + " cannot hold " + nameOf(source) + " in " + nameOf(colourSpace) +
                         "; it becomes " + nameOf(target) + ", choose another --format or --colour-space to keep more");
    }
    checkColourSpace(request, planned, colourSpace);
    Conversion conversion{request,
                          name,
                          console,
                          std::move(input),
                          target,
                          colourSpace,
                          encoderQuality(request.quality, target.pixelType),
                          resized,
                          planned.size,
                          std::move(units),
                          isPictureOutput,
                          planned.holdsNormals};
    if (conversion.changesPixels()) {
        requireDecodable(source, name);
        checkEncoder(conversion);
    }
    checkSize(conversion);
    checkLimit(conversion);
    if (!isPictureOutput) requireHoldable(outputHeader(conversion.input.texture, planned, target, colourSpace), place);
    return conversion;
}

bool makesLevels(const ConversionRequest& request) {
    return std::any_of(request.operations.begin(), request.operations.end(),
                       [](const OperationPointer& operation) { return operation->isMipmaps(); });
}

/// The format to work in: the integers that hold the values of the source, or wider ones if pixels are averaged for a wider
/// target, so that the averages are rounded only once.
TextureFormat workingFormat(const Conversion& conversion) {
    const TextureFormat& target = conversion.target;
    const bool averages = conversion.resizes() || makesLevels(conversion.request);
    const unsigned int bits = averages ? widestChannel(target) : 8;
    const bool isFloat = averages && !isCompressed(target.pixelType) && target.channelType == eVarFloat;
    const double unit = unitOf(formatOf(conversion.source()));
    if (unit == 1 || isFloat || bits > 16) return rgbaFloatFormat;
    return unit == 255 && bits <= 8 ? rgba8Format : rgba16Format;
}

ResampleSettings settingsOf(const Conversion& conversion, EResizeMode mode, const CMOKTextureHeader& header) {
    return {mode, conversion.request.linearLight && header.getColourSpace() == eColourSpaceSRGB,
            conversion.request.weightsByAlpha && !header.isPreMultiplied() && !header.isBumpMap(), conversion.request.bandPixels};
}

void resize(const Conversion& conversion, ImageSet& images) {
    const PlannedSize& planned = conversion.resized;
    const ImageSize old = sizeOf(images.header), size{planned.width, planned.height, old.depth};
    for (Surface& surface : images.surfaces) {
        surface.erase(surface.begin() + 1, surface.end());
        surface.front() = resample(surface.front(), size, settingsOf(conversion, conversion.request.resizeFilter, images.header));
    }
    CMOKTextureHeader& header = images.header;
    unsigned int x, y, z;
    header.getBorder(x, y, z);
    header.setWidth(size.width);
    header.setHeight(size.height);
    header.setNumMIPLevels(1);
    const auto scaled = [](unsigned int border, std::uint32_t from, std::uint32_t to) {
        return static_cast<unsigned int>(std::uint64_t{border} * to / from);
    };
    if (hasBorder(header)) header.setBorder(scaled(x, old.width, size.width), scaled(y, old.height, size.height), z);
}

/// Whether any pixel of the result is an average.
bool averages(const Conversion& conversion) {
    const auto& request = conversion.request;
    return (conversion.resizes() && request.resizeFilter != eResizeNearest) ||
           (makesLevels(request) && request.mipFilter != eResizeNearest);
}

void noteAveraging(const Conversion& conversion) {
    const auto& request = conversion.request;
    if (conversion.resizes() && conversion.source().getNumMIPLevels() > 1 && !makesLevels(request))
        conversion.console.warn(conversion.name + ": only the first level is resized, the others are dropped");
    if (!averages(conversion) || conversion.holdsNormals) return;
    const bool isSRGB = conversion.source().getColourSpace() == eColourSpaceSRGB;
    conversion.console.note(!isSRGB ? "colours that are not marked as sRGB are averaged as they are stored"
                            : request.linearLight
                                ? "sRGB colours are averaged in linear light; --no-linear-light averages the stored values"
                                : "sRGB colours are averaged as they are stored, not in linear light");
}

void operate(const Conversion& conversion, ImageSet& images) {
    noteAveraging(conversion);
    const bool operates = conversion.resizes() || !conversion.operations.empty();
    if (operates) convertImages(images, {workingFormat(conversion), images.header.getColourSpace()}, conversion.place());
    if (conversion.resizes()) resize(conversion, images);
    for (std::size_t i = 0; i < conversion.operations.size(); ++i) {
        const ResampleSettings settings = settingsOf(conversion, conversion.request.mipFilter, images.header);
        conversion.request.operations[i]->apply(images, {conversion.operations[i], settings, conversion.place()});
    }
}

/// Tells what the texture says of its pixels and a picture cannot say.
void warnOfLostMeaning(const Conversion& conversion, const CMOKTextureHeader& header) {
    if (header.isPreMultiplied())
        conversion.console.warn(conversion.name + ": the colours are premultiplied by alpha, which the picture does not say");
    if ((header.getOrientation(eAxisX) | header.getOrientation(eAxisY)) != eOrientRight)
        conversion.console.warn(conversion.name +
                                ": the rows or columns run backwards, which the picture does not say; use --flip");
}

/// The image of the result that is written as a picture, in the format of the file.
Image makePicture(const Conversion& conversion, ImageSet images) {
    const auto& request = conversion.request;
    const TextureFormat format = pictureFormat(conversion.target);
    warnOfLostMeaning(conversion, images.header);
    if (widestChannel(formatOf(conversion.source())) > 8 && format == rgba8Format)
        conversion.console.warn(conversion.name + ": the picture is written with 8 bits a channel");
    if (images.surface(0, 0)[request.level].getSize().depth > 1)
        conversion.console.warn(conversion.name + ": the picture holds the first slice of the volume");
    ImageSet image = takeImage(std::move(images), request.level, request.layer, request.face);
    const FormatChange change{conversion.target, conversion.colourSpace, conversion.quality, request.dither};
    if (isCompressed(conversion.target.pixelType))
        image = decodeTexture(encodeImages(std::move(image), change, conversion.place()), conversion.place());
    else
        convertImages(image, change, conversion.place());
    convertImages(image, {format, conversion.colourSpace}, conversion.place());
    return std::move(image.surfaces.front().front());
}

CMOKTexture makeTexture(Conversion& conversion) {
    if (!conversion.changesPixels() && !conversion.input.picture) return std::move(conversion.input.texture);
    ImageSet images = takeImages(conversion.input, conversion.place());
    operate(conversion, images);
    return encodeImages(std::move(images),
                        {conversion.target, conversion.colourSpace, conversion.quality, conversion.request.dither},
                        conversion.place());
}

void report(const CMOKTextureHeader& header, const std::string& output, std::size_t bytes, Console& console) {
    if (console.quiet || output == standardStream) return;
    const std::uint32_t levels = header.getNumMIPLevels();
    console.out << printable(output) << ": " << nameOf(formatOf(header)) << ", " << header.getWidth() << " x "
                << header.getHeight() << ", " << levels << (levels == 1 ? " level, " : " levels, ")
                << nameOf(header.getColourSpace()) << ", " << bytes << " bytes\n";
}

void convertToPicture(Conversion& conversion, const std::string& output, Console& console) {
    ImageSet images = takeImages(conversion.input, conversion.place());
    operate(conversion, images);
    const Image picture = makePicture(conversion, std::move(images));
    const std::size_t bytes = writePicture(picture, {output, {}, conversion.request.overwrites}, console);
    report(CMOKTextureHeader(picture.getFormat().pixelType.id, picture.getSize().height, picture.getSize().width, 1, 1, 1, 1,
                             conversion.colourSpace, picture.getFormat().channelType, false),
           output, bytes, console);
}

}  // namespace

void convertFile(const ConversionRequest& request, const std::string& input, const std::string& output, Console& console) {
    const std::string name = displayName(input);
    Conversion conversion = plan(request, readTexture(input, console), name, output, console);
    CMOKTextureHeader targetHeader;
    targetHeader.setPixelFormat(conversion.target.pixelType);
    if (request.dither && targetHeader.getBitsPerPixel() >= 32)
        console.note(name + ": --dither has no effect above 31 bits a pixel");
    if (conversion.isPictureOutput) return convertToPicture(conversion, output, console);

    const CMOKTexture texture = makeTexture(conversion);
    const std::string caveat = containerCaveat(texture, {output, request.legacyApi, false, request.layout});
    if (!caveat.empty()) console.warn(output + ": " + caveat);
    const std::size_t bytes = writeTexture(texture, {output, request.legacyApi, request.overwrites, request.layout}, console);
    report(texture, output, bytes, console);
}

}  // namespace moktextool
