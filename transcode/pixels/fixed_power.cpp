#include "transcode/pixels/fixed_power.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace moktexture {

namespace {

constexpr unsigned int doubleMantissaBits = 52;
constexpr int doubleBias = 1023;
constexpr double ln2 = 0.693147180559945309417;

/// A number as mantissa times 2^exponent, with the mantissa from the root of one half to the root of two.
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

/// Sum of `coefficients[i] * x^i`, an even number of terms: even and odd powers by themselves, which halves the waiting.
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

/// Of 2 artanh(x) / (x ln 2), by powers of the square of x.
constexpr std::array<double, 12> logarithmSeries = [] {
    std::array<double, 12> series{};
    for (std::size_t i = 0; i < series.size(); ++i)
        series[i] = 2.0 / (static_cast<double>(2 * i + 1) * ln2);
    return series;
}();

/// Of e^x, by powers of x.
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
    // A float times a small integer is exact, so that the whole part costs no precision.
    const double wholePart = factor * parts.exponent;
    const double fraction = factor * logarithm2(parts.mantissa);
    const int scale = nearestInteger(wholePart + fraction);
    const double result = exponential2((wholePart - scale) + fraction) * powerOfTwo(scale);

    constexpr double roundsToInfinity = 3.4028235677973366e38;
    return result >= roundsToInfinity ? infinity : static_cast<float>(result);
}

}  // namespace moktexture
