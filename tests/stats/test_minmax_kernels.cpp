// The vector kernels of both widths against the generic ones: the public
// entries only reach the widest path the processor has, so the narrower one is
// checked here directly.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "common/guarded.h"
#include "stats/kernels/mean.h"
#include "stats/kernels/minmax.h"

namespace {

using v8::stat::C1;
using v8::stat::C3C;

bool hasAvx2() { return __builtin_cpu_supports("avx2"); }

template <class T>
bool sameStage(const v8::MinMaxStage<T>& a, const v8::MinMaxStage<T>& b) {
    return std::memcmp(&a.minVal, &b.minVal, sizeof a.minVal) == 0 &&
           std::memcmp(&a.maxVal, &b.maxVal, sizeof a.maxVal) == 0 && a.minRow == b.minRow &&
           a.maxRow == b.maxRow && a.found == b.found;
}

bool sameSums(const v8::IntSums& a, const v8::IntSums& b) {
    return a.sum == b.sum && a.sq == b.sq && a.count == b.count;
}

float oddFloat(zt::Rng& rng) {
    switch (rng.uniform(0, 9)) {
        case 0: return std::numeric_limits<float>::quiet_NaN();
        case 1: return -0.0f;
        case 2: return 0.0f;
        default: return static_cast<float>(rng.uniform(-4, 4));
    }
}

// 8u kernels of one layout: the generic first stage and sums against the vector ones.
template <class L, bool Masked>
void compare8u(int w, int h, int off, zt::Rng& rng) {
    zt::Image<Zev8u> img(w, h, L::ch, 0, off);
    img.fill([&] { return static_cast<Zev8u>(rng.uniform(0, 255)); });
    zt::Image<Zev8u> mask(w, h, 1, 1, off);
    mask.fill([&] { return static_cast<Zev8u>(rng.uniform(0, 3) == 0 ? 0 : 9); });
    const Zev8u* m = Masked ? mask.ptr() : nullptr;
    for (int coi = 0; coi < L::ch; ++coi) {
        const Zev8u* p = img.ptr() + coi;
        auto g = v8::ownMinMaxIndx_1<Zev8u, L, Masked>(p, img.step(), m, mask.step(), w, h);
        EXPECT_TRUE(sameStage(g, v8::ownMinMaxIndx_V8_1<Zev8u, L, Masked>(p, img.step(), m, mask.step(), w, h)))
            << "8u stage ch=" << L::ch << " w=" << w << " masked=" << Masked;
        auto gs = v8::ownSumSqInt<Zev8u, L, Masked>(p, img.step(), m, mask.step(), w, h);
        EXPECT_TRUE(sameSums(gs, v8::ownSumSq_8u_V8<L, Masked>(p, img.step(), m, mask.step(), w, h)))
            << "8u sums ch=" << L::ch << " w=" << w;
        if constexpr (L::ch == 1) {
            if (hasAvx2()) {
                EXPECT_TRUE(sameStage(g, v8::ownMinMaxIndx_C1_avx2_1<Zev8u, Masked>(p, img.step(), m, mask.step(), w, h)))
                    << "8u avx2 stage w=" << w;
                EXPECT_TRUE(sameSums(gs, v8::ownSumSq_8u_C1_avx2<Masked>(p, img.step(), m, mask.step(), w, h)))
                    << "8u avx2 sums w=" << w;
            }
        }
    }
}

template <bool Masked>
void compare32f(int w, int h, int off, zt::Rng& rng) {
    zt::Image<Zev32f> img(w, h, 1, 3, off);
    img.fill([&] { return oddFloat(rng); });
    zt::Image<Zev8u> mask(w, h, 1, 1, off);
    mask.fill([&] { return static_cast<Zev8u>(rng.uniform(0, 3) == 0 ? 0 : 9); });
    const Zev8u* m = Masked ? mask.ptr() : nullptr;
    auto g = v8::ownMinMaxIndx_1<Zev32f, C1, Masked>(img.ptr(), img.step(), m, mask.step(), w, h);
    EXPECT_TRUE(sameStage(g, v8::ownMinMaxIndx_V8_1<Zev32f, C1, Masked>(img.ptr(), img.step(), m, mask.step(), w, h)))
        << "32f w=" << w << " masked=" << Masked;
    if (hasAvx2())
        EXPECT_TRUE(sameStage(g, v8::ownMinMaxIndx_C1_avx2_1<Zev32f, Masked>(img.ptr(), img.step(), m, mask.step(), w, h)))
            << "32f avx2 w=" << w;
}

TEST(StatKernels, VectorWidthsAgreeWithGeneric) {
    zt::Rng rng(21);
    for (int w = 1; w <= 140; ++w)
        for (int off : {0, 3}) {
            const int h = 1 + w % 4;
            compare8u<C1, false>(w, h, off, rng);
            compare8u<C1, true>(w, h, off, rng);
            compare8u<C3C, false>(w, h, off, rng);
            compare8u<C3C, true>(w, h, off, rng);
            compare32f<false>(w, h, off, rng);
            compare32f<true>(w, h, off, rng);
        }
}

// Rows that end exactly where their allocation ends: a vector load past the
// last pixel's element would leave the block (the sanitizer build reports it).
TEST(StatKernels, ThreeChannelRowsEndWhereTheBlockEnds) {
    zt::Rng rng(22);
    for (int w = 1; w <= 60; ++w)
        for (int coi = 0; coi < 3; ++coi) {
            std::vector<Zev8u> px(static_cast<std::size_t>(w) * 3);
            for (auto& v : px) v = static_cast<Zev8u>(rng.uniform(0, 255));
            std::vector<Zev8u> on(static_cast<std::size_t>(w), 1);
            const Zev8u* p = px.data() + coi;
            auto g = v8::ownMinMaxIndx_1<Zev8u, C3C, false>(p, w * 3, nullptr, 0, w, 1);
            EXPECT_TRUE(sameStage(g, v8::ownMinMaxIndx_V8_1<Zev8u, C3C, false>(p, w * 3, nullptr, 0, w, 1)));
            EXPECT_TRUE(sameStage(g, v8::ownMinMaxIndx_V8_1<Zev8u, C3C, true>(p, w * 3, on.data(), w, w, 1)));
            auto gs = v8::ownSumSqInt<Zev8u, C3C, false>(p, w * 3, nullptr, 0, w, 1);
            EXPECT_TRUE(sameSums(gs, v8::ownSumSq_8u_V8<C3C, false>(p, w * 3, nullptr, 0, w, 1)));
        }
}

// Long 8u rows: the 32-bit square lanes are flushed before they overflow.
TEST(StatKernels, LongRowSquareSums) {
    const int w = 300000;
    zt::Image<Zev8u> img(w, 1);
    img.fill([] { return Zev8u{255}; });
    const unsigned long long want = 255ull * 255ull * w;
    EXPECT_EQ((v8::ownSumSq_8u_V8<C1, false>(img.ptr(), img.step(), nullptr, 0, w, 1).sq), want);
    EXPECT_EQ((v8::ownSumSqInt<Zev8u, C1, false>(img.ptr(), img.step(), nullptr, 0, w, 1).sq), want);
    if (hasAvx2()) EXPECT_EQ((v8::ownSumSq_8u_C1_avx2<false>(img.ptr(), img.step(), nullptr, 0, w, 1).sq), want);
}

}  // namespace
