#pragma once

#include <cstdint>
#include <string>

#include "moktex/files/texture_file.h"
#include "moktex/formats/Image.h"
#include "moktex/operations/row_bands.h"

namespace moktextool {

struct Console;

/// Whose pixels are worked on, and where notes about them go.
struct Workplace {
    const std::string& name;
    Console& console;
    std::uint64_t bandPixels = defaultBandPixels;  ///< changes no byte of any result
};

/// The parameters of a conversion.
struct FormatChange {
    TextureFormat target;
    EMOKTColourSpace colourSpace;  ///< if the texture's differs, the curve is applied
    moktexture::ECompressorQuality quality = moktexture::eCompressorQuality3;
    bool dither = false;
};

/// The images of a texture in a format that can be decoded: a compressed one becomes RGBA8, others stay. The colour space stays,
/// and no curve is applied. Levels that are not multiples of the block and all slices of a volume are decoded, which Transcode()
/// alone does not do.
ImageSet decodeTexture(const moktexture::CMOKTexture& texture, const Workplace& place);

/// The images of an input, whose pixels are released.
ImageSet takeImages(TextureInput& input, const Workplace& place);

/// The image at that position alone, of a volume its first slice, as a texture of one level.
ImageSet takeImage(ImageSet images, std::uint32_t level, std::uint32_t layer, std::uint32_t face);

/// Converts images to an uncompressed format and a colour space. Values outside the target's range are clamped, with a note,
/// where Transcode() would wrap them. Images that have both already stay bit for bit.
void convertImages(ImageSet& images, const FormatChange& change, const Workplace& place);

/// The same to a texture in any format. The bytes are those that Transcode() gives for the whole texture; where a side above the
/// format's smallest is no multiple of its block, the last blocks are padded by repeating the edge. A texture must be able to
/// hold the result.
moktexture::CMOKTexture encodeImages(ImageSet images, const FormatChange& change, const Workplace& place);

/// Whether a format is encoded from whole levels: blocks of MOKTC depend on their neighbours, and dithering, which happens
/// below 32 bits a pixel, passes errors on.
bool needsWholeLevels(const TextureFormat& target, bool dither);

}  // namespace moktextool
