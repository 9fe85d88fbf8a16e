#include "moktex/files/picture_file.h"

#include <algorithm>
#include <array>

#include "moktex/files/container.h"
#include "moktex/pictures/DecodedPicture.h"
#include "moktex/pictures/jpeg_reader.h"
#include "moktex/pictures/jpeg_segments.h"
#include "moktex/pictures/png_reader.h"
#include "moktex/pictures/png_writer.h"
#include "moktex/pictures/stb_pictures.h"
#include "moktex/report/console.h"

using namespace moktexture;

namespace moktextool {

namespace {

DecodedPicture decode(std::span<const unsigned char> bytes, const std::string& file) {
    if (isPNG(bytes)) return decodePNG(bytes, file);
    if (isJPEG(bytes)) return decodeJPEG(bytes, file);
    return decodeByStb(bytes, file);
}

}  // namespace

bool hasPictureExtension(const std::string& path) {
    static constexpr std::array known = {".png", ".jpg", ".jpeg", ".tga", ".bmp", ".hdr"};
    return std::find(known.begin(), known.end(), extensionOf(path)) != known.end();
}

bool looksLikePicture(std::span<const unsigned char> bytes) {
    return isPNG(bytes) || isJPEG(bytes) || countPixelsByStb(bytes) > 0;
}

std::optional<std::uint64_t> picturePixels(std::span<const unsigned char> head) {
    if (const std::uint64_t pixels = countPixelsByStb(head); pixels > 0) return std::min(pixels, mostPicturePixels);
    return looksLikePicture(head) ? std::optional(mostPicturePixels) : std::nullopt;
}

Picture decodePicture(std::span<const unsigned char> bytes, const std::string& file, Console* console) {
    DecodedPicture picture = decode(bytes, file);
    if (console != nullptr) {
        for (const std::string& warning : picture.warnings)
            console->warn(file + ": " + warning);
        for (const std::string& note : picture.notes)
            console->note(file + ": " + note);
    }
    const EMOKTColourSpace colourSpace = picture.format == rgbaFloatFormat ? eColourSpaceLinear : eColourSpaceSRGB;
    return {Image(picture.format, {picture.width, picture.height, 1}, picture.pixels.release()), colourSpace};
}

TextureFormat pictureFormat(const TextureFormat& format) {
    const bool isDeep = widestChannel(format) > 8 && format.channelType != eVarFloat;
    return isDeep ? rgba16Format : rgba8Format;
}

bool fitsPNG(const TextureFormat& format, const ImageSize& size) {
    // Rows have a byte in front; the encoders count in 31 bits and need room to spare.
    constexpr std::uint64_t limit = (std::uint64_t{1} << 30) - 1;
    return imageSize(format.pixelType, {size.width, size.height, 1}) + size.height < limit;
}

std::vector<unsigned char> encodePNG(const Image& image, const std::string& file) {
    const bool isDeep = image.getFormat() == rgba16Format;
    std::vector<unsigned char> encoded =
        (isDeep ? encodePNG16 : encodePNG8)(image.getData(), image.getSize().width, image.getSize().height);
    if (encoded.empty()) throw Failure(ExitStatus::workFailed, file, "the picture is too large for a PNG; use --resize");
    return encoded;
}

}  // namespace moktextool
