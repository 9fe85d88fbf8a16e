// Legacy native files.
//
//   offset  bytes
//        0      4  headerSize   44 or 52
//        4      4  height       the height precedes the width
//        8      4  width
//       12      4  mipMapCount  levels below the first
//       16      4  flags        bits 0 to 7: number of the pixel format; bits 8 to 31: LegacyFlag
//       20      4  dataSize     written, not read; likewise the next six fields
//       24      4  bitCount     bits per pixel
//       28     16  red, green, blue and alpha mask
//       44      4  magic        "MOK!"
//       48      4  numSurfaces  layers times faces; 1 layer if the header ends at 44
//    44/52         pixel data
//
// The writer stores the texture's buffer as it is, ordered by level, layer and face. The reader expects one layer, ordered by
// face and level. Both orders are the same for textures of one layer that have one face or one level.

#include "formats/legacy/legacy_file.h"

#include <algorithm>
#include <optional>

#include "core/io/native_file.h"
#include "core/texture/TextureInternals.h"
#include "core/texture/subresources.h"
#include "formats/legacy/legacy_format_table.h"

namespace moktexture {
namespace {

struct LegacyHeader {
    std::uint32_t headerSize = legacyHeaderSize;
    std::uint32_t height = 0;
    std::uint32_t width = 0;
    std::uint32_t mipMapCount = 0;
    std::uint32_t flags = 0;
    std::uint32_t dataSize = 0;
    std::uint32_t bitCount = 0;
    std::uint32_t redMask = 0;
    std::uint32_t greenMask = 0;
    std::uint32_t blueMask = 0;
    std::uint32_t alphaMask = 0;
    // Only in the header of 52 bytes.
    std::uint32_t magic = 0x214B4F4D;
    std::uint32_t numSurfaces = 0;
};
static_assert(sizeof(LegacyHeader) == legacyHeaderSize);

enum LegacyFlag : std::uint32_t {
    legacyMIPLevels = 0x100,
    legacyBumpMap = 0x400,
    legacyCubeMap = 0x1000,
    legacyAlpha = 0x8000,
    legacyFlipped = 0x10000,
};

ELoadStatus readHeader(ByteReader& source, LegacyHeader& legacy) {
    source.seek(0);
    if (!source.readAll(&legacy.headerSize, sizeof(legacy.headerSize))) return truncatedStatus(source);
    if (!isLegacyFirstWord(legacy.headerSize)) return eLoadUnknown;
    source.seek(0);
    return source.readAll(&legacy, legacy.headerSize) ? eLoadOk : truncatedStatus(source);
}

std::uint32_t layersOf(const LegacyHeader& legacy, std::uint32_t numFaces) {
    if (legacy.headerSize < legacyHeaderSize) return 1;
    return std::max(legacy.numSurfaces / numFaces, std::uint32_t{1});
}

CMOKTextureHeader makeTextureHeader(const LegacyHeader& legacy) {
    const LegacyFormat format = formatOfLegacyNumber(static_cast<std::uint8_t>(legacy.flags));
    const std::uint32_t numFaces = (legacy.flags & legacyCubeMap) != 0 ? 6 : 1;
    CMOKTextureHeader header(format.format.id, legacy.height, legacy.width, 1, legacy.mipMapCount + 1, layersOf(legacy, numFaces),
                             numFaces, format.colourSpace, format.channelType, format.isPreMultiplied);
    if ((legacy.flags & legacyBumpMap) != 0) header.setBumpMap(1.0f, "xyz");
    if ((legacy.flags & legacyFlipped) != 0) header.setOrientation(eOrientUp);
    return header;
}

/// Whether the texture is too large for its file, which holds pixels of the first layer only; the other layers are zeroed.
bool expandsTooFar(const CMOKTextureHeader& header, const ByteReader& source, const LoadLimits& limits) {
    constexpr std::uint64_t alwaysAllowed = std::uint64_t{16} << 20;
    const std::uint64_t fileLength = source.position() + source.remaining();
    return header.getDataSize() > std::max(alwaysAllowed, limits.maxExpansion * fileLength);
}

/// Kept (legacy-read-order): pixels are read by face and, within a face, by level, and for the first layer only, though they are
/// written in the order of the buffer; the cube maps with several levels that older writers made are ordered by face.
ELoadStatus readPixels(ByteReader& source, CMOKTexture& texture) {
    bool isComplete = true;
    const SubresourceCounts counts = {.layers = 1, .faces = texture.getNumFaces(), .levels = texture.getNumMIPLevels()};
    forEachSubresource(texture, counts, [&](const Subresource& at) {
        const std::uint32_t size = texture.getDataSize(static_cast<int>(at.level), false, false);
        isComplete = source.readAll(texture.getDataPtr(at.level, 0, at.face), size) && isComplete;
    });
    return isComplete ? eLoadOk : truncatedStatus(source);
}

LegacyHeader makeLegacyHeader(const CMOKTextureHeader& header, std::uint8_t formatNumber) {
    LegacyHeader legacy;
    legacy.height = header.getHeight();
    legacy.width = header.getWidth();
    legacy.mipMapCount = header.getNumMIPLevels() - 1;
    legacy.flags = formatNumber;
    if (header.getNumMIPLevels() > 1) legacy.flags |= legacyMIPLevels;
    if (header.isBumpMap()) legacy.flags |= legacyBumpMap;
    if (header.getNumFaces() > 1) legacy.flags |= legacyCubeMap;
    if (header.getOrientation(eAxisY) == eOrientUp) legacy.flags |= legacyFlipped;
    const PixelType format = header.getPixelType();
    // Kept (legacy-alpha-flag): only these two formats get the alpha flag and mask, not layouts with an alpha channel; legacy
    // readers look at the mask to tell MOKTC with alpha from MOKTC without, which share one number.
    if (format == eFmtMOKTC2bppRGBA || format == eFmtMOKTC4bppRGBA) {
        legacy.flags |= legacyAlpha;
        legacy.alphaMask = 1;
    }
    legacy.dataSize = header.getDataSize();
    legacy.bitCount = header.getBitsPerPixel();
    legacy.numSurfaces = header.getNumArrayMembers() * header.getNumFaces();
    return legacy;
}

}  // namespace

ELoadStatus readLegacyFile(ByteReader& source, const ReadPolicy& policy, CMOKTexture& texture) {
    LegacyHeader legacy;
    ELoadStatus status = readHeader(source, legacy);
    if (status != eLoadOk) return status;
    CMOKTextureHeader header = makeTextureHeader(legacy);
    status = validatePixelData(header, source, header.getDataSize(CMOKTextureHeader::allLevels, false, true), policy);
    if (status != eLoadOk) return status;
    if (policy.isStrict() && expandsTooFar(header, source, policy.limits)) return eLoadTooLarge;
    texture.CMOKTextureHeader::Swap(header);
    TextureInternals::allocate(texture);
    return readPixels(source, texture);
}

bool writeLegacyFile(const CMOKTexture& texture, ELegacyApi api, ByteWriter& target) {
    if (texture.getDepth() > 1) return false;
    const LegacyFormat format = {texture.getPixelType(), texture.getChannelType(), texture.getColourSpace(),
                                 texture.isPreMultiplied()};
    const std::optional<std::uint8_t> number = legacyNumberOf(format, api);
    if (!number) return false;
    const LegacyHeader legacy = makeLegacyHeader(texture, *number);
    const bool headerWritten = target.write(&legacy, sizeof(legacy));
    return writePixelData(texture, target) && headerWritten;
}

}  // namespace moktexture
