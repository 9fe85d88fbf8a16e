// The legacy numbers, against a table written out a second time, and the rules of what is written where.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "format_notation.h"
#include "formats/legacy_format_table.h"

using namespace formatnotation;

namespace {

constexpr EMOKTColourSpace linear = eColourSpaceLinear, sRGB = eColourSpaceSRGB;

struct Row {
    int number;
    Notation format;
    EMOKTVariableType type;
    EMOKTColourSpace space = linear;
    bool premultiplied = false;
};

// What each number is read as.
// clang-format off
const std::vector<Row> readRows = {
    {0, "argb 4.4.4.4", uns}, {1, "argb 1.5.5.5", uns}, {2, "rgb 5.6.5", uns}, {3, "xrgb 1.5.5.5", uns}, {4, "rgb 8.8.8", uni},
    {5, "argb 8.8.8.8", uni}, {6, "argb 8.3.3.2", uns}, {7, "i 8", unb}, {8, "ai 8.8", uns}, {9, eFmtBW1bpp, unb},
    {10, eFmtYUY2, unb}, {11, eFmtUYVY, unb}, {12, eFmtMOKTC2bppRGBA, unb}, {13, eFmtMOKTC4bppRGBA, unb},
    {16, "rgba 4.4.4.4", uns}, {17, "rgba 5.5.5.1", uns}, {18, "rgba 8.8.8.8", unb}, {19, "rgb 5.6.5", uns},
    {20, "rgbx 5.5.5.1", uns}, {21, "rgb 8.8.8", unb}, {22, "l 8", unb}, {23, "la 8.8", unb}, {24, eFmtMOKTC2bppRGBA, unb},
    {25, eFmtMOKTC4bppRGBA, unb}, {26, "bgra 8.8.8.8", unb}, {27, "a 8", unb}, {28, eFmtMOKTCII4bpp, unb},
    {29, eFmtMOKTCII2bpp, unb}, {32, eFmtDXT1, unb}, {33, eFmtDXT2, unb, linear, true}, {34, eFmtDXT3, unb},
    {35, eFmtDXT4, unb, linear, true}, {36, eFmtDXT5, unb}, {37, "rgb 3.3.2", uni}, {38, "al 4.4", uni}, {39, "lgr 6.5.5", sni},
    {40, "xlgr 8.8.8.8", sni}, {41, "abgr 8.8.8.8", sni}, {42, "abgr 2.10.10.10", uni}, {43, "argb 2.10.10.10", uni},
    {44, "argb 2.10.10.10", uni}, {45, "gr 16.16", uni}, {46, "gr 16.16", sni}, {47, "abgr 16.16.16.16", uni},
    {48, "r 16", flt}, {49, "gr 16.16", flt}, {50, "abgr 16.16.16.16", flt}, {51, "r 32", flt}, {52, "gr 32.32", flt},
    {53, "abgr 32.32.32.32", flt}, {54, eFmtETC1, unb}, {64, "a 8", uni}, {65, "gr 8.8", sni}, {66, "l 16", uni},
    {67, "l 8", uni}, {68, "al 8.8", uni}, {69, eFmtUYVY, unb}, {70, eFmtYUY2, unb}, {80, "rgba 32.32.32.32", flt},
    {81, "rgba 32.32.32.32", ui}, {82, "rgba 32.32.32.32", si}, {83, "rgb 32.32.32", flt}, {84, "rgb 32.32.32", ui},
    {85, "rgb 32.32.32", si}, {86, "rgba 16.16.16.16", flt}, {87, "rgba 16.16.16.16", uns}, {88, "rgba 16.16.16.16", us},
    {89, "rgba 16.16.16.16", sns}, {90, "rgba 16.16.16.16", ss}, {91, "rg 32.32", flt}, {92, "rg 32.32", ui},
    {93, "rg 32.32", si}, {94, "rgba 10.10.10.2", uni}, {95, "rgba 10.10.10.2", ui}, {96, "rgb 11.11.10", flt},
    {97, "rgba 8.8.8.8", unb}, {98, "rgba 8.8.8.8", unb, sRGB}, {99, "rgba 8.8.8.8", ub}, {100, "rgba 8.8.8.8", snb},
    {101, "rgba 8.8.8.8", sb}, {102, "rg 16.16", flt}, {103, "rg 16.16", uns}, {104, "rg 16.16", us}, {105, "rg 16.16", sns},
    {106, "rg 16.16", ss}, {107, "r 32", flt}, {108, "r 32", ui}, {109, "r 32", si}, {110, "rg 8.8", unb}, {111, "rg 8.8", ub},
    {112, "rg 8.8", snb}, {113, "rg 8.8", sb}, {114, "r 16", flt}, {115, "r 16", uns}, {116, "r 16", us}, {117, "r 16", sns},
    {118, "r 16", ss}, {119, "r 8", unb}, {120, "r 8", ub}, {121, "r 8", snb}, {122, "r 8", sb}, {123, "r 8", unb},
    {124, eFmtBW1bpp, unb}, {125, eFmtRGB9E5, flt}, {126, eFmtRGBG8888, unb}, {127, eFmtGRGB8888, unb}, {128, eFmtDXT1, uni},
    {129, eFmtDXT1, uni, sRGB}, {130, eFmtDXT3, uni}, {131, eFmtDXT3, uni, sRGB}, {132, eFmtDXT5, uni},
    {133, eFmtDXT5, uni, sRGB}, {134, eFmtBC4, uni, sRGB}, {135, eFmtBC4, sni}, {136, eFmtBC5, uni}, {137, eFmtBC5, sni},
    {144, "rgbx 8.8.8.8", unb, sRGB}, {145, "rgba 8.8.8.8", unb, sRGB}, {146, "rgba 8.8.8.8", unb, sRGB, true},
    {147, "rgb 5.6.5", uns, sRGB}, {148, "rgba 5.5.5.1", uns, sRGB}, {149, "rgba 4.4.4.4", uns, sRGB}, {150, "l 8", unb, sRGB},
    {151, "rgbx 8.8.8.8", unb}, {152, "rgba 8.8.8.8", unb}, {153, "rgba 8.8.8.8", unb, linear, true}, {154, "l 8", unb},
    {155, "a 8", unb}, {156, eFmtBW1bpp, unb}, {157, "xrgb 8.8.8.8", unb, sRGB}, {158, "argb 8.8.8.8", unb, sRGB},
    {159, "argb 8.8.8.8", unb, sRGB, true}, {160, "argb 1.5.5.5", uns, sRGB}, {161, "argb 4.4.4.4", uns, sRGB},
    {162, "xrgb 8.8.8.8", unb}, {163, "argb 8.8.8.8", unb}, {164, "argb 8.8.8.8", unb, linear, true},
    {165, "bgrx 8.8.8.8", unb, sRGB}, {166, "bgra 8.8.8.8", unb, sRGB}, {167, "bgra 8.8.8.8", unb, sRGB, true},
    {168, "bgr 5.6.5", uns, sRGB}, {169, "bgra 5.5.5.1", uns, sRGB}, {170, "bgrx 4.4.4.4", uns, sRGB},
    {171, "bgrx 8.8.8.8", unb}, {172, "bgra 8.8.8.8", unb}, {173, "bgra 8.8.8.8", unb, linear, true},
    {174, "xbgr 8.8.8.8", unb, sRGB}, {175, "abgr 8.8.8.8", unb, sRGB}, {176, "abgr 8.8.8.8", unb, sRGB, true},
    {177, "abgr 1.5.5.5", uns, sRGB}, {178, "xbgr 4.4.4.4", uns, sRGB}, {179, "xbgr 8.8.8.8", unb}, {180, "abgr 8.8.8.8", unb},
    {181, "abgr 8.8.8.8", unb, linear, true},
};

// What some numbers are written for instead, by the first number of their family.
const std::vector<std::pair<int, Row>> otherwise = {
    {16, {22, "i 8", unb}},                {16, {23, "ai 8.8", unb}},                {16, {24, eFmtMOKTC2bppRGB, unb}},
    {16, {24, eFmtMOKTC2bppRGBA, unb}},    {16, {25, eFmtMOKTC4bppRGB, unb}},        {16, {25, eFmtMOKTC4bppRGBA, unb}},
    {0, {12, eFmtMOKTC2bppRGB, unb}},      {0, {12, eFmtMOKTC2bppRGBA, unb}},        {0, {13, eFmtMOKTC4bppRGB, unb}},
    {0, {13, eFmtMOKTC4bppRGBA, unb}},     {0, {0, "argb 4.4.4.4", uni}},            {0, {1, "argb 1.5.5.5", uni}},
    {0, {2, "rgb 5.6.5", uni}},            {0, {3, "xrgb 1.5.5.5", uni}},            {0, {6, "argb 8.3.3.2", uni}},
    {0, {44, "abgr 2.10.10.10", sni}},     {0, {52, "rg 32.32", flt}},               {144, {170, "bgra 4.4.4.4", uns, sRGB}},
    {144, {178, "abgr 4.4.4.4", uns, sRGB}},
};
// clang-format on

/// Whether a family, named by its first number, writes a number.
bool writes(int family, int number) {
    const auto isIn = [number](int first, int last) { return first <= number && number <= last; };
    if (family == 16) return isIn(16, 29) || number == 54;
    if (family == 0) return isIn(0, 6) || isIn(12, 13) || isIn(32, 53) || isIn(64, 70);
    return family == 80 ? isIn(80, 97) || isIn(99, 122) || isIn(126, 137) : isIn(144, 181);
}

std::vector<Row> rowsWritten(int family) {
    std::vector<Row> rows;
    std::set<int> replaced;
    for (const auto& [of, row] : otherwise) {
        if (of != family) continue;
        replaced.insert(row.number);
        rows.push_back(row);
    }
    for (const Row& row : readRows) {
        if (writes(family, row.number) && replaced.count(row.number) == 0) rows.push_back(row);
    }
    return rows;
}

bool hasBothStates(const std::vector<Row>& rows, const Row& of) {
    return std::ranges::count_if(rows, [&](const Row& row) {
               return row.format.type == of.format.type && row.type == of.type && row.space == of.space;
           }) == 2;
}

bool isWrittenFor(const std::vector<Row>& rows, const Row& row, int family, const LegacyFormat& wanted) {
    if (row.format.type != wanted.format) return false;
    const std::uint64_t id = row.format.type.id;
    const bool sameType = row.type == wanted.channelType;
    if (family == 16 || family == 0) return id >> 32 == 0 || sameType;
    if (family == 80) {
        if (id == eFmtRGBG8888 || id == eFmtGRGB8888) return true;
        if (id == eFmtDXT1 || id == eFmtDXT3 || id == eFmtDXT5)
            return sameType && (row.number % 2 == 0) == (wanted.colourSpace == linear);
        return sameType;
    }
    if (id == eFmtBW1bpp) return true;
    return sameType && row.space == wanted.colourSpace &&
           (!hasBothStates(rows, row) || row.premultiplied == wanted.isPreMultiplied);
}

TEST(LegacyFormats, EveryNumberIsReadAsItsRowSays) {
    for (int number = 0; number < 256; ++number) {
        const LegacyFormat read = formatOfLegacyNumber(static_cast<std::uint8_t>(number));
        Row expected = {number, eFmtUnknown, eVarNone};
        for (const Row& row : readRows) {
            if (row.number == number) expected = row;
        }
        EXPECT_EQ(read.format.id, expected.format.type.id) << number;
        EXPECT_EQ(read.channelType, expected.type) << number;
        EXPECT_EQ(read.colourSpace, expected.space) << number;
        EXPECT_EQ(read.isPreMultiplied, expected.premultiplied) << number;
    }
}

TEST(LegacyFormats, EveryFormatIsWrittenAsTheFamilysRulesSay) {
    const std::pair<unsigned int, int> families[] = {{0, -1}, {1, 16}, {2, 16},  {3, 0}, {4, 16},
                                                     {5, 0},  {6, 80}, {7, 144}, {8, -1}};
    for (const auto& [api, family] : families) {
        const std::vector<Row> rows = family < 0 ? std::vector<Row>() : rowsWritten(family);
        std::set<int> met;
        for (const PixelType& format : allFormats()) {
            for (unsigned int variation = 0; variation < 15 * 3 * 2; ++variation) {
                const LegacyFormat wanted = {format, static_cast<EMOKTVariableType>(variation % 15),
                                             static_cast<EMOKTColourSpace>(variation / 15 % 3), variation >= 45};
                int expected = -1;
                for (const Row& row : rows) {
                    if (isWrittenFor(rows, row, family, wanted)) expected = row.number;
                }
                const auto number = legacyNumberOf(wanted, static_cast<ELegacyApi>(api));
                ASSERT_EQ(number ? *number : -1, expected) << api << ' ' << std::hex << format.id << ' ' << variation;
                met.insert(expected);
            }
        }
        std::set<int> all = {-1};
        for (const Row& row : rows)
            all.insert(row.number);
        EXPECT_EQ(met, all) << api;
    }
}

}  // namespace
