#pragma once

#include <cstdint>

namespace moktexture::moktc {

/// The fast form of DecodeTwiddled() and of DecodeLinear(), by generation, with the same arguments and the same pixels. Takes no
/// memory.
void decodeCells(const std::uint8_t* blocks, bool is2bpp, bool secondGeneration, std::uint32_t width, std::uint32_t height,
                 std::uint8_t* pixels);

}  // namespace moktexture::moktc
