#include "etc1/etc1_quantiser.h"

namespace moktexture::etc1 {
namespace {

/// Weights of the squared differences between the errors of red and green, red and blue, green and blue.
struct PairWeights {
    float redGreen, redBlue, greenBlue;
};

constexpr PairWeights equalWeights = {1.0f, 1.0f, 1.0f};
constexpr PairWeights perceptualPairWeights = {0.175513f, 0.034086f, 0.066918f};

// Row: a corner between low and high codes. Column: whether red, green and blue take the high code.
// clang-format off
constexpr std::array<std::array<bool, channelCount>, 8> corners = {{
    {false, false, false},
    {true,  false, false},
    {false, true,  false},
    {false, false, true },
    {true,  true,  false},
    {true,  false, true },
    {false, true,  true },
    {true,  true,  true },
}};
// clang-format on

constexpr std::size_t allLow = 0, allHigh = 7;

constexpr float square(float value) {
    return value * value;
}

/// The codes around a colour in one form.
struct CodeRange {
    Form form;
    Codes low;
    Codes high;

    CodeRange(const FloatColour& colour, Form codeForm) : form(codeForm), low{}, high{} {
        // Kept: 255 / 31 cut to seven digits; the quotient itself would give 255 the code 30, and white blocks would come out
        // darker.
        const double step = form == Form::individual ? 17.0 : 8.225806;
        const int greatest = form == Form::individual ? 15 : 31;
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            low[channel] = static_cast<int>(static_cast<double>(colour[channel]) / step);
            high[channel] = low[channel] < greatest ? low[channel] + 1 : greatest;
        }
    }

    Codes corner(std::size_t number) const {
        Codes codes{};
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            codes[channel] = corners[number][channel] ? high[channel] : low[channel];
        return codes;
    }

    FloatColour errorOf(const Codes& codes, const FloatColour& colour) const {
        const Colour expanded = expand(codes, form);
        FloatColour error{};
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            error[channel] = expanded[channel] - colour[channel];
        return error;
    }
};

float hueError(const FloatColour& error, const PairWeights& weights) {
    return weights.redGreen * square(error[0] - error[1]) + weights.redBlue * square(error[0] - error[2]) +
           weights.greenBlue * square(error[1] - error[2]);
}

std::size_t bestCorner(const CodeRange& range, const FloatColour& colour, const PairWeights& weights) {
    std::size_t best = 0;
    float least = hueError(range.errorOf(range.corner(0), colour), weights);
    for (std::size_t number = 1; number < corners.size(); ++number) {
        const float error = hueError(range.errorOf(range.corner(number), colour), weights);
        if (error < least) {
            least = error;
            best = number;
        }
    }
    return best;
}

Codes hueCorner(const FloatColour& colour, Form form, const PairWeights& weights) {
    const CodeRange range(colour, form);
    return range.corner(bestCorner(range, colour, weights));
}

Codes roundEach(const FloatColour& colour, int (*round)(float)) {
    return {round(colour[0]), round(colour[1]), round(colour[2])};
}

}  // namespace

int RoundToFiveBits(float value) {
    const double scaled = static_cast<double>(value) * 31.0 / 255.0;
    return static_cast<int>(scaled < 0.0 ? scaled - 0.5 : scaled + 0.5);
}

int RoundToFourBits(float value) {
    constexpr float upward = 0.0001f;
    return static_cast<int>(static_cast<double>(value) / 17.0 + 0.5 + static_cast<double>(upward));
}

Codes roundToFiveBits(const FloatColour& colour) {
    return roundEach(colour, RoundToFiveBits);
}

Codes roundToFourBits(const FloatColour& colour) {
    return roundEach(colour, RoundToFourBits);
}

Codes QuantiseColour444(const FloatColour& colour) {
    const CodeRange range(colour, Form::individual);
    const std::size_t best = bestCorner(range, colour, equalWeights);
    if (best != allLow && best != allHigh) return range.corner(best);
    // Kept: only here, and not with 5 bits or with weights, the size of the error decides between the two corners of equal hue;
    // blocks of quality 0 come out as they always have.
    const FloatColour error = range.errorOf(range.low, colour);
    return square(error[0]) + square(error[1]) + square(error[2]) > 192.0f ? range.high : range.low;
}

Codes QuantiseColour555(const FloatColour& colour) {
    return hueCorner(colour, Form::differential, equalWeights);
}

Codes QuantiseColour444Perceptual(const FloatColour& colour) {
    return hueCorner(colour, Form::individual, perceptualPairWeights);
}

Codes QuantiseColour555Perceptual(const FloatColour& colour) {
    return hueCorner(colour, Form::differential, perceptualPairWeights);
}

}  // namespace moktexture::etc1
