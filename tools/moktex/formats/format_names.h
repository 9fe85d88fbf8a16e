#pragma once

#include <optional>
#include <span>
#include <string>

#include "moktex/formats/texture_format.h"

namespace moktextool {

struct CompressedFormat {
    moktexture::CompressedFormatId id;
    const char* name;
    const char* otherName;  ///< null if there is none
    unsigned int blockWidth, blockHeight;
    bool hasDecoder, hasEncoder;
};
std::span<const CompressedFormat> compressedFormats();
/// Null for an uncompressed layout and for numbers without a name.
const CompressedFormat* findCompressed(moktexture::PixelType format);
/// Whether a format is of MOKTC's first generation, which has a rule of its own for sizes.
bool isFirstMOKTC(moktexture::PixelType format);

/// The format that a name stands for: a compressed format's name, or channel letters and bits, with the channel type behind a
/// colon where it is not defaultChannelType(). A Failure for anything else, and for layouts that cannot be converted.
TextureFormat parseFormat(const std::string& name);

/// The name of a format; the inverse of parseFormat() for every format that parses. Unusable layouts show as their number.
std::string nameOf(const TextureFormat& format);
std::string nameOf(EMOKTVariableType type);
std::string nameOf(EMOKTColourSpace colourSpace);

/// The channel type that goes without saying: float for channels of 32 bits; else by the width of equal channels, or, where
/// channels differ, by the width of the word that they are packed in.
EMOKTVariableType defaultChannelType(moktexture::PixelType layout);

/// Why an uncompressed layout cannot be converted from or to; "" if it can.
std::string layoutProblem(const TextureFormat& format);

/// A Failure if the pixels of such a texture cannot be had.
void requireDecodable(const TextureFormat& format, const std::string& file);

inline constexpr const char* qualityHelp = "0 to 5, or fastest, fast, medium, thorough, verythorough, exhaustive";

/// An encoder effort as the user asks for it.
struct Quality {
    unsigned int step;  ///< 0 to 5
    bool isNamed;
};

/// The effort that a number or a name stands for. A Failure for anything else.
Quality parseQuality(const std::string& text);

/// The effort that a format's encoder is told: numbers pass as they are, names and no wish are settled by format.
moktexture::ECompressorQuality encoderQuality(const std::optional<Quality>& quality, moktexture::PixelType format);

}  // namespace moktextool
