#include <gtest/gtest.h>

#include <utility>

#include "moktc/decode/decode_cells.h"
#include "moktc_levels.h"
#include "reference/moktc_decoders.h"
#include "support/test_images.h"

using namespace moktexture;
using namespace moktexture::moktc;

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Random blocks with some bits of every colour word set or cleared.
Bytes randomBlocks(const Level& level, std::uint32_t set, std::uint32_t cleared, std::uint64_t seed) {
    Bytes blocks = testimages::randomBytes(level.blockCount() * bytesPerBlock, seed);
    for (std::size_t offset = 0; offset < blocks.size(); offset += bytesPerBlock) {
        Block block = readBlock(&blocks[offset]);
        block.colours = (block.colours | set) & ~cleared;
        writeBlock(&blocks[offset], block);
    }
    return blocks;
}

/// Decodes to rows with two pixels between them, which must stay as they are.
Bytes decodedByCells(const Level& level, const Bytes& blocks) {
    const std::size_t rowBytes = std::size_t{4} * level.width;
    const Bytes gap(8, 0xAA);
    Bytes pixels((rowBytes + gap.size()) * level.height, 0xAA), packed;
    decodeCells(blocks.data(), level.variant, {{pixels.data(), level.width, level.height, rowBytes + gap.size()}});
    for (auto row = pixels.begin(); row != pixels.end();) {
        const auto end = row + static_cast<std::ptrdiff_t>(rowBytes);
        packed.insert(packed.end(), row, end);
        row = end + 8;
        EXPECT_EQ(Bytes(end, row), gap);
    }
    return packed;
}

Bytes decodedByReference(const Level& level, const Bytes& blocks) {
    Bytes pixels(std::size_t{4} * level.width * level.height, 0xAA);
    const bool is2bpp = level.variant.is2bpp();
    if (!level.variant.isSecondGeneration()) DecodeTwiddled(blocks.data(), is2bpp, level.width, level.height, pixels.data());
    if (level.variant.isSecondGeneration()) DecodeLinear(blocks.data(), is2bpp, level.width, level.height, pixels.data());
    return pixels;
}

}  // namespace

TEST(MOKTCDecodeEquality, CellDecoderAgreesWithTheReferenceDecoders) {
    // clang-format off
    const std::uint32_t sizes[][2] = {
        {1, 1}, {2, 3}, {4, 4}, {7, 9}, {8, 8}, {9, 8}, {16, 8}, {15, 17}, {17, 5}, {20, 4}, {23, 33}, {32, 16}, {48, 48},
        {1, 100}, {100, 1}, {40, 72}, {64, 64}, {130, 12}};
    const struct { std::uint32_t set, cleared; } kinds[] = {
        // bits set         cleared            in every colour word
        {  0,               0},
        {  ~0u,             0},
        {  0,               ~0u},
        {  modeBit,         flatBit},
        {  0,               modeBit | flatBit},
        {  modeBit|flatBit, 0},
        {  flatBit,         modeBit},
        {  opaqueBothBit,   flatBit}};
    // clang-format on
    std::uint64_t seed = 1;
    for (const auto& [width, height] : sizes)
        for (const auto& [set, cleared] : kinds)
            for (const BlockVariant& variant : allVariants) {
                const Level level = {width, height, variant};
                const Bytes blocks = randomBlocks(level, set, cleared, seed++);
                ASSERT_EQ(decodedByCells(level, blocks), decodedByReference(level, blocks))
                    << width << 'x' << height << ", " << variant << std::hex << ", bits " << set << ' ' << cleared;
            }
}

// The digests come from an independent second implementation of both decoders.
TEST(MOKTCDecodeEquality, RandomBlocksDecodeAsInTheSecondImplementation) {
    const std::uint64_t digests[] = {0x7B8861B982E57CFE, 0xC55C3B1B2BCD9F1E, 0x97D4300FA85AFB28, 0x872DD3CF3D9E868E};
    for (std::size_t i = 0; i < allVariants.size(); ++i) {
        Bytes all;
        for (const auto& [width, height] : {std::pair{64u, 32u}, {48u, 48u}, {13u, 7u}, {3u, 70u}}) {
            const Level level = {width, height, allVariants[i]};
            const Bytes pixels = decodedByCells(level, testimages::randomBytes(level.blockCount() * bytesPerBlock, 7));
            all.insert(all.end(), pixels.begin(), pixels.end());
        }
        EXPECT_EQ(testimages::digest(all), digests[i]) << allVariants[i] << std::hex << " 0x" << testimages::digest(all);
    }
}

TEST(MOKTCDecodeEntry, ReturnsSizesModulo32BitsAndRefusesWhatDoesNotFit) {
    // clang-format off
    const struct { std::uint32_t width, height; std::uint8_t is2bpp; std::uint32_t second, size; bool isDecoded; } cases[] = {
        // width    height     2 bpp  second  size        decoded
        {  4,          6,        0,     0,      96,         true},
        {  13,         5,        1,     1,      260,        true},
        {  4,          6,        2,     7,      96,         true},   // any other number counts as 1
        {  0xFFFFFFFF, 0,        1,     1,      0,          true},
        {  65536,      65536,    0,     0,      0,          false},
        {  65540,      65540,    1,     1,      0x200040,   false},
        {  1,          1u << 29, 0,     0,      1u << 31,   false}}; // blocks of 8 columns have more than 2^32 bits
    // clang-format on
    const Bytes blocks(64, 0xFF), untouched(260, 7);
    for (const auto& [width, height, is2bpp, generation, size, isDecoded] : cases) {
        Bytes pixels = untouched;
        EXPECT_EQ(DecompressMOKTC(nullptr, pixels.data(), &width, &height, is2bpp, &generation), size);
        EXPECT_EQ(DecompressMOKTC(blocks.data(), nullptr, &width, &height, is2bpp, &generation), size);
        EXPECT_EQ(pixels, untouched);
        EXPECT_EQ(DecompressMOKTC(blocks.data(), pixels.data(), &width, &height, is2bpp, &generation), isDecoded ? size : 0);
        EXPECT_EQ(pixels == untouched, !isDecoded || size == 0) << width << " x " << height;
    }
    std::uint32_t pixel = 7, one = 1;
    EXPECT_EQ(DecompressMOKTC(blocks.data(), &pixel, nullptr, &one, 0, &one), 0u);
    EXPECT_EQ(DecompressMOKTC(blocks.data(), &pixel, &one, nullptr, 0, &one), 0u);
    EXPECT_EQ(DecompressMOKTC(blocks.data(), &pixel, &one, &one, 0, nullptr), 0u);
    EXPECT_EQ(pixel, 7u);
}
