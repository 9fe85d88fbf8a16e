// The maps between pixel formats and the numbers of OpenGL, OpenGL ES, Direct3D 9, DXGI and the legacy layout. Rows hold what is
// worked out by hand: one format of each kind, and the odd ones; digests hold the results for all formats, types and numbers.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "CMOKTextureHeader.h"
#include "formats/legacy/legacy_format_table.h"
#include "support/test_images.h"

using namespace moktexture;

namespace {

constexpr EMOKTVariableType unb = eVarUByteNorm, snb = eVarSByteNorm, uns = eVarUShortNorm, uni = eVarUIntNorm,
                            sni = eVarSIntNorm, flt = eVarFloat, noType = eVarNone;
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

/// A format that no map has, which shows what a setter leaves unchanged.
constexpr auto unchanged = static_cast<CompressedFormatId>(0x77);

using Record = std::array<std::uint32_t, sizeof(MOKTextureHeaderV3) / 4>;
Record recordOf(const CMOKTextureHeader& header) {
    return std::bit_cast<Record>(header.getFileHeader());
}

/// Collects results for a digest.
struct Collected {
    std::vector<std::uint32_t> numbers;
    void add(std::uint32_t number) { numbers.push_back(number); }
    void add(bool result, const CMOKTextureHeader& header) {
        add(std::uint32_t{result});
        for (const std::uint32_t word : recordOf(header))
            add(word);
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
        {"bgr 8.8.8",       unb, lin,  {0x8051, 0x80E0, 0x1401}, {11, 12, 0x1401},         0,            0},
        {"a 8",             unb, lin,  {0x803C, 0x1906, 0x1401}, {0x1906, 0x1906, 0x1401}, 28,           65},
        {"ia 8.8",          snb, lin,  {0, 0, 0x1400},           left,                     0,            0},
        {"rgba 5.5.5.1",    uns, lin,  {0x8057, 0x1908, 0x8034}, {0x1908, 0x1908, 0x8034}, 0,            0},
        {"abgr 2.10.10.10", uni, lin,  {0x8059, 0x1908, 0x8368}, {0x1908, 0x1908, 0x8368}, 31,           0},
        {"xbgr 2.10.10.10", uni, lin,  {0x1907, 0x1907, 0x8368}, {0x1907, 0x1907, 0x8368}, 0,            0},
        {"r 16",            flt, lin,  {0x822D, 0x1903, 0x140B}, {0x1903, 0x1903, 0x8D61}, 111,          54},
        {"gr 32.32",        flt, lin,  none,                     left,                     0,            0},
        {eFmtMOKTC2bppRGBA, unb, lin,  {0x8C03, 0, 0},           {0x8C03, 0, 0},           code("MTC2"), 0},
        {eFmtMOKTC4bppRGB,  unb, lin,  {0x8C00, 0, 0},           {0x8C00, 0, 0},           code("MTC4"), 0},
        {eFmtETC1,          unb, lin,  none,                     {0x8D64, 0, 0},           0,            0},
        {eFmtDXT1,          unb, lin,  none,                     leftCompressed,           code("DXT1"), 0},
        {eFmtDXT1,          uni, srgb, none,                     leftCompressed,           code("DXT1"), 72}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const CMOKTextureHeader header = headerOf(row.format, row.type, row.space);
        EXPECT_EQ(get(GL, header), row.gl);
        EXPECT_EQ(get(ES, header), row.es);
        EXPECT_EQ(get(D3D, header), Numbers{row.d3d});
        EXPECT_EQ(get(DXGI, header), Numbers{row.dxgi});
    }
    Collected all;
    for (const PixelType format : allFormats()) {
        for (unsigned int type = 0; type < 15 * 2; ++type)
            for (const unsigned int number : get(type < 15 ? GL : ES, headerOf(format, type % 15, type % 3)))
                all.add(number);
        for (unsigned int variation = 0; variation < 15 * 3; ++variation)
            for (const Api api : {D3D, DXGI})
                all.add(get(api, headerOf(format, variation % 15, variation / 15))[0]);
    }
    EXPECT_EQ(all.digest(), 4841919659793294057u);
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
        {GL,   {0x1908, 1, 0x8034},      true,  "rgba 1.5.5.5",     uns,    lin,  false},
        {ES,   {1, 0x1903, 0x8D61},      true,  "r 16",             flt,    lin,  false},
        {GL,   {0x8D64, 0, 1},           true,  eFmtETC1,           uni,    lin,  false},
        {GL,   {0x1234, 0, 0},           true,  unchanged,          uni,    lin,  false},  // unknown
        {D3D,  {30},                     true,  "argb 4.4.4.4",     uni,    lin,  false},
        {D3D,  {32},                     true,  "abgr 8.8.8.8",     uni,    lin,  false},
        {D3D,  {111},                    true,  "r 32",             flt,    lin,  false},
        {D3D,  {115},                    true,  "gr 32.32",         flt,    lin,  false},
        {D3D,  {code("DXT2")},           true,  eFmtDXT2,           unb,    lin,  true},
        {D3D,  {code("MTC2")},           false, unchanged,          noType, srgb, false},
        {DXGI, {65},                     true,  "r 8",              unb,    lin,  false},
        {DXGI, {80},                     true,  eFmtBC4,            uni,    srgb, false},
        {DXGI, {96},                     true,  eFmtBC7,            flt,    srgb, false},
        {DXGI, {95},                     false, unchanged,          noType, srgb, false}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        CMOKTextureHeader header = headerOf(PixelType(unchanged), noType, srgb);
        EXPECT_EQ(set(row.api, row.numbers, header), row.result);
        EXPECT_EQ(recordOf(header), recordOf(headerOf(row.format, row.type, row.space, row.premultiplied)));
    }
    Collected all;
    for (const unsigned int start : {0u, 0x1220u, 0x1400u, 0x1900u, 0x8020u, 0x8040u, 0x80E0u, 0x8220u, 0x8360u, 0x8810u, 0x8C00u,
                                     0x8D60u, 0x8F90u, 0x9010u, 0x9130u, ~0u - 31})
        for (unsigned int i = 0; i < 32; ++i)
            for (const unsigned int format :
                 {0u, 0x1903u, 0x1906u, 0x1907u, 0x1908u, 0x1909u, 0x190Au, 0x8058u, 0x80E0u, 0x80E1u, 0x8227u})
                for (const unsigned int type :
                     {0u, 0x1400u, 0x1401u, 0x1406u, 0x140Bu, 0x8033u, 0x8034u, 0x8363u, 0x8368u, 0x8D61u})
                    for (const Api api : {GL, ES}) {
                        CMOKTextureHeader header = headerOf(PixelType(unchanged), noType, srgb);
                        all.add(set(api, {start + i, format, type}, header), header);
                    }
    std::vector<unsigned int> numbers = {code("DXT1"), code("DXT2"), code("DXT3"), code("DXT4"), code("DXT5"),
                                         code("DXT6"), code("DX10"), code("dxt1"), code("UYVY"), code("YUY2"),
                                         code("RGBG"), code("GRGB"), code("MTC2"), code("MTC4"), ~0u};
    for (unsigned int number = 0; number < 300; ++number)
        numbers.push_back(number);
    for (const Api api : {D3D, DXGI})
        for (const unsigned int number : numbers)
            for (const bool premultiplied : {false, true}) {
                CMOKTextureHeader header = headerOf(PixelType(unchanged), noType, srgb, premultiplied);
                all.add(set(api, {number}, header), header);
            }
    EXPECT_EQ(all.digest(), 10181313517478117585u);
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
        {0, "argb 4.4.4.4", uns}, {12, eFmtMOKTC2bppRGBA, unb}, {18, "rgba 8.8.8.8", unb}, {22, "l 8", unb},
        {33, eFmtDXT2, unb, lin, true}, {44, "argb 2.10.10.10", uni}, {52, "gr 32.32", flt}, {129, eFmtDXT1, uni, srgb},
        {146, "rgba 8.8.8.8", unb, srgb, true}, {170, "bgrx 4.4.4.4", uns, srgb}, {14, eFmtUnknown}, {182, eFmtUnknown}};
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
    const std::vector<LegacyRow> gl = {
        {22, "i 8", unb}, {24, eFmtMOKTC2bppRGB, snb}, {25, eFmtMOKTC4bppRGB, flt}, {255, "l 8", unb}, {255, eFmtDXT1, unb}};
    const std::vector<LegacyRow> d3d = {
        {12, eFmtMOKTC2bppRGB, unb}, {0, "argb 4.4.4.4", uni}, {3, "xrgb 1.5.5.5", uni}, {44, "abgr 2.10.10.10", sni},
        {52, "rg 32.32", flt}, {255, "argb 4.4.4.4", uns}, {255, "gr 32.32", flt}, {255, eFmtETC1, unb}};
    const std::vector<LegacyRow> dxgi = {
        {128, eFmtDXT1, uni}, {129, eFmtDXT1, uni, srgb}, {129, eFmtDXT1, uni, otherSpace}, {80, "rgba 32.32.32.32", flt, srgb}};
    const std::vector<LegacyRow> vg = {
        {170, "bgra 4.4.4.4", uns, srgb}, {255, "bgrx 4.4.4.4", uns, srgb}, {144, "rgbx 8.8.8.8", unb, srgb, true}};
    const struct { unsigned int api; std::vector<LegacyRow> rows; std::uint64_t digest; } families[] = {
        // API  Rows  Digest of the numbers of all formats, types, colour spaces and states of premultiplication
        {0, {}, 17744209039430327109u},  {1, gl, 17846664982911042997u}, {2, {}, 17846664982911042997u},
        {3, d3d, 11056111032960408309u}, {4, {}, 17846664982911042997u}, {5, {}, 11056111032960408309u},
        {6, dxgi, 6636251025329413877u}, {7, vg, 12360310741007515647u}, {8, {}, 17744209039430327109u}};
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
