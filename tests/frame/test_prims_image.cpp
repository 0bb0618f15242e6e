// Image primitives: copies, fill, subtraction and thresholds, bit for bit
// against plain references over every tail length and misaligned origins.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

#include "common/guarded.h"
#include "frame/kernels/elementwise_ops.h"
#include "frame/kernels/rows_avx2.h"
#include "frame/prims.h"
#include "test_prims_ref.h"

namespace {

using zt::Image;

template <class T>
T randomValue(zt::Rng& rng) {
    if constexpr (std::is_same_v<T, float>) {
        // Some values the comparisons must treat with care.
        static const float special[] = {0.0f, -0.0f, std::numeric_limits<float>::infinity(),
                                        -std::numeric_limits<float>::infinity(),
                                        std::numeric_limits<float>::quiet_NaN(), 1e-40f, 5.0f};
        if (rng.uniform(0, 9) == 0) return special[rng.uniform(0, 6)];
        return rng.uniformf(-10.0f, 10.0f);
    } else {
        return static_cast<T>(rng.next());
    }
}

template <class T>
void randomize(Image<T>& im, zt::Rng& rng) {
    im.fill([&] { return randomValue<T>(rng); });
}

// ------------------------------------------------------------------ copies

using CopyFn = std::function<ZevStatus(const void*, int, void*, int, ZeviSize)>;
struct CopyCase {
    std::string name;
    int elemBytes, channels;
    CopyFn fn;
};

template <class T>
CopyFn copyFn(ZevStatus (*f)(const T*, int, T*, int, ZeviSize)) {
    return [f](const void* s, int ss, void* d, int ds, ZeviSize r) {
        return f(static_cast<const T*>(s), ss, static_cast<T*>(d), ds, r);
    };
}

class CopyImage : public ::testing::TestWithParam<CopyCase> {};

TEST_P(CopyImage, CopiesEveryRowExactlyAndNothingElse) {
    const auto& c = GetParam();
    zt::Rng rng(7);
    for (int w : zt::sweepWidths()) {
        for (int off : zt::sweepOffsets()) {
            // Destination in step with the source (aligned loads) and out of step with it.
            for (int shift : {0, 1}) {
                const int rowBytes = w * c.channels * c.elemBytes;
                Image<std::uint8_t> src(rowBytes, 3, 1, 16, off * c.elemBytes);
                Image<std::uint8_t> dst(rowBytes, 3, 1, 16 + shift, (off + shift) * c.elemBytes % 16);
                randomize(src, rng);
                ASSERT_EQ(c.fn(src.ptr(), src.step(), dst.ptr(), dst.step(), ZeviSize{w, 3}), zevStsNoError);
                ASSERT_EQ(dst.pixels(), src.pixels()) << c.name << " width " << w << " offset " << off;
                ASSERT_TRUE(dst.guardsIntact()) << c.name << " width " << w << " offset " << off;
            }
        }
    }
}

TEST_P(CopyImage, ChecksPointersThenSizeThenPositiveSteps) {
    const auto& c = GetParam();
    Image<std::uint8_t> src(8 * c.elemBytes * c.channels, 2), dst(8 * c.elemBytes * c.channels, 2);
    dst.snapshot();
    const ZeviSize ok{8, 2};
    EXPECT_EQ(c.fn(nullptr, src.step(), dst.ptr(), dst.step(), ZeviSize{0, 2}), zevStsNullPointer);
    EXPECT_EQ(c.fn(src.ptr(), src.step(), nullptr, dst.step(), ok), zevStsNullPointer);
    EXPECT_EQ(c.fn(src.ptr(), 0, dst.ptr(), dst.step(), ZeviSize{0, 2}), zevStsBadSize);
    EXPECT_EQ(c.fn(src.ptr(), src.step(), dst.ptr(), dst.step(), ZeviSize{8, -1}), zevStsBadSize);
    EXPECT_EQ(c.fn(src.ptr(), 0, dst.ptr(), dst.step(), ok), zevStsBadStep);
    EXPECT_EQ(c.fn(src.ptr(), src.step(), dst.ptr(), -dst.step(), ok), zevStsBadStep);
    EXPECT_TRUE(dst.unchanged());
}

INSTANTIATE_TEST_SUITE_P(
    Prims, CopyImage,
    ::testing::Values(CopyCase{"8u_C1", 1, 1, copyFn(v8::zeviCopy_8u_C1R)},
                      CopyCase{"8u_C3", 1, 3, copyFn(v8::zeviCopy_8u_C3R)},
                      CopyCase{"8u_C4", 1, 4, copyFn(v8::zeviCopy_8u_C4R)},
                      CopyCase{"16s_C1", 2, 1, copyFn(v8::zeviCopy_16s_C1R)},
                      CopyCase{"16u_C1", 2, 1, copyFn(v8::zeviCopy_16u_C1R)},
                      CopyCase{"32f_C1", 4, 1, copyFn(v8::zeviCopy_32f_C1R)},
                      CopyCase{"32f_C3", 4, 3, copyFn(v8::zeviCopy_32f_C3R)},
                      CopyCase{"32f_C4", 4, 4, copyFn(v8::zeviCopy_32f_C4R)}),
    [](const auto& info) { return info.param.name; });

TEST(PrimsSet, FillsTheRegionOnly) {
    for (int w : zt::sweepWidths()) {
        for (int off : zt::sweepOffsets()) {
            Image<Zev8u> dst(w, 3, 1, 7, off);
            ASSERT_EQ(v8::zeviSet_8u_C1R(dst.ptr(), dst.step(), dst.size(), 0xa5), zevStsNoError);
            for (Zev8u v : dst.pixels()) ASSERT_EQ(v, 0xa5) << "width " << w;
            ASSERT_TRUE(dst.guardsIntact()) << "width " << w << " offset " << off;
        }
    }
    Image<Zev8u> dst(4, 4);
    dst.snapshot();
    EXPECT_EQ(v8::zeviSet_8u_C1R(nullptr, dst.step(), ZeviSize{0, 4}, 1), zevStsNullPointer);
    EXPECT_EQ(v8::zeviSet_8u_C1R(dst.ptr(), 0, ZeviSize{4, 0}, 1), zevStsBadSize);
    EXPECT_EQ(v8::zeviSet_8u_C1R(dst.ptr(), 0, dst.size(), 1), zevStsBadStep);
    EXPECT_TRUE(dst.unchanged());
}

// ------------------------------------------------------------------ subtraction

using Sub8uFn = ZevStatus (*)(const Zev8u*, int, const Zev8u*, int, Zev8u*, int, ZeviSize, int);

Zev8u sub8uRef(Zev8u a, Zev8u b, int s) {
    std::int64_t d = b > a ? b - a : 0;
    return static_cast<Zev8u>(zt::clampTo(zt::scaleExact(d, s), 0, 255));
}

struct Sub8uCase {
    int channels;
    Sub8uFn fn;
};
class Sub8u : public ::testing::TestWithParam<Sub8uCase> {};

TEST_P(Sub8u, EveryScaleFactorRoundsTiesToEvenAndSaturates) {
    const auto [ch, fn] = GetParam();
    zt::Rng rng(11);
    for (int s = -10; s <= 11; ++s) {
        for (int w : zt::sweepWidths()) {
            // Every tail after the aligned blocks; each call opens a region, so few long rows.
            if (w > 20 && w != 31 && w != 33 && w != 47 && w != 129) continue;
            const int off = w % 3;
            Image<Zev8u> a(w, 2, ch, 1, off), b(w, 2, ch, 4, 0), d(w, 2, ch, 3, (off + 5) % 16);
            randomize(a, rng);
            randomize(b, rng);
            ASSERT_EQ(fn(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), a.size(), s), zevStsNoError);
            std::vector<Zev8u> pa = a.pixels(), pb = b.pixels(), want(pa.size());
            for (std::size_t i = 0; i < pa.size(); ++i) want[i] = sub8uRef(pa[i], pb[i], s);
            ASSERT_EQ(d.pixels(), want) << "scale " << s << " width " << w;
            ASSERT_TRUE(d.guardsIntact()) << "scale " << s << " width " << w;
        }
    }
}

// Every difference 0..255 at every factor, so that all ties of the rounding
// appear, and clipped negative differences after them.
TEST_P(Sub8u, AllDifferencesAtEveryFactor) {
    const auto [ch, fn] = GetParam();
    const int w = 256 / ch + 1;
    Image<Zev8u> a(w, 1, ch), b(w, 1, ch), d(w, 1, ch);
    for (int i = 0; i < w * ch; ++i) {
        a.row(0)[i] = static_cast<Zev8u>(i < 256 ? 0 : 200);
        b.row(0)[i] = static_cast<Zev8u>(i);
    }
    for (int s = -9; s <= 10; ++s) {
        ASSERT_EQ(fn(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), a.size(), s), zevStsNoError);
        for (int i = 0; i < w * ch; ++i)
            ASSERT_EQ(d.row(0)[i], sub8uRef(a.row(0)[i], b.row(0)[i], s)) << "scale " << s << " at " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Prims, Sub8u,
                         ::testing::Values(Sub8uCase{1, v8::zeviSub_8u_C1RSfs}, Sub8uCase{3, v8::zeviSub_8u_C3RSfs},
                                           Sub8uCase{4, v8::zeviSub_8u_C4RSfs}));

TEST(PrimsSub8u, CheckOrderAndNoStepTest) {
    Image<Zev8u> a(8, 2), b(8, 2), d(8, 2);
    d.snapshot();
    const ZeviSize ok{8, 2};
    // One channel: pointers first; three and four: the width before anything.
    EXPECT_EQ(v8::zeviSub_8u_C1RSfs(nullptr, 8, b.ptr(), 8, d.ptr(), 8, ZeviSize{0, 2}, 0), zevStsNullPointer);
    EXPECT_EQ(v8::zeviSub_8u_C3RSfs(nullptr, 8, b.ptr(), 8, d.ptr(), 8, ZeviSize{0, 2}, 0), zevStsBadSize);
    EXPECT_EQ(v8::zeviSub_8u_C4RSfs(a.ptr(), 8, b.ptr(), 8, nullptr, 8, ok, 0), zevStsNullPointer);
    EXPECT_EQ(v8::zeviSub_8u_C1RSfs(a.ptr(), 8, b.ptr(), 8, d.ptr(), 8, ZeviSize{8, 0}, 0), zevStsBadSize);
    EXPECT_EQ(v8::zeviSub_8u_C1RSfs(a.ptr(), 8, b.ptr(), 8, d.ptr(), 8, ZeviSize{-3, 2}, 0), zevStsBadSize);
    // A factor above 8 clears the region through the fill, which judges its step.
    EXPECT_EQ(v8::zeviSub_8u_C1RSfs(a.ptr(), 8, b.ptr(), 8, d.ptr(), 0, ok, 9), zevStsBadStep);
    EXPECT_TRUE(d.unchanged());
}

// Results of the static row loop do not depend on the thread count.
TEST(PrimsSub8u, SameResultAtEveryThreadCount) {
    zt::Rng rng(3);
    Image<Zev8u> a(37, 19), b(37, 19);
    randomize(a, rng);
    randomize(b, rng);
    for (int t : {1, 2, 3, 25}) {
        zt::Threads scope(t);
        Image<Zev8u> d(37, 19, 1, 2, 1);
        ASSERT_EQ(v8::zeviSub_8u_C1RSfs(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), a.size(), 2),
                  zevStsNoError);
        for (int y = 0; y < 19; ++y)
            for (int x = 0; x < 37; ++x) ASSERT_EQ(d.at(x, y), sub8uRef(a.at(x, y), b.at(x, y), 2)) << t;
        ASSERT_TRUE(d.guardsIntact());
    }
}

using Sub32fFn = ZevStatus (*)(const Zev32f*, int, const Zev32f*, int, Zev32f*, int, ZeviSize);
struct Sub32fCase {
    int channels;
    Sub32fFn fn;
};
class Sub32f : public ::testing::TestWithParam<Sub32fCase> {};

TEST_P(Sub32f, SecondMinusFirstBitForBit) {
    const auto [ch, fn] = GetParam();
    zt::Rng rng(5);
    // Widths and heights on both sides of width + height == 256, where rows go parallel.
    std::vector<ZeviSize> sizes;
    for (int w : zt::sweepWidths()) sizes.push_back(ZeviSize{w, 2});
    for (ZeviSize s : {ZeviSize{200, 55}, ZeviSize{200, 56}, ZeviSize{5, 251}, ZeviSize{3, 300}}) sizes.push_back(s);
    for (int t : {1, 2, 7}) {
        zt::Threads scope(t);
        for (ZeviSize sz : sizes) {
            const int off = sz.width % 4;
            Image<Zev32f> a(sz.width, sz.height, ch, 1, off), b(sz.width, sz.height, ch, 2, 0),
                d(sz.width, sz.height, ch, 3, 3 - off);
            randomize(a, rng);
            randomize(b, rng);
            ASSERT_EQ(fn(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), a.size()), zevStsNoError);
            std::vector<Zev32f> pa = a.pixels(), pb = b.pixels(), want(pa.size());
            for (std::size_t i = 0; i < pa.size(); ++i) want[i] = pb[i] - pa[i];
            ASSERT_TRUE(zt::sameBits(d.pixels(), want)) << sz.width << "x" << sz.height << " threads " << t;
            ASSERT_TRUE(d.guardsIntact());
        }
    }
}

TEST_P(Sub32f, ChecksPointersThenSizeOnly) {
    const auto [ch, fn] = GetParam();
    Image<Zev32f> a(4, 2, ch), b(4, 2, ch), d(4, 2, ch);
    d.snapshot();
    EXPECT_EQ(fn(a.ptr(), 0, b.ptr(), 0, nullptr, 0, ZeviSize{0, 0}), zevStsNullPointer);
    EXPECT_EQ(fn(a.ptr(), 0, b.ptr(), 0, d.ptr(), 0, ZeviSize{0, 2}), zevStsBadSize);
    EXPECT_EQ(fn(a.ptr(), 0, b.ptr(), 0, d.ptr(), 0, ZeviSize{4, 0}), zevStsBadSize);
    EXPECT_TRUE(d.unchanged());
}

INSTANTIATE_TEST_SUITE_P(Prims, Sub32f,
                         ::testing::Values(Sub32fCase{1, v8::zeviSub_32f_C1R}, Sub32fCase{3, v8::zeviSub_32f_C3R},
                                           Sub32fCase{4, v8::zeviSub_32f_C4R}));

// ------------------------------------------------------------------ thresholds

template <class T>
T thresholdValRef(T a, T thr, T val, bool greater) {
    return (greater ? a > thr : a < thr) ? val : a;
}

// The ways a threshold runs: the routine (which picks its rows by processor and
// image size), and each row kernel on its own, plain and storing past the cache.
enum class Path { Routine, Ssse3, Ssse3Stream, Avx2, Avx2Stream };
const char* pathName(Path p) {
    static const char* names[] = {"Routine", "Ssse3", "Ssse3Stream", "Avx2", "Avx2Stream"};
    return names[static_cast<int>(p)];
}
bool wide(Path p) { return p == Path::Avx2 || p == Path::Avx2Stream; }
bool streams(Path p) { return p == Path::Ssse3Stream || p == Path::Avx2Stream; }

template <class T, bool Greater>
void valRows(Path p, const T* s, int ss, T* d, int ds, ZeviSize r, T thr, T val) {
    using namespace v8::kern;
    const ThresholdValOp<T, Greater> op(thr, val);
    if (p == Path::Ssse3) mapRows<false>(Plane<T>{d, ds}, r.width, r.height, op, Plane<const T>{s, ss});
    if (p == Path::Ssse3Stream) mapRows<true>(Plane<T>{d, ds}, r.width, r.height, op, Plane<const T>{s, ss});
    if (p == Path::Avx2) v8::ownThresholdValRows_avx2<T, Greater, false>(s, ss, d, ds, r.width, r.height, thr, val);
    if constexpr (sizeof(T) == 2)
        if (p == Path::Avx2Stream)
            v8::ownThresholdValRows_avx2<T, Greater, true>(s, ss, d, ds, r.width, r.height, thr, val);
}

template <class T>
ZevStatus runVal(Path p, const T* s, int ss, T* d, int ds, ZeviSize r, T thr, T val, int cmp) {
    if (p == Path::Routine) {
        if constexpr (sizeof(T) == 1) return v8::zeviThreshold_Val_8u_C1R(s, ss, d, ds, r, thr, val, cmp);
        else return v8::zeviThreshold_Val_16u_C1R(s, ss, d, ds, r, thr, val, cmp);
    }
    if (cmp == v8::zevCmpGreater) valRows<T, true>(p, s, ss, d, ds, r, thr, val);
    else valRows<T, false>(p, s, ss, d, ds, r, thr, val);
    return zevStsNoError;
}

template <class T, class Fn>
void checkThresholdVal(Fn fn, ZeviSize sz, int off, T thr, T val, int cmp, bool inPlace, zt::Rng& rng) {
    Image<T> src(sz.width, sz.height, 1, 3, off), dst(sz.width, sz.height, 1, 2, (off + 3) % 8);
    randomize(src, rng);
    std::vector<T> in = src.pixels();
    Image<T>& out = inPlace ? src : dst;
    ASSERT_EQ(fn(src.ptr(), src.step(), out.ptr(), out.step(), sz, thr, val, cmp), zevStsNoError);
    std::vector<T> want(in.size());
    for (std::size_t i = 0; i < in.size(); ++i) want[i] = thresholdValRef(in[i], thr, val, cmp == v8::zevCmpGreater);
    ASSERT_EQ(out.pixels(), want) << sz.width << "x" << sz.height << " cmp " << cmp << " thr " << +thr;
    ASSERT_TRUE(out.guardsIntact());
}

// Both compares, thresholds at the ends and the middle of the range, every
// tail, out of place and (but for streaming rows) in place.
template <class T>
void sweepThresholdVal(Path p, std::initializer_list<T> thresholds, T value, std::uint32_t seed) {
    zt::Rng rng(seed);
    auto fn = [p](const T* s, int ss, T* d, int ds, ZeviSize r, T t, T v, int cmp) {
        return runVal<T>(p, s, ss, d, ds, r, t, v, cmp);
    };
    for (int cmp : {v8::zevCmpLess, v8::zevCmpGreater})
        for (T thr : thresholds)
            for (int w : zt::sweepWidths())
                checkThresholdVal<T>(fn, ZeviSize{w, 2}, w % 3, thr, value, cmp, !streams(p) && w % 2 == 0, rng);
}

float threshold32fRef(float a, float thr, bool greater) { return (greater ? a > thr : a < thr) ? thr : a; }

template <bool Greater>
void rows32f(Path p, const Zev32f* s, int ss, Zev32f* d, int ds, ZeviSize r, float thr) {
    if (wide(p))
        v8::ownThresholdRows_32f_avx2<Greater>(s, ss, d, ds, r.width, r.height, thr);
    else
        v8::kern::mapRows<false>(v8::kern::Plane<Zev32f>{d, ds}, r.width, r.height,
                                 v8::kern::ThresholdOp_32f<Greater>(thr), v8::kern::Plane<const Zev32f>{s, ss});
}

ZevStatus run32f(Path p, const Zev32f* s, int ss, Zev32f* d, int ds, ZeviSize r, float thr, int cmp) {
    if (p == Path::Routine)
        return cmp == v8::zevCmpLess ? v8::zeviThreshold_LT_32f_C1R(s, ss, d, ds, r, thr)
                                     : v8::zeviThreshold_32f_C1R(s, ss, d, ds, r, thr, cmp);
    if (cmp == v8::zevCmpGreater) rows32f<true>(p, s, ss, d, ds, r, thr);
    else rows32f<false>(p, s, ss, d, ds, r, thr);
    return zevStsNoError;
}

class ThresholdPath : public ::testing::TestWithParam<Path> {
protected:
    void SetUp() override {
        if (wide(GetParam()) && !v8::simd::hasAvx2()) GTEST_SKIP() << "no AVX2 on this processor";
    }
};

TEST_P(ThresholdPath, Val8uBothComparesEveryTail) {
    if (streams(GetParam())) GTEST_SKIP() << "8-bit thresholds have no streaming rows";
    sweepThresholdVal<Zev8u>(GetParam(), {0, 127, 128, 255}, 77, 13);
}

TEST_P(ThresholdPath, Val16uBothComparesEveryTail) {
    sweepThresholdVal<Zev16u>(GetParam(), {0, 0x7fff, 0x8000, 0xffff}, 4321, 17);
}

TEST_P(ThresholdPath, Float32KeepsNaNAndSignedZeros) {
    if (streams(GetParam())) GTEST_SKIP() << "float thresholds have no streaming rows";
    zt::Rng rng(31);
    for (int cmp : {v8::zevCmpLess, v8::zevCmpGreater})
        for (float thr : {0.0f, -0.0f, 2.5f, std::numeric_limits<float>::quiet_NaN()})
            for (int w : zt::sweepWidths()) {
                Image<Zev32f> src(w, 2, 1, 1, w % 4), dst(w, 2, 1, 2, 1);
                randomize(src, rng);
                ASSERT_EQ(run32f(GetParam(), src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), thr, cmp),
                          zevStsNoError);
                std::vector<Zev32f> in = src.pixels(), want(in.size());
                for (std::size_t i = 0; i < in.size(); ++i) want[i] = threshold32fRef(in[i], thr, cmp == 4);
                ASSERT_TRUE(zt::sameBits(dst.pixels(), want)) << "width " << w << " thr " << thr << " cmp " << cmp;
                ASSERT_TRUE(dst.guardsIntact());
            }
}

INSTANTIATE_TEST_SUITE_P(Prims, ThresholdPath,
                         ::testing::Values(Path::Routine, Path::Ssse3, Path::Ssse3Stream, Path::Avx2,
                                           Path::Avx2Stream),
                         [](const auto& info) { return std::string(pathName(info.param)); });

// Bands open at 192 x 192 with more than one thread; the result must not move.
TEST(PrimsThreshold, Val16uBandsDoNotChangeTheResult) {
    zt::Rng rng(19);
    for (int t : {1, 2, 3, 300})
        for (ZeviSize sz : {ZeviSize{191, 192}, ZeviSize{192, 191}, ZeviSize{192, 192}, ZeviSize{197, 203}}) {
            zt::Threads scope(t);
            checkThresholdVal<Zev16u>(v8::zeviThreshold_Val_16u_C1R, sz, 1, 30000, 7, v8::zevCmpGreater, false,
                                      rng);
            checkThresholdVal<Zev16u>(v8::zeviThreshold_Val_16u_C1R, sz, 0, 30000, 7, v8::zevCmpLess, true, rng);
        }
}

TEST(PrimsThreshold, GTValIsTheGreaterThanCompare) {
    zt::Rng rng(29);
    auto gt8 = [](const Zev8u* s, int ss, Zev8u* d, int ds, ZeviSize r, Zev8u t, Zev8u v, int) {
        return v8::zeviThreshold_GTVal_8u_C1R(s, ss, d, ds, r, t, v);
    };
    auto gt16 = [](const Zev16u* s, int ss, Zev16u* d, int ds, ZeviSize r, Zev16u t, Zev16u v, int) {
        return v8::zeviThreshold_GTVal_16u_C1R(s, ss, d, ds, r, t, v);
    };
    for (int w : {1, 15, 16, 17, 33, 100}) {
        checkThresholdVal<Zev8u>(gt8, ZeviSize{w, 3}, 1, 100, 0, v8::zevCmpGreater, false, rng);
        checkThresholdVal<Zev16u>(gt16, ZeviSize{w, 3}, 1, 1000, 0, v8::zevCmpGreater, false, rng);
    }
}

TEST(PrimsThreshold, ValJudgesTheCompareCodeFirst) {
    Image<Zev8u> s(8, 2), d(8, 2);
    Image<Zev16u> s16(8, 2), d16(8, 2);
    d.snapshot();
    d16.snapshot();
    for (int bad : {1, 2, 3, 5, -1}) {
        EXPECT_EQ(v8::zeviThreshold_Val_8u_C1R(nullptr, 0, nullptr, 0, ZeviSize{0, 0}, 1, 2, bad),
                  zevStsUnsupportedCompare);
        EXPECT_EQ(v8::zeviThreshold_Val_16u_C1R(s16.ptr(), s16.step(), d16.ptr(), d16.step(), s16.size(), 1, 2, bad),
                  zevStsUnsupportedCompare);
    }
    EXPECT_EQ(v8::zeviThreshold_Val_8u_C1R(s.ptr(), 8, nullptr, 8, ZeviSize{0, 2}, 1, 2, 0), zevStsNullPointer);
    EXPECT_EQ(v8::zeviThreshold_Val_8u_C1R(s.ptr(), 0, d.ptr(), 8, ZeviSize{8, 0}, 1, 2, 0), zevStsBadSize);
    EXPECT_EQ(v8::zeviThreshold_Val_8u_C1R(s.ptr(), s.step(), d.ptr(), 0, s.size(), 1, 2, 4), zevStsBadStep);
    EXPECT_EQ(v8::zeviThreshold_GTVal_16u_C1R(s16.ptr(), -2, d16.ptr(), d16.step(), s16.size(), 1, 2), zevStsBadStep);
    EXPECT_TRUE(d.unchanged());
    EXPECT_TRUE(d16.unchanged());
}

TEST(PrimsThreshold, Float32JudgesStepsBeforeTheCompareCode) {
    Image<Zev32f> s(8, 2), d(8, 2);
    d.snapshot();
    EXPECT_EQ(v8::zeviThreshold_32f_C1R(nullptr, s.step(), d.ptr(), d.step(), s.size(), 0, 7), zevStsNullPointer);
    EXPECT_EQ(v8::zeviThreshold_32f_C1R(s.ptr(), s.step(), d.ptr(), d.step(), ZeviSize{0, 2}, 0, 7), zevStsBadSize);
    EXPECT_EQ(v8::zeviThreshold_32f_C1R(s.ptr(), 31, d.ptr(), d.step(), s.size(), 0, 7), zevStsBadStep);
    EXPECT_EQ(v8::zeviThreshold_32f_C1R(s.ptr(), 32, d.ptr(), 32, s.size(), 0, 7), zevStsUnsupportedCompare);
    EXPECT_EQ(v8::zeviThreshold_LT_32f_C1R(s.ptr(), s.step(), d.ptr(), 0, s.size(), 0), zevStsBadStep);
    EXPECT_TRUE(d.unchanged());
}

}  // namespace
