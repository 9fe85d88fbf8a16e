// The maps between pixel formats and the numbers of OpenGL, OpenGL ES, Direct3D 9, DXGI and the legacy layout. Rows hold what is
// worked out by hand: one format of each kind, and the odd ones; digests hold the results for all formats, types and numbers.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "CMOKTextureHeader.h"
#include "formats/legacy/legacy_format_table.h"
#include "support/test_images.h"

using namespace moktexture;

namespace {

constexpr EMOKTVariableType unb = eVarUByteNorm, snb = eVarSByteNorm, sb = eVarSByte, uns = eVarUShortNorm, us = eVarUShort,
                            uni = eVarUIntNorm, sni = eVarSIntNorm, si = eVarSInt, flt = eVarFloat, noType = eVarNone;
constexpr EMOKTColourSpace lin = eColourSpaceLinear, srgb = eColourSpaceSRGB, otherSpace = static_cast<EMOKTColourSpace>(2);

/// A compressed format, or a layout written like "rgb 5.6.5".
struct Format {
    PixelType type;
    Format(CompressedFormatId number) : type(number) {}
    Format(const char* text) : Format(std::string(text)) {}
    Format(const std::string& text) {
        std::istringstream bits(text.substr(text.find(' ')));
        for (std::size_t i = 0, rate = 0; text[i] != ' '; ++i, bits.ignore()) {
            bits >> rate;
            type.id |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i) | std::uint64_t{rate} << (32 + 8 * i);
        }
    }
    operator PixelType() const { return type; }
};

/// Every number from 0 to 31, and every order of letters with every set of bits of the maps, meaningful or not.
std::vector<PixelType> allFormats() {
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
                formats.push_back(Format(name + rates));
    return formats;
}

CMOKTextureHeader headerOf(PixelType format, unsigned int type, unsigned int space = lin, bool premultiplied = false) {
    return CMOKTextureHeader(format.id, 3, 5, 7, 2, 4, 6, static_cast<EMOKTColourSpace>(space),
                             static_cast<EMOKTVariableType>(type), premultiplied);
}

/// A header whose format no map has, which shows what a setter leaves unchanged.
constexpr auto unchanged = static_cast<CompressedFormatId>(0x77);
CMOKTextureHeader unchangedHeader(bool premultiplied = false) {
    return headerOf(PixelType(unchanged), noType, srgb, premultiplied);
}

std::vector<unsigned char> recordOf(const CMOKTextureHeader& header) {
    const MOKTextureHeaderV3 record = header.getFileHeader();
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    return {bytes, bytes + sizeof(record)};
}

/// Collects results for a digest.
struct Collected {
    std::vector<std::uint32_t> numbers;
    void add(std::uint32_t number) { numbers.push_back(number); }
    void add(bool result, const CMOKTextureHeader& header) {
        const std::vector<unsigned char> record = recordOf(header);
        numbers.resize(numbers.size() + 1 + record.size() / 4, result);
        std::memcpy(numbers.data() + numbers.size() - record.size() / 4, record.data(), record.size());
    }
    std::uint64_t digest() const {
        return testimages::digest({reinterpret_cast<const std::uint8_t*>(numbers.data()), numbers.size() * 4});
    }
};

constexpr unsigned int code(const char (&text)[5]) {
    return static_cast<unsigned int>(text[0] | text[1] << 8 | text[2] << 16 | text[3] << 24);
}

// --- OpenGL, OpenGL ES, Direct3D 9, DXGI

enum Api { GL, ES, D3D, DXGI };
using Numbers = std::array<unsigned int, 3>;  // of OpenGL: internal format, format, type; of the others: the number

/// What a getter returns; OpenGL's outputs hold 11, 12 and 13 before.
Numbers get(Api api, const CMOKTextureHeader& header) {
    Numbers n = {11, 12, 13};
    if (api == GL) header.getOGLFormat(n[0], n[1], n[2]);
    if (api == ES) header.getOGLESFormat(n[0], n[1], n[2]);
    if (api == D3D) n = {header.getD3DFormat()};
    if (api == DXGI) n = {header.getDXGIFormat()};
    return n;
}

bool set(Api api, const Numbers& n, CMOKTextureHeader& header) {
    if (api == GL) return header.setOGLFormat(n[0], n[1], n[2]);
    if (api == ES) return header.setOGLESFormat(n[0], n[1], n[2]);
    return api == D3D ? header.setD3DFormat(n[0]) : header.setDXGIFormat(n[0]);
}

TEST(FormatMaps, GettersReturnTheNumbersOfEachApi) {
    const Numbers none = {0, 0, 0}, left = {11, 12, 13}, leftCompressed = {11, 0, 0};
    // clang-format off
    const struct {
        Format format; EMOKTVariableType type; EMOKTColourSpace space; Numbers gl, es; unsigned int d3d, dxgi; } rows[] = {
        // Format           Type Space  OpenGL                    OpenGL ES                 D3D9          DXGI
        {"rgba 8.8.8.8",    unb, lin,  {0x8058, 0x1908, 0x1401}, {0x1908, 0x1908, 0x1401}, 0,            28},
        {"rgba 8.8.8.8",    unb, srgb, {0x8058, 0x1908, 0x1401}, {0x1908, 0x1908, 0x1401}, 0,            29},
        {"bgr 8.8.8",       unb, lin,  {0x8051, 0x80E0, 0x1401}, {11, 12, 0x1401},         0,            0},
        {"a 8",             unb, lin,  {0x803C, 0x1906, 0x1401}, {0x1906, 0x1906, 0x1401}, 28,           65},
        {"r 8",             unb, lin,  {0x8229, 0x1903, 0x1401}, {0x1903, 0x1903, 0x1401}, 0,            61},
        {"la 8.8",          snb, lin,  {0x9016, 0x190A, 0x1400}, left,                     0,            0},
        {"ia 8.8",          snb, lin,  {0, 0, 0x1400},           left,                     0,            0},
        {"rgba 5.5.5.1",    uns, lin,  {0x8057, 0x1908, 0x8034}, {0x1908, 0x1908, 0x8034}, 0,            0},
        {"argb 8.8.8.8",    uni, lin,  none,                     left,                     21,           0},
        {"abgr 2.10.10.10", uni, lin,  {0x8059, 0x1908, 0x8368}, {0x1908, 0x1908, 0x8368}, 31,           0},
        {"abgr 2.10.10.10", sni, lin,  none,                     left,                     67,           0},
        {"xbgr 2.10.10.10", uni, lin,  {0x1907, 0x1907, 0x8368}, {0x1907, 0x1907, 0x8368}, 0,            0},
        {"r 16",            flt, lin,  {0x822D, 0x1903, 0x140B}, {0x1903, 0x1903, 0x8D61}, 111,          54},
        {"r 32",            flt, lin,  {0x822E, 0x1903, 0x1406}, {0x1903, 0x1903, 0x1406}, 114,          41},
        {"rg 32.32",        flt, lin,  {0x8230, 0x8227, 0x1406}, {0x8227, 0x8227, 0x1406}, 115,          16},
        {"gr 32.32",        flt, lin,  none,                     left,                     0,            0},
        {eFmtMOKTC2bppRGBA, unb, lin,  {0x8C03, 0, 0},           {0x8C03, 0, 0},           code("MTC2"), 0},
        {eFmtMOKTC4bppRGB,  unb, lin,  {0x8C00, 0, 0},           {0x8C00, 0, 0},           code("MTC4"), 0},
        {eFmtETC1,          unb, lin,  none,                     {0x8D64, 0, 0},           0,            0},
        {eFmtDXT1,          unb, lin,  none,                     leftCompressed,           code("DXT1"), 0},
        {eFmtDXT1,          uni, lin,  none,                     leftCompressed,           code("DXT1"), 71},
        {eFmtDXT1,          uni, srgb, none,                     leftCompressed,           code("DXT1"), 72},
        {eFmtBC4,           uni, lin,  none,                     leftCompressed,           0,            80},
        {eFmtBC7,           uni, srgb, none,                     leftCompressed,           0,            0},
        {eFmtBW1bpp,        flt, lin,  none,                     leftCompressed,           0,            66},
        {eFmtYUY2,          uni, lin,  none,                     leftCompressed,           code("YUY2"), 0}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const CMOKTextureHeader header = headerOf(row.format, row.type, row.space);
        EXPECT_EQ(get(GL, header), row.gl);
        EXPECT_EQ(get(ES, header), row.es);
        EXPECT_EQ(get(D3D, header), Numbers{row.d3d});
        EXPECT_EQ(get(DXGI, header), Numbers{row.dxgi});
    }
    Collected openGL, direct3D;
    for (const PixelType format : allFormats()) {
        for (unsigned int type = 0; type < 15 * 2; ++type)
            for (const unsigned int number : get(type < 15 ? GL : ES, headerOf(format, type % 15, type % 3)))
                openGL.add(number);
        for (unsigned int variation = 0; variation < 15 * 3; ++variation)
            for (const Api api : {D3D, DXGI})
                direct3D.add(get(api, headerOf(format, variation % 15, variation / 15))[0]);
    }
    EXPECT_EQ(openGL.digest(), 13594332280203533098u);
    EXPECT_EQ(direct3D.digest(), 15405165906553242222u);
}

TEST(FormatMaps, SettersAcceptTheNumbersOfTheirRows) {
    // clang-format off
    const struct {
        Api api; Numbers numbers; bool result; Format format; EMOKTVariableType type; EMOKTColourSpace space; bool premultiplied;
    } rows[] = {
        // API  Numbers                   Result Format             Type    Space Premultiplied
        {GL,   {0x1908, 1, 0x1401},      true,  "rgba 8.8.8.8",     unb,    lin,  false},
        {GL,   {0x8058, 0x1908, 0x1401}, true,  unchanged,          noType, srgb, false},  // a sized format
        {GL,   {0x8057, 0x1908, 0x8034}, false, unchanged,          noType, srgb, false},  // a sized format, packed type
        {ES,   {0x8057, 0x1908, 0x8034}, false, unchanged,          noType, srgb, false},
        {GL,   {0x1908, 1, 0x8034},      true,  "rgba 1.5.5.5",     uns,    lin,  false},
        {GL,   {1, 0x1903, 0x140B},      true,  "r 16",             flt,    lin,  false},
        {ES,   {1, 0x1903, 0x140B},      true,  unchanged,          noType, srgb, false},
        {ES,   {1, 0x1903, 0x8D61},      true,  "r 16",             flt,    lin,  false},
        {GL,   {0x80E0, 1, 0x1400},      true,  "bgr 8.8.8",        snb,    lin,  false},
        {ES,   {0x80E0, 1, 0x1401},      true,  unchanged,          noType, srgb, false},
        {ES,   {0x8C03, 0, 1},           true,  eFmtMOKTC2bppRGBA,  uni,    lin,  false},
        {GL,   {0x8D64, 0, 1},           true,  eFmtETC1,           uni,    lin,  false},
        {GL,   {0x1234, 0, 0},           true,  unchanged,          uni,    lin,  false},  // unknown
        {D3D,  {30},                     true,  "argb 4.4.4.4",     uni,    lin,  false},
        {D3D,  {32},                     true,  "abgr 8.8.8.8",     uni,    lin,  false},
        {D3D,  {111},                    true,  "r 32",             flt,    lin,  false},
        {D3D,  {115},                    true,  "gr 32.32",         flt,    lin,  false},
        {D3D,  {code("DXT2")},           true,  eFmtDXT2,           unb,    lin,  true},
        {D3D,  {code("RGBG")},           true,  eFmtRGBG8888,       unb,    lin,  false},
        {D3D,  {code("MTC2")},           false, unchanged,          noType, srgb, false},
        {DXGI, {28},                     true,  "rgba 8.8.8.8",     unb,    lin,  false},
        {DXGI, {29},                     true,  "rgba 8.8.8.8",     unb,    srgb, false},
        {DXGI, {65},                     true,  "r 8",              unb,    lin,  false},
        {DXGI, {67},                     true,  eFmtRGB9E5,         flt,    lin,  false},
        {DXGI, {80},                     true,  eFmtBC4,            uni,    srgb, false},
        {DXGI, {96},                     true,  eFmtBC7,            flt,    srgb, false},
        {DXGI, {115},                    true,  "bgra 4.4.4.4",     uns,    lin,  false},
        {DXGI, {95},                     false, unchanged,          noType, srgb, false}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        CMOKTextureHeader header = unchangedHeader();
        EXPECT_EQ(set(row.api, row.numbers, header), row.result);
        EXPECT_EQ(recordOf(header), recordOf(headerOf(row.format, row.type, row.space, row.premultiplied)));
    }
}

TEST(FormatMaps, SettersAreUnchangedForAllCombinationsOfNumbers) {
    Collected openGL, direct3D;
    for (const unsigned int start : {0u, 0x1220u, 0x1400u, 0x1900u, 0x8020u, 0x8040u, 0x80E0u, 0x8220u, 0x8360u, 0x8810u, 0x8C00u,
                                     0x8D60u, 0x8F90u, 0x9010u, 0x9130u, ~0u - 31})
        for (unsigned int i = 0; i < 32; ++i)
            for (const unsigned int format :
                 {0u, 0x1903u, 0x1906u, 0x1907u, 0x1908u, 0x1909u, 0x190Au, 0x8058u, 0x80E0u, 0x80E1u, 0x8227u})
                for (const unsigned int type :
                     {0u, 0x1400u, 0x1401u, 0x1406u, 0x140Bu, 0x8033u, 0x8034u, 0x8363u, 0x8368u, 0x8D61u})
                    for (const Api api : {GL, ES}) {
                        CMOKTextureHeader header = unchangedHeader();
                        const bool result = set(api, {start + i, format, type}, header);
                        openGL.add(result, header);
                    }
    EXPECT_EQ(openGL.digest(), 11007993834002751549u);

    std::vector<unsigned int> numbers = {code("DXT1"), code("DXT2"), code("DXT3"), code("DXT4"), code("DXT5"),
                                         code("DXT6"), code("DX10"), code("dxt1"), code("UYVY"), code("YUY2"),
                                         code("RGBG"), code("GRGB"), code("MTC2"), code("MTC4"), ~0u};
    for (unsigned int number = 0; number < 300; ++number)
        numbers.push_back(number);
    for (const Api api : {D3D, DXGI})
        for (const unsigned int number : numbers)
            for (const bool premultiplied : {false, true}) {
                CMOKTextureHeader header = unchangedHeader(premultiplied);
                const bool result = set(api, {number}, header);
                direct3D.add(result, header);
            }
    EXPECT_EQ(direct3D.digest(), 2224679048905497977u);
}

// --- Legacy numbers

/// A legacy number, and the format that it is read as or written for.
struct LegacyRow {
    unsigned int number;
    Format format;
    EMOKTVariableType type = eVarNone;
    EMOKTColourSpace space = lin;
    bool premultiplied = false;
};

TEST(LegacyFormats, EveryNumberIsReadAsItsRow) {
    // clang-format off
    const LegacyRow rows[] = {
        {0, "argb 4.4.4.4", uns}, {5, "argb 8.8.8.8", uni}, {12, eFmtMOKTC2bppRGBA, unb}, {16, "rgba 4.4.4.4", uns},
        {18, "rgba 8.8.8.8", unb}, {20, "rgbx 5.5.5.1", uns}, {22, "l 8", unb}, {28, eFmtMOKTCII4bpp, unb}, {32, eFmtDXT1, unb},
        {33, eFmtDXT2, unb, lin, true}, {44, "argb 2.10.10.10", uni}, {52, "gr 32.32", flt}, {54, eFmtETC1, unb},
        {70, eFmtYUY2, unb}, {80, "rgba 32.32.32.32", flt}, {96, "rgb 11.11.10", flt}, {129, eFmtDXT1, uni, srgb},
        {137, eFmtBC5, sni}, {145, "rgba 8.8.8.8", unb, srgb}, {146, "rgba 8.8.8.8", unb, srgb, true},
        {170, "bgrx 4.4.4.4", uns, srgb}, {178, "xbgr 4.4.4.4", uns, srgb}, {181, "abgr 8.8.8.8", unb, lin, true},
        {14, eFmtUnknown}, {182, eFmtUnknown}};
    // clang-format on
    const auto headerOfNumber = [](unsigned int number) {
        const LegacyFormat f = formatOfLegacyNumber(static_cast<std::uint8_t>(number));
        return headerOf(f.format, f.channelType, f.colourSpace, f.isPreMultiplied);
    };
    for (const LegacyRow& row : rows)
        EXPECT_EQ(recordOf(headerOfNumber(row.number)), recordOf(headerOf(row.format, row.type, row.space, row.premultiplied)))
            << row.number;
    Collected all;
    for (unsigned int number = 0; number < 256; ++number)
        all.add(true, headerOfNumber(number));
    EXPECT_EQ(all.digest(), 16444684888060279131u);
}

TEST(LegacyFormats, EveryFamilyWritesItsNumbers) {
    // Formats that are not written as they are read, or whose number does not depend on all of their properties; 255: none.
    // clang-format off
    const std::vector<LegacyRow> none = {{255, "rgba 8.8.8.8", unb}};
    const std::vector<LegacyRow> gl = {
        {22, "i 8", unb}, {23, "ai 8.8", unb}, {24, eFmtMOKTC2bppRGB, snb}, {25, eFmtMOKTC4bppRGB, flt}, {255, "l 8", unb},
        {255, "la 8.8", unb}, {255, eFmtDXT1, unb}};
    const std::vector<LegacyRow> d3d = {
        {12, eFmtMOKTC2bppRGB, unb}, {13, eFmtMOKTC4bppRGB, unb}, {0, "argb 4.4.4.4", uni}, {1, "argb 1.5.5.5", uni},
        {2, "rgb 5.6.5", uni}, {3, "xrgb 1.5.5.5", uni}, {6, "argb 8.3.3.2", uni}, {44, "abgr 2.10.10.10", sni},
        {52, "rg 32.32", flt}, {255, "argb 4.4.4.4", uns}, {255, "gr 32.32", flt}, {255, eFmtETC1, unb}};
    const std::vector<LegacyRow> dxgi = {
        {128, eFmtDXT1, uni}, {129, eFmtDXT1, uni, srgb}, {129, eFmtDXT1, uni, otherSpace}, {80, "rgba 32.32.32.32", flt, srgb},
        {126, eFmtRGBG8888, sb}, {255, "ai 4.4", unb}};
    const std::vector<LegacyRow> vg = {
        {170, "bgra 4.4.4.4", uns, srgb}, {178, "abgr 4.4.4.4", uns, srgb}, {255, "bgrx 4.4.4.4", uns, srgb},
        {156, eFmtBW1bpp, sb, srgb}, {144, "rgbx 8.8.8.8", unb, srgb, true}, {255, "l 8", unb, otherSpace}};
    const struct { unsigned int api; const std::vector<LegacyRow>& rows; std::uint64_t digest; } families[] = {
        // API  Rows  Digest of the numbers of all formats, types, colour spaces and states of premultiplication
        {0, none, 17744209039430327109u}, {1, gl, 17846664982911042997u},   {2, gl, 17846664982911042997u},
        {3, d3d, 11056111032960408309u},  {4, gl, 17846664982911042997u},   {5, d3d, 11056111032960408309u},
        {6, dxgi, 6636251025329413877u},  {7, vg, 12360310741007515647u},   {8, none, 17744209039430327109u}};
    // clang-format on
    for (const auto& family : families) {
        SCOPED_TRACE(family.api);
        const auto numberOf = [&](PixelType format, unsigned int type, unsigned int space, bool premultiplied) {
            const LegacyFormat wanted = {format, static_cast<EMOKTVariableType>(type), static_cast<EMOKTColourSpace>(space),
                                         premultiplied};
            return std::uint32_t{legacyNumberOf(wanted, static_cast<ELegacyApi>(family.api)).value_or(255)};
        };
        for (const LegacyRow& row : family.rows)
            EXPECT_EQ(numberOf(row.format, row.type, row.space, row.premultiplied), row.number);
        Collected all;
        for (const PixelType& format : allFormats())
            for (unsigned int variation = 0; variation < 15 * 3 * 2; ++variation)
                all.add(numberOf(format, variation % 15, variation / 15 % 3, variation >= 45));
        EXPECT_EQ(all.digest(), family.digest);
    }
}

}  // namespace
