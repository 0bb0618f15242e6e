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
