// Accumulators, bit for bit against a plain reference written from the
// arithmetic rules: every tail length, every prologue length, aligned and
// unaligned origins, each instruction set, streamed stores, and the thread
// split on both sides of the parallel threshold.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "common/guarded.h"
#include "frame/kernels/simd.h"
#include "test_accumulate.h"

namespace acc {
namespace {

// A product rounded to single precision before anything is added to it.
float rounded(float x) {
    volatile float v = x;
    return v;
}

template <class Op>
float apply(float s1, float s2, float d, float alpha) {
    if constexpr (std::is_same_v<Op, v8::AccAdd>) return s1 + d;
    if constexpr (std::is_same_v<Op, v8::AccSquare>) return rounded(s1 * s1) + d;
    if constexpr (std::is_same_v<Op, v8::AccProduct>) return rounded(s1 * s2) + d;
    if constexpr (std::is_same_v<Op, v8::AccWeighted>) return rounded(rounded(s1 - d) * alpha) + d;
}

// An excluded pixel inside a vector block: its source lanes (or, for the
// weighted step, the scaled difference) are zero, and the block still writes.
template <class Op>
float excludedInBlock(float s2, float d) {
    if constexpr (std::is_same_v<Op, v8::AccProduct>) return rounded(0.0f * s2) + d;
    return 0.0f + d;
}

// Vector blocks of a row: either from the row start, or after a scalar run up
// to the accumulator's first 16-byte boundary; then whole groups of 4 pixels.
template <class Op, class T, bool M>
std::pair<int, int> blockSpan(const float* rowStart, int w) {
    int first;
    if (kBlocksFromRowStart<Op, T, M>) {
        first = 0;
    } else {
        auto addr = reinterpret_cast<std::uintptr_t>(rowStart);
        first = w;
        for (int x = 0; x < w; ++x)
            if ((addr + 4u * x) % 16 == 0) {
                first = x;
                break;
            }
    }
    int groups = (w - first) / 4;
    return {first, first + 4 * groups};
}

template <class T>
T sourceValue(zt::Rng& rng) {
    if constexpr (std::is_same_v<T, Zev32f>) {
        switch (rng.next() % 16) {
            case 0: return -0.0f;
            case 1: return 0.0f;
            case 2: return rng.uniformf(-1e-30f, 1e-30f);
            default: return rng.uniformf(-3000.0f, 3000.0f);
        }
    } else {
        return static_cast<T>(rng.next());
    }
}

// Accumulator values: plenty of -0.0 (which a block rewrite turns into +0.0),
// quiet and signalling NaNs, infinities, and values of all magnitudes.
float accValue(zt::Rng& rng) {
    switch (rng.next() % 12) {
        case 0:
        case 1: return -0.0f;
        case 2: return std::bit_cast<float>(0x7fc00123u);
        case 3: return std::bit_cast<float>(0xff800321u);
        case 4: return std::numeric_limits<float>::infinity();
        case 5: return rng.uniformf(-1.0f, 1.0f) * 1e9f;
        default: return rng.uniformf(-70000.0f, 70000.0f);
    }
}

}  // namespace

template <class Op, class T, bool M>
void exactCheck(const Member& m, const Geometry& g) {
    const bool two = std::is_same_v<Op, v8::AccProduct>;
    zt::Rng rng(static_cast<std::uint32_t>(g.w * 7919 + g.h * 31 + g.accOff * 3 + g.srcOff));
    zt::Image<T> s1(g.w, g.h, 1, g.srcPad, g.srcOff);
    zt::Image<T> s2(g.w, g.h, 1, g.srcPad + 1, (g.srcOff + 1) % 4);
    zt::Image<Zev8u> mask(g.w, g.h, 1, 3, g.maskOff);
    zt::Image<float> d(g.w, g.h, 1, g.accPad, g.accOff);
    s1.fill([&] { return sourceValue<T>(rng); });
    s2.fill([&] { return sourceValue<T>(rng); });
    mask.fill([&] { return static_cast<Zev8u>(rng.next() % 3 == 0 ? 0 : 1 + rng.next() % 255); });
    d.fill([&] { return accValue(rng); });

    std::vector<float> want;
    for (int y = 0; y < g.h; ++y) {
        auto [b0, b1] = blockSpan<Op, T, M>(d.row(y), g.w);
        for (int x = 0; x < g.w; ++x) {
            float dv = d.at(x, y), a = static_cast<float>(s1.at(x, y)), b = static_cast<float>(s2.at(x, y));
            if (!M || mask.at(x, y) != 0) want.push_back(apply<Op>(a, b, dv, g.alpha));
            else if (x >= b0 && x < b1) want.push_back(excludedInBlock<Op>(b, dv));
            else want.push_back(dv);
        }
    }
    auto s1Before = s1.pixels(), s2Before = s2.pixels();

    Call c;
    c.s1 = s1.ptr(), c.s1Step = s1.step();
    if (two) c.s2 = s2.ptr(), c.s2Step = s2.step();
    if (M) c.mask = mask.ptr(), c.maskStep = mask.step();
    c.d = d.ptr(), c.dStep = d.step();
    c.roi = d.size();
    c.alpha = g.alpha;
    if (g.path == Geometry::Public) ASSERT_EQ(m.call(c), zevStsNoError);
    else m.kernel(g.isa, c, g.path == Geometry::KernelStream);

    auto got = d.pixels();
    bool same = zt::sameBits(got, want);
    EXPECT_TRUE(same) << m.name << " w=" << g.w << " h=" << g.h << " accOff=" << g.accOff
                      << " srcOff=" << g.srcOff << " accPad=" << g.accPad;
    if (!same) {
        for (std::size_t i = 0; i < got.size(); ++i)
            if (std::bit_cast<std::uint32_t>(got[i]) != std::bit_cast<std::uint32_t>(want[i])) {
                ADD_FAILURE() << "first difference at x=" << i % g.w << " y=" << i / g.w << ": got " << std::hex
                              << std::bit_cast<std::uint32_t>(got[i]) << " want "
                              << std::bit_cast<std::uint32_t>(want[i]);
                break;
            }
    }
    EXPECT_TRUE(d.guardsIntact()) << m.name;
    EXPECT_TRUE(s1.guardsIntact() && s2.guardsIntact() && mask.guardsIntact()) << m.name;
    EXPECT_TRUE(zt::sameBits(s1.pixels(), s1Before) && zt::sameBits(s2.pixels(), s2Before)) << m.name;
}

#define ZEV_EXACT(Op, T, M) template void exactCheck<v8::Op, T, M>(const Member&, const Geometry&);
ZEV_ACCUM_INSTANCES(ZEV_EXACT)
#undef ZEV_EXACT

namespace {

std::string safeName(std::string s) {
    for (auto& ch : s)
        if (!isalnum(static_cast<unsigned char>(ch))) ch = '_';
    return s;
}

// ---- every width up to 40 (all tails after all prologues), four accumulator
// origins, row steps that move the alignment from row to row.

struct PathCase {
    Member member;
    Geometry::Path path;
    Isa isa;
};

void PrintTo(const PathCase& c, std::ostream* os) { *os << c.member.name; }

class AccumulateExact : public ::testing::TestWithParam<PathCase> {};

TEST_P(AccumulateExact, MatchesReferenceAtEveryTailAndOrigin) {
    const auto& p = GetParam();
    if (p.isa == Isa::Avx2 && !v8::simd::hasAvx2()) GTEST_SKIP() << "no AVX2";
    // An infinite alpha makes NaNs that a masked block must still clear.
    const float alphas[] = {0.3f, 0.0f, 1.0f, -2.5f, std::numeric_limits<float>::infinity()};
    for (int w = 1; w <= 40; ++w)
        for (int accOff = 0; accOff < 4; ++accOff)
            for (int srcOff = 0; srcOff < 2; ++srcOff) {
                Geometry g{w, 3, srcOff, accOff, (w + accOff) % 5, w % 3, 1 + (w + srcOff) % 3,
                           alphas[(w + accOff) % 5], p.path, p.isa};
                p.member.exact(p.member, g);
                if (::testing::Test::HasFailure()) return;
            }
}

std::vector<PathCase> pathCases() {
    std::vector<PathCase> v;
    for (const auto& m : allMembers()) {
        v.push_back({m, Geometry::Public, Isa::Avx2});
        for (Isa isa : {Isa::Sse, Isa::Avx2}) {
            v.push_back({m, Geometry::Kernel, isa});
            v.push_back({m, Geometry::KernelStream, isa});
        }
    }
    return v;
}

std::string pathCaseName(const ::testing::TestParamInfo<PathCase>& i) {
    static const char* const path[] = {"public", "kernel", "stream"};
    std::string isa = i.param.path == Geometry::Public ? "" : (i.param.isa == Isa::Sse ? "_sse" : "_avx2");
    return safeName(std::string(i.param.member.name) + "_" + path[i.param.path] + isa);
}

INSTANTIATE_TEST_SUITE_P(Arith, AccumulateExact, ::testing::ValuesIn(pathCases()), pathCaseName);

// ---- the thread split: just below and at the parallel threshold, with fewer
// threads than rows, a few, and more threads than rows.

struct SplitCase {
    Member member;
    int w, h, threads;
};

void PrintTo(const SplitCase& c, std::ostream* os) { *os << c.member.name; }

class AccumulateThreads : public ::testing::TestWithParam<SplitCase> {};

TEST_P(AccumulateThreads, ResultDoesNotDependOnTheSplit) {
    const auto& p = GetParam();
    zt::Threads scope(p.threads);
    p.member.exact(p.member, Geometry{p.w, p.h, 1, 1, 2, 1, 1, 0.25f, Geometry::Public, Isa::Avx2});
}

// Every image a band offsets (second source, mask, each source width) is
// covered by these members; the region logic is shared by all.
std::vector<SplitCase> splitCases() {
    const char* const chosen[] = {"zeviAdd_8u32f_C1IR", "zeviAddSquare_32f_C1IMR", "zeviAddWeighted_16u32f_C1IMR",
                                  "zeviAddProduct_8s32f_C1IMR", "zeviAddProduct_32f_C1IMR"};
    std::vector<SplitCase> v;
    for (const auto& m : allMembers())
        for (const char* name : chosen) {
            if (std::string(name) != m.name) continue;
            v.push_back({m, 65535, 4, 2});  // 262140 pixels: serial
            for (int t : {1, 2, 3, 7}) v.push_back({m, 65536, 4, t});
        }
    return v;
}

INSTANTIATE_TEST_SUITE_P(Arith, AccumulateThreads, ::testing::ValuesIn(splitCases()),
                         [](const ::testing::TestParamInfo<SplitCase>& i) {
                             return safeName(std::string(i.param.member.name) + "_" + std::to_string(i.param.w) +
                                             "x" + std::to_string(i.param.h) + "_t" +
                                             std::to_string(i.param.threads));
                         });

}  // namespace
}  // namespace acc
