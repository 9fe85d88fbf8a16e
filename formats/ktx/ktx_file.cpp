// KTX 1.1 files in the arrangement that this library writes.
//
//   offset  bytes
//        0     12  identifier             AB "KTX 11" BB 0D 0A 1A 0A
//       12      4  endianness             0x04030201; the other byte order is refused
//       16      4  glType                 0 for compressed formats
//       20      4  glTypeSize             bytes of a pixel; ignored by the reader
//       24      4  glFormat               0 for compressed formats
//       28      4  glInternalFormat
//       32      4  glBaseInternalFormat
//       36     12  pixelWidth, pixelHeight, pixelDepth
//       48      4  numberOfArrayElements  0 is not read as 1, unlike in standard KTX; likewise the next two fields
//       52      4  numberOfFaces
//       56      4  numberOfMipmapLevels
//       60      4  bytesOfKeyValueData    K
//       64      K  key-value pairs, each: size (4 bytes), key, 0, value; padding up to a multiple of 4
//     64+K         pixel data: the texture's buffer as it is
//
// The pixel data deviates from standard KTX: no imageSize word precedes a level, and neither rows nor levels are padded. The
// constructors take the sizes in files of other writers for pixels; LoadTexture() reads those as standard KTX.

#include "formats/ktx/ktx_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "core/base/numeric.h"
#include "core/io/native_file.h"
#include "core/texture/subresources.h"

namespace moktexture {
namespace {

constexpr std::array<unsigned char, 12> ktxIdentifier = {0xAB, 'K', 'T', 'X', ' ', '1', '1', 0xBB, '\r', '\n', 0x1A, '\n'};
constexpr std::uint32_t nativeEndianness = 0x04030201;

struct KTXHeader {
    std::array<unsigned char, 12> identifier = ktxIdentifier;
    std::uint32_t endianness = nativeEndianness;
    std::uint32_t glType = 0;
    std::uint32_t glTypeSize = 0;
    std::uint32_t glFormat = 0;
    std::uint32_t glInternalFormat = 0;
    std::uint32_t glBaseInternalFormat = 0;
    std::uint32_t pixelWidth = 0;
    std::uint32_t pixelHeight = 0;
    std::uint32_t pixelDepth = 0;
    std::uint32_t numberOfArrayElements = 0;
    std::uint32_t numberOfFaces = 0;
    std::uint32_t numberOfMipmapLevels = 0;
    std::uint32_t bytesOfKeyValueData = 0;
};
static_assert(sizeof(KTXHeader) == 64);

constexpr char orientationKey[] = "KTXOrientation";

ELoadStatus readHeader(ByteReader& source, KTXHeader& ktx) {
    const bool isComplete = source.readAll(&ktx, sizeof(ktx));
    if (ktx.identifier != ktxIdentifier) return eLoadUnknown;
    if (!isComplete) return truncatedStatus(source);
    return ktx.endianness == nativeEndianness ? eLoadOk : eLoadUnsupported;
}

void applyHeader(const KTXHeader& ktx, CMOKTextureHeader& header) {
    header.setHeight(ktx.pixelHeight);
    header.setWidth(ktx.pixelWidth);
    header.setDepth(std::max(ktx.pixelDepth, std::uint32_t{1}));
    // Kept (ktx-zero-counts): a count of 0, which in standard KTX means "no array" and "no levels", stays 0, so that such a file
    // has no pixels; read as 1, its imageSize words would be taken for pixels.
    header.setNumMIPLevels(ktx.numberOfMipmapLevels);
    header.setNumFaces(ktx.numberOfFaces);
    header.setNumArrayMembers(ktx.numberOfArrayElements);
    // A format that the maps lack stays eFmtUnknown.
    if (ktx.glFormat != 0)
        header.setOGLFormat(ktx.glBaseInternalFormat, ktx.glFormat, ktx.glType);
    else
        header.setOGLESFormat(ktx.glInternalFormat, ktx.glFormat, ktx.glType);
    // Kept (ktx-default-orientation-up): without an orientation in the file, y runs upward, even if the saved texture had no
    // orientation: a host that flips pictures by getOrientation() flips every loaded KTX file.
    header.setOrientation(eOrientUp);
}

/// Sets an orientation from the first letter of its value.
/// Kept (ktx-orientation-first-letter): the first letter of "S=rT=dR=i", which writeKTXFile() writes, is 'S' and sets nothing, so
/// that no orientation survives a file; reading it would flip the pictures of hosts that flip by getOrientation().
void applyOrientation(char letter, CMOKTextureHeader& header) {
    if (letter == 'd' || letter == 'i') header.setOrientation(eOrientDown);
    if (letter == 'l') header.setOrientation(eOrientLeft);
}

/// Reads one key-value pair and moves to the next; false if it is empty or extends beyond the source.
bool readPair(ByteReader& source, CMOKTextureHeader& header) {
    std::uint32_t size = 0;
    if (!source.readAll(&size, sizeof(size))) return false;
    const std::uint64_t end = source.position() + size;
    const bool isComplete = size != 0 && size <= source.remaining();
    // A value has no meaning beyond the first letter of an orientation.
    std::array<char, sizeof(orientationKey) + 1> start;
    const bool isLongEnough = size >= start.size() && source.readAll(start.data(), start.size());
    if (isLongEnough && std::memcmp(start.data(), orientationKey, sizeof(orientationKey)) == 0)
        applyOrientation(start.back(), header);
    // Kept (ktx-read-padding): a size that is no multiple of 4 is padded by 4 bytes or by none, not up to a multiple of 4, so
    // that the pairs after it are read at a wrong offset; an orientation there, read correctly, would rotate the texture.
    const std::uint32_t padding = size % 4 == 0 ? 0 : 4 - (size & 4u);
    source.seek(end + padding);
    return isComplete;
}

/// Validates that the pairs, padded to multiples of 4, fill the area up to `end` exactly and do not exceed the limits.
ELoadStatus validatePairs(ByteReader& source, std::uint64_t end, const LoadLimits& limits) {
    for (std::uint32_t count = 0; source.position() < end; ++count) {
        if (count == limits.maxMetaDataBlocks) return eLoadTooLarge;
        std::uint32_t size = 0;
        if (end - source.position() < sizeof(size)) return eLoadCorrupt;
        if (!source.readAll(&size, sizeof(size))) return truncatedStatus(source);
        const std::uint64_t paddedSize = roundUp(std::uint64_t{size}, std::uint64_t{4});
        if (size == 0 || paddedSize > end - source.position()) return eLoadCorrupt;
        source.seek(source.position() + paddedSize);
    }
    return eLoadOk;
}

/// Reads the key-value area, which follows the header, and moves to its end, where the pixels start. A lenient reader uses the
/// pairs that a truncated source has.
ELoadStatus readKeyValueData(ByteReader& source, std::uint32_t size, const ReadPolicy& policy, CMOKTextureHeader& header) {
    const std::uint64_t end = sizeof(KTXHeader) + std::uint64_t{size};
    const bool isPresent = size <= source.remaining();
    if (policy.isStrict()) {
        if (size > policy.limits.maxMetaDataSize) return eLoadTooLarge;
        if (!isPresent) return eLoadTruncated;
        const ELoadStatus status = validatePairs(source, end, policy.limits);
        if (status != eLoadOk) return status;
        source.seek(sizeof(KTXHeader));
    }
    bool isComplete = true;
    while (isComplete && source.position() < end)
        isComplete = readPair(source, header);
    if (!isPresent) return truncatedStatus(source);
    source.seek(end);
    if (source.failed()) return eLoadUnreadable;
    // After validatePairs(), only the padding of readPair() makes a pair look incomplete.
    return isComplete || policy.isStrict() ? eLoadOk : eLoadCorrupt;
}

/// The value of the orientation pair: a letter for each axis.
std::array<char, 10> orientationValue(const CMOKTextureHeader& header) {
    std::array<char, 10> value = {'S', '=', 'r', 'T', '=', 'd', 'R', '=', 'i', '\0'};
    if (header.getOrientation(eAxisX) == eOrientLeft) value[2] = 'l';
    if (header.getOrientation(eAxisY) == eOrientUp) value[5] = 'u';
    if (header.getOrientation(eAxisZ) == eOrientOut) value[8] = 'o';
    return value;
}

KTXHeader makeKTXHeader(const CMOKTextureHeader& header) {
    KTXHeader ktx;
    header.getOGLFormat(ktx.glInternalFormat, ktx.glFormat, ktx.glType);
    // Kept (ktx-type-size-of-pixel): the bytes of a whole pixel, not of a channel, and 0 for formats below 8 bits per pixel; the
    // bytes of every written KTX file hold it, and no reader here looks at it.
    ktx.glTypeSize = header.getBitsPerPixel() >> 3;
    ktx.glBaseInternalFormat = ktx.glFormat != 0 ? ktx.glFormat : ktx.glInternalFormat;
    ktx.pixelWidth = header.getWidth();
    ktx.pixelHeight = header.getHeight();
    ktx.pixelDepth = header.getDepth();
    ktx.numberOfArrayElements = header.getNumArrayMembers();
    ktx.numberOfFaces = header.getNumFaces();
    ktx.numberOfMipmapLevels = header.getNumMIPLevels();
    return ktx;
}

}  // namespace

ELoadStatus readKTXFile(ByteReader& source, const ReadPolicy& policy, CMOKTexture& texture) {
    KTXHeader ktx;
    ELoadStatus status = readHeader(source, ktx);
    if (status != eLoadOk) return status;
    applyHeader(ktx, texture);
    const ELoadStatus pairsStatus = readKeyValueData(source, ktx.bytesOfKeyValueData, policy, texture);
    // A lenient reader reads the pixels after malformed pairs.
    const bool goesOn = pairsStatus == eLoadOk || (pairsStatus == eLoadCorrupt && !policy.isStrict());
    if (!goesOn) return pairsStatus;
    status = validatePixelData(texture, source, texture.getDataSize(), policy);
    if (status != eLoadOk) return status;
    status = readPixelData(source, texture);
    return status == eLoadOk ? pairsStatus : status;
}

bool writeKTXFile(const CMOKTexture& texture, ByteWriter& target) {
    KTXHeader ktx = makeKTXHeader(texture);
    if (ktx.glInternalFormat == 0) return false;
    const std::array<char, 10> value = orientationValue(texture);
    constexpr std::uint32_t pairSize = sizeof(orientationKey) + sizeof(value);
    constexpr std::uint32_t padding = roundUp(pairSize, 4u) - pairSize;
    constexpr std::array<char, 3> zeroes{};
    ktx.bytesOfKeyValueData = sizeof(pairSize) + pairSize + padding;

    bool written = target.write(&ktx, sizeof(ktx));
    written = target.write(&pairSize, sizeof(pairSize)) && written;
    written = target.write(orientationKey, sizeof(orientationKey)) && written;
    written = target.write(value.data(), sizeof(value)) && written;
    written = target.write(zeroes.data(), padding) && written;
    return writePixelData(texture, target) && written;
}

std::uint64_t ownKTXPixelBytes(ByteReader& source) {
    KTXHeader ktx;
    CMOKTextureHeader header;
    const bool isRead = readHeader(source, ktx) == eLoadOk;
    source.seek(0);
    if (isRead) applyHeader(ktx, header);
    return isRead && sizesFit32Bits(header) ? header.getDataSize() : 0;
}

bool readBackKTXHeader(const CMOKTextureHeader& header, CMOKTextureHeader& readBack) {
    const KTXHeader ktx = makeKTXHeader(header);
    if (ktx.glInternalFormat == 0) return false;
    applyHeader(ktx, readBack);
    return true;
}

}  // namespace moktexture
