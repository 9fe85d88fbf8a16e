#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace moktextool {

/// @name The published sRGB curve (IEC 61966-2-1) between 0 and 1, continued above. Made of sums, products, quotients and square
/// roots alone, so that every machine gives the same bits, which std::pow() does not.
/// @{
double linearOfSRGB(double value);
double sRGBOfLinear(double value);
/// @}

/// The values of stored colour channels as filters average them: linear light from 0 to 1, or the stored values themselves.
template <class T>
class ColourCurve;

/// 8 and 16 bits: a table from stored to linear, and the steps where rounding to the nearest stored value changes.
template <class T>
class TableCurve {
public:
    explicit TableCurve(bool isSRGB);
    float decode(T stored) const { return values[stored]; }
    /// The nearest stored value, clamped to the channel.
    T encode(float value) const {
        if (steps.empty()) return roundStored(value);
        if (!(value > 0)) return 0;
        if (value >= 1) return largest;
        const auto bucket = static_cast<std::uint32_t>(value * buckets);
        std::uint32_t low = starts[bucket], high = starts[bucket + 1];
        while (low < high) {
            const std::uint32_t middle = (low + high + 1) / 2;
            if (value >= steps[middle])
                low = middle;
            else
                high = middle - 1;
        }
        return static_cast<T>(low);
    }
    /// The nearest whole number, clamped to the channel.
    static T roundStored(float value) {
        if (!(value > 0)) return 0;
        return value >= static_cast<float>(largest) ? largest : static_cast<T>(value + 0.5F);
    }

private:
    static constexpr T largest = static_cast<T>(~T{0});
    static constexpr std::uint32_t buckets = 4096;

    std::vector<float> values;
    std::vector<float> steps;                         ///< by stored value: the least linear value that rounds to it
    std::array<std::uint32_t, buckets + 1> starts{};  ///< by bucket: the stored value of its first linear value
};

template <>
class ColourCurve<std::uint8_t> : public TableCurve<std::uint8_t> {
public:
    using TableCurve::TableCurve;
};

template <>
class ColourCurve<std::uint16_t> : public TableCurve<std::uint16_t> {
public:
    using TableCurve::TableCurve;
};

/// Floats: the curve is computed for each value, and nothing is clamped.
template <>
class ColourCurve<float> {
public:
    explicit ColourCurve(bool isSRGB) : hasCurve(isSRGB) {}
    float decode(float stored) const { return hasCurve ? static_cast<float>(linearOfSRGB(static_cast<double>(stored))) : stored; }
    float encode(float value) const { return hasCurve ? static_cast<float>(sRGBOfLinear(static_cast<double>(value))) : value; }
    static float roundStored(float value) { return value; }

private:
    const bool hasCurve;
};

}  // namespace moktextool
