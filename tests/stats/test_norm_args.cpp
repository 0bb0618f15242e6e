// The argument chain of every norm member: which status a fault gives, which of
// two faults wins, and that an error writes nothing.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "test_norm_members.h"

namespace {

using nt::Member;

struct Args {
    const void* a;
    int aStep;
    const void* b;
    int bStep;
    const Zev8u* mask;
    int maskStep;
    ZeviSize roi;
    int coi;
    Zev64f* value;
};

bool twoImages(const Member& m) { return m.form != nt::Form::Norm; }
bool wide(const Member& m) { return nt::elemBytes(m.ty) > 1; }
int rowBytes(const Member& m, int w) { return w * m.ch * nt::elemBytes(m.ty); }

struct Fault {
    const char* name;
    std::function<void(Args&, const Member&)> apply;
    std::function<ZevStatus(const Member&)> expected;
};

auto is(ZevStatus s) { return [s](const Member&) { return s; }; }

const std::vector<Fault>& faults() {
    static const std::vector<Fault> f = {
        {"src null", [](Args& a, const Member&) { a.a = nullptr; }, is(zevStsNullPointer)},
        {"src2 null", [](Args& a, const Member&) { a.b = nullptr; },
         [](const Member& m) { return twoImages(m) ? zevStsNullPointer : zevStsNoError; }},
        {"mask null", [](Args& a, const Member&) { a.mask = nullptr; }, is(zevStsNullPointer)},
        {"value null", [](Args& a, const Member&) { a.value = nullptr; }, is(zevStsNullPointer)},
        {"null beats zero width", [](Args& a, const Member&) { a.mask = nullptr; a.roi.width = 0; },
         is(zevStsNullPointer)},
        {"zero width", [](Args& a, const Member&) { a.roi.width = 0; }, is(zevStsBadSize)},
        {"negative width", [](Args& a, const Member&) { a.roi.width = -3; }, is(zevStsBadSize)},
        {"zero height", [](Args& a, const Member&) { a.roi.height = 0; }, is(zevStsBadSize)},
        {"zero width beats small step", [](Args& a, const Member&) { a.roi.width = 0; a.aStep = 0; },
         is(zevStsBadSize)},
        {"src step one element short",
         [](Args& a, const Member& m) { a.aStep = rowBytes(m, a.roi.width) - nt::elemBytes(m.ty); },
         is(zevStsBadStep)},
        {"negative src step", [](Args& a, const Member&) { a.aStep = -a.aStep; }, is(zevStsBadStep)},
        {"src2 step short", [](Args& a, const Member& m) { a.bStep = rowBytes(m, a.roi.width) - 1; },
         [](const Member& m) { return twoImages(m) ? zevStsBadStep : zevStsNoError; }},
        {"mask step short", [](Args& a, const Member&) { a.maskStep = a.roi.width - 1; }, is(zevStsBadStep)},
        {"step equal to the row", [](Args& a, const Member& m) { a.aStep = a.bStep = rowBytes(m, a.roi.width); a.maskStep = a.roi.width; },
         is(zevStsNoError)},
        {"src step odd", [](Args& a, const Member& m) { a.aStep = rowBytes(m, a.roi.width) + 1; },
         [](const Member& m) { return wide(m) ? zevStsStepNotMultiple : zevStsNoError; }},
        {"src2 step odd", [](Args& a, const Member& m) { a.bStep = rowBytes(m, a.roi.width) + 1; },
         [](const Member& m) { return wide(m) && twoImages(m) ? zevStsStepNotMultiple : zevStsNoError; }},
        // One image: its multiple is judged before the mask's bound; two images:
        // all bounds come first.
        {"src step odd, mask step short",
         [](Args& a, const Member& m) { a.aStep = rowBytes(m, a.roi.width) + 1; a.maskStep = a.roi.width - 1; },
         [](const Member& m) { return wide(m) && !twoImages(m) ? zevStsStepNotMultiple : zevStsBadStep; }},
        {"src2 step odd, mask step short",
         [](Args& a, const Member& m) { a.bStep = rowBytes(m, a.roi.width) + 1; a.maskStep = a.roi.width - 1; },
         is(zevStsBadStep)},
        {"coi 0", [](Args& a, const Member&) { a.coi = 0; },
         [](const Member& m) { return m.ch == 3 ? zevStsBadCoi : zevStsNoError; }},
        {"coi 4", [](Args& a, const Member&) { a.coi = 4; },
         [](const Member& m) { return m.ch == 3 ? zevStsBadCoi : zevStsNoError; }},
        {"coi -1", [](Args& a, const Member&) { a.coi = -1; },
         [](const Member& m) { return m.ch == 3 ? zevStsBadCoi : zevStsNoError; }},
        {"steps judged before coi", [](Args& a, const Member&) { a.coi = 4; a.maskStep = 0; }, is(zevStsBadStep)},
        {"odd step judged before coi", [](Args& a, const Member& m) { a.coi = 4; a.aStep = rowBytes(m, a.roi.width) + 1; },
         [](const Member& m) { return wide(m) ? zevStsStepNotMultiple : (m.ch == 3 ? zevStsBadCoi : zevStsNoError); }},
    };
    return f;
}

class NormArgs : public ::testing::TestWithParam<Member> {};

TEST_P(NormArgs, FirstFaultDecidesAndErrorsWriteNothing) {
    const Member& m = GetParam();
    zt::Rng rng(3);
    for (const Fault& f : faults()) {
        nt::Scene s(m, 9, 4, 1);
        s.randomize(rng);
        double out[3] = {7.0, -12345.0, 9.0};
        Args a{s.image(0).origin(), s.image(0).step(), s.image(1).origin(), s.image(1).step(),
               s.mask().origin(), s.mask().step(), s.roi(), 2, &out[1]};
        f.apply(a, m);
        s.image(0).snapshot();
        s.image(1).snapshot();
        s.mask().snapshot();
        ZevStatus st = m.call(a.a, a.aStep, a.b, a.bStep, a.mask, a.maskStep, a.roi, a.coi, a.value);
        ZevStatus want = f.expected(m);
        EXPECT_EQ(st, want) << f.name;
        EXPECT_TRUE(s.image(0).unchanged() && s.image(1).unchanged() && s.mask().unchanged()) << f.name;
        EXPECT_EQ(out[0], 7.0) << f.name;
        EXPECT_EQ(out[2], 9.0) << f.name;
        if (want < 0) EXPECT_EQ(out[1], -12345.0) << f.name << ": value written on an error";
        else EXPECT_NE(out[1], -12345.0) << f.name << ": no value on success";
    }
}

INSTANTIATE_TEST_SUITE_P(Norms, NormArgs, ::testing::ValuesIn(nt::members()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
