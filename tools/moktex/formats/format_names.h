#pragma once

#include <span>
#include <string>

#include "moktex/formats/texture_form.h"

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

/// The form that a name stands for: a compressed format's name, or channel letters and bits, with the channel type behind a
/// colon where it is not usualType(). A Failure for anything else, and for layouts that cannot be converted.
TextureForm parseForm(const std::string& name);

/// The name of a form; the inverse of parseForm() for every form that parses. Unusable layouts show as their number.
std::string nameOf(const TextureForm& form);
std::string nameOf(EMOKTVariableType type);
std::string nameOf(EMOKTColourSpace colourSpace);

/// The channel type that goes without saying: float for channels of 32 bits; else by the width of equal channels, or, where
/// channels differ, by the width of the word that they are packed in.
EMOKTVariableType usualType(moktexture::PixelType layout);

/// Why an uncompressed layout cannot be converted from or to; "" if it can.
std::string layoutProblem(const TextureForm& form);

/// A Failure if the pixels of such a texture cannot be had.
void requireDecodable(const TextureForm& form, const std::string& file);

}  // namespace moktextool
