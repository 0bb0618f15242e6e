// The two instruction sets of the one-channel integer kernels give the same
// partial results on every row tail (the public calls reach only one of them).
#include <gtest/gtest.h>

#include <vector>

#include "common/guarded.h"
#include "frame/kernels/simd.h"
#include "stats/kernels/norm.h"

namespace {

using v8::NormForm;
using v8::NormKind;

template <class T, NormForm F, NormKind K>
void compareSets(zt::Rng& rng) {
    for (int w = 1; w <= 70; ++w) {
        zt::Image<T> a(w, 3, 1, 2, w % 5), b(w, 3, 1, 4, 1);
        zt::Image<Zev8u> m(w, 3, 1, 3, w % 7);
        a.fill([&] { return static_cast<T>(rng.next()); });
        b.fill([&] { return static_cast<T>(rng.next()); });
        m.fill([&] { return static_cast<Zev8u>(rng.uniform(0, 3) ? rng.uniform(1, 255) : 0); });
        v8::NormSrc<T> s{a.ptr(), a.step(), b.ptr(), b.step(), m.ptr(), m.step(), w, 0};
        v8::NormPart x = v8::ownNormBand_V8<T, F, K, 1>(s, 3);
        v8::NormPart y = v8::ownNormBand_avx2<T, F, K, 1>(s, 3);
        ASSERT_EQ(x.p, y.p) << "width " << w;
        ASSERT_EQ(x.q, y.q) << "width " << w;
    }
}

template <class T, NormForm F>
void allKinds(zt::Rng& rng) {
    compareSets<T, F, NormKind::Inf>(rng);
    compareSets<T, F, NormKind::L1>(rng);
    compareSets<T, F, NormKind::L2>(rng);
}

template <class T>
void allForms() {
    zt::Rng rng(77);
    allKinds<T, NormForm::Norm>(rng);
    allKinds<T, NormForm::Diff>(rng);
    allKinds<T, NormForm::Rel>(rng);
}

class NormKernelSets : public ::testing::Test {
protected:
    void SetUp() override {
        if (!v8::simd::hasAvx2()) GTEST_SKIP() << "no AVX2 on this processor";
    }
};

TEST_F(NormKernelSets, UnsignedBytes) { allForms<Zev8u>(); }
TEST_F(NormKernelSets, SignedBytes) { allForms<Zev8s>(); }
TEST_F(NormKernelSets, Words) { allForms<Zev16u>(); }

}  // namespace
