// A JPEG file is a row of segments (ITU-T T.81, annex B): a marker FF xx, a length that counts itself, and the body; the
// segment of a scan is followed by its entropy-coded data, in which FF is followed by 00 or by a restart marker D0 to D7.

#include "moktex/pictures/jpeg_segments.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "moktex/pictures/exif_orientation.h"

namespace moktextool {

namespace {

using Bytes = std::span<const unsigned char>;

enum Marker : unsigned int {
    startOfImage = 0xD8,
    endOfImage = 0xD9,
    startOfScan = 0xDA,
    firstFrame = 0xC0,
    huffmanTables = 0xC4,  // among the markers of frames
    lastFrame = 0xCF,
    firstApplication = 0xE0,
    exifApplication = 0xE1,
    profileApplication = 0xE2,
    adobeApplication = 0xEE,
    lastApplication = 0xEF,
    comment = 0xFE,
};

/// Skips what follows a signature.
std::optional<Bytes> after(Bytes body, std::string_view signature) {
    if (body.size() < signature.size() || !std::equal(signature.begin(), signature.end(), body.begin(),
                                                      [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; }))
        return std::nullopt;
    return body.subspan(signature.size());
}

bool contains(Bytes bytes, std::string_view text) {
    return std::search(bytes.begin(), bytes.end(), text.begin(), text.end()) != bytes.end();
}

/// Whether the tables have at most 256 codes each, and no more of a length than there are left.
bool areSoundHuffmanTables(Bytes body) {
    constexpr std::size_t lengths = 16;
    while (!body.empty()) {
        if (body.size() < 1 + lengths) return false;
        std::uint32_t codes = 0, free = 1;
        for (std::size_t length = 1; length <= lengths; ++length) {
            const std::uint32_t count = body[length];
            free *= 2;
            if (count > free) return false;
            free -= count;
            codes += count;
        }
        if (codes > 256 || body.size() < 1 + lengths + codes) return false;
        body = body.subspan(1 + lengths + codes);
    }
    return true;
}

bool isNeededForDecoding(unsigned int marker) {
    return marker != comment && (marker < firstApplication || marker > lastApplication || marker == adobeApplication);
}

void readApplicationData(unsigned int marker, Bytes body, JPEGSegments& found) {
    if (marker == exifApplication) {
        if (const auto exif = after(body, std::string_view("Exif\0\0", 6))) found.orientation = exifOrientation(*exif);
    }
    if (marker == profileApplication && !found.profile) {
        const auto profile = after(body, std::string_view("ICC_PROFILE\0", 12));
        if (profile && !contains(*profile, "sRGB")) found.profile = "";
    }
}

/// The pixels of a frame by its segment.
std::uint64_t pixelsOf(Bytes frame) {
    if (frame.size() < 5) return 0;
    const auto number = [&](std::size_t offset) { return std::uint64_t{frame[offset]} << 8 | frame[offset + 1]; };
    return number(1) * number(3);
}

/// The end of the entropy-coded data from `start` on.
std::size_t endOfScan(Bytes bytes, std::size_t start) {
    for (std::size_t i = start; i + 1 < bytes.size(); ++i) {
        const unsigned int next = bytes[i + 1];
        if (bytes[i] == 0xFF && next != 0 && next != 0xFF && (next < 0xD0 || next > 0xD7)) return i;
    }
    return bytes.size();
}

}  // namespace

bool isJPEG(Bytes bytes) {
    return bytes.size() >= 2 && bytes[0] == 0xFF && (bytes[1] == startOfImage || bytes[1] == 0xFF);
}

JPEGSegments readJPEGSegments(Bytes bytes, bool copies) {
    JPEGSegments found;
    const auto copy = [&](std::size_t start, std::size_t end) {
        if (copies)
            found.decoding.insert(found.decoding.end(), bytes.begin() + static_cast<std::ptrdiff_t>(start),
                                  bytes.begin() + static_cast<std::ptrdiff_t>(end));
    };
    std::size_t at = 2;
    if (bytes.size() < at || bytes[1] != startOfImage) {
        found.problem = "it does not start as JPEG";
        return found;
    }
    copy(0, at);
    while (at + 4 <= bytes.size()) {
        if (bytes[at] != 0xFF) break;
        const unsigned int marker = bytes[at + 1];
        if (marker == 0xFF) {  // a byte that fills
            ++at;
            continue;
        }
        const std::size_t length = std::size_t{bytes[at + 2]} << 8 | bytes[at + 3];
        if (marker == endOfImage) {
            copy(at, at + 2);
            return found;
        }
        if (length < 2 || length > bytes.size() - at - 2) {
            found.problem = "it ends within a segment";
            return found;
        }
        const Bytes body = bytes.subspan(at + 4, length - 2);
        if (marker == huffmanTables && !areSoundHuffmanTables(body)) {
            found.problem = "a Huffman table has too many codes";
            return found;
        }
        readApplicationData(marker, body, found);
        if (marker >= firstFrame && marker <= lastFrame && marker != huffmanTables)
            found.pixels = std::max(found.pixels, pixelsOf(body));
        std::size_t end = at + 2 + length;
        if (marker == startOfScan) end = endOfScan(bytes, end);
        if (isNeededForDecoding(marker)) copy(at, end);
        at = end;
    }
    if (at + 2 != bytes.size() || bytes[at] != 0xFF || bytes[at + 1] != endOfImage) found.problem = "it ends early";
    copy(at, bytes.size());
    return found;
}

}  // namespace moktextool
