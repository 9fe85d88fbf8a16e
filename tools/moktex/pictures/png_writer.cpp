// A PNG file of 16 bits a channel. Each row is stored after a byte that names its filter, the prediction that is subtracted from
// it: of the five, the one with the smallest sum of absolute values, as the PNG standard recommends.

#include "moktex/pictures/png_writer.h"

#include <array>
#include <cstdlib>
#include <span>
#include <string_view>

#include "moktex/pictures/stb_pictures.h"

namespace moktextool {

namespace {

constexpr std::size_t pixelSize = 8;
using Row = std::vector<unsigned char>;

void putBig(std::vector<unsigned char>& target, std::uint32_t value) {
    for (unsigned int shift = 32; shift > 0; shift -= 8)
        target.push_back(static_cast<unsigned char>(value >> (shift - 8)));
}

/// The cyclic redundancy check of ISO 3309, which PNG uses.
std::uint32_t checksum(std::span<const unsigned char> bytes) {
    static constexpr auto table = [] {
        std::array<std::uint32_t, 256> values{};
        for (std::uint32_t n = 0; n < 256; ++n) {
            std::uint32_t value = n;
            for (int bit = 0; bit < 8; ++bit)
                value = value >> 1 ^ ((value & 1) != 0 ? 0xEDB88320u : 0u);
            values[n] = value;
        }
        return values;
    }();
    std::uint32_t sum = 0xFFFFFFFF;
    for (const unsigned char byte : bytes)
        sum = table[(sum ^ byte) & 0xFF] ^ sum >> 8;
    return ~sum;
}

void putChunk(std::vector<unsigned char>& file, std::string_view name, std::span<const unsigned char> data) {
    putBig(file, static_cast<std::uint32_t>(data.size()));
    const std::size_t start = file.size();
    file.insert(file.end(), name.begin(), name.end());
    file.insert(file.end(), data.begin(), data.end());
    putBig(file, checksum(std::span(file).subspan(start)));
}

/// The prediction of a byte from those to its left, above, and above left.
int predict(unsigned int filter, int left, int above, int aboveLeft) {
    if (filter < 3) return filter == 0 ? 0 : filter == 1 ? left : above;
    if (filter == 3) return (left + above) / 2;
    const int estimate = left + above - aboveLeft;
    const int toLeft = std::abs(estimate - left), toAbove = std::abs(estimate - above), toBoth = std::abs(estimate - aboveLeft);
    if (toLeft <= toAbove && toLeft <= toBoth) return left;
    return toAbove <= toBoth ? above : aboveLeft;
}

/// Appends the number of the row's best filter, then the filtered row.
void putFiltered(std::vector<unsigned char>& target, const Row& row, const Row& above) {
    std::vector<unsigned char> best, filtered(row.size() + 1);
    std::uint64_t smallest = ~std::uint64_t{0};
    for (unsigned int filter = 0; filter < 5; ++filter) {
        std::uint64_t sum = 0;
        filtered[0] = static_cast<unsigned char>(filter);
        for (std::size_t i = 0; i < row.size(); ++i) {
            const bool hasLeft = i >= pixelSize;
            const int prediction =
                predict(filter, hasLeft ? row[i - pixelSize] : 0, above[i], hasLeft ? above[i - pixelSize] : 0);
            filtered[i + 1] = static_cast<unsigned char>(row[i] - prediction);
            sum += static_cast<std::uint64_t>(std::abs(static_cast<signed char>(filtered[i + 1])));
        }
        if (sum >= smallest) continue;
        smallest = sum;
        best = filtered;
    }
    target.insert(target.end(), best.begin(), best.end());
}

}  // namespace

std::vector<unsigned char> encodePNG16(const unsigned char* pixels, std::uint32_t width, std::uint32_t height) {
    const std::size_t rowSize = width * pixelSize;
    if ((rowSize + 1) * std::uint64_t{height} >= 1u << 30) return {};
    std::vector<unsigned char> filtered;
    filtered.reserve((rowSize + 1) * height);
    Row row(rowSize), above(rowSize);
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::size_t i = 0; i < rowSize; ++i)
            row[i] = pixels[y * rowSize + (i ^ 1)];  // PNG is big-endian
        putFiltered(filtered, row, above);
        row.swap(above);
    }
    constexpr std::string_view signature = "\x89PNG\r\n\x1A\n";
    std::vector<unsigned char> file(signature.begin(), signature.end()), header;
    putBig(header, width);
    putBig(header, height);
    header.insert(header.end(), {16, 6, 0, 0, 0});  // bits, RGBA, the only compression and filters, no interlace
    putChunk(file, "IHDR", header);
    putChunk(file, "IDAT", deflate(filtered));
    putChunk(file, "IEND", {});
    return file;
}

}  // namespace moktextool
