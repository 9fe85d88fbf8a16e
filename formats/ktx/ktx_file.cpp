#include "formats/ktx/ktx_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "core/io/load_checks.h"
#include "core/texture/TextureInternals.h"

namespace moktexture {
namespace {

constexpr std::array<unsigned char, 12> ktxIdentifier = {0xAB, 'K', 'T', 'X', ' ', '1', '1', 0xBB, '\r', '\n', 0x1A, '\n'};
constexpr std::uint32_t nativeEndianness = 0x04030201;

struct KTXHead {
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
static_assert(sizeof(KTXHead) == 64);

constexpr char orientationKey[] = "KTXOrientation";

/// Reads the head; what a short source does not have stays as it is in a sound one.
ELoadStatus readHead(ByteReader& source, KTXHead& head) {
    const bool isWhole = source.readAll(&head, sizeof(head));
    if (head.identifier != ktxIdentifier) return eLoadUnknown;
    if (!isWhole) return endedEarly(source);
    return head.endianness == nativeEndianness ? eLoadOk : eLoadUnsupported;
}

/// What the head says of the texture.
void takeHead(const KTXHead& head, CMOKTextureHeader& header) {
    header.setHeight(head.pixelHeight);
    header.setWidth(head.pixelWidth);
    header.setDepth(std::max(head.pixelDepth, std::uint32_t{1}));
    // Kept: these keep a 0, by which other makers' files mean "no array": such files have had no pixels here.
    header.setNumMIPLevels(head.numberOfMipmapLevels);
    header.setNumFaces(head.numberOfFaces);
    header.setNumArrayMembers(head.numberOfArrayElements);
    // A format that the maps do not know stays eFmtUnknown.
    if (head.glFormat != 0)
        header.setOGLFormat(head.glBaseInternalFormat, head.glFormat, head.glType);
    else
        header.setOGLESFormat(head.glInternalFormat, head.glFormat, head.glType);
    // Kept: y runs upward unless the file says otherwise, also in files whose texture had no orientation.
    header.setOrientation(eOrientUp);
}

/// Takes an orientation from the first letter of its value.
/// Kept: of "S=rT=dR=i" and the like that is the "S", which says nothing, so that orientations do not survive a file.
void takeOrientation(char letter, CMOKTextureHeader& header) {
    if (letter == 'd' || letter == 'i') header.setOrientation(eOrientDown);
    if (letter == 'l') header.setOrientation(eOrientLeft);
}

/// Reads one pair and moves to the next; false if it is empty or reaches beyond the source.
bool readPair(ByteReader& source, CMOKTextureHeader& header) {
    std::uint32_t size = 0;
    if (!source.readAll(&size, sizeof(size))) return false;
    const std::uint64_t end = source.position() + size;
    const bool isWhole = size != 0 && size <= source.remaining();
    // Nothing behind the first letter of an orientation matters.
    std::array<char, sizeof(orientationKey) + 1> start;
    const bool isLongEnough = size >= start.size() && source.readAll(start.data(), start.size());
    if (isLongEnough && std::memcmp(start.data(), orientationKey, sizeof(orientationKey)) == 0)
        takeOrientation(start.back(), header);
    // Kept: this is not the padding that is written, and pairs behind an odd one are read from a wrong place; what files say
    // has been understood so.
    const std::uint32_t padding = size % 4 == 0 ? 0 : 4 - (size & 4u);
    source.seek(end + padding);
    return isWhole;
}

/// Whether the pairs up to `end` fill their area as they should, and are no more than allowed.
ELoadStatus judgePairs(ByteReader& source, std::uint64_t end, const LoadLimits& limits) {
    for (std::uint32_t count = 0; source.position() < end; ++count) {
        if (count == limits.maxMetaDataBlocks) return eLoadTooLarge;
        std::uint32_t size = 0;
        if (end - source.position() < sizeof(size)) return eLoadCorrupt;
        if (!source.readAll(&size, sizeof(size))) return endedEarly(source);
        const std::uint64_t paddedSize = (std::uint64_t{size} + 3) / 4 * 4;
        if (size == 0 || paddedSize > end - source.position()) return eLoadCorrupt;
        source.seek(source.position() + paddedSize);
    }
    return eLoadOk;
}

/// Reads the key-value area, which starts behind the head, and moves to its end, where the pixels start. Of an area that ends
/// beyond the source the constructors take the pairs that are there.
ELoadStatus readKeyValueData(ByteReader& source, std::uint32_t size, const LoadLimits* limits, CMOKTextureHeader& header) {
    const std::uint64_t end = sizeof(KTXHead) + std::uint64_t{size};
    const bool isPresent = size <= source.remaining();
    if (limits != nullptr) {
        if (size > limits->maxMetaDataSize) return eLoadTooLarge;
        if (!isPresent) return eLoadTruncated;
        const ELoadStatus status = judgePairs(source, end, *limits);
        if (status != eLoadOk) return status;
        source.seek(sizeof(KTXHead));
    }
    bool isWhole = true;
    while (isWhole && source.position() < end)
        isWhole = readPair(source, header);
    if (!isPresent) return endedEarly(source);
    source.seek(end);
    if (source.failed()) return eLoadUnreadable;
    // A sound area may read as an odd one, by the padding above.
    return isWhole || limits != nullptr ? eLoadOk : eLoadCorrupt;
}

/// The value of the orientation: a letter for each axis.
std::array<char, 10> orientationValue(const CMOKTextureHeader& header) {
    std::array<char, 10> value = {'S', '=', 'r', 'T', '=', 'd', 'R', '=', 'i', '\0'};
    if (header.getOrientation(eAxisX) == eOrientLeft) value[2] = 'l';
    if (header.getOrientation(eAxisY) == eOrientUp) value[5] = 'u';
    if (header.getOrientation(eAxisZ) == eOrientOut) value[8] = 'o';
    return value;
}

KTXHead headOf(const CMOKTextureHeader& header) {
    KTXHead head;
    header.getOGLFormat(head.glInternalFormat, head.glFormat, head.glType);
    // Kept: bytes of a whole pixel, not of a channel, and 0 for formats below 8 bits per pixel: files have it so.
    head.glTypeSize = header.getBitsPerPixel() >> 3;
    head.glBaseInternalFormat = head.glFormat != 0 ? head.glFormat : head.glInternalFormat;
    head.pixelWidth = header.getWidth();
    head.pixelHeight = header.getHeight();
    head.pixelDepth = header.getDepth();
    head.numberOfArrayElements = header.getNumArrayMembers();
    head.numberOfFaces = header.getNumFaces();
    head.numberOfMipmapLevels = header.getNumMIPLevels();
    return head;
}

}  // namespace

ELoadStatus readKTXFile(ByteReader& source, const LoadLimits* limits, CMOKTexture& texture) {
    KTXHead head;
    ELoadStatus status = readHead(source, head);
    if (status != eLoadOk) return status;
    takeHead(head, texture);
    const ELoadStatus pairsStatus = readKeyValueData(source, head.bytesOfKeyValueData, limits, texture);
    // The constructors take the pixels behind odd pairs.
    const bool goesOn = pairsStatus == eLoadOk || (pairsStatus == eLoadCorrupt && limits == nullptr);
    if (!goesOn) return pairsStatus;
    status = validateSizes(texture, source, texture.getDataSize(), limits);
    if (status != eLoadOk) return status;
    TextureInternals::allocate(texture);
    const std::size_t size = static_cast<std::size_t>(TextureInternals::dataSize(texture));
    return source.readAll(TextureInternals::data(texture), size) ? pairsStatus : endedEarly(source);
}

bool writeKTXFile(const CMOKTexture& texture, ByteWriter& target) {
    KTXHead head = headOf(texture);
    if (head.glInternalFormat == 0) return false;
    const std::array<char, 10> value = orientationValue(texture);
    const std::uint32_t pairSize = sizeof(orientationKey) + sizeof(value);
    const std::array<char, 3> zeroes{};
    const std::uint32_t padding = (4 - pairSize % 4) % 4;
    head.bytesOfKeyValueData = sizeof(pairSize) + pairSize + padding;

    bool written = target.write(&head, sizeof(head));
    written = target.write(&pairSize, sizeof(pairSize)) && written;
    written = target.write(orientationKey, sizeof(orientationKey)) && written;
    written = target.write(value.data(), sizeof(value)) && written;
    written = target.write(zeroes.data(), padding) && written;
    const unsigned char* const pixels = TextureInternals::data(texture);
    const std::size_t size = static_cast<std::size_t>(TextureInternals::dataSize(texture));
    // Kept: a buffer of 0 bytes counts as not written, as in native files.
    return pixels != nullptr && size != 0 && target.write(pixels, size) && written;
}

}  // namespace moktexture
