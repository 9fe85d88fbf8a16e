#include "formats/standard/ktx1_standard_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "core/io/read_policy.h"
#include "core/texture/subresources.h"
#include "formats/standard/key_values.h"
#include "formats/standard/published_format.h"
#include "formats/standard/stored_texture.h"

namespace moktexture {
namespace {

constexpr std::array<unsigned char, 12> ktx1Identifier = {0xAB, 'K', 'T', 'X', ' ', '1', '1', 0xBB, '\r', '\n', 0x1A, '\n'};
constexpr std::uint32_t sameOrder = 0x04030201, otherOrder = 0x01020304;

struct KTX1Header {
    std::array<unsigned char, 12> identifier;
    std::uint32_t endianness;
    std::uint32_t glType, glTypeSize, glFormat, glInternalFormat, glBaseInternalFormat;
    std::uint32_t pixelWidth, pixelHeight, pixelDepth;
    std::uint32_t numberOfArrayElements, numberOfFaces, numberOfMipmapLevels;
    std::uint32_t bytesOfKeyValueData;
};
static_assert(sizeof(KTX1Header) == 64);
constexpr std::size_t wordsFrom = 12;

bool isOtherOrder(const KTX1Header& header) {
    return header.endianness == otherOrder;
}

void swapWords(unsigned char* bytes, std::size_t count) {
    for (std::size_t i = 0; i + 4 <= count; i += 4)
        std::reverse(bytes + i, bytes + i + 4);
}

ELoadStatus readKTX1Header(ByteReader& source, KTX1Header& header) {
    if (!source.readAll(&header, sizeof(header))) return truncatedStatus(source);
    if (header.identifier != ktx1Identifier) return eLoadUnknown;
    if (header.endianness != sameOrder && header.endianness != otherOrder) return eLoadCorrupt;
    if (isOtherOrder(header)) {
        const std::uint32_t order = header.endianness;
        swapWords(reinterpret_cast<unsigned char*>(&header) + wordsFrom, sizeof(header) - wordsFrom);
        header.endianness = order;
    }
    return eLoadOk;
}

/// Sets format, sizes and counts. A size or count of 0 means that the texture lacks this axis, or is no array, or has no chain.
bool applyKTX1Header(const KTX1Header& from, CMOKTextureHeader& header) {
    const PublishedMatch match = findByOpenGL(from.glType, from.glFormat, from.glInternalFormat);
    if (match.format == nullptr) return false;
    header.setPixelFormat(match.format->pixelFormat);
    header.setChannelType(match.format->channelType);
    header.setColourSpace(match.colourSpace);
    header.setWidth(from.pixelWidth);
    header.setHeight(std::max(from.pixelHeight, 1u));
    header.setDepth(std::max(from.pixelDepth, 1u));
    header.setNumArrayMembers(std::max(from.numberOfArrayElements, 1u));
    header.setNumFaces(from.numberOfFaces);
    header.setNumMIPLevels(std::max(from.numberOfMipmapLevels, 1u));
    return true;
}

/// How the rows of a file lie, from its header and format.
class FileRows {
public:
    FileRows(const CMOKTextureHeader& texture, bool isArray)
        : stored(texture),
          isPaddedRow(!isCompressed(texture.getPixelType()) || texture.getPixelType().id == eFmtRGB9E5),
          isSingleCube(texture.getNumFaces() == 6 && !isArray),
          layers(texture.getNumArrayMembers()),
          faces(texture.getNumFaces()) {}

    std::uint64_t rowBytes(std::uint32_t level) const { return stored.rowBytes(level); }
    std::uint64_t paddedRowBytes(std::uint32_t level) const { return isPaddedRow ? padded(rowBytes(level)) : rowBytes(level); }
    /// Rows of blocks of all slices of one layer and face.
    std::uint64_t rows(std::uint32_t level) const { return stored.rows(level) * stored.slices(level); }
    std::uint64_t faceBytes(std::uint32_t level) const { return rows(level) * paddedRowBytes(level); }
    /// Padding after a face, in bytes.
    std::uint64_t facePadding(std::uint32_t level) const {
        return isSingleCube ? padded(faceBytes(level)) - faceBytes(level) : 0;
    }
    /// The level's `imageSize`.
    std::uint64_t imageSize(std::uint32_t level) const {
        return isSingleCube ? faceBytes(level) : faceBytes(level) * layers * faces;
    }
    /// Bytes between an `imageSize` and the next one.
    std::uint64_t levelBytes(std::uint32_t level) const {
        return padded((faceBytes(level) + facePadding(level)) * layers * faces);
    }
    std::uint64_t totalBytes(std::uint32_t levels) const {
        std::uint64_t total = 0;
        for (std::uint32_t level = 0; level < levels; ++level)
            total += 4 + levelBytes(level);
        return total;
    }

private:
    static std::uint64_t padded(std::uint64_t bytes) { return (bytes + 3) / 4 * 4; }

    StoredLayout stored;
    bool isPaddedRow;
    bool isSingleCube;
    std::uint64_t layers, faces;
};

/// Turns the bytes of each channel, or packed pixel, round.
void swapElements(unsigned char* bytes, std::uint64_t count, std::uint32_t elementSize) {
    if (elementSize != 2 && elementSize != 4) return;
    for (std::uint64_t i = 0; i + elementSize <= count; i += elementSize)
        std::reverse(bytes + i, bytes + i + elementSize);
}

ELoadStatus readKTX1Level(ByteReader& source, const KTX1Header& file, const FileRows& rows, std::uint32_t level,
                          CMOKTexture& texture) {
    std::uint32_t imageSize = 0;
    if (!source.readAll(&imageSize, sizeof(imageSize))) return truncatedStatus(source);
    if (isOtherOrder(file)) imageSize = __builtin_bswap32(imageSize);
    // Some writers give a cube map's level the size of all its faces.
    if (imageSize != rows.imageSize(level) && imageSize != rows.levelBytes(level)) return eLoadCorrupt;
    const std::uint64_t end = source.position() + rows.levelBytes(level);
    const std::size_t rowBytes = rows.rowBytes(level);
    for (std::uint32_t layer = 0; layer < texture.getNumArrayMembers(); ++layer) {
        for (std::uint32_t face = 0; face < texture.getNumFaces(); ++face) {
            unsigned char* target = storedSubresource(texture, level, layer, face);
            for (std::uint64_t row = 0; row < rows.rows(level); ++row, target += rowBytes) {
                if (!source.readAll(target, rowBytes)) return truncatedStatus(source);
                if (isOtherOrder(file)) swapElements(target, rowBytes, file.glTypeSize);
                source.seek(source.position() + rows.paddedRowBytes(level) - rowBytes);
            }
            source.seek(source.position() + rows.facePadding(level));
        }
    }
    // Padding at the very end is missing from some files.
    source.seek(end);
    return eLoadOk;
}

/// Whether every level starts with its size, from the source's position to its end.
bool hasImageSizes(ByteReader& source, const KTX1Header& file, const CMOKTextureHeader& header) {
    if (validateStored(header, LoadLimits{}, 0, 0) != eLoadOk) return false;
    const FileRows rows(header, file.numberOfArrayElements != 0);
    for (std::uint32_t level = 0; level < header.getNumMIPLevels(); ++level) {
        std::uint32_t imageSize = 0;
        if (!source.readAll(&imageSize, sizeof(imageSize)) || imageSize != rows.imageSize(level)) return false;
        source.seek(source.position() + rows.levelBytes(level));
    }
    return source.remaining() == 0;
}

std::uint32_t glTypeSizeOf(std::uint32_t glType) {
    switch (glType) {
        case 0:
        case 0x1400:
        case 0x1401:
            return 1;
        case 0x1402:
        case 0x1403:
        case 0x140B:
        case 0x8033:
        case 0x8034:
        case 0x8363:
        case 0x8365:
        case 0x8366:
            return 2;
        default:
            return 4;
    }
}

/// The header as a reader will find it, without a stored one.
CMOKTextureHeader headerFromKTX1(const KTX1Header& file, const KeyValues& pairs) {
    CMOKTextureHeader header;
    applyKTX1Header(file, header);
    applyOrientation(textOf(pairs, "KTXorientation"), header);
    return header;
}

KTX1Header makeKTX1Header(const CMOKTextureHeader& texture, const PublishedFormat& format) {
    KTX1Header header{};
    header.identifier = ktx1Identifier;
    header.endianness = sameOrder;
    header.glType = format.glType;
    header.glTypeSize = glTypeSizeOf(format.glType);
    header.glFormat = format.glFormat;
    const std::uint32_t sRGB = texture.getColourSpace() == eColourSpaceSRGB ? format.glInternal.sRGB : 0;
    header.glInternalFormat = sRGB != 0 ? sRGB : format.glInternal.linear;
    header.glBaseInternalFormat = format.glBaseFormat;
    header.pixelWidth = texture.getWidth();
    header.pixelHeight = texture.getHeight();
    header.pixelDepth = texture.getDepth() > 1 ? texture.getDepth() : 0;
    header.numberOfArrayElements = texture.getNumArrayMembers() > 1 ? texture.getNumArrayMembers() : 0;
    header.numberOfFaces = texture.getNumFaces();
    header.numberOfMipmapLevels = texture.getNumMIPLevels();
    return header;
}

/// Whether the file's own fields are those that a texture of that header is written with.
bool isKTX1HeaderOf(const CMOKTextureHeader& texture, const KTX1Header& file) {
    const PublishedFormat* format = findPublished(texture.getPixelType(), texture.getChannelType());
    if (format == nullptr) return false;
    KTX1Header expected = makeKTX1Header(texture, *format);
    expected.endianness = file.endianness;
    expected.bytesOfKeyValueData = file.bytesOfKeyValueData;
    return std::memcmp(&expected, &file, sizeof(file)) == 0;
}

KeyValues makeKTX1KeyValues(const CMOKTextureHeader& texture, const KTX1Header& file) {
    KeyValues pairs = {{"KTXorientation", orientationKTX1(texture) + '\0'}, {"KTXwriter", std::string("MOKTexLib") + '\0'}};
    if (!describeTheSame(texture, headerFromKTX1(file, pairs))) pairs.push_back({headerKey, encodeHeader(texture)});
    return pairs;
}

bool writeKTX1Level(const CMOKTexture& texture, const FileRows& rows, std::uint32_t level, ByteWriter& target) {
    constexpr unsigned char zeroes[4] = {};
    const auto imageSize = static_cast<std::uint32_t>(rows.imageSize(level));
    if (!target.write(&imageSize, sizeof(imageSize))) return false;
    const std::size_t rowBytes = rows.rowBytes(level);
    const std::size_t rowPadding = rows.paddedRowBytes(level) - rowBytes;
    std::uint64_t written = 0;
    for (std::uint32_t layer = 0; layer < texture.getNumArrayMembers(); ++layer) {
        for (std::uint32_t face = 0; face < texture.getNumFaces(); ++face) {
            const unsigned char* pixels = storedSubresource(texture, level, layer, face);
            for (std::uint64_t row = 0; row < rows.rows(level); ++row, pixels += rowBytes) {
                if (!target.write(pixels, rowBytes) || (rowPadding != 0 && !target.write(zeroes, rowPadding))) return false;
            }
            const std::size_t facePadding = rows.facePadding(level);
            if (facePadding != 0 && !target.write(zeroes, facePadding)) return false;
            written += rows.faceBytes(level) + facePadding;
        }
    }
    const std::size_t padding = rows.levelBytes(level) - written;
    return padding == 0 || target.write(zeroes, padding);
}

}  // namespace

bool isStandardKTX1(ByteReader& source, std::uint64_t ownPixelBytes) {
    KTX1Header file;
    CMOKTextureHeader header;
    bool isStandard = readKTX1Header(source, file) == eLoadOk;
    if (isStandard) {
        source.seek(sizeof(KTX1Header) + std::uint64_t{file.bytesOfKeyValueData});
        const bool fitsOwn = ownPixelBytes != 0 && source.remaining() == ownPixelBytes;
        const bool hasOwnCounts = !isOtherOrder(file) && file.numberOfArrayElements != 0 && file.numberOfMipmapLevels != 0;
        isStandard = !fitsOwn || !hasOwnCounts || (applyKTX1Header(file, header) && hasImageSizes(source, file, header));
    }
    source.seek(0);
    return isStandard;
}

ELoadStatus readStandardKTX1(ByteReader& source, const LoadLimits& limits, CMOKTexture& texture) {
    KTX1Header file;
    ELoadStatus status = readKTX1Header(source, file);
    if (status != eLoadOk) return status;
    CMOKTextureHeader header;
    if (!applyKTX1Header(file, header)) return eLoadUnsupported;
    if (file.numberOfFaces != 1 && file.numberOfFaces != 6) return eLoadCorrupt;
    KeyValues pairs;
    status = readKeyValues(source, file.bytesOfKeyValueData, isOtherOrder(file), limits, pairs);
    if (status != eLoadOk) return status;
    applyOrientation(textOf(pairs, "KTXorientation"), header);
    CMOKTextureHeader stored;
    if (decodeHeader(valueOf(pairs, headerKey), limits, stored) && isKTX1HeaderOf(stored, file)) header.Swap(stored);

    const FileRows rows(header, file.numberOfArrayElements != 0);
    status = validateStored(header, limits, 0, 0);
    if (status != eLoadOk) return status;
    // The padding after the last row may be missing.
    if (rows.totalBytes(header.getNumMIPLevels()) > source.remaining() + 3) return eLoadTruncated;
    texture = makeStoredTexture(header);
    for (std::uint32_t level = 0; level < header.getNumMIPLevels() && status == eLoadOk; ++level)
        status = readKTX1Level(source, file, rows, level, texture);
    return status;
}

bool fitsStandardKTX1(const CMOKTextureHeader& header) {
    const PublishedFormat* format = findPublished(header.getPixelType(), header.getChannelType());
    return format != nullptr && format->glInternal.linear != 0 && hasPublishedShape(header);
}

bool writeStandardKTX1(const CMOKTexture& texture, ByteWriter& target) {
    const PublishedFormat* format = findPublished(texture.getPixelType(), texture.getChannelType());
    if (!fitsStandardKTX1(texture) || !hasStoredData(texture)) return false;
    KTX1Header file = makeKTX1Header(texture, *format);
    const std::string pairs = encodeKeyValues(makeKTX1KeyValues(texture, file));
    file.bytesOfKeyValueData = static_cast<std::uint32_t>(pairs.size());
    if (!target.write(&file, sizeof(file)) || !target.write(pairs.data(), pairs.size())) return false;
    const FileRows rows(texture, file.numberOfArrayElements != 0);
    for (std::uint32_t level = 0; level < texture.getNumMIPLevels(); ++level) {
        if (!writeKTX1Level(texture, rows, level, target)) return false;
    }
    return true;
}

}  // namespace moktexture
