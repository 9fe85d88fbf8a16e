// DDS files with the classic header, without the extension "DX10".
//
//   offset  bytes
//        0      4  magic              "DDS "
//        4      4  size               124: the header without the magic
//        8      4  flags              DDSD_...
//       12      4  height
//       16      4  width
//       20      4  pitchOrLinearSize  written as 0
//       24      4  depth              written as 0
//       28      4  mipMapCount
//       32     44  reserved
//       76     32  pixelFormat        DDSPixelFormat: size, flags, FourCC, bits, four masks
//      108      4  caps               DDSCAPS_...
//      112      4  caps2              cube map and its faces
//      116     12  reserved
//      128         pixel data
//
// The order of the pixel data differs from that of a texture's buffer: layer, face, then MIP level.

#include "formats/dds/dds_file.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "core/texture/TextureInternals.h"
#include "core/texture/subresources.h"
#include "formats/dds/dds_pixel_format.h"

namespace moktexture {
namespace {

enum DDSHeaderFlag : std::uint32_t {
    DDSD_PITCH = 0x8,
    DDSD_MIPMAPCOUNT = 0x20000,
    ddsRequiredFlags = 0x1007,  ///< DDSD_CAPS, DDSD_HEIGHT, DDSD_WIDTH and DDSD_PIXELFORMAT
};

enum DDSCapability : std::uint32_t {
    DDSCAPS_COMPLEX = 0x8,
    DDSCAPS_TEXTURE = 0x1000,
    DDSCAPS_MIPMAP = 0x400000,
};

enum DDSCapability2 : std::uint32_t {
    DDSCAPS2_CUBEMAP = 0x200,
    ddsCubeMapWithAllFaces = 0xFE00,
};

constexpr std::uint32_t headerSize = 124;

struct DDSHeader {
    std::uint32_t magic = ddsFirstWord;
    std::uint32_t size = headerSize;
    std::uint32_t flags = ddsRequiredFlags;
    std::uint32_t height = 0;
    std::uint32_t width = 0;
    std::uint32_t pitchOrLinearSize = 0;
    std::uint32_t depth = 0;
    std::uint32_t mipMapCount = 0;
    std::uint32_t reserved[11] = {};
    DDSPixelFormat pixelFormat;
    std::uint32_t caps = DDSCAPS_TEXTURE;
    std::uint32_t caps2 = 0;
    std::uint32_t reserved2[3] = {};
};
static_assert(sizeof(DDSHeader) == 128);

ELoadStatus readHeader(ByteReader& source, DDSHeader& dds) {
    const bool isComplete = source.readAll(&dds, sizeof(dds));
    if (dds.magic != ddsFirstWord) return eLoadUnknown;
    if (!isComplete) return truncatedStatus(source);
    // Kept (dds-one-required-flag): one of the four required flags is enough; files of writers that set fewer still load.
    return dds.size == headerSize && (dds.flags & ddsRequiredFlags) != 0 ? eLoadOk : eLoadCorrupt;
}

/// Sets the texture format that a DDS pixel format names; false if the file is to be refused.
bool applyFormat(const DDSPixelFormat& format, CMOKTextureHeader& header) {
    const DDSFormatDecision decision = decideFormat(format);
    switch (decision.action) {
        case DDSFormatDecision::Action::refuse:
            return false;
        case DDSFormatDecision::Action::setOrRefuse:
            return header.setD3DFormat(decision.number);
        case DDSFormatDecision::Action::set:
            header.setD3DFormat(decision.number);
            return true;
        case DDSFormatDecision::Action::keep:
            return true;
    }
    return false;
}

ELoadStatus applyHeader(const DDSHeader& dds, CMOKTextureHeader& header) {
    // Kept (dds-level-count-without-flag): the count is used whether or not DDSD_MIPMAPCOUNT is set, and a 0 stays 0, so that the
    // file has no pixels; hosts that test for data reject it instead of getting one level of a chain of unknown length.
    header.setNumMIPLevels(dds.mipMapCount);
    header.setNumFaces((dds.caps2 & DDSCAPS2_CUBEMAP) != 0 ? 6 : 1);
    if (!applyFormat(dds.pixelFormat, header)) return eLoadUnsupported;
    header.setWidth(dds.width);
    header.setHeight(dds.height);
    // Kept (dds-depth-without-flag): the depth is used whether or not a flag declares it; volume files of writers that set the
    // field alone load with all their slices.
    header.setDepth(std::max(dds.depth, std::uint32_t{1}));
    // Kept (dds-pitch-refused): a file with DDSD_PITCH is refused, even if the pitch is that of unpadded rows; the constructor
    // leaves its buffer null, and hosts read such files with another library.
    return (dds.flags & DDSD_PITCH) != 0 ? eLoadUnsupported : eLoadOk;
}

DDSHeader makeDDSHeader(const CMOKTextureHeader& header) {
    const bool hasLevels = header.getNumMIPLevels() > 1;
    const bool hasFaces = header.getNumFaces() > 1;
    DDSHeader dds;
    if (hasLevels) dds.flags |= DDSD_MIPMAPCOUNT;
    dds.height = header.getHeight();
    dds.width = header.getWidth();
    // Kept (dds-depth-and-layers-undeclared): all slices and layers are written and none is declared; readers, including this
    // one, take the first and ignore the bytes after it.
    dds.depth = 0;
    dds.mipMapCount = header.getNumMIPLevels();
    if (hasLevels) dds.caps |= DDSCAPS_MIPMAP | DDSCAPS_COMPLEX;
    if (hasFaces && header.getNumMIPLevels() == 1) dds.caps |= DDSCAPS_COMPLEX;
    if (hasFaces) dds.caps2 = ddsCubeMapWithAllFaces;
    return dds;
}

/// Whether a count is 0, however large the others are.
bool hasNoSubresources(const CMOKTexture& texture) {
    return sizesFit32Bits(texture) && texture.getDataSize() == 0;
}

}  // namespace

ELoadStatus readDDSFile(ByteReader& source, const ReadPolicy& policy, CMOKTexture& texture) {
    DDSHeader dds;
    ELoadStatus status = readHeader(source, dds);
    if (status == eLoadOk) status = applyHeader(dds, texture);
    if (status == eLoadOk) status = validatePixelData(texture, source, texture.getDataSize(), policy);
    if (status != eLoadOk) return status;
    TextureInternals::allocate(texture);
    bool isComplete = true;
    forEachSubresource(texture, [&](const Subresource& at) {
        const std::uint32_t size = texture.getDataSize(static_cast<int>(at.level), false, false);
        // Kept (dds-empty-read-fails): a read of 0 bytes counts as failed, so that privateLoadDDSFile() returns false for a file
        // of unknown format although nothing is missing from it.
        isComplete = size != 0 && source.readAll(texture.getDataPtr(at.level, at.layer, at.face), size) && isComplete;
    });
    return isComplete ? eLoadOk : truncatedStatus(source);
}

bool writeDDSFile(const CMOKTexture& texture, ByteWriter& target) {
    DDSHeader dds = makeDDSHeader(texture);
    if (!makePixelFormat(texture.getD3DFormat(), dds.pixelFormat)) return false;
    if (!hasNoSubresources(texture) && !TextureInternals::hasValidPixelData(texture)) return false;
    if (!target.write(&dds, sizeof(dds))) return false;
    if (hasNoSubresources(texture)) return true;
    std::uint64_t written = 0;
    forEachSubresource(texture, [&](const Subresource& at) {
        const std::uint32_t size = texture.getDataSize(static_cast<int>(at.level), false, false);
        if (target.write(texture.getDataPtr(at.level, at.layer, at.face), size)) written += size;
    });
    return written == texture.getDataSize();
}

bool readBackDDSHeader(const CMOKTextureHeader& header, CMOKTextureHeader& readBack) {
    DDSHeader dds = makeDDSHeader(header);
    return makePixelFormat(header.getD3DFormat(), dds.pixelFormat) && applyHeader(dds, readBack) == eLoadOk;
}

bool isOwnDDS(ByteReader& source) {
    DDSHeader file;
    CMOKTextureHeader header;
    bool isOwn = readHeader(source, file) == eLoadOk && applyHeader(file, header) == eLoadOk && sizesFit32Bits(header);
    if (isOwn) {
        DDSHeader own = makeDDSHeader(header);
        const std::uint32_t layerSize = header.getDataSize();
        isOwn = makePixelFormat(header.getD3DFormat(), own.pixelFormat) && std::memcmp(&own, &file, sizeof(own)) == 0 &&
                layerSize != 0 && source.remaining() != 0 && source.remaining() % layerSize == 0;
    }
    source.seek(0);
    return isOwn;
}

}  // namespace moktexture
