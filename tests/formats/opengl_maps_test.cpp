// The maps to OpenGL and OpenGL ES: what looks odd or stands for its kind row by row, all the rest in digests.
#include <gtest/gtest.h>

#include <array>

#include "format_notation.h"

using namespace formatnotation;

namespace {

using Numbers = std::array<unsigned int, 3>;  // internal format, format, type

struct GetterRow {
    Notation format;
    EMOKTVariableType channelType;
    Numbers numbers;
};

const std::pair<unsigned int, CompressedFormatId> compressed[] = {
    {0x8C00, eFmtMOKTC4bppRGB}, {0x8C01, eFmtMOKTC2bppRGB}, {0x8C02, eFmtMOKTC4bppRGBA}, {0x8C03, eFmtMOKTC2bppRGBA},
    {0x9137, eFmtMOKTCII2bpp},  {0x9138, eFmtMOKTCII4bpp},  {0x8D64, eFmtETC1}};

// Formats of each kind.
// clang-format off
const GetterRow openGL[] = {
    {"a 8", unb, {0x803C, 0x1906, 0x1401}}, {"l 8", unb, {0x8040, 0x1909, 0x1401}}, {"rg 8.8", unb, {0x822B, 0x8227, 0x1401}},
    {"rgba 8.8.8.8", unb, {0x8058, 0x1908, 0x1401}}, {"bgra 8.8.8.8", unb, {0x8058, 0x80E1, 0x1401}},
    {"bgr 8.8.8", unb, {0x8051, 0x80E0, 0x1401}}, {"la 8.8", snb, {0x9016, 0x190A, 0x1400}}, {"r 8", snb, {0x8F94, 0x1903, 0x1400}},
    {"rgb 5.6.5", uns, {0x1907, 0x1907, 0x8363}}, {"rgba 5.5.5.1", uns, {0x8057, 0x1908, 0x8034}},
    {"abgr 2.10.10.10", uni, {0x8059, 0x1908, 0x8368}}, {"xbgr 2.10.10.10", uni, {0x1907, 0x1907, 0x8368}},
    {"a 16", flt, {0x881C, 0x1906, 0x140B}}, {"rgb 16.16.16", flt, {0x881B, 0x1907, 0x140B}}, {"r 32", flt, {0x822E, 0x1903, 0x1406}}};
// clang-format on

/// What a header gives, written over 11, 12 and 13.
Numbers given(bool isES, const CMOKTextureHeader& header) {
    Numbers n = {11, 12, 13};
    isES ? header.getOGLESFormat(n[0], n[1], n[2]) : header.getOGLFormat(n[0], n[1], n[2]);
    return n;
}

TEST(OpenGLMaps, GettersGiveTheNumbersOfEveryFormatAndTypeOrLeaveThem) {
    for (const auto& [layout, type, numbers] : openGL) {
        EXPECT_EQ(given(false, headerOf(layout, type)), numbers) << std::hex << numbers[0];
        // OpenGL ES has no signed bytes and no bgr 8.8.8, the format for the internal format, and another number for half floats.
        const unsigned int format = numbers[1], typeES = numbers[2] == 0x140B ? 0x8D61 : numbers[2];
        const bool isAbsent = type == snb || format == 0x80E0;
        EXPECT_EQ(given(true, headerOf(layout, type)),
                  (isAbsent ? Numbers{11, 12, type == snb ? 13u : 0x1401u} : Numbers{format, format, typeES}));
    }
    for (const auto& [number, format] : compressed) {
        EXPECT_EQ(given(false, headerOf(format, unb)), (Numbers{format == eFmtETC1 ? 0 : number, 0, 0}));
        EXPECT_EQ(given(true, headerOf(format, unb)), (Numbers{number, 0, 0}));
    }
    EXPECT_EQ(given(false, headerOf(eFmtDXT1, unb)), (Numbers{0, 0, 0}));
    EXPECT_EQ(given(true, headerOf(eFmtDXT1, unb)), (Numbers{11, 0, 0}));
    EXPECT_EQ(given(false, headerOf(Notation("ia 8.8"), snb)), (Numbers{0, 0, 0x1400}));
    // Whatever else is given, for all formats and channel types.
    Collected all;
    for (const PixelType format : allFormats())
        for (unsigned int type = 0; type < 15 * 2; ++type)
            for (const unsigned int number : given(type >= 15, headerOf(format, type % 15, type % 3)))
                all.add(number);
    EXPECT_EQ(all.digest(), 13594332280203533098u);
}

/// The header after a call, and its result.
std::pair<bool, CMOKTextureHeader> set(bool isES, const Numbers& n) {
    CMOKTextureHeader header = untouched();
    const bool result = isES ? header.setOGLESFormat(n[0], n[1], n[2]) : header.setOGLFormat(n[0], n[1], n[2]);
    return {result, header};
}

TEST(OpenGLMaps, SettersDoWithAllCombinationsOfNumbersWhatTheirRowsSay) {
    const Notation unchanged = static_cast<CompressedFormatId>(untouchedFormat);
    // clang-format off
    struct Case { bool isES; Numbers numbers; bool result; Notation format; EMOKTVariableType type = eVarNone; };
    const Case cases[] = {
        {false, {0x1908, 1, 0x1401}, true, "rgba 8.8.8.8", unb}, {false, {0x8058, 0x1908, 0x1401}, true, unchanged},  // sized
        {false, {0x1908, 1, 0x8034}, true, "rgba 1.5.5.5", uns}, {true, {0x1908, 1, 0x8034}, true, "rgba 1.5.5.5", uns},
        {false, {0x1907, 1, 0x8368}, true, "abgr 2.10.10.10", uni}, {true, {0x1907, 1, 0x8368}, true, "abgr 2.10.10.10", uni},
        {false, {0x8057, 0x1908, 0x8034}, false, unchanged}, {true, {0x8057, 0x1908, 0x8034}, false, unchanged},
        {false, {1, 0x1903, 0x140B}, true, "r 16", flt}, {true, {1, 0x1903, 0x140B}, true, unchanged},
        {true, {1, 0x1903, 0x8D61}, true, "r 16", flt}, {false, {0x80E0, 1, 0x1400}, true, "bgr 8.8.8", snb},
        {true, {0x80E0, 1, 0x1401}, true, unchanged}, {true, {0x1903, 1, 0x1400}, true, unchanged}};
    // clang-format on
    for (const Case& item : cases) {
        const auto [result, header] = set(item.isES, item.numbers);
        EXPECT_EQ(result, item.result) << &item - cases;
        EXPECT_TRUE(sameRecord(header, item.type == eVarNone ? untouched() : headerOf(item.format, item.type))) << &item - cases;
    }
    for (const bool isES : {false, true}) {
        for (const auto& [number, format] : compressed)
            EXPECT_TRUE(sameRecord(set(isES, {number, 0, 1}).second, headerOf(format, eVarUIntNorm))) << format;
        const auto [result, header] = set(isES, {0x1234, 0, 0});  // unknown
        EXPECT_TRUE(result && sameRecord(header, headerOf(untouchedFormat, eVarUIntNorm)));
    }
    Collected all;
    for (const unsigned int start : {0u, 0x1220u, 0x1400u, 0x1900u, 0x8020u, 0x8040u, 0x80E0u, 0x8220u, 0x8360u, 0x8810u, 0x8C00u,
                                     0x8D60u, 0x8F90u, 0x9010u, 0x9130u, ~0u - 31})
        for (unsigned int i = 0; i < 32; ++i)
            for (const unsigned int format :
                 {0u, 0x1903u, 0x1906u, 0x1907u, 0x1908u, 0x1909u, 0x190Au, 0x8058u, 0x80E0u, 0x80E1u, 0x8227u})
                for (const unsigned int type :
                     {0u, 0x1400u, 0x1401u, 0x1406u, 0x140Bu, 0x8033u, 0x8034u, 0x8363u, 0x8368u, 0x8D61u})
                    for (const bool isES : {false, true}) {
                        const auto [result, header] = set(isES, {start + i, format, type});
                        all.add(result, header);
                    }
    EXPECT_EQ(all.digest(), 11007993834002751549u);
}

}  // namespace
