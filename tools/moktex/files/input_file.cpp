#include "moktex/files/input_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <istream>
#include <span>
#include <string_view>

#include "moktex/files/container.h"
#include "moktex/files/picture_file.h"
#include "moktex/report/console.h"

namespace fs = std::filesystem;

namespace moktextool {

namespace {

using Bytes = std::vector<unsigned char>;

/// What is read before the kind of a file is known.
constexpr std::size_t headSize = 1 << 16;
/// What may stand beside pixels: headers, metadata, padding.
constexpr std::uint64_t besidePixels = std::uint64_t{64} << 20;
/// Above every file that can be loaded: a texture has less than 4 GiB of pixels.
constexpr std::uint64_t largestFile = (std::uint64_t{4} << 30) + besidePixels;
/// A pixel of four floats, and all MIP levels, with room for padding.
constexpr std::uint64_t mostBytesPerPixel = 16 * 2;

/// Where a texture file's header has the numbers whose product is its pixels in level 0; 0 counts as 1.
struct HeaderFields {
    std::string_view firstBytes;
    std::array<std::uint16_t, 5> offsets;  ///< of width, height, depth, layers, faces; 0: the header has none
};

// clang-format off
constexpr HeaderFields headers[] = {
    // first bytes            width, height, depth, layers, faces
    {{"MOK\x03", 4},          {28, 24, 32, 36, 40}},
    {{"\xABKTX 11", 7},       {36, 40, 44, 48, 52}},
    {{"\xABKTX 20", 7},       {20, 24, 28, 32, 36}},
    {{"DDS ", 4},             {16, 12, 24, 0, 0}},
    {{"\x2C\0\0\0", 4},       {8, 4, 0, 0, 0}},
    {{"\x34\0\0\0", 4},       {8, 4, 0, 48, 0}},
};
// clang-format on

std::uint32_t word(std::span<const unsigned char> bytes, std::size_t offset, bool isBig) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value |= std::uint32_t{bytes[offset + i]} << 8 * (isBig ? 3 - i : i);
    return value;
}

/// The length that a texture file may have by its header.
std::uint64_t promisedLength(std::span<const unsigned char> head, const HeaderFields& header) {
    constexpr std::size_t longestHeader = 148, ktxByteOrder = 12, ddsFourCC = 84, ddsLayers = 140;
    constexpr std::uint64_t cubeFaces = 6;
    if (head.size() < longestHeader) return largestFile;
    const bool isBig = header.firstBytes == headers[1].firstBytes && head[ktxByteOrder] == 4;
    std::uint64_t pixels = 1;
    const auto multiply = [&](std::uint64_t count) {
        pixels = std::min(pixels * std::max<std::uint64_t>(count, 1), largestFile);
    };
    for (const std::size_t offset : header.offsets)
        if (offset != 0) multiply(word(head, offset, isBig));
    if (header.firstBytes[0] == 'D') {
        multiply(cubeFaces);
        if (word(head, ddsFourCC, false) == 0x30315844) multiply(word(head, ddsLayers, false));  // "DX10"
    }
    if (header.offsets[4] == 0 && header.firstBytes[0] != 'D') multiply(cubeFaces);
    return std::min(pixels * mostBytesPerPixel + besidePixels, largestFile);
}

/// The most bytes that a file with such a beginning may have; as many as there are if it is neither texture nor picture.
std::uint64_t longestFile(std::span<const unsigned char> head) {
    for (const HeaderFields& header : headers) {
        const std::span<const unsigned char> first = head.first(std::min(head.size(), header.firstBytes.size()));
        if (std::equal(first.begin(), first.end(), header.firstBytes.begin(), header.firstBytes.end(),
                       [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); }))
            return promisedLength(head, header);
    }
    if (startsLikeTexture(head)) return largestFile;
    const std::optional<std::uint64_t> pixels = picturePixels(head);
    return pixels ? std::min(*pixels * mostBytesPerPixel + besidePixels, largestFile) : head.size();
}

/// Appends up to `count` bytes.
void readMore(std::istream& stream, Bytes& bytes, std::uint64_t count, const std::string& name) {
    constexpr std::size_t chunk = 1 << 20;
    while (count > 0 && stream) {
        const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(chunk, count)), before = bytes.size();
        bytes.resize(before + wanted);
        stream.read(reinterpret_cast<char*>(&bytes[before]), static_cast<std::streamsize>(wanted));
        const auto got = static_cast<std::size_t>(stream.gcount());
        bytes.resize(before + got);
        count -= got;
    }
    if (stream.bad()) throw Failure(ExitStatus::inputOutput, name, "reading failed; check the disk or the connection");
}

[[noreturn]] void failForLength(const std::string& name, std::uint64_t limit) {
    if (limit <= headSize)
        throw Failure(
            ExitStatus::invalidInput, name,
            "neither a texture nor a picture of a known kind; use a .mok, .ktx, .ktx2 or .dds file, or a PNG, JPEG, TGA, BMP or "
            "HDR picture");
    throw Failure(ExitStatus::invalidInput, name,
                  "longer than its header allows, which is " + std::to_string(limit) + " bytes; export it again");
}

/// @param length  of the file, 0 if it is not known
Bytes readStream(std::istream& stream, std::uint64_t length, const std::string& name) {
    Bytes bytes;
    readMore(stream, bytes, headSize, name);
    if (bytes.empty()) throw Failure(ExitStatus::invalidInput, name, "empty; name a picture or texture");
    if (bytes.size() < headSize) return bytes;
    const std::uint64_t limit = longestFile(bytes);
    if (length > limit) failForLength(name, limit);
    bytes.reserve(static_cast<std::size_t>(length));
    readMore(stream, bytes, limit - bytes.size(), name);
    if (stream && stream.peek() != std::istream::traits_type::eof()) failForLength(name, limit);
    return bytes;
}

}  // namespace

std::vector<unsigned char> readInput(const std::string& path, Console& console) {
    if (path == standardStream) return readStream(console.in, 0, displayName(path));
    std::error_code error;
    if (fs::is_directory(path, error)) throw Failure(ExitStatus::inputOutput, path, "a folder; name the files in it");
    errno = 0;
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        const std::error_code reason(errno, std::generic_category());
        if (!fs::exists(path, error)) throw Failure(ExitStatus::inputOutput, path, "no such file; check the name");
        throw Failure(ExitStatus::inputOutput, path, "cannot be read (" + systemReason(reason) + "); check its permissions");
    }
    const std::uintmax_t length = fs::is_regular_file(path, error) ? fs::file_size(path, error) : 0;
    return readStream(stream, error ? 0 : length, path);
}

}  // namespace moktextool
