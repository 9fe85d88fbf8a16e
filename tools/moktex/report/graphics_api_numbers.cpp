#include "moktex/report/graphics_api_numbers.h"

#include <cstdint>
#include <cstdio>
#include <nlohmann/json.hpp>

using namespace moktexture;
using Json = nlohmann::ordered_json;

namespace moktextool {

namespace {

constexpr const char* noNumber = "-";

struct OpenGLNumbers {
    unsigned int internalFormat = 0, format = 0, type = 0;
};

Json describe(const OpenGLNumbers& numbers) {
    if (numbers.internalFormat == 0) return nullptr;
    return {{"internalFormat", numbers.internalFormat}, {"format", numbers.format}, {"type", numbers.type}};
}

Json describe(unsigned int number) {
    return number != 0 ? Json(number) : Json();
}

/// Most compressed formats have a number only with the channel type that getDXGIFormat() was made for, and their pixels have
/// none.
unsigned int dxgiNumber(const CMOKTextureHeader& header) {
    const unsigned int number = header.getDXGIFormat();
    if (number != 0 || header.getPixelType().part.high != 0) return number;
    CMOKTextureHeader words = header;
    words.setChannelType(eVarUIntNorm);
    return words.getDXGIFormat();
}

std::string hexadecimal(const Json& number) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%04X", number.get<unsigned int>());
    return text;
}

}  // namespace

Json describeAPINumbers(const CMOKTextureHeader& header) {
    OpenGLNumbers openGL, openGLES;
    header.getOGLFormat(openGL.internalFormat, openGL.format, openGL.type);
    header.getOGLESFormat(openGLES.internalFormat, openGLES.format, openGLES.type);
    return {{"openGL", describe(openGL)},
            {"openGLES", describe(openGLES)},
            {"direct3D9", describe(header.getD3DFormat())},
            {"dxgi", describe(dxgiNumber(header))}};
}

std::string openGLText(const Json& numbers) {
    if (numbers.is_null()) return noNumber;
    return hexadecimal(numbers["internalFormat"]) + ' ' + hexadecimal(numbers["format"]) + ' ' + hexadecimal(numbers["type"]);
}

std::string direct3D9Text(const Json& number) {
    if (number.is_null()) return noNumber;
    const auto value = number.get<std::uint32_t>();
    std::string letters;
    for (unsigned int shift = 0; shift < 32; shift += 8)
        letters += static_cast<char>(value >> shift & 0x7F);
    const bool isFourCC =
        value > 0xFFFFFF && letters.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789") == std::string::npos;
    return isFourCC ? letters : std::to_string(value);
}

std::string dxgiText(const Json& number) {
    return number.is_null() ? noNumber : std::to_string(number.get<unsigned int>());
}

}  // namespace moktextool
