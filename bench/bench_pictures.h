#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A picture that the benchmarks work on: `width * height` pixels of four bytes, red first. Sides are multiples of 4.
struct BenchPicture {
    std::string name;
    std::uint32_t width;
    std::uint32_t height;
    std::vector<std::uint8_t> rgba;
};

/// Registers the benchmark "GROUP/memcpy/PICTURE", a copy of the picture, so that the group's results can be stated as ratios to
/// it.
void registerCopyBenchmark(const std::string& group, const BenchPicture& picture);

/// Each registers the benchmarks of one module. Every benchmark reports megapixels per second as the counter "Mpixels".
void registerTranscodeBenchmarks(const std::vector<BenchPicture>& pictures);
void registerDXTnBenchmarks(const std::vector<BenchPicture>& pictures);
void registerETC1Benchmarks(const std::vector<BenchPicture>& pictures);
void registerMOKTCBenchmarks(const std::vector<BenchPicture>& pictures);
void registerMOKTCEncodeBenchmarks(const std::vector<BenchPicture>& pictures);
void registerAmtcBenchmarks(const std::vector<BenchPicture>& pictures);
void registerAmtcEvaluationBenchmarks(const std::vector<BenchPicture>& pictures);
void registerOperationBenchmarks(const std::vector<BenchPicture>& pictures);

/// Sets the counter "Mpixels" of a finished benchmark.
namespace benchmark {
class State;
}
void countPixels(benchmark::State& state, std::uint64_t pixelsPerIteration);
