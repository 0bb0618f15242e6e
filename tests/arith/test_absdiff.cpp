// Absolute difference: bit-exact results against a plain reference, the
// argument chain, thread-count independence and the float special values.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "arith/kernels/absdiff.h"
#include "common/guarded.h"
#include "zevcv.h"

namespace {

using zt::Image;

// Plain reference: the distance between two values of the element type, and
// for float the single-precision difference with its sign dropped.
template <class T>
T refAbsDiff(T a, T b) {
    if constexpr (std::is_same_v<T, float>) return std::fabs(static_cast<float>(a - b));
    else return static_cast<T>(a > b ? a - b : b - a);
}

template <class T>
T randomValue(zt::Rng& r) {
    if constexpr (std::is_same_v<T, float>) return r.uniformf(-1000.f, 1000.f);
    else if constexpr (sizeof(T) == 1) return static_cast<T>(r.next() & 0xff);
    else {
        // Mostly extremes and near-equal values: where saturation mistakes show.
        switch (r.next() % 4) {
            case 0: return 0;
            case 1: return 0xffff;
            default: return static_cast<T>(r.next() & 0xffff);
        }
    }
}

// The public function under test, for one element type.
template <class T>
ZevStatus callAbsDiff(const T* a, int as, const T* b, int bs, T* d, int ds, ZeviSize roi, int channels) {
    if constexpr (std::is_same_v<T, Zev8u>)
        return channels == 3 ? zeviAbsDiff_8u_C3R(a, as, b, bs, d, ds, roi) : zeviAbsDiff_8u_C1R(a, as, b, bs, d, ds, roi);
    else if constexpr (std::is_same_v<T, Zev16u>) return zeviAbsDiff_16u_C1R(a, as, b, bs, d, ds, roi);
    else return zeviAbsDiff_32f_C1R(a, as, b, bs, d, ds, roi);
}

template <class T, class V>
ZevStatus callAbsDiffC(const T* a, int as, T* d, int ds, ZeviSize roi, V value) {
    if constexpr (std::is_same_v<T, Zev8u>) return zeviAbsDiffC_8u_C1R(a, as, d, ds, roi, value);
    else if constexpr (std::is_same_v<T, Zev16u>) return zeviAbsDiffC_16u_C1R(a, as, d, ds, roi, value);
    else return zeviAbsDiffC_32f_C1R(a, as, d, ds, roi, value);
}

// Layout of one exactness case: origin offsets (in elements) of src1, src2, dst.
struct Layout {
    int off1, off2, offD;
};
const Layout kLayouts[] = {{0, 0, 0}, {1, 0, 0}, {0, 3, 0}, {0, 0, 5}, {7, 7, 7}};

template <class T>
void checkAllWidths(int channels) {
    zt::Rng rng(7 + sizeof(T) + channels);
    for (const Layout& l : kLayouts) {
        for (int w = 1; w <= 67; ++w) {
            const int h = 3;
            Image<T> a(w, h, channels, 5, l.off1), b(w, h, channels, 2, l.off2), d(w, h, channels, 9, l.offD);
            a.fill([&] { return randomValue<T>(rng); });
            b.fill([&] { return randomValue<T>(rng); });
            d.fill([] { return T(0); });
            ASSERT_EQ(callAbsDiff<T>(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), ZeviSize{w, h}, channels),
                      zevStsNoError);
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w * channels; ++x) {
                    T want = refAbsDiff(a.row(y)[x], b.row(y)[x]);
                    ASSERT_EQ(std::memcmp(&d.row(y)[x], &want, sizeof(T)), 0)
                        << "w=" << w << " x=" << x << " y=" << y << " offsets " << l.off1 << "," << l.off2 << "," << l.offD;
                }
            ASSERT_TRUE(d.guardsIntact()) << "w=" << w;
            ASSERT_TRUE(a.guardsIntact() && b.guardsIntact());
        }
    }
}

TEST(AbsDiffExact, Every8uTailAndOrigin) { checkAllWidths<Zev8u>(1); }
TEST(AbsDiffExact, Every8uC3TailAndOrigin) { checkAllWidths<Zev8u>(3); }
TEST(AbsDiffExact, Every16uTailAndOrigin) { checkAllWidths<Zev16u>(1); }
TEST(AbsDiffExact, Every32fTailAndOrigin) { checkAllWidths<Zev32f>(1); }

template <class T, class V>
void checkConstAllWidths(V value, T clamped) {
    zt::Rng rng(99);
    for (const Layout& l : kLayouts) {
        for (int w = 1; w <= 67; ++w) {
            Image<T> a(w, 2, 1, 4, l.off1), d(w, 2, 1, 1, l.offD);
            a.fill([&] { return randomValue<T>(rng); });
            ASSERT_EQ(callAbsDiffC<T>(a.ptr(), a.step(), d.ptr(), d.step(), ZeviSize{w, 2}, value), zevStsNoError);
            for (int y = 0; y < 2; ++y)
                for (int x = 0; x < w; ++x) {
                    T want = refAbsDiff(a.row(y)[x], clamped);
                    ASSERT_EQ(std::memcmp(&d.row(y)[x], &want, sizeof(T)), 0) << "w=" << w << " x=" << x;
                }
            ASSERT_TRUE(d.guardsIntact());
        }
    }
}

TEST(AbsDiffCExact, ValuesAreClampedToTheElementRange) {
    checkConstAllWidths<Zev8u>(77, Zev8u{77});
    checkConstAllWidths<Zev8u>(-5, Zev8u{0});     // behaves as 0: the source unchanged
    checkConstAllWidths<Zev8u>(1000, Zev8u{255});
    checkConstAllWidths<Zev16u>(40000, Zev16u{40000});
    checkConstAllWidths<Zev16u>(-1, Zev16u{0});
    checkConstAllWidths<Zev16u>(70000, Zev16u{65535});
    checkConstAllWidths<Zev32f>(12.25f, 12.25f);
}

TEST(AbsDiffCExact, NegativeValueLeavesSourceUnchanged) {
    Image<Zev8u> a(37, 4), d(37, 4);
    zt::Rng rng(3);
    a.fill([&] { return static_cast<Zev8u>(rng.next()); });
    ASSERT_EQ(zeviAbsDiffC_8u_C1R(a.ptr(), a.step(), d.ptr(), d.step(), a.size(), -5), zevStsNoError);
    EXPECT_EQ(a.pixels(), d.pixels());
}

TEST(AbsDiffExact, InPlaceOnEitherSource) {
    zt::Rng rng(11);
    for (int w : {1, 15, 16, 33, 67}) {
        Image<Zev8u> a(w, 3), b(w, 3);
        a.fill([&] { return static_cast<Zev8u>(rng.next()); });
        b.fill([&] { return static_cast<Zev8u>(rng.next()); });
        std::vector<Zev8u> want;
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < w; ++x) want.push_back(refAbsDiff(a.row(y)[x], b.row(y)[x]));
        Image<Zev8u> a2 = a;
        ASSERT_EQ(zeviAbsDiff_8u_C1R(a.ptr(), a.step(), b.ptr(), b.step(), a.ptr(), a.step(), a.size()), zevStsNoError);
        EXPECT_EQ(a.pixels(), want);
        ASSERT_EQ(zeviAbsDiff_8u_C1R(a2.ptr(), a2.step(), b.ptr(), b.step(), b.ptr(), b.step(), b.size()), zevStsNoError);
        EXPECT_EQ(b.pixels(), want);
    }
    Image<Zev32f> f(29, 2);
    f.fill([&] { return rng.uniformf(-5, 5); });
    std::vector<Zev32f> want;
    for (float v : f.pixels()) want.push_back(std::fabs(v - 1.5f));
    ASSERT_EQ(zeviAbsDiffC_32f_C1R(f.ptr(), f.step(), f.ptr(), f.step(), f.size(), 1.5f), zevStsNoError);
    EXPECT_TRUE(zt::sameBits(f.pixels(), want));
}

// ---------------------------------------------------------------- float rules

TEST(AbsDiffFloat, NanAndInfinityRules) {
    const float inf = std::numeric_limits<float>::infinity();
    const float qnan = std::numeric_limits<float>::quiet_NaN();
    struct Pair {
        float a, b;
    };
    // Enough pairs to cover the vector blocks and the tail of a row.
    const Pair pairs[] = {{inf, inf}, {-inf, -inf}, {inf, -inf}, {-inf, inf}, {qnan, 1.f}, {1.f, qnan},
                          {-qnan, 2.f}, {3.f, 3.f}, {-0.f, 0.f}, {0.f, -0.f}, {-2.f, -2.f}, {1e38f, -1e38f},
                          {inf, 5.f}, {-7.f, inf}, {1.f, 2.f}, {2.f, 1.f}, {inf, inf}, {qnan, qnan}, {-0.f, -0.f}};
    const int n = static_cast<int>(std::size(pairs));
    Image<Zev32f> a(n, 1), b(n, 1), d(n, 1);
    for (int i = 0; i < n; ++i) a.at(i, 0) = pairs[i].a, b.at(i, 0) = pairs[i].b;
    ASSERT_EQ(zeviAbsDiff_32f_C1R(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), ZeviSize{n, 1}),
              zevStsNoError);
    for (int i = 0; i < n; ++i) {
        float r = d.at(i, 0);
        std::uint32_t bits;
        std::memcpy(&bits, &r, 4);
        EXPECT_EQ(bits >> 31, 0u) << "sign bit set at " << i;
        float diff = pairs[i].a - pairs[i].b;
        if (std::isnan(diff)) EXPECT_TRUE(std::isnan(r)) << i;
        else EXPECT_EQ(r, std::fabs(diff)) << i;
    }
    // Two plus infinities: a NaN with a clear sign bit. a - a of finite a: plus zero.
    EXPECT_TRUE(std::isnan(d.at(0, 0)));
    EXPECT_EQ(std::signbit(d.at(7, 0)), false);
    EXPECT_EQ(d.at(7, 0), 0.f);
    EXPECT_EQ(d.at(2, 0), inf);
}

// ------------------------------------------------------------------ threading

TEST(AbsDiffThreads, SameResultForEveryTeamOnBothSidesOfTheThreshold) {
    // 512 x 511 elements stay serial, 512 x 512 open a region; 65536 x 4 gives a
    // team of eight more threads than rows.
    const ZeviSize sizes[] = {{512, 511}, {512, 512}, {65536, 4}, {1000, 263}};
    for (ZeviSize s : sizes) {
        Image<Zev8u> a(s.width, s.height, 1, 0, 1), b(s.width, s.height, 1, 0, 0);
        zt::Rng rng(s.width + s.height);
        a.fill([&] { return static_cast<Zev8u>(rng.next()); });
        b.fill([&] { return static_cast<Zev8u>(rng.next()); });
        std::vector<Zev8u> want;
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x) want.push_back(refAbsDiff(a.row(y)[x], b.row(y)[x]));
        for (int threads : {1, 2, 3, 8}) {
            zt::Threads team(threads);
            Image<Zev8u> d(s.width, s.height, 1, 3, 0);
            ASSERT_EQ(zeviAbsDiff_8u_C1R(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), s), zevStsNoError);
            EXPECT_TRUE(d.pixels() == want) << s.width << "x" << s.height << " threads " << threads;
            EXPECT_TRUE(d.guardsIntact());
        }
    }
}

TEST(AbsDiffThreads, WideTypesAndConstantsAcrossTeams) {
    const ZeviSize s{600, 450};  // above the threshold, rows not divisible by 8
    Image<Zev32f> a(s.width, s.height), b(s.width, s.height);
    Image<Zev16u> p(s.width, s.height);
    zt::Rng rng(5);
    a.fill([&] { return rng.uniformf(-9, 9); });
    b.fill([&] { return rng.uniformf(-9, 9); });
    p.fill([&] { return static_cast<Zev16u>(rng.next()); });
    std::vector<Zev32f> first32;
    std::vector<Zev16u> first16;
    for (int threads : {1, 2, 8}) {
        zt::Threads team(threads);
        Image<Zev32f> d(s.width, s.height);
        Image<Zev16u> e(s.width, s.height);
        ASSERT_EQ(zeviAbsDiff_32f_C1R(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), s), zevStsNoError);
        ASSERT_EQ(zeviAbsDiffC_16u_C1R(p.ptr(), p.step(), e.ptr(), e.step(), s, 1234), zevStsNoError);
        if (first32.empty()) {
            first32 = d.pixels();
            first16 = e.pixels();
            const std::vector<Zev16u> src = p.pixels();
            for (std::size_t i = 0; i < first16.size(); ++i) ASSERT_EQ(first16[i], refAbsDiff<Zev16u>(src[i], 1234));
        } else {
            EXPECT_TRUE(zt::sameBits(d.pixels(), first32)) << threads;
            EXPECT_TRUE(e.pixels() == first16) << threads;
        }
    }
}

// The streaming-store kernels run only for data larger than the cache; reach
// them directly so that they are checked on this machine too.
TEST(AbsDiffKernels, StreamingVariantsMatchTheReference) {
    zt::Rng rng(17);
    for (int w : {1, 7, 8, 9, 31, 64, 65}) {
        for (int off : {0, 1}) {
            Image<Zev16u> a(w, 3, 1, 8 - w % 8, off), b(w, 3, 1, 8 - w % 8, off), d(w, 3, 1, 8 - w % 8, off);
            Image<Zev32f> fa(w, 3, 1, 4 - w % 4, off), fb(w, 3, 1, 4 - w % 4, off), fd(w, 3, 1, 4 - w % 4, off);
            a.fill([&] { return static_cast<Zev16u>(rng.next()); });
            b.fill([&] { return static_cast<Zev16u>(rng.next()); });
            fa.fill([&] { return rng.uniformf(-3, 3); });
            fb.fill([&] { return rng.uniformf(-3, 3); });
            v8::ownAbsDiffRows_W7<Zev16u, true>(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), w, 3);
            v8::ownAbsDiffRows_W7<Zev32f, true>(fa.ptr(), fa.step(), fb.ptr(), fb.step(), fd.ptr(), fd.step(), w, 3);
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < w; ++x) {
                    ASSERT_EQ(d.row(y)[x], refAbsDiff(a.row(y)[x], b.row(y)[x])) << w << " " << off;
                    ASSERT_EQ(fd.row(y)[x], refAbsDiff(fa.row(y)[x], fb.row(y)[x])) << w << " " << off;
                }
            ASSERT_TRUE(d.guardsIntact() && fd.guardsIntact());
            v8::ownAbsDiffCRows_W7<Zev32f, true>(fa.ptr(), fa.step(), fd.ptr(), fd.step(), w, 3, 0.5f);
            v8::ownAbsDiffCRows_W7<Zev16u, true>(a.ptr(), a.step(), d.ptr(), d.step(), w, 3, Zev16u{300});
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < w; ++x) {
                    ASSERT_EQ(fd.row(y)[x], refAbsDiff(fa.row(y)[x], 0.5f));
                    ASSERT_EQ(d.row(y)[x], refAbsDiff<Zev16u>(a.row(y)[x], 300));
                }
            ASSERT_TRUE(d.guardsIntact() && fd.guardsIntact());
        }
    }
}

// ---------------------------------------------------------------- bad input

enum Fn { k8u, k8uC3, k16u, k32f, kC8u, kC16u, kC32f };

struct BadCase {
    const char* what;
    Fn fn;
    bool nullSrc1, nullSrc2, nullDst;
    int width, height;
    int dStep1, dStep2, dStepD;  // added to the minimal step in bytes
    ZevStatus want;
};

class AbsDiffBadInput : public ::testing::TestWithParam<BadCase> {};

int elemBytes(Fn f) { return f == k16u || f == kC16u ? 2 : (f == k32f || f == kC32f ? 4 : 1); }
int channelsOf(Fn f) { return f == k8uC3 ? 3 : 1; }

TEST_P(AbsDiffBadInput, ReportsTheFirstFaultAndWritesNothing) {
    const BadCase& c = GetParam();
    const int eb = elemBytes(c.fn), ch = channelsOf(c.fn);
    const int w = 8, h = 4;  // the buffers; the call may claim another size
    const int minStep = std::max(c.width, 1) * ch * eb;
    Image<Zev8u> a(w * ch * eb + 32, h), b(w * ch * eb + 32, h), d(w * ch * eb + 32, h);
    a.fill([] { return Zev8u{9}; });
    b.fill([] { return Zev8u{1}; });
    d.snapshot();
    const void* s1 = c.nullSrc1 ? nullptr : a.ptr();
    const void* s2 = c.nullSrc2 ? nullptr : b.ptr();
    void* dd = c.nullDst ? nullptr : d.ptr();
    const int st1 = minStep + c.dStep1, st2 = minStep + c.dStep2, stD = minStep + c.dStepD;
    ZeviSize roi{c.width, c.height};
    ZevStatus got = 0;
    switch (c.fn) {
        case k8u: got = zeviAbsDiff_8u_C1R((const Zev8u*)s1, st1, (const Zev8u*)s2, st2, (Zev8u*)dd, stD, roi); break;
        case k8uC3: got = zeviAbsDiff_8u_C3R((const Zev8u*)s1, st1, (const Zev8u*)s2, st2, (Zev8u*)dd, stD, roi); break;
        case k16u: got = zeviAbsDiff_16u_C1R((const Zev16u*)s1, st1, (const Zev16u*)s2, st2, (Zev16u*)dd, stD, roi); break;
        case k32f: got = zeviAbsDiff_32f_C1R((const Zev32f*)s1, st1, (const Zev32f*)s2, st2, (Zev32f*)dd, stD, roi); break;
        case kC8u: got = zeviAbsDiffC_8u_C1R((const Zev8u*)s1, st1, (Zev8u*)dd, stD, roi, 3); break;
        case kC16u: got = zeviAbsDiffC_16u_C1R((const Zev16u*)s1, st1, (Zev16u*)dd, stD, roi, 3); break;
        case kC32f: got = zeviAbsDiffC_32f_C1R((const Zev32f*)s1, st1, (Zev32f*)dd, stD, roi, 3.f); break;
    }
    EXPECT_EQ(got, c.want) << c.what;
    if (c.want != zevStsNoError) EXPECT_TRUE(d.unchanged()) << c.what << ": written on an error return";
    else EXPECT_TRUE(d.guardsIntact()) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Chain, AbsDiffBadInput,
    ::testing::Values(
        BadCase{"null src1", k8u, true, false, false, 4, 2, 0, 0, 0, zevStsNullPointer},
        BadCase{"null src2", k16u, false, true, false, 4, 2, 0, 0, 0, zevStsNullPointer},
        BadCase{"null dst", k32f, false, false, true, 4, 2, 0, 0, 0, zevStsNullPointer},
        BadCase{"null with zero width: pointer first", k8u, true, false, false, 0, 2, 0, 0, 0, zevStsNullPointer},
        BadCase{"null src with bad size (constant form)", kC16u, true, false, false, -1, 0, 0, 0, 0, zevStsNullPointer},
        BadCase{"zero width", k8u, false, false, false, 0, 2, 0, 0, 0, zevStsBadSize},
        BadCase{"zero width beats a short step", k16u, false, false, false, 0, 2, -3, 0, 0, zevStsBadSize},
        BadCase{"negative height", k32f, false, false, false, 4, -2, 0, 0, 0, zevStsBadSize},
        BadCase{"zero height", kC8u, false, false, false, 4, 0, 0, 0, 0, zevStsBadSize},
        BadCase{"C3 zero width", k8uC3, false, false, false, 0, 1, 0, 0, 0, zevStsBadSize},
        BadCase{"short src1 step", k8u, false, false, false, 4, 2, -1, 0, 0, zevStsBadStep},
        BadCase{"short src2 step", k32f, false, false, false, 4, 2, 0, -4, 0, zevStsBadStep},
        BadCase{"short dst step", kC32f, false, false, false, 4, 2, 0, 0, -4, zevStsBadStep},
        BadCase{"negative step", kC8u, false, false, false, 4, 2, -100, 0, 0, zevStsBadStep},
        BadCase{"C3 dst step 3w-1", k8uC3, false, false, false, 4, 2, 0, 0, -1, zevStsBadStep},
        BadCase{"short step beats odd step", k16u, false, false, false, 4, 2, 1, 0, -2, zevStsBadStep},
        BadCase{"odd 16u step", k16u, false, false, false, 4, 2, 1, 0, 0, zevStsStepNotMultiple},
        BadCase{"odd 16u dst step", kC16u, false, false, false, 4, 2, 0, 0, 3, zevStsStepNotMultiple},
        BadCase{"32f step not a multiple of 4", k32f, false, false, false, 4, 2, 0, 2, 0, zevStsStepNotMultiple},
        BadCase{"32f constant step not a multiple of 4", kC32f, false, false, false, 4, 2, 6, 0, 0,
                zevStsStepNotMultiple},
        BadCase{"odd 8u step is fine", k8u, false, false, false, 4, 2, 1, 3, 5, zevStsNoError},
        BadCase{"step equal to the row is fine", k32f, false, false, false, 4, 2, 0, 0, 0, zevStsNoError}));

}  // namespace
