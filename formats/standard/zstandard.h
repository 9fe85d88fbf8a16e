#pragma once

#include <cstdint>
#include <span>

/// @file
/// Decompression of Zstandard frames (RFC 8878), where the library libzstd was found when this one was built.

namespace moktexture {

bool hasZstandard();

/// The most bytes that `size` compressed bytes can give: a block of 128 KiB takes four of them.
constexpr std::uint64_t largestFromZstandard(std::uint64_t size) {
    return (size / 4 + 1) * (std::uint64_t{128} << 10);
}

/// Decompresses a frame that must fill `target` exactly; false if it does not, is malformed, or without libzstd.
bool decompressZstandard(std::span<const unsigned char> frame, std::span<unsigned char> target);

}  // namespace moktexture
