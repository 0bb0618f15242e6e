// Plain model of the fixed filters, written from their definitions: a row
// kernel along every row of a border-extended image, then a column kernel down
// the row-filtered rows, with the vertical border choosing whole row-filtered
// rows. Integer forms are exact and keep the low 16 bits; float forms evaluate
// every formula in the order it is written. No code is shared with the library.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "zevcv.h"

namespace fixedref {

enum Filter { SobelHoriz, SobelVert, SobelNegVert, SobelCross, SobelHorizSecond, SobelVertSecond, ScharrHoriz,
              ScharrVert, Laplacian, Lowpass, kFilterCount };

inline const char* filterName(int f) {
    static const char* n[] = {"SobelHoriz",       "SobelVert",       "SobelNegVert", "SobelCross", "SobelHorizSecond",
                              "SobelVertSecond",  "ScharrHoriz",     "ScharrVert",   "Laplacian",  "Lowpass"};
    return n[f];
}

// Column kernels, evaluated by the formulas of the column stage.
enum Col { CDx3, CScharr3, CSobel3, CD2x3, CSobelNeg3, CAvr3, CSobel5, CDx5, CD2x5, CSobelNeg5, CAvr5, CLap3 };

using Taps = std::vector<int>;
const Taps kSobel3{1, 2, 1}, kDx3{-1, 0, 1}, kDxNeg3{1, 0, -1}, kD2x3{1, -2, 1}, kScharr{3, 10, 3}, kAvr3{1, 1, 1},
    kSobel5{1, 4, 6, 4, 1}, kDxNeg5{1, 2, 0, -2, -1}, kD2x5{1, 0, -2, 0, 1}, kAvr5{1, 1, 1, 1, 1};

struct Stage {
    Taps row;
    Col col;
};

// The filter as one or two (row kernel, column kernel) passes whose results add.
inline std::vector<Stage> stagesOf(int f, int K) {
    const bool five = K == 5;
    switch (f) {
    case SobelHoriz: return {{five ? kSobel5 : kSobel3, five ? CDx5 : CDx3}};
    case SobelVert: return {{five ? kDxNeg5 : kDxNeg3, five ? CSobel5 : CSobel3}};
    case SobelNegVert: return {{five ? kDxNeg5 : kDxNeg3, five ? CSobelNeg5 : CSobelNeg3}};
    case SobelCross: return {{five ? kDxNeg5 : kDxNeg3, five ? CDx5 : CDx3}};
    case SobelHorizSecond: return {{five ? kSobel5 : kSobel3, five ? CD2x5 : CD2x3}};
    case SobelVertSecond: return {{five ? kD2x5 : kD2x3, five ? CSobel5 : CSobel3}};
    case ScharrHoriz: return {{kScharr, CDx3}};
    case ScharrVert: return {{kDx3, CScharr3}};
    case Laplacian:
        if (five) return {{kSobel5, CD2x5}, {kD2x5, CSobel5}};
        return {{Taps{1, 0, 1}, CLap3}};
    default: return {{five ? kAvr5 : kAvr3, five ? CAvr5 : CAvr3}};
    }
}

constexpr int kConst = INT32_MIN;

// Which element of 0..n-1 position x reads; kConst for the constant; x itself
// where memory lies beyond that end. walkOn: a mirror walk that meets a memory
// end goes on through it (rows); otherwise it bounces within the n elements
// (columns).
inline int extend(int x, int n, int code, bool memLow, bool memHigh, bool walkOn) {
    if (x >= 0 && x < n) return x;
    if ((x < 0 && memLow) || (x >= n && memHigh)) return x;
    switch (code) {
    case zevBorderConst: return kConst;
    case zevBorderReplicate: return x < 0 ? 0 : n - 1;
    case zevBorderWrap: return ((x % n) + n) % n;
    default: {
        // Walk from the edge, one step per position, turning at the ends; a
        // flagged end is memory, so the walk goes on through it.
        const bool repeat = code == zevBorderMirrorR;
        int pos = x < 0 ? 0 : n - 1, dir = x < 0 ? 1 : -1;
        int steps = x < 0 ? -x : x - (n - 1);
        if (repeat) --steps;  // the first step stays on the edge
        for (int s = 0; s < steps; ++s) {
            int next = pos + dir;
            bool open = walkOn && ((next < 0 && memLow) || (next >= n && memHigh));
            if ((next < 0 || next >= n) && !open) {
                dir = -dir;
                next = repeat ? pos : (n == 1 ? pos : pos + dir);
            }
            pos = next;
        }
        return pos;
    }
    }
}

template <class T>
T px(const T* origin, int step, int x, int y) {
    T v;
    std::memcpy(&v, reinterpret_cast<const std::uint8_t*>(origin) + static_cast<std::ptrdiff_t>(y) * step +
                        static_cast<std::ptrdiff_t>(x) * static_cast<std::ptrdiff_t>(sizeof(T)),
                sizeof(T));
    return v;
}

// Integer sums are exact (int); float sums run left to right over the nonzero taps.
template <class Acc>
Acc rowSum(const Taps& k, const Acc* s) {
    bool first = true;
    Acc acc{};
    for (std::size_t i = 0; i < k.size(); ++i) {
        if (k[i] == 0) continue;
        Acc term = static_cast<Acc>(k[i]) * s[i];
        acc = first ? term : acc + term;
        first = false;
    }
    return acc;
}

template <class Acc>
Acc colValue(Col c, const Acc* r, const Acc* centre) {
    switch (c) {
    case CDx3: return r[2] - r[0];
    case CScharr3: return (Acc(3) * r[0] + Acc(10) * r[1]) + Acc(3) * r[2];
    case CSobel3: return (r[0] + Acc(2) * r[1]) + r[2];
    case CD2x3: return (r[0] - Acc(2) * r[1]) + r[2];
    case CSobelNeg3: return -((r[0] + Acc(2) * r[1]) + r[2]);
    case CAvr3: return (r[0] + r[1]) + r[2];
    case CSobel5: return (((r[0] + Acc(4) * r[1]) + Acc(6) * r[2]) + Acc(4) * r[3]) + r[4];
    case CDx5: return (r[4] - r[0]) + Acc(2) * (r[3] - r[1]);
    case CD2x5: return (r[0] - Acc(2) * r[2]) + r[4];
    case CSobelNeg5: return -((((r[0] + Acc(4) * r[1]) + Acc(6) * r[2]) + Acc(4) * r[3]) + r[4]);
    case CAvr5: return (((r[0] + r[1]) + r[2]) + r[3]) + r[4];
    case CLap3: return Acc(2) * (r[0] + r[2]) - *centre;
    }
    return Acc{};
}

inline std::int16_t wrap16(int v) { return static_cast<std::int16_t>(static_cast<std::uint16_t>(v)); }

// Sum of one stage at every pixel, as a row-major vector. Acc: int for 8-bit
// sources (row values kept to 16 bits), float for 32f.
template <class Src, class Acc>
std::vector<Acc> stageValues(const Stage& st, const Src* src, int step, int w, int h, int border, Src value) {
    const int K = static_cast<int>(st.row.size()), a = K / 2;
    const int code = border & 15;
    const bool top = border & 0x10, bottom = border & 0x20, left = border & 0x40, right = border & 0x80;
    int sum = 0;
    for (int k : st.row) sum += k;
    Acc constRow;
    if constexpr (std::is_same_v<Acc, float>) constRow = static_cast<float>(sum) * value;
    else constRow = std::clamp(sum * static_cast<int>(value), -32768, 32767);

    // Row-filtered value of virtual row y (any integer) at column x.
    auto rowFiltered = [&](int y, int x) -> Acc {
        int sy = extend(y, h, code, top, bottom, true);
        if (sy == kConst) return constRow;
        Acc s[5];
        for (int i = 0; i < K; ++i) {
            int sx = extend(x - a + i, w, code, left, right, false);
            s[i] = sx == kConst ? static_cast<Acc>(value) : static_cast<Acc>(px(src, step, sx, sy));
        }
        Acc v = rowSum<Acc>(st.row, s);
        if constexpr (!std::is_same_v<Acc, float>) v = wrap16(v);
        return v;
    };
    const bool lap3 = st.col == CLap3;
    const int Kc = (st.col >= CSobel5 && st.col <= CAvr5) ? 5 : 3, b = Kc / 2;
    std::vector<Acc> out(static_cast<std::size_t>(w) * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            Acc r[5];
            for (int i = 0; i < Kc; ++i) r[i] = rowFiltered(y - b + i, x);
            Acc centre{};
            if (lap3) centre = Acc(8) * static_cast<Acc>(px(src, step, x, y));
            out[static_cast<std::size_t>(y) * w + x] = colValue<Acc>(st.col, r, &centre);
        }
    return out;
}

// The filter's output for the forms 8u16s, 8u8s, 8u (lowpass) and 32f. border
// is the caller's argument; the in-memory code 6 means all four flags.
template <class Src, class Dst>
std::vector<Dst> reference(int f, int K, const Src* src, int step, int w, int h, int border, Src value,
                           int divisor = 1) {
    if ((border & 15) == zevBorderInMem) border = 0xF0;
    using Acc = std::conditional_t<std::is_same_v<Src, float>, float, int>;
    auto stages = stagesOf(f, K);
    std::vector<Acc> v = stageValues<Src, Acc>(stages[0], src, step, w, h, border, value);
    if (stages.size() > 1) {
        std::vector<Acc> v2 = stageValues<Src, Acc>(stages[1], src, step, w, h, border, value);
        for (std::size_t i = 0; i < v.size(); ++i) {
            if constexpr (std::is_same_v<Acc, float>) v[i] = v[i] + v2[i];
            else v[i] = wrap16(wrap16(v[i]) + wrap16(v2[i]));
        }
    }
    std::vector<Dst> out(v.size());
    const float inv = 1.0f / static_cast<float>(divisor);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            std::size_t i = static_cast<std::size_t>(y) * w + x;
            if constexpr (std::is_same_v<Dst, float>) {
                if (f == Lowpass) out[i] = v[i] * (K == 5 ? 0.04f : 0.11111111f);
                else out[i] = v[i];
            } else if constexpr (std::is_same_v<Dst, std::int16_t>) {
                out[i] = wrap16(v[i]);
            } else if constexpr (std::is_same_v<Dst, std::uint8_t>) {
                int s = wrap16(v[i]);
                int r = K == 5 ? (s * 2621) >> 16 : ((s + 5) * 7280) >> 16;
                out[i] = static_cast<std::uint8_t>(std::clamp(r, 0, 255));
            } else {
                // Leading columns in fours round to nearest even; the rest, and
                // the whole two-pass 5x5 Laplacian, truncate.
                float q = static_cast<float>(wrap16(v[i])) * inv;
                bool rounds = x < (w & ~3) && !(f == Laplacian && K == 5);
                if (rounds) q = std::nearbyint(q);
                out[i] = static_cast<Dst>(static_cast<int>(std::clamp(q, -128.0f, 127.0f)));
            }
        }
    return out;
}

}  // namespace fixedref
