#pragma once

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "CMOKTextureHeader.h"
#include "support/test_images.h"

/// Formats in writing, for tables of expected values, and headers to try the maps on.
namespace formatnotation {

using namespace moktexture;

constexpr EMOKTVariableType unb = eVarUByteNorm, snb = eVarSByteNorm, ub = eVarUByte, sb = eVarSByte;
constexpr EMOKTVariableType uns = eVarUShortNorm, sns = eVarSShortNorm, us = eVarUShort, ss = eVarSShort;
constexpr EMOKTVariableType uni = eVarUIntNorm, sni = eVarSIntNorm, ui = eVarUInt, si = eVarSInt, flt = eVarFloat;

/// A compressed format, or a layout written like "rgb 5.6.5".
struct Notation {
    PixelType type;
    Notation(CompressedFormatId number) : type(number) {}
    Notation(const char* text) : Notation(std::string(text)) {}
    Notation(const std::string& text) {
        std::istringstream bits(text.substr(text.find(' ')));
        for (std::size_t i = 0, rate = 0; text[i] != ' '; ++i, bits.ignore()) {
            bits >> rate;
            type.id |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i) | std::uint64_t{rate} << (32 + 8 * i);
        }
    }
    operator PixelType() const { return type; }
};

/// Every number from 0 to 31, and every order of letters with every set of bits of the maps, sensible or not.
inline std::vector<PixelType> allFormats() {
    std::vector<PixelType> formats;
    for (std::uint64_t number = 0; number < 32; ++number)
        formats.emplace_back(number);
    const std::vector<std::pair<std::vector<const char*>, std::vector<const char*>>> kinds = {
        {{"r", "a", "l", "i"}, {" 4", " 8", " 16", " 32"}},
        {{"rg", "gr", "la", "al", "ia", "ai"}, {" 4.4", " 8.8", " 16.16", " 32.32"}},
        {{"rgb", "bgr", "lgr"}, {" 3.3.2", " 5.6.5", " 6.5.5", " 8.8.8", " 11.11.10", " 16.16.16", " 32.32.32"}},
        {{"rgba", "argb", "bgra", "abgr", "xrgb", "xbgr", "bgrx", "rgbx", "xlgr"},
         {" 1.5.5.5", " 5.5.5.1", " 4.4.4.4", " 8.3.3.2", " 8.8.8.8", " 2.10.10.10", " 10.10.10.2", " 16.16.16.16",
          " 32.32.32.32"}}};
    for (const auto& [letters, bits] : kinds)
        for (const std::string name : letters)
            for (const char* rates : bits)
                formats.push_back(Notation(name + rates));
    return formats;
}

inline CMOKTextureHeader headerOf(PixelType format, unsigned int channelType, unsigned int space = 0,
                                  bool premultiplied = false) {
    return CMOKTextureHeader(format.id, 3, 5, 7, 2, 4, 6, static_cast<EMOKTColourSpace>(space),
                             static_cast<EMOKTVariableType>(channelType), premultiplied);
}

/// What no map gives, to see what a setter leaves alone.
constexpr std::uint64_t untouchedFormat = 0x77;
inline CMOKTextureHeader untouched(bool premultiplied = false) {
    return headerOf(untouchedFormat, eVarNone, eColourSpaceSRGB, premultiplied);
}

inline bool sameRecord(const CMOKTextureHeader& a, const CMOKTextureHeader& b) {
    const MOKTextureHeaderV3 first = a.getFileHeader(), second = b.getFileHeader();
    return std::memcmp(&first, &second, sizeof(first)) == 0;
}

/// A number in one of the numberings, and what it stands for.
struct Row {
    unsigned int number;
    Notation format;
    EMOKTVariableType channelType = eVarNone;
    EMOKTColourSpace colourSpace = eColourSpaceLinear;
    bool isPreMultiplied = false;
};
using Rows = std::vector<Row>;

inline CMOKTextureHeader headerOf(const Row& row) {
    return headerOf(row.format, row.channelType, row.colourSpace, row.isPreMultiplied);
}

/// Collects what the maps give, for a digest of it all.
struct Collected {
    std::vector<std::uint32_t> numbers;
    void add(std::uint32_t number) { numbers.push_back(number); }
    void add(bool result, const CMOKTextureHeader& header) {
        const MOKTextureHeaderV3 record = header.getFileHeader();
        numbers.resize(numbers.size() + 1 + sizeof(record) / 4, result);
        std::memcpy(numbers.data() + numbers.size() - sizeof(record) / 4, &record, sizeof(record));
    }
    std::uint64_t digest() const {
        return testimages::digest({reinterpret_cast<const std::uint8_t*>(numbers.data()), numbers.size() * 4});
    }
};

}  // namespace formatnotation
