// Every norm member, bit for bit against the reference, over all row-tail lengths,
// aligned and unaligned origins, and every channel.
#include <gtest/gtest.h>

#include <string>

#include "test_norm_members.h"

namespace {

std::string memberName(const ::testing::TestParamInfo<nt::Member>& info) { return info.param.name; }

void expectMatch(nt::Scene& s, const nt::Member& m, int coi, const char* what) {
    nt::Expect e = nt::reference(m, s.view(coi), nt::teamsFor(m, s.roi()));
    nt::Scene::Result r = s.call(coi);
    ASSERT_EQ(r.status, e.status) << what << " " << s.roi().width << "x" << s.roi().height << " coi " << coi;
    ASSERT_TRUE(nt::sameBits(r.value, e.value))
        << what << " " << s.roi().width << "x" << s.roi().height << " coi " << coi << ": got " << r.value
        << " expected " << e.value;
    ASSERT_TRUE(r.valueOnly) << "an input or a byte beside value changed";
}

class NormExact : public ::testing::TestWithParam<nt::Member> {};

TEST_P(NormExact, EveryTailOriginAndChannel) {
    const nt::Member& m = GetParam();
    zt::Rng rng(1000 + static_cast<unsigned>(m.name[9]) * 31 + static_cast<unsigned>(m.ch));
    const int cois = m.ch == 3 ? 3 : 1;
    for (int w = 1; w <= 40; ++w)
        for (int offset : {0, 1, 3}) {
            nt::Scene s(m, w, 3, offset);
            s.randomize(rng);
            for (int coi = 1; coi <= cois; ++coi) expectMatch(s, m, coi, "random");
        }
}

// One band long enough that 32-bit partial sums of the largest magnitudes would
// wrap (in 16- and in 32-byte registers), with every pixel selected.
TEST_P(NormExact, LargestMagnitudesDoNotWrap) {
    const nt::Member& m = GetParam();
    if (m.ty == nt::Ty::F32 || m.kind == nt::Kind::Inf) GTEST_SKIP() << "no integer sums";
    zt::Threads one(1);
    const int w = 1200, h = 500;
    nt::Scene s(m, w, h, 1);
    s.fillMask(1);
    const double top = m.ty == nt::Ty::U8 ? 255 : m.ty == nt::Ty::S8 ? -128 : 65535;
    const double other = m.ty == nt::Ty::S8 ? 127 : 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < m.ch; ++c) {
                s.set(0, x, y, c, top);
                s.set(1, x, y, c, (x + c) % 2 ? other : top);
            }
    expectMatch(s, m, m.ch == 3 ? 2 : 1, "largest");
}

INSTANTIATE_TEST_SUITE_P(Norms, NormExact, ::testing::ValuesIn(nt::members()), memberName);

}  // namespace
