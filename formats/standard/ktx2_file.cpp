#include "formats/standard/ktx2_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <numeric>
#include <span>
#include <vector>

#include "core/io/read_policy.h"
#include "core/texture/subresources.h"
#include "formats/standard/data_format_descriptor.h"
#include "formats/standard/key_values.h"
#include "formats/standard/published_format.h"
#include "formats/standard/stored_texture.h"
#include "formats/standard/zstandard.h"

namespace moktexture {
namespace {

constexpr std::array<unsigned char, 12> ktx2Identifier = {0xAB, 'K', 'T', 'X', ' ', '2', '0', 0xBB, '\r', '\n', 0x1A, '\n'};

struct KTX2Header {
    std::array<unsigned char, 12> identifier;
    std::uint32_t vkFormat, typeSize;
    std::uint32_t pixelWidth, pixelHeight, pixelDepth;
    std::uint32_t layerCount, faceCount, levelCount;
    std::uint32_t supercompressionScheme;
    std::uint32_t dfdByteOffset, dfdByteLength;
    std::uint32_t kvdByteOffset, kvdByteLength;
    std::uint64_t sgdByteOffset, sgdByteLength;
};
static_assert(sizeof(KTX2Header) == 80);
/// Bytes of the header up to the level count, which describe the image.
constexpr std::size_t bytesOfImage = offsetof(KTX2Header, supercompressionScheme);

struct LevelIndexEntry {
    std::uint64_t byteOffset, byteLength, uncompressedByteLength;
};
static_assert(sizeof(LevelIndexEntry) == 24);

/// Zstandard: each level is a frame of it. The other schemes are not read.
constexpr std::uint32_t schemeZstandard = 2;
constexpr std::uint32_t largestDescriptor = 1u << 16;

/// A luminance or alpha layout is stored as red, with a swizzle that gives the four channels.
struct SwizzledLayout {
    PixelType layout, stored;
    const char* swizzle;
};

// clang-format off
constexpr SwizzledLayout swizzledLayouts[] = {
    {{'l',  0,  0, 0,  8, 0, 0, 0}, {'r',  0,  0, 0,  8, 0, 0, 0}, "rrr1"},
    {{'l',  0,  0, 0, 16, 0, 0, 0}, {'r',  0,  0, 0, 16, 0, 0, 0}, "rrr1"},
    {{'l',  0,  0, 0, 32, 0, 0, 0}, {'r',  0,  0, 0, 32, 0, 0, 0}, "rrr1"},
    {{'i',  0,  0, 0,  8, 0, 0, 0}, {'r',  0,  0, 0,  8, 0, 0, 0}, "rrrr"},
    {{'i',  0,  0, 0, 16, 0, 0, 0}, {'r',  0,  0, 0, 16, 0, 0, 0}, "rrrr"},
    {{'a',  0,  0, 0,  8, 0, 0, 0}, {'r',  0,  0, 0,  8, 0, 0, 0}, "000r"},
    {{'a',  0,  0, 0, 16, 0, 0, 0}, {'r',  0,  0, 0, 16, 0, 0, 0}, "000r"},
    {{'l','a',  0, 0,  8, 8, 0, 0}, {'r','g',  0, 0,  8, 8, 0, 0}, "rrrg"},
    {{'l','a',  0, 0, 16,16, 0, 0}, {'r','g',  0, 0, 16,16, 0, 0}, "rrrg"},
    {{'l','a',  0, 0, 32,32, 0, 0}, {'r','g',  0, 0, 32,32, 0, 0}, "rrrg"},
};
// clang-format on

const SwizzledLayout* findSwizzled(PixelType layout) {
    const auto found = std::find_if(std::begin(swizzledLayouts), std::end(swizzledLayouts),
                                    [&](const SwizzledLayout& row) { return row.layout == layout; });
    return found == std::end(swizzledLayouts) ? nullptr : found;
}

void applySwizzle(std::string_view swizzle, CMOKTextureHeader& header) {
    for (const SwizzledLayout& row : swizzledLayouts) {
        if (row.stored == header.getPixelType() && swizzle == row.swizzle) return header.setPixelFormat(row.layout);
    }
}

/// Sets format, sizes and counts. A size or count of 0 means that the texture lacks this axis, or is no array, or has no chain.
bool applyKTX2Header(const KTX2Header& from, CMOKTextureHeader& header) {
    const PublishedMatch match = findByVulkan(from.vkFormat);
    if (match.format == nullptr) return false;
    header.setPixelFormat(match.format->pixelFormat);
    header.setChannelType(match.format->channelType);
    header.setColourSpace(match.colourSpace);
    header.setWidth(from.pixelWidth);
    header.setHeight(std::max(from.pixelHeight, 1u));
    header.setDepth(std::max(from.pixelDepth, 1u));
    header.setNumArrayMembers(std::max(from.layerCount, 1u));
    header.setNumFaces(from.faceCount);
    header.setNumMIPLevels(std::max(from.levelCount, 1u));
    return true;
}

PixelType storedLayout(const CMOKTextureHeader& header) {
    const SwizzledLayout* swizzled = findSwizzled(header.getPixelType());
    return swizzled == nullptr ? header.getPixelType() : swizzled->stored;
}

const PublishedFormat* findVulkanFormat(const CMOKTextureHeader& header) {
    const PublishedFormat* format = findPublished(header.getPixelType(), header.getChannelType());
    if (format == nullptr || format->vulkan.linear == 0) format = findPublished(storedLayout(header), header.getChannelType());
    return format != nullptr && format->vulkan.linear != 0 ? format : nullptr;
}

/// Bytes of a channel, or of a packed pixel; 1 for block formats.
std::uint32_t vkTypeSizeOf(const PublishedFormat& format) {
    if (isCompressed(format.pixelFormat)) return format.pixelFormat == eFmtRGB9E5 ? 4 : 1;
    const unsigned int bits = format.pixelFormat.layout.channelBits[0];
    return (bits % 8 == 0 ? bits : bitsPerPixel(format.pixelFormat)) / 8;
}

KTX2Header makeKTX2Header(const CMOKTextureHeader& texture, const PublishedFormat& format) {
    KTX2Header header{};
    header.identifier = ktx2Identifier;
    const std::uint32_t sRGB = texture.getColourSpace() == eColourSpaceSRGB ? format.vulkan.sRGB : 0;
    header.vkFormat = sRGB != 0 ? sRGB : format.vulkan.linear;
    header.typeSize = vkTypeSizeOf(format);
    header.pixelWidth = texture.getWidth();
    header.pixelHeight = texture.getHeight();
    header.pixelDepth = texture.getDepth() > 1 ? texture.getDepth() : 0;
    header.layerCount = texture.getNumArrayMembers() > 1 ? texture.getNumArrayMembers() : 0;
    header.faceCount = texture.getNumFaces();
    header.levelCount = texture.getNumMIPLevels();
    return header;
}

/// Whether the file's own fields are those that a texture of that header is written with.
bool isKTX2HeaderOf(const CMOKTextureHeader& texture, const KTX2Header& file) {
    const PublishedFormat* format = findVulkanFormat(texture);
    if (format == nullptr) return false;
    const KTX2Header expected = makeKTX2Header(texture, *format);
    return std::memcmp(&file, &expected, bytesOfImage) == 0;
}

ELoadStatus readDescriptor(ByteReader& source, const KTX2Header& file, std::vector<unsigned char>& descriptor) {
    if (file.dfdByteLength > largestDescriptor) return eLoadCorrupt;
    source.seek(file.dfdByteOffset);
    descriptor.resize(file.dfdByteLength);
    return source.readAll(descriptor.data(), descriptor.size()) ? eLoadOk : truncatedStatus(source);
}

/// Applies the properties outside the header: premultiplication, orientation, swizzle, the stored header.
ELoadStatus applyMetadata(ByteReader& source, const KTX2Header& file, const LoadLimits& limits, CMOKTextureHeader& header) {
    std::vector<unsigned char> descriptor;
    ELoadStatus status = readDescriptor(source, file, descriptor);
    if (status != eLoadOk) return status;
    if (isPremultiplied(descriptor)) header.setIsPreMultiplied(true);
    KeyValues pairs;
    source.seek(file.kvdByteOffset);
    status = readKeyValues(source, file.kvdByteLength, false, limits, pairs);
    if (status != eLoadOk) return status;
    applySwizzle(textOf(pairs, "KTXswizzle"), header);
    applyOrientation(textOf(pairs, "KTXorientation"), header);
    CMOKTextureHeader stored;
    if (decodeHeader(valueOf(pairs, headerKey), limits, stored) && isKTX2HeaderOf(stored, file)) header.Swap(stored);
    return eLoadOk;
}

/// Whether the levels have the lengths that follow from the header and lie within the file, whose source is at its start.
ELoadStatus validateLevels(const ByteReader& source, const StoredLayout& layout, bool isCompressedFile,
                           std::span<const LevelIndexEntry> index) {
    for (std::size_t level = 0; level < index.size(); ++level) {
        const LevelIndexEntry& entry = index[level];
        const std::uint64_t bytes = layout.levelBytes(static_cast<std::uint32_t>(level));
        if (entry.uncompressedByteLength != bytes || (!isCompressedFile && entry.byteLength != bytes)) return eLoadCorrupt;
        if (entry.byteOffset > source.remaining() || entry.byteLength > source.remaining() - entry.byteOffset)
            return eLoadTruncated;
        if (isCompressedFile && bytes > largestFromZstandard(entry.byteLength)) return eLoadCorrupt;
    }
    return eLoadOk;
}

/// Layers and faces have the texture's own order, so that a level is one run of bytes.
ELoadStatus readKTX2Level(ByteReader& source, const LevelIndexEntry& entry, bool isCompressedFile,
                          std::span<unsigned char> pixels) {
    source.seek(entry.byteOffset);
    if (!isCompressedFile) return source.readAll(pixels.data(), pixels.size()) ? eLoadOk : truncatedStatus(source);
    std::vector<unsigned char> packed(static_cast<std::size_t>(entry.byteLength));
    if (!source.readAll(packed.data(), packed.size())) return truncatedStatus(source);
    return decompressZstandard(packed, pixels) ? eLoadOk : eLoadCorrupt;
}

/// The header as a reader will find it, without a stored one.
CMOKTextureHeader headerFromKTX2(const KTX2Header& file, const KeyValues& pairs, bool isPremultipliedFile) {
    CMOKTextureHeader header;
    applyKTX2Header(file, header);
    if (isPremultipliedFile) header.setIsPreMultiplied(true);
    applySwizzle(textOf(pairs, "KTXswizzle"), header);
    applyOrientation(textOf(pairs, "KTXorientation"), header);
    return header;
}

KeyValues makeKTX2KeyValues(const CMOKTextureHeader& texture, const KTX2Header& file, const PublishedFormat& format) {
    KeyValues pairs = {{"KTXorientation", orientationKTX2(texture) + '\0'}};
    const SwizzledLayout* swizzled = findSwizzled(texture.getPixelType());
    if (swizzled != nullptr && format.pixelFormat == swizzled->stored)
        pairs.push_back({"KTXswizzle", std::string(swizzled->swizzle) + '\0'});
    pairs.push_back({"KTXwriter", std::string("MOKTexLib") + '\0'});
    if (!describeTheSame(texture, headerFromKTX2(file, pairs, texture.isPreMultiplied())))
        pairs.push_back({headerKey, encodeHeader(texture)});
    return pairs;
}

/// Places the levels after `end`, the smallest first, and returns the end of the file.
std::uint64_t placeLevels(const StoredLayout& layout, std::uint64_t alignment, std::uint64_t end,
                          std::vector<LevelIndexEntry>& index) {
    for (std::size_t level = index.size(); level-- > 0;) {
        const std::uint64_t bytes = layout.levelBytes(static_cast<std::uint32_t>(level));
        const std::uint64_t offset = (end + alignment - 1) / alignment * alignment;
        index[level] = {offset, bytes, bytes};
        end = offset + bytes;
    }
    return end;
}

}  // namespace

bool isKTX2(ByteReader& source) {
    std::array<unsigned char, 12> first{};
    const bool isMatch = source.readAll(first.data(), first.size()) && first == ktx2Identifier;
    source.seek(0);
    return isMatch;
}

ELoadStatus readKTX2(ByteReader& source, const LoadLimits& limits, CMOKTexture& texture) {
    KTX2Header file;
    if (!source.readAll(&file, sizeof(file))) return truncatedStatus(source);
    if (file.identifier != ktx2Identifier) return eLoadUnknown;
    CMOKTextureHeader header;
    const bool isCompressedFile = file.supercompressionScheme == schemeZstandard;
    if ((file.supercompressionScheme != 0 && !isCompressedFile) || !applyKTX2Header(file, header)) return eLoadUnsupported;
    if (isCompressedFile && !hasZstandard()) return eLoadNoZstandard;
    if (file.faceCount != 1 && file.faceCount != 6) return eLoadCorrupt;
    if (header.getNumMIPLevels() > std::min(limits.maxLevels, maxMIPLevels)) return eLoadTooLarge;
    std::vector<LevelIndexEntry> index(header.getNumMIPLevels());
    if (!source.readAll(index.data(), index.size() * sizeof(LevelIndexEntry))) return truncatedStatus(source);
    ELoadStatus status = applyMetadata(source, file, limits, header);
    if (status != eLoadOk) return status;
    source.seek(0);
    status = validateStored(header, limits, isCompressedFile ? 0 : StoredLayout(header).totalBytes(), source.remaining());
    if (status == eLoadOk) status = validateLevels(source, StoredLayout(header), isCompressedFile, index);
    if (status != eLoadOk) return status;
    texture = makeStoredTexture(header);
    for (std::uint32_t level = 0; level < header.getNumMIPLevels() && status == eLoadOk; ++level)
        status = readKTX2Level(
            source, index[level], isCompressedFile,
            {storedSubresource(texture, level, 0, 0), static_cast<std::size_t>(index[level].uncompressedByteLength)});
    return status;
}

bool fitsKTX2(const CMOKTextureHeader& header) {
    return findVulkanFormat(header) != nullptr && hasPublishedShape(header);
}

bool writeKTX2(const CMOKTexture& texture, ByteWriter& target) {
    const PublishedFormat* format = findVulkanFormat(texture);
    if (format == nullptr || !hasStoredData(texture)) return false;
    KTX2Header file = makeKTX2Header(texture, *format);
    CMOKTextureHeader described = texture;
    described.setPixelFormat(format->pixelFormat);
    described.setChannelType(format->channelType);
    const std::string descriptor = encodeDataFormatDescriptor(described);
    const std::string pairs = encodeKeyValues(makeKTX2KeyValues(texture, file, *format));
    std::vector<LevelIndexEntry> index(file.levelCount);
    file.dfdByteOffset = static_cast<std::uint32_t>(sizeof(file) + index.size() * sizeof(LevelIndexEntry));
    file.dfdByteLength = static_cast<std::uint32_t>(descriptor.size());
    file.kvdByteOffset = file.dfdByteOffset + file.dfdByteLength;
    file.kvdByteLength = static_cast<std::uint32_t>(pairs.size());
    const StoredLayout layout(texture);
    std::uint64_t position = file.kvdByteOffset + file.kvdByteLength;
    placeLevels(layout, std::lcm(std::uint64_t{4}, std::uint64_t{storedBlock(format->pixelFormat).bytes}), position, index);

    bool isWritten = target.write(&file, sizeof(file)) && target.write(index.data(), index.size() * sizeof(LevelIndexEntry)) &&
                     target.write(descriptor.data(), descriptor.size()) && target.write(pairs.data(), pairs.size());
    for (std::size_t level = index.size(); level-- > 0 && isWritten;) {
        const std::string padding(index[level].byteOffset - position, '\0');
        isWritten = (padding.empty() || target.write(padding.data(), padding.size())) &&
                    target.write(storedSubresource(texture, static_cast<std::uint32_t>(level), 0, 0), index[level].byteLength);
        position = index[level].byteOffset + index[level].byteLength;
    }
    return isWritten;
}

}  // namespace moktexture
