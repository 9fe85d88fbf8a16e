#pragma once

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "CMOKTextureHeader.h"

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
    for (const auto& [letters, bits] : kinds) {
        for (const std::string name : letters) {
            for (const char* rates : bits)
                formats.push_back(Notation(name + rates));
        }
    }
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

inline const Row* find(const Rows& rows, unsigned int number) {
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& r) { return r.number == number; });
    return row == rows.end() ? nullptr : &*row;
}

inline bool isAnyOf(unsigned int number, std::initializer_list<unsigned int> numbers) {
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

/// What the numbers of DXGI are read as.
inline const Rows& dxgiRead() {
    constexpr EMOKTColourSpace srgb = eColourSpaceSRGB;
    // clang-format off
    static const Rows rows = {
        {2, "rgba 32.32.32.32", flt}, {3, "rgba 32.32.32.32", ui}, {4, "rgba 32.32.32.32", si}, {6, "rgb 32.32.32", flt},
        {7, "rgb 32.32.32", ui}, {8, "rgb 32.32.32", si}, {10, "rgba 16.16.16.16", flt}, {11, "rgba 16.16.16.16", uns},
        {12, "rgba 16.16.16.16", us}, {13, "rgba 16.16.16.16", sns}, {14, "rgba 16.16.16.16", ss}, {16, "rg 32.32", flt},
        {17, "rg 32.32", ui}, {18, "rg 32.32", si}, {24, "rgba 10.10.10.2", uni}, {25, "rgba 10.10.10.2", ui},
        {26, "rgb 11.11.10", flt}, {28, "rgba 8.8.8.8", unb}, {29, "rgba 8.8.8.8", unb, srgb}, {30, "rgba 8.8.8.8", ub},
        {31, "rgba 8.8.8.8", snb}, {32, "rgba 8.8.8.8", sb}, {34, "rg 16.16", flt}, {35, "rg 16.16", uns},
        {36, "rg 16.16", us}, {37, "rg 16.16", sns}, {38, "rg 16.16", ss}, {41, "r 32", flt}, {42, "r 32", ui},
        {43, "r 32", si}, {49, "rg 8.8", unb}, {50, "rg 8.8", ub}, {51, "rg 8.8", snb}, {52, "rg 8.8", sb}, {54, "r 16", flt},
        {56, "r 16", uns}, {57, "r 16", us}, {58, "r 16", sns}, {59, "r 16", ss}, {61, "r 8", unb}, {62, "r 8", ub},
        {63, "r 8", snb}, {64, "r 8", sb}, {65, "r 8", unb}, {66, eFmtBW1bpp, unb}, {67, eFmtRGB9E5, flt},
        {68, eFmtRGBG8888, unb}, {69, eFmtGRGB8888, unb}, {71, eFmtDXT1, uni}, {72, eFmtDXT1, uni, srgb}, {74, eFmtDXT3, uni},
        {75, eFmtDXT3, uni, srgb}, {77, eFmtDXT5, uni}, {78, eFmtDXT5, uni, srgb}, {80, eFmtBC4, uni, srgb},
        {81, eFmtBC4, sni}, {83, eFmtBC5, uni}, {84, eFmtBC5, sni}, {85, "bgr 5.6.5", uns}, {86, "bgra 5.5.5.1", uns},
        {87, "bgra 8.8.8.8", unb}, {88, "bgrx 8.8.8.8", unb}, {91, "bgra 8.8.8.8", unb, srgb}, {93, "bgrx 8.8.8.8", unb, srgb},
        {96, eFmtBC7, flt, srgb}, {98, eFmtBC7, uni}, {99, eFmtBC7, uni, srgb}, {107, eFmtYUY2, uni}, {111, "ai 4.4", unb},
        {112, "ia 4.4", unb}, {115, "bgra 4.4.4.4", uns}};
    // clang-format on
    return rows;
}

}  // namespace formatnotation
