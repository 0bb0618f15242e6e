// The fused routines against the row routine followed by the column routine of
// the shared tables, at each instruction level: same ring row, same output, bit
// for bit, for every width up to a few registers and every border code.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "common/guarded.h"
#include "filter/border.h"
#include "filter/kernels/column_fixed.h"
#include "filter/kernels/fixed_tables.h"
#include "filter/kernels/row_fixed.h"
#include "frame/kernels/simd.h"

namespace {

using v8::fixed::KernelSet;

constexpr int kMaxW = 90, kPlane = 96;  // past two 64-byte registers of 16-bit lanes

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

// Fused index -> (row index, column index) in the shared tables, 3x3 and 5x5.
constexpr int kPairs3[v8::fixed::kRowColumnCount][2] = {{6, 1}, {1, 1}, {2, 1}, {2, 2},
                                                        {2, 11}, {6, 5}, {4, 2}, {0, 0}};
constexpr int kPairs5[v8::fixed::kRowColumnCount][2] = {{7, 4}, {-1, -1}, {3, 4}, {3, 3},
                                                        {3, 12}, {7, 6}, {5, 3}, {-1, -1}};

template <class Src, class Mid>
void compareFused(const KernelSet& ks, int K, zt::Rng& rng) {
    using Fused = v8::fixed::RowColFn<Src, Mid, Mid>;
    const Fused* fusedTable;
    if constexpr (std::is_same_v<Src, float>)
        fusedTable = K == 3 ? ks.owntabRowColumn_32f : ks.owntabRowColumn5x5_32f;
    else
        fusedTable = K == 3 ? ks.owntabRowColumn_8u16s : ks.owntabRowColumn5x5_8u16s;
    const auto& pairs = K == 3 ? kPairs3 : kPairs5;
    for (int i = 0; i < v8::fixed::kRowColumnCount; ++i) {
        const Fused fused = fusedTable[i];
        if (pairs[i][0] < 0) {
            EXPECT_EQ(fused, nullptr);
            continue;
        }
        for (int w = 1; w <= kMaxW; ++w)
            for (int border : {0, 1, 2, 3, 4, 0x40 | 1, 0x80 | 3}) {
                // Two pixels of margin on each side for the in-memory flags.
                std::vector<Src> src = randomRow<Src>(rng, w + 4);
                std::vector<std::vector<Mid>> older;
                std::vector<const Mid*> winA, rows;
                for (int k = 0; k + 1 < K; ++k) older.push_back(randomRow<Mid>(rng, kPlane));
                for (auto& o : older) winA.push_back(o.data()), rows.push_back(o.data());
                std::vector<Mid> slotA(kPlane, Mid{}), slotB(kPlane, Mid{}), dstA(w + 1, Mid{}), dstB(w + 1, Mid{});
                rows.push_back(slotB.data());
                alignas(16) std::uint8_t scratch[v8::kFixedRowScratchBytes];
                const Src value = src[1];
                Mid* const slotOut[1] = {slotB.data()};
                Src line[32];
                const int r = v8::fillBorder<Src>(src.data() + 2, line, w, K, K / 2, border, &value);
                const bool done = fused(src.data() + 2, slotA.data(), winA.data(), dstA.data(), w, line, r);
                if (!done) {
                    // Declined rows stay untouched.
                    ASSERT_EQ(dstA, std::vector<Mid>(w + 1, Mid{})) << "fused " << i << " w=" << w;
                    continue;
                }
                if constexpr (std::is_same_v<Src, float>) {
                    v8::owntabRow_32f[pairs[i][0]](src.data() + 2, 0, slotOut, w, 1, border, value, scratch);
                    v8::owntabColumn_32f[pairs[i][1]](rows.data(), dstB.data(), 0, w, 1);
                } else {
                    v8::owntabRow_8u16s[pairs[i][0]](src.data() + 2, 0, slotOut, w, 1, border, value, scratch);
                    v8::owntabColumn_8u16s[pairs[i][1]](rows.data(), dstB.data(), 0, w, 1, 1);
                }
                ASSERT_EQ(std::memcmp(slotA.data(), slotB.data(), w * sizeof(Mid)), 0)
                    << "fused " << K << "x" << K << " " << i << " ring row, w=" << w << " border=" << border;
                ASSERT_EQ(std::memcmp(dstA.data(), dstB.data(), (w + 1) * sizeof(Mid)), 0)
                    << "fused " << K << "x" << K << " " << i << " output, w=" << w << " border=" << border;
            }
    }
}

void compareAllFused(const KernelSet& ks, zt::Rng& rng) {
    for (int K : {3, 5}) {
        compareFused<Zev8u, Zev16s>(ks, K, rng);
        compareFused<Zev32f, Zev32f>(ks, K, rng);
    }
}

TEST(FixedFused, SameAsRowThenColumnAtTheFloor) {
    zt::Rng rng(13);
    compareAllFused(v8::fixed::fixedKernelsSsse3(), rng);
}

TEST(FixedFused, SameAsRowThenColumnWith32ByteRegisters) {
    if (!v8::simd::hasAvx2()) GTEST_SKIP() << "no AVX2 on this processor";
    zt::Rng rng(14);
    compareAllFused(v8::fixed::fixedKernelsAvx2(), rng);
}

TEST(FixedFused, SameAsRowThenColumnWith64ByteRegisters) {
    if (!v8::fixed::hasAvx512()) GTEST_SKIP() << "no AVX-512 on this processor";
    zt::Rng rng(16);
    compareAllFused(v8::fixed::fixedKernelsAvx512(), rng);
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
                const float value = 1.5f;
                const int r = v8::fillBorder<float>(src.data(), line.data(), w, K, K / 2, border, &value);
                if (!ks.ownGaussRowColumn_32f(src.data(), slotA.data(), winA.data(), dstA.data(), w, K, k.data(),
                                              line.data(), r))
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
    if (v8::fixed::hasAvx512()) compareGauss(v8::fixed::fixedKernelsAvx512(), rng);
}

}  // namespace
