// Fixed-weight column routines of the tables, by index, against the formulas
// evaluated plainly: 16-bit wrapping sums, the 8s rounding by column class, the
// Lowpass scalings, float left to right.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "common/guarded.h"
#include "filter/kernels/column_fixed.h"
#include "pipe_ref.h"

namespace {

// The formula of each index over one column: r(j) is row j, b(j) its second plane.
template <class T, class R, class B>
T formula(int index, bool floatTable, R r, B b) {
    auto c = [](int v) { return static_cast<T>(v); };
    switch (index) {
    case 0: return r(0) * c(3) + r(1) * c(10) + r(2) * c(3);
    case 1: return r(2) - r(0);
    case 2: return r(0) + r(1) * c(2) + r(2);
    case 3: return r(0) + r(1) * c(4) + r(2) * c(6) + r(3) * c(4) + r(4);
    case 4: return r(4) - r(0) + (r(3) - r(1)) * c(2);
    case 5: return r(0) - r(1) * c(2) + r(2);
    case 6: return r(0) - r(2) * c(2) + r(4);
    case 7: return (b(0, 0) + b(2, 0)) * c(2) - b(1, 1);
    case 8: return r(0) + r(1) * c(4) + r(2) * c(6) + r(3) * c(4) + r(4);
    case 9:
        if (floatTable) return (r(0) + r(1) + r(2)) * static_cast<T>(0.11111111f);
        return -(r(0) + r(1) * c(2) + r(2));
    case 10:
        if (floatTable) return (r(0) + r(1) + r(2) + r(3) + r(4)) * static_cast<T>(0.04f);
        return -(r(0) + r(1) * c(4) + r(2) * c(6) + r(3) * c(4) + r(4));
    case 11: return -(r(0) + r(1) * c(2) + r(2));
    default: return -(r(0) + r(1) * c(4) + r(2) * c(6) + r(3) * c(4) + r(4));
    }
}

int taps(int index) { return (index == 3 || index == 4 || index == 6 || index == 8 || index == 10 || index == 12) ? 5 : 3; }

struct Rows {
    std::vector<std::vector<Zev16s>> data;
    std::vector<const Zev16s*> ptrs;
    Rows(int n, int len, int off, zt::Rng& rng, int lo, int hi) : data(n) {
        for (auto& d : data) {
            d.resize(len + off);
            for (auto& v : d) v = static_cast<Zev16s>(rng.uniform(lo, hi));
            ptrs.push_back(d.data() + off);
        }
    }
};

}  // namespace

TEST(FixedColumnTable, SixteenBitWrapsAndAccumulates) {
    zt::Rng rng(8);
    for (int index = 0; index < v8::kFixedColumnCount; ++index)
        for (int w = 1; w <= 40; ++w) {
            const int h = 1 + w % 3, K = taps(index), stride = (w + 7) & ~7;
            ASSERT_EQ(v8::fixedColumnTaps(index), K);
            Rows rows(h + K - 1, 2 * stride, w % 2, rng, -32768, 32767);  // full range: wrapping shows
            zt::Image<Zev16s> dst(w, h, 1, 3, w % 4);
            dst.fill([&] { return static_cast<Zev16s>(rng.uniform(-1000, 1000)); });
            std::vector<Zev16s> before = dst.pixels();
            v8::owntabColumn_8u16s[index](rows.ptrs.data(), dst.ptr(), dst.step(), w, h, w % 2);
            ASSERT_TRUE(dst.guardsIntact());
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    auto r = [&](int j) { return static_cast<int>(rows.ptrs[y + j][x]); };
                    auto b = [&](int j, int p) { return static_cast<int>(rows.ptrs[y + j][x + p * stride]); };
                    int want = formula<int>(index, false, r, b);
                    if (index == 8) want += before[y * w + x];
                    ASSERT_EQ(dst.row(y)[x], static_cast<Zev16s>(want)) << index << " w" << w << " x" << x;
                }
        }
}

TEST(FixedColumnTable, EightBitSignedRoundsLeadingColumnsTruncatesTail) {
    zt::Rng rng(9);
    for (int index = 0; index < v8::kFixedColumnCount; ++index)
        for (int w = 1; w <= 40; ++w)
            for (int divisor : {1, 3, -4, 50}) {
                const int h = 2, K = index == 8 ? 3 : taps(index), stride = (w + 7) & ~7;
                Rows rows(h + K - 1, 2 * stride, 1, rng, -300, 300);
                zt::Image<Zev8s> dst(w, h, 1, 2, 1);
                v8::owntabColumn_8u8s[index](rows.ptrs.data(), dst.ptr(), dst.step(), w, h, divisor, 1);
                ASSERT_TRUE(dst.guardsIntact());
                const float inv = 1.0f / static_cast<float>(divisor);
                for (int y = 0; y < h; ++y)
                    for (int x = 0; x < w; ++x) {
                        auto r = [&](int j) { return static_cast<int>(rows.ptrs[y + j][x]); };
                        auto b = [&](int j, int p) { return static_cast<int>(rows.ptrs[y + j][x + p * stride]); };
                        const int idx = index == 8 ? 7 : index;
                        const std::int16_t s = static_cast<std::int16_t>(formula<int>(idx, false, r, b));
                        int want;
                        if (x < (w & ~3))
                            want = ref::sat(std::lrint(static_cast<float>(s) * inv), -128, 127);
                        else
                            want = ref::trunc(static_cast<float>(s) * inv, -128.0f, 127.0f);
                        ASSERT_EQ(dst.row(y)[x], want) << index << " w" << w << " x" << x << " div" << divisor;
                    }
            }
}

TEST(FixedColumnTable, LowpassEightBitScalings) {
    // Constant 255 images: 3 rows of 765 give 255, 5 rows of 1275 give 254.
    std::vector<Zev16s> r3(16, 765), r5(16, 1275);
    const Zev16s* p3[3] = {r3.data(), r3.data(), r3.data()};
    const Zev16s* p5[5] = {r5.data(), r5.data(), r5.data(), r5.data(), r5.data()};
    Zev8u out[16];
    v8::owntabColumn_8u[0](p3, out, 16, 13, 1, 1);
    for (int i = 0; i < 13; ++i) EXPECT_EQ(out[i], 255);
    v8::owntabColumn_8u[1](p5, out, 16, 13, 1, 1);
    for (int i = 0; i < 13; ++i) EXPECT_EQ(out[i], 254);
    zt::Rng rng(4);
    for (int w = 1; w <= 40; ++w)
        for (int t : {0, 1}) {
            const int K = t ? 5 : 3;
            Rows rows(K + 1, w, 0, rng, 0, K * 255);
            std::vector<Zev8u> o(2 * w);
            v8::owntabColumn_8u[t](rows.ptrs.data(), o.data(), w, w, 2, 0);
            for (int y = 0; y < 2; ++y)
                for (int x = 0; x < w; ++x) {
                    int s = 0;
                    for (int j = 0; j < K; ++j) s += rows.ptrs[y + j][x];
                    int want = t ? (s * 2621) >> 16 : ((s + 5) * 7280) >> 16;
                    ASSERT_EQ(o[y * w + x], std::min(255, want)) << w << " " << x;
                }
        }
}

TEST(FixedColumnTable, FloatFormulasLeftToRight) {
    zt::Rng rng(10);
    for (int index = 0; index < v8::kFixedColumnCount; ++index)
        for (int w = 1; w <= 30; ++w) {
            const int h = 2, K = taps(index), stride = (w + 7) & ~7;
            std::vector<std::vector<float>> data(h + K - 1, std::vector<float>(2 * stride + 1));
            std::vector<const Zev32f*> ptrs;
            for (auto& d : data) {
                for (auto& v : d) v = rng.uniformf(-100.0f, 100.0f);
                ptrs.push_back(d.data() + 1);
            }
            zt::Image<Zev32f> dst(w, h, 1, 1, 3);
            dst.fill([&] { return rng.uniformf(-1.0f, 1.0f); });
            std::vector<Zev32f> before = dst.pixels();
            v8::owntabColumn_32f[index](ptrs.data(), dst.ptr(), dst.step(), w, h);
            ASSERT_TRUE(dst.guardsIntact());
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    auto r = [&](int j) { return ptrs[y + j][x]; };
                    auto b = [&](int j, int p) { return ptrs[y + j][x + p * stride]; };
                    float want = formula<float>(index, true, r, b);
                    if (index == 8) want = before[y * w + x] + want;
                    ASSERT_EQ(dst.row(y)[x], want) << index << " w" << w << " x" << x;
                }
        }
}
