// The slow encoder, from an image to blocks:
//
//     copy the image into a work image of a fixed row stride; punch-through preprocessing, if requested
//     encode the top MIP level
//     for each further MIP level:  tile the work image if it is too small to halve; halve it in place; encode it
//
// level_pipeline.cpp encodes one level. The work image is 64 MiB of address space, of which an encoding touches
// the pages that its pixels lie in; its constant row stride spares a multiplication in every footprint read.

#include "moktc/amtc/amtc_localised.h"

#include <cstddef>
#include <cstring>

namespace moktexture::amtc {

std::FILE* diagnosticsStream = nullptr;

namespace {

constexpr std::size_t blockBytes = 8;

template <class... Values>
void writeDiagnostics(const char* format, Values... values) {
    if (diagnosticsStream != nullptr) std::fprintf(diagnosticsStream, format, values...);
}

/// How many MIP levels follow the top one.
std::uint32_t countFurtherMIPLevels(const EncodeRequest& request) {
    if (request.mipSource == MIPSource::none) return 0;
    const SourceImage& source = request.source;
    if (isPowerOfTwo(source.width) && isPowerOfTwo(source.height)) return furtherMIPLevelCount(source.width, source.height);
    writeDiagnostics("%s", "Warning: Size is not compatible with MIP mapping. Ignoring -m\n");
    return 0;
}

struct BlockGrid {
    std::int32_t across, down;

    std::size_t bytes() const { return static_cast<std::size_t>(across) * static_cast<std::size_t>(down) * blockBytes; }
};

/// The blocks of an image; none if it is not made of whole blocks.
BlockGrid blockGridOf(const AmtcImage& image, Rate rate) {
    const std::int32_t blockWidth = rate == Rate::fourBpp ? 4 : 8, blockHeight = rate == oneBpp ? 8 : 4;
    if (image.Width % blockWidth != 0 || image.Height % blockHeight != 0) return {0, 0};
    return {image.Width / blockWidth, image.Height / blockHeight};
}

/// Encodes one MIP level if it can be encoded.
bool validateAndEncode(const AmtcImage& image, EncodeOptions options, std::uint8_t* destination) {
    const Rate rate = options.variant.rate;
    const bool isKnownRate = rate == oneBpp || rate == Rate::twoBpp || rate == Rate::fourBpp;
    if (destination == nullptr || !isKnownRate || !isValidSide(image.Width) || !isValidSide(image.Height)) return false;
    const BlockGrid grid = blockGridOf(image, rate);
    if (grid.bytes() == 0) return false;

    // Kept (linear-order-for-other-grids): a grid whose sides are not both powers of two is stored row by row even if twiddled
    // order is requested. The first generation's decoder reads twiddled blocks there; hosts that decode such textures themselves
    // read them row by row.
    options.linearBlockOrder |= !isPowerOfTwo(grid.across) || !isPowerOfTwo(grid.down);
    std::memset(destination, 0, grid.bytes());
    return encodeLevel(image, options, destination);
}

/// Makes the next MIP level in place. `stored` is where its pixels are stored and moves on to the next one's.
void makeNextMIPLevel(AmtcImage& image, const EncodeRequest& request, std::uint32_t mipLevel, const std::uint8_t*& stored) {
    tileSmallestImage(image, request.options.variant.rate);
    if (request.colourMIPs)
        halveToDebugColour(image, mipLevel);
    else if (request.mipSource == MIPSource::stored)
        stored = halveByReading(image, stored);
    else
        halveByAveraging(image);
    writeDiagnostics("\nDoing Level %d (%d x %d).....\n", static_cast<int>(mipLevel), image.Width, image.Height);
}

MIPSource mipSourceOf(std::int32_t mipMode) {
    return mipMode == 0 ? MIPSource::none : mipMode == 1 ? MIPSource::averaged : MIPSource::stored;
}

}  // namespace

bool encodeImage(const EncodeRequest& request) {
    const SourceImage& source = request.source;
    if (request.progress != nullptr) ResetProgress(*request.progress, request.mipSource != MIPSource::none);
    const WorkImage image = loadWorkImage(source);
    if (image == nullptr) return false;

    writeDiagnostics("%s", "\nCompressing data. Please wait...\n\n");
    const std::uint32_t furtherMIPLevels = countFurtherMIPLevels(request);
    const bool readsMIPLevels = furtherMIPLevels != 0 && request.mipSource == MIPSource::stored && !request.colourMIPs;
    if (readsMIPLevels && source.rowBytes < 0) return false;
    if (request.punchThrough) {
        writeDiagnostics("%s", "Doing \"Punch-Through\" preprocess of top map.....\n");
        PunchThroughPreprocess(*image, request.options.variant.isSecondGeneration() ? 1 : 0);
    }
    writeDiagnostics("Compressing top map (%d * %d).....\n", source.width, source.height);
    std::uint8_t* destination = request.destination;
    if (!validateAndEncode(*image, request.options, destination)) return false;
    writeDiagnostics("%s", "\n");

    const std::uint8_t* stored = readsMIPLevels ? source.pixels + source.rowBytes * source.height : nullptr;
    for (std::uint32_t mipLevel = 1; mipLevel <= furtherMIPLevels; ++mipLevel) {
        destination += blockGridOf(*image, request.options.variant.rate).bytes();
        makeNextMIPLevel(*image, request, mipLevel, stored);
        if (!validateAndEncode(*image, request.options, destination)) return false;
    }
    return true;
}

// Kept (unused-has-alpha-and-reserved): `hasAlpha` and `reserved` have no effect; hosts pass both, and translucency comes
// from the pixels.
std::uint32_t CompressImageLevels(const std::uint8_t* source, std::uint32_t isRGBAOrder, std::int32_t width, std::int32_t height,
                                  std::int32_t rowStride, std::uint8_t* destination, std::uint8_t quality, std::int32_t mipMode,
                                  std::uint64_t /*hasAlpha*/, std::int32_t punchThrough, std::uint32_t formatVersion,
                                  std::uint32_t bitsPerPixel, std::uint32_t secondGeneration, std::uint64_t /*reserved*/,
                                  std::uint32_t linearBlockOrder, std::uint32_t colourMIPs, AmtcProgress** progress) {
    const std::ptrdiff_t rowBytes = rowStride != 0 ? rowStride : std::ptrdiff_t{4} * width;
    const EncodeRequest request = {
        .source = {source, width, height, rowBytes, isRGBAOrder != 0},
        .destination = destination,
        .options = makeEncodeOptions(formatVersion, bitsPerPixel, secondGeneration, linearBlockOrder, quality),
        .mipSource = mipSourceOf(mipMode),
        .punchThrough = punchThrough != 0,
        .colourMIPs = colourMIPs != 0,
        .progress = progress != nullptr ? *progress : nullptr};
    return encodeImage(request) ? 0 : 1;
}

std::uint32_t CompressOneLevel(const AmtcImage& image, std::uint32_t formatVersion, std::uint32_t bitsPerPixel,
                               std::uint32_t secondGeneration, std::uint32_t linearBlockOrder, std::uint8_t quality,
                               std::uint64_t /*reserved*/, std::uint8_t* destination, AmtcProgress** /*progress*/) {
    const EncodeOptions options = makeEncodeOptions(formatVersion, bitsPerPixel, secondGeneration, linearBlockOrder, quality);
    return validateAndEncode(image, options, destination) ? 0 : 1;
}

}  // namespace moktexture::amtc
