// Plain references for the inner primitives, written from the arithmetic
// rules with exact integers, and the sweep of row shapes the tests run over.
#pragma once

#include <cstdint>
#include <vector>

namespace zt {

// p / 2^s rounded to nearest, ties to the even quotient (s > 0); p * 2^-s
// (s < 0); exact, in 64 bits, before any saturation.
inline std::int64_t scaleExact(std::int64_t p, int s) {
    if (s == 0 || p == 0) return p;
    if (s < 0) {
        if (-s >= 32) return p > 0 ? (std::int64_t{1} << 40) : -(std::int64_t{1} << 40);  // beyond any 16-bit type
        return p * (std::int64_t{1} << -s);
    }
    if (s >= 62) return 0;  // |p| < 2^61 in every use
    const std::int64_t div = std::int64_t{1} << s;
    std::int64_t q = p / div, r = p % div;
    if (r < 0) { q -= 1; r += div; }  // floor division, 0 <= r < div
    if (2 * r > div || (2 * r == div && (q & 1))) q += 1;
    return q;
}

inline std::int64_t clampTo(std::int64_t v, std::int64_t lo, std::int64_t hi) { return v < lo ? lo : (v > hi ? hi : v); }

// Row shapes: every tail length across two 32-byte blocks, then a few long rows.
inline std::vector<int> sweepWidths() {
    std::vector<int> w;
    for (int i = 1; i <= 70; ++i) w.push_back(i);
    for (int i : {127, 128, 129, 255, 1000}) w.push_back(i);
    return w;
}
// Origins on and off 16-byte alignment, in elements.
inline std::vector<int> sweepOffsets() { return {0, 1, 3}; }

}  // namespace zt
