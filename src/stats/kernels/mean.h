// Row kernels of the mean and the standard deviation. Integer sums are exact,
// so their kernels may add in any order; the 32f kernels fix the order of
// every single-precision addition, since that order is the result.
#pragma once

#include <cstdint>

#include "stats/kernels/stat_common.h"
#include "zevcv.h"

namespace v8 {

// Exact sums of an integer band: value sum, square sum, selected pixels.
struct IntSums {
    std::int64_t sum = 0;
    std::uint64_t sq = 0;
    std::int32_t count = 0;
};

// Any integer type and layout; with Masked, only pixels of nonzero mask bytes.
template <class T, class L, bool Masked>
IntSums ownSumSqInt(const T* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height);
// 8-bit bands by 16-byte registers (one channel, or one of three sorted out by
// byte shuffles), and one-channel bands by 32-byte registers where the
// processor has them.
template <class L, bool Masked>
IntSums ownSumSq_8u_V8(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height);
template <bool Masked>
IntSums ownSumSq_8u_C1_avx2(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height);

struct SumSq64f {
    double sum = 0;
    double sq = 0;
};

// ---- 32f, all on four single-precision lanes; a scalar pixel goes to lane 0,
// and a four-lane register v is reduced as (v0 + v2) + (v1 + v3).

// Rows in pairs, eight pixels a step (four of the first row, four of the second,
// the next four of each), scalar tails alternating the rows, an odd last row four
// at a time. ResetPerPair: the lanes are reduced after each pair and added to
// double sums; otherwise once at the end.
template <class L, bool ResetPerPair>
SumSq64f ownSumSq_32f_Pairs(const float* src, int srcStep, int width, int height);
// Row by row: scalars up to the first 16-byte boundary of the row (one-channel
// rows only), aligned groups of four, scalars; reduced per row into double.
template <class L>
SumSq64f ownSumSq_32f_Al(const float* src, int srcStep, int width, int height);
// Masked sum: eight pixels a step, lanes kept over all rows, finished in double
// as (d0 + d2) + (d1 + d3).
template <class L>
double ownSum_32f_M(const float* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height);
// Masked sum and square sum: eight pixels a step, reduced per row into double.
template <class L>
SumSq64f ownSumSq_32f_M(const float* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height);
// Sum of (x - meanF)^2 in single precision: two four-lane sums for eight pixels
// a step, tails on lane 0 of the first, never reset; at the end the two added
// lane by lane and reduced.
template <class L, bool Masked>
double ownSq_32f(const float* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height, float meanF);

// Nonzero bytes of a mask region.
std::int32_t ownCountMask(const Zev8u* mask, int maskStep, int width, int height);

// Double sums of per-thread slots in the order the 32f results follow: upward
// below eight slots; from eight on, eight running sums over blocks of eight
// slots, combined pairwise, then the slots left over in order.
template <class Get>
double sumSlotsInOrder(int count, Get get) {
    if (count < 8) {
        double s = 0;
        for (int i = 0; i < count; ++i) s += get(i);
        return s;
    }
    double r[8] = {0, 0, 0, 0, 0, 0, 0, 0};
    int i = 0;
    for (; i + 8 <= count; i += 8)
        for (int j = 0; j < 8; ++j) r[j] += get(i + j);
    // Four pairs of lanes (r0 r1)(r2 r3)(r4 r5)(r6 r7): ((p0 + p1) + (p2 + p3)) per lane.
    double lane0 = (r[0] + r[2]) + (r[4] + r[6]);
    double lane1 = (r[1] + r[3]) + (r[5] + r[7]);
    double s = lane0 + lane1;
    for (; i < count; ++i) s += get(i);
    return s;
}

}  // namespace v8
