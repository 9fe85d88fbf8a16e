#include "formats/standard/published_format.h"

#include <algorithm>
#include <array>

#include "core/texture/subresources.h"

namespace moktexture {
namespace {

/// A layout by its letters, padded with blanks, and their bits.
constexpr PixelType byLetters(const char (&names)[5], std::uint8_t bits1, std::uint8_t bits2 = 0, std::uint8_t bits3 = 0,
                              std::uint8_t bits4 = 0) {
    const auto letter = [&](int i) { return static_cast<std::uint8_t>(names[i] == ' ' ? 0 : names[i]); };
    return {letter(0), letter(1), letter(2), letter(3), bits1, bits2, bits3, bits4};
}

// Types of OpenGL.
constexpr std::uint32_t glByte = 0x1400, glUByte = 0x1401, glShort = 0x1402, glUShort = 0x1403, glInt = 0x1404, glUInt = 0x1405,
                        glFloat = 0x1406, glHalf = 0x140B, gl4444 = 0x8033, gl5551 = 0x8034, gl565 = 0x8363, gl1555Rev = 0x8366,
                        gl4444Rev = 0x8365, gl2101010Rev = 0x8368, gl101111Rev = 0x8C3B, gl5999Rev = 0x8C3E;
// Formats of OpenGL.
constexpr std::uint32_t glRed = 0x1903, glAlpha = 0x1906, glRGB = 0x1907, glRGBA = 0x1908, glLum = 0x1909, glLumAlpha = 0x190A,
                        glBGR = 0x80E0, glBGRA = 0x80E1, glRG = 0x8227, glRGInt = 0x8228, glRedInt = 0x8D94, glRGBInt = 0x8D98,
                        glRGBAInt = 0x8D99;

// Numbers of the OpenGL registry, of vulkan_core.h and of dxgiformat.h. A column of two numbers: linear, sRGB.
// clang-format off
constexpr auto publishedRows = std::to_array<PublishedFormat>({
    // Pixel format                     Channel type    glType        glFormat    glBase      glInternal          VkFormat         DXGI
    {byLetters("r   ",  8),             eVarUByteNorm,  glUByte,      glRed,      glRed,      {0x8229, 0x8FBD},   {  9,  15},      { 61,  0}},
    {byLetters("rg  ",  8,  8),         eVarUByteNorm,  glUByte,      glRG,       glRG,       {0x822B, 0x8FBE},   { 16,  22},      { 49,  0}},
    {byLetters("rgb ",  8,  8,  8),     eVarUByteNorm,  glUByte,      glRGB,      glRGB,      {0x8051, 0x8C41},   { 23,  29},      {  0,  0}},
    {byLetters("bgr ",  8,  8,  8),     eVarUByteNorm,  glUByte,      glBGR,      glRGB,      {0x8051, 0x8C41},   { 30,  36},      {  0,  0}},
    {byLetters("rgba",  8,  8,  8,  8), eVarUByteNorm,  glUByte,      glRGBA,     glRGBA,     {0x8058, 0x8C43},   { 37,  43},      { 28, 29}},
    {byLetters("bgra",  8,  8,  8,  8), eVarUByteNorm,  glUByte,      glBGRA,     glRGBA,     {0x8058, 0x8C43},   { 44,  50},      { 87, 91}},
    {byLetters("bgrx",  8,  8,  8,  8), eVarUByteNorm,  0,            0,          0,          {     0,      0},   {  0,   0},      { 88, 93}},
    {byLetters("l   ",  8),             eVarUByteNorm,  glUByte,      glLum,      glLum,      {0x8040, 0x8C47},   {  0,   0},      {  0,  0}},
    {byLetters("la  ",  8,  8),         eVarUByteNorm,  glUByte,      glLumAlpha, glLumAlpha, {0x8045, 0x8C45},   {  0,   0},      {  0,  0}},
    {byLetters("a   ",  8),             eVarUByteNorm,  glUByte,      glAlpha,    glAlpha,    {0x803C,      0},   {1000470001, 0}, { 65,  0}},
    {byLetters("r   ",  8),             eVarSByteNorm,  glByte,       glRed,      glRed,      {0x8F94,      0},   { 10,   0},      { 63,  0}},
    {byLetters("rg  ",  8,  8),         eVarSByteNorm,  glByte,       glRG,       glRG,       {0x8F95,      0},   { 17,   0},      { 51,  0}},
    {byLetters("rgb ",  8,  8,  8),     eVarSByteNorm,  glByte,       glRGB,      glRGB,      {0x8F96,      0},   { 24,   0},      {  0,  0}},
    {byLetters("rgba",  8,  8,  8,  8), eVarSByteNorm,  glByte,       glRGBA,     glRGBA,     {0x8F97,      0},   { 38,   0},      { 31,  0}},
    {byLetters("r   ",  8),             eVarUByte,      glUByte,      glRedInt,   glRed,      {0x8232,      0},   { 13,   0},      { 62,  0}},
    {byLetters("rg  ",  8,  8),         eVarUByte,      glUByte,      glRGInt,    glRG,       {0x8238,      0},   { 20,   0},      { 50,  0}},
    {byLetters("rgb ",  8,  8,  8),     eVarUByte,      glUByte,      glRGBInt,   glRGB,      {0x8D7D,      0},   { 27,   0},      {  0,  0}},
    {byLetters("rgba",  8,  8,  8,  8), eVarUByte,      glUByte,      glRGBAInt,  glRGBA,     {0x8D7C,      0},   { 41,   0},      { 30,  0}},
    {byLetters("r   ",  8),             eVarSByte,      glByte,       glRedInt,   glRed,      {0x8231,      0},   { 14,   0},      { 64,  0}},
    {byLetters("rg  ",  8,  8),         eVarSByte,      glByte,       glRGInt,    glRG,       {0x8237,      0},   { 21,   0},      { 52,  0}},
    {byLetters("rgb ",  8,  8,  8),     eVarSByte,      glByte,       glRGBInt,   glRGB,      {0x8D8F,      0},   { 28,   0},      {  0,  0}},
    {byLetters("rgba",  8,  8,  8,  8), eVarSByte,      glByte,       glRGBAInt,  glRGBA,     {0x8D8E,      0},   { 42,   0},      { 32,  0}},
    {byLetters("r   ", 16),             eVarUShortNorm, glUShort,     glRed,      glRed,      {0x822A,      0},   { 70,   0},      { 56,  0}},
    {byLetters("rg  ", 16, 16),         eVarUShortNorm, glUShort,     glRG,       glRG,       {0x822C,      0},   { 77,   0},      { 35,  0}},
    {byLetters("rgb ", 16, 16, 16),     eVarUShortNorm, glUShort,     glRGB,      glRGB,      {0x8054,      0},   { 84,   0},      {  0,  0}},
    {byLetters("rgba", 16, 16, 16, 16), eVarUShortNorm, glUShort,     glRGBA,     glRGBA,     {0x805B,      0},   { 91,   0},      { 11,  0}},
    {byLetters("l   ", 16),             eVarUShortNorm, glUShort,     glLum,      glLum,      {0x8042,      0},   {  0,   0},      {  0,  0}},
    {byLetters("la  ", 16, 16),         eVarUShortNorm, glUShort,     glLumAlpha, glLumAlpha, {0x8048,      0},   {  0,   0},      {  0,  0}},
    {byLetters("a   ", 16),             eVarUShortNorm, glUShort,     glAlpha,    glAlpha,    {0x803E,      0},   {  0,   0},      {  0,  0}},
    {byLetters("r   ", 16),             eVarSShortNorm, glShort,      glRed,      glRed,      {0x8F98,      0},   { 71,   0},      { 58,  0}},
    {byLetters("rg  ", 16, 16),         eVarSShortNorm, glShort,      glRG,       glRG,       {0x8F99,      0},   { 78,   0},      { 37,  0}},
    {byLetters("rgb ", 16, 16, 16),     eVarSShortNorm, glShort,      glRGB,      glRGB,      {0x8F9A,      0},   { 85,   0},      {  0,  0}},
    {byLetters("rgba", 16, 16, 16, 16), eVarSShortNorm, glShort,      glRGBA,     glRGBA,     {0x8F9B,      0},   { 92,   0},      { 13,  0}},
    {byLetters("r   ", 16),             eVarUShort,     glUShort,     glRedInt,   glRed,      {0x8234,      0},   { 74,   0},      { 57,  0}},
    {byLetters("rg  ", 16, 16),         eVarUShort,     glUShort,     glRGInt,    glRG,       {0x823A,      0},   { 81,   0},      { 36,  0}},
    {byLetters("rgb ", 16, 16, 16),     eVarUShort,     glUShort,     glRGBInt,   glRGB,      {0x8D77,      0},   { 88,   0},      {  0,  0}},
    {byLetters("rgba", 16, 16, 16, 16), eVarUShort,     glUShort,     glRGBAInt,  glRGBA,     {0x8D76,      0},   { 95,   0},      { 12,  0}},
    {byLetters("r   ", 16),             eVarSShort,     glShort,      glRedInt,   glRed,      {0x8233,      0},   { 75,   0},      { 59,  0}},
    {byLetters("rg  ", 16, 16),         eVarSShort,     glShort,      glRGInt,    glRG,       {0x8239,      0},   { 82,   0},      { 38,  0}},
    {byLetters("rgb ", 16, 16, 16),     eVarSShort,     glShort,      glRGBInt,   glRGB,      {0x8D89,      0},   { 89,   0},      {  0,  0}},
    {byLetters("rgba", 16, 16, 16, 16), eVarSShort,     glShort,      glRGBAInt,  glRGBA,     {0x8D88,      0},   { 96,   0},      { 14,  0}},
    {byLetters("r   ", 16),             eVarFloat,      glHalf,       glRed,      glRed,      {0x822D,      0},   { 76,   0},      { 54,  0}},
    {byLetters("rg  ", 16, 16),         eVarFloat,      glHalf,       glRG,       glRG,       {0x822F,      0},   { 83,   0},      { 34,  0}},
    {byLetters("rgb ", 16, 16, 16),     eVarFloat,      glHalf,       glRGB,      glRGB,      {0x881B,      0},   { 90,   0},      {  0,  0}},
    {byLetters("rgba", 16, 16, 16, 16), eVarFloat,      glHalf,       glRGBA,     glRGBA,     {0x881A,      0},   { 97,   0},      { 10,  0}},
    {byLetters("l   ", 16),             eVarFloat,      glHalf,       glLum,      glLum,      {0x881E,      0},   {  0,   0},      {  0,  0}},
    {byLetters("la  ", 16, 16),         eVarFloat,      glHalf,       glLumAlpha, glLumAlpha, {0x881F,      0},   {  0,   0},      {  0,  0}},
    {byLetters("a   ", 16),             eVarFloat,      glHalf,       glAlpha,    glAlpha,    {0x881C,      0},   {  0,   0},      {  0,  0}},
    {byLetters("r   ", 32),             eVarUInt,       glUInt,       glRedInt,   glRed,      {0x8236,      0},   { 98,   0},      { 42,  0}},
    {byLetters("rg  ", 32, 32),         eVarUInt,       glUInt,       glRGInt,    glRG,       {0x823C,      0},   {101,   0},      { 17,  0}},
    {byLetters("rgb ", 32, 32, 32),     eVarUInt,       glUInt,       glRGBInt,   glRGB,      {0x8D71,      0},   {104,   0},      {  7,  0}},
    {byLetters("rgba", 32, 32, 32, 32), eVarUInt,       glUInt,       glRGBAInt,  glRGBA,     {0x8D70,      0},   {107,   0},      {  3,  0}},
    {byLetters("r   ", 32),             eVarSInt,       glInt,        glRedInt,   glRed,      {0x8235,      0},   { 99,   0},      { 43,  0}},
    {byLetters("rg  ", 32, 32),         eVarSInt,       glInt,        glRGInt,    glRG,       {0x823B,      0},   {102,   0},      { 18,  0}},
    {byLetters("rgb ", 32, 32, 32),     eVarSInt,       glInt,        glRGBInt,   glRGB,      {0x8D83,      0},   {105,   0},      {  8,  0}},
    {byLetters("rgba", 32, 32, 32, 32), eVarSInt,       glInt,        glRGBAInt,  glRGBA,     {0x8D82,      0},   {108,   0},      {  4,  0}},
    {byLetters("r   ", 32),             eVarFloat,      glFloat,      glRed,      glRed,      {0x822E,      0},   {100,   0},      { 41,  0}},
    {byLetters("rg  ", 32, 32),         eVarFloat,      glFloat,      glRG,       glRG,       {0x8230,      0},   {103,   0},      { 16,  0}},
    {byLetters("rgb ", 32, 32, 32),     eVarFloat,      glFloat,      glRGB,      glRGB,      {0x8815,      0},   {106,   0},      {  6,  0}},
    {byLetters("rgba", 32, 32, 32, 32), eVarFloat,      glFloat,      glRGBA,     glRGBA,     {0x8814,      0},   {109,   0},      {  2,  0}},
    {byLetters("l   ", 32),             eVarFloat,      glFloat,      glLum,      glLum,      {0x8818,      0},   {  0,   0},      {  0,  0}},
    {byLetters("la  ", 32, 32),         eVarFloat,      glFloat,      glLumAlpha, glLumAlpha, {0x8819,      0},   {  0,   0},      {  0,  0}},
    {byLetters("a   ", 32),             eVarFloat,      glFloat,      glAlpha,    glAlpha,    {0x8816,      0},   {  0,   0},      {  0,  0}},
    {byLetters("rgba",  4,  4,  4,  4), eVarUShortNorm, gl4444,       glRGBA,     glRGBA,     {0x8056,      0},   {  2,   0},      {  0,  0}},
    {byLetters("argb",  4,  4,  4,  4), eVarUShortNorm, gl4444Rev,    glBGRA,     glRGBA,     {0x8056,      0},   {1000340000, 0}, {115,  0}},
    {byLetters("rgb ",  5,  6,  5),     eVarUShortNorm, gl565,        glRGB,      glRGB,      {0x8D62,      0},   {  4,   0},      { 85,  0}},
    {byLetters("rgba",  5,  5,  5,  1), eVarUShortNorm, gl5551,       glRGBA,     glRGBA,     {0x8057,      0},   {  6,   0},      {  0,  0}},
    {byLetters("argb",  1,  5,  5,  5), eVarUShortNorm, gl1555Rev,    glBGRA,     glRGBA,     {0x8057,      0},   {  8,   0},      { 86,  0}},
    {byLetters("argb",  2, 10, 10, 10), eVarUIntNorm,   gl2101010Rev, glBGRA,     glRGBA,     {0x8059,      0},   { 58,   0},      {  0,  0}},
    {byLetters("abgr",  2, 10, 10, 10), eVarUIntNorm,   gl2101010Rev, glRGBA,     glRGBA,     {0x8059,      0},   { 64,   0},      { 24,  0}},
    {byLetters("abgr",  2, 10, 10, 10), eVarUInt,       gl2101010Rev, glRGBAInt,  glRGBA,     {0x906F,      0},   { 68,   0},      { 25,  0}},
    {byLetters("bgr ", 10, 11, 11),     eVarFloat,      gl101111Rev,  glRGB,      glRGB,      {0x8C3A,      0},   {122,   0},      { 26,  0}},
    {eFmtRGB9E5,                        eVarFloat,      gl5999Rev,    glRGB,      glRGB,      {0x8C3D,      0},   {123,   0},      { 67,  0}},
    {eFmtRGBG8888,                      eVarUByteNorm,  0,            0,          0,          {     0,      0},   {  0,   0},      { 68,  0}},
    {eFmtGRGB8888,                      eVarUByteNorm,  0,            0,          0,          {     0,      0},   {  0,   0},      { 69,  0}},
    {eFmtYUY2,                          eVarUByteNorm,  0,            0,          0,          {     0,      0},   {  0,   0},      {107,  0}},
    {eFmtMOKTC4bppRGB,                  eVarUByteNorm,  0,            0,          glRGB,      {0x8C00,      0},   {  0,   0},      {  0,  0}},
    {eFmtMOKTC2bppRGB,                  eVarUByteNorm,  0,            0,          glRGB,      {0x8C01,      0},   {  0,   0},      {  0,  0}},
    {eFmtMOKTC4bppRGBA,                 eVarUByteNorm,  0,            0,          glRGBA,     {0x8C02,      0},   {  0,   0},      {  0,  0}},
    {eFmtMOKTC2bppRGBA,                 eVarUByteNorm,  0,            0,          glRGBA,     {0x8C03,      0},   {  0,   0},      {  0,  0}},
    {eFmtMOKTCII2bpp,                   eVarUByteNorm,  0,            0,          glRGBA,     {0x9137,      0},   {  0,   0},      {  0,  0}},
    {eFmtMOKTCII4bpp,                   eVarUByteNorm,  0,            0,          glRGBA,     {0x9138,      0},   {  0,   0},      {  0,  0}},
    {eFmtDXT1,                          eVarUByteNorm,  0,            0,          glRGBA,     {0x83F1, 0x8C4D},   {133, 134},      { 71, 72}},
    {eFmtDXT1,                          eVarUByteNorm,  0,            0,          glRGB,      {0x83F0, 0x8C4C},   {131, 132},      {  0,  0}},
    {eFmtDXT3,                          eVarUByteNorm,  0,            0,          glRGBA,     {0x83F2, 0x8C4E},   {135, 136},      { 74, 75}},
    {eFmtDXT5,                          eVarUByteNorm,  0,            0,          glRGBA,     {0x83F3, 0x8C4F},   {137, 138},      { 77, 78}},
    {eFmtDXT2,                          eVarUByteNorm,  0,            0,          glRGBA,     {0x83F2, 0x8C4E},   {135, 136},      { 74, 75}},
    {eFmtDXT4,                          eVarUByteNorm,  0,            0,          glRGBA,     {0x83F3, 0x8C4F},   {137, 138},      { 77, 78}},
    {eFmtBC4,                           eVarUByteNorm,  0,            0,          glRed,      {0x8DBB,      0},   {139,   0},      { 80,  0}},
    {eFmtBC4,                           eVarSByteNorm,  0,            0,          glRed,      {0x8DBC,      0},   {140,   0},      { 81,  0}},
    {eFmtBC5,                           eVarUByteNorm,  0,            0,          glRG,       {0x8DBD,      0},   {141,   0},      { 83,  0}},
    {eFmtBC5,                           eVarSByteNorm,  0,            0,          glRG,       {0x8DBE,      0},   {142,   0},      { 84,  0}},
    {eFmtBC6,                           eVarUByteNorm,  0,            0,          glRGB,      {0x8E8F,      0},   {143,   0},      { 95,  0}},
    {eFmtBC6,                           eVarSByteNorm,  0,            0,          glRGB,      {0x8E8E,      0},   {144,   0},      { 96,  0}},
    {eFmtBC7,                           eVarUByteNorm,  0,            0,          glRGBA,     {0x8E8C, 0x8E8D},   {145, 146},      { 98, 99}},
    {eFmtETC2RGB,                       eVarUByteNorm,  0,            0,          glRGB,      {0x9274, 0x9275},   {147, 148},      {  0,  0}},
    // A decoder of ETC2 reads ETC1.
    {eFmtETC1,                          eVarUByteNorm,  0,            0,          glRGB,      {0x8D64,      0},   {147, 148},      {  0,  0}},
    {eFmtETC2RGBA1,                     eVarUByteNorm,  0,            0,          glRGBA,     {0x9276, 0x9277},   {149, 150},      {  0,  0}},
    {eFmtETC2RGBA,                      eVarUByteNorm,  0,            0,          glRGBA,     {0x9278, 0x9279},   {151, 152},      {  0,  0}},
    {eFmtEACR11U,                       eVarUByteNorm,  0,            0,          glRed,      {0x9270,      0},   {153,   0},      {  0,  0}},
    {eFmtEACR11S,                       eVarSByteNorm,  0,            0,          glRed,      {0x9271,      0},   {154,   0},      {  0,  0}},
    {eFmtEACRG11U,                      eVarUByteNorm,  0,            0,          glRG,       {0x9272,      0},   {155,   0},      {  0,  0}},
    {eFmtEACRG11S,                      eVarSByteNorm,  0,            0,          glRG,       {0x9273,      0},   {156,   0},      {  0,  0}},
});
// clang-format on

bool isSigned(EMOKTVariableType type) {
    return type < eVarFloat && type % 2 == 1;
}

bool isBlockFormat(PixelType format) {
    return isCompressed(format) && format.id != eFmtRGB9E5;
}

/// Formats whose blocks are alike but for what their alpha means, or for how much of the format a writer uses.
constexpr std::array<std::uint64_t, 2> formatsOfEqualBlocks[] = {
    {eFmtDXT2, eFmtDXT3}, {eFmtDXT4, eFmtDXT5}, {eFmtMOKTC4bppRGB, eFmtMOKTC4bppRGBA}, {eFmtMOKTC2bppRGB, eFmtMOKTC2bppRGBA}};

bool haveEqualBlocks(PixelType a, PixelType b) {
    return a == b || std::ranges::any_of(formatsOfEqualBlocks, [&](const auto& pair) {
               return (pair[0] == a.id && pair[1] == b.id) || (pair[0] == b.id && pair[1] == a.id);
           });
}

/// How a stored number is read, apart from its width.
enum class NumberKind { uNorm, sNorm, uInt, sInt, floating };

NumberKind kindOf(EMOKTVariableType type) {
    return type >= eVarFloat ? NumberKind::floating : static_cast<NumberKind>(type % 4);
}

unsigned int storageBits(EMOKTVariableType type) {
    return type < eVarUShortNorm ? 8 : type < eVarUIntNorm ? 16 : 32;
}

/// Letters and bits of an uncompressed layout from bit 0 up, as a PixelType; the empty one if some channels fill an element of
/// the type and others do not.
PixelType fieldsOf(PixelType format, EMOKTVariableType type) {
    const PixelType::Layout& channels = format.layout;
    int count = 0, elements = 0;
    for (; count < 4 && channels.channelBits[count] != 0; ++count) {
        const unsigned int bits = channels.channelBits[count];
        elements += bits == storageBits(type) || (type == eVarFloat && bits == 16) ? 1 : 0;
    }
    if (elements == count) return format;
    PixelType fields;
    if (elements != 0) return fields;
    for (int i = 0; i < count; ++i) {
        fields.layout.channelName[i] = channels.channelName[count - 1 - i];
        fields.layout.channelBits[i] = channels.channelBits[count - 1 - i];
    }
    return fields;
}

/// Formats whose blocks are larger than a pixel, as they are published; nothing here is rounded as getDataSize() does.
constexpr StoredBlock compressedBlock(std::uint64_t id) {
    switch (id) {
        case eFmtMOKTC2bppRGB:
        case eFmtMOKTC2bppRGBA:
            return {16, 8, 32};
        case eFmtMOKTC4bppRGB:
        case eFmtMOKTC4bppRGBA:
            return {8, 8, 32};
        case eFmtMOKTCII2bpp:
            return {8, 4, 8};
        case eFmtMOKTCII4bpp:
        case eFmtETC1:
        case eFmtDXT1:
        case eFmtBC4:
        case eFmtETC2RGB:
        case eFmtETC2RGBA1:
        case eFmtEACR11U:
        case eFmtEACR11S:
            return {4, 4, 8};
        case eFmtDXT2:
        case eFmtDXT3:
        case eFmtDXT4:
        case eFmtDXT5:
        case eFmtBC5:
        case eFmtBC6:
        case eFmtBC7:
        case eFmtETC2RGBA:
        case eFmtEACRG11U:
        case eFmtEACRG11S:
            return {4, 4, 16};
        case eFmtUYVY:
        case eFmtYUY2:
        case eFmtRGBG8888:
        case eFmtGRGB8888:
            return {2, 1, 4};
        case eFmtBW1bpp:
            return {8, 1, 1};
        case eFmtRGB9E5:
            return {1, 1, 4};
        default:
            return {1, 1, 0};
    }
}

template <class Field>
PublishedMatch findByNumber(std::uint32_t number, Field field) {
    if (number == 0) return {};
    for (const PublishedFormat& row : publishedRows) {
        if ((row.*field).linear == number) return {&row, eColourSpaceLinear};
        if ((row.*field).sRGB == number) return {&row, eColourSpaceSRGB};
    }
    return {};
}

/// The sized number of an unsized sRGB format: GL_SRGB, GL_SRGB_ALPHA, GL_SLUMINANCE_ALPHA, GL_SLUMINANCE. Others stay.
std::uint32_t sizedSRGB(std::uint32_t glInternalFormat) {
    const bool isUnsized = glInternalFormat >= 0x8C40 && glInternalFormat <= 0x8C46 && glInternalFormat % 2 == 0;
    return isUnsized ? glInternalFormat + 1 : glInternalFormat;
}

}  // namespace

std::span<const PublishedFormat> publishedFormats() {
    return publishedRows;
}

bool haveSameBits(PixelType format, EMOKTVariableType type, PixelType otherFormat, EMOKTVariableType otherType) {
    if (isBlockFormat(format)) return haveEqualBlocks(format, otherFormat) && isSigned(type) == isSigned(otherType);
    if (format == otherFormat && type == otherType) return true;
    if (isCompressed(format) || isCompressed(otherFormat) || kindOf(type) != kindOf(otherType)) return false;
    const PixelType fields = fieldsOf(format, type);
    return fields.id != 0 && fields == fieldsOf(otherFormat, otherType);
}

const PublishedFormat* findPublished(PixelType pixelFormat, EMOKTVariableType channelType) {
    const PublishedFormat* alike = nullptr;
    for (const PublishedFormat& row : publishedRows) {
        if (!haveSameBits(row.pixelFormat, row.channelType, pixelFormat, channelType)) continue;
        if (row.pixelFormat == pixelFormat && (isBlockFormat(pixelFormat) || row.channelType == channelType)) return &row;
        if (alike == nullptr) alike = &row;
    }
    return alike;
}

PublishedMatch findByVulkan(std::uint32_t vkFormat) {
    return findByNumber(vkFormat, &PublishedFormat::vulkan);
}

PublishedMatch findByDXGI(std::uint32_t dxgiFormat) {
    return findByNumber(dxgiFormat, &PublishedFormat::dxgi);
}

PublishedMatch findByOpenGL(std::uint32_t glType, std::uint32_t glFormat, std::uint32_t glInternalFormat) {
    // Some writers give compressed formats a type.
    if (glFormat == 0) {
        const PublishedMatch match = findByNumber(glInternalFormat, &PublishedFormat::glInternal);
        return match.format != nullptr && match.format->glFormat == 0 ? match : PublishedMatch{};
    }
    const std::uint32_t sized = sizedSRGB(glInternalFormat);
    // GL_UNSIGNED_BYTE with GL_RGBA is shared by several internal formats; the bytes are the same.
    for (const PublishedFormat& row : publishedRows) {
        if (row.glType != glType || row.glFormat != glFormat || glType == 0) continue;
        const bool isSRGB = row.glInternal.sRGB != 0 && row.glInternal.sRGB == sized;
        return {&row, isSRGB ? eColourSpaceSRGB : eColourSpaceLinear};
    }
    return {};
}

StoredBlock storedBlock(PixelType pixelFormat) {
    if (isCompressed(pixelFormat)) return compressedBlock(pixelFormat.id);
    const unsigned int bits = bitsPerPixel(pixelFormat);
    return {1, 1, bits % 8 == 0 ? bits / 8 : 0};
}

}  // namespace moktexture
