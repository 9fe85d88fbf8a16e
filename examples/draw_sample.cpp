// Draws sample.png, the picture that scripts/quickstart encodes: smooth gradients, fine grain, hard edges, lettering, a cut-out
// leaf, and a soft glow on a transparent background.
//   draw_sample OUT.png

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

namespace {

constexpr int side = 512;
constexpr int samplesPerAxis = 4;

struct Colour {
    double r, g, b, a;
};

Colour mix(const Colour& under, const Colour& over, double amount) {
    return {under.r + (over.r - under.r) * amount, under.g + (over.g - under.g) * amount, under.b + (over.b - under.b) * amount,
            under.a + (over.a - under.a) * amount};
}

double smoothStep(double low, double high, double value) {
    const double t = std::clamp((value - low) / (high - low), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

double latticeNoise(int x, int y) {
    std::uint32_t hash = static_cast<std::uint32_t>(x) * 374761393u + static_cast<std::uint32_t>(y) * 668265263u;
    hash = (hash ^ (hash >> 13)) * 1274126177u;
    return (hash ^ (hash >> 16)) / 4294967296.0;
}

double noise(double x, double y) {
    const double fx = std::floor(x), fy = std::floor(y);
    const int ix = static_cast<int>(fx), iy = static_cast<int>(fy);
    const double tx = smoothStep(0, 1, x - fx), ty = smoothStep(0, 1, y - fy);
    const double top = latticeNoise(ix, iy) * (1 - tx) + latticeNoise(ix + 1, iy) * tx;
    const double bottom = latticeNoise(ix, iy + 1) * (1 - tx) + latticeNoise(ix + 1, iy + 1) * tx;
    return top * (1 - ty) + bottom * ty;
}

double fractalNoise(double x, double y) {
    double sum = 0;
    for (int octave = 0; octave < 5; ++octave)
        sum += noise(x * (1 << octave), y * (1 << octave)) / (2 << octave);
    return sum;
}

Colour sky(double x, double y) {
    const Colour gradient = mix({0.16, 0.30, 0.62, 1}, {0.98, 0.72, 0.46, 1}, smoothStep(0, 300, y));
    const double sun = std::hypot(x - 150, y - 190);
    return mix(gradient, {1, 0.95, 0.75, 1}, 1 - smoothStep(34, 36, sun) * smoothStep(0, 220, sun));
}

Colour hills(const Colour& behind, double x, double y) {
    const double far = 285 + 40 * std::sin(x / 70) + 12 * fractalNoise(x / 30, 3);
    const double near = 360 + 30 * std::sin(x / 110 + 2) + 10 * fractalNoise(x / 14, 8);
    if (y > near) {
        const double grain = fractalNoise(x / 5, y / 9);
        return {0.12 + 0.30 * grain, 0.28 + 0.45 * grain, 0.08 + 0.12 * grain, 1};
    }
    return y > far ? Colour{0.24, 0.33, 0.42, 1} : behind;
}

/// Rows of 5 by 7 letters, top first, the leftmost dot in bit 4.
constexpr struct {
    char letter;
    std::uint8_t rows[7];
} glyphs[] = {
    {'M', {0x11, 0x1B, 0x15, 0x15, 0x11, 0x11, 0x11}}, {'O', {0x0E, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0E}},
    {'K', {0x11, 0x12, 0x14, 0x18, 0x14, 0x12, 0x11}}, {'T', {0x1F, 0x04, 0x04, 0x04, 0x04, 0x04, 0x04}},
    {'e', {0x00, 0x00, 0x0E, 0x11, 0x1F, 0x10, 0x0E}}, {'x', {0x00, 0x00, 0x11, 0x0A, 0x04, 0x0A, 0x11}},
};

bool inLettering(const char* text, double x, double y) {
    const int column = static_cast<int>(std::floor(x)), row = static_cast<int>(std::floor(y));
    if (column < 0 || row < 0 || row > 6 || column >= 36 || column % 6 == 5) return false;
    for (const auto& glyph : glyphs) {
        if (glyph.letter == text[column / 6]) return (glyph.rows[row] >> (4 - column % 6) & 1) != 0;
    }
    return false;
}

Colour sign(const Colour& behind, double x, double y) {
    if (x < 40 || x >= 300 || y < 400 || y >= 480) return behind;
    if (x < 46 || x >= 294 || y < 406 || y >= 474) return {0.85, 0.1, 0.1, 1};
    if (inLettering("MOKTex", (x - 61) / 6.2, (y - 418) / 6.2)) return {0.05, 0.05, 0.1, 1};
    return {0.97, 0.95, 0.88, 1};
}

Colour leaf(const Colour& behind, double x, double y) {
    const double u = (x - 435) / 60, v = (y - 385) / 110;
    const double edge = 0.8 * (1 - v * v) + 0.05 * std::sin(v * 40);
    if (std::abs(v) > 1 || std::abs(u) > edge) return behind;
    const double vein = std::min(std::abs(u), std::abs(std::remainder(v * 8 - std::abs(u) * 5, 1.0)) / 4);
    return mix({0.86, 0.78, 0.30, 1}, {0.62 + 0.2 * v, 0.24 + 0.2 * fractalNoise(x / 9, y / 9), 0.08, 1},
               smoothStep(0.015, 0.05, vein));
}

Colour glow(double x, double y) {
    const double distance = std::hypot(x - 435, y - 130);
    return {0.45 + 0.55 * smoothStep(90, 0, distance), 0.85, 1, 1 - smoothStep(15, 70, distance)};
}

Colour scene(double x, double y) {
    if (x < 360) return sign(hills(sky(x, y), x, y), x, y);
    return leaf(y < 256 ? glow(x, y) : Colour{0.62, 0.24, 0.08, 0}, x, y);
}

/// The mean of a pixel's samples, their colours weighted by alpha; unweighted if all are transparent.
void drawPixel(int x, int y, std::uint8_t* pixel) {
    Colour sum{0, 0, 0, 0}, unweighted{0, 0, 0, 0};
    constexpr double count = samplesPerAxis * samplesPerAxis;
    for (int i = 0; i < samplesPerAxis * samplesPerAxis; ++i) {
        const Colour c = scene(x + (i % samplesPerAxis + 0.5) / samplesPerAxis, y + (i / samplesPerAxis + 0.5) / samplesPerAxis);
        sum = {sum.r + c.r * c.a, sum.g + c.g * c.a, sum.b + c.b * c.a, sum.a + c.a};
        unweighted = {unweighted.r + c.r, unweighted.g + c.g, unweighted.b + c.b, 0};
    }
    const Colour mean = sum.a > 0 ? Colour{sum.r / sum.a, sum.g / sum.a, sum.b / sum.a, sum.a / count}
                                  : Colour{unweighted.r / count, unweighted.g / count, unweighted.b / count, 0};
    const double channels[] = {mean.r, mean.g, mean.b, mean.a};
    for (int c = 0; c < 4; ++c)
        pixel[c] = static_cast<std::uint8_t>(std::clamp(channels[c], 0.0, 1.0) * 255 + 0.5);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: draw_sample OUT.png\n");
        return 1;
    }
    stbi_write_png_compression_level = 24;
    std::vector<std::uint8_t> pixels(std::size_t{4} * side * side);
    for (int i = 0; i < side * side; ++i)
        drawPixel(i % side, i / side, &pixels[std::size_t{4} * static_cast<std::size_t>(i)]);
    if (stbi_write_png(argv[1], side, side, 4, pixels.data(), side * 4) == 0) {
        std::fprintf(stderr, "draw_sample: %s: cannot be written; choose a folder that exists\n", argv[1]);
        return 2;
    }
    return 0;
}
