#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "CMOKTextureHeader.h"
#include "core/io/byte_stream.h"
#include "texture_io.h"

/// @file
/// The key-value area that KTX 1.1 and KTX 2 share: pairs of a size, a key with its zero byte and a value, padded to 4 bytes.

namespace moktexture {

struct KeyValue {
    std::string key;
    std::string value;  ///< with a zero byte at its end where it is text
};
using KeyValues = std::vector<KeyValue>;

/// Reads an area of `size` bytes at the source's position. Words are swapped where `swapsBytes`.
ELoadStatus readKeyValues(ByteReader& source, std::uint64_t size, bool swapsBytes, const LoadLimits& limits, KeyValues& pairs);

/// Appends a word, little-endian.
void appendWord(std::string& bytes, std::uint32_t word);

/// The area's bytes, sizes and padding included.
std::string encodeKeyValues(const KeyValues& pairs);

/// The value of a key; empty if there is none.
std::string_view valueOf(const KeyValues& pairs, std::string_view key);
/// The same without the zero byte that ends a text.
std::string_view textOf(const KeyValues& pairs, std::string_view key);

/// @name Orientation: "S=r,T=d,R=i" in KTX 1.1, "rdi" in KTX 2. Axes that the text lacks keep their default direction.
/// @{
void applyOrientation(std::string_view text, CMOKTextureHeader& header);
std::string orientationKTX1(const CMOKTextureHeader& header);
std::string orientationKTX2(const CMOKTextureHeader& header);
/// @}

/// A header with all its metadata as the start of a native file, for the key "MOKTexHeader".
inline constexpr char headerKey[] = "MOKTexHeader";
std::string encodeHeader(const CMOKTextureHeader& header);
/// The header stored in a value; false if it is none. The caller compares it with the rest of the file, which may have been
/// changed by a tool that keeps keys it does not know.
bool decodeHeader(std::string_view stored, const LoadLimits& limits, CMOKTextureHeader& header);

/// Whether two headers describe the same image: format, sizes, counts, colour space and flags. Of the channel types of compressed
/// formats the sign alone counts, and metadata does not.
bool describeSameImage(const CMOKTextureHeader& a, const CMOKTextureHeader& b);
/// The same with all metadata.
bool describeTheSame(const CMOKTextureHeader& a, const CMOKTextureHeader& b);

}  // namespace moktexture
