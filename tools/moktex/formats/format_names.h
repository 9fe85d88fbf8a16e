#pragma once

#include <optional>
#include <span>
#include <string>

#include "moktex/formats/texture_format.h"

namespace moktextool {

/// The library's row for a compressed format. Null for an uncompressed layout and for numbers that are no format.
const moktexture::FormatInfo* findCompressed(moktexture::PixelType format);

/// The most common uncompressed formats by name. Others are accepted as well.
std::span<const char* const> commonLayouts();

/// Parses a name: that of a compressed format, or channel letters and bits, followed by a colon and the channel type where it is
/// not defaultChannelType(). Also names as other tools write them, such as "RGBA", "rgba16f", "BC1_UNORM" and "R8G8B8A8". A
/// Failure for anything else, and for layouts that cannot be converted.
TextureFormat parseFormat(const std::string& name);

/// The name of a format; the inverse of parseFormat(). Layouts that cannot be converted have their number as the name.
std::string nameOf(const TextureFormat& format);
std::string nameOf(EMOKTVariableType type);
std::string nameOf(EMOKTColourSpace colourSpace);

/// The channel type of a name without one: float for channels of 32 bits; else unsigned normalised, as wide as the channels if
/// those are equal, or as the word that they are packed in.
EMOKTVariableType defaultChannelType(moktexture::PixelType layout);

/// Why an uncompressed layout cannot be converted from or to; "" if it can.
std::string layoutProblem(const TextureFormat& format);

/// Throws a Failure if textures of this format cannot be decoded.
void requireDecodable(const TextureFormat& format, const std::string& file);

inline constexpr const char* qualityHelp = "0 to 5, or fastest, fast, medium, thorough, verythorough, exhaustive";

/// An encoder quality as the user gives it.
struct Quality {
    unsigned int step;  ///< 0 to 5
    bool isNamed;
};

/// Parses a number or a name of a quality. Throws a Failure for anything else.
Quality parseQuality(const std::string& text);

/// The quality to pass to a format's encoder: a number stays as it is, a name depends on the format, the default is 3.
moktexture::ECompressorQuality encoderQuality(const std::optional<Quality>& quality, moktexture::PixelType format);

}  // namespace moktextool
