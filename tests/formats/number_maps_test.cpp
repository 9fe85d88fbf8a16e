// The maps to Direct3D and DXGI: what looks odd or stands for its kind row by row, all the rest in a digest.
#include <gtest/gtest.h>

#include "format_notation.h"

using namespace formatnotation;

namespace {

constexpr unsigned int code(const char (&text)[5]) {
    return static_cast<unsigned int>(text[0] | text[1] << 8 | text[2] << 16 | text[3] << 24);
}
constexpr EMOKTColourSpace srgb = eColourSpaceSRGB;

// clang-format off
// What is given for formats; 0: none.
const Rows d3dGiven = {
    {21, "argb 8.8.8.8", uni}, {26, "argb 4.4.4.4", uni}, {67, "abgr 2.10.10.10", sni}, {114, "r 32", flt}, {111, "r 16", flt},
    {115, "rg 32.32", flt}, {0, "gr 32.32", flt}, {code("DXT4"), eFmtDXT4, si}, {code("MTC2"), eFmtMOKTC2bppRGB},
    {code("MTC2"), eFmtMOKTC2bppRGBA}, {code("MTC4"), eFmtMOKTC4bppRGB}, {code("MTC4"), eFmtMOKTC4bppRGBA},
    {20, "rgb 8.8.8", unb}, {23, "rgb 5.6.5", uns}, {0, "abgr 8.8.8.8", uni}, {0, "xbgr 8.8.8.8", uni}, {0, eFmtBC4, unb},
    {0, "abgr 16.16.16.16", sni}, {0, eFmtRGBG8888, unb}, {0, eFmtGRGB8888, unb}};
const Rows dxgiGiven = {
    {28, "rgba 8.8.8.8", unb}, {29, "rgba 8.8.8.8", unb, srgb}, {11, "rgba 16.16.16.16", uns}, {65, "a 8", unb}, {61, "r 8", unb},
    {66, eFmtBW1bpp, flt}, {71, eFmtDXT1, uni}, {72, eFmtDXT1, uni, srgb}, {0, eFmtDXT1, unb}, {80, eFmtBC4, uni}, {0, eFmtBC7, uni},
    {0, eFmtBC7, uni, srgb}, {0, eFmtRGB9E5, flt}, {0, eFmtYUY2, uni}, {0, "ai 4.4", unb}, {0, "ia 4.4", unb},
    {0, "bgra 4.4.4.4", uns}, {0, "r 8", us}, {0, eFmtBC6, flt}};
// What numbers are read as; DXT2 and DXT4 also mark their texture.
const Rows d3dRead = {
    {21, "argb 8.8.8.8", uni}, {26, "argb 4.4.4.4", uni}, {30, "argb 4.4.4.4", uni}, {32, "abgr 8.8.8.8", uni},
    {33, "xbgr 8.8.8.8", uni}, {110, "abgr 16.16.16.16", sni}, {111, "r 32", flt}, {114, "r 32", flt}, {115, "gr 32.32", flt},
    {code("DXT1"), eFmtDXT1, unb}, {code("DXT2"), eFmtDXT2, unb, eColourSpaceLinear, true}, {code("RGBG"), eFmtRGBG8888, unb},
    {code("DXT4"), eFmtDXT4, unb, eColourSpaceLinear, true}, {code("GRGB"), eFmtGRGB8888, unb}};
const Rows dxgiRead = {
    {28, "rgba 8.8.8.8", unb}, {29, "rgba 8.8.8.8", unb, srgb}, {11, "rgba 16.16.16.16", uns}, {61, "r 8", unb}, {65, "r 8", unb},
    {67, eFmtRGB9E5, flt}, {71, eFmtDXT1, uni}, {80, eFmtBC4, uni, srgb}, {96, eFmtBC7, flt, srgb}, {98, eFmtBC7, uni},
    {99, eFmtBC7, uni, srgb}, {107, eFmtYUY2, uni}, {111, "ai 4.4", unb}, {112, "ia 4.4", unb}, {115, "bgra 4.4.4.4", uns}};
// clang-format on

TEST(NumberMaps, GettersGiveTheNumberOfEveryFormatTypeAndColourSpace) {
    for (const Row& row : d3dGiven)
        EXPECT_EQ(headerOf(row).getD3DFormat(), row.number);
    for (const Row& row : dxgiGiven)
        EXPECT_EQ(headerOf(row).getDXGIFormat(), row.number);
    Collected given;
    for (const PixelType format : allFormats())
        for (unsigned int variation = 0; variation < 15 * 3; ++variation) {
            const CMOKTextureHeader header = headerOf(format, variation % 15, variation / 15);
            given.add(header.getD3DFormat());
            given.add(header.getDXGIFormat());
        }
    EXPECT_EQ(given.digest(), 15405165906553242222u);
}

TEST(NumberMaps, SettersTakeEveryKnownNumberAndRefuseAllOthers) {
    const std::pair<bool (CMOKTextureHeader::*)(const unsigned int&), const Rows&> maps[] = {
        {&CMOKTextureHeader::setD3DFormat, d3dRead}, {&CMOKTextureHeader::setDXGIFormat, dxgiRead}};
    std::vector<unsigned int> numbers = {code("DXT1"), code("DXT2"), code("DXT3"), code("DXT4"), code("DXT5"),
                                         code("DXT6"), code("DX10"), code("dxt1"), code("UYVY"), code("YUY2"),
                                         code("RGBG"), code("GRGB"), code("MTC2"), code("MTC4"), ~0u};
    for (unsigned int number = 0; number < 300; ++number)
        numbers.push_back(number);
    Collected all;
    for (const auto& [set, rows] : maps) {
        CMOKTextureHeader header = untouched(true);
        EXPECT_TRUE(!(header.*set)(code("MTC2")) && sameRecord(header, untouched(true)));
        for (const Row& row : rows) {
            header = untouched();
            EXPECT_TRUE((header.*set)(row.number) && sameRecord(header, headerOf(row))) << row.number;
        }
        for (const unsigned int number : numbers)
            for (const bool premultiplied : {false, true}) {
                header = untouched(premultiplied);
                const bool result = (header.*set)(number);
                all.add(result, header);
            }
    }
    EXPECT_EQ(all.digest(), 2224679048905497977u);
}

}  // namespace
