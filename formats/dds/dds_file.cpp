#include "formats/dds/dds_file.h"

#include <algorithm>
#include <cstddef>

#include "core/io/load_checks.h"
#include "core/texture/TextureInternals.h"
#include "core/texture/data_size.h"
#include "formats/dds/dds_pixel_format.h"

namespace moktexture {
namespace {

enum DDSHeadFlag : std::uint32_t {
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

constexpr std::uint32_t sizeInHead = 124;

struct DDSHead {
    std::uint32_t magic = ddsFirstWord;
    std::uint32_t size = sizeInHead;
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
static_assert(sizeof(DDSHead) == 128);

/// Reads the head; what a short source does not have stays as it is in a sound one.
ELoadStatus readHead(ByteReader& source, DDSHead& head) {
    const bool isWhole = source.readAll(&head, sizeof(head));
    if (head.magic != ddsFirstWord) return eLoadUnknown;
    if (!isWhole) return endedEarly(source);
    // Kept: one of the four flags is enough; files with fewer than all four have loaded.
    return head.size == sizeInHead && (head.flags & ddsRequiredFlags) != 0 ? eLoadOk : eLoadCorrupt;
}

/// Gives the header the format that the head asks for; false if the head is refused for it.
bool takeFormat(const DDSPixelFormat& format, CMOKTextureHeader& header) {
    const DDSFormatDecision decision = decideFormat(format);
    switch (decision.action) {
        case DDSFormatDecision::Action::refuse:
            return false;
        case DDSFormatDecision::Action::insist:
            return header.setD3DFormat(decision.number);
        case DDSFormatDecision::Action::set:
            header.setD3DFormat(decision.number);
            return true;
        case DDSFormatDecision::Action::keep:
            return true;
    }
    return false;
}

/// What the head says of the texture.
ELoadStatus takeHead(const DDSHead& head, CMOKTextureHeader& header) {
    // Kept: the count is taken whatever the flags say of it, and 0 stays 0: such files have had no pixels here.
    header.setNumMIPLevels(head.mipMapCount);
    header.setNumFaces((head.caps2 & DDSCAPS2_CUBEMAP) != 0 ? 6 : 1);
    if (!takeFormat(head.pixelFormat, header)) return eLoadUnsupported;
    header.setWidth(head.width);
    header.setHeight(head.height);
    // Kept: the depth is taken whatever the flags say of it.
    header.setDepth(std::max(head.depth, std::uint32_t{1}));
    // Kept: a file that tells its pitch is refused, even if it is that of rows without padding.
    return (head.flags & DDSD_PITCH) != 0 ? eLoadUnsupported : eLoadOk;
}

/// Calls `piece(address, size)` for every face of every level in the order of a DDS file.
template <typename Piece>
void forEachPiece(const CMOKTexture& texture, Piece piece) {
    for (std::uint32_t member = 0; member < texture.getNumArrayMembers(); ++member)
        for (std::uint32_t face = 0; face < texture.getNumFaces(); ++face)
            for (std::uint32_t level = 0; level < texture.getNumMIPLevels(); ++level)
                piece(texture.getDataPtr(level, member, face), texture.getDataSize(static_cast<int>(level), false, false));
}

DDSHead headOf(const CMOKTextureHeader& header) {
    const bool hasLevels = header.getNumMIPLevels() > 1;
    const bool hasFaces = header.getNumFaces() > 1;
    DDSHead head;
    if (hasLevels) head.flags |= DDSD_MIPMAPCOUNT;
    head.height = header.getHeight();
    head.width = header.getWidth();
    // Kept: depth and array members are not told, though all slices and members are written: readers take the first.
    head.depth = 0;
    head.mipMapCount = header.getNumMIPLevels();
    if (hasLevels) head.caps |= DDSCAPS_MIPMAP | DDSCAPS_COMPLEX;
    if (hasFaces && header.getNumMIPLevels() == 1) head.caps |= DDSCAPS_COMPLEX;
    if (hasFaces) head.caps2 = ddsCubeMapWithAllFaces;
    return head;
}

/// Whether a count is 0, however large the others are.
bool hasNoPieces(const CMOKTexture& texture) {
    return sizesFit32Bits(texture) && texture.getDataSize() == 0;
}

}  // namespace

ELoadStatus readDDSFile(ByteReader& source, const LoadLimits* limits, CMOKTexture& texture) {
    DDSHead head;
    ELoadStatus status = readHead(source, head);
    if (status == eLoadOk) status = takeHead(head, texture);
    if (status == eLoadOk) status = validateSizes(texture, source, texture.getDataSize(), limits);
    if (status != eLoadOk) return status;
    TextureInternals::allocate(texture);
    bool isWhole = true;
    forEachPiece(texture, [&](void* piece, std::uint32_t size) {
        // Kept: a piece of 0 bytes counts as missing: loading refuses a file whose format is unknown.
        isWhole = size != 0 && source.readAll(piece, size) && isWhole;
    });
    return isWhole ? eLoadOk : endedEarly(source);
}

bool writeDDSFile(const CMOKTexture& texture, ByteWriter& target) {
    DDSHead head = headOf(texture);
    if (!describeNumber(texture.getD3DFormat(), head.pixelFormat)) return false;
    if (!hasNoPieces(texture) && !TextureInternals::hasValidPixelData(texture)) return false;
    if (!target.write(&head, sizeof(head))) return false;
    if (hasNoPieces(texture)) return true;
    std::uint64_t written = 0;
    forEachPiece(texture, [&](const void* piece, std::uint32_t size) {
        if (target.write(piece, size)) written += size;
    });
    return written == texture.getDataSize();
}

}  // namespace moktexture
