#include "moktex/operations/filter_taps.h"

#include <algorithm>
#include <cmath>

using namespace moktexture;

namespace moktextool {

namespace {

/// Sizes are up to 2^32, so that positions in units of a source pixel divided by the target's size fit in 64 bits.
using Wide = std::int64_t;

struct AxisSizes {
    Wide source, target;
};

double catmullRom(double x) {
    x = std::abs(x);
    if (x < 1) return (1.5 * x - 2.5) * x * x + 1;
    return x < 2 ? ((-0.5 * x + 2.5) * x - 4) * x + 2 : 0;
}

void addRun(FilterTaps& taps, Wide first, const std::vector<double>& weights) {
    double sum = 0;
    for (const double weight : weights)
        sum += weight;
    taps.runs.push_back({static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(weights.size()), taps.weights.size()});
    for (const double weight : weights)
        taps.weights.push_back(static_cast<float>(weight / sum));
}

/// The mean over the area from `index` / target to (`index` + 1) / target.
void addArea(FilterTaps& taps, const AxisSizes& sizes, Wide index) {
    const Wide begin = index * sizes.source, end = begin + sizes.source;
    const Wide first = begin / sizes.target, last = (end - 1) / sizes.target;
    std::vector<double> weights;
    for (Wide pixel = first; pixel <= last; ++pixel) {
        const Wide covered = std::min(end, (pixel + 1) * sizes.target) - std::max(begin, pixel * sizes.target);
        weights.push_back(static_cast<double>(covered));
    }
    addRun(taps, first, weights);
}

/// A kernel of `radius` pixels around the centre, where a pixel is the larger one of source and target.
template <class Kernel>
void addKernel(FilterTaps& taps, const AxisSizes& sizes, Wide index, double radius, Kernel kernel) {
    const double scale = std::max(1.0, static_cast<double>(sizes.source) / static_cast<double>(sizes.target));
    const double centre = static_cast<double>((2 * index + 1) * sizes.source) / static_cast<double>(2 * sizes.target) - 0.5;
    const Wide lowest = static_cast<Wide>(std::ceil(centre - radius * scale));
    const Wide highest = static_cast<Wide>(std::floor(centre + radius * scale));
    const Wide first = std::clamp<Wide>(lowest, 0, sizes.source - 1), last = std::clamp<Wide>(highest, 0, sizes.source - 1);
    std::vector<double> weights(static_cast<std::size_t>(last - first + 1));
    for (Wide pixel = lowest; pixel <= highest; ++pixel)
        weights[static_cast<std::size_t>(std::clamp(pixel, first, last) - first)] +=
            kernel((static_cast<double>(pixel) - centre) / scale);
    addRun(taps, first, weights);
}

}  // namespace

FilterTaps makeTaps(std::uint32_t source, std::uint32_t target, EResizeMode mode) {
    const AxisSizes sizes{source, target};
    FilterTaps taps;
    for (Wide index = 0; index < sizes.target; ++index) {
        if (mode == eResizeNearest || source == target)
            addRun(taps, (2 * index + 1) * sizes.source / (2 * sizes.target), {1});
        else if (mode == eResizeCubic)
            addKernel(taps, sizes, index, 2, catmullRom);
        else if (source > target)
            addArea(taps, sizes, index);
        else
            addKernel(taps, sizes, index, 1, [](double x) { return std::max(0.0, 1 - std::abs(x)); });
    }
    return taps;
}

}  // namespace moktextool
