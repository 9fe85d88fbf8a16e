// The legacy numbers, against a table written out a second time, and the rules of what is written where.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "format_notation.h"
#include "formats/legacy_format_table.h"

using namespace formatnotation;

namespace {

constexpr EMOKTColourSpace linear = eColourSpaceLinear, sRGB = eColourSpaceSRGB;

// What each number is read as, but for those that stand for DXGI's.
// clang-format off
const Rows ownRows = {
    {0, "argb 4.4.4.4", uns}, {1, "argb 1.5.5.5", uns}, {2, "rgb 5.6.5", uns}, {3, "xrgb 1.5.5.5", uns}, {4, "rgb 8.8.8", uni},
    {5, "argb 8.8.8.8", uni}, {6, "argb 8.3.3.2", uns}, {7, "i 8", unb}, {8, "ai 8.8", uns}, {9, eFmtBW1bpp, unb},
    {10, eFmtYUY2, unb}, {11, eFmtUYVY, unb}, {12, eFmtMOKTC2bppRGBA, unb}, {13, eFmtMOKTC4bppRGBA, unb},
    {16, "rgba 4.4.4.4", uns}, {17, "rgba 5.5.5.1", uns}, {18, "rgba 8.8.8.8", unb}, {19, "rgb 5.6.5", uns},
    {20, "rgbx 5.5.5.1", uns}, {21, "rgb 8.8.8", unb}, {22, "l 8", unb}, {23, "la 8.8", unb}, {24, eFmtMOKTC2bppRGBA, unb},
    {25, eFmtMOKTC4bppRGBA, unb}, {26, "bgra 8.8.8.8", unb}, {27, "a 8", unb}, {28, eFmtMOKTCII4bpp, unb},
    {29, eFmtMOKTCII2bpp, unb}, {32, eFmtDXT1, unb}, {33, eFmtDXT2, unb, linear, true}, {34, eFmtDXT3, unb},
    {35, eFmtDXT4, unb, linear, true}, {36, eFmtDXT5, unb}, {37, "rgb 3.3.2", uni}, {38, "al 4.4", uni}, {39, "lgr 6.5.5", sni},
    {40, "xlgr 8.8.8.8", sni}, {41, "abgr 8.8.8.8", sni}, {42, "abgr 2.10.10.10", uni}, {43, "argb 2.10.10.10", uni},
    {44, "argb 2.10.10.10", uni}, {45, "gr 16.16", uni}, {46, "gr 16.16", sni}, {47, "abgr 16.16.16.16", uni}, {48, "r 16", flt},
    {49, "gr 16.16", flt}, {50, "abgr 16.16.16.16", flt}, {51, "r 32", flt}, {52, "gr 32.32", flt}, {53, "abgr 32.32.32.32", flt},
    {54, eFmtETC1, unb}, {64, "a 8", uni}, {65, "gr 8.8", sni}, {66, "l 16", uni}, {67, "l 8", uni}, {68, "al 8.8", uni},
    {69, eFmtUYVY, unb}, {70, eFmtYUY2, unb}, {144, "rgbx 8.8.8.8", unb, sRGB}, {145, "rgba 8.8.8.8", unb, sRGB},
    {146, "rgba 8.8.8.8", unb, sRGB, true}, {147, "rgb 5.6.5", uns, sRGB}, {148, "rgba 5.5.5.1", uns, sRGB},
    {149, "rgba 4.4.4.4", uns, sRGB}, {150, "l 8", unb, sRGB}, {151, "rgbx 8.8.8.8", unb}, {152, "rgba 8.8.8.8", unb},
    {153, "rgba 8.8.8.8", unb, linear, true}, {154, "l 8", unb}, {155, "a 8", unb}, {156, eFmtBW1bpp, unb},
    {157, "xrgb 8.8.8.8", unb, sRGB}, {158, "argb 8.8.8.8", unb, sRGB}, {159, "argb 8.8.8.8", unb, sRGB, true},
    {160, "argb 1.5.5.5", uns, sRGB}, {161, "argb 4.4.4.4", uns, sRGB}, {162, "xrgb 8.8.8.8", unb}, {163, "argb 8.8.8.8", unb},
    {164, "argb 8.8.8.8", unb, linear, true}, {165, "bgrx 8.8.8.8", unb, sRGB}, {166, "bgra 8.8.8.8", unb, sRGB},
    {167, "bgra 8.8.8.8", unb, sRGB, true}, {168, "bgr 5.6.5", uns, sRGB}, {169, "bgra 5.5.5.1", uns, sRGB},
    {170, "bgrx 4.4.4.4", uns, sRGB}, {171, "bgrx 8.8.8.8", unb}, {172, "bgra 8.8.8.8", unb},
    {173, "bgra 8.8.8.8", unb, linear, true}, {174, "xbgr 8.8.8.8", unb, sRGB}, {175, "abgr 8.8.8.8", unb, sRGB},
    {176, "abgr 8.8.8.8", unb, sRGB, true}, {177, "abgr 1.5.5.5", uns, sRGB}, {178, "xbgr 4.4.4.4", uns, sRGB},
    {179, "xbgr 8.8.8.8", unb}, {180, "abgr 8.8.8.8", unb}, {181, "abgr 8.8.8.8", unb, linear, true},
};

// What some numbers are written for instead, by the first number of their family.
const std::vector<std::pair<unsigned int, Row>> otherwise = {
    {16, {22, "i 8", unb}}, {16, {23, "ai 8.8", unb}}, {16, {24, eFmtMOKTC2bppRGB, unb}}, {16, {24, eFmtMOKTC2bppRGBA, unb}},
    {16, {25, eFmtMOKTC4bppRGB, unb}}, {16, {25, eFmtMOKTC4bppRGBA, unb}}, {0, {12, eFmtMOKTC2bppRGB, unb}},
    {0, {12, eFmtMOKTC2bppRGBA, unb}}, {0, {13, eFmtMOKTC4bppRGB, unb}}, {0, {13, eFmtMOKTC4bppRGBA, unb}},
    {0, {0, "argb 4.4.4.4", uni}}, {0, {1, "argb 1.5.5.5", uni}}, {0, {2, "rgb 5.6.5", uni}}, {0, {3, "xrgb 1.5.5.5", uni}},
    {0, {6, "argb 8.3.3.2", uni}}, {0, {44, "abgr 2.10.10.10", sni}}, {0, {52, "rg 32.32", flt}},
    {144, {170, "bgra 4.4.4.4", uns, sRGB}}, {144, {178, "abgr 4.4.4.4", uns, sRGB}},
};
// clang-format on

/// The rows of all numbers: from 80 on they are DXGI's from 2 to 84, in order.
const Rows& readRows() {
    static const Rows rows = [] {
        Rows all = ownRows;
        for (std::size_t i = 0; dxgiRead()[i].number <= 84; ++i) {
            all.push_back(dxgiRead()[i]);
            all.back().number = static_cast<unsigned int>(80 + i);
        }
        return all;
    }();
    return rows;
}

/// Whether a family, named by its first number, writes a number.
bool writes(unsigned int family, unsigned int number) {
    const auto isIn = [number](unsigned int first, unsigned int last) { return first <= number && number <= last; };
    if (family == 16) return isIn(16, 29) || number == 54;
    if (family == 0) return isIn(0, 6) || isIn(12, 13) || isIn(32, 53) || isIn(64, 70);
    return family == 80 ? isIn(80, 97) || isIn(99, 122) || isIn(126, 137) : family == 144 && isIn(144, 181);
}

Rows rowsWritten(unsigned int family) {
    Rows rows;
    for (const auto& [of, row] : otherwise) {
        if (of == family) rows.push_back(row);
    }
    const Rows replacing = rows;
    for (const Row& row : readRows()) {
        if (writes(family, row.number) && find(replacing, row.number) == nullptr) rows.push_back(row);
    }
    return rows;
}

/// Whether a number is written for a format; what is looked at, goes by the number.
bool isWrittenFor(const Row& row, const LegacyFormat& wanted) {
    const unsigned int number = row.number;
    const bool isOfAnyType = number < 80 ? row.format.type.part.high == 0 : isAnyOf(number, {126, 127, 156});
    const bool hasTwoSpaces = number >= 128 && number <= 133, hasSpace = number >= 144 && number != 156;
    const bool hasState = isAnyOf(number, {145, 146, 152, 153, 158, 159, 163, 164, 166, 167, 172, 173, 175, 176, 180, 181});
    return row.format.type == wanted.format && (isOfAnyType || row.channelType == wanted.channelType) &&
           (!hasTwoSpaces || (row.colourSpace == linear) == (wanted.colourSpace == linear)) &&
           (!hasSpace || row.colourSpace == wanted.colourSpace) && (!hasState || row.isPreMultiplied == wanted.isPreMultiplied);
}

TEST(LegacyFormats, EveryNumberIsReadAsItsRowSays) {
    for (unsigned int number = 0; number < 256; ++number) {
        const LegacyFormat read = formatOfLegacyNumber(static_cast<std::uint8_t>(number));
        const Row none = {number, eFmtUnknown};
        const Row* const row = find(readRows(), number);
        EXPECT_TRUE(sameRecord(headerOf(read.format, read.channelType, read.colourSpace, read.isPreMultiplied),
                               headerOf(row != nullptr ? *row : none)))
            << number << " gave " << std::hex << read.format.id;
    }
}

TEST(LegacyFormats, EveryFormatIsWrittenAsTheFamilysRulesSay) {
    constexpr unsigned int none = 255, families[] = {none, 16, 16, 0, 16, 0, 80, 144, none};  // by the number of the API
    for (unsigned int api = 0; api < std::size(families); ++api) {
        const Rows rows = rowsWritten(families[api]);
        std::set<unsigned int> met, all = {none};
        for (const Row& row : rows)
            all.insert(row.number);
        for (const PixelType& format : allFormats()) {
            for (unsigned int variation = 0; variation < 15 * 3 * 2; ++variation) {
                const LegacyFormat wanted = {format, static_cast<EMOKTVariableType>(variation % 15),
                                             static_cast<EMOKTColourSpace>(variation / 15 % 3), variation >= 45};
                const auto row = std::ranges::find_if(rows, [&](const Row& r) { return isWrittenFor(r, wanted); });
                const unsigned int expected = row == rows.end() ? none : row->number;
                ASSERT_EQ(legacyNumberOf(wanted, static_cast<ELegacyApi>(api)).value_or(255), expected)
                    << api << ' ' << std::hex << format.id << ' ' << variation;
                met.insert(expected);
            }
        }
        EXPECT_EQ(met, all) << api;
    }
}

}  // namespace
