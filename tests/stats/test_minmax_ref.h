// Plain reference of the extrema search. Integer types: first selected
// occurrence in row-major order. 32f: eight lanes per band, a pixel of a whole
// eight-block on lane x % 8 and any other on lane 0, lanes never reset within a
// band, rows compared to the band's best (less-than for the minimum,
// not-less-or-equal for the maximum), bands combined in thread order.
#pragma once

#include <cfloat>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "common/guarded.h"

namespace mmref {

struct Result {
    float minVal = 0, maxVal = 0;
    ZeviPoint minIdx{0, 0}, maxIdx{0, 0};
};

struct Band {
    float mn = FLT_MAX, mx = -FLT_MAX;
    int mnRow = 0, mxRow = 0;
    bool found = false;
};

template <class E>
Result minMax(const zt::Image<E>& img, const zt::Image<Zev8u>* mask, int coi, int team) {
    const int w = img.width(), h = img.height();
    const int c = img.channels() == 3 ? coi - 1 : 0;
    auto sel = [&](int x, int y) { return !mask || mask->at(x, y) != 0; };
    auto px = [&](int x, int y) { return static_cast<float>(img.at(x, y, c)); };
    Result r;
    if constexpr (!std::is_same_v<E, float>) {
        bool any = false;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                if (!sel(x, y)) continue;
                float v = px(x, y);
                if (!any || v < r.minVal) r.minVal = v, r.minIdx = {x, y};
                if (!any || v > r.maxVal) r.maxVal = v, r.maxIdx = {x, y};
                any = true;
            }
        return r;
    } else {
        const bool par = static_cast<long long>(w) * h >= 0x4000;
        const int T = par ? team : 1;
        const int rows = h / T, extra = h % T;
        std::vector<Band> bands;
        for (int t = 0; t < T; ++t) {
            Band b;
            int y0 = t * rows, y1 = y0 + rows + (t == T - 1 ? extra : 0);
            float lo[8], hi[8];
            for (int j = 0; j < 8; ++j) lo[j] = FLT_MAX, hi[j] = -FLT_MAX;
            auto fmin = [](float best, float x) { return best < x ? best : x; };
            auto fmax = [](float best, float x) { return best > x ? best : x; };
            for (int y = y0; y < y1; ++y) {
                bool rowHas = false;
                for (int x = 0; x < w; ++x) {
                    if (!sel(x, y)) continue;
                    rowHas = true;
                    int j = x < w / 8 * 8 ? x % 8 : 0;
                    lo[j] = fmin(lo[j], px(x, y));
                    hi[j] = fmax(hi[j], px(x, y));
                }
                if (!b.found) {
                    if (!rowHas) continue;
                    b.found = true;
                    b.mnRow = b.mxRow = y;
                }
                float m4[4], x4[4];
                for (int j = 0; j < 4; ++j) m4[j] = fmin(lo[j], lo[j + 4]), x4[j] = fmax(hi[j], hi[j + 4]);
                float rmin = fmin(fmin(m4[0], m4[2]), fmin(m4[1], m4[3]));
                float rmax = fmax(fmax(x4[0], x4[2]), fmax(x4[1], x4[3]));
                if (rmin < b.mn) b.mn = rmin, b.mnRow = y;
                if (!(rmax <= b.mx)) b.mx = rmax, b.mxRow = y;
            }
            bands.push_back(b);
        }
        Band g;
        for (const Band& b : bands) {
            if (!b.found) continue;
            if (!g.found) {
                g = b;
                continue;
            }
            if (b.mn < g.mn) g.mn = b.mn, g.mnRow = b.mnRow;
            if (!(b.mx <= g.mx)) g.mx = b.mx, g.mxRow = b.mxRow;
        }
        if (!g.found) return r;
        const int notFound = (img.channels() == 1 && !mask) ? w : 0;
        auto col = [&](int y, float v) {
            for (int x = 0; x < w; ++x)
                if (sel(x, y) && px(x, y) == v) return x;
            return notFound;
        };
        r.minVal = g.mn;
        r.maxVal = g.mx;
        r.minIdx = {col(g.mnRow, g.mn), g.mnRow};
        r.maxIdx = {col(g.mxRow, g.mx), g.mxRow};
        return r;
    }
}

}  // namespace mmref
