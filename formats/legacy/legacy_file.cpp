#include "formats/legacy/legacy_file.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "core/io/load_checks.h"
#include "core/texture/TextureInternals.h"
#include "formats/legacy/legacy_format_table.h"

namespace moktexture {
namespace {

struct LegacyRecord {
    std::uint32_t headerSize = 52;
    std::uint32_t height = 0;
    std::uint32_t width = 0;
    std::uint32_t mipMapCount = 0;  ///< levels below the first
    std::uint32_t flags = 0;        ///< the number of the format, in the lowest byte, and LegacyFlag
    std::uint32_t dataSize = 0;
    std::uint32_t bitCount = 0;
    std::uint32_t redMask = 0;
    std::uint32_t greenMask = 0;
    std::uint32_t blueMask = 0;
    std::uint32_t alphaMask = 0;
    // Only in the record of 52 bytes.
    std::uint32_t magic = 0x214B4F4D;  ///< "MOK!"
    std::uint32_t numSurfaces = 0;     ///< array members times faces
};
static_assert(sizeof(LegacyRecord) == 52);

enum LegacyFlag : std::uint32_t {
    legacyMIPLevels = 0x100,
    legacyBumpMap = 0x400,
    legacyCubeMap = 0x1000,
    legacyAlpha = 0x8000,
    legacyFlipped = 0x10000,
};

ELoadStatus readRecord(ByteReader& source, LegacyRecord& record) {
    source.seek(0);
    if (!source.readAll(&record.headerSize, sizeof(record.headerSize))) return endedEarly(source);
    if (!isLegacyFirstWord(record.headerSize)) return eLoadUnknown;
    source.seek(0);
    return source.readAll(&record, record.headerSize) ? eLoadOk : endedEarly(source);
}

std::uint32_t numMembersOf(const LegacyRecord& record, std::uint32_t numFaces) {
    if (record.headerSize < sizeof(record)) return 1;
    return std::max(record.numSurfaces / numFaces, std::uint32_t{1});
}

CMOKTextureHeader headerOf(const LegacyRecord& record) {
    const LegacyFormat format = formatOfLegacyNumber(static_cast<std::uint8_t>(record.flags));
    const std::uint32_t numFaces = (record.flags & legacyCubeMap) != 0 ? 6 : 1;
    CMOKTextureHeader header(format.format.id, record.height, record.width, 1, record.mipMapCount + 1,
                             numMembersOf(record, numFaces), numFaces, format.colourSpace, format.channelType,
                             format.isPreMultiplied);
    if ((record.flags & legacyBumpMap) != 0) header.setBumpMap(1.0f, "xyz");
    if ((record.flags & legacyFlipped) != 0) header.setOrientation(eOrientUp);
    return header;
}

/// Kept: pixels are read face by face and, within, level by level, and only for the first member, though they are written in the
/// order of the buffer: files of both orders exist.
ELoadStatus readPixels(ByteReader& source, CMOKTexture& texture) {
    bool isWhole = true;
    for (std::uint32_t face = 0; face < texture.getNumFaces(); ++face) {
        for (std::uint32_t level = 0; level < texture.getNumMIPLevels(); ++level) {
            const std::uint32_t size = texture.getDataSize(static_cast<int>(level), false, false);
            isWhole = source.readAll(texture.getDataPtr(level, 0, face), size) && isWhole;
        }
    }
    return isWhole ? eLoadOk : endedEarly(source);
}

LegacyRecord recordOf(const CMOKTextureHeader& header, std::uint8_t number) {
    LegacyRecord record;
    record.height = header.getHeight();
    record.width = header.getWidth();
    record.mipMapCount = header.getNumMIPLevels() - 1;
    record.flags = number;
    if (header.getNumMIPLevels() > 1) record.flags |= legacyMIPLevels;
    if (header.isBumpMap()) record.flags |= legacyBumpMap;
    if (header.getNumFaces() > 1) record.flags |= legacyCubeMap;
    if (header.getOrientation(eAxisY) == eOrientUp) record.flags |= legacyFlipped;
    const PixelType format = header.getPixelType();
    // Kept: only these two formats are marked as having alpha; readers of old have looked for it there.
    if (format == eFmtMOKTC2bppRGBA || format == eFmtMOKTC4bppRGBA) {
        record.flags |= legacyAlpha;
        record.alphaMask = 1;
    }
    record.dataSize = header.getDataSize();
    record.bitCount = header.getBitsPerPixel();
    record.numSurfaces = header.getNumArrayMembers() * header.getNumFaces();
    return record;
}

}  // namespace

ELoadStatus readLegacyFile(ByteReader& source, const LoadLimits* limits, CMOKTexture& texture) {
    LegacyRecord record;
    ELoadStatus status = readRecord(source, record);
    if (status != eLoadOk) return status;
    CMOKTextureHeader header = headerOf(record);
    status = validateSizes(header, source, header.getDataSize(CMOKTextureHeader::allLevels, false, true), limits);
    if (status != eLoadOk) return status;
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
    const LegacyRecord record = recordOf(texture, *number);
    const bool recordWritten = target.write(&record, sizeof(record));
    const unsigned char* const pixels = TextureInternals::data(texture);
    const std::size_t size = static_cast<std::size_t>(TextureInternals::dataSize(texture));
    // Kept: a buffer of 0 bytes counts as not written, as in native files: callers see that nothing was saved.
    return pixels != nullptr && size != 0 && target.write(pixels, size) && recordWritten;
}

}  // namespace moktexture
