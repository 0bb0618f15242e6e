// Mean with standard deviation and extrema with locations at 1920x1080,
// with and without a mask, against the peer's meanStdDev and minMaxLoc.
#include "common/bench_util.h"
#include "zevcv.h"

#ifdef ZEV_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

namespace {

struct Data {
    zb::Plane<Zev8u> img8, mask;
    zb::Plane<Zev32f> img32;
    Data() {
        img8.fill([](int x, int y) { return zb::scene(x, y, 1); });
        img32.fill([](int x, int y) { return static_cast<float>(zb::scene(x, y, 2)) * 0.37f + 11.0f; });
        // About half the pixels, in irregular patches.
        mask.fill([](int x, int y) { return static_cast<Zev8u>(zb::scene(x / 4, y / 4, 3) < 128 ? 255 : 0); });
    }
};

Data& data() {
    static Data d;
    return d;
}

void registerAll() {
    Data& d = data();
    static const ZeviSize roi{zb::kW, zb::kH};
    static Zev64f mean, sd;
    static Zev32f lo, hi;
    static ZeviPoint at0, at1;

    zb::registerPair("zev", "meanStdDev_8u", [&](benchmark::State&) {
        zeviMean_StdDev_8u_C1R(d.img8.data, d.img8.step, roi, &mean, &sd);
    });
    zb::registerPair("zev", "meanStdDev_8u_mask", [&](benchmark::State&) {
        zeviMean_StdDev_8u_C1MR(d.img8.data, d.img8.step, d.mask.data, d.mask.step, roi, &mean, &sd);
    });
    zb::registerPair("zev", "meanStdDev_32f", [&](benchmark::State&) {
        zeviMean_StdDev_32f_C1R(d.img32.data, d.img32.step, roi, &mean, &sd);
    });
    zb::registerPair("zev", "meanStdDev_32f_mask", [&](benchmark::State&) {
        zeviMean_StdDev_32f_C1MR(d.img32.data, d.img32.step, d.mask.data, d.mask.step, roi, &mean, &sd);
    });
    zb::registerPair("zev", "minMaxLoc_8u", [&](benchmark::State&) {
        zeviMinMaxIndx_8u_C1R(d.img8.data, d.img8.step, roi, &lo, &hi, &at0, &at1);
    });
    zb::registerPair("zev", "minMaxLoc_8u_mask", [&](benchmark::State&) {
        zeviMinMaxIndx_8u_C1MR(d.img8.data, d.img8.step, d.mask.data, d.mask.step, roi, &lo, &hi, &at0, &at1);
    });
    zb::registerPair("zev", "minMaxLoc_32f", [&](benchmark::State&) {
        zeviMinMaxIndx_32f_C1R(d.img32.data, d.img32.step, roi, &lo, &hi, &at0, &at1);
    });
    zb::registerPair("zev", "minMaxLoc_32f_mask", [&](benchmark::State&) {
        zeviMinMaxIndx_32f_C1MR(d.img32.data, d.img32.step, d.mask.data, d.mask.step, roi, &lo, &hi, &at0, &at1);
    });

#ifdef ZEV_HAVE_OPENCV
    auto meanStd = [&d](bool f32, bool masked) {
        return [&d, f32, masked](benchmark::State&) {
            cv::Mat src = f32 ? d.img32.mat(CV_32FC1) : d.img8.mat(CV_8UC1);
            cv::Scalar m, s;
            if (masked) cv::meanStdDev(src, m, s, d.mask.mat(CV_8UC1));
            else cv::meanStdDev(src, m, s);
            benchmark::DoNotOptimize(m);
        };
    };
    auto minMax = [&d](bool f32, bool masked) {
        return [&d, f32, masked](benchmark::State&) {
            cv::Mat src = f32 ? d.img32.mat(CV_32FC1) : d.img8.mat(CV_8UC1);
            double a, b;
            cv::Point p, q;
            if (masked) cv::minMaxLoc(src, &a, &b, &p, &q, d.mask.mat(CV_8UC1));
            else cv::minMaxLoc(src, &a, &b, &p, &q);
            benchmark::DoNotOptimize(a);
        };
    };
    zb::registerPair("peer", "meanStdDev_8u", meanStd(false, false));
    zb::registerPair("peer", "meanStdDev_8u_mask", meanStd(false, true));
    zb::registerPair("peer", "meanStdDev_32f", meanStd(true, false));
    zb::registerPair("peer", "meanStdDev_32f_mask", meanStd(true, true));
    zb::registerPair("peer", "minMaxLoc_8u", minMax(false, false));
    zb::registerPair("peer", "minMaxLoc_8u_mask", minMax(false, true));
    zb::registerPair("peer", "minMaxLoc_32f", minMax(true, false));
    zb::registerPair("peer", "minMaxLoc_32f_mask", minMax(true, true));
#endif
}

}  // namespace

ZEV_BENCH_MAIN(registerAll)
