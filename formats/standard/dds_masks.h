#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "PixelType.h"
#include "texture_enums.h"

/// @file
/// Uncompressed layouts as DDS headers describe them: a bit count and a mask for each channel.

namespace moktexture {

/// Which channels the masks describe.
enum class MaskKind {
    rgb,
    luminance,
    alpha,
    signedRGB,      ///< bump maps: u, v, w, q
    bumpLuminance,  ///< bump maps: u, v signed, and luminance
};

/// A pixel of `bitCount` bits, little-endian; masks of red (or luminance), green, blue and alpha, 0 where there is no channel.
struct PixelMasks {
    MaskKind kind;
    std::uint32_t bitCount;
    std::array<std::uint32_t, 4> masks;
    bool operator==(const PixelMasks&) const = default;
};

struct UncompressedLayout {
    PixelType pixelFormat;
    EMOKTVariableType channelType;
};

/// The layout that has the masks; bits that no mask covers become a channel `x`. Nothing if masks overlap or have holes, or if
/// there are more than four channels.
std::optional<UncompressedLayout> layoutFromMasks(const PixelMasks& masks);

/// The masks of a layout, such that layoutFromMasks() gives one with the same bits; nothing if there are none.
std::optional<PixelMasks> masksFromLayout(const UncompressedLayout& layout);

}  // namespace moktexture
