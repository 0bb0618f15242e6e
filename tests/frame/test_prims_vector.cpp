// Vector primitives and the two small helpers, against plain references.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "common/guarded.h"
#include "frame/kernels/elementwise_ops.h"
#include "frame/kernels/rows_avx2.h"
#include "frame/prims.h"
#include "test_prims_ref.h"

namespace {

using zt::Image;

// A vector is a one-row image: guard bytes on both sides, origin offsets.
template <class T>
Image<T> vec(int len, int off) {
    return Image<T>(len, 1, 1, 0, off);
}

template <class T>
T randomElement(zt::Rng& rng) {
    if constexpr (std::is_floating_point_v<T>) {
        int k = rng.uniform(0, 11);
        if (k == 0) return std::numeric_limits<T>::quiet_NaN();
        if (k == 1) return T(-0.0);
        if (k == 2) return T(0.0);
        return static_cast<T>(rng.uniform(-1000, 1000)) / T(8);
    } else {
        return static_cast<T>(rng.next());
    }
}

// ------------------------------------------------------------------ copy, set, zero, convert

TEST(PrimsVector, CopySetZeroConvertEveryTail) {
    zt::Rng rng(51);
    for (int len : zt::sweepWidths())
        for (int off : zt::sweepOffsets()) {
            Image<Zev16s> a = vec<Zev16s>(len, off), b = vec<Zev16s>(len, (off + 1) % 8);
            a.fill([&] { return static_cast<Zev16s>(rng.next()); });
            ASSERT_EQ(v8::zevsCopy_16s(a.ptr(), b.ptr(), len), zevStsNoError);
            ASSERT_EQ(b.pixels(), a.pixels());
            ASSERT_TRUE(b.guardsIntact());

            Image<Zev32s> s = vec<Zev32s>(len, off);
            ASSERT_EQ(v8::zevsSet_32s(s.ptr(), len, -7), zevStsNoError);
            ASSERT_EQ(s.pixels(), std::vector<Zev32s>(len, -7));
            ASSERT_EQ(v8::zevsZero_32s(s.ptr(), len), zevStsNoError);
            ASSERT_EQ(s.pixels(), std::vector<Zev32s>(len, 0));
            ASSERT_TRUE(s.guardsIntact());

            Image<Zev8u> c = vec<Zev8u>(len, off);
            ASSERT_EQ(v8::zevsSet_8u(c.ptr(), len, 200), zevStsNoError);
            ASSERT_EQ(c.pixels(), std::vector<Zev8u>(len, 200));
            ASSERT_TRUE(c.guardsIntact());

            Image<Zev32f> f = vec<Zev32f>(len, off);
            ASSERT_EQ(v8::zevsSet_32f(f.ptr(), len, -0.0f), zevStsNoError);
            ASSERT_TRUE(zt::sameBits(f.pixels(), std::vector<Zev32f>(len, -0.0f)));
            ASSERT_EQ(v8::zevsZero_32f(f.ptr(), len), zevStsNoError);
            ASSERT_TRUE(zt::sameBits(f.pixels(), std::vector<Zev32f>(len, 0.0f)));

            Image<Zev16u> u = vec<Zev16u>(len, off);
            u.fill([&] { return static_cast<Zev16u>(rng.next()); });
            ASSERT_EQ(v8::zevsConvert_16u32f(u.ptr(), f.ptr(), len), zevStsNoError);
            for (int i = 0; i < len; ++i) ASSERT_EQ(f.at(i, 0), static_cast<float>(u.at(i, 0)));
            ASSERT_TRUE(f.guardsIntact());
        }
}

TEST(PrimsVector, NullThenLengthChecks) {
    Image<Zev8u> a = vec<Zev8u>(8, 0);
    a.snapshot();
    Zev32f f[4];
    EXPECT_EQ(v8::zevsCopy_8u(nullptr, a.ptr(), 0), zevStsNullPointer);
    EXPECT_EQ(v8::zevsCopy_8u(a.ptr(), a.ptr(), 0), zevStsBadSize);
    EXPECT_EQ(v8::zevsCopy_32f(f, f, -1), zevStsBadSize);
    EXPECT_EQ(v8::zevsSet_8u(nullptr, 0, 1), zevStsNullPointer);
    EXPECT_EQ(v8::zevsSet_8u(a.ptr(), 0, 1), zevStsBadSize);
    EXPECT_EQ(v8::zevsZero_8u(a.ptr(), -5), zevStsBadSize);
    EXPECT_EQ(v8::zevsConvert_16u32f(nullptr, f, 4), zevStsNullPointer);
    EXPECT_EQ(v8::zevsMulC_32f(f, nullptr, 4, 2.0f), zevStsNullPointer);
    EXPECT_EQ(v8::zevsSqrt_32f(f, f, 0), zevStsBadSize);
    EXPECT_EQ(v8::zevsSortAscend_64f_I(nullptr, 4), zevStsNullPointer);
    EXPECT_TRUE(a.unchanged());
}

// ------------------------------------------------------------------ min and max every

template <class T>
T minRef(T a, T b) { return a < b ? a : b; }
template <class T>
T maxRef(T a, T b) { return a > b ? a : b; }

template <class T>
struct MinMaxFns {
    ZevStatus (*min)(const T*, const T*, T*, int);
    ZevStatus (*max)(const T*, const T*, T*, int);
    ZevStatus (*minI)(const T*, T*, int);
    ZevStatus (*maxI)(const T*, T*, int);
};

// Every length and origin, sources in line with the destination and out of
// line with it; run(a, b, d, n, isMax) computes one of the two.
template <class T, class Run>
void sweepMinMax(Run run) {
    zt::Rng rng(53);
    for (int len : zt::sweepWidths())
        for (int off : zt::sweepOffsets()) {
            Image<T> a = vec<T>(len, off), b = vec<T>(len, off + (len & 1)), d = vec<T>(len, off);
            a.fill([&] { return randomElement<T>(rng); });
            b.fill([&] { return randomElement<T>(rng); });
            std::vector<T> pa = a.pixels(), pb = b.pixels(), lo(len), hi(len);
            for (int i = 0; i < len; ++i) {
                lo[i] = minRef(pa[i], pb[i]);
                hi[i] = maxRef(pa[i], pb[i]);
            }
            run(a.ptr(), b.ptr(), d.ptr(), len, false);
            ASSERT_TRUE(zt::sameBits(d.pixels(), lo)) << "min, length " << len << " offset " << off;
            run(a.ptr(), b.ptr(), d.ptr(), len, true);
            ASSERT_TRUE(zt::sameBits(d.pixels(), hi)) << "max, length " << len << " offset " << off;
            ASSERT_TRUE(d.guardsIntact());
        }
}

template <class T>
void checkMinMax(const MinMaxFns<T>& fns) {
    sweepMinMax<T>([&](const T* a, const T* b, T* d, int n, bool isMax) {
        ASSERT_EQ((isMax ? fns.max : fns.min)(a, b, d, n), zevStsNoError);
    });
    // In place the second operand is the one overwritten; the length rule: 0
    // is an error, below 0 nothing happens.
    zt::Rng rng(54);
    Image<T> a = vec<T>(9, 1), b = vec<T>(9, 2), c = vec<T>(9, 0);
    a.fill([&] { return randomElement<T>(rng); });
    b.fill([&] { return randomElement<T>(rng); });
    std::memcpy(c.ptr(), b.ptr(), 9 * sizeof(T));
    std::vector<T> pa = a.pixels(), pb = b.pixels(), lo(9), hi(9);
    for (int i = 0; i < 9; ++i) lo[i] = minRef(pa[i], pb[i]), hi[i] = maxRef(pa[i], pb[i]);
    ASSERT_EQ(fns.maxI(a.ptr(), b.ptr(), 9), zevStsNoError);
    ASSERT_TRUE(zt::sameBits(b.pixels(), hi));
    ASSERT_EQ(fns.minI(a.ptr(), c.ptr(), 9), zevStsNoError);
    ASSERT_TRUE(zt::sameBits(c.pixels(), lo));
    b.snapshot();
    EXPECT_EQ(fns.min(a.ptr(), a.ptr(), b.ptr(), 0), zevStsBadSize);
    EXPECT_EQ(fns.max(a.ptr(), nullptr, b.ptr(), 0), zevStsNullPointer);
    EXPECT_EQ(fns.maxI(a.ptr(), b.ptr(), 0), zevStsBadSize);
    EXPECT_EQ(fns.max(a.ptr(), a.ptr(), b.ptr(), -3), zevStsNoError);
    EXPECT_TRUE(b.unchanged());
}

TEST(PrimsVector, MinMaxEvery) {
    checkMinMax<Zev8u>({v8::zevsMinEvery_8u, v8::zevsMaxEvery_8u, v8::zevsMinEvery_8u_I, v8::zevsMaxEvery_8u_I});
    checkMinMax<Zev16u>(
        {v8::zevsMinEvery_16u, v8::zevsMaxEvery_16u, v8::zevsMinEvery_16u_I, v8::zevsMaxEvery_16u_I});
    checkMinMax<Zev32f>(
        {v8::zevsMinEvery_32f, v8::zevsMaxEvery_32f, v8::zevsMinEvery_32f_I, v8::zevsMaxEvery_32f_I});
    checkMinMax<Zev64f>(
        {v8::zevsMinEvery_64f, v8::zevsMaxEvery_64f, v8::zevsMinEvery_64f_I, v8::zevsMaxEvery_64f_I});
}

TEST(PrimsVector, MinEvery64fInPlaceReportsNothing) {
    Zev64f a[2] = {1, 2};
    EXPECT_EQ(v8::zevsMinEvery_64f_I(nullptr, a, 2), zevStsNoError);
    EXPECT_EQ(v8::zevsMinEvery_64f_I(a, nullptr, 2), zevStsNoError);
    EXPECT_EQ(v8::zevsMinEvery_64f_I(a, a, 0), zevStsNoError);
    EXPECT_EQ(a[0], 1);
    EXPECT_EQ(a[1], 2);
}

// ------------------------------------------------------------------ scaling

TEST(PrimsVector, MulC32fIsOneRoundedProduct) {
    zt::Rng rng(57);
    for (int len : zt::sweepWidths()) {
        Image<Zev32f> a = vec<Zev32f>(len, len % 4), d = vec<Zev32f>(len, 0);
        a.fill([&] { return rng.uniformf(-1e5f, 1e5f); });
        const float v = 0.1f;
        ASSERT_EQ(v8::zevsMulC_32f(a.ptr(), d.ptr(), len, v), zevStsNoError);
        std::vector<Zev32f> want = a.pixels();
        for (auto& x : want) x = static_cast<float>(static_cast<double>(x) * v);  // exact, then one rounding
        ASSERT_TRUE(zt::sameBits(d.pixels(), want)) << len;
        ASSERT_TRUE(d.guardsIntact());
    }
}

Zev16s mulC16sRef(Zev16s a, Zev16s v, int s) {
    return static_cast<Zev16s>(zt::clampTo(zt::scaleExact(std::int64_t{a} * v, s), -32768, 32767));
}

// Every case split: value 0 and 1, factors below -15, -15 to -1, 0, 1 to 30,
// above 30; operands at the limits, where the product is largest.
TEST(PrimsVector, MulC16sEveryCaseRoundsTiesToEvenAndSaturates) {
    zt::Rng rng(59);
    const Zev16s values[] = {0, 1, -1, 2, 3, 255, -256, 32767, -32768, 12345};
    for (Zev16s v : values)
        for (int s = -20; s <= 33; ++s)
            for (int len : {1, 7, 8, 9, 16, 17, 31, 40}) {
                Image<Zev16s> a = vec<Zev16s>(len, len % 3), d = vec<Zev16s>(len, 1);
                a.fill([&] {
                    int k = rng.uniform(0, 7);
                    return static_cast<Zev16s>(k == 0 ? -32768 : (k == 1 ? 32767 : (k == 2 ? 0 : rng.next())));
                });
                ASSERT_EQ(v8::zevsMulC_16s_Sfs(a.ptr(), d.ptr(), len, v, s), zevStsNoError);
                for (int i = 0; i < len; ++i)
                    ASSERT_EQ(d.at(i, 0), mulC16sRef(a.at(i, 0), v, s))
                        << a.at(i, 0) << " * " << v << " scale " << s << " length " << len;
                ASSERT_TRUE(d.guardsIntact());
            }
}

// Products that fall exactly half way: ties go to the even neighbour.
TEST(PrimsVector, MulC16sTies) {
    const int len = 8;
    Zev16s a[len] = {1, 3, 5, 7, -1, -3, -5, -7}, d[len];
    ASSERT_EQ(v8::zevsMulC_16s_Sfs(a, d, len, 1, 1), zevStsNoError);
    const Zev16s want[len] = {0, 2, 2, 4, 0, -2, -2, -4};
    for (int i = 0; i < len; ++i) EXPECT_EQ(d[i], want[i]) << a[i] << " / 2";
}

// ------------------------------------------------------------------ sort

std::vector<double> sortInput(int kind, int len, zt::Rng& rng) {
    std::vector<double> v(len);
    for (int i = 0; i < len; ++i) {
        switch (kind) {
            case 0: v[i] = rng.uniform(-1000000, 1000000) / 7.0; break;  // random
            case 1: v[i] = rng.uniform(0, 3); break;                     // many duplicates
            case 2: v[i] = i; break;                                     // sorted
            case 3: v[i] = len - i; break;                               // reversed
            case 4: v[i] = 5.0; break;                                   // all equal
            default: v[i] = (i % 2) ? i : len - i; break;                // organ pipe
        }
    }
    return v;
}

class SortAscend : public ::testing::TestWithParam<int> {};

TEST_P(SortAscend, MatchesStdSort) {
    const int len = GetParam();
    zt::Rng rng(61 + len);
    for (int kind = 0; kind < 6; ++kind) {
        std::vector<double> in = sortInput(kind, len, rng), want = in;
        std::sort(want.begin(), want.end());
        Image<Zev64f> a = vec<Zev64f>(len, 1);
        std::memcpy(a.ptr(), in.data(), in.size() * sizeof(double));
        ASSERT_EQ(v8::zevsSortAscend_64f_I(a.ptr(), len), zevStsNoError);
        ASSERT_EQ(a.pixels(), want) << "kind " << kind << " length " << len;
        ASSERT_TRUE(a.guardsIntact());
    }
}

INSTANTIATE_TEST_SUITE_P(Prims, SortAscend, ::testing::Values(1, 2, 3, 8, 9, 10, 11, 12, 19, 20, 64, 1000, 4097));

TEST(PrimsSort, LengthChecksAndNaNStaysInside) {
    Zev64f one = 3;
    EXPECT_EQ(v8::zevsSortAscend_64f_I(&one, 0), zevStsBadSize);
    EXPECT_EQ(v8::zevsSortAscend_64f_I(&one, 1), zevStsNoError);
    EXPECT_EQ(one, 3);
    // NaNs order nothing, but the sort must stay in its range and keep every value.
    zt::Rng rng(67);
    for (int len : {10, 50, 300}) {
        Image<Zev64f> a = vec<Zev64f>(len, 0);
        a.fill([&] { return rng.uniform(0, 4) == 0 ? std::numeric_limits<double>::quiet_NaN() : rng.uniform(0, 99); });
        std::vector<double> before = a.pixels();
        ASSERT_EQ(v8::zevsSortAscend_64f_I(a.ptr(), len), zevStsNoError);
        ASSERT_TRUE(a.guardsIntact());
        auto key = [](std::vector<double> v) {
            std::vector<std::uint64_t> bits;
            for (double x : v) bits.push_back(std::bit_cast<std::uint64_t>(x));
            std::sort(bits.begin(), bits.end());
            return bits;
        };
        EXPECT_EQ(key(a.pixels()), key(before));
    }
}

// ------------------------------------------------------------------ square root

TEST(PrimsVector, SqrtSameBitsAtEveryLengthAndThreadCount) {
    zt::Rng rng(71);
    std::vector<int> lengths = zt::sweepWidths();
    lengths.insert(lengths.end(), {4095, 4096, 4097, 9001});
    for (int t : {1, 2, 5})
        for (int len : lengths) {
            zt::Threads scope(t);
            Image<Zev32f> a = vec<Zev32f>(len, len % 4), d = vec<Zev32f>(len, 2);
            a.fill([&] { return rng.uniform(0, 15) == 0 ? -1.0f : rng.uniformf(0.0f, 1e6f); });
            ASSERT_EQ(v8::zevsSqrt_32f(a.ptr(), d.ptr(), len), zevStsNoError);
            std::vector<Zev32f> want = a.pixels();
            for (auto& x : want) x = static_cast<float>(std::sqrt(static_cast<double>(x)));  // exact to float
            std::vector<Zev32f> got = d.pixels();
            for (int i = 0; i < len; ++i) {
                if (std::isnan(want[i])) ASSERT_TRUE(std::isnan(got[i])) << i;
                else ASSERT_EQ(std::bit_cast<std::uint32_t>(got[i]), std::bit_cast<std::uint32_t>(want[i])) << i;
            }
            ASSERT_TRUE(d.guardsIntact());
        }
}

// ------------------------------------------------------------------ helpers

TEST(PrimsHelpers, ScaleIsTwoToTheMinusFactor) {
    for (int s = -140; s <= 160; ++s) {
        float want = s <= -128 ? std::numeric_limits<float>::infinity()
                               : static_cast<float>(std::ldexp(1.0, -s));  // 2^-150 and below round to 0
        if (s >= 150) want = 0.0f;
        EXPECT_EQ(std::bit_cast<std::uint32_t>(v8::owncvGetScale_32s32f(s)), std::bit_cast<std::uint32_t>(want))
            << "factor " << s;
    }
    EXPECT_EQ(v8::owncvGetScale_32s32f(std::numeric_limits<int>::min()), std::numeric_limits<float>::infinity());
    EXPECT_EQ(v8::owncvGetScale_32s32f(std::numeric_limits<int>::max()), 0.0f);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(v8::owncvGetScale_32s32f(149)), 1u);  // smallest denormal
}

TEST(PrimsHelpers, RowMatrixAlignment) {
    alignas(16) Zev32f rows[4][8];
    Zev32f* ptrs[3] = {rows[0], rows[1], rows[2]};
    EXPECT_EQ(v8::owncvRowMatrAlErr(ptrs, 3), 0);
    ptrs[2] = rows[2] + 1;
    EXPECT_EQ(v8::owncvRowMatrAlErr(ptrs, 3), 1);
    EXPECT_EQ(v8::owncvRowMatrAlErr(ptrs, 2), 0);  // only count pointers are looked at
    ptrs[0] = rows[0] + 2;
    EXPECT_EQ(v8::owncvRowMatrAlErr(ptrs, 1), 1);
    EXPECT_EQ(v8::owncvRowMatrAlErr(ptrs, 0), 0);
}

}  // namespace

// ------------------------------------------------------------------ both instruction sets
// The public routines take the AVX2 rows where the processor has them; the
// SSSE3 rows must give the same bits, so both are run here on their own.
namespace {

template <class T, bool Wide>
void checkMinMaxRows() {
    sweepMinMax<T>([](const T* a, const T* b, T* d, int n, bool isMax) {
        if constexpr (Wide) (isMax ? v8::ownMinMaxEvery_avx2<T, true> : v8::ownMinMaxEvery_avx2<T, false>)(a, b, d, n);
        else if (isMax) v8::kern::mapRow<false>(d, n, v8::kern::MinMaxEveryOp<T, true>{}, a, b);
        else v8::kern::mapRow<false>(d, n, v8::kern::MinMaxEveryOp<T, false>{}, a, b);
    });
}

template <bool Wide>
void checkSubRows() {
    zt::Rng rng(79);
    for (int len : zt::sweepWidths()) {
        Image<Zev32f> a = vec<Zev32f>(len, len % 4), b = vec<Zev32f>(len, 0), d = vec<Zev32f>(len, 1);
        a.fill([&] { return randomElement<Zev32f>(rng); });
        b.fill([&] { return randomElement<Zev32f>(rng); });
        if constexpr (Wide) v8::ownSub_32f_avx2(a.ptr(), b.ptr(), d.ptr(), len);
        else v8::kern::mapRow<false>(d.ptr(), len, v8::kern::SubOp_32f{}, a.ptr(), b.ptr());
        std::vector<Zev32f> pa = a.pixels(), pb = b.pixels(), want(len);
        for (int i = 0; i < len; ++i) want[i] = pb[i] - pa[i];
        ASSERT_TRUE(zt::sameBits(d.pixels(), want)) << "length " << len;
        ASSERT_TRUE(d.guardsIntact());
    }
}

template <bool Wide>
void checkAllRows() {
    checkMinMaxRows<Zev8u, Wide>();
    checkMinMaxRows<Zev16u, Wide>();
    checkMinMaxRows<Zev32f, Wide>();
    checkMinMaxRows<Zev64f, Wide>();
    checkSubRows<Wide>();
}

}  // namespace

TEST(PrimsRows, Ssse3RowsMatchTheReference) { checkAllRows<false>(); }

TEST(PrimsRows, Avx2RowsMatchTheReference) {
    if (!v8::simd::hasAvx2()) GTEST_SKIP() << "no AVX2 on this processor";
    checkAllRows<true>();
}
