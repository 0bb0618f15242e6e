// Inner primitives on a 1920x1080 frame (vectors: one such frame's elements),
// beside memcpy, which no copy can pass, and OpenCV where it has the operation.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "frame/kernels/elementwise_ops.h"
#include "frame/kernels/rows_avx2.h"
#include "frame/prims.h"
#include "frame/kernels/simd.h"

#ifdef ZEV_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

constexpr int W = 1920, H = 1080;

template <class T>
std::vector<T> frame(int channels = 1) {
    std::vector<T> v(static_cast<std::size_t>(W) * H * channels);
    std::mt19937 g(1);
    for (auto& x : v) x = static_cast<T>(g() % 1000);
    return v;
}

void Memcpy8u(benchmark::State& st) {
    auto a = frame<std::uint8_t>(), b = a;
    for (auto _ : st) {
        for (int y = 0; y < H; ++y) std::memcpy(b.data() + y * W, a.data() + y * W, W);
        benchmark::ClobberMemory();
    }
}
void Copy8u(benchmark::State& st) {
    auto a = frame<Zev8u>(), b = a;
    for (auto _ : st) v8::zeviCopy_8u_C1R(a.data(), W, b.data(), W, ZeviSize{W, H});
}
void Copy32f(benchmark::State& st) {
    auto a = frame<Zev32f>(), b = a;
    for (auto _ : st) v8::zeviCopy_32f_C1R(a.data(), W * 4, b.data(), W * 4, ZeviSize{W, H});
}
void Memcpy32f(benchmark::State& st) {
    auto a = frame<Zev32f>(), b = a;
    for (auto _ : st) {
        for (int y = 0; y < H; ++y) std::memcpy(b.data() + y * W, a.data() + y * W, W * 4);
        benchmark::ClobberMemory();
    }
}
void Set8u(benchmark::State& st) {
    auto b = frame<Zev8u>();
    for (auto _ : st) v8::zeviSet_8u_C1R(b.data(), W, ZeviSize{W, H}, 7);
}
void ThresholdVal16u(benchmark::State& st) {
    auto a = frame<Zev16u>(), b = a;
    for (auto _ : st)
        v8::zeviThreshold_Val_16u_C1R(a.data(), W * 2, b.data(), W * 2, ZeviSize{W, H}, 500, 0, v8::zevCmpGreater);
}
void ThresholdVal8u(benchmark::State& st) {
    auto a = frame<Zev8u>(), b = a;
    for (auto _ : st)
        v8::zeviThreshold_Val_8u_C1R(a.data(), W, b.data(), W, ZeviSize{W, H}, 100, 0, v8::zevCmpGreater);
}
void Threshold32f(benchmark::State& st) {
    auto a = frame<Zev32f>(), b = a;
    for (auto _ : st) v8::zeviThreshold_32f_C1R(a.data(), W * 4, b.data(), W * 4, ZeviSize{W, H}, 500.f, 4);
}
void Sub8uSfs(benchmark::State& st) {
    auto a = frame<Zev8u>(), b = frame<Zev8u>(), d = a;
    for (auto _ : st) v8::zeviSub_8u_C1RSfs(a.data(), W, b.data(), W, d.data(), W, ZeviSize{W, H}, 1);
}
void Sub32f(benchmark::State& st) {
    auto a = frame<Zev32f>(), b = frame<Zev32f>(), d = a;
    for (auto _ : st) v8::zeviSub_32f_C1R(a.data(), W * 4, b.data(), W * 4, d.data(), W * 4, ZeviSize{W, H});
}
void MaxEvery8u(benchmark::State& st) {
    auto a = frame<Zev8u>(), b = frame<Zev8u>(), d = a;
    for (auto _ : st) v8::zevsMaxEvery_8u(a.data(), b.data(), d.data(), W * H);
}
void MulC16sSfs(benchmark::State& st) {
    auto a = frame<Zev16s>(), d = a;
    for (auto _ : st) v8::zevsMulC_16s_Sfs(a.data(), d.data(), W * H, 3, 2);
}
void Sqrt32f(benchmark::State& st) {
    auto a = frame<Zev32f>(), d = a;
    for (auto _ : st) v8::zevsSqrt_32f(a.data(), d.data(), W * H);
}
void ReplicateBorder8u(benchmark::State& st) {
    auto a = frame<Zev8u>();
    std::vector<Zev8u> d(static_cast<std::size_t>(W + 4) * (H + 4));
    for (auto _ : st)
        v8::zeviCopyReplicateBorder_8u_C1R(a.data(), W, ZeviSize{W, H}, d.data(), W + 4, ZeviSize{W + 4, H + 4}, 2, 2);
}
void Sort64f(benchmark::State& st) {
    std::vector<double> v(100000), w;
    std::mt19937 g(2);
    for (auto& x : v) x = g();
    for (auto _ : st) {
        w = v;
        v8::zevsSortAscend_64f_I(w.data(), static_cast<int>(w.size()));
    }
}

// One row, in the first cache level: where the register width shows.
template <class T, bool Wide>
void RowMaxEvery(benchmark::State& st) {
    const int n = static_cast<int>(st.range(0));
    std::vector<T> a(n + 64), b(n + 64), d(n + 64);
    std::mt19937 g(3);
    for (int i = 0; i < n; ++i) a[i] = static_cast<T>(g() % 200), b[i] = static_cast<T>(g() % 200);
    for (auto _ : st) {
        if constexpr (Wide) v8::ownMinMaxEvery_avx2<T, true>(a.data() + 1, b.data() + 1, d.data() + 1, n);
        else v8::kern::mapRow<false>(d.data() + 1, n, v8::kern::MinMaxEveryOp<T, true>{}, a.data() + 1, b.data() + 1);
        benchmark::ClobberMemory();
    }
}
template <bool Wide>
void RowSub32f(benchmark::State& st) {
    const int n = static_cast<int>(st.range(0));
    std::vector<float> a(n, 2.0f), b(n, 1.0f), d(n);
    for (auto _ : st) {
        if constexpr (Wide) v8::ownSub_32f_avx2(a.data(), b.data(), d.data(), n);
        else v8::kern::mapRow<false>(d.data(), n, v8::kern::SubOp_32f{}, a.data(), b.data());
        benchmark::ClobberMemory();
    }
}
template <class T, bool Wide>
void RowThresholdVal(benchmark::State& st) {
    const int n = static_cast<int>(st.range(0));
    std::vector<T> a(n + 64), d(n + 64);
    std::mt19937 g(4);
    for (auto& x : a) x = static_cast<T>(g());
    const T thr = static_cast<T>(100);
    for (auto _ : st) {
        if constexpr (Wide)
            v8::ownThresholdValRows_avx2<T, true, false>(a.data() + 1, n, d.data() + 1, n, n, 1, thr, 0);
        else
            v8::kern::mapRow<false>(d.data() + 1, n, v8::kern::ThresholdValOp<T, true>(thr, 0), a.data() + 1);
        benchmark::ClobberMemory();
    }
}
template <bool Wide>
void RowThreshold32f(benchmark::State& st) {
    const int n = static_cast<int>(st.range(0));
    std::vector<float> a(n + 64), d(n + 64);
    std::mt19937 g(4);
    for (auto& x : a) x = static_cast<float>(g() % 1000);
    for (auto _ : st) {
        if constexpr (Wide) v8::ownThresholdRows_32f_avx2<true>(a.data() + 1, n, d.data() + 1, n, n, 1, 500.f);
        else v8::kern::mapRow<false>(d.data() + 1, n, v8::kern::ThresholdOp_32f<true>(500.f), a.data() + 1);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(RowThresholdVal<Zev8u, false>)->Arg(1920);
BENCHMARK(RowThresholdVal<Zev8u, true>)->Arg(1920);
BENCHMARK(RowThresholdVal<Zev16u, false>)->Arg(1920);
BENCHMARK(RowThresholdVal<Zev16u, true>)->Arg(1920);
BENCHMARK(RowThreshold32f<false>)->Arg(1920);
BENCHMARK(RowThreshold32f<true>)->Arg(1920);

// Short rows, out of step with each other: the block copy against memcpy.
template <bool Lib>
void RowCopy8u(benchmark::State& st) {
    const int n = static_cast<int>(st.range(0));
    std::vector<std::uint8_t> a(n + 64, 1), d(n + 64);
    for (auto _ : st) {
        if constexpr (Lib) v8::zevsCopy_8u(a.data() + 1, d.data() + 3, n);
        else std::memcpy(d.data() + 3, a.data() + 1, n);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(RowMaxEvery<Zev8u, false>)->Arg(1920)->Arg(W * H);
BENCHMARK(RowMaxEvery<Zev8u, true>)->Arg(1920)->Arg(W * H);
BENCHMARK(RowMaxEvery<Zev32f, false>)->Arg(1920)->Arg(W * H);
BENCHMARK(RowMaxEvery<Zev32f, true>)->Arg(1920)->Arg(W * H);
BENCHMARK(RowMaxEvery<Zev16u, false>)->Arg(1920);
BENCHMARK(RowMaxEvery<Zev16u, true>)->Arg(1920);
BENCHMARK(RowMaxEvery<Zev64f, false>)->Arg(1920);
BENCHMARK(RowMaxEvery<Zev64f, true>)->Arg(1920);
BENCHMARK(RowSub32f<false>)->Arg(1920);
BENCHMARK(RowSub32f<true>)->Arg(1920);
BENCHMARK(RowCopy8u<false>)->Arg(1920)->Arg(100);
BENCHMARK(RowCopy8u<true>)->Arg(1920)->Arg(100);

BENCHMARK(Memcpy8u);
BENCHMARK(Copy8u);
BENCHMARK(Memcpy32f);
BENCHMARK(Copy32f);
BENCHMARK(Set8u);
BENCHMARK(ThresholdVal8u);
BENCHMARK(ThresholdVal16u);
BENCHMARK(Threshold32f);
BENCHMARK(Sub8uSfs);
BENCHMARK(Sub32f);
BENCHMARK(MaxEvery8u);
BENCHMARK(MulC16sSfs);
BENCHMARK(Sqrt32f);
BENCHMARK(ReplicateBorder8u);
BENCHMARK(Sort64f);

#ifdef ZEV_HAVE_OPENCV
void CvThreshold8u(benchmark::State& st) {
    auto a = frame<Zev8u>(), b = a;
    cv::Mat A(H, W, CV_8U, a.data()), B(H, W, CV_8U, b.data());
    for (auto _ : st) cv::threshold(A, B, 100, 0, cv::THRESH_TOZERO_INV);
}
void CvThreshold32f(benchmark::State& st) {
    auto a = frame<Zev32f>(), b = a;
    cv::Mat A(H, W, CV_32F, a.data()), B(H, W, CV_32F, b.data());
    for (auto _ : st) cv::threshold(A, B, 500, 0, cv::THRESH_TRUNC);
}
void CvSub32f(benchmark::State& st) {
    auto a = frame<Zev32f>(), b = frame<Zev32f>(), d = a;
    cv::Mat A(H, W, CV_32F, a.data()), B(H, W, CV_32F, b.data()), D(H, W, CV_32F, d.data());
    for (auto _ : st) cv::subtract(B, A, D);
}
void CvMax8u(benchmark::State& st) {
    auto a = frame<Zev8u>(), b = frame<Zev8u>(), d = a;
    cv::Mat A(1, W * H, CV_8U, a.data()), B(1, W * H, CV_8U, b.data()), D(1, W * H, CV_8U, d.data());
    for (auto _ : st) cv::max(A, B, D);
}
void CvSqrt32f(benchmark::State& st) {
    auto a = frame<Zev32f>(), d = a;
    cv::Mat A(1, W * H, CV_32F, a.data()), D(1, W * H, CV_32F, d.data());
    for (auto _ : st) cv::sqrt(A, D);
}
void CvReplicateBorder8u(benchmark::State& st) {
    auto a = frame<Zev8u>();
    cv::Mat A(H, W, CV_8U, a.data()), D(H + 4, W + 4, CV_8U);
    for (auto _ : st) cv::copyMakeBorder(A, D, 2, 2, 2, 2, cv::BORDER_REPLICATE);
}
BENCHMARK(CvThreshold8u);
BENCHMARK(CvThreshold32f);
BENCHMARK(CvSub32f);
BENCHMARK(CvMax8u);
BENCHMARK(CvSqrt32f);
BENCHMARK(CvReplicateBorder8u);
#endif

}  // namespace

BENCHMARK_MAIN();
