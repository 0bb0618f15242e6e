// Kernels of the extrema search. The first stage walks all rows and keeps only
// values and row numbers; the second scans the two winning rows for the column.
#pragma once

#include <cfloat>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "stats/kernels/stat_common.h"
#include "zevcv.h"

namespace v8 {

// Starting values of the search, and the value type it keeps.
template <class T>
struct MinMaxLimits {
    using Val = std::conditional_t<std::is_same_v<T, float>, float, int>;
    static constexpr Val lo() {
        if constexpr (std::is_same_v<T, float>) return FLT_MAX;
        else return std::numeric_limits<T>::max();
    }
    static constexpr Val hi() {
        if constexpr (std::is_same_v<T, float>) return -FLT_MAX;
        else return std::numeric_limits<T>::min();
    }
};

// First row at or after 0 with a nonzero mask byte, or height.
int ownFirstSelectedRow(const Zev8u* mask, int maskStep, int width, int height);

// Result of the first stage over a band: the extremes, the first row holding
// each, and whether any pixel took part (always, without a mask).
template <class T>
struct MinMaxStage {
    using Val = typename MinMaxLimits<T>::Val;
    Val minVal = MinMaxLimits<T>::lo();
    Val maxVal = MinMaxLimits<T>::hi();
    int minRow = 0;
    int maxRow = 0;
    int found = 0;

    // Where the search starts: row 0, or with a mask the first row that selects
    // a pixel; height when there is none, and the stage is then over.
    template <bool Masked>
    int start(const Zev8u* mask, int maskStep, int width, int height) {
        int y = Masked ? ownFirstSelectedRow(mask, maskStep, width, height) : 0;
        if (y < height) {
            found = 1;
            minRow = maxRow = y;
        }
        return y;
    }
    // Later extremes replace the minimum only if less, the maximum only if not
    // less or equal (so a NaN maximum is taken), which keeps the first row.
    void take(Val lo, int loRow, Val hi, int hiRow) {
        if (lo < minVal) {
            minVal = lo;
            minRow = loRow;
        }
        if (!(hi <= maxVal)) {
            maxVal = hi;
            maxRow = hiRow;
        }
    }
};

// First stage, any type and layout. Rows are relative to src. For 32f the
// search runs on eight lanes, never reset between rows: in each row, pixel x of
// a whole eight-block goes to lane x % 8 and the rest to lane 0; a lane keeps
// (best < x) ? best : x for the minimum, (best > x) ? best : x for the maximum,
// so that NaN pixels pass through lanes as those operations dictate. Excluded
// pixels leave their lane as it is. Row values fold lanes j and j + 4, then
// j and j + 2, then 0 and 1, by the same operations; a row takes the minimum if
// its value is less, the maximum if its value is not less or equal.
// With a mask the search starts at the first row that selects a pixel.
template <class T, class L, bool Masked>
MinMaxStage<T> ownMinMaxIndx_1(const T* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height);

// Vector forms of the first stage by 16-byte registers: 8u rows of one channel
// or of one of three, 32f rows of one channel; and one-channel rows by 32-byte
// registers where the processor has them.
template <class T, class L, bool Masked>
MinMaxStage<T> ownMinMaxIndx_V8_1(const T* src, int srcStep, const Zev8u* mask, int maskStep, int width,
                                  int height);
template <class T, bool Masked>
MinMaxStage<T> ownMinMaxIndx_C1_avx2_1(const T* src, int srcStep, const Zev8u* mask, int maskStep, int width,
                                       int height);

// Second stage: the first column of a row whose (selected) element equals value;
// notFound if there is none.
template <class T, class L, bool Masked>
int ownMinMaxIndx_2(const T* row, const Zev8u* maskRow, int width, typename MinMaxLimits<T>::Val value,
                    int notFound) {
    for (int x = 0; x < width; ++x) {
        if (Masked && !maskRow[x]) continue;
        if (row[x * L::ch] == value) return x;
    }
    return notFound;
}

}  // namespace v8
