// The legacy numbers, and the rules of what is written where: the odd row by row, all the rest in digests.
#include <gtest/gtest.h>

#include "format_notation.h"
#include "formats/legacy/legacy_format_table.h"

using namespace formatnotation;

namespace {

constexpr EMOKTColourSpace linear = eColourSpaceLinear, sRGB = eColourSpaceSRGB, otherSpace = static_cast<EMOKTColourSpace>(2);

// What numbers are read as: one of each kind and the odd ones.
// clang-format off
const Rows read = {
    {0, "argb 4.4.4.4", uns}, {5, "argb 8.8.8.8", uni}, {12, eFmtMOKTC2bppRGBA, unb}, {16, "rgba 4.4.4.4", uns},
    {18, "rgba 8.8.8.8", unb}, {20, "rgbx 5.5.5.1", uns}, {22, "l 8", unb}, {28, eFmtMOKTCII4bpp, unb}, {32, eFmtDXT1, unb},
    {33, eFmtDXT2, unb, linear, true}, {44, "argb 2.10.10.10", uni}, {52, "gr 32.32", flt}, {54, eFmtETC1, unb},
    {70, eFmtYUY2, unb}, {80, "rgba 32.32.32.32", flt}, {96, "rgb 11.11.10", flt}, {129, eFmtDXT1, uni, sRGB}, {137, eFmtBC5, sni},
    {145, "rgba 8.8.8.8", unb, sRGB}, {146, "rgba 8.8.8.8", unb, sRGB, true}, {170, "bgrx 4.4.4.4", uns, sRGB},
    {178, "xbgr 4.4.4.4", uns, sRGB}, {181, "abgr 8.8.8.8", unb, linear, true}, {14, eFmtUnknown}, {182, eFmtUnknown}};

// What the families write where it is not what they read, or where they do not look at all that is known; 255: nothing.
const Rows glWritten = {{22, "i 8", unb}, {23, "ai 8.8", unb}, {24, eFmtMOKTC2bppRGB, snb}, {25, eFmtMOKTC4bppRGB, flt},
                        {255, "l 8", unb}, {255, "la 8.8", unb}, {255, eFmtDXT1, unb}};
const Rows d3dWritten = {
    {12, eFmtMOKTC2bppRGB, unb}, {13, eFmtMOKTC4bppRGB, unb}, {0, "argb 4.4.4.4", uni}, {1, "argb 1.5.5.5", uni},
    {2, "rgb 5.6.5", uni}, {3, "xrgb 1.5.5.5", uni}, {6, "argb 8.3.3.2", uni}, {44, "abgr 2.10.10.10", sni}, {52, "rg 32.32", flt},
    {255, "argb 4.4.4.4", uns}, {255, "gr 32.32", flt}, {255, eFmtETC1, unb}};
const Rows dxgiWritten = {{128, eFmtDXT1, uni}, {129, eFmtDXT1, uni, sRGB}, {129, eFmtDXT1, uni, otherSpace}, {80, "rgba 32.32.32.32", flt, sRGB},
                           {126, eFmtRGBG8888, sb}, {255, "ai 4.4", unb}};
const Rows vgWritten = {{170, "bgra 4.4.4.4", uns, sRGB}, {178, "abgr 4.4.4.4", uns, sRGB}, {255, "bgrx 4.4.4.4", uns, sRGB},
                        {156, eFmtBW1bpp, sb, sRGB}, {144, "rgbx 8.8.8.8", unb, sRGB, true}, {255, "l 8", unb, otherSpace}};
// clang-format on

TEST(LegacyFormats, EveryNumberIsReadAsItsRowSays) {
    const auto headerOfNumber = [](unsigned int number) {
        const LegacyFormat f = formatOfLegacyNumber(static_cast<std::uint8_t>(number));
        return headerOf(f.format, f.channelType, f.colourSpace, f.isPreMultiplied);
    };
    for (const Row& row : read)
        EXPECT_TRUE(sameRecord(headerOfNumber(row.number), headerOf(row))) << row.number;
    Collected all;
    for (unsigned int number = 0; number < 256; ++number)
        all.add(true, headerOfNumber(number));
    EXPECT_EQ(all.digest(), 16444684888060279131u);
}

TEST(LegacyFormats, EveryFormatIsWrittenAsTheFamilysRulesSay) {
    const Rows nothing = {{255, "rgba 8.8.8.8", unb}};
    // By the number of the API: rows, and a digest of what is written for all formats, types, colour spaces and states of alpha.
    const std::pair<const Rows*, std::uint64_t> families[] = {
        {&nothing, 17744209039430327109u},    {&glWritten, 17846664982911042997u}, {&glWritten, 17846664982911042997u},
        {&d3dWritten, 11056111032960408309u}, {&glWritten, 17846664982911042997u}, {&d3dWritten, 11056111032960408309u},
        {&dxgiWritten, 6636251025329413877u}, {&vgWritten, 12360310741007515647u}, {&nothing, 17744209039430327109u}};
    for (const auto& [rows, digest] : families) {
        const auto api = static_cast<ELegacyApi>((&rows - &families[0].first) / 2);
        Collected written;
        for (const Row& row : *rows)
            EXPECT_EQ(legacyNumberOf({row.format, row.channelType, row.colourSpace, row.isPreMultiplied}, api).value_or(255),
                      row.number)
                << api;
        for (const PixelType& format : allFormats())
            for (unsigned int variation = 0; variation < 15 * 3 * 2; ++variation)
                written.add(legacyNumberOf({format, static_cast<EMOKTVariableType>(variation % 15),
                                            static_cast<EMOKTColourSpace>(variation / 15 % 3), variation >= 45},
                                           api)
                                .value_or(255));
        EXPECT_EQ(written.digest(), digest) << api;
    }
}

}  // namespace
