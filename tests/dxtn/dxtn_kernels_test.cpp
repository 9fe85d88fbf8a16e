#include <gtest/gtest.h>

#include <algorithm>

#include "dxtn/dxtn_encoder.h"
#include "support/test_images.h"

using namespace moktexture;
using testimages::Random;
using Bytes = std::vector<std::uint8_t>;

namespace {

/// Kinds of blocks: noise, one colour, two colours, a ramp, extremes, nearly one colour, colours across (1, 1, 1), two directions
/// of equal variance; then all of them mixed.
constexpr std::uint32_t blockKinds = 8;

/// One row of blocks, some pixels of which are cut out.
Bytes rowOfBlocks(std::uint32_t kind, int blocks, Random& random) {
    Bytes image;
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4 * blocks; ++x) {
            Random ofBlock(1000 * kind + 37 * blocks + x / 4);  // what a block's pixels share
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

Bytes encodeBy(const dxtn::EncoderKernel& kernel, const Bytes& image, std::uint32_t mode) {
    Bytes out(image.size() / (mode == 1 ? 8 : 4));
    kernel.encode(image.data(), out.data(), image.size() / 16, 4, mode);
    return out;
}

}  // namespace

TEST(DXTnKernels, GiveTheBitsOfThePlainForm) {
    const dxtn::EncoderKernel& plain = dxtn::encoderFor(InstructionSet::baseline);
    ASSERT_STREQ(plain.name, "plain");
    // clang-format off
    const std::pair<InstructionSet, const char*> fastLevels[] = {
        {InstructionSet::sse41, "SSE4.1"}, {InstructionSet::avx2, "AVX2"}};
    // clang-format on
    for (const auto& [level, name] : fastLevels) {
        if (level > detectInstructionSet()) continue;
        const dxtn::EncoderKernel& kernel = dxtn::encoderFor(level);
        ASSERT_STREQ(kernel.name, name);
        ASSERT_NE(kernel.encode, plain.encode);
        Random random(7);
        for (std::uint32_t kind = 0; kind <= blockKinds; ++kind) {
            for (int blocks = 1; blocks <= 17; ++blocks) {  // every number of lanes left over
                const auto image = rowOfBlocks(kind, blocks, random);
                for (std::uint32_t mode = 1; mode <= 5; ++mode)
                    ASSERT_EQ(encodeBy(kernel, image, mode), encodeBy(plain, image, mode))
                        << name << ", kind " << kind << ", " << blocks << " blocks, mode " << mode;
            }
        }
    }
}
