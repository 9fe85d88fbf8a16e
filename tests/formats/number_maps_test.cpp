// The maps to Direct3D and DXGI, against tables written out a second time.
#include <gtest/gtest.h>

#include "format_notation.h"

using namespace formatnotation;

namespace {

constexpr unsigned int code(const char (&text)[5]) {
    return static_cast<unsigned int>(text[0] | text[1] << 8 | text[2] << 16 | text[3] << 24);
}

// clang-format off
const Rows d3dRead = {
    {20, "rgb 8.8.8", uni}, {21, "argb 8.8.8.8", uni}, {22, "xrgb 8.8.8.8", uni}, {23, "rgb 5.6.5", uni},
    {24, "xrgb 1.5.5.5", uni}, {25, "argb 1.5.5.5", uni}, {26, "argb 4.4.4.4", uni}, {27, "rgb 3.3.2", uni}, {28, "a 8", uni},
    {29, "argb 8.3.3.2", uni}, {30, "argb 4.4.4.4", uni}, {31, "abgr 2.10.10.10", uni}, {32, "abgr 8.8.8.8", uni},
    {33, "xbgr 8.8.8.8", uni}, {34, "gr 16.16", uni}, {35, "argb 2.10.10.10", uni}, {36, "abgr 16.16.16.16", uni},
    {50, "l 8", uni}, {51, "al 8.8", uni}, {52, "al 4.4", uni}, {60, "gr 8.8", sni}, {61, "lgr 6.5.5", sni},
    {62, "xlgr 8.8.8.8", sni}, {63, "abgr 8.8.8.8", sni}, {64, "gr 16.16", sni}, {67, "abgr 2.10.10.10", sni},
    {81, "l 16", uni}, {110, "abgr 16.16.16.16", sni}, {111, "r 32", flt}, {112, "gr 16.16", flt},
    {113, "abgr 16.16.16.16", flt}, {114, "r 32", flt}, {115, "gr 32.32", flt}, {116, "abgr 32.32.32.32", flt},
    {code("DXT1"), eFmtDXT1, unb}, {code("DXT2"), eFmtDXT2, unb}, {code("DXT3"), eFmtDXT3, unb}, {code("DXT4"), eFmtDXT4, unb},
    {code("DXT5"), eFmtDXT5, unb}, {code("UYVY"), eFmtUYVY, unb}, {code("YUY2"), eFmtYUY2, unb},
    {code("RGBG"), eFmtRGBG8888, unb}, {code("GRGB"), eFmtGRGB8888, unb}};
const Rows d3dGivenAlone = {
    {111, "r 16", flt}, {115, "rg 32.32", flt}, {code("MTC2"), eFmtMOKTC2bppRGB}, {code("MTC2"), eFmtMOKTC2bppRGBA},
    {code("MTC4"), eFmtMOKTC4bppRGB}, {code("MTC4"), eFmtMOKTC4bppRGBA}};
// clang-format on

unsigned int expectedD3D(PixelType format, unsigned int type) {
    const auto isGiven = [&](const Row& row) {
        if (row.format != format) return false;
        // Of these layouts the channel type of their width is given the same number.
        const bool ofBytes = isAnyOf(row.number, {20, 21, 22, 27, 28, 50, 51, 52});
        const bool ofShorts = isAnyOf(row.number, {23, 24, 25, 26, 29, 34, 36, 81});
        return format.part.high == 0 || row.channelType == type || (ofBytes && type == unb) || (ofShorts && type == uns);
    };
    for (const Row& row : d3dGivenAlone) {
        if (isGiven(row)) return row.number;
    }
    for (const Row& row : d3dRead) {
        const bool isReadAlone = isAnyOf(row.number, {30, 32, 33, 110, 111, 115, code("RGBG"), code("GRGB")});
        if (!isReadAlone && isGiven(row)) return row.number;
    }
    return 0;
}

unsigned int expectedDXGI(PixelType format, unsigned int type, unsigned int space) {
    if (format == Notation("a 8") && type == unb) return 65;
    unsigned int number = 0;
    for (const Row& row : dxgiRead()) {
        const bool takesAnyType = isAnyOf(row.number, {66, 68, 69});
        if (row.format != format || (row.channelType != type && !takesAnyType)) continue;
        if (isAnyOf(row.number, {65, 67, 96, 98, 99, 107, 111, 112, 115})) continue;  // read alone
        if (number == 0 || space == eColourSpaceSRGB) number = row.number;            // sRGB rows stand behind linear ones
    }
    return number;
}

/// Sets `number` in plain and premultiplied headers, and compares with what the row says, or with no change without a row.
void expectSet(bool (CMOKTextureHeader::*set)(const unsigned int&), unsigned int number, const Row* row) {
    const bool marks = row != nullptr && (row->format == eFmtDXT2 || row->format == eFmtDXT4);
    for (const bool premultiplied : {false, true}) {
        CMOKTextureHeader header = untouched(premultiplied);
        EXPECT_EQ((header.*set)(number), row != nullptr) << number;
        const CMOKTextureHeader expected =
            row == nullptr ? untouched(premultiplied)
                           : headerOf(row->format, row->channelType, row->colourSpace, premultiplied || marks);
        EXPECT_TRUE(sameRecord(header, expected)) << number << " gave " << std::hex << header.getPixelType().id;
    }
}

TEST(NumberMaps, GettersGiveTheNumberOfEveryFormatTypeAndColourSpace) {
    for (const PixelType format : allFormats()) {
        for (unsigned int variation = 0; variation < 15 * 3; ++variation) {
            const unsigned int type = variation % 15, space = variation / 15;
            const CMOKTextureHeader header = headerOf(format, type, space);
            EXPECT_EQ(header.getD3DFormat(), expectedD3D(format, type)) << std::hex << format.id << " type " << type;
            EXPECT_EQ(header.getDXGIFormat(), expectedDXGI(format, type, space)) << std::hex << format.id << " type " << type;
        }
    }
}

TEST(NumberMaps, SettersTakeEveryKnownNumberAndRefuseAllOthers) {
    std::vector<unsigned int> numbers = {code("MTC2"), code("MTC4"), code("DXT6"), code("DX10"), code("dxt1"), ~0u};
    for (unsigned int number = 0; number < 300; ++number)
        numbers.push_back(number);
    for (const Row& row : d3dRead)
        numbers.push_back(row.number);
    for (const unsigned int number : numbers) {
        expectSet(&CMOKTextureHeader::setD3DFormat, number, find(d3dRead, number));
        expectSet(&CMOKTextureHeader::setDXGIFormat, number, find(dxgiRead(), number));
    }
}

}  // namespace
