#include "transcode/pixels/transfer_curve.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

/// @file
/// The transfer curves, and the power function that they need.
///
/// Why not std::pow: its last bit differs between the C libraries of Linux, MinGW and Arm systems, so that converted textures
/// would differ too. The four operations on doubles are exact to the bit everywhere, because the build allows no contraction to
/// fused multiply-add.
///
/// Idea: base^exponent = 2^(exponent * log2(base)).
///
///     base = mantissa * 2^k,  mantissa from sqrt(1/2) to sqrt(2)
///     log2(mantissa) = 2 artanh(x) / ln 2,  x = (mantissa - 1) / (mantissa + 1)      12 terms, |x| < 0.172
///     2^f = e^(f ln 2),  f from -0.5 to 0.5                                          16 terms
///     result = 2^f * 2^n,  n = the integer nearest to exponent * k + exponent * log2(mantissa), f = the remainder
///
/// The remainders of both series are below 2^-60; with the rounding of the operations the relative error stays below 2^-49 before
/// the one rounding to float. The cost is constant: two divisions and about 60 multiplications and additions.

namespace moktexture {

namespace {

// Kept (own-curve-constants): these are the library's own constants, not those of the sRGB standard. Every texture that was
// converted between the colour spaces holds values of these curves.
constexpr float linearThreshold = 0.00304f;
constexpr float sRGBThreshold = 0.03928f;
constexpr float slope = 12.92f;
constexpr float scale = 1.0556f;
constexpr float offset = 0.0556f;
constexpr float toSRGBExponent = 0.41666666f;
constexpr float toLinearExponent = 2.4f;

constexpr unsigned int doubleMantissaBits = 52;
constexpr int doubleBias = 1023;
constexpr double ln2 = 0.693147180559945309417;

/// A number as mantissa times 2^exponent, the mantissa from the root of one half to the root of two.
struct Parts {
    double mantissa;
    int exponent;
};

double powerOfTwo(int exponent) {
    return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + doubleBias) << doubleMantissaBits);
}

Parts split(float positive) {
    constexpr double rootOfTwo = 1.41421356237309504880;
    const auto bits = std::bit_cast<std::uint64_t>(static_cast<double>(positive));
    const int exponent = static_cast<int>(bits >> doubleMantissaBits) - doubleBias;
    const double mantissa = static_cast<double>(positive) * powerOfTwo(-exponent);
    return mantissa > rootOfTwo ? Parts{mantissa * 0.5, exponent + 1} : Parts{mantissa, exponent};
}

/// Sum of `coefficients[i] * x^i`, an even number of terms: even and odd powers apart, which halves the chain of dependent
/// operations.
template <std::size_t count>
double polynomial(const std::array<double, count>& coefficients, double x) {
    static_assert(count % 2 == 0);
    const double square = x * x;
    double even = coefficients[count - 2];
    double odd = coefficients[count - 1];
    for (std::size_t i = count - 2; i > 0; i -= 2) {
        even = even * square + coefficients[i - 2];
        odd = odd * square + coefficients[i - 1];
    }
    return even + odd * x;
}

/// Coefficients of 2 artanh(x) / (x ln 2), by powers of the square of x.
constexpr std::array<double, 12> logarithmSeries = [] {
    std::array<double, 12> series{};
    for (std::size_t i = 0; i < series.size(); ++i)
        series[i] = 2.0 / (static_cast<double>(2 * i + 1) * ln2);
    return series;
}();

/// Coefficients of e^x, by powers of x.
constexpr std::array<double, 16> exponentialSeries = [] {
    std::array<double, 16> series{1.0};
    for (std::size_t i = 1; i < series.size(); ++i)
        series[i] = series[i - 1] / static_cast<double>(i);
    return series;
}();

/// Binary logarithm, from the root of one half to the root of two.
double logarithm2(double x) {
    const double quotient = (x - 1.0) / (x + 1.0);
    return quotient * polynomial(logarithmSeries, quotient * quotient);
}

/// 2^x, from -0.5 to 0.5.
double exponential2(double x) {
    return polynomial(exponentialSeries, x * ln2);
}

int nearestInteger(double x) {
    return static_cast<int>(x < 0.0 ? x - 0.5 : x + 0.5);
}

}  // namespace

float fixedPower(float base, float exponent) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    if (!(base < infinity)) return base;
    const Parts parts = split(base);
    const auto factor = static_cast<double>(exponent);
    // A float times a small integer is exact, so that no precision is lost in the whole part.
    const double wholePart = factor * parts.exponent;
    const double fraction = factor * logarithm2(parts.mantissa);
    const int wholeExponent = nearestInteger(wholePart + fraction);
    const double result = exponential2((wholePart - wholeExponent) + fraction) * powerOfTwo(wholeExponent);

    constexpr double roundsToInfinity = 3.4028235677973366e38;
    return result >= roundsToInfinity ? infinity : static_cast<float>(result);
}

float linearToSRGB(float value) {
    if (linearThreshold >= value) return value * slope;
    return fixedPower(value, toSRGBExponent) * scale - offset;
}

float sRGBToLinear(float value) {
    if (sRGBThreshold >= value) return value / slope;
    return fixedPower((value + offset) / scale, toLinearExponent);
}

TransferCurve transferCurve(EMOKTColourSpace target, EMOKTColourSpace source) {
    if (source == eColourSpaceLinear && target == eColourSpaceSRGB) return linearToSRGB;
    if (source == eColourSpaceSRGB && target == eColourSpaceLinear) return sRGBToLinear;
    return nullptr;
}

}  // namespace moktexture
