// The row and column tables of each instruction level give the same bits: the
// 32-byte kernels are checked against the 16-byte floor on random rows of every
// width up to a few registers, for every table entry and border code.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "common/guarded.h"
#include "filter/kernels/fixed_tables.h"
#include "frame/kernels/simd.h"

namespace {

using v8::fixed::KernelSet;

constexpr int kRows = 11, kCols = 13, kMaxW = 70, kPlane = 72;

template <class T>
std::vector<T> randomRow(zt::Rng& rng, int n) {
    std::vector<T> v(n);
    for (auto& x : v) {
        if constexpr (std::is_same_v<T, float>) x = rng.uniformf(-1000.0f, 1000.0f);
        else if constexpr (std::is_same_v<T, Zev16s>) x = static_cast<Zev16s>(rng.next());
        else x = static_cast<T>(rng.next());
    }
    return v;
}

class FixedKernelLevels : public ::testing::Test {
protected:
    void SetUp() override {
        if (!v8::simd::hasAvx2()) GTEST_SKIP() << "no AVX2 on this processor";
    }
    const KernelSet& a = v8::fixed::fixedKernelsSsse3();
    const KernelSet& b = v8::fixed::fixedKernelsAvx2();
};

template <class Src, class Mid, class Fn>
void compareRows(Fn fa, Fn fb, zt::Rng& rng, int index) {
    for (int w = 1; w <= kMaxW; ++w)
        for (int border : {0, 1, 2, 3, 4, 0x40 | 3, 0x80 | 2}) {
            // Two pixels of margin on each side for the in-memory flags.
            std::vector<Src> src = randomRow<Src>(rng, w + 4);
            std::vector<Mid> da(2 * kPlane, Mid{}), db(2 * kPlane, Mid{});
            Src line[32], value = src[0];
            fa(src.data() + 2, da.data(), w, kPlane, border, value, line);
            fb(src.data() + 2, db.data(), w, kPlane, border, value, line);
            ASSERT_EQ(std::memcmp(da.data(), db.data(), da.size() * sizeof(Mid)), 0)
                << "row " << index << " w=" << w << " border=" << border;
        }
}

template <class Mid, class Dst, class Fn>
void compareColumns(Fn fa, Fn fb, zt::Rng& rng, int index) {
    for (int w = 1; w <= kMaxW; ++w) {
        std::vector<std::vector<Mid>> rows;
        const Mid* ptrs[5];
        for (int k = 0; k < 5; ++k) rows.push_back(randomRow<Mid>(rng, 2 * kPlane));
        for (int k = 0; k < 5; ++k) ptrs[k] = rows[k].data();
        // Same starting contents: some routines add to what the row holds.
        std::vector<Dst> da = randomRow<Dst>(rng, w), db = da;
        fa(ptrs, da.data(), w, kPlane, 1.0f / 3.0f);
        fb(ptrs, db.data(), w, kPlane, 1.0f / 3.0f);
        ASSERT_EQ(std::memcmp(da.data(), db.data(), da.size() * sizeof(Dst)), 0) << "column " << index << " w=" << w;
    }
}

TEST_F(FixedKernelLevels, RowRoutinesAgree) {
    zt::Rng rng(11);
    for (int i = 0; i < kRows; ++i) {
        compareRows<Zev8u, Zev16s>(a.owntabRow_8u16s[i], b.owntabRow_8u16s[i], rng, i);
        compareRows<Zev32f, Zev32f>(a.owntabRow_32f[i], b.owntabRow_32f[i], rng, i);
    }
}

TEST_F(FixedKernelLevels, ColumnRoutinesAgree) {
    zt::Rng rng(12);
    for (int i = 0; i < kCols; ++i) {
        compareColumns<Zev16s, Zev16s>(a.owntabColumn_8u16s[i], b.owntabColumn_8u16s[i], rng, i);
        compareColumns<Zev16s, Zev8s>(a.owntabColumn_8u8s[i], b.owntabColumn_8u8s[i], rng, i);
        compareColumns<Zev32f, Zev32f>(a.owntabColumn_32f[i], b.owntabColumn_32f[i], rng, i);
    }
    for (int i = 0; i < 2; ++i) {
        // Lowpass sums of 8-bit pixels are small and positive.
        for (int w = 1; w <= kMaxW; ++w) {
            std::vector<std::vector<Zev16s>> rows(5, std::vector<Zev16s>(kPlane));
            const Zev16s* ptrs[5];
            for (int k = 0; k < 5; ++k) {
                for (auto& v : rows[k]) v = static_cast<Zev16s>(rng.uniform(0, 5 * 255));
                ptrs[k] = rows[k].data();
            }
            std::vector<Zev8u> da(w), db(w);
            a.owntabColumn_8u[i](ptrs, da.data(), w, kPlane, 1.0f);
            b.owntabColumn_8u[i](ptrs, db.data(), w, kPlane, 1.0f);
            ASSERT_EQ(da, db) << "lowpass column " << i << " w=" << w;
        }
    }
}

// The fused 3x3 routines give what the row routine and then the column routine
// give, at every width, at each instruction level.
template <class Src, class Mid>
void compareFused(const KernelSet& ks, zt::Rng& rng) {
    // Fused index -> (row index, column index).
    const int pairs[8][2] = {{6, 1}, {1, 1}, {2, 1}, {2, 2}, {2, 11}, {6, 5}, {4, 2}, {0, 0}};
    for (int i = 0; i < 8; ++i)
        for (int w = 1; w <= kMaxW; ++w)
            for (int border : {0, 1, 2, 3, 4, 0x40 | 1, 0x80 | 3}) {
                std::vector<Src> src = randomRow<Src>(rng, w + 4);
                std::vector<Mid> r0 = randomRow<Mid>(rng, kPlane), r1 = randomRow<Mid>(rng, kPlane);
                if constexpr (!std::is_same_v<Mid, float>)
                    for (auto* r : {&r0, &r1})
                        for (auto& v : *r) v = static_cast<Mid>(v / 8);  // row values of 8-bit pixels
                std::vector<Mid> slotA(kPlane), slotB(kPlane), dstA(w), dstB(w);
                Src line[32], value = src[1];
                const Mid* rows[3] = {r0.data(), r1.data(), slotB.data()};
                if constexpr (std::is_same_v<Src, float>) {
                    ks.owntabRowColumn_32f[i](src.data() + 2, slotA.data(), r0.data(), r1.data(), dstA.data(), w,
                                              border, value, line);
                    ks.owntabRow_32f[pairs[i][0]](src.data() + 2, slotB.data(), w, kPlane, border, value, line);
                    ks.owntabColumn_32f[pairs[i][1]](rows, dstB.data(), w, kPlane, 1.0f);
                } else {
                    ks.owntabRowColumn_8u16s[i](src.data() + 2, slotA.data(), r0.data(), r1.data(), dstA.data(), w,
                                                border, value, line);
                    ks.owntabRow_8u16s[pairs[i][0]](src.data() + 2, slotB.data(), w, kPlane, border, value, line);
                    ks.owntabColumn_8u16s[pairs[i][1]](rows, dstB.data(), w, kPlane, 1.0f);
                }
                ASSERT_EQ(std::memcmp(slotA.data(), slotB.data(), w * sizeof(Mid)), 0)
                    << "fused " << i << " row, w=" << w << " border=" << border;
                ASSERT_EQ(std::memcmp(dstA.data(), dstB.data(), w * sizeof(Mid)), 0)
                    << "fused " << i << " output, w=" << w << " border=" << border;
            }
}

TEST(FixedFused, SameAsRowThenColumn) {
    zt::Rng rng(13);
    compareFused<Zev8u, Zev16s>(v8::fixed::fixedKernelsSsse3(), rng);
    compareFused<Zev32f, Zev32f>(v8::fixed::fixedKernelsSsse3(), rng);
    if (v8::simd::hasAvx2()) {
        compareFused<Zev8u, Zev16s>(v8::fixed::fixedKernelsAvx2(), rng);
        compareFused<Zev32f, Zev32f>(v8::fixed::fixedKernelsAvx2(), rng);
    }
}

}  // namespace
