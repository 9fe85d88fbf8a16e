// The maps to OpenGL and OpenGL ES, against tables written out a second time, in numbers.
#include <gtest/gtest.h>

#include <array>
#include <set>

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

// clang-format off
const GetterRow openGL[] = {
    {"a 8", unb, {0x803C, 0x1906, 0x1401}}, {"l 8", unb, {0x8040, 0x1909, 0x1401}}, {"r 8", unb, {0x8229, 0x1903, 0x1401}},
    {"la 8.8", unb, {0x8045, 0x190A, 0x1401}}, {"rg 8.8", unb, {0x822B, 0x8227, 0x1401}},
    {"rgb 8.8.8", unb, {0x8051, 0x1907, 0x1401}}, {"bgr 8.8.8", unb, {0x8051, 0x80E0, 0x1401}},
    {"rgba 8.8.8.8", unb, {0x8058, 0x1908, 0x1401}}, {"bgra 8.8.8.8", unb, {0x8058, 0x80E1, 0x1401}},
    {"a 8", snb, {0x9014, 0x1906, 0x1400}}, {"l 8", snb, {0x9015, 0x1909, 0x1400}}, {"r 8", snb, {0x8F94, 0x1903, 0x1400}},
    {"la 8.8", snb, {0x9016, 0x190A, 0x1400}}, {"rg 8.8", snb, {0x8F95, 0x8227, 0x1400}},
    {"rgb 8.8.8", snb, {0x8F96, 0x1907, 0x1400}}, {"bgr 8.8.8", snb, {0x8F96, 0x80E0, 0x1400}},
    {"rgba 8.8.8.8", snb, {0x8F97, 0x1908, 0x1400}}, {"bgra 8.8.8.8", snb, {0x8F97, 0x80E1, 0x1400}},
    {"rgb 5.6.5", uns, {0x1907, 0x1907, 0x8363}}, {"rgba 5.5.5.1", uns, {0x8057, 0x1908, 0x8034}},
    {"rgba 4.4.4.4", uns, {0x8056, 0x1908, 0x8033}}, {"abgr 2.10.10.10", uni, {0x8059, 0x1908, 0x8368}},
    {"xbgr 2.10.10.10", uni, {0x1907, 0x1907, 0x8368}}, {"r 16", flt, {0x822D, 0x1903, 0x140B}},
    {"a 16", flt, {0x881C, 0x1906, 0x140B}}, {"l 16", flt, {0x881E, 0x1909, 0x140B}}, {"la 16.16", flt, {0x881F, 0x190A, 0x140B}},
    {"rg 16.16", flt, {0x822F, 0x8227, 0x140B}}, {"rgb 16.16.16", flt, {0x881B, 0x1907, 0x140B}},
    {"rgba 16.16.16.16", flt, {0x881A, 0x1908, 0x140B}}, {"r 32", flt, {0x822E, 0x1903, 0x1406}},
    {"a 32", flt, {0x8816, 0x1906, 0x1406}}, {"l 32", flt, {0x8818, 0x1909, 0x1406}}, {"la 32.32", flt, {0x8819, 0x190A, 0x1406}},
    {"rg 32.32", flt, {0x8230, 0x8227, 0x1406}}, {"rgb 32.32.32", flt, {0x8815, 0x1907, 0x1406}},
    {"rgba 32.32.32.32", flt, {0x8814, 0x1908, 0x1406}},
};
// clang-format on

unsigned int compressedNumber(PixelType format, unsigned int otherwise) {
    for (const auto& [number, id] : compressed) {
        if (format.id == id) return number;
    }
    return otherwise;
}

Numbers expectedOpenGL(PixelType format, unsigned int type) {
    if (format.part.high == 0) return {format == eFmtETC1 ? 0 : compressedNumber(format, 0), 0, 0};
    for (const GetterRow& row : openGL) {
        if (row.format == format && row.channelType == type) return row.numbers;
    }
    return {0, 0, type == unb ? 0x1401u : type == snb ? 0x1400u : 0u};
}

/// The rows of OpenGL without signed bytes and bgr 8.8.8, the format for the internal format, and another number for half floats.
Numbers expectedOpenGLES(PixelType format, unsigned int type, Numbers before) {
    if (format.part.high == 0) return {compressedNumber(format, before[0]), 0, 0};
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
    // Half floats have another number in OpenGL ES, which has no signed bytes and no bgr; two types come back as other formats.
    const bool isHalf = type == 0x140B || type == 0x8D61, isPacked = type >> 8 == 0x80 || type >> 8 == 0x83;
    const unsigned int key = isHalf ? format : internalFormat;
    const bool isAbsent = isES && (type == 0x1400 || type == 0x140B || key == 0x80E0);
    for (const GetterRow& row : openGL) {
        if (isAbsent || row.numbers[1] != key || row.numbers[2] != (isHalf ? 0x140B : type)) continue;
        if (isHalf && isES != (type == 0x8D61)) continue;
        const Notation back = type == 0x8034 ? "rgba 1.5.5.5" : type == 0x8368 ? "abgr 2.10.10.10" : row.format;
        return {true, headerOf(back, row.channelType)};
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
    std::set<unsigned int> internalFormats = {0, 1, 0x1234, 0x1405, 0xFFFFFFFF}, formats = {0, 1, 0x8058, 0x8C00};
    std::set<unsigned int> types = {0, 1, 0x1403, 0x1908, 0x8D61};
    for (const auto& [number, id] : compressed)
        internalFormats.insert(number);
    for (const GetterRow& row : openGL) {
        internalFormats.insert({row.numbers[0], row.numbers[1]});
        formats.insert(row.numbers[1]);
        types.insert(row.numbers[2]);
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
