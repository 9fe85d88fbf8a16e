#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>

#include "moktc/amtc/driver/level_images.h"
#include "moktc/amtc/host/front_end.h"

using namespace moktexture::amtc;

TEST(AmtcFrontEnd, RoundsSizesDownAndWarns) {
    const std::string twiddling = "Warning :Image \"a\" dimensions not powers of 2. Twiddling disabled\n";
    const std::string large = "Warning:Src Image dim \"a\" is too large- truncating\n";
    const std::string truncated = "Warning: Image \"a\" has been truncated to a valid texture size\n";
    // clang-format off
    const struct { std::uint32_t bits, isLinear, warn; std::int32_t size[2], valid[2]; std::uint32_t validLinear; std::string message; } cases[] = {
     // bpp, linear, warn, size, valid size, linear after, message
        {4, 0, 1, {16, 8}, {16, 8}, 0, ""},          {4, 0, 1, {19, 8}, {16, 8}, 0, truncated},
        {2, 0, 0, {19, 15}, {16, 12}, 1, twiddling}, {1, 0, 1, {19, 15}, {16, 8}, 0, truncated},
        {4, 1, 1, {12, 4}, {12, 4}, 1, ""},          {4, 0, 1, {4100, 4099}, {4096, 4096}, 1, twiddling + large},
        {4, 1, 0, {9000, 3}, {4096, 0}, 1, ""}};
    // clang-format on
    for (const auto& [bits, isLinear, warn, size, valid, validLinear, message] : cases) {
        std::int32_t width = size[0], height = size[1];
        std::uint32_t linear = isLinear;
        testing::internal::CaptureStderr();
        CheckSourceSize("a", bits, &width, &height, &linear, warn);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), message) << size[0] << " x " << size[1];
        EXPECT_EQ(width, valid[0]) << size[0] << " x " << size[1];
        EXPECT_EQ(height, valid[1]) << size[0] << " x " << size[1];
        EXPECT_EQ(linear, validLinear) << size[0] << " x " << size[1];
    }
}

TEST(AmtcFrontEnd, WritesWholeBlocksAsTextAndAsBytes) {
    const std::string path = testing::TempDir() + "amtc_blocks_" + std::to_string(std::random_device()());
    const std::uint8_t blocks[] = {0, 1, 0x9A, 255, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    std::FILE* stream = std::fopen(path.c_str(), "w+b");
    WriteBlocksAsText(blocks, stream, 2, 63);
    WriteBlocksRaw(blocks, stream, 1, 64);
    WriteBlocksRaw(blocks, stream, 4, 32);
    std::rewind(stream);
    std::string written(100, '\0');
    written.resize(std::fread(written.data(), 1, written.size(), stream));
    const std::string whole(blocks, blocks + 16);
    EXPECT_EQ(written, "0x00,0x01,0x9a,0xff,0x04,0x05,0x06,0x07," + whole.substr(0, 8) + whole);
    stream = std::freopen(path.c_str(), "rb", stream);
    testing::internal::CaptureStderr();
    WriteBlocksRaw(blocks, stream, 4, 16);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning! Write failed  WriteU32\nWarning! Write failed  WriteU32\n");
    std::fclose(stream);
    std::remove(path.c_str());
}

TEST(AmtcPunchThrough, BleedsColoursUnderCutOutsOrClearsThem) {
    // The image wraps: a pixel is its own neighbour at even distances (7 of the weights) and the other one's at odd ones (8).
    const WorkImage image = makeWorkImage();
    image->Width = 2;
    image->Height = 1;
    // clang-format off
    const struct { std::uint32_t secondGeneration, pixels[2], processed[2]; } cases[] = {
        {0, {0x030000C8, 0x00640064}, {0x001600B2, 0x003A008E}},  // the left one counts with its rebuilt colour
        {0, {0x00C80000, 0xFF0001FF}, {0x000101FE, 0xFF0001FF}}, {1, {0x03FFFFFF, 0x04FFFFFF}, {0, 0x04FFFFFF}}};
    // clang-format on
    for (const auto& [secondGeneration, pixels, processed] : cases) {
        std::copy_n(pixels, 2, image->Pixels[0]);
        PunchThroughPreprocess(*image, secondGeneration);
        EXPECT_TRUE(std::equal(processed, processed + 2, image->Pixels[0])) << pixels[0];
    }
}

TEST(AmtcProgressRecord, ReportsTheShareDone) {
    AmtcProgress* record = nullptr;
    EXPECT_EQ(GetProgress(&record), 0.0F);
    DestroyProgress(&record);
    ASSERT_EQ(CreateProgress(&record), 0u);
    record->mutex.lock();  // the thread that holds it may query and reset
    // clang-format off
    const struct { std::uint32_t counts[4]; float share; } cases[] = {{{0, 0, 0, 0}, 0}, {{0, 1, 2, 4}, 0.75F}, {{1, 3, 2, 4}, 1},
                                                                     {{0, 3, 3, 0}, 0}, {{1, 3, 0, 0}, 1},     {{1, 0, 3, 0}, 0}};
    // clang-format on
    for (const auto& [counts, share] : cases) {
        std::tie(record->started, record->doneA, record->doneB, record->total) = std::tuple_cat(std::to_array(counts));
        EXPECT_EQ(GetProgress(&record), share) << counts[1] << ' ' << counts[2] << ' ' << counts[3];
    }
    ResetProgress(*record, false);
    record->mutex.unlock();
    EXPECT_EQ(record->mipFactor, 1.0F);
    EXPECT_EQ(record->doneB, 0u);
    DestroyProgress(&record);
    EXPECT_EQ(record, nullptr);
}
