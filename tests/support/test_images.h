#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Generated RGBA8 images and random data for the tests. The same call gives the same bytes everywhere.
namespace testimages {

/// A small generator of random numbers whose sequence is fixed by its seed.
class Random {
public:
    explicit Random(std::uint64_t seed) : state(seed * 0x9E3779B97F4A7C15u + 1) {}
    std::uint32_t next() {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return static_cast<std::uint32_t>(state >> 32);
    }
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(std::uint64_t{next()} * limit >> 32); }
    void fill(std::span<std::uint8_t> bytes) {
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(next() >> 24);
    }

private:
    std::uint64_t state;
};

enum class Kind {
    gradient,  ///< smooth colours, opaque
    noise,     ///< independent bytes, alpha too
    edges,     ///< hard-edged coloured rectangles, opaque
    text,      ///< dark strokes on light ground, opaque
    cutOut,    ///< gradient with alpha of 0 or 255
    softAlpha  ///< gradient with a smooth alpha
};
inline constexpr Kind allKinds[] = {Kind::gradient, Kind::noise, Kind::edges, Kind::text, Kind::cutOut, Kind::softAlpha};

/// Name of a kind, for messages.
std::string nameOf(Kind kind);

/// `width * height` pixels of four bytes, red first.
std::vector<std::uint8_t> make(Kind kind, std::uint32_t width, std::uint32_t height, std::uint64_t seed = 1);

/// `count` random bytes.
std::vector<std::uint8_t> randomBytes(std::size_t count, std::uint64_t seed);

/// 64-bit FNV-1a digest, to hold whole outputs against.
std::uint64_t digest(std::span<const std::uint8_t> bytes);

}  // namespace testimages
