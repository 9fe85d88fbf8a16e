#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "moktex/formats/texture_format.h"
#include "moktex/report/console.h"

namespace moktextool {

/// A picture of more would take gigabytes before it can be validated.
inline constexpr std::uint64_t mostPicturePixels = std::uint64_t{1} << 28;

struct FreeMemory {
    void operator()(unsigned char* memory) const { std::free(memory); }
};

/// The pixels of a picture file: rows from the top, each pixel red, green, blue and alpha.
struct DecodedPicture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    TextureFormat format = rgba8Format;  ///< that, rgba16Format or rgbaFloatFormat
    std::unique_ptr<unsigned char[], FreeMemory> pixels;
    std::vector<std::string> warnings;  ///< properties of the file that are ignored
    std::vector<std::string> notes;     ///< properties of the file that were applied

    std::size_t pixelSize() const { return format == rgba8Format ? 4 : format == rgba16Format ? 8 : 16; }
    std::size_t rowSize() const { return width * pixelSize(); }
};

/// Throws a Failure that names `file` if a side is 0 or there are more pixels than a picture may have.
void requirePictureSize(std::uint32_t width, std::uint32_t height, const std::string& file);

/// A picture of a size that is allowed, whose pixels are not set yet. Raises `std::bad_alloc`.
DecodedPicture makePicture(std::uint32_t width, std::uint32_t height, const TextureFormat& format, const std::string& file);

/// The Failure for a file that is not what it seems.
Failure brokenPicture(const std::string& file, std::string_view reason);

/// The warning that a colour profile of that name, "" if it has none, is not applied.
std::string profileWarning(const std::string& profile);

/// Turns and mirrors the pixels as EXIF describes it.
/// @param orientation  1 to 8; 1 changes nothing
void turnUpright(DecodedPicture& picture, unsigned int orientation);

}  // namespace moktextool
