// Fixed-weight row routines of the tables, by index, against the reference
// window sums, under every border code and the left/right in-memory flags.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "common/guarded.h"
#include "filter/kernels/row_fixed.h"
#include "pipe_ref.h"

namespace {

const std::vector<std::vector<int>> kWeights = {
    {-1, 0, 1}, {3, 10, 3}, {1, 0, -1}, {1, 2, 0, -2, -1}, {1, -2, 1}, {1, 0, -2, 0, 1},
    {1, 2, 1},  {1, 4, 6, 4, 1}, {1, 1, 1}, {1, 1, 1, 1, 1}, {1, 0, 1}};

// Window of output x, where the in-memory flags read the real pixels around the row.
template <class T>
std::vector<T> windowOf(const T* row, int w, int x, int K, int border, T value) {
    std::vector<T> v(K);
    const int a = K / 2;
    for (int i = 0; i < K; ++i) {
        int col = x - a + i;
        bool mem = (col < 0 && (border & zevBorderInMemLeft)) || (col >= w && (border & zevBorderInMemRight));
        v[i] = mem ? row[col] : ref::window(row, w, 1, 0, x, K, a, border & 15, value)[i];
    }
    return v;
}

template <class T>
T sumOf(const std::vector<T>& v, const std::vector<int>& k) {
    if constexpr (std::is_same_v<T, float>) {
        float f = static_cast<float>(k[0]) * v[0];
        for (std::size_t i = 1; i < k.size(); ++i) f += static_cast<float>(k[i]) * v[i];
        return f;
    } else {
        int s = 0;
        for (std::size_t i = 0; i < k.size(); ++i) s += k[i] * v[i];
        return static_cast<T>(s);
    }
}

template <class Src, class Dst, class Fn>
void checkTable(const Fn* table) {
    zt::Rng rng(5);
    for (int index = 0; index < v8::kFixedRowCount; ++index)
        for (int border : {0, 1, 2, 3, 4, 0x41, 0x83, 0xC2, 0x30 | 1})
            for (int w = 1; w <= 40; w += (w < 20 ? 1 : 7)) {
                const int h = 2, K = v8::fixedRowTaps(index);
                // Two pixels of real memory either side of each row.
                zt::Image<Src> mem(w + 4, h, 1, 1, 1);
                mem.fill([&] {
                    if constexpr (std::is_same_v<Src, float>) return rng.uniformf(-10.0f, 10.0f);
                    else return static_cast<Src>(rng.uniform(0, 255));
                });
                const int planes = index == 10 ? 2 : 1, stride = (w + 7) & ~7;
                zt::Image<Dst> dst(stride * planes, h);
                Dst* rows[h] = {dst.row(0), dst.row(1)};
                alignas(16) std::uint8_t scratch[v8::kFixedRowScratchBytes + 1];
                const Src value = static_cast<Src>(17);
                table[index](mem.row(0) + 2, mem.step(), rows, w, h, border, value, scratch + 1);
                ASSERT_TRUE(dst.guardsIntact());
                for (int y = 0; y < h; ++y)
                    for (int x = 0; x < w; ++x) {
                        auto win = windowOf(mem.row(y) + 2, w, x, K, border, value);
                        if (index == 10) {
                            ASSERT_EQ(dst.row(y)[x], sumOf<Dst>({win[0], win[1], win[2]}, {1, 0, 1})) << x;
                            ASSERT_EQ(dst.row(y)[stride + x], sumOf<Dst>({win[0], win[1], win[2]}, {0, 8, 0})) << x;
                        } else {
                            std::vector<Dst> wd(win.begin(), win.end());
                            ASSERT_EQ(dst.row(y)[x], sumOf<Dst>(wd, kWeights[index]))
                                << "index " << index << " border " << border << " w" << w << " x" << x;
                        }
                    }
            }
}

}  // namespace

TEST(FixedRowTable, EightBitToSixteenExactSums) { checkTable<Zev8u, Zev16s>(v8::owntabRow_8u16s); }
TEST(FixedRowTable, FloatLeftToRight) { checkTable<Zev32f, Zev32f>(v8::owntabRow_32f); }
