#include "moktex/operations/colour_curve.h"

#include <cmath>

namespace moktextool {

namespace {

/// The root of a positive number by Newton's method, from a power of two that is not below it. Each step multiplies the error by
/// (degree - 1) / degree at most; near the root each step doubles the number of correct digits.
double rootOf(double value, int degree) {
    int exponent = 0;
    std::frexp(value, &exponent);
    double root = std::ldexp(1.0, exponent > 0 ? (exponent + degree - 1) / degree : exponent / degree);
    for (int step = 0; step < 12; ++step) {
        double power = 1;
        for (int i = 1; i < degree; ++i)
            power *= root;
        root -= (root - value / power) / degree;
    }
    return root;
}

}  // namespace

double linearOfSRGB(double value) {
    if (!(value > 0.04045)) return value / 12.92;
    const double base = (value + 0.055) / 1.055;
    return std::isinf(base) ? base : base * base * rootOf(base * base, 5);
}

double sRGBOfLinear(double value) {
    if (!(value > 0.04045 / 12.92)) return value * 12.92;
    if (std::isinf(value)) return value;
    // 5 / 12 = 1 / 3 + 1 / 12, and the twelfth root is the fourth root of the third root.
    const double third = rootOf(value, 3);
    return 1.055 * third * std::sqrt(std::sqrt(third)) - 0.055;
}

template <class T>
TableCurve<T>::TableCurve(bool isSRGB) : values(std::size_t{largest} + 1) {
    for (std::size_t stored = 0; stored < values.size(); ++stored) {
        const double value = static_cast<double>(stored);
        values[stored] = static_cast<float>(isSRGB ? linearOfSRGB(value / largest) : value);
    }
    if (!isSRGB) return;
    steps.resize(values.size());
    for (std::size_t stored = 1; stored < steps.size(); ++stored)
        steps[stored] = static_cast<float>(linearOfSRGB((static_cast<double>(stored) - 0.5) / largest));
    std::uint32_t stored = 0;
    for (std::uint32_t bucket = 0; bucket <= buckets; ++bucket) {
        const float first = static_cast<float>(bucket) / buckets;
        while (stored < largest && steps[stored + 1] <= first)
            ++stored;
        starts[bucket] = stored;
    }
}

template class TableCurve<std::uint8_t>;
template class TableCurve<std::uint16_t>;

}  // namespace moktextool
