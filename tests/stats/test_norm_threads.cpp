// Thread budgets on both sides of each member's band threshold: integer results
// never change; float sums follow the band split and the fixed slot order.
#include <gtest/gtest.h>

#include <string>

#include "frame/core.h"
#include "test_norm_members.h"

namespace {

struct ThreadCase {
    const char* name;
    int threads;
    int height;
};

std::string caseName(const ::testing::TestParamInfo<ThreadCase>& info) {
    return std::string(info.param.name) + "_t" + std::to_string(info.param.threads) + "_h" +
           std::to_string(info.param.height);
}

int shift(nt::Rule r) {
    switch (r) {
        case nt::Rule::N19: return 19;
        case nt::Rule::N17:
        case nt::Rule::N17Omp: return 17;
        default: return 15;  // also Never: a size that would thread under any other rule
    }
}

class NormThreads : public ::testing::TestWithParam<ThreadCase> {};

TEST_P(NormThreads, BothSidesOfTheThreshold) {
    const ThreadCase& c = GetParam();
    const nt::Member& m = nt::member(c.name);
    zt::Threads scope(c.threads);
    const std::int64_t threshold = std::int64_t{v8::owncvGetMaxNumThreads()} << shift(m.rule);
    const int widths[2] = {static_cast<int>((threshold - 1) / c.height),
                           static_cast<int>((threshold + c.height - 1) / c.height)};
    zt::Rng rng(11);
    for (int w : widths) {
        nt::Scene s(m, w, c.height, 1);
        s.randomize(rng, 80, true);
        const int coi = m.ch == 3 ? 2 : 1;
        const int teams = nt::teamsFor(m, s.roi());
        nt::Expect e = nt::reference(m, s.view(coi), teams);
        nt::Scene::Result r = s.call(coi);
        EXPECT_EQ(r.status, e.status);
        EXPECT_TRUE(nt::sameBits(r.value, e.value))
            << w << "x" << c.height << " in " << teams << " bands: " << r.value << " vs " << e.value;
        EXPECT_TRUE(r.valueOnly);
        if (m.ty != nt::Ty::F32 || m.kind == nt::Kind::Inf) {
            // Exact accumulations: the serial result, whatever the split.
            EXPECT_TRUE(nt::sameBits(r.value, nt::reference(m, s.view(coi), 1).value));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Norms, NormThreads,
    ::testing::Values(ThreadCase{"zeviNorm_L1_32f_C1MR", 1, 37}, ThreadCase{"zeviNorm_L1_32f_C1MR", 2, 5},
                      ThreadCase{"zeviNorm_L1_32f_C1MR", 9, 37}, ThreadCase{"zeviNorm_L2_32f_C1MR", 2, 37},
                      ThreadCase{"zeviNorm_L2_32f_C3CMR", 9, 37}, ThreadCase{"zeviNorm_L2_32f_C3CMR", 2, 3},
                      ThreadCase{"zeviNorm_L1_32f_C3CMR", 3, 37}, ThreadCase{"zeviNorm_Inf_32f_C3CMR", 2, 37},
                      ThreadCase{"zeviNormRel_Inf_32f_C1MR", 2, 37}, ThreadCase{"zeviNormDiff_L2_32f_C1MR", 2, 37},
                      ThreadCase{"zeviNormRel_L2_32f_C3CMR", 2, 37}, ThreadCase{"zeviNorm_Inf_8u_C1MR", 2, 3},
                      ThreadCase{"zeviNormDiff_L1_8u_C1MR", 1, 37}, ThreadCase{"zeviNormDiff_L1_8u_C1MR", 5, 3},
                      ThreadCase{"zeviNormRel_L2_16u_C3CMR", 9, 37}, ThreadCase{"zeviNormDiff_L1_8s_C3CMR", 2, 37},
                      ThreadCase{"zeviNormRel_L1_16u_C1MR", 2, 37}, ThreadCase{"zeviNorm_L2_8u_C1MR", 2, 37},
                      ThreadCase{"zeviNormRel_L1_8u_C1MR", 2, 37}, ThreadCase{"zeviNorm_L2_16u_C1MR", 3, 7}),
    caseName);

}  // namespace
