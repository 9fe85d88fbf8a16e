// The maps to OpenGL and OpenGL ES, against tables written out a second time, in numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>

#include "format_notation.h"

using namespace formatnotation;

namespace {

using Numbers = std::array<unsigned int, 3>;  // internal format, format, type

struct GetterRow {
    Notation format;
    EMOKTVariableType channelType;
    Numbers numbers;
};

struct TypeRow {
    unsigned int type;
    EMOKTVariableType channelType;
    std::vector<std::pair<unsigned int, Notation>> formats;  // by base format
};

const std::pair<unsigned int, CompressedFormatId> compressed[] = {
    {0x8C00, eFmtMOKTC4bppRGB}, {0x8C01, eFmtMOKTC2bppRGB}, {0x8C02, eFmtMOKTC4bppRGBA}, {0x8C03, eFmtMOKTC2bppRGBA},
    {0x9137, eFmtMOKTCII2bpp},  {0x9138, eFmtMOKTCII4bpp},  {0x8D64, eFmtETC1}};

// clang-format off
const GetterRow openGL[] = {
    {"a 8", unb, {0x803C, 0x1906, 0x1401}},                 {"l 8", unb, {0x8040, 0x1909, 0x1401}},
    {"r 8", unb, {0x8229, 0x1903, 0x1401}},                 {"la 8.8", unb, {0x8045, 0x190A, 0x1401}},
    {"rg 8.8", unb, {0x822B, 0x8227, 0x1401}},              {"rgb 8.8.8", unb, {0x8051, 0x1907, 0x1401}},
    {"bgr 8.8.8", unb, {0x8051, 0x80E0, 0x1401}},           {"rgba 8.8.8.8", unb, {0x8058, 0x1908, 0x1401}},
    {"bgra 8.8.8.8", unb, {0x8058, 0x80E1, 0x1401}},        {"a 8", snb, {0x9014, 0x1906, 0x1400}},
    {"l 8", snb, {0x9015, 0x1909, 0x1400}},                 {"r 8", snb, {0x8F94, 0x1903, 0x1400}},
    {"la 8.8", snb, {0x9016, 0x190A, 0x1400}},              {"rg 8.8", snb, {0x8F95, 0x8227, 0x1400}},
    {"rgb 8.8.8", snb, {0x8F96, 0x1907, 0x1400}},           {"bgr 8.8.8", snb, {0x8F96, 0x80E0, 0x1400}},
    {"rgba 8.8.8.8", snb, {0x8F97, 0x1908, 0x1400}},        {"bgra 8.8.8.8", snb, {0x8F97, 0x80E1, 0x1400}},
    {"rgb 5.6.5", uns, {0x1907, 0x1907, 0x8363}},           {"rgba 5.5.5.1", uns, {0x8057, 0x1908, 0x8034}},
    {"rgba 4.4.4.4", uns, {0x8056, 0x1908, 0x8033}},        {"abgr 2.10.10.10", uni, {0x8059, 0x1908, 0x8368}},
    {"xbgr 2.10.10.10", uni, {0x1907, 0x1907, 0x8368}},     {"r 16", flt, {0x822D, 0x1903, 0x140B}},
    {"a 16", flt, {0x881C, 0x1906, 0x140B}},                {"l 16", flt, {0x881E, 0x1909, 0x140B}},
    {"la 16.16", flt, {0x881F, 0x190A, 0x140B}},            {"rg 16.16", flt, {0x822F, 0x8227, 0x140B}},
    {"rgb 16.16.16", flt, {0x881B, 0x1907, 0x140B}},        {"rgba 16.16.16.16", flt, {0x881A, 0x1908, 0x140B}},
    {"r 32", flt, {0x822E, 0x1903, 0x1406}},                {"a 32", flt, {0x8816, 0x1906, 0x1406}},
    {"l 32", flt, {0x8818, 0x1909, 0x1406}},                {"la 32.32", flt, {0x8819, 0x190A, 0x1406}},
    {"rg 32.32", flt, {0x8230, 0x8227, 0x1406}},            {"rgb 32.32.32", flt, {0x8815, 0x1907, 0x1406}},
    {"rgba 32.32.32.32", flt, {0x8814, 0x1908, 0x1406}}};

const std::vector<std::pair<unsigned int, Notation>> bytes = {
    {0x1903, "r 8"}, {0x1906, "a 8"}, {0x1907, "rgb 8.8.8"}, {0x1908, "rgba 8.8.8.8"}, {0x1909, "l 8"}, {0x190A, "la 8.8"},
    {0x80E0, "bgr 8.8.8"}, {0x80E1, "bgra 8.8.8.8"}, {0x8227, "rg 8.8"}};
const std::vector<std::pair<unsigned int, Notation>> halves = {
    {0x1903, "r 16"}, {0x1906, "a 16"}, {0x1907, "rgb 16.16.16"}, {0x1908, "rgba 16.16.16.16"}, {0x1909, "l 16"},
    {0x190A, "la 16.16"}, {0x8227, "rg 16.16"}};
const TypeRow setter[] = {
    {0x1400, snb, bytes}, {0x1401, unb, bytes}, {0x140B, flt, halves}, {0x8D61, flt, halves},
    {0x1406, flt, {{0x1903, "r 32"}, {0x1906, "a 32"}, {0x1907, "rgb 32.32.32"}, {0x1908, "rgba 32.32.32.32"}, {0x1909, "l 32"},
                   {0x190A, "la 32.32"}, {0x8227, "rg 32.32"}}},
    {0x8033, uns, {{0x1908, "rgba 4.4.4.4"}}}, {0x8034, uns, {{0x1908, "rgba 1.5.5.5"}}}, {0x8363, uns, {{0x1907, "rgb 5.6.5"}}},
    {0x8368, uni, {{0x1908, "abgr 2.10.10.10"}, {0x1907, "abgr 2.10.10.10"}}}};
// clang-format on

std::optional<unsigned int> compressedNumber(PixelType format) {
    for (const auto& [number, id] : compressed) {
        if (format.id == id) return number;
    }
    return std::nullopt;
}

Numbers expectedOpenGL(PixelType format, unsigned int type) {
    if (format.part.high == 0) return {format == eFmtETC1 ? 0 : compressedNumber(format).value_or(0), 0, 0};
    for (const GetterRow& row : openGL) {
        if (row.format == format && row.channelType == type) return row.numbers;
    }
    return {0, 0, type == unb ? 0x1401u : type == snb ? 0x1400u : 0u};
}

/// The rows of OpenGL without signed bytes and bgr 8.8.8, the format for the internal format, and another number for half floats.
Numbers expectedOpenGLES(PixelType format, unsigned int type, Numbers before) {
    if (format.part.high == 0) return {compressedNumber(format).value_or(before[0]), 0, 0};
    for (const GetterRow& row : openGL) {
        if (row.format != format || row.channelType != type || type == snb || row.numbers[1] == 0x80E0) continue;
        return {row.numbers[1], row.numbers[1], row.numbers[2] == 0x140B ? 0x8D61 : row.numbers[2]};
    }
    return {before[0], before[1], type == unb ? 0x1401 : before[2]};
}

/// Result and header after the call.
std::pair<bool, CMOKTextureHeader> expectedSet(bool isES, const Numbers& numbers) {
    const auto [internalFormat, format, type] = numbers;
    if (format == 0) {
        PixelType pixelFormat = untouched().getPixelType();
        for (const auto& [number, id] : compressed) {
            if (number == internalFormat) pixelFormat = id;
        }
        return {true, headerOf(pixelFormat, eVarUIntNorm)};
    }
    const bool isPacked = type == 0x8033 || type == 0x8034 || type == 0x8363 || type == 0x8368;
    const unsigned int key = type == 0x140B || type == 0x8D61 ? format : internalFormat;
    for (const TypeRow& row : setter) {
        const bool isAbsent = isES ? type == 0x1400 || type == 0x140B || key == 0x80E0 : type == 0x8D61;
        if (row.type != type || isAbsent) continue;
        for (const auto& [number, pixelFormat] : row.formats) {
            if (number == key) return {true, headerOf(pixelFormat, row.channelType)};
        }
    }
    return {!isPacked, untouched()};
}

TEST(OpenGLMaps, GettersGiveTheNumbersOfEveryFormatAndTypeOrLeaveThem) {
    for (const PixelType format : allFormats()) {
        for (unsigned int type = 0; type < 15; ++type) {
            const CMOKTextureHeader header = headerOf(format, type, type % 3);
            Numbers numbers = {11, 12, 13};
            header.getOGLFormat(numbers[0], numbers[1], numbers[2]);
            EXPECT_EQ(numbers, expectedOpenGL(format, type)) << std::hex << format.id << " type " << type;
            numbers = {11, 12, 13};
            header.getOGLESFormat(numbers[0], numbers[1], numbers[2]);
            EXPECT_EQ(numbers, expectedOpenGLES(format, type, {11, 12, 13})) << std::hex << format.id << " type " << type;
        }
    }
}

TEST(OpenGLMaps, SettersDoWithAllCombinationsOfNumbersWhatTheirRowsSay) {
    std::vector<unsigned int> internalFormats = {0, 1, 0x1234, 0x1405, 0xFFFFFFFF}, formats = {0, 1, 0x8058, 0x8C00};
    std::vector<unsigned int> types = {0, 1, 0x1403, 0x1908, 0x140B, 0x8D61};
    for (const auto& [number, id] : compressed)
        internalFormats.push_back(number);
    for (const GetterRow& row : openGL)
        internalFormats.push_back(row.numbers[0]);
    for (const TypeRow& row : setter) {
        types.push_back(row.type);
        for (const auto& [number, format] : row.formats) {
            for (std::vector<unsigned int>* numbers : {&internalFormats, &formats}) {
                if (std::find(numbers->begin(), numbers->end(), number) == numbers->end()) numbers->push_back(number);
            }
        }
    }
    std::size_t matches = 0;
    for (const unsigned int internalFormat : internalFormats) {
        for (const unsigned int format : formats) {
            for (const unsigned int type : types) {
                for (const bool isES : {false, true}) {
                    const auto [result, expected] = expectedSet(isES, {internalFormat, format, type});
                    CMOKTextureHeader header = untouched();
                    const bool known = isES ? header.setOGLESFormat(internalFormat, format, type)
                                            : header.setOGLFormat(internalFormat, format, type);
                    ASSERT_TRUE(known == result && sameRecord(header, expected))
                        << std::hex << internalFormat << " " << format << " " << type << (isES ? " ES" : "");
                    matches += header.getPixelType().id != untouchedFormat ? 1 : 0;
                }
            }
        }
    }
    EXPECT_GT(matches, 1000u);
}

}  // namespace
