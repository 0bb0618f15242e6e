// Plain references for the separable pipelines, written from the arithmetic
// rules: which column class rounds, which truncates, in which precision sums run.
#pragma once

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <vector>

#include "zevcv.h"

namespace ref {

// The source column a position x reads, by walking the row (wrap steps around,
// mirrors bounce off the ends).
inline int walk(int x, int w, int code) {
    if (x >= 0 && x < w) return x;
    if (code == zevBorderReplicate) return x < 0 ? 0 : w - 1;
    if (code == zevBorderWrap) {
        while (x < 0) x += w;
        while (x >= w) x -= w;
        return x;
    }
    int steps = x < 0 ? -x : x - (w - 1), pos = x < 0 ? 0 : w - 1, dir = x < 0 ? -1 : 1;
    for (int s = 0; s < steps; ++s) {
        int next = pos + dir;
        if (next < 0 || next >= w) {
            dir = -dir;
            next = code == zevBorderMirror ? (w == 1 ? 0 : pos + dir) : pos;
        }
        pos = next;
    }
    return pos;
}

// Nearest, ties to even, of a float well inside the int range.
inline long nearest(float f) { return std::lrint(f); }
inline int sat(long v, long lo, long hi) { return static_cast<int>(std::min(hi, std::max(lo, v))); }
inline int trunc(float f, float lo, float hi) { return static_cast<int>(std::min(hi, std::max(lo, f))); }
inline std::int32_t wrap32(std::int64_t v) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(v)); }

enum class Part { Edge, Middle };

// Window values of output column x (one channel of an interleaved row).
template <class T>
std::vector<T> window(const T* row, int w, int C, int ch, int x, int K, int a, int border, T value) {
    std::vector<T> v(K);
    for (int i = 0; i < K; ++i) {
        int col = x - a + i;
        if (col >= 0 && col < w) {
            v[i] = row[col * C + ch];
        } else if ((border & 15) == zevBorderConst) {
            v[i] = value;
        } else {
            v[i] = row[walk(col, w, border & 15) * C + ch];
        }
    }
    return v;
}

inline Part partOf(int x, int w, int K, int a) {
    if (w >= K && x >= a && x < a + w - K + 1) return Part::Middle;
    return Part::Edge;
}

// ---- row forms: value of one output from its window

inline std::int16_t row8u16s(const std::vector<std::uint8_t>& v, const std::int16_t* k, int K, int divisor, Part part) {
    std::int64_t s = 0;
    for (int i = 0; i < K; ++i) s += static_cast<std::int64_t>(v[i]) * k[i];
    const std::int32_t sum = wrap32(s);
    if (K == 3 && divisor == 1) return static_cast<std::int16_t>(sat(sum, -32768, 32767));
    const float inv = 1.0f / static_cast<float>(divisor);
    const float f = static_cast<float>(sum) * inv;
    if (part == Part::Middle) return static_cast<std::int16_t>(sat(nearest(f), -32768, 32767));
    return static_cast<std::int16_t>(trunc(f, -32768.0f, 32767.0f));
}

inline std::int16_t row16s(const std::vector<std::int16_t>& v, const std::int16_t* k, int K, int divisor, Part part,
                           int w) {
    const float inv = 1.0f / static_cast<float>(divisor);
    float sumAbs = 0.0f;
    bool minWeight = false;
    for (int i = 0; i < K; ++i) {
        sumAbs += std::fabs(static_cast<float>(k[i]));
        minWeight = minWeight || k[i] == -32768;
    }
    const bool shortK = K == 3 || K == 5;
    if (!shortK && w - K < 16) part = Part::Edge;  // narrow rows: scalar arithmetic everywhere
    if (part == Part::Edge) {
        float f;
        if (shortK) {
            f = static_cast<float>(v[0]) * static_cast<float>(k[0]);
            for (int i = 1; i < K; ++i) f += static_cast<float>(v[i]) * static_cast<float>(k[i]);
            f = f * inv;
        } else {
            float even = 0.0f, odd = 0.0f;
            int i = 0;
            for (; i + 1 < K; i += 2) {
                even += static_cast<float>(v[i]) * (static_cast<float>(k[i]) * inv);
                odd += static_cast<float>(v[i + 1]) * (static_cast<float>(k[i + 1]) * inv);
            }
            f = even + odd;
            if (i < K) f += static_cast<float>(v[i]) * (static_cast<float>(k[i]) * inv);
        }
        return static_cast<std::int16_t>(trunc(f, -32768.0f, 32767.0f));
    }
    const bool floatPath = shortK ? !(sumAbs < 65535.0f) : minWeight;
    if (floatPath) {
        const bool sym = shortK && k[0] == k[K - 1] && (K == 3 || k[1] == k[3]);
        float f;
        if (sym) {
            f = (static_cast<float>(v[0]) + static_cast<float>(v[K - 1])) * (static_cast<float>(k[0]) * inv);
            if (K == 5) f += (static_cast<float>(v[1]) + static_cast<float>(v[3])) * (static_cast<float>(k[1]) * inv);
            f += static_cast<float>(v[K / 2]) * (static_cast<float>(k[K / 2]) * inv);
        } else {
            f = static_cast<float>(v[0]) * (static_cast<float>(k[0]) * inv);
            for (int i = 1; i < K; ++i) f += static_cast<float>(v[i]) * (static_cast<float>(k[i]) * inv);
        }
        return static_cast<std::int16_t>(nearest(std::min(32767.0f, std::max(-32768.0f, f))));
    }
    float f;
    if (shortK) {
        std::int64_t s = 0;
        for (int i = 0; i < K; ++i) s += static_cast<std::int64_t>(v[i]) * k[i];
        f = static_cast<float>(wrap32(s));
    } else {
        f = 0.0f;
        int i = 0;
        for (; i + 4 <= K; i += 4) {
            std::int64_t s = 0;
            for (int j = i; j < i + 4; ++j) s += static_cast<std::int64_t>(v[j]) * k[j];
            f += static_cast<float>(wrap32(s));
        }
        for (; i < K; ++i) f += static_cast<float>(static_cast<std::int32_t>(v[i]) * k[i]);
    }
    return static_cast<std::int16_t>(sat(nearest(f * inv), -32768, 32767));
}

inline std::int16_t lowR(int divisor) {
    return static_cast<std::int16_t>(static_cast<int>(16384.0f / static_cast<float>(divisor)));
}

inline std::int16_t rowLow(const std::vector<std::int16_t>& v, const std::int16_t* k, int K, int divisor, Part part) {
    const std::int16_t r = lowR(divisor);
    if (part == Part::Middle) {
        std::uint16_t s = 0;
        for (int i = 0; i < K; ++i) s = static_cast<std::uint16_t>(s + static_cast<std::uint16_t>(v[i] * k[i]));
        if (divisor == 1) return static_cast<std::int16_t>(s);
        long t = (static_cast<long>(static_cast<std::int16_t>(s)) * r) >> 14;
        return static_cast<std::int16_t>(sat(t, -32768, 32767));
    }
    std::int64_t s = 0;
    for (int i = 0; i < K; ++i) s += static_cast<std::int64_t>(v[i]) * k[i];
    if (divisor == 1) return static_cast<std::int16_t>(static_cast<std::uint16_t>(s));
    std::uint32_t prod = static_cast<std::uint32_t>(s) * static_cast<std::uint32_t>(static_cast<std::int32_t>(r));
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(prod >> 14));
}

inline float row32f(const std::vector<float>& v, const float* k, int K) {
    float f = k[0] * v[0];
    for (int i = 1; i < K; ++i) f += k[i] * v[i];
    return f;
}

}  // namespace ref

namespace ref {

// ---- column forms: one output from the K values down its column

// Leading columns that round; the rest truncate.
inline bool vectorColumn(int e, int W, int K) {
    const int n = (K == 3 || K == 5) ? (W & ~3) : (W & ~15);
    return e < n;
}

// 16s rows to an output range [lo, hi]: 16s, 8u or 8s.
inline int column16s(const std::vector<std::int16_t>& v, const std::int16_t* k, int K, int divisor, bool vectorCol,
                     int lo, int hi) {
    const float inv = 1.0f / static_cast<float>(divisor);
    if (vectorCol) {
        float f = 0.0f;
        for (int i = 0; i < K; ++i) {
            const float c = (static_cast<float>(k[i]) * 1.5258789e-5f) * inv;
            const float x = static_cast<float>(static_cast<std::int32_t>(v[i]) * 65536);
            f = i == 0 ? x * c : f + x * c;
        }
        f = std::min(32767.0f, std::max(-32768.0f, f));
        return sat(sat(nearest(f), -32768, 32767), lo, hi);
    }
    float f = 0.0f;
    for (int i = 0; i < K; ++i) {
        const float p = (K == 3 || K == 5) ? static_cast<float>(v[i]) * static_cast<float>(k[i])
                                           : static_cast<float>(static_cast<std::int32_t>(v[i]) * k[i]);
        f = i == 0 ? p : f + p;
    }
    return trunc(f * inv, static_cast<float>(lo), static_cast<float>(hi));
}

inline std::int16_t columnLow(const std::vector<std::int16_t>& v, const std::int16_t* k, int K, int divisor) {
    return rowLow(v, k, K, divisor, Part::Middle);
}

inline float column32f(const std::vector<float>& v, const float* k, int K) { return row32f(v, k, K); }

}  // namespace ref
