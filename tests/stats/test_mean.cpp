// Mean and standard deviation: argument chain, bit-exact results against the
// plain reference over all tails, origins, kernels and thread splits.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "common/guarded.h"
#include "stats/kernels/mean.h"
#include "test_mean_minmax_util.h"
#include "test_mean_ref.h"
#include "zevcv.h"

namespace {

using st::byType;
using st::elemBytes;
using st::Ty;

using Call = ZevStatus (*)(const void*, int, const Zev8u*, int, ZeviSize, int, Zev64f*, Zev64f*);

// One public function behind a uniform call: src, step, mask, maskStep, size, coi, outputs.
struct MeanFn {
    std::string name;
    Ty ty;
    int ch;
    bool masked;
    bool meanOnly;
    Call call;
};

void PrintTo(const MeanFn& f, std::ostream* os) { *os << f.name; }

#define MEAN_M(T, tag, ty)                                                                                  \
    MeanFn{"Mean_" #tag "_C1MR", ty, 1, true, true,                                                         \
           [](const void* s, int ss, const Zev8u* m, int ms, ZeviSize r, int, Zev64f* mn, Zev64f*) {        \
               return zeviMean_##tag##_C1MR(static_cast<const T*>(s), ss, m, ms, r, mn);                    \
           }},                                                                                              \
        MeanFn{"Mean_" #tag "_C3CMR", ty, 3, true, true,                                                    \
               [](const void* s, int ss, const Zev8u* m, int ms, ZeviSize r, int c, Zev64f* mn, Zev64f*) {  \
                   return zeviMean_##tag##_C3CMR(static_cast<const T*>(s), ss, m, ms, r, c, mn);            \
               }}
#define MEAN_SD(T, tag, ty)                                                                                   \
    MeanFn{"StdDev_" #tag "_C1R", ty, 1, false, false,                                                        \
           [](const void* s, int ss, const Zev8u*, int, ZeviSize r, int, Zev64f* mn, Zev64f* sd) {            \
               return zeviMean_StdDev_##tag##_C1R(static_cast<const T*>(s), ss, r, mn, sd);                   \
           }},                                                                                                \
        MeanFn{"StdDev_" #tag "_C3CR", ty, 3, false, false,                                                   \
               [](const void* s, int ss, const Zev8u*, int, ZeviSize r, int c, Zev64f* mn, Zev64f* sd) {      \
                   return zeviMean_StdDev_##tag##_C3CR(static_cast<const T*>(s), ss, r, c, mn, sd);           \
               }},                                                                                            \
        MeanFn{"StdDev_" #tag "_C1MR", ty, 1, true, false,                                                    \
               [](const void* s, int ss, const Zev8u* m, int ms, ZeviSize r, int, Zev64f* mn, Zev64f* sd) {   \
                   return zeviMean_StdDev_##tag##_C1MR(static_cast<const T*>(s), ss, m, ms, r, mn, sd);       \
               }},                                                                                            \
        MeanFn{"StdDev_" #tag "_C3CMR", ty, 3, true, false,                                                   \
               [](const void* s, int ss, const Zev8u* m, int ms, ZeviSize r, int c, Zev64f* mn, Zev64f* sd) { \
                   return zeviMean_StdDev_##tag##_C3CMR(static_cast<const T*>(s), ss, m, ms, r, c, mn, sd);   \
               }}

const std::vector<MeanFn>& allFns() {
    static const std::vector<MeanFn> fns = {
        MEAN_M(Zev8u, 8u, Ty::U8),       MEAN_M(Zev8s, 8s, Ty::S8),       MEAN_M(Zev16u, 16u, Ty::U16),
        MEAN_M(Zev32f, 32f, Ty::F32),    MEAN_SD(Zev8u, 8u, Ty::U8),      MEAN_SD(Zev8s, 8s, Ty::S8),
        MEAN_SD(Zev16u, 16u, Ty::U16),   MEAN_SD(Zev32f, 32f, Ty::F32),
    };
    return fns;
}

// Random values of the element type; 32f values with a large common offset
// half of the time, so that lane order shows in the last bits.
template <class E>
E randomValue(zt::Rng& rng, int mode) {
    if constexpr (std::is_same_v<E, Zev8u>) return static_cast<E>(rng.uniform(0, 255));
    else if constexpr (std::is_same_v<E, Zev8s>) return static_cast<E>(rng.uniform(-128, 127));
    else if constexpr (std::is_same_v<E, Zev16u>) return static_cast<E>(rng.uniform(0, 65535));
    else return mode ? 1000.0f + rng.uniformf(-0.01f, 0.01f) : rng.uniformf(-300.0f, 700.0f);
}

void fillMask(zt::Image<Zev8u>& m, zt::Rng& rng, int density) {
    m.fill([&] { return static_cast<Zev8u>(rng.uniform(0, 99) < density ? rng.uniform(1, 255) : 0); });
}

std::string bitsOf(double d) {
    char b[64];
    std::snprintf(b, sizeof b, "%.17g", d);
    return b;
}

// Runs one function on one image and compares both outputs with the reference.
template <class E>
void checkOne(const MeanFn& f, int w, int h, int offset, int pad, int coi, int density, int mode, zt::Rng& rng,
              int team) {
    zt::Image<E> img(w, h, f.ch, pad, offset);
    img.fill([&] { return randomValue<E>(rng, mode); });
    zt::Image<Zev8u> mask(w, h, 1, 5, offset);
    fillMask(mask, rng, density);
    ref::Result want = ref::meanStdDev(img, f.masked ? &mask : nullptr, coi, f.meanOnly, team);
    Zev64f mean = -7, sd = -7;
    ZevStatus st = f.call(img.ptr(), img.step(), mask.ptr(), mask.step(), img.size(), coi, &mean,
                          f.meanOnly ? nullptr : &sd);
    ASSERT_EQ(st, zevStsNoError);
    EXPECT_EQ(bitsOf(mean), bitsOf(want.mean))
        << f.name << " w=" << w << " h=" << h << " off=" << offset << " coi=" << coi;
    EXPECT_EQ(std::memcmp(&mean, &want.mean, 8), 0) << f.name << " w=" << w << " h=" << h;
    if (!f.meanOnly) {
        EXPECT_EQ(std::memcmp(&sd, &want.sd, 8), 0)
            << f.name << " w=" << w << " h=" << h << " off=" << offset << " sd " << bitsOf(sd) << " want "
            << bitsOf(want.sd);
    }
    EXPECT_TRUE(img.guardsIntact());
    EXPECT_TRUE(mask.guardsIntact());
}

class MeanAll : public ::testing::TestWithParam<MeanFn> {};

// Every width up to past two 32-byte blocks, at aligned and unaligned origins,
// odd and even heights: every tail of every kernel.
TEST_P(MeanAll, MatchesReferenceOverTailsAndOrigins) {
    const MeanFn& f = GetParam();
    zt::Rng rng(77);
    byType(f.ty, [&](auto e) {
        using E = decltype(e);
        for (int w = 1; w <= 70; ++w)
            for (int off : {0, 1, 3})
                checkOne<E>(f, w, 1 + (w % 4), off, 3, 1 + w % 3, 60, w % 2, rng, 1);
    });
}

// The 32f kernel choice: n of 5000 on both sides (and of 100000), aligned and
// unaligned steps; the integer types ride along.
TEST_P(MeanAll, KernelBoundaries) {
    const MeanFn& f = GetParam();
    zt::Rng rng(5);
    zt::Threads scope(1);
    struct Shape {
        int w, h, pad, off;
    };
    const Shape shapes[] = {{100, 50, 4, 0}, {100, 50, 3, 0},  {125, 40, 4, 1},  {4999, 1, 4, 0},
                            {5001, 1, 4, 2}, {50, 100, 0, 0},  {101, 50, 3, 0},  {1000, 100, 4, 0},
                            {999, 100, 5, 0}, {1000, 99, 4, 3}, {3, 1700, 1, 0}, {2, 2500, 2, 1},
                            // 16-byte steps with the rows starting off the boundary
                            {124, 41, 4, 1}, {126, 41, 2, 3}, {3, 1700, 1, 1}, {5, 1100, 3, 2}};
    byType(f.ty, [&](auto e) {
        using E = decltype(e);
        for (const Shape& s : shapes) {
            // For one channel the pad is in elements: 4 keeps a 16-byte step for 32f.
            int pad = f.ch == 3 && s.pad == 4 ? 4 * 3 - 0 : s.pad;
            checkOne<E>(f, s.w, s.h, s.off, pad, 2, 70, 1, rng, 1);
            checkOne<E>(f, s.w, s.h, s.off, pad, 3, 70, 0, rng, 1);
        }
    });
}

// Both sides of the parallel threshold, under several team sizes, including a
// team larger than the row count.
TEST_P(MeanAll, ThreadSplitFollowsTheBands) {
    const MeanFn& f = GetParam();
    zt::Rng rng(9);
    byType(f.ty, [&](auto e) {
        using E = decltype(e);
        // Integer sums are exact whatever the split: one team size suffices there.
        const std::vector<int> teams = f.ty == Ty::F32 ? std::vector<int>{1, 2} : std::vector<int>{2};
        for (int T : teams) {
            zt::Threads scope(T);
            const int shift = (!f.masked && f.ch == 1 && f.ty == Ty::F32) ? 16 : 17;
            const int threshold = T << shift;
            const int w = 1024;
            const int h = threshold / w;
            checkOne<E>(f, w, h, 0, 4, 2, 50, 1, rng, T);      // at the threshold
            checkOne<E>(f, w - 1, h, 1, 4, 2, 50, 1, rng, T);  // just below
        }
        zt::Threads scope(4);
        const int shift = (!f.masked && f.ch == 1 && f.ty == Ty::F32) ? 16 : 17;
        const int w = ((4 << shift) + 2) / 3;
        checkOne<E>(f, w, 3, 0, 4, 1, 50, 1, rng, 4);  // three rows, four threads
    });
}

INSTANTIATE_TEST_SUITE_P(Stats, MeanAll, ::testing::ValuesIn(allFns()),
                         [](const auto& info) { return info.param.name; });

// The 32f slot order at eight and more threads.
TEST(MeanStdDev32f, TeamsOfEightAndNine) {
    const MeanFn* fns[2] = {nullptr, nullptr};
    for (const MeanFn& f : allFns()) {
        if (f.name == "StdDev_32f_C1R") fns[0] = &f;
        if (f.name == "StdDev_32f_C1MR") fns[1] = &f;
    }
    zt::Rng rng(3);
    for (int T : {8, 9}) {
        zt::Threads scope(T);
        checkOne<Zev32f>(*fns[0], 1024, (T << 16) / 1024, 0, 4, 1, 50, 1, rng, T);
        checkOne<Zev32f>(*fns[1], 1024, (T << 17) / 1024, 0, 4, 1, 50, 1, rng, T);
    }
}

TEST(MeanSlots, OrderOfTheSlotSums) {
    zt::Rng rng(1);
    for (int n = 1; n <= 40; ++n) {
        std::vector<double> v(n);
        for (auto& x : v) x = (rng.next() % 2 ? 1e16 : 1.0) * rng.uniformf(0.5f, 1.5f);
        double got = v8::sumSlotsInOrder(n, [&](int i) { return v[i]; });
        double want = ref::slotOrder(v);
        EXPECT_EQ(std::memcmp(&got, &want, 8), 0) << n;
    }
}

// ---- edge cases with known answers

TEST(MeanEdge, EmptyMaskGivesZeros) {
    for (const MeanFn& f : allFns()) {
        if (!f.masked) continue;
        byType(f.ty, [&](auto e) {
            using E = decltype(e);
            zt::Image<E> img(37, 5, f.ch);
            zt::Rng rng(2);
            img.fill([&] { return randomValue<E>(rng, 0); });
            zt::Image<Zev8u> mask(37, 5);
            mask.fill([] { return Zev8u{0}; });
            Zev64f mean = 5, sd = 5;
            EXPECT_EQ(f.call(img.ptr(), img.step(), mask.ptr(), mask.step(), img.size(), 2, &mean, &sd),
                      zevStsNoError);
            EXPECT_EQ(mean, 0.0) << f.name;
            if (!f.meanOnly) EXPECT_EQ(sd, 0.0) << f.name;
        });
    }
}

TEST(MeanEdge, ConstantFloatImageTakesTheRecoveryPass) {
    zt::Image<Zev32f> img(333, 7);
    img.fill([] { return 1000.0f; });
    Zev64f mean = 0, sd = -1;
    ASSERT_EQ(zeviMean_StdDev_32f_C1R(img.ptr(), img.step(), img.size(), &mean, &sd), zevStsNoError);
    EXPECT_EQ(mean, 1000.0);
    EXPECT_EQ(sd, 0.0);
}

TEST(MeanEdge, OptionalOutputs) {
    zt::Image<Zev8u> img(1, 3);
    img.at(0, 0) = 1;
    img.at(0, 1) = 2;
    img.at(0, 2) = 6;
    Zev64f sd = -1, mean = -1;
    EXPECT_EQ(zeviMean_StdDev_8u_C1R(img.ptr(), img.step(), img.size(), nullptr, &sd), zevStsNoError);
    EXPECT_DOUBLE_EQ(sd, std::sqrt(41.0 / 3 - 3.0 * 3.0));
    EXPECT_EQ(zeviMean_StdDev_8u_C1R(img.ptr(), img.step(), img.size(), &mean, nullptr), zevStsNoError);
    EXPECT_EQ(mean, 3.0);
    EXPECT_EQ(zeviMean_StdDev_8u_C1R(img.ptr(), img.step(), img.size(), nullptr, nullptr), zevStsNoError);
}

TEST(MeanEdge, NanOnlyWhereSelected) {
    zt::Image<Zev32f> img(20, 2);
    img.fill([] { return 2.0f; });
    img.at(3, 1) = std::numeric_limits<float>::quiet_NaN();
    img.at(17, 0) = std::numeric_limits<float>::quiet_NaN();  // a tail pixel
    zt::Image<Zev8u> mask(20, 2);
    mask.fill([] { return Zev8u{1}; });
    mask.at(3, 1) = 0;
    mask.at(17, 0) = 0;
    Zev64f mean = -1, sd = -1;
    ASSERT_EQ(zeviMean_StdDev_32f_C1MR(img.ptr(), img.step(), mask.ptr(), mask.step(), img.size(), &mean, &sd),
              zevStsNoError);
    EXPECT_EQ(mean, 2.0);
    EXPECT_EQ(sd, 0.0);
    mask.at(3, 1) = 1;
    ASSERT_EQ(zeviMean_32f_C1MR(img.ptr(), img.step(), mask.ptr(), mask.step(), img.size(), &mean), zevStsNoError);
    EXPECT_TRUE(std::isnan(mean));
}

// ---- the argument chain

struct ArgCase {
    std::string what;
    int width, height;
    int srcStepDelta;   // added to the step of a valid image (bytes)
    int maskStepDelta;  // added to the mask step
    int coi;
    bool nullSrc, nullMask, nullMean;
    // expected status per element type (8u, 8s, 16u, 32f); C1 functions ignore coi.
    ZevStatus want[4];
    bool coiMatters;
};

class MeanArgs : public ::testing::TestWithParam<ArgCase> {};

TEST_P(MeanArgs, StatusAndNothingWritten) {
    const ArgCase& c = GetParam();
    for (const MeanFn& f : allFns()) {
        if (!f.masked && (c.nullMask || c.maskStepDelta != 0)) continue;
        if (!f.meanOnly && c.nullMean) continue;
        byType(f.ty, [&](auto e) {
            using E = decltype(e);
            st::ArgImages<E> a(c.width, c.height, f.ch);
            const int w = a.w;
            Zev64f mean = 123, sd = 456;
            ZeviSize roi{c.width, c.height};
            const int step = w * f.ch * elemBytes(f.ty) + c.srcStepDelta;
            const int mstep = w + c.maskStepDelta;
            ZevStatus st = f.call(c.nullSrc ? nullptr : a.img.ptr(), step, c.nullMask ? nullptr : a.mask.ptr(), mstep,
                                  roi, c.coi, c.nullMean ? nullptr : &mean, &sd);
            ZevStatus want = c.want[static_cast<int>(f.ty)];
            if (f.ch == 1 && c.coiMatters) want = zevStsNoError;
            EXPECT_EQ(st, want) << c.what << " " << f.name;
            if (st != zevStsNoError) {
                EXPECT_EQ(mean, 123) << f.name;
                EXPECT_EQ(sd, 456) << f.name;
            }
            EXPECT_TRUE(a.unchanged());
        });
    }
}

constexpr ZevStatus kNull = zevStsNullPointer, kSize = zevStsBadSize, kStep = zevStsBadStep,
                    kMult = zevStsStepNotMultiple, kCoi = zevStsBadCoi, kOk = zevStsNoError;

INSTANTIATE_TEST_SUITE_P(
    Stats, MeanArgs,
    ::testing::Values(
        ArgCase{"null src, zero width", 0, 3, 0, 0, 2, true, false, false, {kNull, kNull, kNull, kNull}, false},
        ArgCase{"null mask", 4, 3, 0, 0, 2, false, true, false, {kNull, kNull, kNull, kNull}, false},
        ArgCase{"null mean", 4, 3, 0, 0, 2, false, false, true, {kNull, kNull, kNull, kNull}, false},
        ArgCase{"zero width, short step", 0, 3, -100, 0, 2, false, false, false, {kSize, kSize, kSize, kSize},
                false},
        ArgCase{"zero height", 4, 0, 0, 0, 2, false, false, false, {kSize, kSize, kSize, kSize}, false},
        ArgCase{"step one byte short", 4, 3, -1, 0, 2, false, false, false, {kStep, kStep, kStep, kStep}, false},
        ArgCase{"negative step", 4, 3, -10000, 0, 2, false, false, false, {kStep, kStep, kStep, kStep}, false},
        ArgCase{"step odd", 4, 3, 1, 0, 2, false, false, false, {kOk, kOk, kMult, kMult}, false},
        ArgCase{"step not of four", 4, 3, 2, 0, 2, false, false, false, {kOk, kOk, kOk, kMult}, false},
        ArgCase{"mask step short", 4, 3, 0, -1, 2, false, false, false, {kStep, kStep, kStep, kStep}, false},
        // Both faults: the mask step comes first for 32f, the multiple first for 16u.
        ArgCase{"odd step and short mask step", 4, 3, 1, -1, 2, false, false, false, {kStep, kStep, kMult, kStep},
                false},
        ArgCase{"coi 0", 4, 3, 0, 0, 0, false, false, false, {kCoi, kCoi, kCoi, kCoi}, true},
        ArgCase{"coi 4", 4, 3, 0, 0, 4, false, false, false, {kCoi, kCoi, kCoi, kCoi}, true},
        ArgCase{"coi -1", 4, 3, 0, 0, -1, false, false, false, {kCoi, kCoi, kCoi, kCoi}, true},
        ArgCase{"coi 4 after a short step", 4, 3, -1, 0, 4, false, false, false, {kStep, kStep, kStep, kStep},
                false},
        ArgCase{"step equal to the row", 1, 1, 0, 0, 3, false, false, false, {kOk, kOk, kOk, kOk}, false}),
    [](const auto& info) { return st::ident(info.param.what); });

}  // namespace
