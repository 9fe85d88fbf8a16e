#include "dxtn/dxtn_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "dxtn/dxtn_block.h"
#include "reference/dxtn_reference_axis.h"
#include "support/test_images.h"

using namespace moktexture;
using testimages::Random;
using Bytes = std::vector<std::uint8_t>;

namespace {

const dxtn::EncoderKernel& baseline = dxtn::encoderFor(InstructionSet::baseline);

/// Kinds of blocks: noise, one colour, two colours, a ramp, extremes, nearly one colour, colours in the plane across (1, 1, 1),
/// two directions of equal variance; then all of them mixed.
constexpr std::uint32_t blockKinds = 8;

/// One row of blocks. Some pixels have alpha 0.
Bytes rowOfBlocks(std::uint32_t kind, int blocks, Random& random) {
    Bytes image;
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4 * blocks; ++x) {
            Random ofBlock(1000 * kind + 37 * blocks + x / 4);  // for what a block's pixels share
            const std::uint32_t thisKind = kind == blockKinds ? ofBlock.below(blockKinds) : kind;
            const auto around = [](Random& source, int reach) { return static_cast<int>(source.below(2 * reach + 1)) - reach; };
            const int u = around(random, 30), v = around(random, 30);
            const bool isSecond = random.below(2) == 1, isCutOut = random.below(12) == 0;
            for (int channel = 0; channel < 4; ++channel) {
                const int base = 128 + around(ofBlock, 128), slope = around(ofBlock, 20), other = around(ofBlock, 128);
                const int across[] = {u, v, -u - v, 99}, square[] = {12 * (x % 4), 12 * y, base / 2, 99};
                const int noise = static_cast<int>(random.below(256)), near = around(random, 1);
                // clang-format off
                const int values[] = {
                    noise, base, isSecond ? other : base, base + slope * (x % 4 + 3 * y), isSecond * 255, base + near,
                    128 + across[channel], 110 + square[channel]};
                // clang-format on
                image.push_back(static_cast<std::uint8_t>(std::clamp(values[thisKind], 0, 255)));
            }
            if (isCutOut) image.back() = 0;
        }
    return image;
}

Bytes encodeBy(const dxtn::EncoderKernel& kernel, const Bytes& image, DXTMode mode) {
    Bytes out(image.size() / (mode == 1 ? 8 : 4));
    kernel.encode(packedImage(image.data(), static_cast<std::uint32_t>(image.size() / 16), 4), out.data(), mode);
    return out;
}

/// Calls `check(image, message)` with rows of every kind and of every number of blocks that may remain in a batch.
template <class Check>
void forEachRow(Check check) {
    Random random(7);
    for (std::uint32_t kind = 0; kind <= blockKinds; ++kind)
        for (int blocks = 1; blocks <= 17; ++blocks)
            check(rowOfBlocks(kind, blocks, random), "kind " + std::to_string(kind) + ", blocks " + std::to_string(blocks));
}

}  // namespace

TEST(DXTnKernels, BaselineEqualsTheReferenceAlongTheAxis) {
    ASSERT_STREQ(baseline.name, "baseline");
    int compared = 0;
    forEachRow([&](const Bytes& image, const std::string& row) {
        const ConstImageView view = packedImage(image.data(), static_cast<std::uint32_t>(image.size() / 16), 4);
        const Bytes encoded = encodeBy(baseline, image, 1);
        for (std::uint32_t x = 0; x < view.width; x += 4) {
            const PixelBlock block = loadBlock(view, x, 0);
            std::set<std::uint16_t> colours;
            std::uint32_t transparent = 0;
            for (std::size_t pixel = 0; pixel < blockArea; ++pixel) {
                colours.insert(dxtn::packRGB565(block[pixel]));
                transparent |= std::uint32_t{block[pixel] >> 24 == 0} << pixel;
            }
            if (colours.size() < 3) continue;
            const auto expected = dxtn::packColourBlock(dxtn::encodeAlongAxisReference(block, transparent));
            ASSERT_EQ(dxtn::readWord(&encoded[x * 2]), expected) << row << ", x " << x;
            ++compared;
        }
    });
    EXPECT_GT(compared, 500);
}

TEST(DXTnKernels, FastOnesEqualTheBaseline) {
    for (const auto& [set, name] : {std::pair{InstructionSet::sse41, "SSE4.1"}, {InstructionSet::avx2, "AVX2"}}) {
        if (set > detectInstructionSet()) continue;
        const dxtn::EncoderKernel& kernel = dxtn::encoderFor(set);
        ASSERT_STREQ(kernel.name, name);
        forEachRow([&](const Bytes& image, const std::string& row) {
            for (DXTMode mode = 1; mode <= 5; ++mode)
                ASSERT_EQ(encodeBy(kernel, image, mode), encodeBy(baseline, image, mode))
                    << kernel.name << ", " << row << ", " << mode;
        });
    }
}
