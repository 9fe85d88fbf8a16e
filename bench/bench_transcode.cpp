#include <benchmark/benchmark.h>

#include "bench_pictures.h"
#include "transcode/convert_layout.h"

namespace {

using namespace moktexture;

struct Conversion {
    const char* name;
    PixelType type;
    EMOKTVariableType channelType;
    EMOKTColourSpace colourSpace;
};

// clang-format off
constexpr Conversion conversions[] = {
    // Name         Format                            Channel type    Colour space
    {"bgra8",       {'b', 'g', 'r', 'a', 8, 8, 8, 8}, eVarUByteNorm,  eColourSpaceLinear},
    {"rgb8",        {'r', 'g', 'b', 0, 8, 8, 8, 0},   eVarUByteNorm,  eColourSpaceLinear},
    {"l8",          {'l', 0, 0, 0, 8, 0, 0, 0},       eVarUByteNorm,  eColourSpaceLinear},
    {"rgb565",      {'r', 'g', 'b', 0, 5, 6, 5, 0},   eVarUShortNorm, eColourSpaceLinear},
    {"rgba16",      PixelTypeRGBA16,                  eVarUShortNorm, eColourSpaceLinear},
    {"float",       PixelTypeRGBA32,                  eVarFloat,      eColourSpaceLinear},
    {"rgba8_srgb",  PixelTypeRGBA8,                   eVarUByteNorm,  eColourSpaceSRGB},
    {"rgba16_srgb", PixelTypeRGBA16,                  eVarUShortNorm, eColourSpaceSRGB},
};
// clang-format on

CMOKTextureHeader makeHeader(const BenchPicture& picture, PixelType type, EMOKTVariableType channelType) {
    return {type.id, picture.height, picture.width, 1, 1, 1, 1, eColourSpaceLinear, channelType, false};
}

/// Converts from linear RGBA8 between textures that are allocated beforehand, so that only the conversion is measured.
void convert(benchmark::State& state, const BenchPicture& picture, const Conversion& conversion) {
    const CMOKTexture from(makeHeader(picture, PixelTypeRGBA8, eVarUByteNorm), picture.rgba.data());
    CMOKTexture to(makeHeader(picture, conversion.type, conversion.channelType), nullptr);
    PixelCodec fromCodec(PixelTypeRGBA8, eVarUByteNorm);
    PixelCodec toCodec(conversion.type, conversion.channelType);
    for (auto _ : state) {
        convertLayout(from, to, fromCodec, toCodec, conversion.colourSpace, eColourSpaceLinear);
        benchmark::ClobberMemory();
    }
    countPixels(state, std::uint64_t{picture.width} * picture.height);
}

}  // namespace

void registerTranscodeBenchmarks(const std::vector<BenchPicture>& pictures) {
    for (const BenchPicture& picture : pictures) {
        registerCopyBenchmark("transcode", picture);
        for (const Conversion& conversion : conversions)
            benchmark::RegisterBenchmark(
                ("transcode/" + std::string(conversion.name) + "/" + picture.name).c_str(),
                [&picture, &conversion](benchmark::State& state) { convert(state, picture, conversion); });
    }
}
