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

/// Kept: a write that fails goes unnoticed, so that the export of a texture always succeeds.
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

/// Prints bytes with a line's end after every `perLine` of them; a rest below that has none.
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

/// Prints a block of the metadata, whose owner stands at `ownerIndex` in the map.
void printBlock(ByteWriter& target, const MetaDataBlock& block, unsigned int ownerIndex) {
    for (const std::uint32_t field : {block.fourCC, block.key, block.dataSize})
        printLines(target, bytesOf(field), sizeof(field));
    const Bytes payload(block.data, block.data == nullptr ? 0 : block.dataSize);
    // Kept: a payload stands on one line, but a line for each byte below every 32nd owner: the counter is the owner's.
    if (ownerIndex % 32 == 31)
        printLines(target, payload, 1);
    else
        printBytes(target, payload);
    print(target, "\n");
}

}  // namespace

std::string arrayNameOf(const std::string& path) {
    // Kept: the name ends at the first '.' of the path, a folder's too, and may come out empty.
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
    // Kept: the heading follows the record's count, the blocks the map: what a native file of the texture holds.
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
