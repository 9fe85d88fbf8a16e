// C source of a texture: an array that holds the bytes of its native file.
//
//   banner, guard of A8BIT
//   A8BIT name[] = {
//
//   /* Header */
//   0x4d,0x4f,0x4b,0x03,      the 52-byte record, 4 bytes per line
//   ...
//
//   /* Meta Data */           only if the record's metaDataSize is not 0
//   ...                       each block: fourCC, key and dataSize, 4 bytes per line, then the payload
//
//   /* Data */
//   ...                       the pixel data, 32 bytes per line; the last line has no end if it is shorter
//   };

#include "formats/c_source/c_source_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/texture/TextureInternals.h"

namespace moktexture {
namespace {

using Bytes = std::span<const unsigned char>;

constexpr std::string_view banner =
    "/********************************************************** \n"
    " * MOKTexLib v 4.4 \n"
    " **********************************************************/\n\n"
    "#ifndef A8BIT \n"
    " #define A8BIT static const unsigned char\n"
    "#endif\n\n";

/// Kept (c-source-write-unchecked): a failed write is not reported; saveFile() returns true for "h" even on a full disk, and the
/// compiler that reads the incomplete array reports it instead.
void print(ByteWriter& target, std::string_view text) {
    target.write(text.data(), text.size());
}

/// Prints bytes as "0x4d,".
void printBytes(ByteWriter& target, Bytes bytes) {
    constexpr char digits[] = "0123456789abcdef";
    constexpr std::size_t bytesAtOnce = 1024;
    std::string text;
    for (std::size_t start = 0; start < bytes.size(); start += bytesAtOnce) {
        text.clear();
        for (const unsigned char byte : bytes.subspan(start, std::min(bytesAtOnce, bytes.size() - start))) {
            text += {'0', 'x', digits[byte >> 4], digits[byte & 15], ','};
        }
        print(target, text);
    }
}

/// Prints bytes with a newline after every `perLine` of them; an incomplete last line has none.
void printLines(ByteWriter& target, Bytes bytes, std::size_t perLine) {
    for (std::size_t start = 0; start < bytes.size(); start += perLine) {
        const std::size_t count = std::min(perLine, bytes.size() - start);
        printBytes(target, bytes.subspan(start, count));
        if (count == perLine) print(target, "\n");
    }
}

template <typename Value>
Bytes bytesOf(const Value& value) {
    return {reinterpret_cast<const unsigned char*>(&value), sizeof(value)};
}

/// Prints a metadata block, whose FourCC is at `ownerIndex` in the map.
void printBlock(ByteWriter& target, const MetaDataBlock& block, unsigned int ownerIndex) {
    for (const std::uint32_t field : {block.fourCC, block.key, block.dataSize})
        printLines(target, bytesOf(field), sizeof(field));
    const Bytes payload(block.data, block.data == nullptr ? 0 : block.dataSize);
    // Kept (c-source-line-by-owner): a payload is printed on one line, but with a line for each byte for every 32nd FourCC: line
    // breaks count the FourCCs and not the bytes. Build systems that compare the text see no change for an unchanged texture.
    if (ownerIndex % 32 == 31)
        printLines(target, payload, 1);
    else
        printBytes(target, payload);
    print(target, "\n");
}

}  // namespace

std::string arrayNameOf(const std::string& path) {
    // Kept (c-source-name-to-first-dot): the name ends at the first '.' of the path, a folder's too, and may be empty; sources
    // that include the file refer to the array by that name.
    const std::string stem = path.substr(0, path.find('.'));
    return stem.substr(stem.find_last_of("/\\") + 1);
}

bool writeCSource(const CMOKTexture& texture, const char* arrayName, ByteWriter& target) {
    const std::size_t size = texture.getDataSize();
    if (size > TextureInternals::dataSize(texture) || (size != 0 && TextureInternals::data(texture) == nullptr)) return false;
    const MOKTextureHeaderV3 record = texture.getFileHeader();
    print(target, banner);
    print(target, "A8BIT " + std::string(arrayName) + "[] = {\n");
    print(target, "\n/* Header */\n");
    printLines(target, bytesOf(record), 4);
    // Kept (c-source-heading-by-record): the heading depends on the record's metaDataSize and the blocks on the map, so that the
    // bytes are those of the native file, where the two may differ as well.
    if (record.metaDataSize != 0) print(target, "\n/* Meta Data */\n");
    const auto& owners = texture.getMetaDataMap();
    for (unsigned int owner = 0; owner < owners.GetSize(); ++owner) {
        const auto& blocks = *owners.GetDataAtIndex(owner);
        for (unsigned int i = 0; i < blocks.GetSize(); ++i)
            printBlock(target, *blocks.GetDataAtIndex(i), owner);
    }
    print(target, "\n/* Data */\n");
    printLines(target, {TextureInternals::data(texture), size}, 32);
    print(target, "};\n");
    return true;
}

}  // namespace moktexture
