// Fixed filters at 1920x1080 with replicated borders against the peer's Sobel,
// Scharr, Laplacian, box filter and Gaussian on the same frame.
#include <vector>

#include "common/bench_util.h"
#include "zevcv.h"

#ifdef ZEV_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

struct Frames {
    zb::Plane<Zev8u> src8, dst8;
    zb::Plane<Zev16s> dst16;
    zb::Plane<Zev32f> src32, dst32;
    std::vector<Zev8u> buffer;
    Frames() {
        src8.fill([](int x, int y) { return zb::scene(x, y); });
        src32.fill([](int x, int y) { return static_cast<float>(zb::scene(x, y)); });
        buffer.resize(64 << 20);  // any thread count of this machine
    }
};

Frames& frames() {
    static Frames f;
    return f;
}

constexpr ZeviSize kRoi{zb::kW, zb::kH};
constexpr int kRep = zevBorderReplicate;

void registerFixed() {
    Frames& f = frames();
    Zev8u* buf = f.buffer.data();

#define ZEV_8U16S(name, call)                                                                                    \
    zb::registerPair("zev", name, [&f, buf](benchmark::State&) {                                                 \
        call(f.src8.data, f.src8.step, f.dst16.data, f.dst16.step, kRoi, 33, kRep, 0, buf);                      \
    })
    ZEV_8U16S("sobel_dx_3x3_8u16s", zeviFilterSobelVertBorder_8u16s_C1R);
    ZEV_8U16S("sobel_dy_3x3_8u16s", zeviFilterSobelHorizBorder_8u16s_C1R);
    ZEV_8U16S("laplacian_3x3_8u16s", zeviFilterLaplacianBorder_8u16s_C1R);
#undef ZEV_8U16S
    zb::registerPair("zev", "sobel_dx_5x5_8u16s", [&f, buf](benchmark::State&) {
        zeviFilterSobelVertBorder_8u16s_C1R(f.src8.data, f.src8.step, f.dst16.data, f.dst16.step, kRoi, 55, kRep, 0,
                                            buf);
    });
    zb::registerPair("zev", "scharr_dx_8u16s", [&f, buf](benchmark::State&) {
        zeviFilterScharrVertBorder_8u16s_C1R(f.src8.data, f.src8.step, f.dst16.data, f.dst16.step, kRoi, kRep, 0, buf);
    });
    for (int mask : {33, 55}) {
        const char* n32 = mask == 33 ? "sobel_dx_3x3_32f" : "sobel_dx_5x5_32f";
        zb::registerPair("zev", n32, [&f, buf, mask](benchmark::State&) {
            zeviFilterSobelVertBorder_32f_C1R(f.src32.data, f.src32.step, f.dst32.data, f.dst32.step, kRoi, mask, kRep,
                                              0.0f, buf);
        });
        const char* nb = mask == 33 ? "blur_3x3_8u" : "blur_5x5_8u";
        zb::registerPair("zev", nb, [&f, buf, mask](benchmark::State&) {
            zeviFilterLowpassBorder_8u_C1R(f.src8.data, f.src8.step, f.dst8.data, f.dst8.step, kRoi, mask, kRep, 0, buf);
        });
    }

    // OpenCV's default sigma for these sizes, 0.3 ((k - 1) / 2 - 1) + 0.8.
    for (int k : {5, 7}) {
        const float sigma = 0.3f * ((k - 1) * 0.5f - 1.0f) + 0.8f;
        zb::registerPair("zev", k == 5 ? "gauss_5x5_32f" : "gauss_7x7_32f", [&f, buf, k, sigma](benchmark::State&) {
            zeviFilterGaussBorder_32f_C1R(f.src32.data, f.src32.step, f.dst32.data, f.dst32.step, kRoi, k, sigma, kRep,
                                          0.0f, buf);
        });
    }

#ifdef ZEV_HAVE_OPENCV
    for (int k : {5, 7}) {
        const double sigma = 0.3 * ((k - 1) * 0.5 - 1.0) + 0.8;
        zb::registerPair("peer", k == 5 ? "gauss_5x5_32f" : "gauss_7x7_32f", [&f, k, sigma](benchmark::State&) {
            cv::Mat s = f.src32.mat(CV_32FC1), d = f.dst32.mat(CV_32FC1);
            cv::GaussianBlur(s, d, cv::Size(k, k), sigma, sigma, cv::BORDER_REPLICATE);
        });
    }
    auto cvSobel = [&f](int depth, bool f32, int dx, int dy, int k) {
        return [&f, depth, f32, dx, dy, k](benchmark::State&) {
            cv::Mat s = f32 ? f.src32.mat(CV_32FC1) : f.src8.mat(CV_8UC1);
            cv::Mat d = f32 ? f.dst32.mat(CV_32FC1) : f.dst16.mat(CV_16SC1);
            cv::Sobel(s, d, depth, dx, dy, k, 1, 0, cv::BORDER_REPLICATE);
        };
    };
    zb::registerPair("peer", "sobel_dx_3x3_8u16s", cvSobel(CV_16S, false, 1, 0, 3));
    zb::registerPair("peer", "sobel_dy_3x3_8u16s", cvSobel(CV_16S, false, 0, 1, 3));
    zb::registerPair("peer", "sobel_dx_5x5_8u16s", cvSobel(CV_16S, false, 1, 0, 5));
    zb::registerPair("peer", "sobel_dx_3x3_32f", cvSobel(CV_32F, true, 1, 0, 3));
    zb::registerPair("peer", "sobel_dx_5x5_32f", cvSobel(CV_32F, true, 1, 0, 5));
    zb::registerPair("peer", "scharr_dx_8u16s", [&f](benchmark::State&) {
        cv::Mat s = f.src8.mat(CV_8UC1), d = f.dst16.mat(CV_16SC1);
        cv::Scharr(s, d, CV_16S, 1, 0, 1, 0, cv::BORDER_REPLICATE);
    });
    zb::registerPair("peer", "laplacian_3x3_8u16s", [&f](benchmark::State&) {
        cv::Mat s = f.src8.mat(CV_8UC1), d = f.dst16.mat(CV_16SC1);
        cv::Laplacian(s, d, CV_16S, 3, 1, 0, cv::BORDER_REPLICATE);
    });
    for (int k : {3, 5}) {
        zb::registerPair("peer", k == 3 ? "blur_3x3_8u" : "blur_5x5_8u", [&f, k](benchmark::State&) {
            cv::Mat s = f.src8.mat(CV_8UC1), d = f.dst8.mat(CV_8UC1);
            cv::blur(s, d, cv::Size(k, k), cv::Point(-1, -1), cv::BORDER_REPLICATE);
        });
    }
#endif
}

}  // namespace

ZEV_BENCH_MAIN(registerFixed)
