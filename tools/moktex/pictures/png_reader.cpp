// A PNG file is a signature and a row of chunks: the length of the data, a name of four letters, the data, a checksum.

#include "moktex/pictures/png_reader.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "moktex/pictures/exif_orientation.h"
#include "moktex/pictures/stb_pictures.h"

namespace moktextool {

namespace {

constexpr std::string_view signature = "\x89PNG\r\n\x1A\n";
constexpr std::size_t chunkFrame = 12;  // length, name and checksum
constexpr std::size_t headerEnd = 8 + chunkFrame + 13;

/// How a PNG file describes its values.
struct Remarks {
    bool isSRGB = false, hasProfile = false;
    std::string profile;
    std::uint32_t gamma = 0;  ///< times 100000, 0 if there is none
    unsigned int orientation = 1;
};

std::uint32_t readBig(const unsigned char* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

Remarks readRemarks(std::span<const unsigned char> bytes) {
    Remarks remarks;
    std::size_t at = signature.size();
    while (bytes.size() - at >= chunkFrame) {
        const std::size_t size = readBig(&bytes[at]);
        if (size > bytes.size() - at - chunkFrame) break;
        const std::string_view name(reinterpret_cast<const char*>(&bytes[at + 4]), 4);
        const auto data = bytes.subspan(at + 8, size);
        if (name == "sRGB") remarks.isSRGB = true;
        if (name == "gAMA" && size == 4) remarks.gamma = readBig(data.data());
        if (name == "eXIf") remarks.orientation = exifOrientation(data);
        if (name == "iCCP") {
            constexpr std::ptrdiff_t longestName = 79;
            const auto limit = data.begin() + std::min<std::ptrdiff_t>(longestName, static_cast<std::ptrdiff_t>(size));
            remarks.profile.assign(data.begin(), std::find(data.begin(), limit, 0));
            remarks.hasProfile = true;
        }
        at += chunkFrame + size;
    }
    return remarks;
}

/// Gamma chunks of sRGB hold 45455, and some programs round.
bool isGammaOfSRGB(std::uint32_t gamma) {
    return gamma >= 45000 && gamma <= 46000;
}

std::string warningAbout(const Remarks& remarks) {
    if (remarks.isSRGB || remarks.profile.find("sRGB") != std::string::npos) return "";
    if (remarks.hasProfile) return profileWarning(remarks.profile);
    if (remarks.gamma == 0 || isGammaOfSRGB(remarks.gamma)) return "";
    return "its gamma of " + std::to_string(remarks.gamma / 100000) + '.' +
           std::to_string(100000 + remarks.gamma % 100000).substr(1, 3) +
           " is not applied: the values are taken as sRGB; convert the picture to sRGB if its brightness is wrong";
}

/// Deflate packs at most 1032 to 1: rows that the file cannot hold are refused before memory is taken.
void requireRows(std::span<const unsigned char> bytes, const std::string& file) {
    constexpr std::uint64_t bestRatio = 1032, channels[] = {1, 0, 3, 1, 2, 0, 4};
    if (bytes.size() < headerEnd || std::memcmp(&bytes[12], "IHDR", 4) != 0) throw brokenPicture(file, "it has no header");
    const std::uint32_t width = readBig(&bytes[16]), height = readBig(&bytes[20]);
    requirePictureSize(width, height, file);
    const unsigned int depth = bytes[24], type = bytes[25];
    const std::uint64_t bits = type < std::size(channels) ? channels[type] * depth : 0;
    if (std::uint64_t{width} * bits / 8 * height > bestRatio * bytes.size()) throw brokenPicture(file, "it ends early");
}

}  // namespace

bool isPNG(std::span<const unsigned char> bytes) {
    return bytes.size() >= signature.size() && std::memcmp(bytes.data(), signature.data(), signature.size()) == 0;
}

DecodedPicture decodePNG(std::span<const unsigned char> bytes, const std::string& file) {
    requireRows(bytes, file);
#ifdef MOKTEX_HAS_LIBPNG
    DecodedPicture picture = decodePNGByLibpng(bytes, file);
#else
    DecodedPicture picture = decodeByStb(bytes, file);
#endif
    const Remarks remarks = readRemarks(bytes);
    if (const std::string warning = warningAbout(remarks); !warning.empty()) picture.warnings.push_back(warning);
    turnUpright(picture, remarks.orientation);
    return picture;
}

}  // namespace moktextool
