// Saving with a status: what each container can hold, and which function writes it.

#include <array>

#include "core/io/byte_stream.h"
#include "core/texture/TextureInternals.h"
#include "core/texture/subresources.h"
#include "formats/dds/dds_file.h"
#include "formats/file_layout.h"
#include "formats/ktx/ktx_file.h"
#include "formats/legacy/legacy_format_table.h"
#include "formats/standard/dds_standard_file.h"
#include "formats/standard/key_values.h"
#include "formats/standard/ktx1_standard_file.h"
#include "formats/standard/ktx2_file.h"
#include "formats/standard/published_format.h"
#include "formats/standard/stored_texture.h"
#include "texture_io.h"

namespace moktexture {
namespace {

using HeaderTest = bool (*)(const CMOKTextureHeader&);

/// What a container cannot hold. Properties are reset one after the other until the container fits; the last one is the answer.
ESaveStatus findObstacle(const CMOKTextureHeader& header, HeaderTest fits) {
    CMOKTextureHeader reduced = header;
    if (fits(reduced)) return eSaveOk;
    reduced.setIsPreMultiplied(false);
    if (fits(reduced)) return eSaveNoPremultiplied;
    reduced.setColourSpace(eColourSpaceLinear);
    if (fits(reduced)) return eSaveNoColourSpace;
    reduced.setNumArrayMembers(1);
    reduced.setNumFaces(1);
    reduced.setDepth(1);
    if (fits(reduced)) return eSaveNoShape;
    return eSaveNoFormat;
}

bool readsBackFromOwnKTX(const CMOKTextureHeader& header) {
    CMOKTextureHeader readBack;
    return readBackKTXHeader(header, readBack) && describeSameImage(header, readBack);
}

bool readsBackFromOwnDDS(const CMOKTextureHeader& header) {
    CMOKTextureHeader readBack;
    return readBackDDSHeader(header, readBack) && describeSameImage(header, readBack);
}

/// Whether getDataSize() is the number of bytes that published containers store.
bool countsAsStored(const CMOKTextureHeader& header) {
    return header.getDataSize() != 0 && StoredLayout(header).totalBytes() == header.getDataSize();
}

/// Native files count bytes as getDataSize() does.
bool fitsNative(const CMOKTextureHeader& header) {
    return header.getDataSize() != 0 && (storedBlock(header.getPixelType()).bytes == 0 || countsAsStored(header));
}

HeaderTest testOf(ETextureContainer container, EContainerLayout layout) {
    const bool isOwn = layout == eLayoutOwn;
    switch (container) {
        case eContainerKTX:
            return isOwn ? readsBackFromOwnKTX : fitsStandardKTX1;
        case eContainerKTX2:
            return fitsKTX2;
        case eContainerDDS:
            return isOwn ? readsBackFromOwnDDS : fitsStandardDDS;
        default:
            return fitsNative;
    }
}

bool write(const CMOKTexture& texture, ETextureContainer container, EContainerLayout layout, ByteWriter& target) {
    const bool isOwn = layout == eLayoutOwn;
    switch (container) {
        case eContainerMOK:
            return writeTextureFile(texture, FileLayout::mok, nullptr, target);
        case eContainerKTX:
            return isOwn ? writeKTXFile(texture, target) : writeStandardKTX1(texture, target);
        case eContainerKTX2:
            return writeKTX2(texture, target);
        case eContainerDDS:
            return isOwn ? writeDDSFile(texture, target) : writeStandardDDS(texture, target);
        case eContainerCSource:
            return writeTextureFile(texture, FileLayout::cHeader, "texture", target);
    }
    return false;
}

}  // namespace

const char* describe(ESaveStatus status) {
    static constexpr std::array<const char*, 8> sentences = {
        "The texture can be saved.",
        "The texture has no pixels.",
        "The container has no number for the pixel format and channel type.",
        "The container cannot hold the pixel format in this colour space.",
        "The container cannot mark the colours as premultiplied by alpha.",
        "The container cannot hold so many layers, faces or slices.",
        "Writing failed.",
        "The texture is too large: its size does not fit in 32 bits.",
    };
    return status < sentences.size() ? sentences[status] : "The status is unknown.";
}

ESaveStatus CheckContainer(const CMOKTextureHeader& header, ETextureContainer container, EContainerLayout layout) {
    if (!sizesFit32Bits(header)) return eSaveTooLarge;
    return findObstacle(header, testOf(container, layout));
}

ESaveStatus CheckLegacyFile(const CMOKTextureHeader& header, ELegacyApi api) {
    const LegacyFormat wanted = {header.getPixelType(), header.getChannelType(), header.getColourSpace(),
                                 header.isPreMultiplied()};
    const std::optional<std::uint8_t> number = legacyNumberOf(wanted, api);
    if (!sizesFit32Bits(header)) return eSaveTooLarge;
    if (header.getDataSize() == 0) return eSaveNoPixels;
    if (!number) return eSaveNoFormat;
    const LegacyFormat read = formatOfLegacyNumber(*number);
    if (!haveSameBits(read.format, read.channelType, wanted.format, wanted.channelType)) return eSaveNoFormat;
    // Readers take faces before levels, writers levels before faces.
    const bool hasFaces = header.getNumFaces() != 1;
    if (header.getDepth() > 1 || header.getNumArrayMembers() > 1 || (hasFaces && header.getNumFaces() != 6) ||
        (hasFaces && header.getNumMIPLevels() > 1))
        return eSaveNoShape;
    if (read.isPreMultiplied != wanted.isPreMultiplied) return eSaveNoPremultiplied;
    return read.colourSpace != wanted.colourSpace ? eSaveNoColourSpace : eSaveOk;
}

ESaveStatus SaveTexture(const CMOKTexture& texture, ETextureContainer container, std::vector<unsigned char>& image,
                        EContainerLayout layout) {
    if (!TextureInternals::hasValidPixelData(texture) && !hasStoredData(texture)) return eSaveNoPixels;
    const ESaveStatus status = CheckContainer(texture, container, layout);
    if (status != eSaveOk) return status;
    std::vector<unsigned char> written;
    written.reserve(static_cast<std::size_t>(sizeof(MOKTextureHeaderV3) + TextureInternals::dataSize(texture)));
    MemoryWriter target(written);
    if (!write(texture, container, layout, target)) return eSaveNotWritten;
    image.swap(written);
    return eSaveOk;
}

const unsigned char* GetStoredData(const CMOKTexture& texture, unsigned int level, unsigned int layer, unsigned int face,
                                   std::size_t& size) {
    size = 0;
    if (level >= texture.getNumMIPLevels() || layer >= texture.getNumArrayMembers() || face >= texture.getNumFaces() ||
        !hasStoredData(texture))
        return nullptr;
    size = static_cast<std::size_t>(StoredLayout(texture).subresourceBytes(level));
    return storedSubresource(texture, level, layer, face);
}

}  // namespace moktexture
