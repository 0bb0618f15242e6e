// Fixed filters (Sobel, Scharr, Laplacian, lowpass) against the plain model,
// bit for bit, over every border code and in-memory flag, small and odd sizes,
// misaligned origins and several thread counts; argument checks with nothing
// written; buffer sizes that are both exact and sufficient.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "common/guarded.h"
#include "filter/fixed_reference.h"

namespace {

using namespace fixedref;

enum FormId { F8u16s, F8u8s, F32f, F8u };

// One exported filter behind a uniform call, with its size query.
struct Api {
    std::function<ZevStatus(const void*, int, void*, int, ZeviSize, int, int, float, int, Zev8u*)> run;
    std::function<ZevStatus(ZeviSize, int, int*)> size;
};

#define MASKED_API(Name)                                                                                          \
    {Api{[](const void* s, int ss, void* d, int ds, ZeviSize r, int m, int b, float v, int, Zev8u* buf) {         \
             return zeviFilter##Name##Border_8u16s_C1R(static_cast<const Zev8u*>(s), ss, static_cast<Zev16s*>(d), \
                                                       ds, r, m, b, static_cast<Zev8u>(v), buf);                 \
         },                                                                                                       \
         [](ZeviSize r, int m, int* n) { return zeviFilter##Name##GetBufferSize_8u16s_C1R(r, m, n); }},           \
     Api{[](const void* s, int ss, void* d, int ds, ZeviSize r, int m, int b, float v, int dv, Zev8u* buf) {      \
             return zeviFilter##Name##Border_8u8s_C1R(static_cast<const Zev8u*>(s), ss, static_cast<Zev8s*>(d),   \
                                                      ds, r, m, b, static_cast<Zev8u>(v), dv, buf);               \
         },                                                                                                       \
         [](ZeviSize r, int m, int* n) { return zeviFilter##Name##GetBufferSize_8u8s_C1R(r, m, n); }},            \
     Api{[](const void* s, int ss, void* d, int ds, ZeviSize r, int m, int b, float v, int, Zev8u* buf) {         \
             return zeviFilter##Name##Border_32f_C1R(static_cast<const Zev32f*>(s), ss, static_cast<Zev32f*>(d),  \
                                                     ds, r, m, b, v, buf);                                       \
         },                                                                                                       \
         [](ZeviSize r, int m, int* n) { return zeviFilter##Name##GetBufferSize_32f_C1R(r, m, n); }},             \
     Api{}}

#define SCHARR_API(Name)                                                                                          \
    {Api{[](const void* s, int ss, void* d, int ds, ZeviSize r, int, int b, float v, int, Zev8u* buf) {           \
             return zeviFilter##Name##Border_8u16s_C1R(static_cast<const Zev8u*>(s), ss, static_cast<Zev16s*>(d), \
                                                       ds, r, b, static_cast<Zev8u>(v), buf);                    \
         },                                                                                                       \
         [](ZeviSize r, int, int* n) { return zeviFilter##Name##GetBufferSize_8u16s_C1R(r, n); }},                \
     Api{[](const void* s, int ss, void* d, int ds, ZeviSize r, int, int b, float v, int dv, Zev8u* buf) {        \
             return zeviFilter##Name##Border_8u8s_C1R(static_cast<const Zev8u*>(s), ss, static_cast<Zev8s*>(d),   \
                                                      ds, r, b, static_cast<Zev8u>(v), dv, buf);                  \
         },                                                                                                       \
         [](ZeviSize r, int, int* n) { return zeviFilter##Name##GetBufferSize_8u8s_C1R(r, n); }},                 \
     Api{[](const void* s, int ss, void* d, int ds, ZeviSize r, int, int b, float v, int, Zev8u* buf) {           \
             return zeviFilter##Name##Border_32f_C1R(static_cast<const Zev32f*>(s), ss, static_cast<Zev32f*>(d),  \
                                                     ds, r, b, v, buf);                                          \
         },                                                                                                       \
         [](ZeviSize r, int, int* n) { return zeviFilter##Name##GetBufferSize_32f_C1R(r, n); }},                  \
     Api{}}

const std::vector<std::vector<Api>>& apis() {
    static const std::vector<std::vector<Api>> t = {
        MASKED_API(SobelHoriz),       MASKED_API(SobelVert),       MASKED_API(SobelNegVert), MASKED_API(SobelCross),
        MASKED_API(SobelHorizSecond), MASKED_API(SobelVertSecond), SCHARR_API(ScharrHoriz),  SCHARR_API(ScharrVert),
        MASKED_API(Laplacian),
        {Api{}, Api{},
         Api{[](const void* s, int ss, void* d, int ds, ZeviSize r, int m, int b, float v, int, Zev8u* buf) {
                 return zeviFilterLowpassBorder_32f_C1R(static_cast<const Zev32f*>(s), ss, static_cast<Zev32f*>(d),
                                                        ds, r, m, b, v, buf);
             },
             [](ZeviSize r, int m, int* n) { return zeviFilterLowpassGetBufferSize_32f_C1R(r, m, n); }},
         Api{[](const void* s, int ss, void* d, int ds, ZeviSize r, int m, int b, float v, int, Zev8u* buf) {
                 return zeviFilterLowpassBorder_8u_C1R(static_cast<const Zev8u*>(s), ss, static_cast<Zev8u*>(d), ds,
                                                       r, m, b, static_cast<Zev8u>(v), buf);
             },
             [](ZeviSize r, int m, int* n) { return zeviFilterLowpassGetBufferSize_8u_C1R(r, m, n); }}},
    };
    return t;
}

bool hasForm(int f, int form) { return static_cast<bool>(apis()[f][form].run); }
bool hasMask5(int f) { return f != ScharrHoriz && f != ScharrVert; }

// Source with a 2-pixel margin of real, random memory around the region, so that
// in-memory flags have something to read and other codes must not read it.
template <class T>
struct Source {
    static constexpr int kMargin = 2;
    zt::Image<T> img;
    Source(int w, int h, int pad, int offset, zt::Rng& rng)
        : img(w + 2 * kMargin, h + 2 * kMargin, 1, pad, offset) {
        if constexpr (std::is_same_v<T, float>) img.fill([&] { return rng.uniformf(-100.0f, 100.0f); });
        else img.fill([&] { return static_cast<T>(rng.next()); });
    }
    const T* origin() const { return &img.at(kMargin, kMargin); }
    int step() const { return img.step(); }
};

struct Buffer {
    zt::Image<Zev8u> img;
    explicit Buffer(int bytes, int offset = 0) : img(std::max(bytes, 1), 1, 1, 0, offset) {}
    Zev8u* ptr() { return img.ptr(); }
};

template <class Dst>
void expectMatches(const zt::Image<Dst>& dst, const std::vector<Dst>& want, const std::string& what) {
    std::vector<Dst> got = dst.pixels();
    if (zt::sameBits(got, want)) return;
    for (std::size_t i = 0; i < got.size(); ++i) {
        if (std::memcmp(&got[i], &want[i], sizeof(Dst)) != 0) {
            ADD_FAILURE() << what << ": first difference at x=" << i % dst.width() << " y=" << i / dst.width()
                          << ": got " << +got[i] << ", want " << +want[i];
            return;
        }
    }
}

struct Config {
    int w, h, border, divisor, srcOffset, dstOffset, pad;
    float value;
};

std::string describe(int f, int form, int K, const Config& c) {
    static const char* forms[] = {"8u16s", "8u8s", "32f", "8u"};
    char buf[200];
    std::snprintf(buf, sizeof buf, "%s_%s K=%d w=%d h=%d border=0x%x div=%d offsets=%d/%d", filterName(f),
                  forms[form], K, c.w, c.h, c.border, c.divisor, c.srcOffset, c.dstOffset);
    return buf;
}

// Runs one configuration and compares with the model; also checks that the
// reported buffer suffices and nothing outside the region was written.
template <class Src, class Dst>
void checkOne(int f, int form, int K, const Config& c, zt::Rng& rng) {
    const Api& api = apis()[f][form];
    const std::string what = describe(f, form, K, c);
    Source<Src> src(c.w, c.h, c.pad, c.srcOffset, rng);
    zt::Image<Dst> dst(c.w, c.h, 1, c.pad + 1, c.dstOffset);
    int bytes = -1;
    ASSERT_EQ(api.size(ZeviSize{c.w, c.h}, K * 11, &bytes), zevStsNoError) << what;
    Buffer buf(bytes, 5);
    ASSERT_EQ(api.run(src.origin(), src.step(), dst.ptr(), dst.step(), dst.size(), K * 11, c.border, c.value,
                      c.divisor, buf.ptr()),
              zevStsNoError)
        << what;
    EXPECT_TRUE(dst.guardsIntact()) << what;
    EXPECT_TRUE(buf.img.guardsIntact()) << what << ": wrote past the reported buffer";
    auto want = reference<Src, Dst>(f, K, src.origin(), src.step(), c.w, c.h, c.border, static_cast<Src>(c.value),
                                    c.divisor);
    expectMatches(dst, want, what);
}

void checkForm(int f, int form, int K, const Config& c, zt::Rng& rng) {
    switch (form) {
    case F8u16s: checkOne<Zev8u, Zev16s>(f, form, K, c, rng); break;
    case F8u8s: checkOne<Zev8u, Zev8s>(f, form, K, c, rng); break;
    case F32f: checkOne<Zev32f, Zev32f>(f, form, K, c, rng); break;
    default: checkOne<Zev8u, Zev8u>(f, form, K, c, rng); break;
    }
}

const int kBorders[] = {zevBorderConst,
                        zevBorderReplicate,
                        zevBorderWrap,
                        zevBorderMirror,
                        zevBorderMirrorR,
                        zevBorderInMem,
                        int{zevBorderInMemTop} | zevBorderReplicate,
                        int{zevBorderInMemBottom} | zevBorderMirror,
                        int{zevBorderInMemTop} | zevBorderMirrorR,
                        int{zevBorderInMemLeft} | zevBorderWrap,
                        int{zevBorderInMemRight} | zevBorderMirror,
                        int{zevBorderInMemLeft} | zevBorderInMemRight | zevBorderConst,
                        int{zevBorderInMemTop} | zevBorderInMemBottom | zevBorderWrap};

// ---------------------------------------------------------------- exactness

using Case = std::tuple<int, int, int>;  // filter, form, mask side

class FixedExact : public ::testing::TestWithParam<Case> {};

// Every border argument over narrow and short regions (below and around the
// kernel size, around the register widths), and random larger ones.
TEST_P(FixedExact, MatchesModelOnAllBordersAndSmallSizes) {
    auto [f, form, K] = GetParam();
    zt::Rng rng(1000u + f * 97u + form * 13u + K);
    const int widths[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 19, 31, 33, 40};
    const int heights[] = {1, 2, 3, 4, 5, 6, 9, 20};
    int i = 0;
    for (int border : kBorders) {
        for (int w : widths) {
            int h = heights[(i++ * 5 + w) % 8];
            Config c{w, h, border, (i % 7) - 3, i % 3, (i / 3) % 3, i % 4, static_cast<float>(rng.uniform(0, 255))};
            if (c.divisor == 0) c.divisor = 7;
            if (form == F32f) c.value = rng.uniformf(-50.0f, 50.0f);
            checkForm(f, form, K, c, rng);
            if (::testing::Test::HasFailure()) return;
        }
    }
    for (int n = 0; n < 12; ++n) {
        Config c{rng.uniform(1, 200), rng.uniform(1, 20), kBorders[rng.uniform(0, 12)], rng.uniform(1, 300),
                 rng.uniform(0, 3), rng.uniform(0, 3), rng.uniform(0, 5), static_cast<float>(rng.uniform(0, 255))};
        checkForm(f, form, K, c, rng);
        if (::testing::Test::HasFailure()) return;
    }
}

std::vector<Case> allCases() {
    std::vector<Case> v;
    for (int f = 0; f < kFilterCount; ++f)
        for (int form = 0; form < 4; ++form)
            if (hasForm(f, form)) {
                v.emplace_back(f, form, 3);
                if (hasMask5(f)) v.emplace_back(f, form, 5);
            }
    return v;
}

std::string caseName(const ::testing::TestParamInfo<Case>& info) {
    static const char* forms[] = {"8u16s", "8u8s", "32f", "8u"};
    auto [f, form, K] = info.param;
    return std::string(filterName(f)) + "_" + forms[form] + "_" + std::to_string(K) + "x" + std::to_string(K);
}

INSTANTIATE_TEST_SUITE_P(All, FixedExact, ::testing::ValuesIn(allCases()), caseName);

// ---------------------------------------------------------------- threads

struct ThreadCase {
    int f, form, K, w, h, border;
};

class FixedThreads : public ::testing::TestWithParam<ThreadCase> {};

// Sizes on both sides of the band threshold; bands must read their neighbours'
// rows and wrap must reach the whole image's far end, whatever the team.
TEST_P(FixedThreads, SameResultForAnyThreadCount) {
    const ThreadCase& t = GetParam();
    for (int threads : {1, 2, 8}) {
        zt::Threads scope(threads);
        zt::Rng rng(77);
        Config c{t.w, t.h, t.border, 3, 1, 2, 1, 9.0f};
        checkForm(t.f, t.form, t.K, c, rng);
        if (::testing::Test::HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Bands, FixedThreads,
    ::testing::Values(ThreadCase{SobelHoriz, F8u16s, 3, 300, 260, zevBorderReplicate},
                      ThreadCase{SobelHoriz, F8u16s, 3, 300, 255, zevBorderReplicate},
                      ThreadCase{SobelVert, F32f, 5, 256, 300, zevBorderWrap},
                      ThreadCase{SobelCross, F8u16s, 5, 255, 300, zevBorderMirror},
                      ThreadCase{ScharrVert, F8u8s, 3, 260, 390, zevBorderMirrorR},
                      ThreadCase{Laplacian, F8u8s, 5, 270, 64, zevBorderConst},
                      ThreadCase{Laplacian, F8u8s, 5, 270, 130, zevBorderWrap},
                      ThreadCase{Laplacian, F8u16s, 3, 257, 263, zevBorderMirror},
                      ThreadCase{Laplacian, F32f, 5, 300, 300, int{zevBorderInMemTop} | zevBorderConst},
                      ThreadCase{Lowpass, F8u, 5, 300, 266, zevBorderInMem}));

// ---------------------------------------------------------------- arguments

struct BadCase {
    const char* name;
    int form;
    ZeviSize roi;
    int srcStepDelta, dstStepDelta;  // added to the tight step
    bool nullSrc, nullDst, nullBuf;
    int mask, border, divisor;
    ZevStatus want;
};

class FixedArgs : public ::testing::TestWithParam<BadCase> {};

TEST_P(FixedArgs, ReportsTheFirstFaultAndWritesNothing) {
    const BadCase& b = GetParam();
    zt::Rng rng(5);
    const int w = std::max(b.roi.width, 1), h = std::max(b.roi.height, 1);
    Source<float> src32(w, h, 2, 0, rng);
    Source<Zev8u> src8(w, h, 2, 0, rng);
    zt::Image<Zev8u> dst(w * 4, h, 1, 8, 0);
    Buffer buf(4096);
    dst.snapshot();
    buf.img.snapshot();
    const int srcElem = b.form == F32f ? 4 : 1;
    const int dstElem = b.form == F32f ? 4 : (b.form == F8u16s ? 2 : 1);
    const void* s = b.nullSrc ? nullptr : (b.form == F32f ? static_cast<const void*>(src32.origin()) : src8.origin());
    const int ss = b.roi.width * srcElem + b.srcStepDelta;
    const int ds = b.roi.width * dstElem + b.dstStepDelta;
    const Api& api = apis()[SobelHoriz][b.form];
    ZevStatus st = api.run(s, ss, b.nullDst ? nullptr : dst.ptr(), ds, b.roi, b.mask, b.border, 0.0f, b.divisor,
                           b.nullBuf ? nullptr : buf.ptr());
    EXPECT_EQ(st, b.want);
    if (b.want != zevStsNoError) {
        EXPECT_TRUE(dst.unchanged());
        EXPECT_TRUE(buf.img.unchanged());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Order, FixedArgs,
    ::testing::Values(
        BadCase{"NullSrcBeforeZeroWidth", F8u16s, {0, 4}, 0, 0, true, false, false, 33, 1, 1, zevStsNullPointer},
        BadCase{"NullBuffer", F32f, {4, 4}, 0, 0, false, false, true, 33, 1, 1, zevStsNullPointer},
        BadCase{"ZeroWidthBeforeBadStep", F8u16s, {0, 4}, -1, -1, false, false, false, 33, 1, 1, zevStsBadSize},
        BadCase{"ZeroHeight", F8u8s, {4, 0}, 0, 0, false, false, false, 33, 1, 1, zevStsBadSize},
        BadCase{"ShortSrcStep", F32f, {4, 4}, -4, 0, false, false, false, 33, 1, 1, zevStsBadStep},
        BadCase{"ShortDstStep", F8u16s, {4, 4}, 0, -1, false, false, false, 33, 1, 1, zevStsBadStep},
        BadCase{"NegativeStep", F8u8s, {4, 4}, -100, 0, false, false, false, 33, 1, 1, zevStsBadStep},
        BadCase{"FloatSrcStepNotMultiple", F32f, {4, 4}, 2, 0, false, false, false, 33, 1, 1, zevStsStepNotMultiple},
        BadCase{"ShortDstStepWinsOverOddSrc", F32f, {4, 4}, 1, -4, false, false, false, 33, 1, 1, zevStsBadStep},
        BadCase{"OddDstStep16s", F8u16s, {4, 4}, 0, 1, false, false, false, 33, 1, 1, zevStsStepNotMultiple},
        BadCase{"OddSrcStep8uAccepted", F8u16s, {4, 4}, 1, 0, false, false, false, 33, 1, 1, zevStsNoError},
        BadCase{"OddDstStep8sAccepted", F8u8s, {4, 4}, 0, 1, false, false, false, 55, 1, 1, zevStsNoError},
        BadCase{"BorderCode5", F8u16s, {4, 4}, 0, 0, false, false, false, 33, 5, 1, zevStsBadArgument},
        BadCase{"UnknownHighBitOnly", F8u16s, {4, 4}, 0, 0, false, false, false, 33, 0x105, 1, zevStsBadArgument},
        BadCase{"TopFlagWithReplicate", F8u16s, {4, 4}, 0, 0, false, false, false, 33, 0x11, 1, zevStsNoError},
        BadCase{"BorderBeforeDivisor", F8u8s, {4, 4}, 0, 0, false, false, false, 33, 7, 0, zevStsBadArgument},
        BadCase{"ZeroDivisor", F8u8s, {4, 4}, 0, 0, false, false, false, 33, 1, 0, zevStsBadArgument},
        BadCase{"DivisorBeforeMask", F8u8s, {4, 4}, 0, 0, false, false, false, 44, 1, 0, zevStsBadArgument},
        BadCase{"BadMask", F32f, {4, 4}, 0, 0, false, false, false, 44, 1, 1, zevStsBadMaskSize},
        BadCase{"BorderBeforeMask", F32f, {4, 4}, 0, 0, false, false, false, 44, 0x100, 1, zevStsBadArgument}),
    [](const ::testing::TestParamInfo<BadCase>& i) { return std::string(i.param.name); });

// ---------------------------------------------------------------- buffer sizes

struct SizeCase {
    int f, form, mask;
    ZeviSize roi;
    int threads;
    int want;
};

class FixedBufferSize : public ::testing::TestWithParam<SizeCase> {};

TEST_P(FixedBufferSize, ReportsTheExactSize) {
    const SizeCase& c = GetParam();
    zt::Threads scope(c.threads);
    int n = -1;
    ASSERT_EQ(apis()[c.f][c.form].size(c.roi, c.mask, &n), zevStsNoError);
    EXPECT_EQ(n, c.want);
}

// Hand-worked values. SobelHoriz 8u16s 3x3, 100x50, one thread: W = 112,
// head 112*2*21 + 0xF8 + 36 = 4988, R = 32 + 212 + 220 = 464,
// C = 32 + 212 + 1232 = 1476, B = 6928, reported B + 64 = 6992.
INSTANTIATE_TEST_SUITE_P(
    Hand, FixedBufferSize,
    ::testing::Values(SizeCase{SobelHoriz, F8u16s, 33, {100, 50}, 1, 6992},
                      // two threads: 2*(4988 + 2*(32+212+220) + 2*(32+212+1232) + 64)
                      SizeCase{SobelHoriz, F8u16s, 33, {100, 50}, 2, 17864},
                      // SobelVert 8u16s: D = 0xD8 and +32: 6928 - 0x20 + 32
                      SizeCase{SobelVert, F8u16s, 33, {100, 50}, 1, 6928},
                      // Lowpass 32f 5x5, 17x9: W=32, head 32*4*25+0xB8+60 = 3444,
                      // R = 32 + 56 + 384 + 16 = 488, C = 32; 3444+488+32+32
                      SizeCase{Lowpass, F32f, 55, {17, 9}, 1, 3996},
                      // Scharr vert 8u16s: 16*42+0x11C, W=16, w=10,h=3: R=32+24+220, C=32+24+(12*12+32)
                      SizeCase{ScharrVert, F8u16s, 33, {10, 3}, 1, 672 + 284 + 276 + 232 + 32},
                      // Laplacian 8u8s 5x5 adds W*2*height+32: W=16,h=4: head 16*4*25+0x150+120=2056,
                      // R = 32+36+292, C = 32+36+(12*12+32) = 244, extra 160
                      SizeCase{Laplacian, F8u8s, 55, {10, 4}, 1, 2056 + 360 + 244 + 160 + 32}));

TEST(FixedBufferSize, ChecksPointerThenSizeThenMask) {
    int n = 0;
    EXPECT_EQ(zeviFilterSobelHorizGetBufferSize_8u16s_C1R({0, 0}, 33, nullptr), zevStsNullPointer);
    EXPECT_EQ(zeviFilterSobelHorizGetBufferSize_8u16s_C1R({0, 5}, 44, &n), zevStsBadSize);
    EXPECT_EQ(zeviFilterSobelHorizGetBufferSize_8u16s_C1R({5, 0}, 44, &n), zevStsBadSize);
    EXPECT_EQ(zeviFilterSobelHorizGetBufferSize_8u16s_C1R({5, 5}, 44, &n), zevStsBadMaskSize);
    EXPECT_EQ(zeviFilterScharrVertGetBufferSize_32f_C1R({5, 5}, &n), zevStsNoError);
}

// ---------------------------------------------------------------- values worth naming

TEST(FixedValues, LowpassOfWhiteIs255For3x3And254For5x5) {
    for (int mask : {33, 55}) {
        zt::Image<Zev8u> src(20, 6), dst(20, 6);
        src.fill([] { return Zev8u{255}; });
        int n = 0;
        ASSERT_EQ(zeviFilterLowpassGetBufferSize_8u_C1R(src.size(), mask, &n), zevStsNoError);
        std::vector<Zev8u> buf(n);
        ASSERT_EQ(zeviFilterLowpassBorder_8u_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), mask,
                                                 zevBorderReplicate, 0, buf.data()),
                  zevStsNoError);
        for (Zev8u v : dst.pixels()) ASSERT_EQ(v, mask == 33 ? 255 : 254);
    }
}

// A one-row image: the column result comes from the borders alone; Mirror takes
// row 1 for row -1, which for one row is row 0 again, so a vertical derivative is 0.
TEST(FixedValues, OneRowMirrorGivesZeroVerticalDerivative) {
    zt::Image<Zev8u> src(24, 1);
    zt::Rng rng(3);
    src.fill([&] { return static_cast<Zev8u>(rng.next()); });
    zt::Image<Zev16s> dst(24, 1);
    int n = 0;
    ASSERT_EQ(zeviFilterSobelHorizGetBufferSize_8u16s_C1R(src.size(), 33, &n), zevStsNoError);
    std::vector<Zev8u> buf(n);
    ASSERT_EQ(zeviFilterSobelHorizBorder_8u16s_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), 33,
                                                   zevBorderMirror, 0, buf.data()),
              zevStsNoError);
    for (Zev16s v : dst.pixels()) ASSERT_EQ(v, 0);
}

// 8-bit output: a quotient of exactly .5 rounds to even in the leading columns
// (the first width & ~3) and truncates in the others. One row, constant border
// 0: SobelVert's row kernel 1 0 -1 and the column's centre weight 2 give
// out[x] = 2 * (s[x-1] - s[x+1]); divisor 4 halves it.
TEST(FixedValues, SignedByteOutputRoundsInLeadingColumnsAndTruncatesInTail) {
    zt::Image<Zev8u> src(9, 1);
    src.fill([] { return Zev8u{0}; });
    src.at(2, 0) = 1;  // out[1] = -2, out[3] = 2
    src.at(7, 0) = 3;  // out[6] = -6, out[8] = 6 (x = 8 is the tail)
    zt::Image<Zev8s> dst(9, 1);
    int n = 0;
    ASSERT_EQ(zeviFilterSobelVertGetBufferSize_8u8s_C1R(src.size(), 33, &n), zevStsNoError);
    std::vector<Zev8u> buf(n);
    ASSERT_EQ(zeviFilterSobelVertBorder_8u8s_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), 33,
                                                 zevBorderConst, 0, 4, buf.data()),
              zevStsNoError);
    EXPECT_EQ(dst.at(1, 0), 0);   // -0.5 -> 0
    EXPECT_EQ(dst.at(3, 0), 0);   // 0.5 -> 0
    EXPECT_EQ(dst.at(6, 0), -2);  // -1.5 -> -2
    EXPECT_EQ(dst.at(8, 0), 1);   // 1.5 truncates
}

// ---------------------------------------------------------------- kernel generation

struct KernelCase {
    int size, order, sign;
    std::vector<int> want;
};

class GenSobel : public ::testing::TestWithParam<KernelCase> {};

TEST_P(GenSobel, BuildsTheKernelInBothTypes) {
    const KernelCase& c = GetParam();
    std::vector<Zev16s> k16(c.size + 1, 77);
    std::vector<Zev32f> k32(c.size + 1, 77.0f);
    ASSERT_EQ(zeviGenSobelKernel_16s(k16.data(), c.size, c.order, c.sign), zevStsNoError);
    ASSERT_EQ(zeviGenSobelKernel_32f(k32.data(), c.size, c.order, c.sign), zevStsNoError);
    for (int i = 0; i < c.size; ++i) {
        EXPECT_EQ(k16[i], c.want[i]) << i;
        EXPECT_EQ(k32[i], static_cast<float>(c.want[i])) << i;
    }
    EXPECT_EQ(k16[c.size], 77);  // nothing past the kernel
}

INSTANTIATE_TEST_SUITE_P(Cases, GenSobel,
                         ::testing::Values(KernelCase{1, 0, 1, {1}}, KernelCase{3, 0, 1, {1, 2, 1}},
                                           KernelCase{3, 1, 1, {-1, 0, 1}}, KernelCase{3, 2, 0, {1, -2, 1}},
                                           KernelCase{5, 1, 1, {-1, -2, 0, 2, 1}},
                                           KernelCase{5, 2, -1, {-1, 0, 2, 0, -1}},
                                           KernelCase{5, 4, 1, {1, -4, 6, -4, 1}},
                                           KernelCase{7, 0, -3, {-1, -6, -15, -20, -15, -6, -1}}));

TEST(GenSobel, RejectsBadArguments) {
    Zev16s k[8] = {};
    EXPECT_EQ(zeviGenSobelKernel_16s(nullptr, 4, -1, 1), zevStsNullPointer);
    EXPECT_EQ(zeviGenSobelKernel_16s(k, 0, 0, 1), zevStsBadSize);
    EXPECT_EQ(zeviGenSobelKernel_16s(k, 4, 0, 1), zevStsBadSize);
    EXPECT_EQ(zeviGenSobelKernel_16s(k, 3, -1, 1), zevStsBadSize);
    EXPECT_EQ(zeviGenSobelKernel_32f(reinterpret_cast<Zev32f*>(k), 3, 3, 1), zevStsBadSize);
    for (Zev16s v : k) EXPECT_EQ(v, 0);
}

}  // namespace
