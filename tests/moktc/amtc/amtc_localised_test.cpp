#include "moktc/amtc/amtc_localised.h"

#include <gtest/gtest.h>

#include <future>

#include "moktc/block/block_order.h"
#include "support/test_images.h"

using namespace moktexture;
using namespace moktexture::amtc;
using testimages::Kind;
using Bytes = std::vector<std::uint8_t>;

namespace {

struct Map {
    std::int32_t width, height;
    Bytes pixels;
};

struct Request {
    std::uint32_t bits = 4, generation = 0, isLinear = 1, isRGBA = 1, colourMIPs = 0, quality = 0, unused = 1;
    std::int32_t stride = 0, mipMode = 0, punchThrough = 0;
};

std::uint32_t encode(const Map& map, const Request& r, std::uint8_t* destination) {
    const std::uint8_t* const topRow = map.pixels.data() + (r.stride < 0 ? -r.stride * (map.height - 1) : 0);
    return CompressImageLevels(topRow, r.isRGBA, map.width, map.height, r.stride, destination, std::uint8_t(r.quality), r.mipMode,
                               r.unused, r.punchThrough, 4, r.bits, r.generation, r.unused, r.isLinear, r.colourMIPs, nullptr);
}

/// The blocks of the top MIP level.
Bytes encoded(const Map& map, const Request& request) {
    Bytes blocks(static_cast<std::size_t>(map.width * map.height) * request.bits / 8, 0xCD);
    EXPECT_EQ(encode(map, request, blocks.data()), 0u);
    return blocks;
}

}  // namespace

TEST(AmtcCompressImageLevels, EncodesEveryMIPLevelOfAChain) {
    // Digests of the chain and the bytes behind it, taken when each MIP level agreed with the encoding of an image that a second
    // implementation of the rules had tiled and halved.
    // clang-format off
    const struct { std::int32_t width, height; Request request; std::uint64_t digest; } cases[] = {
        {32, 32, {.mipMode = 1}, 0xa96d2d5d926d7b76}, {8, 32, {.isLinear = 0, .mipMode = 1}, 0xf521a98300aaaf16},
        {32, 16, {.bits = 2, .generation = 1, .mipMode = 1, .punchThrough = 1}, 0x2f46b28adac51b25},
        {16, 16, {.stride = 80, .mipMode = 2}, 0x93ed74ec0e5050c9}, {24, 8, {.stride = -96, .mipMode = 2}, 0x2f8d8ff5405308c4},
        {16, 512, {.bits = 2, .colourMIPs = 1, .stride = -64, .mipMode = 2}, 0x5b8507e4fe2d7621}};
    // clang-format on
    for (const auto& [width, height, request, digest] : cases) {
        const Map map{width, height, testimages::randomBytes(std::size_t(width * height * 4) + 2000, 1)};
        Bytes chain(65536, 0xCD);
        EXPECT_EQ(encode(map, request, chain.data()), 0u);
        EXPECT_EQ(testimages::digest(chain), digest) << width << " x " << height;
    }
}

// The digests were taken from this encoder: its output may not change from one build to the next.
TEST(AmtcCompressImageLevels, EncodesAllKindsOfImagesToTheSameBlocks) {
    // clang-format off
    const struct { std::uint32_t bits, generation, quality; std::uint64_t digest; } cases[] = {
     // bpp, generation, quality, digest
        {4, 0, 1, 0xe8620fc620841702}, {4, 0, 3, 0xc8f1153aff8072b8}, {4, 1, 0, 0x35c7f6bbdffc7fa8},
        {4, 1, 2, 0x06a6bbe889216d2f}, {4, 1, 4, 0x47f244cab5932932}, {2, 0, 0, 0x773d2882269c761c},
        {2, 0, 2, 0xa540251711cf685e}, {2, 1, 1, 0x32f1f9c721da38ba}, {2, 1, 3, 0x45093d61196969b3}};
    // clang-format on
    for (const auto& [bits, generation, quality, digest] : cases) {
        Bytes pixels(32 * 8 * 4, 100);  // a flat image above one of each kind
        for (const Kind kind : testimages::allKinds) {
            const Bytes image = testimages::make(kind, 32, 8);
            pixels.insert(pixels.end(), image.begin(), image.end());
        }
        const Bytes blocks = encoded({32, 56, pixels}, {.bits = bits, .generation = generation, .quality = quality});
        EXPECT_EQ(testimages::digest(blocks), digest) << std::hex << testimages::digest(blocks);
    }
}

TEST(AmtcCompressImageLevels, EncodesTwoImagesAtOnce) {
    const Map maps[] = {{40, 28, testimages::make(Kind::cutOut, 40, 28)}, {32, 64, testimages::make(Kind::edges, 32, 64)}};
    const Request request{.generation = 1, .quality = 1};
    std::future<Bytes> atOnce[2];
    for (std::size_t i : {0u, 1u})
        atOnce[i] = std::async(std::launch::async, [&, i] { return encoded(maps[i], request); });
    for (std::size_t i : {0u, 1u})
        EXPECT_EQ(atOnce[i].get(), encoded(maps[i], request)) << "image " << i;
}

TEST(AmtcCompressImageLevels, ReadsBothByteOrdersAndAnyStrideAndClampsQuality) {
    const Map packed{16, 12, testimages::make(Kind::softAlpha, 16, 12)};
    Map rotated{16, 12, Bytes(12 * 80, 0xCD)};
    for (std::size_t i = 0; i < packed.pixels.size(); ++i)
        rotated.pixels[(11 - i / 64) * 80 + i % 64 / 4 * 4 + (i + 1) % 4] = packed.pixels[i];
    const Bytes blocks = encoded(packed, {.generation = 1});
    EXPECT_EQ(encoded(rotated, {.generation = 1, .isRGBA = 0, .unused = 0, .stride = -80}), blocks);
    EXPECT_EQ(encoded(packed, {.generation = 1, .quality = 255}), encoded(packed, {.generation = 1, .quality = 4}));
}

TEST(AmtcCompressImageLevels, TwiddlesBlocksWhereBothSidesOfTheGridArePowersOfTwo) {
    for (const auto& [across, down, isTwiddled] :
         {std::tuple(4u, 2u, true), {8, 2, true}, {1, 2, true}, {6, 2, false}, {4, 3, false}}) {
        const Map map{std::int32_t(across * 4), std::int32_t(down * 4), testimages::make(Kind::noise, across * 4, down * 4)};
        const Bytes linear = encoded(map, {}), stored = encoded(map, {.isLinear = 0});
        for (std::uint32_t i = 0; i < across * down; ++i) {
            const std::uint64_t index = isTwiddled ? moktc::BlockIndex(across, down, i % across, i / across, false) : i;
            EXPECT_TRUE(std::equal(&linear[i * 8], &linear[i * 8] + 8, &stored[index * 8])) << across << ' ' << down << ' ' << i;
        }
    }
}

TEST(AmtcCompressImageLevels, RefusesInvalidArguments) {
    const Bytes pixels(4096, 9);
    // clang-format off
    const struct { std::int32_t width, height, stride, mipMode; std::uint32_t bits; } cases[] = {
        {0, 8, 0, 0, 4}, {8, 0, 0, 0, 4}, {-8, 8, 0, 0, 4}, {4100, 4, 0, 0, 4}, {8, 4100, 0, 0, 4}, {6, 8, 0, 0, 4}, {8, 6, 0, 0, 4},
        {12, 8, 0, 0, 2}, {8, 8, 0, 0, 3}, {8, 8, 0, 0, 8}, {8, 12, 0, 0, 1}, {8, 8, -32, 2, 4}, {4, 8, 0, 1, 4}, {8, 8, 0, 1, 2}};
    // clang-format on
    for (const auto& [width, height, stride, mipMode, bits] : cases) {
        Bytes blocks(64, 0xCD);
        const Request request{.bits = bits, .stride = stride, .mipMode = mipMode};
        EXPECT_EQ(encode({width, height, pixels}, request, blocks.data()), 1u) << width << ' ' << bits;
        EXPECT_EQ(blocks == Bytes(64, 0xCD), mipMode != 1) << "only the top MIP level is written";
    }
    EXPECT_EQ(encode({8, 8, pixels}, {}, nullptr), 1u);
    AmtcProgress progress{1, 2, 3, 4, 0, {}}, *record = &progress;
    EXPECT_EQ(CompressImageLevels(nullptr, 1, 8, 8, 0, nullptr, 0, 1, 0, 0, 4, 4, 0, 0, 0, 0, &record), 1u);
    EXPECT_EQ(progress.started + progress.doneA + progress.doneB + progress.total, 0u);
    EXPECT_EQ(progress.mipFactor, 1.3333334F);
}

TEST(AmtcCompressImageLevels, WritesDiagnosticsToTheStreamOfTheHost) {
    const Bytes pixels(4096, 9);
    Bytes blocks(256);
    diagnosticsStream = stderr;
    testing::internal::CaptureStderr();
    encode({8, 8, pixels}, {.mipMode = 1, .punchThrough = 1}, blocks.data());
    encode({12, 8, pixels}, {.mipMode = 1}, blocks.data());
    diagnosticsStream = nullptr;
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\nCompressing data. Please wait...\n\nDoing \"Punch-Through\" preprocess of top map.....\n"
              "Compressing top map (8 * 8).....\n\n\nDoing Level 1 (8 x 8).....\n\nDoing Level 2 (8 x 8).....\n"
              "\nDoing Level 3 (8 x 8).....\n\nCompressing data. Please wait...\n\nWarning: Size is not compatible with MIP "
              "mapping. Ignoring -m\n"
              "Compressing top map (12 * 8).....\n\n");
}
