#include "transcode/pixels/channel_value.h"

#include <bit>

namespace moktexture {

namespace {

constexpr unsigned int floatMantissaBits = 23;
/// Bias of a float's exponent minus bias of a small float's.
constexpr std::uint32_t biasDifference = 127 - 15;

}  // namespace

float floatFromSmallFloat(std::uint32_t field, SmallFloat format) {
    constexpr std::uint32_t exponentMask = (1u << smallFloatExponentBits) - 1;
    const auto mantissaMask = static_cast<std::uint32_t>(lowBits(format.mantissaBits));
    const std::uint32_t mantissa = (field & mantissaMask) << (floatMantissaBits - format.mantissaBits);
    const std::uint32_t exponent = field >> format.mantissaBits & exponentMask;
    const std::uint32_t sign = format.hasSign ? field >> (format.mantissaBits + smallFloatExponentBits) << 31 : 0;

    // Kept (small-float-zero): exponent 0 is rebiased like any other, so that a stored zero reads as 2 to the -15. Half-float
    // textures that are converted to 32 bits hold this value for black.
    std::uint32_t exponentField = (exponent + biasDifference) << floatMantissaBits;
    // Kept (small-float-infinity): the 255 is at bit 0, so that an infinity or NaN reads as a tiny number. Half-float textures
    // that are converted to 32 bits hold it.
    if (exponent == exponentMask) exponentField = 255;
    return std::bit_cast<float>(sign | exponentField | mantissa);
}

std::uint32_t smallFloatFromFloat(float value, SmallFloat format) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    const std::uint32_t mantissa = (bits & 0x7FFFFFu) >> (floatMantissaBits - format.mantissaBits);
    const std::uint32_t exponent = bits >> floatMantissaBits & 255;

    // Kept (small-float-range): the exponent is not clamped; one outside the range runs into the bits above the format. The bytes
    // of half-float and r11g11b10 textures depend on it.
    const std::uint32_t exponentField = exponent == 0 ? 0 : (exponent - biasDifference) << format.mantissaBits;
    // Kept (small-float-sign): the sign goes above the exponent in the formats without one too, and so into the next channel of a
    // packed pixel. The bytes of r11g11b10 textures with negative values depend on it.
    const std::uint32_t sign = bits >> 31 << (format.mantissaBits + smallFloatExponentBits);
    return sign | exponentField | mantissa;
}

}  // namespace moktexture
