// Resampling of an image along its three axes, one row of the result at a time.
//
//     for each row of the result:
//         sums = 0                                     a row of the source's width, as floats
//         for each row of the source that it is made of:
//             sums += weight * decoded row             along y and z
//         for each pixel of the row:
//             encode(sum of weight * sums)             along x
//
// No row of the result depends on another, so that bands and threads change no byte, and what is needed beside the two images is
// a row of floats for each thread. Sources of several rows of the result are decoded for each of them, which a table makes cheap.
//
// Halving both sides of bytes with the mean of 2 by 2 pixels, the step of most MIP chains, has a loop of its own. It gives the
// same bytes: weights of a half are exact, and both forms add left to right, rows first.
//
// Colours are weighted by alpha, if any pixel of the image is not opaque: the sums hold alpha times colour, alpha, and the plain
// colour for pixels all of whose sources are transparent.

#include "moktex/operations/resample.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <vector>

#include "moktex/operations/colour_curve.h"
#include "moktex/operations/filter_taps.h"

using namespace moktexture;

namespace moktextool {

namespace {

constexpr std::size_t channels = 4;

template <class T>
constexpr T opaque = std::is_same_v<T, float> ? T{1} : std::numeric_limits<T>::max();

template <class T>
const T* rowOf(const Image& image, std::uint64_t index) {
    return reinterpret_cast<const T*>(image.row(index));
}

/// Whether any pixel has an alpha other than opaque.
template <class T>
bool hasTransparency(const Image& image, std::uint64_t bandPixels) {
    std::atomic<bool> found = false;
    forEachBand({image.countRows(), image.getSize().width, bandPixels}, [&](const RowBand& band) {
        const T* pixel = rowOf<T>(image, band.first);
        const T* const end = pixel + std::size_t{band.count} * image.getSize().width * channels;
        bool isOpaque = true;
        for (; pixel != end; pixel += channels)
            isOpaque &= pixel[3] == opaque<T>;
        if (!isOpaque) found = true;
    });
    return found;
}

/// What is summed for a pixel. Weighted: alpha times red, green and blue, alpha, and red, green and blue without alpha.
template <class T, bool isWeighted>
struct PixelSum {
    static constexpr std::size_t size = isWeighted ? 7 : 4;
    float values[size] = {};

    PixelSum() = default;
    PixelSum(const T* pixel, const ColourCurve<T>& curve) {
        const float alpha = static_cast<float>(pixel[3]);
        values[3] = alpha;
        for (std::size_t c = 0; c < 3; ++c) {
            const float colour = curve.decode(pixel[c]);
            values[c] = isWeighted ? colour * alpha : colour;
            if constexpr (isWeighted) values[4 + c] = colour;
        }
    }
    void add(float weight, const PixelSum& other) {
        for (std::size_t i = 0; i < size; ++i)
            values[i] += weight * other.values[i];
    }
    void store(T* pixel, const ColourCurve<T>& curve) const {
        const bool isTransparent = isWeighted && !(values[3] > 0);
        for (std::size_t c = 0; c < 3; ++c) {
            float colour = values[c];
            if constexpr (isWeighted) colour = isTransparent ? values[4 + c] : colour / values[3];
            pixel[c] = curve.encode(colour);
        }
        pixel[3] = ColourCurve<T>::roundStored(values[3]);
    }
};

struct AllTaps {
    FilterTaps x, y, z;
};

template <class T, bool isWeighted>
class RowResampler {
public:
    using Sum = PixelSum<T, isWeighted>;

    RowResampler(const Image& from, const AllTaps& allTaps, const ColourCurve<T>& colourCurve)
        : source(from), taps(allTaps), curve(colourCurve) {}

    /// `index` counts the result's rows through all slices.
    void makeRow(std::uint64_t index, T* pixel, std::vector<Sum>& sums) const {
        sums.assign(source.getSize().width, Sum{});
        const FilterTaps::Run& slices = taps.z.runs[index / taps.y.runs.size()];
        const FilterTaps::Run& rows = taps.y.runs[index % taps.y.runs.size()];
        for (std::uint32_t z = 0; z < slices.count; ++z) {
            for (std::uint32_t y = 0; y < rows.count; ++y) {
                const std::uint64_t slice = slices.first + z;
                addRow(slice * source.getSize().height + rows.first + y,
                       taps.z.weights[slices.weightsAt + z] * taps.y.weights[rows.weightsAt + y], sums);
            }
        }
        for (const FilterTaps::Run& columns : taps.x.runs) {
            Sum sum;
            for (std::uint32_t x = 0; x < columns.count; ++x)
                sum.add(taps.x.weights[columns.weightsAt + x], sums[columns.first + x]);
            sum.store(pixel, curve);
            pixel += channels;
        }
    }

private:
    void addRow(std::uint64_t index, float weight, std::vector<Sum>& sums) const {
        const T* pixel = rowOf<T>(source, index);
        for (Sum& sum : sums) {
            sum.add(weight, Sum(pixel, curve));
            pixel += channels;
        }
    }

    const Image& source;
    const AllTaps& taps;
    const ColourCurve<T>& curve;
};

/// The mean of pairs of pixels of two rows.
template <bool isWeighted>
void halveRows(const std::uint8_t* upper, const std::uint8_t* lower, std::uint32_t width, const ColourCurve<std::uint8_t>& curve,
               std::uint8_t* pixel) {
    using Sum = PixelSum<std::uint8_t, isWeighted>;
    for (std::uint32_t x = 0; x < width; ++x, upper += 2 * channels, lower += 2 * channels, pixel += channels) {
        const Sum upperLeft(upper, curve), lowerLeft(lower, curve);
        const Sum upperRight(upper + channels, curve), lowerRight(lower + channels, curve);
        Sum sum;
        for (std::size_t i = 0; i < Sum::size; ++i) {
            sum.values[i] = ((upperLeft.values[i] + lowerLeft.values[i]) + (upperRight.values[i] + lowerRight.values[i])) * 0.25F;
        }
        sum.store(pixel, curve);
    }
}

bool halvesExactly(const ImageSize& source, const ImageSize& target) {
    return source.depth == 1 && target.depth == 1 && source.width == 2 * target.width && source.height == 2 * target.height;
}

template <class T, bool isWeighted>
void resamplePixels(const Image& source, Image& target, const ResampleSettings& settings) {
    const ColourCurve<T> curve(settings.linearLight);
    const ImageSize &from = source.getSize(), &to = target.getSize();
    const BandCut cut{target.countRows(), to.width, settings.bandPixels};
    if constexpr (std::is_same_v<T, std::uint8_t>) {
        if (settings.mode == eResizeLinear && halvesExactly(from, to)) {
            forEachBand(cut, [&](const RowBand& band) {
                for (std::uint64_t y = band.first; y < band.first + band.count; ++y)
                    halveRows<isWeighted>(source.row(2 * y), source.row(2 * y + 1), to.width, curve, target.row(y));
            });
            return;
        }
    }
    const AllTaps taps{makeTaps(from.width, to.width, settings.mode), makeTaps(from.height, to.height, settings.mode),
                       makeTaps(from.depth, to.depth, settings.mode)};
    const RowResampler<T, isWeighted> resampler(source, taps, curve);
    forEachBand(cut, [&](const RowBand& band) {
        std::vector<PixelSum<T, isWeighted>> sums;
        for (std::uint64_t y = band.first; y < band.first + band.count; ++y)
            resampler.makeRow(y, reinterpret_cast<T*>(target.row(y)), sums);
    });
}

/// Copies the pixel under each centre, whatever its bytes mean.
void pickNearest(const Image& source, Image& target, std::uint64_t bandPixels) {
    const ImageSize &from = source.getSize(), &to = target.getSize();
    const AllTaps taps{makeTaps(from.width, to.width, eResizeNearest), makeTaps(from.height, to.height, eResizeNearest),
                       makeTaps(from.depth, to.depth, eResizeNearest)};
    const std::size_t pixelSize = source.getRowSize() / from.width;
    forEachBand({target.countRows(), to.width, bandPixels}, [&](const RowBand& band) {
        for (std::uint64_t row = band.first; row < band.first + band.count; ++row) {
            const std::uint64_t slice = taps.z.runs[row / to.height].first;
            const unsigned char* pixels = source.row(slice * from.height + taps.y.runs[row % to.height].first);
            unsigned char* out = target.row(row);
            for (const FilterTaps::Run& column : taps.x.runs) {
                std::memcpy(out, pixels + column.first * pixelSize, pixelSize);
                out += pixelSize;
            }
        }
    });
}

template <class T>
void resampleAs(const Image& source, Image& target, const ResampleSettings& settings) {
    if (settings.weightsByAlpha && hasTransparency<T>(source, settings.bandPixels))
        resamplePixels<T, true>(source, target, settings);
    else
        resamplePixels<T, false>(source, target, settings);
}

}  // namespace

Image resample(const Image& source, const ImageSize& size, const ResampleSettings& settings) {
    Image target(source.getFormat(), size);
    if (settings.mode == eResizeNearest)
        pickNearest(source, target, settings.bandPixels);
    else if (source.getFormat() == rgba8Format)
        resampleAs<std::uint8_t>(source, target, settings);
    else if (source.getFormat() == rgba16Format)
        resampleAs<std::uint16_t>(source, target, settings);
    else
        resampleAs<float>(source, target, settings);
    return target;
}

}  // namespace moktextool
