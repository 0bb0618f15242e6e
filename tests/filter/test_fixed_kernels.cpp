// The fused 3x3 routines against the row routine followed by the column routine
// of the shared tables, at each instruction level: same ring row, same output,
// bit for bit, for every width up to a few registers and every border code.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "common/guarded.h"
#include "filter/kernels/column_fixed.h"
#include "filter/kernels/fixed_tables.h"
#include "filter/kernels/row_fixed.h"
#include "frame/kernels/simd.h"

namespace {

using v8::fixed::KernelSet;

constexpr int kMaxW = 70, kPlane = 72;

template <class T>
std::vector<T> randomRow(zt::Rng& rng, int n) {
    std::vector<T> v(n);
    for (auto& x : v) {
        if constexpr (std::is_same_v<T, float>) x = rng.uniformf(-1000.0f, 1000.0f);
        else if constexpr (std::is_same_v<T, Zev16s>) x = static_cast<Zev16s>(rng.uniform(-4080, 4080));
        else x = static_cast<T>(rng.next());
    }
    return v;
}

// Fused index -> (row index, column index) in the shared tables.
constexpr int kPairs[v8::fixed::kRowColumnCount][2] = {{6, 1}, {1, 1}, {2, 1}, {2, 2},
                                                       {2, 11}, {6, 5}, {4, 2}, {0, 0}};

template <class Src, class Mid>
void compareFused(const KernelSet& ks, zt::Rng& rng) {
    for (int i = 0; i < v8::fixed::kRowColumnCount; ++i)
        for (int w = 1; w <= kMaxW; ++w)
            for (int border : {0, 1, 2, 3, 4, 0x40 | 1, 0x80 | 3}) {
                // Two pixels of margin on each side for the in-memory flags.
                std::vector<Src> src = randomRow<Src>(rng, w + 4);
                std::vector<Mid> r0 = randomRow<Mid>(rng, kPlane), r1 = randomRow<Mid>(rng, kPlane);
                std::vector<Mid> slotA(kPlane, Mid{}), slotB(kPlane, Mid{}), dstA(w + 1, Mid{}), dstB(w + 1, Mid{});
                alignas(16) std::uint8_t scratch[v8::kFixedRowScratchBytes];
                const Src value = src[1];
                const Mid* rows[3] = {r0.data(), r1.data(), slotB.data()};
                Mid* const slotOut[1] = {slotB.data()};
                bool fused;
                if constexpr (std::is_same_v<Src, float>) {
                    fused = ks.owntabRowColumn_32f[i](src.data() + 2, slotA.data(), r0.data(), r1.data(), dstA.data(),
                                                      w, border, value, reinterpret_cast<Src*>(scratch));
                    v8::owntabRow_32f[kPairs[i][0]](src.data() + 2, 0, slotOut, w, 1, border, value, scratch);
                    v8::owntabColumn_32f[kPairs[i][1]](rows, dstB.data(), 0, w, 1);
                } else {
                    fused = ks.owntabRowColumn_8u16s[i](src.data() + 2, slotA.data(), r0.data(), r1.data(),
                                                        dstA.data(), w, border, value, reinterpret_cast<Src*>(scratch));
                    v8::owntabRow_8u16s[kPairs[i][0]](src.data() + 2, 0, slotOut, w, 1, border, value, scratch);
                    v8::owntabColumn_8u16s[kPairs[i][1]](rows, dstB.data(), 0, w, 1, 1);
                }
                if (!fused) {
                    // Declined rows stay untouched.
                    ASSERT_EQ(dstA, std::vector<Mid>(w + 1, Mid{})) << "fused " << i << " w=" << w;
                    continue;
                }
                ASSERT_EQ(std::memcmp(slotA.data(), slotB.data(), w * sizeof(Mid)), 0)
                    << "fused " << i << " ring row, w=" << w << " border=" << border;
                ASSERT_EQ(std::memcmp(dstA.data(), dstB.data(), (w + 1) * sizeof(Mid)), 0)
                    << "fused " << i << " output, w=" << w << " border=" << border;
            }
}

TEST(FixedFused, SameAsRowThenColumnAtTheFloor) {
    zt::Rng rng(13);
    compareFused<Zev8u, Zev16s>(v8::fixed::fixedKernelsSsse3(), rng);
    compareFused<Zev32f, Zev32f>(v8::fixed::fixedKernelsSsse3(), rng);
}

TEST(FixedFused, SameAsRowThenColumnWith32ByteRegisters) {
    if (!v8::simd::hasAvx2()) GTEST_SKIP() << "no AVX2 on this processor";
    zt::Rng rng(14);
    compareFused<Zev8u, Zev16s>(v8::fixed::fixedKernelsAvx2(), rng);
    compareFused<Zev32f, Zev32f>(v8::fixed::fixedKernelsAvx2(), rng);
}

}  // namespace

namespace {

// The fused Gaussian step against the float row pipeline and column pipeline.
void compareGauss(const KernelSet& ks, zt::Rng& rng) {
    for (int K : {3, 5, 7, 11})
        for (int w = 1; w <= kMaxW; ++w)
            for (int border : {0, 1, 2, 3, 4}) {
                std::vector<float> k = randomRow<float>(rng, K), src = randomRow<float>(rng, w);
                std::vector<std::vector<float>> rows;
                for (int t = 0; t + 1 < K; ++t) rows.push_back(randomRow<float>(rng, w));
                std::vector<float> slotA(w), slotB(w), dstA(w + 1, 0.0f), dstB(w + 1, 0.0f), line(3 * K);
                std::vector<const float*> winA, winB;
                for (auto& r : rows) winA.push_back(r.data()), winB.push_back(r.data());
                winA.push_back(slotA.data());
                winB.push_back(slotB.data());
                if (!ks.ownGaussRowColumn_32f(src.data(), slotA.data(), winA.data(), dstA.data(), w, K, k.data(), border,
                                              1.5f, line.data()))
                    continue;
                int n = 0;
                ASSERT_EQ(zeviFilterRowBorderPipelineGetBufferSize_32f_C1R({w, 1}, K, &n), zevStsNoError);
                std::vector<Zev8u> buf(n);
                float* out = slotB.data();
                ASSERT_EQ(zeviFilterRowBorderPipeline_32f_C1R(src.data(), w * 4, &out, {w, 1}, k.data(), K, K / 2,
                                                              border, 1.5f, buf.data()),
                          zevStsNoError);
                ASSERT_EQ(zeviFilterColumnPipeline_32f_C1R(winB.data(), dstB.data(), w * 4, {w, 1}, k.data(), K,
                                                           buf.data()),
                          zevStsNoError);
                ASSERT_TRUE(zt::sameBits(slotA, slotB)) << "K=" << K << " w=" << w << " border=" << border;
                ASSERT_TRUE(zt::sameBits(dstA, dstB)) << "K=" << K << " w=" << w << " border=" << border;
            }
}

TEST(FixedGaussStep, SameAsThePipelinesAtEachLevel) {
    zt::Rng rng(15);
    compareGauss(v8::fixed::fixedKernelsSsse3(), rng);
    if (v8::simd::hasAvx2()) compareGauss(v8::fixed::fixedKernelsAvx2(), rng);
}

}  // namespace
