#pragma once

#include <cstdint>

/// The 52-byte header record, the same in memory and at the start of a native file: little-endian, without padding.
#pragma pack(push, 4)
struct MOKTextureHeaderV3 {
    /// The bytes "MOK\x03": the first word of a native file and the FourCC of the library's own metadata.
    static constexpr std::uint32_t magic = 0x034B4F4D;
    /// Bits of `flags`: a mark for the application's own use, since no file is compressed; and colours premultiplied by alpha.
    static constexpr std::uint32_t fileCompressedFlag = 1;
    static constexpr std::uint32_t premultipliedFlag = 2;

    std::uint32_t version = magic;      ///< the magic; files with another version are not loaded
    std::uint32_t flags = 0;            ///< fileCompressedFlag and premultipliedFlag
    std::uint64_t pixelFormat = 29;     ///< id of a PixelType; 29 is eFmtUnknown
    std::uint32_t colourSpace = 0;      ///< EMOKTColourSpace
    std::uint32_t channelType = 0;      ///< EMOKTVariableType
    std::uint32_t height = 1;           ///< of level 0, in pixels
    std::uint32_t width = 1;            ///< of level 0, in pixels
    std::uint32_t depth = 1;            ///< of level 0, in pixels
    std::uint32_t numArrayMembers = 1;  ///< layers of a texture array
    std::uint32_t numFaces = 1;         ///< 1, or 6 for a cube map
    std::uint32_t numMIPLevels = 1;     ///< level 0 included
    std::uint32_t metaDataSize = 0;     ///< bytes of metadata that follow the record in a file
};
#pragma pack(pop)

static_assert(sizeof(MOKTextureHeaderV3) == 52);
