// Runs the benchmarks over the PNG pictures of a folder.
//   moktex_bench PICTURE_FOLDER [Google Benchmark's flags]

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

#include "bench_pictures.h"

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wcast-qual"
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

namespace fs = std::filesystem;

namespace {

/// Loads a picture and crops its sides to multiples of 4. Empty if it cannot be read.
BenchPicture loadPicture(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    const std::vector<char> file(std::istreambuf_iterator<char>(stream), {});
    std::vector<unsigned char> bytes(file.begin(), file.end());
    int width = 0, height = 0;
    const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
        stbi_load_from_memory(bytes.data(), static_cast<int>(bytes.size()), &width, &height, nullptr, 4), &stbi_image_free);
    BenchPicture picture{
        path.stem().string(), static_cast<std::uint32_t>(width & ~3), static_cast<std::uint32_t>(height & ~3), {}};
    if (!pixels || picture.width == 0 || picture.height == 0) return {};
    const std::size_t rowSize = std::size_t{picture.width} * 4;
    picture.rgba.resize(rowSize * picture.height);
    for (std::uint32_t y = 0; y < picture.height; ++y)
        std::memcpy(picture.rgba.data() + y * rowSize, pixels.get() + y * static_cast<std::size_t>(width) * 4, rowSize);
    return picture;
}

std::vector<BenchPicture> loadPictures(const fs::path& folder) {
    std::vector<fs::path> paths;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() == ".png") paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    std::vector<BenchPicture> pictures;
    for (const fs::path& path : paths) {
        BenchPicture picture = loadPicture(path);
        if (picture.rgba.empty())
            std::cerr << "moktex_bench: " << path.string() << ": cannot be read or is below 4 by 4; left out\n";
        else
            pictures.push_back(std::move(picture));
    }
    return pictures;
}

}  // namespace

void countPixels(benchmark::State& state, std::uint64_t pixelsPerIteration) {
    const double pixels = static_cast<double>(pixelsPerIteration) * static_cast<double>(state.iterations());
    state.counters["Mpixels"] = benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsRate);
}

void registerCopyBenchmark(const std::string& group, const BenchPicture& picture) {
    benchmark::RegisterBenchmark((group + "/memcpy/" + picture.name).c_str(), [&picture](benchmark::State& state) {
        std::vector<std::uint8_t> target(picture.rgba.size());
        for (auto _ : state) {
            std::memcpy(target.data(), picture.rgba.data(), target.size());
            benchmark::ClobberMemory();
        }
        countPixels(state, std::uint64_t{picture.width} * picture.height);
    });
}

int main(int argc, char** argv) {
    if (argc < 2 || argv[1][0] == '-') {
        std::cerr << "usage: moktex_bench PICTURE_FOLDER [--benchmark_filter=REGEX ...]\n";
        return 1;
    }
    const std::vector<BenchPicture> pictures = loadPictures(argv[1]);
    if (pictures.empty()) {
        std::cerr << "moktex_bench: " << argv[1] << ": no such folder, or no PNG pictures in it\n";
        return 2;
    }
    registerTranscodeBenchmarks(pictures);
    registerDXTnBenchmarks(pictures);
    registerETC1Benchmarks(pictures);
    registerMOKTCBenchmarks(pictures);
    registerMOKTCEncodeBenchmarks(pictures);
    registerAmtcEvaluationBenchmarks(pictures);
    registerAmtcBenchmarks(pictures);
    registerOperationBenchmarks(pictures);
    // The benchmark library does not know the folder argument: move it after the flags.
    std::rotate(argv + 1, argv + 2, argv + argc);
    int flags = argc - 1;
    benchmark::Initialize(&flags, argv);
    if (benchmark::ReportUnrecognizedArguments(flags, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
