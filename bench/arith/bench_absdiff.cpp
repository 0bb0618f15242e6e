// Absolute difference at 1920x1080 against the peer's absdiff and a memcpy of
// the same output bytes.
#include <cstring>

#include "common/bench_util.h"
#include "zevcv.h"

#ifdef ZEV_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

namespace {

template <class T>
struct Frames {
    zb::Plane<T> a, b, d;
    Frames(int ch, unsigned seedA, unsigned seedB) : a(ch), b(ch), d(ch) {
        a.fill([&](int x, int y) { return static_cast<T>(zb::scene(x, y, seedA) * (sizeof(T) == 2 ? 257 : 1)); });
        b.fill([&](int x, int y) { return static_cast<T>(zb::scene(x, y, seedB) * (sizeof(T) == 2 ? 257 : 1)); });
    }
};

template <class T>
Frames<T>& frames(int ch) {
    static Frames<T> f1(1, 1, 2), f3(3, 1, 2);
    return ch == 3 ? f3 : f1;
}

void registerAll() {
    auto& f8 = frames<Zev8u>(1);
    auto& f8c3 = frames<Zev8u>(3);
    auto& f16 = frames<Zev16u>(1);
    auto& f32 = frames<Zev32f>(1);
    static const ZeviSize roi{zb::kW, zb::kH};

    zb::registerPair("zev", "absdiff_8u_C1", [&](benchmark::State&) {
        zeviAbsDiff_8u_C1R(f8.a.data, f8.a.step, f8.b.data, f8.b.step, f8.d.data, f8.d.step, roi);
    });
    zb::registerPair("zev", "absdiff_8u_C3", [&](benchmark::State&) {
        zeviAbsDiff_8u_C3R(f8c3.a.data, f8c3.a.step, f8c3.b.data, f8c3.b.step, f8c3.d.data, f8c3.d.step, roi);
    });
    zb::registerPair("zev", "absdiff_16u_C1", [&](benchmark::State&) {
        zeviAbsDiff_16u_C1R(f16.a.data, f16.a.step, f16.b.data, f16.b.step, f16.d.data, f16.d.step, roi);
    });
    zb::registerPair("zev", "absdiff_32f_C1", [&](benchmark::State&) {
        zeviAbsDiff_32f_C1R(f32.a.data, f32.a.step, f32.b.data, f32.b.step, f32.d.data, f32.d.step, roi);
    });
    zb::registerPair("zev", "absdiffC_8u_C1", [&](benchmark::State&) {
        zeviAbsDiffC_8u_C1R(f8.a.data, f8.a.step, f8.d.data, f8.d.step, roi, 77);
    });
    zb::registerPair("zev", "absdiffC_16u_C1", [&](benchmark::State&) {
        zeviAbsDiffC_16u_C1R(f16.a.data, f16.a.step, f16.d.data, f16.d.step, roi, 30000);
    });
    zb::registerPair("zev", "absdiffC_32f_C1", [&](benchmark::State&) {
        zeviAbsDiffC_32f_C1R(f32.a.data, f32.a.step, f32.d.data, f32.d.step, roi, 12.5f);
    });

    // Bandwidth floor: copying the output's bytes from one input.
    auto copy = [](auto& f) {
        return [&f](benchmark::State&) {
            std::memcpy(f.d.data, f.a.data, static_cast<std::size_t>(f.a.step) * f.a.height);
            benchmark::ClobberMemory();
        };
    };
    for (const char* n : {"absdiff_8u_C1", "absdiffC_8u_C1"}) zb::registerPair("memcpy", n, copy(f8));
    zb::registerPair("memcpy", "absdiff_8u_C3", copy(f8c3));
    for (const char* n : {"absdiff_16u_C1", "absdiffC_16u_C1"}) zb::registerPair("memcpy", n, copy(f16));
    for (const char* n : {"absdiff_32f_C1", "absdiffC_32f_C1"}) zb::registerPair("memcpy", n, copy(f32));

#ifdef ZEV_HAVE_OPENCV
    auto peer = [](auto& f, int type) {
        return [&f, type](benchmark::State&) {
            cv::Mat a = f.a.mat(type), b = f.b.mat(type), d = f.d.mat(type);
            cv::absdiff(a, b, d);
        };
    };
    zb::registerPair("peer", "absdiff_8u_C1", peer(f8, CV_8UC1));
    zb::registerPair("peer", "absdiff_8u_C3", peer(f8c3, CV_8UC3));
    zb::registerPair("peer", "absdiff_16u_C1", peer(f16, CV_16UC1));
    zb::registerPair("peer", "absdiff_32f_C1", peer(f32, CV_32FC1));
    zb::registerPair("peer", "absdiffC_8u_C1", [&](benchmark::State&) {
        cv::Mat a = f8.a.mat(CV_8UC1), d = f8.d.mat(CV_8UC1);
        cv::absdiff(a, cv::Scalar(77), d);
    });
    zb::registerPair("peer", "absdiffC_16u_C1", [&](benchmark::State&) {
        cv::Mat a = f16.a.mat(CV_16UC1), d = f16.d.mat(CV_16UC1);
        cv::absdiff(a, cv::Scalar(30000), d);
    });
    zb::registerPair("peer", "absdiffC_32f_C1", [&](benchmark::State&) {
        cv::Mat a = f32.a.mat(CV_32FC1), d = f32.d.mat(CV_32FC1);
        cv::absdiff(a, cv::Scalar(12.5), d);
    });
#endif
}

}  // namespace

ZEV_BENCH_MAIN(registerAll)
