#include <benchmark/benchmark.h>

#include <functional>

#include "bench_pictures.h"
#include "image_operations.h"

namespace {

using namespace moktexture;

CMOKTexture textureOf(const BenchPicture& picture) {
    const CMOKTextureHeader header(PixelTypeRGBA8.id, picture.height, picture.width, 1, 1, 1, 1, eColourSpaceLinear,
                                   eVarUByteNorm, false);
    return {header, picture.rgba.data()};
}

std::uint64_t pixelsOf(const CMOKTexture& texture) {
    return texture.getTextureSize();
}

/// An operation that works in place.
void operateInPlace(benchmark::State& state, const BenchPicture& picture, bool (*operation)(CMOKTexture&)) {
    CMOKTexture texture = textureOf(picture);
    for (auto _ : state) {
        if (!operation(texture)) state.SkipWithError("refused");
        benchmark::ClobberMemory();
    }
    countPixels(state, pixelsOf(texture));
}

/// An operation in place on a picture whose squares of 32 by 32 pixels are transparent and opaque in turn.
void operateOnCutOut(benchmark::State& state, const BenchPicture& picture, bool (*operation)(CMOKTexture&)) {
    BenchPicture cutOut = picture;
    for (std::size_t i = 0; i < cutOut.rgba.size() / 4; ++i) {
        const std::size_t square = i % picture.width / 32 + i / picture.width / 32;
        cutOut.rgba[i * 4 + 3] = square % 2 == 0 ? 0 : 255;
    }
    operateInPlace(state, cutOut, operation);
}

/// An operation that builds a new texture. The pixels of the result are counted; copying the source is not timed.
void rebuild(benchmark::State& state, const BenchPicture& picture, const std::function<bool(CMOKTexture&)>& operation) {
    const CMOKTexture source = textureOf(picture);
    std::uint64_t pixels = 0;
    for (auto _ : state) {
        state.PauseTiming();
        CMOKTexture texture = source;
        state.ResumeTiming();
        if (!operation(texture)) state.SkipWithError("refused");
        benchmark::ClobberMemory();
        state.PauseTiming();
        pixels = pixelsOf(texture);
        state.ResumeTiming();
    }
    countPixels(state, pixels);
}

bool setAlpha(CMOKTexture& texture) {
    EChannelName alpha = eChannelAlpha;
    unsigned int opaque = 255;
    return SetChannels(texture, 1, &alpha, &opaque);
}

bool swapRedAndBlue(CMOKTexture& texture) {
    EChannelName destinations[] = {eChannelRed, eChannelBlue};
    EChannelName sources[] = {eChannelBlue, eChannelRed};
    return CopyChannels(texture, texture, 2, destinations, sources);
}

bool makeGrey(CMOKTexture& texture) {
    EChannelName luminance = eChannelLuminance;
    return CopyChannels(texture, texture, 1, &luminance, &luminance);
}

bool preMultiply(CMOKTexture& texture) {
    texture.setIsPreMultiplied(false);
    return PreMultiplyAlpha(texture);
}

template <EMOKTAxis Axis>
bool flip(CMOKTexture& texture) {
    return Flip(texture, Axis);
}

bool rotate(CMOKTexture& texture) {
    return Rotate90(texture, eAxisZ, true);
}

bool addBorder(CMOKTexture& texture) {
    return Border(texture, 8, 8, 0);
}

bool makeNormals(CMOKTexture& texture) {
    return GenerateNormalMap(texture, 2.0f, "xyzh");
}

/// Resizes by `numerator / 2`.
std::function<bool(CMOKTexture&)> resizeBy(std::uint32_t numerator, EResizeMode mode) {
    return [numerator, mode](CMOKTexture& texture) {
        return Resize(texture, texture.getWidth() * numerator / 2, texture.getHeight() * numerator / 2, 1, mode);
    };
}

bool makeChain(CMOKTexture& texture) {
    return GenerateMIPMaps(texture, eResizeLinear, allMIPLevels);
}

}  // namespace

void registerOperationBenchmarks(const std::vector<BenchPicture>& pictures) {
    const std::pair<const char*, bool (*)(CMOKTexture&)> inPlace[] = {
        {"SetChannels/alpha", setAlpha}, {"CopyChannels/swap", swapRedAndBlue},
        {"CopyChannels/grey", makeGrey}, {"PreMultiplyAlpha", preMultiply},
        {"Flip/x", flip<eAxisX>},        {"Flip/y", flip<eAxisY>}};
    const std::pair<const char*, bool (*)(CMOKTexture&)> onCutOut[] = {{"Bleed/half", Bleed}};
    const std::pair<const char*, std::function<bool(CMOKTexture&)>> rebuilding[] = {
        {"Resize/nearest/half", resizeBy(1, eResizeNearest)},
        {"Resize/linear/half", resizeBy(1, eResizeLinear)},
        {"Resize/linear/1.5", resizeBy(3, eResizeLinear)},
        {"Resize/cubic/half", resizeBy(1, eResizeCubic)},
        {"Resize/cubic/1.5", resizeBy(3, eResizeCubic)},
        {"GenerateMIPMaps/linear", makeChain},
        {"Rotate90/z", rotate},
        {"Border/8", addBorder},
        {"GenerateNormalMap", makeNormals}};
    for (const BenchPicture& picture : pictures) {
        const auto nameOf = [&picture](const char* what) { return "operations/" + std::string(what) + "/" + picture.name; };
        registerCopyBenchmark("operations", picture);
        for (const auto& [name, operation] : inPlace) {
            benchmark::RegisterBenchmark(nameOf(name).c_str(), [&picture, run = operation](benchmark::State& state) {
                operateInPlace(state, picture, run);
            });
        }
        for (const auto& [name, operation] : onCutOut) {
            benchmark::RegisterBenchmark(nameOf(name).c_str(), [&picture, run = operation](benchmark::State& state) {
                operateOnCutOut(state, picture, run);
            });
        }
        for (const auto& [name, operation] : rebuilding) {
            benchmark::RegisterBenchmark(nameOf(name).c_str(),
                                         [&picture, run = operation](benchmark::State& state) { rebuild(state, picture, run); });
        }
    }
}
