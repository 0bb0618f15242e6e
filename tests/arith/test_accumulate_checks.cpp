// Accumulators: the argument chain and its order (with nothing written on a
// failure), the documented corner cases of masked blocks, and the one member
// that is not in place.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "common/guarded.h"
#include "test_accumulate.h"

namespace acc {
namespace {

constexpr int kW = 5, kH = 3;

// A valid call of member m on small guarded images whose steps equal their
// rows; mutations then break it. Source bytes 0x40 read as 64, 16448 or 3.0.
struct Fixture {
    zt::Image<std::uint8_t> s1, s2;
    zt::Image<Zev8u> mask{kW, kH, 1, 0, 0};
    zt::Image<float> d{kW, kH, 1, 0, 0};
    Call c;
    explicit Fixture(const Member& m) : s1(kW * m.srcBytes, kH, 1, 0, 0), s2(kW * m.srcBytes, kH, 1, 0, 0) {
        zt::Rng rng(7);
        s1.fill([] { return std::uint8_t{0x40}; });
        s2.fill([] { return std::uint8_t{0x40}; });
        mask.fill([&] { return static_cast<Zev8u>(rng.next() & 1); });
        d.fill([&] { return rng.uniformf(-5.0f, 5.0f); });
        c.s1 = s1.ptr(), c.s1Step = s1.step();
        if (m.twoSources) c.s2 = s2.ptr(), c.s2Step = s2.step();
        if (m.masked) c.mask = mask.ptr(), c.maskStep = mask.step();
        c.d = d.ptr(), c.dStep = d.step();
        c.roi = ZeviSize{kW, kH};
        c.alpha = 0.5f;
    }
    void snapshot() { s1.snapshot(), s2.snapshot(), mask.snapshot(), d.snapshot(); }
    bool unchanged() const { return s1.unchanged() && s2.unchanged() && mask.unchanged() && d.unchanged(); }
};

struct Mutation {
    const char* what;
    bool (*applies)(const Member&);
    void (*apply)(Call&, const Member&);
    ZevStatus fixed;                         // the status, unless
    ZevStatus (*depends)(const Member&);     // it depends on the member
    ZevStatus expect(const Member& m) const { return depends ? depends(m) : fixed; }
};

bool always(const Member&) { return true; }
bool product(const Member& m) { return m.twoSources; }
bool masked(const Member& m) { return m.masked; }
int srcRow(const Member& m) { return kW * m.srcBytes; }
// Status of a source step one byte over its row: only 16u and 32f test multiples.
ZevStatus oddSource(const Member& m) { return m.srcBytes == 1 ? zevStsNoError : zevStsStepNotMultiple; }
// Two bytes over: only a 32f source fails.
ZevStatus evenSource(const Member& m) { return m.srcBytes == 4 ? zevStsStepNotMultiple : zevStsNoError; }
// An odd source step and a later bound failure: 16u judges the multiple first.
ZevStatus oddThenShort(const Member& m) { return m.interleaved ? zevStsStepNotMultiple : zevStsBadStep; }

const Mutation kMutations[] = {
    {"valid call", always, [](Call&, const Member&) {}, zevStsNoError, nullptr},
    {"null source", always, [](Call& c, const Member&) { c.s1 = nullptr; },
     zevStsNullPointer, nullptr},
    {"null second source", product, [](Call& c, const Member&) { c.s2 = nullptr; },
     zevStsNullPointer, nullptr},
    {"null mask", masked, [](Call& c, const Member&) { c.mask = nullptr; },
     zevStsNullPointer, nullptr},
    {"null accumulator with zero width", always, [](Call& c, const Member&) { c.d = nullptr, c.roi.width = 0; },
     zevStsNullPointer, nullptr},
    {"zero width with a short step", always, [](Call& c, const Member&) { c.roi.width = 0, c.dStep = 0; },
     zevStsBadSize, nullptr},
    {"negative height", always, [](Call& c, const Member&) { c.roi.height = -1; },
     zevStsBadSize, nullptr},
    {"source step one element short", always, [](Call& c, const Member& m) { c.s1Step = srcRow(m) - m.srcBytes; },
     zevStsBadStep, nullptr},
    {"negative source step", always, [](Call& c, const Member&) { c.s1Step = -16; },
     zevStsBadStep, nullptr},
    {"second source step short", product, [](Call& c, const Member& m) { c.s2Step = srcRow(m) - m.srcBytes; },
     zevStsBadStep, nullptr},
    {"mask step short", masked, [](Call& c, const Member&) { c.maskStep = kW - 1; },
     zevStsBadStep, nullptr},
    {"accumulator step one element short", always, [](Call& c, const Member&) { c.dStep = 4 * kW - 4; },
     zevStsBadStep, nullptr},
    {"accumulator step 4w+2", always, [](Call& c, const Member&) { c.dStep = 4 * kW + 2; },
     zevStsStepNotMultiple, nullptr},
    {"odd source step", always, [](Call& c, const Member& m) { c.s1Step = srcRow(m) + 1; }, 0, oddSource},
    {"odd second source step", product, [](Call& c, const Member& m) { c.s2Step = srcRow(m) + 1; }, 0, oddSource},
    {"source step 2 over the row", always, [](Call& c, const Member& m) { c.s1Step = srcRow(m) + 2; },
     0, evenSource},
    {"odd source step, short accumulator step", always,
     [](Call& c, const Member& m) { c.s1Step = srcRow(m) + 1, c.dStep = 4 * kW - 4; }, 0, oddThenShort},
    {"odd source step, short mask step", masked,
     [](Call& c, const Member& m) { c.s1Step = srcRow(m) + 1, c.maskStep = kW - 1; }, 0, oddThenShort},
    {"odd first source, short second source", product,
     [](Call& c, const Member& m) { c.s1Step = srcRow(m) + 1, c.s2Step = srcRow(m) - m.srcBytes; },
     zevStsBadStep, nullptr},
    {"odd second source, short accumulator step", product,
     [](Call& c, const Member& m) { c.s2Step = srcRow(m) + 1, c.dStep = 4 * kW - 4; }, 0, oddThenShort},
    {"accumulator step 4w+2 and odd source step", always,
     [](Call& c, const Member& m) { c.s1Step = srcRow(m) + 1, c.dStep = 4 * kW + 2; },
     zevStsStepNotMultiple, nullptr},
};

class AccumulateChecks : public ::testing::TestWithParam<Member> {};

void PrintTo(const Member& m, std::ostream* os) { *os << m.name; }

TEST_P(AccumulateChecks, ChainOrderAndNothingWrittenOnFailure) {
    const Member& m = GetParam();
    for (const Mutation& mu : kMutations) {
        if (!mu.applies(m)) continue;
        SCOPED_TRACE(mu.what);
        Fixture f(m);
        mu.apply(f.c, m);
        f.snapshot();
        ZevStatus want = mu.expect(m);
        EXPECT_EQ(m.call(f.c), want);
        if (want != zevStsNoError) EXPECT_TRUE(f.unchanged());
        else EXPECT_TRUE(f.d.guardsIntact() && !f.d.unchanged());
    }
}

INSTANTIATE_TEST_SUITE_P(Arith, AccumulateChecks, ::testing::ValuesIn(allMembers()),
                         [](const ::testing::TestParamInfo<Member>& i) { return std::string(i.param.name); });

// ---- masked blocks against scalar positions

float bitsToFloat(std::uint32_t b) { return std::bit_cast<float>(b); }
bool isMinusZero(float v) { return std::bit_cast<std::uint32_t>(v) == 0x80000000u; }
bool isPlusZero(float v) { return std::bit_cast<std::uint32_t>(v) == 0u; }

struct ZeroMaskCase {
    int accOff;        // elements off 16-byte alignment
    int blockFrom;     // first pixel of the vector blocks
    int blockTo;       // one past the last
};

class AllZeroMask : public ::testing::TestWithParam<ZeroMaskCase> {};

TEST_P(AllZeroMask, MinusZeroBecomesPlusZeroOnlyInsideBlocks) {
    const auto& p = GetParam();
    const int w = 37;  // 148-byte rows, 160-byte steps: every row starts alike
    zt::Image<Zev8u> src(w, 2, 1, 3, 0), mask(w, 2, 1, 3, 0);
    zt::Image<float> d(w, 2, 1, 3, p.accOff);
    src.fill([] { return Zev8u{200}; });
    mask.fill([] { return Zev8u{0}; });
    d.fill([] { return -0.0f; });
    ASSERT_EQ(zeviAdd_8u32f_C1IMR(src.ptr(), src.step(), mask.ptr(), mask.step(), d.ptr(), d.step(), d.size()),
              zevStsNoError);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < w; ++x) {
            bool inBlock = x >= p.blockFrom && x < p.blockTo;
            EXPECT_TRUE(inBlock ? isPlusZero(d.at(x, y)) : isMinusZero(d.at(x, y))) << "x=" << x << " y=" << y;
        }
}

INSTANTIATE_TEST_SUITE_P(Arith, AllZeroMask,
                         ::testing::Values(ZeroMaskCase{0, 0, 36}, ZeroMaskCase{1, 3, 35}, ZeroMaskCase{2, 2, 34},
                                           ZeroMaskCase{3, 1, 37}));

// 0 * inf in a block is NaN; a scalar position is skipped. Rows under 4 pixels
// have no block at all.
TEST(AccumulateEdges, ProductWithInfiniteSecondSourceUnderZeroMask) {
    for (int w : {3, 6, 9}) {
        SCOPED_TRACE(w);
        zt::Image<float> s1(w, 2, 1, 1, 1), s2(w, 2, 1, 2, 3), d(w, 2, 1, 5, 2);
        zt::Image<Zev8u> mask(w, 2);
        s1.fill([] { return 2.0f; });
        s2.fill([] { return std::numeric_limits<float>::infinity(); });
        mask.fill([] { return Zev8u{0}; });
        d.fill([] { return 1.5f; });
        ASSERT_EQ(zeviAddProduct_32f_C1IMR(s1.ptr(), s1.step(), s2.ptr(), s2.step(), mask.ptr(), mask.step(), d.ptr(),
                                           d.step(), d.size()),
                  zevStsNoError);
        const int blocks = w < 4 ? 0 : w & ~3;
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < w; ++x) {
                if (x < blocks) EXPECT_TRUE(std::isnan(d.at(x, y))) << x;
                else EXPECT_EQ(d.at(x, y), 1.5f) << x;
            }
    }
}

// ---- images off their element alignment: the same bits as aligned copies,
// for every member whose block positions do not follow the accumulator's
// address (those without a mask, and those whose blocks start at the row).

// A byte buffer holding h rows of rowBytes at a step, its origin `shift` bytes
// past a 64-byte boundary, filled with a copy of the given bytes.
struct Raw {
    std::vector<std::uint8_t> mem;
    std::uint8_t* origin;
    int step;
    Raw(const std::vector<std::uint8_t>& content, int rowBytes, int h, int shift) : step(rowBytes + 12) {
        mem.assign(static_cast<std::size_t>(step) * h + 192, 0xA5);
        std::uintptr_t p = reinterpret_cast<std::uintptr_t>(mem.data());
        origin = mem.data() + ((64 - (p & 63)) & 63) + 64 + shift;
        for (int y = 0; y < h; ++y) std::memcpy(row(y), content.data() + std::size_t(y) * rowBytes, rowBytes);
    }
    std::uint8_t* row(int y) const { return origin + static_cast<std::size_t>(y) * step; }
    std::vector<std::uint8_t> rows(int rowBytes, int h) const {
        std::vector<std::uint8_t> v;
        for (int y = 0; y < h; ++y)
            v.insert(v.end(), row(y), row(y) + rowBytes);
        return v;
    }
};

// Source bytes that read as ordinary values in every source type.
std::vector<std::uint8_t> contentBytes(int count, zt::Rng& rng, int elemBytes) {
    std::vector<std::uint8_t> v(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        v[i] = elemBytes == 4 && i % 4 == 3 ? static_cast<std::uint8_t>(0x40 + rng.next() % 8)
                                            : static_cast<std::uint8_t>(rng.next());
    return v;
}

ZevStatus runShifted(const Member& m, int w, int h, int shift, const std::vector<std::uint8_t>& a,
                     const std::vector<std::uint8_t>& b, const std::vector<std::uint8_t>& mk,
                     const std::vector<std::uint8_t>& acc, std::vector<std::uint8_t>& out) {
    const int srcRow = w * m.srcBytes;
    Raw ra(a, srcRow, h, shift), rb(b, srcRow, h, (shift + 1) % 4), rm(mk, w, h, shift), rd(acc, 4 * w, h, shift);
    Call c;
    c.s1 = ra.origin, c.s1Step = ra.step;
    if (m.twoSources) c.s2 = rb.origin, c.s2Step = rb.step;
    if (m.masked) c.mask = rm.origin, c.maskStep = rm.step;
    c.d = reinterpret_cast<Zev32f*>(rd.origin), c.dStep = rd.step;
    c.roi = ZeviSize{w, h};
    c.alpha = 0.75f;
    ZevStatus st = m.call(c);
    out = rd.rows(4 * w, h);
    return st;
}

class AccumulateByteShifted : public ::testing::TestWithParam<Member> {};

TEST_P(AccumulateByteShifted, SameBitsAsAlignedCopies) {
    const Member& m = GetParam();
    zt::Rng rng(31);
    for (int w : {1, 3, 4, 7, 16, 21}) {
        const int h = 3;
        const int srcBytes = w * m.srcBytes * h;
        auto a = contentBytes(srcBytes, rng, m.srcBytes), b = contentBytes(srcBytes, rng, m.srcBytes);
        auto acc = contentBytes(4 * w * h, rng, 4), mk = contentBytes(w * h, rng, 1);
        for (auto& v : mk) v = v % 3 == 0 ? 0 : v;
        std::vector<std::uint8_t> aligned, shifted;
        ASSERT_EQ(runShifted(m, w, h, 0, a, b, mk, acc, aligned), zevStsNoError);
        for (int shift : {1, 2, 3}) {
            ASSERT_EQ(runShifted(m, w, h, shift, a, b, mk, acc, shifted), zevStsNoError);
            EXPECT_EQ(shifted, aligned) << m.name << " w=" << w << " shift=" << shift;
        }
    }
}

std::vector<Member> shiftableMembers() {
    std::vector<Member> v;
    for (const auto& m : allMembers())
        if (!m.masked || m.flatRows) v.push_back(m);
    return v;
}

INSTANTIATE_TEST_SUITE_P(Arith, AccumulateByteShifted, ::testing::ValuesIn(shiftableMembers()),
                         [](const ::testing::TestParamInfo<Member>& i) { return std::string(i.param.name); });

TEST(AddWeightedNotInPlace, ByteShiftedImagesGiveTheAlignedResult) {
    zt::Rng rng(17);
    for (int w : {1, 5, 16, 23}) {
        const int h = 2, row = 4 * w;
        auto a = contentBytes(row * h, rng, 4), b = contentBytes(row * h, rng, 4);
        std::vector<std::uint8_t> zero(static_cast<std::size_t>(row) * h, 0), want;
        for (int shift : {0, 1, 2, 3}) {
            Raw ra(a, row, h, shift), rb(b, row, h, (shift + 2) % 4), rd(zero, row, h, (shift + 3) % 4);
            ASSERT_EQ(zeviAddWeighted_32f_C1R(reinterpret_cast<const Zev32f*>(ra.origin), ra.step,
                                              reinterpret_cast<const Zev32f*>(rb.origin), rb.step,
                                              reinterpret_cast<Zev32f*>(rd.origin), rd.step, ZeviSize{w, h}, 0.4f),
                      zevStsNoError);
            if (shift == 0) want = rd.rows(row, h);
            else EXPECT_EQ(rd.rows(row, h), want) << "w=" << w << " shift=" << shift;
        }
    }
}

// ---- dst = (src1 - src2) * alpha + src2, not in place

float roundedF(float x) {
    volatile float v = x;
    return v;
}

TEST(AddWeightedNotInPlace, MatchesReferenceAtEveryTailAndOrigin) {
    zt::Rng rng(99);
    for (int w = 1; w <= 40; ++w)
        for (int off = 0; off < 4; ++off) {
            SCOPED_TRACE(testing::Message() << "w=" << w << " off=" << off);
            zt::Image<float> a(w, 3, 1, w % 4, off), b(w, 3, 1, 1, (off + 1) % 4), dst(w, 3, 1, 2, (off + 2) % 4);
            a.fill([&] { return rng.uniformf(-1000.0f, 1000.0f); });
            b.fill([&] { return rng.next() % 7 == 0 ? -0.0f : rng.uniformf(-1e6f, 1e6f); });
            dst.fill([] { return 12345.0f; });
            const float alpha = rng.uniformf(-2.0f, 2.0f);
            std::vector<float> want;
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < w; ++x)
                    want.push_back(roundedF(roundedF(a.at(x, y) - b.at(x, y)) * alpha) + b.at(x, y));
            auto bBefore = b.pixels();
            ASSERT_EQ(zeviAddWeighted_32f_C1R(a.ptr(), a.step(), b.ptr(), b.step(), dst.ptr(), dst.step(), dst.size(),
                                              alpha),
                      zevStsNoError);
            EXPECT_TRUE(zt::sameBits(dst.pixels(), want));
            EXPECT_TRUE(zt::sameBits(b.pixels(), bBefore));
            EXPECT_TRUE(dst.guardsIntact() && a.guardsIntact() && b.guardsIntact());
        }
}

struct WeightedCheck {
    const char* what;
    int s1Step, s2Step, dStep, w, h;
    bool null1, null2, nullD;
    ZevStatus want;
};

class AddWeightedNotInPlaceChecks : public ::testing::TestWithParam<WeightedCheck> {};

TEST_P(AddWeightedNotInPlaceChecks, ChainOrderAndNothingWritten) {
    const auto& p = GetParam();
    zt::Image<float> a(8, 2, 1, 4), b(8, 2, 1, 4), dst(8, 2, 1, 4);
    dst.snapshot();
    ZevStatus st = zeviAddWeighted_32f_C1R(p.null1 ? nullptr : a.ptr(), p.s1Step, p.null2 ? nullptr : b.ptr(),
                                           p.s2Step, p.nullD ? nullptr : dst.ptr(), p.dStep, ZeviSize{p.w, p.h}, 0.5f);
    EXPECT_EQ(st, p.want) << p.what;
    if (p.want != zevStsNoError) EXPECT_TRUE(dst.unchanged()) << p.what;
}

INSTANTIATE_TEST_SUITE_P(
    Arith, AddWeightedNotInPlaceChecks,
    ::testing::Values(WeightedCheck{"valid, steps equal to the row", 32, 32, 32, 8, 2, false, false, false,
                                    zevStsNoError},
                      WeightedCheck{"null first", 48, 48, 48, 8, 2, true, false, false, zevStsNullPointer},
                      WeightedCheck{"null second, zero width", 48, 48, 48, 0, 2, false, true, false,
                                    zevStsNullPointer},
                      WeightedCheck{"null destination", 48, 48, 48, 8, 2, false, false, true, zevStsNullPointer},
                      WeightedCheck{"zero height", 48, 48, 48, 8, 0, false, false, false, zevStsBadSize},
                      WeightedCheck{"short second step", 48, 28, 48, 8, 2, false, false, false, zevStsBadStep},
                      WeightedCheck{"odd first step, short destination step", 33, 48, 28, 8, 2, false, false, false,
                                    zevStsBadStep},
                      WeightedCheck{"destination step not a multiple", 48, 48, 34, 8, 2, false, false, false,
                                    zevStsStepNotMultiple},
                      WeightedCheck{"first step not a multiple", 45, 48, 48, 8, 2, false, false, false,
                                    zevStsStepNotMultiple}));

}  // namespace
}  // namespace acc
