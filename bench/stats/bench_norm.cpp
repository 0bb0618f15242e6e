// Masked norms at 1920x1080 against the peer's cv::norm: of an image, of a
// difference, and relative, for 8u and 32f single-channel data.
#include <string>

#include "common/bench_util.h"
#include "zevcv.h"

#ifdef ZEV_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

namespace {

template <class T>
struct Frames {
    zb::Plane<T> a, b;
    zb::Plane<Zev8u> mask;
    Frames() {
        a.fill([](int x, int y) { return static_cast<T>(zb::scene(x, y, 1)); });
        b.fill([](int x, int y) { return static_cast<T>(zb::scene(x, y, 2)); });
        mask.fill([](int x, int y) { return static_cast<Zev8u>(zb::scene(x, y, 3) > 90 ? 255 : 0); });
    }
};

using NormFn8 = ZevStatus (*)(const Zev8u*, int, const Zev8u*, int, ZeviSize, Zev64f*);
using NormFn32 = ZevStatus (*)(const Zev32f*, int, const Zev8u*, int, ZeviSize, Zev64f*);
using Norm2Fn8 = ZevStatus (*)(const Zev8u*, int, const Zev8u*, int, const Zev8u*, int, ZeviSize, Zev64f*);
using Norm2Fn32 = ZevStatus (*)(const Zev32f*, int, const Zev32f*, int, const Zev8u*, int, ZeviSize, Zev64f*);

template <class T, class Fn>
void one(const std::string& name, Frames<T>& f, Fn fn, int cvNorm, int cvType) {
    static const ZeviSize roi{zb::kW, zb::kH};
    zb::registerPair("zev", name, [&f, fn](benchmark::State&) {
        Zev64f v;
        fn(f.a.data, f.a.step, f.mask.data, f.mask.step, roi, &v);
        benchmark::DoNotOptimize(v);
    });
#ifdef ZEV_HAVE_OPENCV
    zb::registerPair("peer", name, [&f, cvNorm, cvType](benchmark::State&) {
        double v = cv::norm(f.a.mat(cvType), cvNorm, f.mask.mat(CV_8UC1));
        benchmark::DoNotOptimize(v);
    });
#else
    (void)cvNorm;
    (void)cvType;
#endif
}

template <class T, class Fn>
void two(const std::string& name, Frames<T>& f, Fn fn, int cvNorm, int cvType) {
    static const ZeviSize roi{zb::kW, zb::kH};
    zb::registerPair("zev", name, [&f, fn](benchmark::State&) {
        Zev64f v;
        fn(f.a.data, f.a.step, f.b.data, f.b.step, f.mask.data, f.mask.step, roi, &v);
        benchmark::DoNotOptimize(v);
    });
#ifdef ZEV_HAVE_OPENCV
    zb::registerPair("peer", name, [&f, cvNorm, cvType](benchmark::State&) {
        double v = cv::norm(f.a.mat(cvType), f.b.mat(cvType), cvNorm, f.mask.mat(CV_8UC1));
        benchmark::DoNotOptimize(v);
    });
#else
    (void)cvNorm;
    (void)cvType;
#endif
}

#ifdef ZEV_HAVE_OPENCV
constexpr int kInf = cv::NORM_INF, kL1 = cv::NORM_L1, kL2 = cv::NORM_L2, kRel = cv::NORM_RELATIVE;
constexpr int k8u = CV_8UC1, k32f = CV_32FC1;
#else
constexpr int kInf = 1, kL1 = 2, kL2 = 4, kRel = 8, k8u = 0, k32f = 5;
#endif

void registerAll() {
    static Frames<Zev8u> f8;
    static Frames<Zev32f> f32;
    one("norm_Inf_8u_C1M", f8, NormFn8{zeviNorm_Inf_8u_C1MR}, kInf, k8u);
    one("norm_L1_8u_C1M", f8, NormFn8{zeviNorm_L1_8u_C1MR}, kL1, k8u);
    one("norm_L2_8u_C1M", f8, NormFn8{zeviNorm_L2_8u_C1MR}, kL2, k8u);
    two("normDiff_Inf_8u_C1M", f8, Norm2Fn8{zeviNormDiff_Inf_8u_C1MR}, kInf, k8u);
    two("normDiff_L1_8u_C1M", f8, Norm2Fn8{zeviNormDiff_L1_8u_C1MR}, kL1, k8u);
    two("normDiff_L2_8u_C1M", f8, Norm2Fn8{zeviNormDiff_L2_8u_C1MR}, kL2, k8u);
    two("normRel_L1_8u_C1M", f8, Norm2Fn8{zeviNormRel_L1_8u_C1MR}, kRel | kL1, k8u);
    two("normRel_L2_8u_C1M", f8, Norm2Fn8{zeviNormRel_L2_8u_C1MR}, kRel | kL2, k8u);
    one("norm_Inf_32f_C1M", f32, NormFn32{zeviNorm_Inf_32f_C1MR}, kInf, k32f);
    one("norm_L1_32f_C1M", f32, NormFn32{zeviNorm_L1_32f_C1MR}, kL1, k32f);
    one("norm_L2_32f_C1M", f32, NormFn32{zeviNorm_L2_32f_C1MR}, kL2, k32f);
    two("normDiff_L1_32f_C1M", f32, Norm2Fn32{zeviNormDiff_L1_32f_C1MR}, kL1, k32f);
    two("normDiff_L2_32f_C1M", f32, Norm2Fn32{zeviNormDiff_L2_32f_C1MR}, kL2, k32f);
    two("normRel_L2_32f_C1M", f32, Norm2Fn32{zeviNormRel_L2_32f_C1MR}, kRel | kL2, k32f);
}

}  // namespace

ZEV_BENCH_MAIN(registerAll)
