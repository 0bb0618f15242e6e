// Iterative quicksort with an explicit range stack: ranges above kInsertionMax
// elements are partitioned around the median of their first, middle and last
// elements, the rest finished by insertion. The scans also stop at the range's
// ends, so unordered values (NaN) cannot carry them out of it.
#pragma once

#include <utility>

namespace v8::kern {

constexpr int kInsertionMax = 9;

template <class T>
inline void insertionSort(T* a, int lo, int hi) {
    for (int i = lo + 1; i <= hi; ++i) {
        T x = a[i];
        int j = i;
        for (; j > lo && x < a[j - 1]; --j) a[j] = a[j - 1];
        a[j] = x;
    }
}

// Puts first, middle and last in order; returns the middle index.
template <class T>
inline int medianOfThree(T* a, int lo, int hi) {
    int mid = lo + (hi - lo) / 2;
    if (a[mid] < a[lo]) std::swap(a[mid], a[lo]);
    if (a[hi] < a[lo]) std::swap(a[hi], a[lo]);
    if (a[hi] < a[mid]) std::swap(a[hi], a[mid]);
    return mid;
}

// Partitions [lo, hi] (more than three elements); returns the pivot's final place.
template <class T>
inline int partition(T* a, int lo, int hi) {
    int mid = medianOfThree(a, lo, hi);
    const T pivot = a[mid];
    // The pivot waits next to the last element, which is not below it.
    std::swap(a[mid], a[hi - 1]);
    int i = lo, j = hi - 1;
    for (;;) {
        do ++i; while (i < hi - 1 && a[i] < pivot);
        do --j; while (j > lo && pivot < a[j]);
        if (i >= j) break;
        std::swap(a[i], a[j]);
    }
    std::swap(a[i], a[hi - 1]);
    return i;
}

template <class T>
void sortAscend(T* a, int len) {
    struct Range { int lo, hi; };
    // The smaller side is sorted first and the larger one waits: at most log2(len) ranges wait.
    Range stack[64];
    int depth = 0;
    int lo = 0, hi = len - 1;
    for (;;) {
        if (hi - lo + 1 > kInsertionMax) {
            int p = partition(a, lo, hi);
            Range left{lo, p - 1}, right{p + 1, hi};
            if (left.hi - left.lo > right.hi - right.lo) std::swap(left, right);
            stack[depth++] = right;
            lo = left.lo;
            hi = left.hi;
            continue;
        }
        insertionSort(a, lo, hi);
        if (depth == 0) break;
        --depth;
        lo = stack[depth].lo;
        hi = stack[depth].hi;
    }
}

}  // namespace v8::kern
