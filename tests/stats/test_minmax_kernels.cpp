// The vector kernels of both widths against the generic ones: the public
// entries only reach the widest path the processor has, so the narrower one is
// checked here directly.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "common/guarded.h"
#include "stats/kernels/mean.h"
#include "stats/kernels/minmax.h"

namespace {

bool hasAvx2() { return __builtin_cpu_supports("avx2"); }

template <class T>
bool sameStage(const v8::MinMaxStage<T>& a, const v8::MinMaxStage<T>& b) {
    return std::memcmp(&a.minVal, &b.minVal, sizeof a.minVal) == 0 &&
           std::memcmp(&a.maxVal, &b.maxVal, sizeof a.maxVal) == 0 && a.minRow == b.minRow &&
           a.maxRow == b.maxRow && a.found == b.found;
}

float oddFloat(zt::Rng& rng) {
    switch (rng.uniform(0, 9)) {
        case 0: return std::numeric_limits<float>::quiet_NaN();
        case 1: return -0.0f;
        case 2: return 0.0f;
        default: return static_cast<float>(rng.uniform(-4, 4));
    }
}

template <bool Masked>
void compareStages(int w, int h, int off, zt::Rng& rng) {
    zt::Image<Zev8u> img8(w, h, 1, 3, off);
    img8.fill([&] { return static_cast<Zev8u>(rng.uniform(0, 255)); });
    zt::Image<Zev32f> img32(w, h, 1, 3, off);
    img32.fill([&] { return oddFloat(rng); });
    zt::Image<Zev8u> mask(w, h, 1, 1, off);
    mask.fill([&] { return static_cast<Zev8u>(rng.uniform(0, 3) == 0 ? 0 : 9); });
    const Zev8u* m = Masked ? mask.ptr() : nullptr;
    auto g8 = v8::ownMinMaxIndx_1<Zev8u, v8::stat::C1, Masked>(img8.ptr(), img8.step(), m, mask.step(), w, h);
    auto s8 = v8::ownMinMaxIndx_C1_W7_1<Zev8u, Masked>(img8.ptr(), img8.step(), m, mask.step(), w, h);
    EXPECT_TRUE(sameStage(g8, s8)) << "8u w=" << w << " masked=" << Masked;
    auto g32 = v8::ownMinMaxIndx_1<Zev32f, v8::stat::C1, Masked>(img32.ptr(), img32.step(), m, mask.step(), w, h);
    auto s32 = v8::ownMinMaxIndx_C1_W7_1<Zev32f, Masked>(img32.ptr(), img32.step(), m, mask.step(), w, h);
    EXPECT_TRUE(sameStage(g32, s32)) << "32f w=" << w << " masked=" << Masked;
    if (hasAvx2()) {
        auto a8 = v8::ownMinMaxIndx_C1_avx2_1<Zev8u, Masked>(img8.ptr(), img8.step(), m, mask.step(), w, h);
        EXPECT_TRUE(sameStage(g8, a8)) << "8u avx2 w=" << w;
        auto a32 = v8::ownMinMaxIndx_C1_avx2_1<Zev32f, Masked>(img32.ptr(), img32.step(), m, mask.step(), w, h);
        EXPECT_TRUE(sameStage(g32, a32)) << "32f avx2 w=" << w;
    }
    // The 8u sums of both widths against the generic integer kernel.
    auto gs = v8::ownSumSqInt<Zev8u, v8::stat::C1, Masked>(img8.ptr(), img8.step(), m, mask.step(), w, h);
    auto ss = v8::ownSumSq_8u_C1_W7<Masked>(img8.ptr(), img8.step(), m, mask.step(), w, h);
    EXPECT_TRUE(gs.sum == ss.sum && gs.sq == ss.sq && gs.count == ss.count) << "sum8u w=" << w;
    if (hasAvx2()) {
        auto as = v8::ownSumSq_8u_C1_avx2<Masked>(img8.ptr(), img8.step(), m, mask.step(), w, h);
        EXPECT_TRUE(gs.sum == as.sum && gs.sq == as.sq && gs.count == as.count) << "sum8u avx2 w=" << w;
    }
}

TEST(StatKernels, VectorWidthsAgreeWithGeneric) {
    zt::Rng rng(21);
    for (int w = 1; w <= 140; ++w)
        for (int off : {0, 3}) {
            compareStages<false>(w, 1 + w % 4, off, rng);
            compareStages<true>(w, 1 + w % 4, off, rng);
        }
}

// Long 8u rows: the 32-bit square lanes are flushed before they overflow.
TEST(StatKernels, LongRowSquareSums) {
    const int w = 300000;
    zt::Image<Zev8u> img(w, 1);
    img.fill([] { return Zev8u{255}; });
    const unsigned long long want = 255ull * 255ull * w;
    EXPECT_EQ(v8::ownSumSq_8u_C1_W7<false>(img.ptr(), img.step(), nullptr, 0, w, 1).sq, want);
    auto generic = v8::ownSumSqInt<Zev8u, v8::stat::C1, false>;
    EXPECT_EQ(generic(img.ptr(), img.step(), nullptr, 0, w, 1).sq, want);
    if (hasAvx2()) EXPECT_EQ(v8::ownSumSq_8u_C1_avx2<false>(img.ptr(), img.step(), nullptr, 0, w, 1).sq, want);
}

}  // namespace
