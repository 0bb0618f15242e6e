// Plain reference of the mean and deviation, written from the arithmetic rules:
// exact integer sums; for 32f, explicit single-precision lanes in the stated
// order, the band split of the thread frame and the stated slot order.
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <type_traits>

#include "common/guarded.h"

namespace ref {

struct Sums {
    double sum = 0, sq = 0;
    long long isum = 0;
    unsigned long long isq = 0;
    long long count = 0;
};

// Four single-precision lanes.
struct Lanes {
    float l[4] = {0, 0, 0, 0};
    void add(int j, float x) { l[j] = l[j] + x; }
    float reduce() const {
        float a = l[0] + l[2];
        float b = l[1] + l[3];
        return b + a;
    }
};

// Pixel accessor over a band: P(x, r) for row r of the band.
using Pix = std::function<float(int, int)>;
using Sel = std::function<bool(int, int)>;

enum class Kind { Small, Pairs, Aligned };

inline Sums pairs32f(const Pix& P, int w, int rows, bool resetPerPair) {
    Lanes s, q;
    Sums r;
    auto add = [&](int lane, float v) {
        s.add(lane, v);
        q.add(lane, v * v);
    };
    auto flush = [&] {
        r.sum += double(s.reduce());
        r.sq += double(q.reduce());
        s = Lanes{};
        q = Lanes{};
    };
    int y = 0;
    for (; y + 2 <= rows; y += 2) {
        int x = 0;
        for (; x + 8 <= w; x += 8)
            for (int part = 0; part < 4; ++part)  // first row, second row, first row, second row
                for (int j = 0; j < 4; ++j) add(j, P(x + (part / 2) * 4 + j, y + part % 2));
        for (; x < w; ++x) {
            add(0, P(x, y));
            add(0, P(x, y + 1));
        }
        if (resetPerPair) flush();
    }
    if (y < rows) {
        int x = 0;
        for (; x + 4 <= w; x += 4)
            for (int j = 0; j < 4; ++j) add(j, P(x + j, y));
        for (; x < w; ++x) add(0, P(x, y));
        if (resetPerPair) flush();
    }
    if (!resetPerPair) flush();
    return r;
}

// lead[r]: scalar pixels before the row's first 16-byte boundary.
inline Sums aligned32f(const Pix& P, int w, int rows, const std::function<int(int)>& lead) {
    Sums r;
    for (int y = 0; y < rows; ++y) {
        Lanes s, q;
        int k = lead(y) < w ? lead(y) : w;
        int x = 0;
        for (; x < k; ++x) {
            s.add(0, P(x, y));
            q.add(0, P(x, y) * P(x, y));
        }
        for (; x + 4 <= w; x += 4)
            for (int j = 0; j < 4; ++j) {
                s.add(j, P(x + j, y));
                q.add(j, P(x + j, y) * P(x + j, y));
            }
        for (; x < w; ++x) {
            s.add(0, P(x, y));
            q.add(0, P(x, y) * P(x, y));
        }
        r.sum += double(s.reduce());
        r.sq += double(q.reduce());
    }
    return r;
}

// Masked: pixel x of an eight-block goes to lane x % 4, a tail pixel to lane 0.
inline int maskedLane(int x, int w) { return (x < (w / 8) * 8) ? x % 4 : 0; }

inline Sums maskedSum32f(const Pix& P, const Sel& S, int w, int rows) {
    Lanes s;
    Sums r;
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < w; ++x)
            if (S(x, y)) {
                s.add(maskedLane(x, w), P(x, y));
                ++r.count;
            }
    r.sum = (double(s.l[0]) + double(s.l[2])) + (double(s.l[1]) + double(s.l[3]));
    return r;
}

inline Sums maskedSumSq32f(const Pix& P, const Sel& S, int w, int rows) {
    Sums r;
    for (int y = 0; y < rows; ++y) {
        Lanes s, q;
        for (int x = 0; x < w; ++x)
            if (S(x, y)) {
                s.add(maskedLane(x, w), P(x, y));
                q.add(maskedLane(x, w), P(x, y) * P(x, y));
                ++r.count;
            }
        r.sum += double(s.reduce());
        r.sq += double(q.reduce());
    }
    return r;
}

// Sum of squared differences from meanF: two lane sets for the two halves of
// each eight-block, tail pixels on lane 0 of the first.
inline double recovery32f(const Pix& P, const Sel* S, int w, int h, float meanF) {
    Lanes a, b;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (S && !(*S)(x, y)) continue;
            float d = P(x, y) - meanF;
            float d2 = d * d;
            if (x < (w / 8) * 8) {
                if (x % 8 < 4) a.add(x % 4, d2);
                else b.add(x % 4, d2);
            } else {
                a.add(0, d2);
            }
        }
    Lanes v;
    for (int j = 0; j < 4; ++j) v.l[j] = a.l[j] + b.l[j];
    return double(v.reduce());
}

// Slots in thread order: upward below eight; otherwise pairs of lanes over
// blocks of eight slots, combined, then the leftover slots.
inline double slotOrder(const std::vector<double>& v) {
    int n = static_cast<int>(v.size());
    if (n < 8) {
        double s = 0;
        for (double x : v) s += x;
        return s;
    }
    double pair[4][2] = {};
    int full = n / 8 * 8;
    for (int i = 0; i < full; ++i) pair[(i % 8) / 2][i % 2] += v[i];
    double lane[2];
    for (int l = 0; l < 2; ++l) lane[l] = (pair[0][l] + pair[1][l]) + (pair[2][l] + pair[3][l]);
    double s = lane[0] + lane[1];
    for (int i = full; i < n; ++i) s += v[i];
    return s;
}

struct Result {
    double mean = 0, sd = 0;
};

inline Result formulas(double sum, double sq, double n, bool withSd) {
    Result r;
    if (n == 0) return r;
    r.mean = sum / n;
    if (withSd) r.sd = std::sqrt(std::fabs(sq / n - r.mean * r.mean));
    return r;
}

// The whole computation for one call. T is the team the library will use.
template <class E>
Result meanStdDev(const zt::Image<E>& img, const zt::Image<Zev8u>* mask, int coi, bool meanOnly, int T) {
    const int w = img.width(), h = img.height();
    const bool c3 = img.channels() == 3;
    const bool masked = mask != nullptr;
    auto px = [&](int x, int y) { return img.at(x, y, c3 ? coi - 1 : 0); };
    auto sel = [&](int x, int y) { return !masked || mask->at(x, y) != 0; };
    if constexpr (!std::is_same_v<E, float>) {
        long long sum = 0, n = 0;
        unsigned long long sq = 0;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                if (sel(x, y)) {
                    long long v = px(x, y);
                    sum += v;
                    sq += static_cast<unsigned long long>(v * v);
                    ++n;
                }
        return formulas(double(sum), double(sq), double(n), !meanOnly);
    } else {
        const long long elems = static_cast<long long>(w) * h;
        bool par;
        if (!masked && c3) par = false;
        else par = elems >= (static_cast<long long>(T) << ((!masked && !c3) ? 16 : 17));
        int team = par ? T : 1;
        int rows = h / team, extra = h % team;
        std::vector<double> sums, sqs;
        long long n = 0;
        for (int t = 0; t < team; ++t) {
            int y0 = t * rows, nr = rows + (t == team - 1 ? extra : 0);
            Sums s;
            if (nr > 0) {
                Pix P = [&, y0](int x, int r) { return px(x, y0 + r); };
                Sel S = [&, y0](int x, int r) { return sel(x, y0 + r); };
                long long bn = static_cast<long long>(w) * nr;
                const auto addr = reinterpret_cast<std::uintptr_t>(img.row(y0));
                if (masked) {
                    s = meanOnly ? maskedSum32f(P, S, w, nr) : maskedSumSq32f(P, S, w, nr);
                } else if (!c3) {
                    bool al = (addr % 4 == 0) && (img.step() % 16 == 0);
                    if (bn <= 5000) s = pairs32f(P, w, nr, false);
                    else if (bn >= 100000 || !al) s = pairs32f(P, w, nr, true);
                    else
                        s = aligned32f(P, w, nr, [&, y0](int r) {
                            auto a = reinterpret_cast<std::uintptr_t>(img.row(y0 + r));
                            return static_cast<int>(((16 - a % 16) % 16) / 4);
                        });
                } else {
                    bool al = addr % 16 == 0 && img.step() % 16 == 0;
                    if (bn < 5000) s = pairs32f(P, w, nr, false);
                    else if (al) s = aligned32f(P, w, nr, [](int) { return 0; });
                    else s = pairs32f(P, w, nr, true);
                }
            }
            sums.push_back(s.sum);
            sqs.push_back(s.sq);
            n += s.count;
        }
        double count = masked ? double(n) : double(elems);
        Result r = formulas(slotOrder(sums), slotOrder(sqs), count, !meanOnly);
        if (!meanOnly && count != 0 && 0.05 * r.mean * r.mean > r.sd * r.sd) {
            Pix P = px;
            Sel S = sel;
            double acc = recovery32f(P, masked ? &S : nullptr, w, h, static_cast<float>(r.mean));
            r.sd = std::sqrt(acc / count);
        }
        return r;
    }
}

}  // namespace ref
