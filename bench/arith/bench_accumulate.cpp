// Accumulators at 1920x1080 against the peer's accumulate, accumulateSquare,
// accumulateProduct and accumulateWeighted, with and without a mask. Each call
// adds into the same accumulator; the values stay finite over any run length.
#include "common/bench_util.h"
#include "zevcv.h"

#ifdef ZEV_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

struct Frames {
    zb::Plane<Zev8u> a, b, mask;
    zb::Plane<Zev32f> fa, fb, acc;
    Frames() {
        a.fill([](int x, int y) { return zb::scene(x, y, 1); });
        b.fill([](int x, int y) { return zb::scene(x, y, 2); });
        // About half the pixels selected, in runs as a foreground mask has them.
        mask.fill([](int x, int y) { return static_cast<Zev8u>(zb::scene(x, y, 3) > 128 ? 255 : 0); });
        fa.fill([](int x, int y) { return zb::scene(x, y, 1) * 0.25f; });
        fb.fill([](int x, int y) { return zb::scene(x, y, 2) * 0.5f; });
        acc.fill([](int x, int y) { return static_cast<float>(zb::scene(x, y, 4)); });
    }
};

void registerAll() {
    static Frames f;
    static const ZeviSize roi{zb::kW, zb::kH};
    const float alpha = 0.05f;

    zb::registerPair("zev", "accumulate_8u", [](benchmark::State&) {
        zeviAdd_8u32f_C1IR(f.a.data, f.a.step, f.acc.data, f.acc.step, roi);
    });
    zb::registerPair("zev", "accumulate_8u_masked", [](benchmark::State&) {
        zeviAdd_8u32f_C1IMR(f.a.data, f.a.step, f.mask.data, f.mask.step, f.acc.data, f.acc.step, roi);
    });
    zb::registerPair("zev", "accumulateSquare_8u", [](benchmark::State&) {
        zeviAddSquare_8u32f_C1IR(f.a.data, f.a.step, f.acc.data, f.acc.step, roi);
    });
    zb::registerPair("zev", "accumulateSquare_8u_masked", [](benchmark::State&) {
        zeviAddSquare_8u32f_C1IMR(f.a.data, f.a.step, f.mask.data, f.mask.step, f.acc.data, f.acc.step, roi);
    });
    zb::registerPair("zev", "accumulateProduct_8u", [](benchmark::State&) {
        zeviAddProduct_8u32f_C1IR(f.a.data, f.a.step, f.b.data, f.b.step, f.acc.data, f.acc.step, roi);
    });
    zb::registerPair("zev", "accumulateProduct_8u_masked", [](benchmark::State&) {
        zeviAddProduct_8u32f_C1IMR(f.a.data, f.a.step, f.b.data, f.b.step, f.mask.data, f.mask.step, f.acc.data,
                                   f.acc.step, roi);
    });
    zb::registerPair("zev", "accumulateWeighted_8u", [alpha](benchmark::State&) {
        zeviAddWeighted_8u32f_C1IR(f.a.data, f.a.step, f.acc.data, f.acc.step, roi, alpha);
    });
    zb::registerPair("zev", "accumulateWeighted_8u_masked", [alpha](benchmark::State&) {
        zeviAddWeighted_8u32f_C1IMR(f.a.data, f.a.step, f.mask.data, f.mask.step, f.acc.data, f.acc.step, roi, alpha);
    });
    zb::registerPair("zev", "accumulateWeighted_32f", [alpha](benchmark::State&) {
        zeviAddWeighted_32f_C1IR(f.fa.data, f.fa.step, f.acc.data, f.acc.step, roi, alpha);
    });
    zb::registerPair("zev", "accumulateProduct_32f_masked", [](benchmark::State&) {
        zeviAddProduct_32f_C1IMR(f.fa.data, f.fa.step, f.fb.data, f.fb.step, f.mask.data, f.mask.step, f.acc.data,
                                 f.acc.step, roi);
    });

#ifdef ZEV_HAVE_OPENCV
    zb::registerPair("peer", "accumulate_8u", [](benchmark::State&) {
        cv::Mat acc = f.acc.mat(CV_32FC1);
        cv::accumulate(f.a.mat(CV_8UC1), acc);
    });
    zb::registerPair("peer", "accumulate_8u_masked", [](benchmark::State&) {
        cv::Mat acc = f.acc.mat(CV_32FC1);
        cv::accumulate(f.a.mat(CV_8UC1), acc, f.mask.mat(CV_8UC1));
    });
    zb::registerPair("peer", "accumulateSquare_8u", [](benchmark::State&) {
        cv::Mat acc = f.acc.mat(CV_32FC1);
        cv::accumulateSquare(f.a.mat(CV_8UC1), acc);
    });
    zb::registerPair("peer", "accumulateSquare_8u_masked", [](benchmark::State&) {
        cv::Mat acc = f.acc.mat(CV_32FC1);
        cv::accumulateSquare(f.a.mat(CV_8UC1), acc, f.mask.mat(CV_8UC1));
    });
    zb::registerPair("peer", "accumulateProduct_8u", [](benchmark::State&) {
        cv::Mat acc = f.acc.mat(CV_32FC1);
        cv::accumulateProduct(f.a.mat(CV_8UC1), f.b.mat(CV_8UC1), acc);
    });
    zb::registerPair("peer", "accumulateProduct_8u_masked", [](benchmark::State&) {
        cv::Mat acc = f.acc.mat(CV_32FC1);
        cv::accumulateProduct(f.a.mat(CV_8UC1), f.b.mat(CV_8UC1), acc, f.mask.mat(CV_8UC1));
    });
    zb::registerPair("peer", "accumulateWeighted_8u", [alpha](benchmark::State&) {
        cv::Mat acc = f.acc.mat(CV_32FC1);
        cv::accumulateWeighted(f.a.mat(CV_8UC1), acc, alpha);
    });
    zb::registerPair("peer", "accumulateWeighted_8u_masked", [alpha](benchmark::State&) {
        cv::Mat acc = f.acc.mat(CV_32FC1);
        cv::accumulateWeighted(f.a.mat(CV_8UC1), acc, alpha, f.mask.mat(CV_8UC1));
    });
    zb::registerPair("peer", "accumulateWeighted_32f", [alpha](benchmark::State&) {
        cv::Mat acc = f.acc.mat(CV_32FC1);
        cv::accumulateWeighted(f.fa.mat(CV_32FC1), acc, alpha);
    });
    zb::registerPair("peer", "accumulateProduct_32f_masked", [](benchmark::State&) {
        cv::Mat acc = f.acc.mat(CV_32FC1);
        cv::accumulateProduct(f.fa.mat(CV_32FC1), f.fb.mat(CV_32FC1), acc, f.mask.mat(CV_8UC1));
    });
#endif
}

}  // namespace

ZEV_BENCH_MAIN(registerAll)
