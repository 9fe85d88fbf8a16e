// EXIF data is a TIFF file:
//
//   offset  bytes
//        0      2  "II" little-endian, "MM" big-endian
//        2      2  42
//        4      4  offset of the first directory
//
// A directory is a number of entries (2 bytes) and the entries of 12 bytes: tag, type, count, value. A short value stands in the
// first two of the value's four bytes.

#include "moktex/pictures/exif_orientation.h"

#include <cstddef>
#include <cstdint>

namespace moktextool {

unsigned int exifOrientation(std::span<const unsigned char> exif) {
    constexpr std::uint32_t orientationTag = 0x112, shortType = 3;
    constexpr std::size_t headerSize = 8, entrySize = 12;
    if (exif.size() < headerSize || exif[0] != exif[1] || (exif[0] != 'I' && exif[0] != 'M')) return 1;
    const bool isLittle = exif[0] == 'I';
    const auto read = [&](std::size_t offset, std::size_t size) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | exif[offset + (isLittle ? size - 1 - i : i)];
        return value;
    };
    const std::size_t directory = read(4, 4);
    if (read(2, 2) != 42 || directory > exif.size() - 2) return 1;
    const std::size_t entries = read(directory, 2);
    for (std::size_t i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + i * entrySize;
        if (entry + entrySize > exif.size()) return 1;
        if (read(entry, 2) != orientationTag || read(entry + 2, 2) != shortType) continue;
        const std::uint32_t orientation = read(entry + 8, 2);
        return orientation >= 1 && orientation <= 8 ? orientation : 1;
    }
    return 1;
}

}  // namespace moktextool
