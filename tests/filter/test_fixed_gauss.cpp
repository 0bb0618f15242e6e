// Gaussian of odd size on float images against a direct model: the weights
// from their formula, rows summed left to right from tap 0 with the row border,
// columns summed from tap 0 over row-filtered rows, the constant border being
// the border value itself.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "common/guarded.h"
#include "filter/fixed_reference.h"

namespace {

std::vector<float> weights(int K, float sigma) {
    std::vector<float> w(K);
    float sum = 0.0f;
    for (int i = 0; i < K; ++i) {
        float t = static_cast<float>(i - K / 2);
        w[i] = static_cast<float>(std::exp((0.0 - t * t) / ((sigma + sigma) * sigma)));
        sum += w[i];
    }
    for (float& v : w) v /= sum;
    return w;
}

std::vector<float> gaussModel(const float* src, int step, int w, int h, int K, float sigma, int border, float value) {
    using fixedref::extend;
    const std::vector<float> k = weights(K, sigma);
    const int a = K / 2;
    int code = border & 15;
    if (h == 1 && code != zevBorderConst) code = zevBorderReplicate;
    const bool top = border & 0x10, bottom = border & 0x20;
    auto rowValue = [&](int y, int x) {
        float acc = 0.0f;
        for (int i = 0; i < K; ++i) {
            int sx = extend(x - a + i, w, code, false, false, false);
            float s = sx == fixedref::kConst ? value : fixedref::px(src, step, sx, y);
            acc = i == 0 ? k[0] * s : acc + k[i] * s;
        }
        return acc;
    };
    std::vector<float> out(static_cast<std::size_t>(w) * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            float acc = 0.0f;
            for (int t = 0; t < K; ++t) {
                int sy = extend(y - a + t, h, code, top, bottom, true);
                float r = sy == fixedref::kConst ? value : rowValue(sy, x);
                acc = t == 0 ? k[0] * r : acc + k[t] * r;
            }
            out[static_cast<std::size_t>(y) * w + x] = acc;
        }
    return out;
}

struct GaussCase {
    int K;
    float sigma;
    int border;
};

class GaussExact : public ::testing::TestWithParam<GaussCase> {};

TEST_P(GaussExact, MatchesModelOverSizes) {
    const GaussCase& c = GetParam();
    zt::Rng rng(static_cast<std::uint32_t>(c.K * 1000 + c.border));
    const int margin = c.K / 2;
    for (int w : {1, 2, 3, 5, 8, 9, 17, 33, 70})
        for (int h : {1, 2, 4, 11}) {
            zt::Image<float> big(w + 2 * margin, h + 2 * margin, 1, (w + h) % 3, (w * h) % 4);
            big.fill([&] { return rng.uniformf(-10.0f, 10.0f); });
            const float* src = &big.at(margin, margin);
            zt::Image<float> dst(w, h, 1, 2, h % 4);
            int n = 0;
            ASSERT_EQ(zeviFilterGaussGetBufferSize_32f_C1R(dst.size(), c.K, &n), zevStsNoError);
            zt::Image<Zev8u> buf(n, 1, 1, 0, 3);
            ASSERT_EQ(zeviFilterGaussBorder_32f_C1R(src, big.step(), dst.ptr(), dst.step(), dst.size(), c.K, c.sigma,
                                                    c.border, 2.5f, buf.ptr()),
                      zevStsNoError);
            const std::string what = "w=" + std::to_string(w) + " h=" + std::to_string(h);
            ASSERT_TRUE(dst.guardsIntact()) << what;
            ASSERT_TRUE(buf.guardsIntact()) << what << ": wrote past the reported buffer";
            ASSERT_TRUE(zt::sameBits(dst.pixels(), gaussModel(src, big.step(), w, h, c.K, c.sigma, c.border, 2.5f)))
                << what;
        }
}

INSTANTIATE_TEST_SUITE_P(Cases, GaussExact,
                         ::testing::Values(GaussCase{3, 0.8f, zevBorderReplicate}, GaussCase{3, 100.0f, zevBorderConst},
                                           GaussCase{5, 1.1f, zevBorderWrap}, GaussCase{5, 1.5f, zevBorderMirror},
                                           GaussCase{7, 2.0f, zevBorderMirrorR},
                                           GaussCase{7, 1.2f, 0x10 | zevBorderConst},
                                           GaussCase{9, 3.0f, 0x20 | zevBorderMirror},
                                           GaussCase{5, 0.9f, 0x30 | zevBorderWrap}));

TEST(GaussValues, LargeSigmaGivesNearlyEqualThirds) {
    zt::Image<float> src(5, 3), dst(5, 3);
    src.fill([] { return 3.0f; });
    int n = 0;
    ASSERT_EQ(zeviFilterGaussGetBufferSize_32f_C1R(src.size(), 3, &n), zevStsNoError);
    std::vector<Zev8u> buf(n);
    ASSERT_EQ(zeviFilterGaussBorder_32f_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), 3, 1e4f,
                                            zevBorderReplicate, 0.0f, buf.data()),
              zevStsNoError);
    for (float v : dst.pixels()) EXPECT_NEAR(v, 3.0f, 1e-5f);
}

struct GaussBad {
    const char* name;
    bool nullSrc;
    ZeviSize roi;
    int srcStep, K, border;
    ZevStatus want;
};

class GaussArgs : public ::testing::TestWithParam<GaussBad> {};

TEST_P(GaussArgs, ReportsTheFirstFaultAndWritesNothing) {
    const GaussBad& b = GetParam();
    zt::Image<float> src(8, 4), dst(8, 4);
    std::vector<Zev8u> buf(1 << 16, 0);
    dst.snapshot();
    ZevStatus st = zeviFilterGaussBorder_32f_C1R(b.nullSrc ? nullptr : src.ptr(), b.srcStep, dst.ptr(), dst.step(),
                                                 b.roi, b.K, 1.0f, b.border, 0.0f, buf.data());
    EXPECT_EQ(st, b.want);
    EXPECT_TRUE(dst.unchanged());
}

INSTANTIATE_TEST_SUITE_P(
    Order, GaussArgs,
    ::testing::Values(GaussBad{"Null", true, {0, 4}, 32, 3, 1, zevStsNullPointer},
                      GaussBad{"ZeroHeight", false, {8, 0}, 1, 3, 1, zevStsBadSize},
                      GaussBad{"StepBelowWidthInPixels", false, {8, 4}, 7, 3, 1, zevStsBadStep},
                      // a step of width bytes passes the step test; the kernel size fails
                      GaussBad{"StepOfWidthBytesThenEvenKernel", false, {8, 4}, 8, 4, 1, zevStsBadArgument},
                      GaussBad{"KernelOne", false, {8, 4}, 32, 1, 1, zevStsBadArgument},
                      GaussBad{"LeftFlag", false, {8, 4}, 32, 3, 0x41, zevStsBadArgument},
                      GaussBad{"InMemCode", false, {8, 4}, 32, 3, 6, zevStsBadArgument}),
    [](const ::testing::TestParamInfo<GaussBad>& i) { return std::string(i.param.name); });

TEST(GaussBufferSize, ReportsTheExactSize) {
    zt::Threads scope(1);
    int n = 0;
    // V = U = 16, Q = 8: 320 + 32 + 32 + 640 + 64 + R (32 + 40 + 384 + 16) + 96 + 40 + 32
    ASSERT_EQ(zeviFilterGaussGetBufferSize_32f_C1R({10, 3}, 5, &n), zevStsNoError);
    EXPECT_EQ(n, 1728);
    EXPECT_EQ(zeviFilterGaussGetBufferSize_32f_C1R({10, 3}, 5, nullptr), zevStsNullPointer);
    EXPECT_EQ(zeviFilterGaussGetBufferSize_32f_C1R({0, 3}, 5, &n), zevStsBadSize);
}

}  // namespace
