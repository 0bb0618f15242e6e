// Column pipeline: every form against the plain reference (rounding vector
// columns, truncating tail columns), checks in their order with nothing written,
// buffer sizes, thread-count independence, and a row-then-column chain.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "common/guarded.h"
#include "pipe_ref.h"

namespace {

template <class Src_, class Dst_, int C_>
struct ColForm {
    using Src = Src_;
    using Dst = Dst_;
    static constexpr int C = C_;
    const char* name;
    ZevStatus (*call)(const Src**, Dst*, int, ZeviSize, const Src*, int, int, Zev8u*);
    ZevStatus (*size)(ZeviSize, int, int*);
    Dst (*ref)(const std::vector<Src>&, const Src*, int K, int divisor, bool vectorCol);
};

template <class Dst>
Dst ref16(const std::vector<Zev16s>& v, const Zev16s* k, int K, int d, bool vc) {
    constexpr int lo = std::is_same_v<Dst, Zev8u> ? 0 : (std::is_same_v<Dst, Zev8s> ? -128 : -32768);
    constexpr int hi = std::is_same_v<Dst, Zev8u> ? 255 : (std::is_same_v<Dst, Zev8s> ? 127 : 32767);
    return static_cast<Dst>(ref::column16s(v, k, K, d, vc, lo, hi));
}
Zev16s refLow(const std::vector<Zev16s>& v, const Zev16s* k, int K, int d, bool) { return ref::columnLow(v, k, K, d); }
Zev32f ref32(const std::vector<Zev32f>& v, const Zev32f* k, int K, int, bool) { return ref::column32f(v, k, K); }

#define ZT_COL16(NAME, DST, C, REF)                                                                             \
    ColForm<Zev16s, DST, C> {                                                                                   \
        #NAME,                                                                                                  \
            [](const Zev16s** s, DST* d, int st, ZeviSize r, const Zev16s* k, int K, int div, Zev8u* b) {        \
                return zeviFilterColumnPipeline_##NAME(s, d, st, r, k, K, div, b);                              \
            },                                                                                                  \
            zeviFilterColumnPipelineGetBufferSize_##NAME, REF                                                   \
    }
#define ZT_COL32(NAME, C)                                                                                       \
    ColForm<Zev32f, Zev32f, C> {                                                                                \
        #NAME,                                                                                                  \
            [](const Zev32f** s, Zev32f* d, int st, ZeviSize r, const Zev32f* k, int K, int, Zev8u* b) {        \
                return zeviFilterColumnPipeline_##NAME(s, d, st, r, k, K, b);                                   \
            },                                                                                                  \
            zeviFilterColumnPipelineGetBufferSize_##NAME, ref32                                                 \
    }

const auto k16sC1 = ZT_COL16(16s_C1R, Zev16s, 1, ref16<Zev16s>);
const auto k16sC3 = ZT_COL16(16s_C3R, Zev16s, 3, ref16<Zev16s>);
const auto kLowC1 = ZT_COL16(Low_16s_C1R, Zev16s, 1, refLow);
const auto kLowC3 = ZT_COL16(Low_16s_C3R, Zev16s, 3, refLow);
const auto k8uC1 = ZT_COL16(16s8u_C1R, Zev8u, 1, ref16<Zev8u>);
const auto k8uC3 = ZT_COL16(16s8u_C3R, Zev8u, 3, ref16<Zev8u>);
const auto k8sC1 = ZT_COL16(16s8s_C1R, Zev8s, 1, ref16<Zev8s>);
const auto k8sC3 = ZT_COL16(16s8s_C3R, Zev8s, 3, ref16<Zev8s>);
const auto k32fC1 = ZT_COL32(32f_C1R, 1);
const auto k32fC3 = ZT_COL32(32f_C3R, 3);

struct Case {
    int w, h, K, divisor, offset;
    bool repeatRows;  // some pointers repeat their neighbour, as a ring's ends do
};

// Source rows live in one guarded pool; each call reads h+K-1 pointers into it.
template <class F>
int runAndCompare(const F& f, const Case& c, const std::vector<typename F::Src>& k, zt::Rng& rng,
                  std::vector<typename F::Dst>* out = nullptr, bool checkRef = true) {
    using Src = typename F::Src;
    using Dst = typename F::Dst;
    constexpr int C = F::C;
    const int n = c.h + c.K - 1;
    zt::Image<Src> pool(c.w, n, C, 3, c.offset);
    pool.fill([&] {
        if constexpr (std::is_same_v<Src, Zev32f>) return rng.uniformf(-50.0f, 50.0f);
        else return static_cast<Src>(rng.uniform(-32768, 32767));
    });
    std::vector<const Src*> rows(n);
    for (int i = 0; i < n; ++i) rows[i] = pool.row(c.repeatRows && i > 0 && rng.uniform(0, 3) == 0 ? i - 1 : i);
    zt::Image<Dst> dst(c.w, c.h, C, 5, (c.offset + 2) % 5);
    int size = 0;
    EXPECT_EQ(f.size(ZeviSize{c.w, c.h}, c.K, &size), zevStsNoError);
    std::vector<Zev8u> buf(static_cast<std::size_t>(size) + 64, 0xA5);
    ZevStatus st = f.call(rows.data(), dst.ptr(), dst.step(), ZeviSize{c.w, c.h}, k.data(), c.K, c.divisor, buf.data());
    EXPECT_EQ(st, zevStsNoError);
    EXPECT_TRUE(dst.guardsIntact()) << f.name;
    for (std::size_t i = size; i < buf.size(); ++i) EXPECT_EQ(buf[i], 0xA5) << f.name << " wrote past its buffer";
    const int W = c.w * C;
    int bad = 0;
    for (int y = 0; y < (checkRef ? c.h : 0); ++y)
        for (int e = 0; e < W; ++e) {
            std::vector<Src> v(c.K);
            for (int i = 0; i < c.K; ++i) v[i] = rows[y + i][e];
            Dst want = f.ref(v, k.data(), c.K, c.divisor, ref::vectorColumn(e, W, c.K));
            Dst got = dst.row(y)[e];
            if (std::memcmp(&want, &got, sizeof(Dst)) != 0 && ++bad <= 3)
                ADD_FAILURE() << f.name << " w" << c.w << " h" << c.h << " K" << c.K << " div" << c.divisor << " e"
                              << e << " y" << y << ": got " << +got << " want " << +want;
        }
    if (out) *out = dst.pixels();
    return bad;
}

template <class T>
std::vector<T> kernelOf(int K, int mag, zt::Rng& rng) {
    std::vector<T> k(K);
    for (auto& v : k) {
        if constexpr (std::is_same_v<T, Zev32f>) v = rng.uniformf(-2.0f, 2.0f);
        else v = static_cast<T>(rng.uniform(-mag, mag));
    }
    return k;
}

template <class F>
void sweep(const F& f, std::vector<int> magnitudes, std::vector<int> divisors) {
    zt::Rng rng(23);
    std::vector<int> widths;
    for (int w = 1; w <= 40; ++w) widths.push_back(w);
    widths.insert(widths.end(), {64, 77, 203});
    int bad = 0, n = 0;
    for (int mag : magnitudes)
        for (int K = 1; K <= 9; ++K)
            for (int w : widths) {
                Case c{w, 1 + n % 4, K, divisors[n % divisors.size()], n % 3, n % 2 == 1};
                ++n;
                bad += runAndCompare(f, c, kernelOf<typename F::Src>(K, mag, rng), rng);
                if (bad > 20) FAIL() << "too many mismatches";
            }
}

// Heights 1..20 over a few widths and kernel sizes, rows repeating or not.
template <class F>
void heights(const F& f) {
    zt::Rng rng(29);
    int n = 0, bad = 0;
    for (int h = 1; h <= 20; ++h)
        for (int w : {1, 5, 16, 37})
            for (int K : {1, 3, 5, 6}) {
                Case c{w, h, K, n % 3 ? 1 : 3, n % 3, n % 2 == 0};
                ++n;
                bad += runAndCompare(f, c, kernelOf<typename F::Src>(K, 40, rng), rng);
                if (bad > 10) FAIL() << "too many mismatches";
            }
}

}  // namespace

TEST(ColumnPipeline, EveryHeightEveryForm) {
    heights(k16sC1);
    heights(k16sC3);
    heights(kLowC1);
    heights(kLowC3);
    heights(k8uC1);
    heights(k8uC3);
    heights(k8sC1);
    heights(k8sC3);
    heights(k32fC1);
    heights(k32fC3);
}

// Magnitudes: small weights (integer shortcut with divisor 1), mid, and large
// enough for the clamp and saturation paths.
TEST(ColumnPipeline, Form16sC1) { sweep(k16sC1, {3, 40, 30000}, {1, 2, 3, -1, 9, 16, 1, 256}); }
TEST(ColumnPipeline, Form16sC3) { sweep(k16sC3, {3, 30000}, {1, 3, -2, 4}); }
TEST(ColumnPipeline, FormLowC1) { sweep(kLowC1, {3, 30000}, {1, 16, 3, -5, 20000}); }
TEST(ColumnPipeline, FormLowC3) { sweep(kLowC3, {3}, {1, 16, -7}); }
TEST(ColumnPipeline, Form16s8uC1) { sweep(k8uC1, {3, 40}, {1, 64, -3, 300}); }
TEST(ColumnPipeline, Form16s8uC3) { sweep(k8uC3, {3}, {1, 200, 32}); }
TEST(ColumnPipeline, Form16s8sC1) { sweep(k8sC1, {3, 40}, {1, 64, -3, 300}); }
TEST(ColumnPipeline, Form16s8sC3) { sweep(k8sC3, {3}, {1, 200, 8}); }
TEST(ColumnPipeline, Form32fC1) { sweep(k32fC1, {1}, {1}); }
TEST(ColumnPipeline, Form32fC3) { sweep(k32fC3, {1}, {1}); }

TEST(ColumnPipeline, NegativeSumGivesZeroInEveryColumnOf8u) {
    const int w = 7;  // four vector columns, three tail columns
    std::vector<Zev16s> r(w, -100);
    const Zev16s* rows[3] = {r.data(), r.data(), r.data()};
    const Zev16s k[3] = {1, 1, 1};
    Zev8u out[w];
    std::vector<Zev8u> buf(4096);
    ASSERT_EQ(zeviFilterColumnPipeline_16s8u_C1R(rows, out, w, ZeviSize{w, 1}, k, 3, 1, buf.data()), zevStsNoError);
    for (Zev8u v : out) EXPECT_EQ(v, 0);
}

TEST(ColumnPipeline, WidthThreeTruncatesWidthFourRounds) {
    // 5 / 2 = 2.5: nearest even gives 2, truncation 2; 3 / 2 = 1.5: 2 against 1.
    std::vector<Zev16s> r(8, 3);
    const Zev16s* rows[3] = {r.data(), r.data(), r.data()};
    const Zev16s k[3] = {0, 1, 0};
    Zev16s out[4] = {};
    std::vector<Zev8u> buf(4096);
    ASSERT_EQ(zeviFilterColumnPipeline_16s_C1R(rows, out, 8, ZeviSize{3, 1}, k, 3, 2, buf.data()), zevStsNoError);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(out[i], 1) << i;
    ASSERT_EQ(zeviFilterColumnPipeline_16s_C1R(rows, out, 8, ZeviSize{4, 1}, k, 3, 2, buf.data()), zevStsNoError);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i], 2) << i;
}

TEST(ColumnPipeline, LowShiftIsArithmetic) {
    // Symmetric 5 taps over 16: a sum of 8 gives 0, a sum of -1 gives -1.
    const Zev16s k[5] = {1, 1, 1, 1, 1};
    const std::vector<Zev16s> zero(16, 0);
    for (auto [x, want] : {std::pair<int, int>{8, 0}, {-1, -1}, {16, 1}}) {
        const std::vector<Zev16s> a(16, static_cast<Zev16s>(x));
        const Zev16s* rows[5] = {a.data(), zero.data(), zero.data(), zero.data(), zero.data()};
        Zev16s out[16];
        std::vector<Zev8u> buf(8192);
        ASSERT_EQ(zeviFilterColumnPipeline_Low_16s_C1R(rows, out, 32, ZeviSize{13, 1}, k, 5, 16, buf.data()),
                  zevStsNoError);
        for (int i = 0; i < 13; ++i) EXPECT_EQ(out[i], want) << x << " column " << i;
    }
}

// ---------------------------------------------------------------- checks

struct ColCheck {
    std::string what;
    int w, h, step, K, divisor, nullRow;
    bool nullSrc, nullDst, nullKernel, nullBuffer;
    ZevStatus want;
};

class ColumnChecks : public ::testing::TestWithParam<ColCheck> {};

TEST_P(ColumnChecks, FirstFailureInOrderAndNothingWritten) {
    const ColCheck& c = GetParam();
    zt::Image<Zev16s> pool(8, 12);
    pool.fill([] { return Zev16s{9}; });
    std::vector<const Zev16s*> rows(12);
    for (int i = 0; i < 12; ++i) rows[i] = pool.row(i);
    if (c.nullRow >= 0) rows[c.nullRow] = nullptr;
    zt::Image<Zev16s> dst(8, 4);
    std::vector<Zev8u> buf(65536, 0x3C);
    const Zev16s k[9] = {1, 2, 3, 4, 5, 4, 3, 2, 1};
    dst.snapshot();
    ZevStatus st = zeviFilterColumnPipeline_16s_C1R(c.nullSrc ? nullptr : rows.data(), c.nullDst ? nullptr : dst.ptr(),
                                                    c.step, ZeviSize{c.w, c.h}, c.nullKernel ? nullptr : k, c.K,
                                                    c.divisor, c.nullBuffer ? nullptr : buf.data());
    EXPECT_EQ(st, c.want) << c.what;
    if (c.want != zevStsNoError) {
        EXPECT_TRUE(dst.unchanged()) << c.what;
        for (Zev8u b : buf) ASSERT_EQ(b, 0x3C) << c.what;
    }
}

// 16s rows of 8 pixels: 16 bytes.
INSTANTIATE_TEST_SUITE_P(
    Order, ColumnChecks,
    ::testing::Values(
        ColCheck{"null dst before sizes", 0, 4, 16, 3, 1, -1, false, true, false, false, zevStsNullPointer},
        ColCheck{"height before width", 0, 0, 16, 3, 1, -1, false, false, false, false, zevStsBadSize},
        ColCheck{"kernel size before step", 8, 4, 2, 0, 1, -1, false, false, false, false, zevStsBadSize},
        ColCheck{"short step", 8, 4, 14, 3, 1, -1, false, false, false, false, zevStsBadStep},
        ColCheck{"odd step before buffer", 8, 4, 17, 3, 1, -1, false, false, false, true, zevStsStepNotMultiple},
        ColCheck{"null buffer before divisor", 8, 4, 16, 3, 0, -1, false, false, false, true, zevStsNullPointer},
        ColCheck{"zero divisor before rows", 8, 4, 16, 3, 0, 2, false, false, false, false, zevStsBadArgument},
        ColCheck{"null among the last rows", 8, 4, 16, 5, 1, 7, false, false, false, false, zevStsNullPointer},
        ColCheck{"null first row", 8, 4, 16, 3, 1, 0, false, false, false, false, zevStsNullPointer},
        ColCheck{"row past the last one is not read", 8, 4, 16, 3, 1, 6, false, false, false, false,
                 zevStsNoError}));

TEST(ColumnChecks, EightBitOutputsHaveNoStepMultiple) {
    zt::Image<Zev16s> pool(5, 4);
    const Zev16s* rows[4] = {pool.row(0), pool.row(1), pool.row(2), pool.row(3)};
    zt::Image<Zev8u> d8(5, 2, 1, 2);  // step 7
    const Zev16s k[3] = {1, 2, 1};
    std::vector<Zev8u> buf(4096);
    EXPECT_EQ(zeviFilterColumnPipeline_16s8u_C1R(rows, d8.ptr(), 7, ZeviSize{5, 2}, k, 3, 4, buf.data()),
              zevStsNoError);
    EXPECT_EQ(zeviFilterColumnPipeline_16s8s_C1R(rows, reinterpret_cast<Zev8s*>(d8.ptr()), 7, ZeviSize{5, 2}, k, 3, 0,
                                                 buf.data()),
              zevStsBadArgument);
    zt::Image<Zev32f> fp(5, 4), fd(5, 2);
    const Zev32f* frows[4] = {fp.row(0), fp.row(1), fp.row(2), fp.row(3)};
    const Zev32f fk[3] = {1, 2, 1};
    EXPECT_EQ(zeviFilterColumnPipeline_32f_C1R(frows, fd.ptr(), 22, ZeviSize{5, 2}, fk, 3, buf.data()),
              zevStsStepNotMultiple);
    EXPECT_EQ(zeviFilterColumnPipeline_32f_C1R(frows, fd.ptr(), fd.step(), ZeviSize{5, 2}, fk, 3, nullptr),
              zevStsNullPointer);
}

TEST(ColumnBufferSize, FormulaPerFormAndThreadCount) {
    struct Want {
        ZevStatus (*fn)(ZeviSize, int, int*);
        int round, perElem;
    };
    const Want forms[] = {{zeviFilterColumnPipelineGetBufferSize_16s_C1R, 4, 12},
                          {zeviFilterColumnPipelineGetBufferSize_16s8u_C1R, 4, 12},
                          {zeviFilterColumnPipelineGetBufferSize_16s8s_C1R, 4, 12},
                          {zeviFilterColumnPipelineGetBufferSize_16s_C3R, 4, 36},
                          {zeviFilterColumnPipelineGetBufferSize_16s8u_C3R, 4, 36},
                          {zeviFilterColumnPipelineGetBufferSize_16s8s_C3R, 4, 36},
                          {zeviFilterColumnPipelineGetBufferSize_Low_16s_C1R, 8, 12},
                          {zeviFilterColumnPipelineGetBufferSize_Low_16s_C3R, 8, 36}};
    for (int T : {1, 4}) {
        zt::Threads scope(T);
        for (const Want& f : forms)
            for (int w : {1, 13, 640}) {
                int size = -1;
                ASSERT_EQ(f.fn(ZeviSize{w, 21}, 5, &size), zevStsNoError);
                const int S = ((w + f.round - 1) / f.round * f.round) * f.perElem + 32;
                EXPECT_EQ(size, T * 32 + (21 + 5) * T * 4 + T * S) << w;
            }
        int size = 0;
        EXPECT_EQ(zeviFilterColumnPipelineGetBufferSize_32f_C1R(ZeviSize{5000, 5000}, 9, &size), zevStsNoError);
        EXPECT_EQ(size, 32);
        EXPECT_EQ(zeviFilterColumnPipelineGetBufferSize_32f_C3R(ZeviSize{1, 1}, 1, &size), zevStsNoError);
        EXPECT_EQ(size, 32);
    }
    int size = 0;
    EXPECT_EQ(zeviFilterColumnPipelineGetBufferSize_32f_C1R(ZeviSize{0, 0}, 0, nullptr), zevStsNullPointer);
    EXPECT_EQ(zeviFilterColumnPipelineGetBufferSize_32f_C1R(ZeviSize{0, 1}, 1, &size), zevStsBadSize);
    EXPECT_EQ(zeviFilterColumnPipelineGetBufferSize_16s_C1R(ZeviSize{1, 0}, 1, &size), zevStsBadSize);
    EXPECT_EQ(zeviFilterColumnPipelineGetBufferSize_16s_C1R(ZeviSize{1, 1}, 0, &size), zevStsBadSize);
}

// ---------------------------------------------------------------- threads

class ColumnThreads : public ::testing::TestWithParam<int> {};

TEST_P(ColumnThreads, SameBitsAsOneThread) {
    const int T = GetParam();
    const int limit = T << 15;
    struct Shape {
        int w, h;
    };
    // One channel either side of the threshold; three channels count thrice.
    const Shape shapes[] = {{256, limit / 256 - 1}, {256, limit / 256 + 5}, {limit / 3 + 9, 3}};
    zt::Rng rng(41);
    for (const Shape& sh : shapes)
        for (int K : {3, 5, 6}) {
            auto k = kernelOf<Zev16s>(K, 50, rng);
            Case c{sh.w, sh.h, K, 7, 1, true};
            std::vector<Zev8s> one, many;
            zt::Rng r1(9), r2(9);
            {
                zt::Threads scope(1);
                runAndCompare(k8sC1, c, k, r1, &one);
            }
            {
                zt::Threads scope(T);
                runAndCompare(k8sC1, c, k, r2, &many, false);  // the bits are compared below
            }
            EXPECT_TRUE(zt::sameBits(one, many)) << T << " threads " << sh.w << "x" << sh.h << " K" << K;
        }
    // Three channels: w * h * 3 crosses the threshold where w * h does not.
    std::vector<Zev16s> one, many;
    Case c3{limit / 6 + 1, 3, 5, 3, 0, false};
    auto k = kernelOf<Zev16s>(5, 50, rng);
    zt::Rng r1(2), r2(2);
    {
        zt::Threads scope(1);
        runAndCompare(k16sC3, c3, k, r1, &one);
    }
    {
        zt::Threads scope(T);
        runAndCompare(k16sC3, c3, k, r2, &many, false);
    }
    EXPECT_TRUE(zt::sameBits(one, many));
}

INSTANTIATE_TEST_SUITE_P(Counts, ColumnThreads, ::testing::Values(2, 3, 8));

// ---------------------------------------------------------------- chain

// A ring of row-filtered rows fed to the column stage, replicating the top and
// bottom rows through repeated pointers: a full separable 5x5 filter.
TEST(PipelineChain, RingOfRowsThroughBothStages) {
    const int w = 45, h = 17, K = 5;
    zt::Rng rng(77);
    zt::Image<Zev8u> src(w, h, 1, 3, 1);
    src.fill([&] { return static_cast<Zev8u>(rng.uniform(0, 255)); });
    const Zev16s rk[K] = {1, 4, 6, 4, 1}, ck[K] = {-1, -2, 0, 2, 1};
    zt::Image<Zev16s> mid(w, h);
    std::vector<Zev16s*> midRows(h);
    for (int y = 0; y < h; ++y) midRows[y] = mid.row(y);
    int rsize = 0, csize = 0;
    zeviFilterRowBorderPipelineGetBufferSize_8u16s_C1R(ZeviSize{w, h}, K, &rsize);
    zeviFilterColumnPipelineGetBufferSize_16s_C1R(ZeviSize{w, h}, K, &csize);
    std::vector<Zev8u> rbuf(rsize), cbuf(csize);
    ASSERT_EQ(zeviFilterRowBorderPipeline_8u16s_C1R(src.ptr(), src.step(), midRows.data(), ZeviSize{w, h}, rk, K, 2,
                                                    zevBorderReplicate, 0, 1, rbuf.data()),
              zevStsNoError);
    std::vector<const Zev16s*> ring(h + K - 1);
    for (int i = 0; i < h + K - 1; ++i) ring[i] = mid.row(std::min(h - 1, std::max(0, i - 2)));
    zt::Image<Zev16s> dst(w, h);
    ASSERT_EQ(zeviFilterColumnPipeline_16s_C1R(ring.data(), dst.ptr(), dst.step(), ZeviSize{w, h}, ck, K, 1,
                                               cbuf.data()),
              zevStsNoError);
    // Integer weights, divisor 1, sums well inside 16 bits: the exact 2-D sum.
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int s = 0;
            for (int i = 0; i < K; ++i)
                for (int j = 0; j < K; ++j) {
                    int yy = std::min(h - 1, std::max(0, y + i - 2)), xx = std::min(w - 1, std::max(0, x + j - 2));
                    s += ck[i] * rk[j] * src.row(yy)[xx];
                }
            ASSERT_EQ(dst.row(y)[x], s) << x << "," << y;
        }
}

// Kernels longer than the coefficient registers hold take the scalar forms of
// the same rules.
TEST(ColumnPipeline, LongKernels) {
    zt::Rng rng(61);
    for (int K : {31, 32, 33, 40}) {
        Case c{37, 3, K, 3, 1, true};
        EXPECT_EQ(runAndCompare(k16sC1, c, kernelOf<Zev16s>(K, 20, rng), rng), 0) << K;
        EXPECT_EQ(runAndCompare(kLowC1, c, kernelOf<Zev16s>(K, 20, rng), rng), 0) << K;
        EXPECT_EQ(runAndCompare(k32fC1, c, kernelOf<Zev32f>(K, 1, rng), rng), 0) << K;
        c.divisor = 1;
        EXPECT_EQ(runAndCompare(k8uC1, c, kernelOf<Zev16s>(K, 20, rng), rng), 0) << K;
    }
}
