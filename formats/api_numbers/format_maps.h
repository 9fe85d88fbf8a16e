#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "PixelType.h"
#include "texture_enums.h"

/// @file
/// The maps between pixel formats and the numbers of OpenGL, OpenGL ES, Direct3D 9 and DXGI. Each map is one table for both
/// directions; a row for one direction is a format that does not round-trip.

namespace moktexture {

/// Who uses a row of a map: the getter, from pixel format to number; the setter, from number to pixel format; both; or none.
enum class MapDirection : std::uint8_t { getAndSet, getOnly, setOnly, none };

constexpr bool isForGetter(MapDirection direction) {
    return direction == MapDirection::getAndSet || direction == MapDirection::getOnly;
}

constexpr bool isForSetter(MapDirection direction) {
    return direction == MapDirection::getAndSet || direction == MapDirection::setOnly;
}

/// An uncompressed layout from its letters and the bits of each: `layout("rgb", 5, 6, 5)`.
template <std::size_t count, typename... Bits>
requires(sizeof...(Bits) + 1 == count && sizeof...(Bits) <= 4) consteval PixelType
    layout(const char (&letters)[count], Bits... bits) {
    std::uint8_t names[4] = {};
    for (std::size_t i = 0; i + 1 < count; ++i)
        names[i] = static_cast<std::uint8_t>(letters[i]);
    const std::uint8_t rates[4] = {static_cast<std::uint8_t>(bits)...};
    return {names[0], names[1], names[2], names[3], rates[0], rates[1], rates[2], rates[3]};
}

// --- OpenGL and OpenGL ES

enum class OpenGLApi { openGL, openGLES };

/// The three numbers by which OpenGL names a format. A compressed format has a `format` and `type` of 0.
struct OpenGLNumbers {
    std::uint32_t internalFormat;
    std::uint32_t format;
    std::uint32_t type;
};

/// A pixel format and its channel type.
struct OpenGLPixels {
    PixelType pixelFormat;
    EMOKTVariableType channelType;
};

/// Getter: the numbers of a pixel format, if it has any. The channel type is compared for layouts only.
std::optional<OpenGLNumbers> findOpenGLNumbers(OpenGLApi api, PixelType pixelFormat, EMOKTVariableType channelType);

/// Setter: the compressed format of an internal format, if it is one.
std::optional<OpenGLPixels> findOpenGLCompressed(OpenGLApi api, std::uint32_t internalFormat);

/// Setter: the layout of a base format and a type, if they are those of one.
std::optional<OpenGLPixels> findOpenGLLayout(OpenGLApi api, std::uint32_t baseFormat, std::uint32_t type);

// --- Direct3D 9

struct D3DRow {
    std::uint32_t number;  ///< a D3DFORMAT, which may be a FourCC
    PixelType pixelFormat;
    EMOKTVariableType channelType;  ///< the getter compares it for layouts only
    MapDirection direction;
    bool isPremultiplied = false;  ///< the setter marks the texture as premultiplied; the getter ignores it
};

/// Getter: the number of a pixel format; 0 if it has none.
std::uint32_t findD3DNumber(PixelType pixelFormat, EMOKTVariableType channelType);

/// Setter: the row of a number, or null.
const D3DRow* findD3DFormat(std::uint32_t number);

// --- DXGI

struct DXGIRow {
    std::uint32_t number;  ///< a DXGI_FORMAT
    PixelType pixelFormat;
    EMOKTVariableType channelType;
    EMOKTColourSpace colourSpace;  ///< the getter compares it where two rows differ in nothing else
    MapDirection direction;
    bool takesAnyChannelType = false;  ///< the getter does not compare the channel type
};

/// Getter: the number of a pixel format; 0 if it has none. Every colour space but sRGB counts as linear.
std::uint32_t findDXGINumber(PixelType pixelFormat, EMOKTVariableType channelType, EMOKTColourSpace colourSpace);

/// Setter: the row of a number, or null.
const DXGIRow* findDXGIFormat(std::uint32_t number);

}  // namespace moktexture
