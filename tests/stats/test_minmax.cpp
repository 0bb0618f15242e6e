// Extrema with indices: argument chain, results against the plain reference
// over all tails and origins, NaN and signed-zero lanes, thread splits.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "common/guarded.h"
#include "test_mean_minmax_util.h"
#include "test_minmax_ref.h"
#include "zevcv.h"

namespace {

using st::byType;
using st::Ty;

using Call = ZevStatus (*)(const void*, int, const Zev8u*, int, ZeviSize, int, Zev32f*, Zev32f*, ZeviPoint*,
                           ZeviPoint*);

struct MinMaxFn {
    std::string name;
    Ty ty;
    int ch;
    bool masked;
    Call call;
};
void PrintTo(const MinMaxFn& f, std::ostream* os) { *os << f.name; }

#define MINMAX(T, tag, ty)                                                                                     \
    MinMaxFn{#tag "_C1R", ty, 1, false,                                                                        \
             [](const void* s, int ss, const Zev8u*, int, ZeviSize r, int, Zev32f* a, Zev32f* b, ZeviPoint* i, \
                ZeviPoint* j) { return zeviMinMaxIndx_##tag##_C1R(static_cast<const T*>(s), ss, r, a, b, i, j); }}, \
        MinMaxFn{#tag "_C3CR", ty, 3, false,                                                                   \
                 [](const void* s, int ss, const Zev8u*, int, ZeviSize r, int c, Zev32f* a, Zev32f* b,         \
                    ZeviPoint* i, ZeviPoint* j) {                                                              \
                     return zeviMinMaxIndx_##tag##_C3CR(static_cast<const T*>(s), ss, r, c, a, b, i, j);       \
                 }},                                                                                           \
        MinMaxFn{#tag "_C1MR", ty, 1, true,                                                                    \
                 [](const void* s, int ss, const Zev8u* m, int ms, ZeviSize r, int, Zev32f* a, Zev32f* b,      \
                    ZeviPoint* i, ZeviPoint* j) {                                                              \
                     return zeviMinMaxIndx_##tag##_C1MR(static_cast<const T*>(s), ss, m, ms, r, a, b, i, j);   \
                 }},                                                                                           \
        MinMaxFn{#tag "_C3CMR", ty, 3, true,                                                                   \
                 [](const void* s, int ss, const Zev8u* m, int ms, ZeviSize r, int c, Zev32f* a, Zev32f* b,    \
                    ZeviPoint* i, ZeviPoint* j) {                                                              \
                     return zeviMinMaxIndx_##tag##_C3CMR(static_cast<const T*>(s), ss, m, ms, r, c, a, b, i, j); \
                 }}

const std::vector<MinMaxFn>& allFns() {
    static const std::vector<MinMaxFn> fns = {MINMAX(Zev8u, 8u, Ty::U8), MINMAX(Zev8s, 8s, Ty::S8),
                                              MINMAX(Zev16u, 16u, Ty::U16), MINMAX(Zev32f, 32f, Ty::F32)};
    return fns;
}

// Values: 0 full range; 1 a narrow range (many ties); 2 for 32f: NaNs, signed
// zeros and infinities among small values.
template <class E>
E randomValue(zt::Rng& rng, int mode) {
    if constexpr (std::is_same_v<E, float>) {
        if (mode == 2) {
            switch (rng.uniform(0, 11)) {
                case 0: return std::numeric_limits<float>::quiet_NaN();
                case 1: return 0.0f;
                case 2: return -0.0f;
                case 3: return rng.next() % 2 ? INFINITY : -INFINITY;
                default: return static_cast<float>(rng.uniform(-3, 3));
            }
        }
        return mode ? static_cast<float>(rng.uniform(-2, 2)) : rng.uniformf(-1e6f, 1e6f);
    } else {
        constexpr int lo = std::numeric_limits<E>::min(), hi = std::numeric_limits<E>::max();
        if (mode) return static_cast<E>(rng.uniform(lo / 2 + hi / 2 - 2, lo / 2 + hi / 2 + 2));
        return static_cast<E>(rng.uniform(lo, hi));
    }
}

bool sameFloat(float a, float b) { return std::memcmp(&a, &b, 4) == 0; }

template <class E>
void checkOne(const MinMaxFn& f, zt::Image<E>& img, zt::Image<Zev8u>& mask, int coi, int team,
              const std::string& what) {
    mmref::Result want = mmref::minMax(img, f.masked ? &mask : nullptr, coi, team);
    Zev32f mn = -7, mx = -7;
    ZeviPoint a{-1, -1}, b{-1, -1};
    ASSERT_EQ(f.call(img.ptr(), img.step(), mask.ptr(), mask.step(), img.size(), coi, &mn, &mx, &a, &b),
              zevStsNoError);
    const std::string at = f.name + " " + what + " w=" + std::to_string(img.width()) +
                           " h=" + std::to_string(img.height()) + " coi=" + std::to_string(coi);
    EXPECT_TRUE(sameFloat(mn, want.minVal)) << at << " min " << mn << " want " << want.minVal;
    EXPECT_TRUE(sameFloat(mx, want.maxVal)) << at << " max " << mx << " want " << want.maxVal;
    EXPECT_EQ(a.x, want.minIdx.x) << at;
    EXPECT_EQ(a.y, want.minIdx.y) << at;
    EXPECT_EQ(b.x, want.maxIdx.x) << at;
    EXPECT_EQ(b.y, want.maxIdx.y) << at;
    EXPECT_TRUE(img.guardsIntact()) << at;
}

template <class E>
void randomCase(const MinMaxFn& f, int w, int h, int off, int mode, int density, int coi, zt::Rng& rng, int team) {
    zt::Image<E> img(w, h, f.ch, 3, off);
    img.fill([&] { return randomValue<E>(rng, mode); });
    zt::Image<Zev8u> mask(w, h, 1, 2, off);
    mask.fill([&] { return static_cast<Zev8u>(rng.uniform(0, 99) < density ? rng.uniform(1, 255) : 0); });
    checkOne(f, img, mask, coi, team, "mode=" + std::to_string(mode) + " off=" + std::to_string(off));
}

class MinMaxAll : public ::testing::TestWithParam<MinMaxFn> {};

TEST_P(MinMaxAll, MatchesReferenceOverTailsAndOrigins) {
    const MinMaxFn& f = GetParam();
    zt::Rng rng(11);
    zt::Threads scope(1);
    byType(f.ty, [&](auto e) {
        using E = decltype(e);
        const int modes = std::is_same_v<E, float> ? 3 : 2;
        for (int w = 1; w <= 70; ++w)
            for (int off : {0, 1, 2})
                for (int mode = 0; mode < modes; ++mode)
                    randomCase<E>(f, w, 1 + (w + off) % 5, off, mode, 40, 1 + (w + mode) % 3, rng, 1);
    });
}

// A mask that selects little: rows before the first selected pixel, rows with none.
TEST(MinMaxMasked, SparseMasks) {
    zt::Rng rng(12);
    for (const MinMaxFn& f : allFns()) {
        if (!f.masked) continue;
        byType(f.ty, [&](auto e) {
            using E = decltype(e);
            for (int w : {1, 7, 16, 33})
                for (int density : {1, 3, 10}) randomCase<E>(f, w, 9, 1, 1, density, 2, rng, 1);
        });
    }
}

// 16383 and 16384 pixels and more, under several team sizes, one with more
// threads than rows.
TEST_P(MinMaxAll, ThreadSplit) {
    const MinMaxFn& f = GetParam();
    zt::Rng rng(13);
    struct Shape {
        int w, h;
    };
    const Shape shapes[] = {{16383, 1}, {16384, 1}, {128, 128}, {129, 127}, {4096, 5}, {301, 97}};
    byType(f.ty, [&](auto e) {
        using E = decltype(e);
        const int modes = std::is_same_v<E, float> ? 3 : 2;
        for (int T : {1, 2, 3, 8}) {
            zt::Threads scope(T);
            for (const Shape& s : shapes)
                for (int mode = 0; mode < modes; ++mode) randomCase<E>(f, s.w, s.h, 1, mode, 50, 3, rng, T);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Stats, MinMaxAll, ::testing::ValuesIn(allFns()),
                         [](const auto& info) { return info.param.name; });

// ---- edge cases with known answers

const MinMaxFn& fn(const std::string& name) {
    for (const MinMaxFn& f : allFns())
        if (f.name == name) return f;
    throw 0;
}

struct Got {
    Zev32f mn = -7, mx = -7;
    ZeviPoint a{-1, -1}, b{-1, -1};
};

template <class E>
Got run(const std::string& name, zt::Image<E>& img, zt::Image<Zev8u>* mask = nullptr, int coi = 1) {
    Got g;
    const Zev8u* m = mask ? mask->ptr() : nullptr;
    int ms = mask ? mask->step() : 0;
    EXPECT_EQ(fn(name).call(img.ptr(), img.step(), m, ms, img.size(), coi, &g.mn, &g.mx, &g.a, &g.b), zevStsNoError);
    return g;
}

TEST(MinMaxEdge, ConstantImageReportsTheOrigin) {
    for (int T : {1, 2}) {
        zt::Threads scope(T);
        for (int w : {5, 20000}) {
            zt::Image<Zev8u> img(w, 2);
            img.fill([] { return Zev8u{255}; });
            Got g = run("8u_C1R", img);
            EXPECT_EQ(g.mn, 255.0f);
            EXPECT_EQ(g.mx, 255.0f);
            EXPECT_EQ(g.a.x, 0);
            EXPECT_EQ(g.a.y, 0);
            EXPECT_EQ(g.b.x, 0);
            EXPECT_EQ(g.b.y, 0);
        }
    }
}

TEST(MinMaxEdge, TiesGoToTheFirstInRowMajorOrder) {
    zt::Image<Zev16u> img(40, 6);
    img.fill([] { return Zev16u{500}; });
    img.at(31, 2) = 7;
    img.at(9, 4) = 7;
    img.at(35, 2) = 7;
    img.at(3, 1) = 9000;
    img.at(3, 5) = 9000;
    Got g = run("16u_C1R", img);
    EXPECT_EQ(g.a.x, 31);
    EXPECT_EQ(g.a.y, 2);
    EXPECT_EQ(g.b.x, 3);
    EXPECT_EQ(g.b.y, 1);
}

TEST(MinMaxEdge, EmptyMaskGivesZeros) {
    for (const MinMaxFn& f : allFns()) {
        if (!f.masked) continue;
        byType(f.ty, [&](auto e) {
            using E = decltype(e);
            for (int T : {1, 3}) {
                zt::Threads scope(T);
                zt::Image<E> img(200, 100, f.ch);
                img.fill([] { return static_cast<E>(5); });
                zt::Image<Zev8u> mask(200, 100);
                mask.fill([] { return Zev8u{0}; });
                Got g = run(f.name, img, &mask, 2);
                EXPECT_EQ(g.mn, 0.0f) << f.name;
                EXPECT_EQ(g.mx, 0.0f) << f.name;
                EXPECT_EQ(g.a.x | g.a.y | g.b.x | g.b.y, 0) << f.name;
            }
        });
    }
}

// A band of only 255 under the mask, after a band with no selected pixel.
TEST(MinMaxEdge, MaskedStartValueInALaterBand) {
    for (int T : {1, 2, 4}) {
        zt::Threads scope(T);
        zt::Image<Zev8u> img(256, 128);
        img.fill([] { return Zev8u{255}; });
        zt::Image<Zev8u> mask(256, 128);
        mask.fill([] { return Zev8u{0}; });
        mask.at(77, 100) = 1;
        mask.at(13, 120) = 1;
        Got g = run("8u_C1MR", img, &mask);
        EXPECT_EQ(g.mn, 255.0f);
        EXPECT_EQ(g.a.x, 77) << T;
        EXPECT_EQ(g.a.y, 100) << T;
        EXPECT_EQ(g.b.x, 77) << T;
        EXPECT_EQ(g.b.y, 100) << T;
    }
}

TEST(MinMaxEdge, AllNanFloat) {
    zt::Image<Zev32f> img(13, 4);
    img.fill([] { return std::numeric_limits<float>::quiet_NaN(); });
    Got g = run("32f_C1R", img);
    EXPECT_EQ(g.mn, FLT_MAX);
    EXPECT_TRUE(std::isnan(g.mx));
    // Neither value is found in its row: the scan stops at the row's end.
    EXPECT_EQ(g.a.x, 13);
    EXPECT_EQ(g.a.y, 0);
    EXPECT_EQ(g.b.x, 13);
    EXPECT_EQ(g.b.y, 3);  // every NaN row maximum replaces the best
}

TEST(MinMaxEdge, OnlyPlusInfinity) {
    zt::Image<Zev32f> img(9, 3, 3);
    img.fill([] { return INFINITY; });
    Got g = run("32f_C3CR", img, nullptr, 2);
    EXPECT_EQ(g.mn, FLT_MAX);
    EXPECT_EQ(g.mx, INFINITY);
    EXPECT_EQ(g.a.x, 0);  // not found; the scalar scan leaves column 0
    EXPECT_EQ(g.b.x, 0);
    EXPECT_EQ(g.b.y, 0);
}

TEST(MinMaxEdge, NullOutputsAreSkipped) {
    zt::Image<Zev8s> img(30, 3);
    zt::Rng rng(4);
    img.fill([&] { return static_cast<Zev8s>(rng.uniform(-128, 127)); });
    Zev32f mn = 0;
    EXPECT_EQ(zeviMinMaxIndx_8s_C1R(img.ptr(), img.step(), img.size(), &mn, nullptr, nullptr, nullptr),
              zevStsNoError);
    EXPECT_EQ(zeviMinMaxIndx_8s_C1R(img.ptr(), img.step(), img.size(), nullptr, nullptr, nullptr, nullptr),
              zevStsNoError);
}

// Over 32 threads the band slots leave the stack.
TEST(MinMaxEdge, TeamAboveThirtyTwo) {
    zt::Rng rng(14);
    zt::Threads scope(40);
    for (const char* name : {"32f_C1R", "8u_C1MR", "16u_C3CR"}) {
        const MinMaxFn& f = fn(name);
        byType(f.ty, [&](auto e) {
            using E = decltype(e);
            randomCase<E>(f, 16384, 3, 0, 2, 50, 2, rng, 40);
            randomCase<E>(f, 300, 90, 1, 2, 50, 2, rng, 40);
        });
    }
}

// ---- the argument chain

struct ArgCase {
    std::string what;
    int width, height, stepDelta, maskStepDelta, coi;
    bool nullSrc, nullMask;
    ZevStatus want[4];  // 8u, 8s, 16u, 32f
    bool coiOnly;       // the status comes from coi: one-channel functions succeed
};

constexpr ZevStatus kNull = zevStsNullPointer, kSize = zevStsBadSize, kStep = zevStsBadStep,
                    kMult = zevStsStepNotMultiple, kCoi = zevStsBadCoi, kOk = zevStsNoError;

class MinMaxArgs : public ::testing::TestWithParam<ArgCase> {};

TEST_P(MinMaxArgs, StatusAndNothingWritten) {
    const ArgCase& c = GetParam();
    for (const MinMaxFn& f : allFns()) {
        if (!f.masked && (c.nullMask || c.maskStepDelta)) continue;
        byType(f.ty, [&](auto e) {
            using E = decltype(e);
            st::ArgImages<E> im(c.width, c.height, f.ch);
            const int w = im.w;
            Zev32f mn = 11, mx = 12;
            ZeviPoint a{13, 14}, b{15, 16};
            const int step = w * f.ch * st::elemBytes(f.ty) + c.stepDelta;
            ZevStatus got = f.call(c.nullSrc ? nullptr : im.img.ptr(), step, c.nullMask ? nullptr : im.mask.ptr(),
                                   w + c.maskStepDelta, ZeviSize{c.width, c.height}, c.coi, &mn, &mx, &a, &b);
            ZevStatus want = c.want[static_cast<int>(f.ty)];
            if (c.coiOnly && f.ch == 1 && want == kCoi) want = zevStsNoError;
            EXPECT_EQ(got, want) << c.what << " " << f.name;
            if (got != zevStsNoError) {
                EXPECT_TRUE(mn == 11 && mx == 12 && a.x == 13 && a.y == 14 && b.x == 15 && b.y == 16) << f.name;
            }
            EXPECT_TRUE(im.unchanged());
        });
    }
}

INSTANTIATE_TEST_SUITE_P(
    Stats, MinMaxArgs,
    ::testing::Values(
        ArgCase{"null src with zero width", 0, 3, 0, 0, 1, true, false, {kNull, kNull, kNull, kNull}, false},
        ArgCase{"null mask", 4, 3, 0, 0, 1, false, true, {kNull, kNull, kNull, kNull}, false},
        ArgCase{"zero width", 0, 3, -50, 0, 1, false, false, {kSize, kSize, kSize, kSize}, false},
        ArgCase{"negative height", 4, -1, 0, 0, 1, false, false, {kSize, kSize, kSize, kSize}, false},
        ArgCase{"short step", 4, 3, -1, 0, 1, false, false, {kStep, kStep, kStep, kStep}, false},
        ArgCase{"negative step", 4, 3, -100000, 0, 1, false, false, {kStep, kStep, kStep, kStep}, false},
        ArgCase{"short mask step", 4, 3, 0, -1, 1, false, false, {kStep, kStep, kStep, kStep}, false},
        // The mask step is judged before the multiple, for every type.
        ArgCase{"odd step and short mask step", 4, 3, 1, -1, 1, false, false, {kStep, kStep, kStep, kStep}, false},
        ArgCase{"odd step", 4, 3, 1, 0, 1, false, false, {kOk, kOk, kMult, kMult}, false},
        ArgCase{"step of two extra bytes", 4, 3, 2, 0, 1, false, false, {kOk, kOk, kOk, kMult}, false},
        ArgCase{"coi 4", 4, 3, 0, 0, 4, false, false, {kCoi, kCoi, kCoi, kCoi}, true},
        ArgCase{"coi 0", 4, 3, 0, 0, 0, false, false, {kCoi, kCoi, kCoi, kCoi}, true},
        ArgCase{"coi 4 after an odd step", 4, 3, 1, 0, 4, false, false, {kCoi, kCoi, kMult, kMult}, true},
        ArgCase{"coi 3", 1, 1, 0, 0, 3, false, false, {kOk, kOk, kOk, kOk}, false}),
    [](const auto& info) { return st::ident(info.param.what); });

}  // namespace
