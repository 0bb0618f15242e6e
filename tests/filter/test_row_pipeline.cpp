// Row border pipeline: every form against the plain reference, argument checks
// in their order, late failure on a null row pointer, buffer sizes, threads.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "common/guarded.h"
#include "pipe_ref.h"

namespace {

// One exported form behind a uniform signature, with its reference arithmetic.
template <class Src_, class Dst_, class Kern_, int C_>
struct RowForm {
    using Src = Src_;
    using Dst = Dst_;
    using Kern = Kern_;
    static constexpr int C = C_;
    const char* name;
    ZevStatus (*call)(const Src*, int, Dst**, ZeviSize, const Kern*, int, int, int, const Src*, int, Zev8u*);
    ZevStatus (*size)(ZeviSize, int, int*);
    Dst (*ref)(const std::vector<Src>&, const Kern*, int K, int divisor, ref::Part, int w, int border, int a);
};

using U8Form = RowForm<Zev8u, Zev16s, Zev16s, 1>;
using U8Form3 = RowForm<Zev8u, Zev16s, Zev16s, 3>;
using S16Form = RowForm<Zev16s, Zev16s, Zev16s, 1>;
using S16Form3 = RowForm<Zev16s, Zev16s, Zev16s, 3>;
using F32Form = RowForm<Zev32f, Zev32f, Zev32f, 1>;
using F32Form3 = RowForm<Zev32f, Zev32f, Zev32f, 3>;

Zev16s ref8u(const std::vector<Zev8u>& v, const Zev16s* k, int K, int d, ref::Part p, int, int, int) {
    return ref::row8u16s(v, k, K, d, p);
}
Zev16s ref16s(const std::vector<Zev16s>& v, const Zev16s* k, int K, int d, ref::Part p, int w, int, int) {
    return ref::row16s(v, k, K, d, p, w);
}
// The symmetric 5-tap kernel over 16 with replicated ends takes the interior
// rule at the row's ends too (one channel only).
template <int C>
Zev16s refLow(const std::vector<Zev16s>& v, const Zev16s* k, int K, int d, ref::Part p, int w, int border, int a) {
    if (C == 1 && K == 5 && border == zevBorderReplicate && a == 2 && k[0] == k[4] && k[1] == k[3] && d == 16 &&
        w - 2 > 8)
        p = ref::Part::Middle;
    return ref::rowLow(v, k, K, d, p);
}
Zev32f ref32f(const std::vector<Zev32f>& v, const Zev32f* k, int K, int, ref::Part, int, int, int) {
    return ref::row32f(v, k, K);
}

// The C1 forms take the border value itself, the C3 forms a pointer to three.
#define ZT_ROW(FORM, NAME, VALUE, DIV, REF)                                                                   \
    FORM {                                                                                                    \
        #NAME,                                                                                                \
            [](const FORM::Src* s, int ss, FORM::Dst** d, ZeviSize r, const FORM::Kern* k, int K, int a, int b, \
               const FORM::Src* v, int div, Zev8u* buf) {                                                     \
                (void)div;                                                                                    \
                return zeviFilterRowBorderPipeline_##NAME(s, ss, d, r, k, K, a, b, VALUE, DIV buf);           \
            },                                                                                                \
            zeviFilterRowBorderPipelineGetBufferSize_##NAME, REF                                              \
    }
#define ZT_DIV div,
#define ZT_NODIV

const U8Form kU8C1 = ZT_ROW(U8Form, 8u16s_C1R, *v, ZT_DIV, ref8u);
const U8Form3 kU8C3 = ZT_ROW(U8Form3, 8u16s_C3R, v, ZT_DIV, ref8u);
const S16Form kS16C1 = ZT_ROW(S16Form, 16s_C1R, *v, ZT_DIV, ref16s);
const S16Form3 kS16C3 = ZT_ROW(S16Form3, 16s_C3R, v, ZT_DIV, ref16s);
const S16Form kLowC1 = ZT_ROW(S16Form, Low_16s_C1R, *v, ZT_DIV, refLow<1>);
const S16Form3 kLowC3 = ZT_ROW(S16Form3, Low_16s_C3R, v, ZT_DIV, refLow<3>);
const F32Form kF32C1 = ZT_ROW(F32Form, 32f_C1R, *v, ZT_NODIV, ref32f);
const F32Form3 kF32C3 = ZT_ROW(F32Form3, 32f_C3R, v, ZT_NODIV, ref32f);

template <class T>
T randomValue(zt::Rng& rng) {
    if constexpr (std::is_same_v<T, Zev8u>) return static_cast<T>(rng.uniform(0, 255));
    else if constexpr (std::is_same_v<T, Zev16s>) return static_cast<T>(rng.uniform(-32768, 32767));
    else return rng.uniformf(-100.0f, 100.0f);
}

// A work buffer of exactly the reported size, followed by guard bytes.
struct WorkBuffer {
    std::vector<Zev8u> bytes;
    int size = 0;
    template <class SizeFn>
    WorkBuffer(SizeFn fn, ZeviSize roi, int K) {
        EXPECT_EQ(fn(roi, K, &size), zevStsNoError);
        bytes.assign(static_cast<std::size_t>(size) + 64, 0xA5);
    }
    Zev8u* data() { return bytes.data(); }
    bool tailIntact() const {
        for (std::size_t i = size; i < bytes.size(); ++i)
            if (bytes[i] != 0xA5) return false;
        return true;
    }
};

struct Case {
    int w, h, K, a, border, divisor, offset;
};

// Runs one call and compares every output against the reference. Returns the
// number of mismatching outputs (the first few are reported).
template <class F>
int runAndCompare(const F& f, const Case& s, const std::vector<typename F::Kern>& k, zt::Rng& rng,
                  std::vector<typename F::Dst>* out = nullptr, bool checkRef = true) {
    using Src = typename F::Src;
    using Dst = typename F::Dst;
    constexpr int C = F::C;
    zt::Image<Src> src(s.w, s.h, C, 5, s.offset);
    src.fill([&] { return randomValue<Src>(rng); });
    zt::Image<Dst> dst(s.w, s.h, C, 3, (s.offset + 1) % 4);
    std::vector<Dst*> rows(s.h);
    for (int y = 0; y < s.h; ++y) rows[y] = dst.row(y);
    Src value[3] = {randomValue<Src>(rng), randomValue<Src>(rng), randomValue<Src>(rng)};
    WorkBuffer buf(f.size, ZeviSize{s.w, s.h}, s.K);
    ZevStatus st = f.call(src.ptr(), src.step(), rows.data(), ZeviSize{s.w, s.h}, k.data(), s.K, s.a, s.border, value,
                          s.divisor, buf.data());
    EXPECT_EQ(st, zevStsNoError);
    EXPECT_TRUE(dst.guardsIntact()) << f.name;
    EXPECT_TRUE(src.guardsIntact()) << f.name;
    EXPECT_TRUE(buf.tailIntact()) << f.name << " wrote past its buffer";
    int bad = 0;
    for (int y = 0; y < (checkRef ? s.h : 0); ++y)
        for (int x = 0; x < s.w; ++x)
            for (int c = 0; c < C; ++c) {
                auto win = ref::window(src.row(y), s.w, C, c, x, s.K, s.a, s.border, value[c]);
                Dst want = f.ref(win, k.data(), s.K, s.divisor, ref::partOf(x, s.w, s.K, s.a), s.w, s.border, s.a);
                Dst got = dst.row(y)[x * C + c];
                if (std::memcmp(&want, &got, sizeof(Dst)) != 0 && ++bad <= 3)
                    ADD_FAILURE() << f.name << " w" << s.w << " K" << s.K << " a" << s.a << " border" << s.border
                                  << " div" << s.divisor << " x" << x << " y" << y << " c" << c << ": got " << +got
                                  << " want " << +want;
            }
    if (out) *out = dst.pixels();
    return bad;
}

// Kernels of each kind the forms dispatch on.
enum class KernKind { Small, Large, Symmetric, MinWeight };

template <class Kern>
std::vector<Kern> makeKernel(int K, KernKind kind, zt::Rng& rng) {
    std::vector<Kern> k(K);
    for (int i = 0; i < K; ++i) {
        if constexpr (std::is_same_v<Kern, Zev32f>) k[i] = rng.uniformf(-2.0f, 2.0f);
        else if (kind == KernKind::Large) k[i] = static_cast<Kern>(rng.uniform(-32767, 32767));
        else k[i] = static_cast<Kern>(rng.uniform(-20, 20));
    }
    if (kind == KernKind::Symmetric || kind == KernKind::Large)
        for (int i = 0; i < K / 2; ++i) k[K - 1 - i] = kind == KernKind::Symmetric ? k[i] : k[K - 1 - i];
    if (kind == KernKind::Large && K % 2 == 1 && K > 1) {
        k[0] = 30000;  // large weights, symmetric ends for odd K
        k[K - 1] = 30000;
    }
    if constexpr (!std::is_same_v<Kern, Zev32f>)
        if (kind == KernKind::MinWeight) k[K / 2] = -32768;
    return k;
}

template <class F>
void sweep(const F& f, std::vector<KernKind> kinds, std::vector<int> divisors) {
    zt::Rng rng(7);
    int widths[44];
    for (int i = 0; i < 40; ++i) widths[i] = i + 1;
    widths[40] = 57;
    widths[41] = 64;
    widths[42] = 131;
    widths[43] = 300;
    int bad = 0, n = 0;
    for (KernKind kind : kinds)
        for (int K = 1; K <= 9; ++K)
            for (int a : {0, K / 2, K - 1})
                for (int border = 0; border <= 4; ++border)
                    for (int w : widths) {
                        Case s{w, 2, K, a, border, divisors[n % divisors.size()], n % 3};
                        ++n;
                        auto k = makeKernel<typename F::Kern>(K, kind, rng);
                        bad += runAndCompare(f, s, k, rng);
                        if (bad > 20) FAIL() << "too many mismatches";
                    }
}

// Heights 1..20 over a few widths, kernels, anchors and border codes.
template <class F>
void heights(const F& f) {
    zt::Rng rng(19);
    int n = 0, bad = 0;
    for (int h = 1; h <= 20; ++h)
        for (int w : {1, 7, 16, 33})
            for (int K : {1, 3, 5, 8}) {
                Case s{w, h, K, (n * 7) % K, n % 5, n % 2 ? 1 : 3, n % 4};
                ++n;
                bad += runAndCompare(f, s, makeKernel<typename F::Kern>(K, KernKind::Small, rng), rng);
                if (bad > 10) FAIL() << "too many mismatches";
            }
}

}  // namespace

TEST(RowPipeline, EveryHeightEveryForm) {
    heights(kU8C1);
    heights(kU8C3);
    heights(kS16C1);
    heights(kS16C3);
    heights(kLowC1);
    heights(kLowC3);
    heights(kF32C1);
    heights(kF32C3);
}

TEST(RowPipeline, Form8u16sC1MatchesReference) { sweep(kU8C1, {KernKind::Small, KernKind::Large}, {1, 2, 3, -1, 7, 16, 1, 256}); }
TEST(RowPipeline, Form8u16sC3MatchesReference) { sweep(kU8C3, {KernKind::Small}, {1, 2, -3, 5, 8}); }
TEST(RowPipeline, Form16sC1MatchesReference) {
    sweep(kS16C1, {KernKind::Small, KernKind::Large, KernKind::Symmetric, KernKind::MinWeight}, {1, 2, 3, -1, 7, 64});
}
TEST(RowPipeline, Form16sC3MatchesReference) { sweep(kS16C3, {KernKind::Small, KernKind::Large}, {1, 3, -2, 4}); }
TEST(RowPipeline, FormLowC1MatchesReference) {
    sweep(kLowC1, {KernKind::Small, KernKind::Large, KernKind::Symmetric}, {1, 16, 3, -5, 20000, 16});
}
TEST(RowPipeline, FormLowC3MatchesReference) { sweep(kLowC3, {KernKind::Small}, {1, 16, -7}); }
TEST(RowPipeline, Form32fC1MatchesReference) { sweep(kF32C1, {KernKind::Small}, {1}); }
TEST(RowPipeline, Form32fC3MatchesReference) { sweep(kF32C3, {KernKind::Small}, {1}); }

// Rounding by column class, on a hand-made case: 3 taps, divisor 2.
TEST(RowPipeline, InteriorRoundsToEvenBorderTruncates) {
    const Zev16s k[3] = {0, 1, 0};
    Zev8u src[6] = {1, 1, 3, 3, 5, 4};  // each output is its own pixel times 0.5
    Zev16s out[6];
    Zev16s* rows[1] = {out};
    std::vector<Zev8u> buf(4096);
    ASSERT_EQ(zeviFilterRowBorderPipeline_8u16s_C1R(src, 6, rows, ZeviSize{6, 1}, k, 3, 1, zevBorderReplicate, 0, 2,
                                                    buf.data()),
              zevStsNoError);
    // column 0 is a border column (truncates 0.5 -> 0), columns 1..4 are
    // interior (0.5 -> 0, 1.5 -> 2, 1.5 -> 2, 2.5 -> 2), column 5 border (2 -> 2).
    const Zev16s want[6] = {0, 0, 2, 2, 2, 2};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(out[i], want[i]) << i;
    src[0] = 3;
    src[5] = 3;
    ASSERT_EQ(zeviFilterRowBorderPipeline_8u16s_C1R(src, 6, rows, ZeviSize{6, 1}, k, 3, 1, zevBorderReplicate, 0, 2,
                                                    buf.data()),
              zevStsNoError);
    EXPECT_EQ(out[0], 1);  // 1.5 truncated at the border
    EXPECT_EQ(out[2], 2);  // 1.5 rounded in the interior
    EXPECT_EQ(out[5], 1);
}

TEST(RowPipeline, NegativeUnitDivisorSaturates) {
    const Zev16s k[5] = {0, 0, 128, 0, 0};
    Zev8u src[8] = {0, 0, 255, 255, 255, 0, 0, 0};
    Zev16s out[8];
    Zev16s* rows[1] = {out};
    std::vector<Zev8u> buf(4096);
    ASSERT_EQ(zeviFilterRowBorderPipeline_8u16s_C1R(src, 8, rows, ZeviSize{8, 1}, k, 5, 2, zevBorderConst, 0, -1,
                                                    buf.data()),
              zevStsNoError);
    EXPECT_EQ(out[2], -32640);
    const Zev16s k2[5] = {0, 0, -129, 0, 0};  // 255 * -129 * -1 = 32895 saturates
    ASSERT_EQ(zeviFilterRowBorderPipeline_8u16s_C1R(src, 8, rows, ZeviSize{8, 1}, k2, 5, 2, zevBorderConst, 0, -1,
                                                    buf.data()),
              zevStsNoError);
    EXPECT_EQ(out[2], 32767);  // interior: saturation
    EXPECT_EQ(out[4], 32767);  // right border column: clamp
}

TEST(RowPipeline, LowWrapsInsideAndCutsAtTheEnds) {
    // 1000 * 40 = 40000 leaves 16 bits: interior wraps, border keeps 32 bits.
    const Zev16s k[3] = {20, 0, 20};
    Zev16s src[6] = {1000, 1000, 1000, 1000, 1000, 1000};
    Zev16s out[6];
    Zev16s* rows[1] = {out};
    std::vector<Zev8u> buf(4096);
    ASSERT_EQ(zeviFilterRowBorderPipeline_Low_16s_C1R(src, 12, rows, ZeviSize{6, 1}, k, 3, 1, zevBorderReplicate, 0, 2,
                                                      buf.data()),
              zevStsNoError);
    const std::int16_t wrapped = static_cast<std::int16_t>(40000);  // -25536
    EXPECT_EQ(out[2], (wrapped * 8192) >> 14);                       // -12768
    EXPECT_EQ(out[0], static_cast<std::int16_t>((40000u * 8192u) >> 14));  // 20000
}

// ---------------------------------------------------------------- checks

struct CheckCase {
    std::string what;
    int w, h, step, K, a, border, divisor;
    bool nullSrc, nullDst, nullKernel, nullBuffer, nullValue;
    ZevStatus want;
};

class RowChecks : public ::testing::TestWithParam<CheckCase> {};

TEST_P(RowChecks, FirstFailureInOrderAndNothingWritten) {
    const CheckCase& c = GetParam();
    zt::Image<Zev16s> src(8, 4, 3), dst(8, 4, 3);
    src.fill([] { return Zev16s{7}; });
    std::vector<Zev16s*> rows(4);
    for (int y = 0; y < 4; ++y) rows[y] = dst.row(y);
    std::vector<Zev8u> buf(65536, 0x3C);
    const Zev16s k[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const Zev16s value[3] = {1, 2, 3};
    dst.snapshot();
    ZevStatus st = zeviFilterRowBorderPipeline_16s_C3R(
        c.nullSrc ? nullptr : src.ptr(), c.step, c.nullDst ? nullptr : rows.data(), ZeviSize{c.w, c.h},
        c.nullKernel ? nullptr : k, c.K, c.a, c.border, c.nullValue ? nullptr : value, c.divisor,
        c.nullBuffer ? nullptr : buf.data());
    EXPECT_EQ(st, c.want) << c.what;
    EXPECT_TRUE(dst.unchanged()) << c.what;
    for (Zev8u b : buf) ASSERT_EQ(b, 0x3C) << c.what;
}

// 16s C3 rows of 8 pixels are 48 bytes.
INSTANTIATE_TEST_SUITE_P(
    Order, RowChecks,
    ::testing::Values(
        CheckCase{"null src before bad size", 0, 4, 48, 3, 1, 1, 1, true, false, false, false, false, zevStsNullPointer},
        CheckCase{"null buffer", 8, 4, 48, 3, 1, 1, 1, false, false, false, true, false, zevStsNullPointer},
        CheckCase{"height before width", 0, 0, 48, 3, 1, 1, 1, false, false, false, false, false, zevStsBadSize},
        CheckCase{"kernel size 0 before anchor", 8, 4, 48, 0, 0, 1, 1, false, false, false, false, false,
                  zevStsBadSize},
        CheckCase{"anchor = K before step", 8, 4, 10, 3, 3, 1, 1, false, false, false, false, false, zevStsBadAnchor},
        CheckCase{"negative anchor", 8, 4, 48, 3, -1, 1, 1, false, false, false, false, false, zevStsBadAnchor},
        CheckCase{"short step", 8, 4, 46, 3, 1, 1, 1, false, false, false, false, false, zevStsBadStep},
        CheckCase{"odd step", 8, 4, 49, 3, 1, 9, 0, false, false, false, false, false, zevStsStepNotMultiple},
        CheckCase{"border 6", 8, 4, 48, 3, 1, 6, 0, false, false, false, false, false, zevStsBadArgument},
        CheckCase{"border with a flag", 8, 4, 48, 3, 1, 0x41, 1, false, false, false, false, false,
                  zevStsBadArgument},
        CheckCase{"const border without values", 8, 4, 48, 3, 1, 0, 0, false, false, false, false, true,
                  zevStsNullPointer},
        CheckCase{"zero divisor", 8, 4, 48, 3, 1, 1, 0, false, false, false, false, false, zevStsBadArgument}));

TEST(RowChecks, EightBitFormsHaveNoStepMultipleAndFloatNoDivisor) {
    zt::Image<Zev8u> src(5, 2, 1, 1);  // step 6 is not even, but 8-bit steps are free
    zt::Image<Zev16s> dst(5, 2);
    Zev16s* rows[2] = {dst.row(0), dst.row(1)};
    std::vector<Zev8u> buf(8192);
    const Zev16s k[3] = {1, 1, 1};
    EXPECT_EQ(zeviFilterRowBorderPipeline_8u16s_C1R(src.ptr(), 5, rows, ZeviSize{5, 2}, k, 3, 1, 1, 0, 1, buf.data()),
              zevStsNoError);
    zt::Image<Zev32f> fs(5, 2), fd(5, 2);
    Zev32f* frows[2] = {fd.row(0), fd.row(1)};
    const Zev32f fk[3] = {1, 1, 1};
    EXPECT_EQ(zeviFilterRowBorderPipeline_32f_C1R(fs.ptr(), fs.step(), frows, ZeviSize{5, 2}, fk, 3, 1, 1, 0.f,
                                                  buf.data()),
              zevStsNoError);
    EXPECT_EQ(zeviFilterRowBorderPipeline_32f_C1R(fs.ptr(), 22, frows, ZeviSize{5, 2}, fk, 3, 1, 1, 0.f, buf.data()),
              zevStsStepNotMultiple);
    // A null value is fine for every code but the constant one.
    Zev8u one[3] = {1, 2, 3};
    zt::Image<Zev8u> s3(5, 2, 3);
    zt::Image<Zev16s> d3(5, 2, 3);
    Zev16s* rows3[2] = {d3.row(0), d3.row(1)};
    for (int b = 1; b <= 4; ++b)
        EXPECT_EQ(zeviFilterRowBorderPipeline_8u16s_C3R(s3.ptr(), s3.step(), rows3, ZeviSize{5, 2}, k, 3, 1, b,
                                                        nullptr, 1, buf.data()),
                  zevStsNoError);
    EXPECT_EQ(zeviFilterRowBorderPipeline_8u16s_C3R(s3.ptr(), s3.step(), rows3, ZeviSize{5, 2}, k, 3, 1, 0, one, 1,
                                                    buf.data()),
              zevStsNoError);
}

TEST(RowPipeline, NullRowStopsThereWithEarlierRowsWritten) {
    zt::Rng rng(3);
    const int w = 20, h = 6;
    zt::Image<Zev8u> src(w, h);
    src.fill([&] { return static_cast<Zev8u>(rng.uniform(0, 255)); });
    zt::Image<Zev16s> dst(w, h);
    std::vector<Zev16s*> rows(h);
    for (int y = 0; y < h; ++y) rows[y] = dst.row(y);
    rows[3] = nullptr;
    dst.snapshot();
    zt::Image<Zev16s> before(w, h);
    for (int y = 0; y < h; ++y) std::memcpy(before.row(y), dst.row(y), w * 2);
    const Zev16s k[5] = {1, 4, 6, 4, 1};
    std::vector<Zev8u> buf(8192);
    EXPECT_EQ(zeviFilterRowBorderPipeline_8u16s_C1R(src.ptr(), src.step(), rows.data(), ZeviSize{w, h}, k, 5, 2, 1, 0,
                                                    1, buf.data()),
              zevStsNullPointer);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < w; ++x) {
            auto win = ref::window(src.row(y), w, 1, 0, x, 5, 2, 1, Zev8u{0});
            EXPECT_EQ(dst.row(y)[x], ref::row8u16s(win, k, 5, 1, ref::partOf(x, w, 5, 2)));
        }
    for (int y = 3; y < h; ++y) EXPECT_EQ(std::memcmp(dst.row(y), before.row(y), w * 2), 0) << y;
    EXPECT_TRUE(dst.guardsIntact());
}

// ---------------------------------------------------------------- sizes

TEST(RowBufferSize, FormulaPerFormAndThreadCount) {
    struct Want {
        ZevStatus (*fn)(ZeviSize, int, int*);
        int perK, fixed, extra;
    };
    const Want forms[] = {{zeviFilterRowBorderPipelineGetBufferSize_8u16s_C1R, 36, 112, 0},
                          {zeviFilterRowBorderPipelineGetBufferSize_8u16s_C3R, 60, 112, 0},
                          {zeviFilterRowBorderPipelineGetBufferSize_16s_C1R, 48, 80, 0},
                          {zeviFilterRowBorderPipelineGetBufferSize_16s_C3R, 40, 64, 0},
                          {zeviFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, 24, 64, 0},
                          {zeviFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, 208, 64, 0},
                          {zeviFilterRowBorderPipelineGetBufferSize_32f_C1R, 64, 64, 16},
                          {zeviFilterRowBorderPipelineGetBufferSize_32f_C3R, 192, 32, 0}};
    for (int T : {1, 3}) {
        zt::Threads scope(T);
        for (const Want& f : forms)
            for (int K : {1, 5, 12}) {
                int size = -1;
                ASSERT_EQ(f.fn(ZeviSize{640, 37}, K, &size), zevStsNoError);
                EXPECT_EQ(size, T * 32 + (37 + K) * T * 4 + T * (f.perK * K + f.fixed) + T * f.extra);
            }
    }
    int size = 0;
    EXPECT_EQ(zeviFilterRowBorderPipelineGetBufferSize_8u16s_C1R(ZeviSize{0, 0}, 3, nullptr), zevStsNullPointer);
    EXPECT_EQ(zeviFilterRowBorderPipelineGetBufferSize_8u16s_C1R(ZeviSize{0, 5}, 3, &size), zevStsBadSize);
    EXPECT_EQ(zeviFilterRowBorderPipelineGetBufferSize_8u16s_C1R(ZeviSize{5, 0}, 3, &size), zevStsBadSize);
    EXPECT_EQ(zeviFilterRowBorderPipelineGetBufferSize_8u16s_C1R(ZeviSize{5, 5}, 0, &size), zevStsBadSize);
}

// ---------------------------------------------------------------- threads

// Sizes either side of the parallel threshold (threads << 15 pixels), large
// kernels included, must give the single-thread result and stay in the buffer.
class RowThreads : public ::testing::TestWithParam<int> {};

TEST_P(RowThreads, SameBitsAsOneThread) {
    const int T = GetParam();
    zt::Rng rng(11);
    struct Shape {
        int w, h;
    };
    const int limit = T << 15;
    const Shape shapes[] = {{512, limit / 512 - 1}, {512, limit / 512 + 3}, {limit / 5 + 7, 5}};
    for (const Shape& sh : shapes) {
        for (int K : {3, 5, 7}) {
            auto k = makeKernel<Zev16s>(K, KernKind::Small, rng);
            Case s{sh.w, sh.h, K, K / 2, zevBorderMirror, 3, 1};
            std::vector<Zev16s> one, many;
            zt::Rng r1(5), r2(5);
            {
                zt::Threads scope(1);
                runAndCompare(kS16C1, s, k, r1, &one);
            }
            {
                zt::Threads scope(T);
                runAndCompare(kS16C1, s, k, r2, &many, false);  // the bits are compared below
            }
            EXPECT_TRUE(zt::sameBits(one, many)) << T << " threads, " << sh.w << "x" << sh.h << " K" << K;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Counts, RowThreads, ::testing::Values(2, 3, 8));

TEST(RowThreads, NullRowInABandFailsAndOtherBandsStayInside) {
    zt::Threads scope(2);
    const int w = 1024, h = 80;  // 81920 >= 2 << 15: threaded
    zt::Image<Zev32f> src(w, h), dst(w, h);
    src.fill([] { return 1.0f; });
    std::vector<Zev32f*> rows(h);
    for (int y = 0; y < h; ++y) rows[y] = dst.row(y);
    rows[70] = nullptr;
    const Zev32f k[7] = {1, 1, 1, 1, 1, 1, 1};
    int size = 0;
    zeviFilterRowBorderPipelineGetBufferSize_32f_C1R(ZeviSize{w, h}, 7, &size);
    std::vector<Zev8u> buf(size);
    EXPECT_EQ(zeviFilterRowBorderPipeline_32f_C1R(src.ptr(), src.step(), rows.data(), ZeviSize{w, h}, k, 7, 3, 1, 0.f,
                                                  buf.data()),
              zevStsNullPointer);
    EXPECT_EQ(dst.row(69)[500], 7.0f);  // the row before the null one was written
    EXPECT_EQ(dst.row(10)[0], 7.0f);    // and so was the other band
    EXPECT_TRUE(dst.guardsIntact());
}

// Called from inside a caller's own parallel region the runtime may refuse the
// inner team; the band split then follows the team it really got.
TEST(RowThreads, InsideACallersRegionSameBits) {
    zt::Threads scope(2);
    const int w = 1024, h = 70;  // above the threshold for two threads
    zt::Rng rng(13);
    zt::Image<Zev16s> src(w, h);
    src.fill([&] { return static_cast<Zev16s>(rng.uniform(-3000, 3000)); });
    const Zev16s k[5] = {1, -3, 5, -3, 1};
    int size = 0;
    zeviFilterRowBorderPipelineGetBufferSize_16s_C1R(ZeviSize{w, h}, 5, &size);
    auto run = [&](std::vector<Zev16s>& out) {
        out.assign(static_cast<std::size_t>(w) * h, 0);
        std::vector<Zev16s*> rows(h);
        for (int y = 0; y < h; ++y) rows[y] = out.data() + static_cast<std::size_t>(y) * w;
        std::vector<Zev8u> buf(size);
        return zeviFilterRowBorderPipeline_16s_C1R(src.ptr(), src.step(), rows.data(), ZeviSize{w, h}, k, 5, 2,
                                                   zevBorderMirrorR, 0, 3, buf.data());
    };
    std::vector<Zev16s> alone, inner[2];
    ASSERT_EQ(run(alone), zevStsNoError);
    ZevStatus st[2] = {zevStsUnspecified, zevStsUnspecified};
#pragma omp parallel num_threads(2)
    {
        int id = omp_get_thread_num();
        if (id < 2) st[id] = run(inner[id]);
    }
    for (int i = 0; i < omp_get_max_threads() && i < 2; ++i) {
        if (st[i] == zevStsUnspecified) continue;  // the runtime gave a team of one
        EXPECT_EQ(st[i], zevStsNoError);
        EXPECT_TRUE(zt::sameBits(alone, inner[i]));
    }
}

TEST(RowPipeline, LongKernels) {
    zt::Rng rng(62);
    for (int K : {17, 33, 40})
        for (int w : {20, 60, 100}) {
            Case s{w, 2, K, K / 3, zevBorderMirror, 3, 1};
            EXPECT_EQ(runAndCompare(kU8C1, s, makeKernel<Zev16s>(K, KernKind::Small, rng), rng), 0);
            EXPECT_EQ(runAndCompare(kS16C3, s, makeKernel<Zev16s>(K, KernKind::Small, rng), rng), 0);
            EXPECT_EQ(runAndCompare(kLowC1, s, makeKernel<Zev16s>(K, KernKind::Small, rng), rng), 0);
            EXPECT_EQ(runAndCompare(kF32C1, s, makeKernel<Zev32f>(K, KernKind::Small, rng), rng), 0);
        }
}
