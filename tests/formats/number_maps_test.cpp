// The maps to Direct3D and DXGI, against tables written out a second time.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "format_notation.h"

using namespace formatnotation;

namespace {

constexpr unsigned int code(const char (&text)[5]) {
    return static_cast<unsigned int>(text[0] | text[1] << 8 | text[2] << 16 | text[3] << 24);
}

struct Row {
    unsigned int number;
    Notation format;
    EMOKTVariableType channelType = eVarNone;
    EMOKTColourSpace colourSpace = eColourSpaceLinear;
};

// clang-format off
// Columns of the getter: unsigned byte, short and int, signed int, all normalised; float.
constexpr EMOKTVariableType d3dTypes[] = {unb, uns, uni, sni, flt};
const std::pair<Notation, std::array<unsigned int, 5>> d3dGetter[] = {
    {"a 8", {28, 0, 28, 0, 0}},              {"l 8", {50, 0, 50, 0, 0}},              {"l 16", {0, 81, 81, 0, 0}},
    {"r 16", {0, 0, 0, 0, 111}},             {"r 32", {0, 0, 0, 0, 114}},             {"al 4.4", {52, 0, 52, 0, 0}},
    {"al 8.8", {51, 0, 51, 0, 0}},           {"gr 8.8", {0, 0, 0, 60, 0}},            {"gr 16.16", {0, 34, 34, 64, 112}},
    {"rg 32.32", {0, 0, 0, 0, 115}},         {"rgb 3.3.2", {27, 0, 27, 0, 0}},        {"lgr 6.5.5", {0, 0, 0, 61, 0}},
    {"rgb 5.6.5", {0, 23, 23, 0, 0}},        {"rgb 8.8.8", {20, 0, 20, 0, 0}},        {"argb 8.3.3.2", {0, 29, 29, 0, 0}},
    {"argb 4.4.4.4", {0, 26, 26, 0, 0}},     {"argb 1.5.5.5", {0, 25, 25, 0, 0}},     {"xrgb 1.5.5.5", {0, 24, 24, 0, 0}},
    {"argb 8.8.8.8", {21, 0, 21, 0, 0}},     {"xrgb 8.8.8.8", {22, 0, 22, 0, 0}},     {"abgr 8.8.8.8", {0, 0, 0, 63, 0}},
    {"xlgr 8.8.8.8", {0, 0, 0, 62, 0}},      {"argb 2.10.10.10", {0, 0, 35, 0, 0}},   {"abgr 2.10.10.10", {0, 0, 31, 67, 0}},
    {"abgr 16.16.16.16", {0, 36, 36, 0, 113}}, {"abgr 32.32.32.32", {0, 0, 0, 0, 116}}};

const Row d3dGetterOfAnyType[] = {
    {code("MTC2"), eFmtMOKTC2bppRGB}, {code("MTC2"), eFmtMOKTC2bppRGBA}, {code("MTC4"), eFmtMOKTC4bppRGB},
    {code("MTC4"), eFmtMOKTC4bppRGBA}, {code("DXT1"), eFmtDXT1}, {code("DXT2"), eFmtDXT2}, {code("DXT3"), eFmtDXT3},
    {code("DXT4"), eFmtDXT4}, {code("DXT5"), eFmtDXT5}, {code("UYVY"), eFmtUYVY}, {code("YUY2"), eFmtYUY2}};

const std::vector<Row> d3dSetter = {
    {20, "rgb 8.8.8", uni},          {21, "argb 8.8.8.8", uni},      {22, "xrgb 8.8.8.8", uni},      {23, "rgb 5.6.5", uni},
    {24, "xrgb 1.5.5.5", uni},       {25, "argb 1.5.5.5", uni},      {26, "argb 4.4.4.4", uni},      {27, "rgb 3.3.2", uni},
    {28, "a 8", uni},                {29, "argb 8.3.3.2", uni},      {30, "argb 4.4.4.4", uni},      {31, "abgr 2.10.10.10", uni},
    {32, "abgr 8.8.8.8", uni},       {33, "xbgr 8.8.8.8", uni},      {34, "gr 16.16", uni},          {35, "argb 2.10.10.10", uni},
    {36, "abgr 16.16.16.16", uni},   {50, "l 8", uni},               {51, "al 8.8", uni},            {52, "al 4.4", uni},
    {60, "gr 8.8", sni},             {61, "lgr 6.5.5", sni},         {62, "xlgr 8.8.8.8", sni},      {63, "abgr 8.8.8.8", sni},
    {64, "gr 16.16", sni},           {67, "abgr 2.10.10.10", sni},   {81, "l 16", uni},            {110, "abgr 16.16.16.16", sni},
    {111, "r 32", flt},              {112, "gr 16.16", flt},         {113, "abgr 16.16.16.16", flt}, {114, "r 32", flt},
    {115, "gr 32.32", flt},          {116, "abgr 32.32.32.32", flt},
    {code("DXT1"), eFmtDXT1, unb},     {code("DXT2"), eFmtDXT2, unb}, {code("DXT3"), eFmtDXT3, unb},
    {code("DXT4"), eFmtDXT4, unb},     {code("DXT5"), eFmtDXT5, unb}, {code("UYVY"), eFmtUYVY, unb},
    {code("YUY2"), eFmtYUY2, unb},     {code("RGBG"), eFmtRGBG8888, unb}, {code("GRGB"), eFmtGRGB8888, unb}};

constexpr EMOKTColourSpace srgb = eColourSpaceSRGB;
const std::vector<Row> dxgiBoth = {
    {2, "rgba 32.32.32.32", flt},   {3, "rgba 32.32.32.32", ui},    {4, "rgba 32.32.32.32", si},    {6, "rgb 32.32.32", flt},
    {7, "rgb 32.32.32", ui},        {8, "rgb 32.32.32", si},        {10, "rgba 16.16.16.16", flt},  {11, "rgba 16.16.16.16", uns},
    {12, "rgba 16.16.16.16", us},   {13, "rgba 16.16.16.16", sns},  {14, "rgba 16.16.16.16", ss},   {16, "rg 32.32", flt},
    {17, "rg 32.32", ui},           {18, "rg 32.32", si},           {24, "rgba 10.10.10.2", uni},   {25, "rgba 10.10.10.2", ui},
    {26, "rgb 11.11.10", flt},      {28, "rgba 8.8.8.8", unb},      {29, "rgba 8.8.8.8", unb, srgb}, {30, "rgba 8.8.8.8", ub},
    {31, "rgba 8.8.8.8", snb},      {32, "rgba 8.8.8.8", sb},       {34, "rg 16.16", flt},          {35, "rg 16.16", uns},
    {36, "rg 16.16", us},           {37, "rg 16.16", sns},          {38, "rg 16.16", ss},           {41, "r 32", flt},
    {42, "r 32", ui},               {43, "r 32", si},               {49, "rg 8.8", unb},            {50, "rg 8.8", ub},
    {51, "rg 8.8", snb},            {52, "rg 8.8", sb},             {54, "r 16", flt},              {56, "r 16", uns},
    {57, "r 16", us},               {58, "r 16", sns},              {59, "r 16", ss},               {61, "r 8", unb},
    {62, "r 8", ub},                {63, "r 8", snb},               {64, "r 8", sb},                {66, eFmtBW1bpp, unb},
    {68, eFmtRGBG8888, unb},        {69, eFmtGRGB8888, unb},        {71, eFmtDXT1, uni},            {72, eFmtDXT1, uni, srgb},
    {74, eFmtDXT3, uni},            {75, eFmtDXT3, uni, srgb},      {77, eFmtDXT5, uni},            {78, eFmtDXT5, uni, srgb},
    {80, eFmtBC4, uni, srgb},       {81, eFmtBC4, sni},             {83, eFmtBC5, uni},             {84, eFmtBC5, sni},
    {85, "bgr 5.6.5", uns},         {86, "bgra 5.5.5.1", uns},      {87, "bgra 8.8.8.8", unb},      {88, "bgrx 8.8.8.8", unb},
    {91, "bgra 8.8.8.8", unb, srgb}, {93, "bgrx 8.8.8.8", unb, srgb}};
const std::vector<Row> dxgiGetterAlone = {{65, "a 8", unb}};
const std::vector<Row> dxgiSetterAlone = {
    {65, "r 8", unb}, {67, eFmtRGB9E5, flt}, {96, eFmtBC7, flt, srgb}, {98, eFmtBC7, uni}, {99, eFmtBC7, uni, srgb},
    {107, eFmtYUY2, uni}, {111, "ai 4.4", unb}, {112, "ia 4.4", unb}, {115, "bgra 4.4.4.4", uns}};
// clang-format on

unsigned int expectedD3D(PixelType format, unsigned int type) {
    for (const Row& row : d3dGetterOfAnyType) {
        if (row.format == format) return row.number;
    }
    for (const auto& [layout, numbers] : d3dGetter) {
        for (std::size_t i = 0; i < std::size(d3dTypes); ++i) {
            if (layout == format && d3dTypes[i] == type) return numbers[i];
        }
    }
    return 0;
}

unsigned int expectedDXGI(PixelType format, unsigned int type, unsigned int space) {
    unsigned int number = 0;
    for (const auto* rows : {&dxgiBoth, &dxgiGetterAlone}) {
        for (const Row& row : *rows) {
            const bool takesAnyType = row.number == 66 || row.number == 68 || row.number == 69;
            if (row.format != format || (row.channelType != type && !takesAnyType)) continue;
            if (number == 0 || space == eColourSpaceSRGB) number = row.number;  // sRGB rows stand behind linear ones
        }
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

const Row* find(const std::vector<Row>& rows, unsigned int number) {
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& r) { return r.number == number; });
    return row == rows.end() ? nullptr : &*row;
}

TEST(NumberMaps, GettersGiveTheNumberOfEveryFormatTypeAndColourSpace) {
    for (const PixelType format : allFormats()) {
        for (unsigned int type = 0; type < 15; ++type) {
            for (unsigned int space = 0; space < 3; ++space) {
                const CMOKTextureHeader header = headerOf(format, type, space);
                EXPECT_EQ(header.getD3DFormat(), expectedD3D(format, type)) << std::hex << format.id << " type " << type;
                EXPECT_EQ(header.getDXGIFormat(), expectedDXGI(format, type, space)) << std::hex << format.id << " type " << type;
            }
        }
    }
}

TEST(NumberMaps, SettersTakeEveryKnownNumberAndRefuseAllOthers) {
    std::vector<unsigned int> numbers = {code("MTC2"), code("MTC4"), code("DXT6"), code("DX10"), code("dxt1"), ~0u};
    for (unsigned int number = 0; number < 300; ++number)
        numbers.push_back(number);
    for (const Row& row : d3dSetter)
        numbers.push_back(row.number);
    for (const unsigned int number : numbers) {
        expectSet(&CMOKTextureHeader::setD3DFormat, number, find(d3dSetter, number));
        const Row* row = find(dxgiBoth, number);
        expectSet(&CMOKTextureHeader::setDXGIFormat, number, row != nullptr ? row : find(dxgiSetterAlone, number));
    }
}

}  // namespace
