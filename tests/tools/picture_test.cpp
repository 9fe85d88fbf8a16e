// Picture files as cameras, browsers and attackers make them.
#include <stb/stb_image_write.h>

#include <cstring>
#include <functional>

#include "moktex/pictures/exif_orientation.h"
#include "moktex/pictures/jpeg_reader.h"
#include "moktex/pictures/png_reader.h"
#include "moktex/pictures/stb_pictures.h"
#include "tool_fixture.h"

using namespace moktextool;

namespace {

using Bytes = std::vector<unsigned char>;

Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}
Bytes big(std::size_t value, unsigned int size) {
    Bytes bytes;
    for (unsigned int i = size; i-- > 0;)
        bytes.push_back(static_cast<unsigned char>(value >> 8 * i));
    return bytes;
}

Bytes segment(unsigned char marker, const Bytes& body) {
    return Bytes{0xFF, marker} + big(body.size() + 2, 2) + body;
}

/// EXIF data with an orientation behind another entry.
Bytes exif(unsigned char orientation, bool isLittle) {
    const auto number = [&](std::size_t value, unsigned int size) {
        Bytes bytes = big(value, size);
        if (isLittle) std::reverse(bytes.begin(), bytes.end());
        return bytes;
    };
    return bytesOf(isLittle ? "II" : "MM") + number(42, 2) + number(8, 4) + number(2, 2) + number(0x100, 2) + number(3, 2) +
           number(1, 4) + number(5, 2) + number(0, 2) + number(0x112, 2) + number(3, 2) + number(1, 4) + number(orientation, 2) +
           number(0, 2) + number(0, 4);
}

Bytes encodeJPEG(int width, int height, const Bytes& rgba) {
    Bytes file;
    const auto append = [](void* target, void* data, int size) {
        const auto* bytes = static_cast<unsigned char*>(data);
        static_cast<Bytes*>(target)->insert(static_cast<Bytes*>(target)->end(), bytes, bytes + size);
    };
    stbi_write_jpg_to_func(append, &file, width, height, 4, rgba.data(), 95);
    return file;
}
/// The file with a segment behind the first marker.
Bytes withSegment(const Bytes& jpeg, const Bytes& added) {
    return Bytes(jpeg.begin(), jpeg.begin() + 2) + added + Bytes(jpeg.begin() + 2, jpeg.end());
}

/// A chunk with its checksum, by the definition: bit by bit.
Bytes chunk(const std::string& name, const Bytes& data) {
    const Bytes checked = bytesOf(name) + data;
    std::uint32_t sum = 0xFFFFFFFF;
    for (const unsigned char byte : checked) {
        sum ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320u : 0u);
    }
    return big(data.size(), 4) + checked + big(~sum, 4);
}
/// A PNG file; `rows` each begin with their filter.
Bytes png(std::uint32_t width, std::uint32_t height, unsigned char bits, unsigned char type, const Bytes& rows,
          const Bytes& extra = {}) {
    return bytesOf("\x89PNG\r\n\x1A\n") + chunk("IHDR", big(width, 4) + big(height, 4) + Bytes{bits, type, 0, 0, 0}) + extra +
           chunk("IDAT", deflate(rows)) + chunk("IEND", {});
}

Bytes pixelsOf(const DecodedPicture& picture) {
    return {picture.pixels.get(), picture.pixels.get() + picture.rowSize() * picture.height};
}

/// The message of the Failure that decoding gives; "" if it succeeds.
std::string messageOf(const std::function<void()>& decode) {
    try {
        decode();
        return "";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status, ExitStatus::invalidInput);
        return failure.what();
    }
}

}  // namespace

TEST_F(ToolTest, AHuffmanTableOfTooManyCodesIsRefused) {
    // 63 bytes: a table that declares 2 * 255 codes, and bytes for 38 of them.
    Bytes counts(16, 0);
    counts[14] = counts[15] = 255;
    const Bytes file = Bytes{0xFF, 0xD8, 0xFF, 0xC4} + big(2 + 17 + 38, 2) + Bytes{0} + counts + Bytes(38, 7) + Bytes{0xFF, 0xD9};
    ASSERT_EQ(file.size(), 63u);
    const std::string bytes(file.begin(), file.end());
    write("a.jpg", bytes);
    for (const char* command : {"info @a.jpg", "convert @a.jpg @new.mok", "compare @a.jpg @a.jpg"})
        expectRefusal(command, ExitStatus::invalidInput, "a.jpg: the picture is broken (");
    EXPECT_NE(messageOf([&] { decodeJPEGByStb(file, "a"); }).find("Huffman"), std::string::npos);
    // The same in a whole picture, and a table with three codes of one bit.
    const Bytes good = encodeJPEG(16, 16, testimages::make(testimages::Kind::noise, 16, 16));
    EXPECT_EQ(messageOf([&] { decodeJPEGByStb(good, "a"); }), "");
    Bytes oversubscribed(17, 0);
    oversubscribed[1] = 3;
    for (const Bytes& table : {Bytes(file.begin() + 6, file.end() - 2), oversubscribed + Bytes(3, 1)}) {
        const Bytes bad = withSegment(good, segment(0xC4, table));
        EXPECT_NE(messageOf([&] { decodeJPEGByStb(bad, "a"); }).find("Huffman"), std::string::npos);
    }
}

TEST_F(ToolTest, EXIFOrientationIsAppliedAndTold) {
    // Corners of four blocks as stored, A B above C D, and as shown.
    constexpr const char* shown[] = {"", "ABCD", "BADC", "DCBA", "CDAB", "ACBD", "CADB", "DBCA", "BDAC"};
    constexpr unsigned char greys[] = {40, 100, 160, 220};
    Bytes stored;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 32; ++x) {
            const unsigned char grey = greys[y / 8 * 2 + x / 16];
            stored.insert(stored.end(), {grey, grey, grey, 255});
        }
    const Bytes jpeg = encodeJPEG(32, 16, stored);
    for (unsigned char orientation = 0; orientation <= 9; ++orientation) {
        for (const bool isLittle : {false, true}) {
            const Bytes file =
                withSegment(jpeg, segment(0xE1, bytesOf(std::string("Exif\0\0", 6)) + exif(orientation, isLittle)));
            write("a.jpg", std::string(file.begin(), file.end()));
            const bool isValid = orientation >= 1 && orientation <= 8, turns = isValid && orientation > 1;
            const std::string told = expectSuccess("convert @a.jpg -o @a.png -y").err;
            EXPECT_EQ(told.find("EXIF orientation " + std::to_string(orientation)) != std::string::npos, turns) << told;
            const int width = orientation >= 5 && isValid ? 16 : 32, height = 48 - width;
            EXPECT_EQ(info("a.png")["width"], width);
            const auto pixels = ToolTest::pixelsOf("a.png");
            std::string corners;
            for (const int y : {0, height - 1})
                for (const int x : {0, width - 1}) {
                    const int grey = pixels[static_cast<std::size_t>(y * width + x) * 4];
                    corners += static_cast<char>('A' + (grey - 10) / 60);
                }
            EXPECT_EQ(corners, shown[isValid ? orientation : 1]) << int{orientation};
        }
    }
}

TEST(Pictures, BrokenEXIFDataHasNoOrientation) {
    for (const bool isLittle : {false, true}) {
        const Bytes whole = exif(6, isLittle);
        EXPECT_EQ(exifOrientation(whole), 6u);
        for (std::size_t size = 0; size < 34; ++size) {
            const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_EQ(exifOrientation(part), 1u) << size;
        }
        for (std::size_t i = 4; i < 10; ++i) {  // offset of the directory, number of entries
            Bytes far = whole;
            far[i] = 0xFF;
            exifOrientation(far);
        }
    }
}

TEST(Pictures, EveryPrefixIsRefusedWithALine) {
    const Bytes noise = testimages::make(testimages::Kind::noise, 16, 16);
    const Bytes jpeg = encodeJPEG(16, 16, noise), deep = png(1, 1, 16, 6, Bytes(9, 0));
    for (std::size_t size = 3; size < jpeg.size() - 2; ++size) {
        const Bytes part(jpeg.begin(), jpeg.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_NE(messageOf([&] { decodeJPEG(part, "a"); }), "") << size;
        EXPECT_NE(messageOf([&] { decodeJPEGByStb(part, "a"); }), "") << size;
    }
    for (std::size_t size = 8; size < deep.size() - 12; ++size) {
        const Bytes part(deep.begin(), deep.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_NE(messageOf([&] { decodePNG(part, "a"); }), "") << size;
    }
    // Sizes that the file cannot hold take no memory.
    EXPECT_NE(messageOf([&] { decodePNG(png(16384, 16384, 8, 6, Bytes(9, 0)), "a"); }), "");
    Bytes vast = jpeg;
    const unsigned char frame[] = {0xFF, 0xC0};
    const auto at = std::search(vast.begin(), vast.end(), frame, frame + 2);
    at[5] = at[7] = 0x20;
    EXPECT_NE(messageOf([&] { decodeJPEG(vast, "a"); }), "");
    EXPECT_NE(messageOf([&] { decodeJPEGByStb(vast, "a"); }).find("ends early"), std::string::npos);
}

TEST(Pictures, PNGsOfEveryFormHaveTheSamePixelsByBothLibraries) {
    // clang-format off
    const struct { unsigned char type, channels; std::vector<unsigned char> bits; Bytes transparent; } forms[] = {
        // colour type, channels, bits, transparency
        {0, 1, {1, 2, 4, 8, 16}, {}}, {0, 1, {1, 2, 4, 8, 16}, {0, 1}}, {2, 3, {8, 16}, {}}, {2, 3, {8, 16}, {0, 1, 0, 2, 0, 3}},
        {3, 1, {1, 2, 4, 8}, {}}, {3, 1, {1, 2, 4, 8}, {0, 128}}, {4, 2, {8, 16}, {}}, {6, 4, {8, 16}, {}}};
    // clang-format on
    constexpr std::uint32_t width = 7, height = 5;
    for (const auto& [type, channels, allBits, transparent] : forms) {
        for (const unsigned char bits : allBits) {
            Bytes rows;
            for (unsigned char y = 0; y < height; ++y)
                rows = rows + Bytes{y} + testimages::randomBytes((width * channels * bits + 7) / 8, y + 1u);
            if (type == 3 && bits == 8)
                for (unsigned char& byte : rows)
                    byte %= 5;
            if (transparent.size() == 6 && bits == 8) rows[1] = 1, rows[2] = 2, rows[3] = 3;
            Bytes extra;
            if (type == 3) extra = chunk("PLTE", testimages::randomBytes(3u << bits, 9));
            if (!transparent.empty()) extra = extra + chunk("tRNS", transparent);
            const Bytes file = png(width, height, bits, type, rows, extra);
            const DecodedPicture picture = decodePNG(file, "a");
            EXPECT_EQ(pixelsOf(picture), pixelsOf(decodeByStb(file, "a"))) << int{type} << ' ' << int{bits};
            EXPECT_EQ(picture.format == rgba16Format, bits == 16);
        }
    }
}

TEST_F(ToolTest, ColourProfilesAndGammaAreTold) {
    const Bytes rows = {0, 1, 2, 3, 4};
    const Bytes jpeg = encodeJPEG(8, 8, Bytes(256, 100));
    const auto jpegProfile = [&](const std::string& text) {
        return withSegment(jpeg, segment(0xE2, bytesOf(std::string("ICC_PROFILE\0\1\1", 14) + text)));
    };
    const auto pngWith = [&](const Bytes& extra) { return png(1, 1, 8, 6, rows, extra); };
    // clang-format off
    const struct { const char* name; Bytes file; std::string told; } cases[] = {
        {"plain.png",   pngWith({}),                                                             ""},
        {"srgb.png",    pngWith(chunk("gAMA", big(100000, 4)) + chunk("sRGB", {0})),             ""},
        {"usual.png",   pngWith(chunk("gAMA", big(45455, 4))),                                   ""},
        {"linear.png",  pngWith(chunk("gAMA", big(100000, 4))),                                  "gamma of 1.000 is not applied"},
        {"wide.png",    pngWith(chunk("iCCP", bytesOf(std::string("Wide\0\0", 6)) + deflate(rows))), "profile 'Wide' is not applied"},
        {"as.png",      pngWith(chunk("iCCP", bytesOf(std::string("sRGB 2\0\0", 8)) + deflate(rows))), ""},
        {"plain.jpg",   jpeg,                                                                    ""},
        {"wide.jpg",    jpegProfile("some profile"),                                             "profile is not applied"},
        {"as.jpg",      jpegProfile("..sRGB IEC61966.."),                                        ""}};
    // clang-format on
    for (const auto& [name, file, told] : cases) {
        write(name, std::string(file.begin(), file.end()));
        const std::string err = expectSuccess(std::string("convert --quiet -y -o @new.mok @") + name).err;
        EXPECT_EQ(err.empty(), told.empty()) << name << err;
        EXPECT_NE(err.find(told), std::string::npos) << err;
    }
}

TEST(Pictures, JPEGLibrariesDifferByAFewUnits) {
    const Bytes file = encodeJPEG(64, 48, testimages::make(testimages::Kind::gradient, 64, 48));
    const Bytes a = pixelsOf(decodeJPEG(file, "a")), b = pixelsOf(decodeJPEGByStb(file, "a"));
    ASSERT_EQ(a.size(), b.size());
    int largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, std::abs(a[i] - b[i]));
    EXPECT_LE(largest, 4);
}
