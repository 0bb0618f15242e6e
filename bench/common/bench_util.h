// Shared pieces of the benchmarks: the 1920x1080 test frames, thread control,
// and the ratio line against the peer library.
//
// Each benchmark family registers pairs: zev/<name>/threads:N and
// peer/<name>/threads:N on the same data. After the run, printRatios() prints
// zev time / peer time per pair (<= 1.00 means zevcv is as fast or faster).
#pragma once

#include <benchmark/benchmark.h>
#include <omp.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#ifdef ZEV_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

namespace zb {

constexpr int kW = 1920, kH = 1080;

// A plane of kW x kH elements with a step that is a multiple of 64 bytes.
template <class T>
struct Plane {
    int width = kW, height = kH, channels = 1;
    int step = 0;  // bytes
    std::vector<std::uint8_t> storage;
    T* data = nullptr;
    explicit Plane(int ch = 1, int w = kW, int h = kH) : width(w), height(h), channels(ch) {
        step = static_cast<int>((w * ch * sizeof(T) + 63) / 64 * 64);
        storage.resize(static_cast<std::size_t>(step) * h + 64);
        std::uintptr_t p = reinterpret_cast<std::uintptr_t>(storage.data());
        data = reinterpret_cast<T*>(storage.data() + ((64 - (p & 63)) & 63));
    }
    T* row(int y) { return reinterpret_cast<T*>(reinterpret_cast<std::uint8_t*>(data) + static_cast<std::size_t>(y) * step); }
    template <class Gen>
    void fill(Gen gen) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width * channels; ++x) row(y)[x] = gen(x, y);
    }
#ifdef ZEV_HAVE_OPENCV
    // The same memory seen as an OpenCV matrix.
    cv::Mat mat(int cvType) { return cv::Mat(height, width, cvType, data, static_cast<std::size_t>(step)); }
#endif
};

// Natural-looking 8-bit content: smooth gradients plus noise.
inline std::uint8_t scene(int x, int y, unsigned seed = 1) {
    unsigned h = (static_cast<unsigned>(x) * 73856093u) ^ (static_cast<unsigned>(y) * 19349663u) ^ (seed * 83492791u);
    h ^= h >> 13;
    int v = ((x + 2 * y) * static_cast<int>(seed + 1)) / 16 + static_cast<int>(h % 23);
    return static_cast<std::uint8_t>(v & 255);
}

// Sets both libraries to n threads for one benchmark run.
inline void setThreads(int n) {
    omp_set_num_threads(n);
#ifdef ZEV_HAVE_OPENCV
    cv::setNumThreads(n);
#endif
}

// Collects per-benchmark times so the ratio can be printed at the end.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const auto& r : runs)
            if (r.run_type == Run::RT_Iteration && !r.error_occurred)
                times_[r.benchmark_name()] = r.GetAdjustedRealTime();
        ConsoleReporter::ReportRuns(runs);
    }
    void printRatios() const {
        std::printf("\n%-48s %12s %12s %8s\n", "operation/threads", "zevcv us", "peer us", "ratio");
        for (const auto& [name, t] : times_) {
            if (name.rfind("zev/", 0) != 0) continue;
            std::string key = name.substr(4);
            auto it = times_.find("peer/" + key);
            auto mc = times_.find("memcpy/" + key);
            if (it != times_.end())
                std::printf("%-48s %12.1f %12.1f %8.2f\n", key.c_str(), t, it->second, t / it->second);
            else if (mc != times_.end())
                std::printf("%-48s %12.1f %12s %8s  (memcpy %.1f us)\n", key.c_str(), t, "-", "-", mc->second);
            else
                std::printf("%-48s %12.1f %12s %8s\n", key.c_str(), t, "-", "-");
        }
        for (const auto& [name, t] : times_)
            if (name.rfind("memcpy/", 0) == 0) std::printf("%-48s %12.1f  (bandwidth reference)\n", name.c_str(), t);
    }

private:
    std::map<std::string, double> times_;  // microseconds (every benchmark is registered in them)
};

// Registers fn under prefix/name for 1 and 2 threads, in microseconds.
template <class Fn>
void registerPair(const std::string& prefix, const std::string& name, Fn fn) {
    for (int threads : {1, 2}) {
        std::string full = prefix + "/" + name + "/threads:" + std::to_string(threads);
        benchmark::RegisterBenchmark(full.c_str(), [fn, threads](benchmark::State& st) {
            setThreads(threads);
            for (auto _ : st) fn(st);
        })->Unit(benchmark::kMicrosecond)->UseRealTime();
    }
}

}  // namespace zb

// main() for a benchmark binary whose registration happens in register_fn().
#define ZEV_BENCH_MAIN(register_fn)                                 \
    int main(int argc, char** argv) {                               \
        register_fn();                                              \
        benchmark::Initialize(&argc, argv);                         \
        zb::RatioReporter reporter;                                 \
        benchmark::RunSpecifiedBenchmarks(&reporter);               \
        reporter.printRatios();                                     \
        benchmark::Shutdown();                                      \
        return 0;                                                   \
    }
