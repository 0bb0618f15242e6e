// Empty masks, zero denominators, the extreme signed byte, and NaNs.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "test_norm_members.h"

namespace {

using nt::Member;

const double kNaN = std::bit_cast<double>(std::uint64_t{0xFFF8000000000000ull});
const double kInf = std::numeric_limits<double>::infinity();

std::string name(const ::testing::TestParamInfo<Member>& info) { return info.param.name; }

class NormEdge : public ::testing::TestWithParam<Member> {};

// No pixel selected: sums and maxima stay zero. A plain or difference norm is 0
// without a warning; a relative one is 0 / 0.
TEST_P(NormEdge, EmptyMask) {
    const Member& m = GetParam();
    zt::Rng rng(5);
    for (int w : {1, 17, 40}) {
        nt::Scene s(m, w, 3, 1);
        s.randomize(rng);
        s.fillMask(0);
        nt::Scene::Result r = s.call(m.ch == 3 ? 3 : 1);
        if (m.form == nt::Form::Rel) {
            EXPECT_EQ(r.status, zevStsZeroDenominator);
            EXPECT_TRUE(nt::sameBits(r.value, kNaN)) << r.value;
        } else {
            EXPECT_EQ(r.status, zevStsNoError);
            EXPECT_TRUE(nt::sameBits(r.value, 0.0)) << r.value;
        }
        EXPECT_TRUE(r.valueOnly);
    }
}

// A black second image under the mask: infinity when the difference is not zero,
// NaN when both are black.
TEST_P(NormEdge, ZeroDenominator) {
    const Member& m = GetParam();
    if (m.form != nt::Form::Rel) GTEST_SKIP() << "only relative norms divide";
    zt::Rng rng(6);
    nt::Scene s(m, 21, 4, 2);
    s.randomize(rng, 60);
    const int c = m.ch == 3 ? 1 : 0;
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 21; ++x) {
            s.set(0, x, y, c, 0);
            s.set(1, x, y, c, 0);
            s.setMask(x, y, 1);
        }
    nt::Scene::Result r = s.call(c + 1);
    EXPECT_EQ(r.status, zevStsZeroDenominator);
    EXPECT_TRUE(nt::sameBits(r.value, kNaN)) << r.value;

    s.set(0, 20, 3, c, 3);  // the last pixel, a row tail in every layout
    r = s.call(c + 1);
    EXPECT_EQ(r.status, zevStsZeroDenominator);
    EXPECT_TRUE(nt::sameBits(r.value, kInf)) << r.value;

    s.set(1, 20, 3, c, 2);
    r = s.call(c + 1);
    EXPECT_EQ(r.status, zevStsNoError);
    EXPECT_TRUE(std::isfinite(r.value));
}

// NaNs in excluded pixels of either image change nothing.
TEST_P(NormEdge, NaNUnderAZeroMaskIsIgnored) {
    const Member& m = GetParam();
    if (m.ty != nt::Ty::F32) GTEST_SKIP() << "integers have no NaN";
    zt::Rng rng(8);
    for (int w : {3, 4, 13, 33}) {
        nt::Scene s(m, w, 3, 1);
        s.randomize(rng, 50);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < w; ++x) {
                s.setMask(x, y, x == 1 || (x + y) % 3 == 0 ? 0 : 255);
                if (x == 1 || (x + y) % 3 == 0)
                    for (int c = 0; c < m.ch; ++c) {
                        s.set(0, x, y, c, std::numeric_limits<double>::quiet_NaN());
                        s.set(1, x, y, c, -std::numeric_limits<double>::quiet_NaN());
                    }
            }
        for (int coi = 1; coi <= m.ch; ++coi) {
            nt::Expect e = nt::reference(m, s.view(coi), 1);
            nt::Scene::Result r = s.call(coi);
            EXPECT_EQ(r.status, e.status);
            EXPECT_TRUE(nt::sameBits(r.value, e.value)) << "width " << w << ": " << r.value << " vs " << e.value;
            EXPECT_FALSE(std::isnan(r.value));
        }
    }
}

// A selected NaN: sums become NaN; a maximum passes over it.
TEST_P(NormEdge, SelectedNaN) {
    const Member& m = GetParam();
    if (m.ty != nt::Ty::F32 || m.form == nt::Form::Rel) GTEST_SKIP();
    nt::Scene s(m, 10, 2, 0);
    s.fillMask(1);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 10; ++x)
            for (int c = 0; c < m.ch; ++c) {
                s.set(0, x, y, c, x + 1);
                s.set(1, x, y, c, 0);
            }
    s.set(0, 9, 1, 0, std::numeric_limits<double>::quiet_NaN());
    s.set(0, 2, 0, 0, std::numeric_limits<double>::quiet_NaN());
    nt::Scene::Result r = s.call(1);
    EXPECT_EQ(r.status, zevStsNoError);
    if (m.kind == nt::Kind::Inf) EXPECT_EQ(r.value, 10.0);
    else EXPECT_TRUE(std::isnan(r.value));
}

INSTANTIATE_TEST_SUITE_P(Norms, NormEdge, ::testing::ValuesIn(nt::members()), name);

// |-128| of a signed byte is 128, in a vector block and in a row tail.
TEST(NormSignedBytes, MinusOneTwentyEight) {
    for (const char* n : {"zeviNorm_Inf_8s_C1MR", "zeviNorm_L1_8s_C1MR", "zeviNorm_L2_8s_C1MR",
                          "zeviNorm_Inf_8s_C3CMR", "zeviNormDiff_Inf_8s_C1MR", "zeviNormDiff_L1_8s_C3CMR"}) {
        const Member& m = nt::member(n);
        nt::Scene s(m, 19, 1, 0);
        s.fillMask(0);
        for (int x = 0; x < 19; ++x)
            for (int c = 0; c < m.ch; ++c) {
                s.set(0, x, 0, c, x == 18 || x == 3 ? -128 : 0);
                s.set(1, x, 0, c, x == 18 || x == 3 ? 127 : 0);
            }
        s.setMask(3, 0, 1);
        s.setMask(18, 0, 1);
        const bool diff = m.form == nt::Form::Diff;
        const double one = diff ? 255.0 : 128.0;
        const double want = m.kind == nt::Kind::Inf ? one : m.kind == nt::Kind::L1 ? 2 * one : std::sqrt(2 * one * one);
        nt::Scene::Result r = s.call(1);
        EXPECT_EQ(r.status, zevStsNoError) << n;
        EXPECT_EQ(r.value, want) << n;
    }
}

}  // namespace
