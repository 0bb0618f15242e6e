// Vector primitives: element-wise minimum and maximum, scaling by a constant,
// square root.
#include <algorithm>
#include <cstdint>

#include "frame/bands.h"
#include "frame/check.h"
#include "frame/core.h"
#include "frame/kernels/elementwise_ops.h"
#include "frame/kernels/simd.h"
#include "frame/kernels/rows_avx2.h"
#include "frame/prims.h"

namespace v8 {
namespace {

// Minimum and maximum: a zero length is an error, a negative one does nothing.
template <class T, bool Max>
ZevStatus minMaxEvery(const T* src1, const T* src2, T* dst, int len) {
    ZevStatus st = Check().ptrs(src1, src2, dst).that(len != 0, zevStsBadSize);
    if (st != zevStsNoError) return st;
    if (simd::hasAvx2()) ownMinMaxEvery_avx2<T, Max>(src1, src2, dst, len);
    else kern::mapRow<false>(dst, len, kern::MinMaxEveryOp<T, Max>{}, src1, src2);
    return zevStsNoError;
}

// Square root: long vectors split over at most two threads.
constexpr int kSqrtParallelLength = 4096;

void ownzevsSqrt_32f(const Zev32f* src, Zev32f* dst, int len) { kern::mapRow<false>(dst, len, kern::SqrtOp_32f{}, src); }

void ownzevsSqrt_32f_omp(const Zev32f* src, Zev32f* dst, int len) {
    const int budget = ownGetNumThreads();
    if (budget > 1 && len >= budget)
        forEachBand(std::min(2, budget), len, [&](const Band& b) { ownzevsSqrt_32f(src + b.y0, dst + b.y0, b.rows); });
    else
        ownzevsSqrt_32f(src, dst, len);
}

template <class Scale>
void mulC16s(const Zev16s* src, Zev16s* dst, int len, Zev16s value, Scale scale) {
    kern::mapRow<false>(dst, len, kern::MulCSfsOp_16s<Scale>(scale, value), src);
}

}  // namespace

#define ZEV_MIN_MAX_EVERY(Name, T, tag, isMax)                                             \
    ZevStatus Name##_##tag(const T* src1, const T* src2, T* dst, int len) {                \
        return minMaxEvery<T, isMax>(src1, src2, dst, len);                                \
    }
#define ZEV_MIN_MAX_EVERY_I(Name, T, tag)                                                  \
    ZevStatus Name##_##tag##_I(const T* src, T* srcDst, int len) { return Name##_##tag(src, srcDst, srcDst, len); }

ZEV_MIN_MAX_EVERY(zevsMinEvery, Zev8u, 8u, false)
ZEV_MIN_MAX_EVERY(zevsMinEvery, Zev16u, 16u, false)
ZEV_MIN_MAX_EVERY(zevsMinEvery, Zev32f, 32f, false)
ZEV_MIN_MAX_EVERY(zevsMinEvery, Zev64f, 64f, false)
ZEV_MIN_MAX_EVERY(zevsMaxEvery, Zev8u, 8u, true)
ZEV_MIN_MAX_EVERY(zevsMaxEvery, Zev16u, 16u, true)
ZEV_MIN_MAX_EVERY(zevsMaxEvery, Zev32f, 32f, true)
ZEV_MIN_MAX_EVERY(zevsMaxEvery, Zev64f, 64f, true)
ZEV_MIN_MAX_EVERY_I(zevsMinEvery, Zev8u, 8u)
ZEV_MIN_MAX_EVERY_I(zevsMinEvery, Zev16u, 16u)
ZEV_MIN_MAX_EVERY_I(zevsMinEvery, Zev32f, 32f)
ZEV_MIN_MAX_EVERY_I(zevsMaxEvery, Zev8u, 8u)
ZEV_MIN_MAX_EVERY_I(zevsMaxEvery, Zev16u, 16u)
ZEV_MIN_MAX_EVERY_I(zevsMaxEvery, Zev32f, 32f)
ZEV_MIN_MAX_EVERY_I(zevsMaxEvery, Zev64f, 64f)
#undef ZEV_MIN_MAX_EVERY
#undef ZEV_MIN_MAX_EVERY_I

// Reports nothing: callers pass vectors they have just made. Null pointers and
// lengths below 1 leave the call without effect.
ZevStatus zevsMinEvery_64f_I(const Zev64f* src, Zev64f* srcDst, int len) {
    if (src && srcDst && len > 0) {
        if (simd::hasAvx2()) ownMinMaxEvery_avx2<Zev64f, false>(src, srcDst, srcDst, len);
        else kern::mapRow<false>(srcDst, len, kern::MinMaxEveryOp<Zev64f, false>{}, src, srcDst);
    }
    return zevStsNoError;
}

ZevStatus zevsMulC_32f(const Zev32f* src, Zev32f* dst, int len, Zev32f value) {
    ZevStatus st = Check().ptrs(src, dst).length(len);
    if (st != zevStsNoError) return st;
    kern::mapRow<false>(dst, len, kern::MulCOp_32f(value), src);
    return zevStsNoError;
}

ZevStatus zevsMulC_16s_Sfs(const Zev16s* src, Zev16s* dst, int len, Zev16s value, int scaleFactor) {
    ZevStatus st = Check().ptrs(src, dst).length(len);
    if (st != zevStsNoError) return st;
    // A product of two 16-bit values is below 2^30 in magnitude: past 30 the
    // rounded quotient is 0.
    if (value == 0 || scaleFactor > 30) return zevsZero_16s(dst, len);
    if (scaleFactor == 0) {
        if (value == 1) return zevsCopy_16s(src, dst, len);
        mulC16s(src, dst, len, value, kern::ScaleNone_16s{});
    } else if (scaleFactor < -15) {
        mulC16s(src, dst, len, value, kern::ScaleBound_16s{});
    } else if (scaleFactor < 0) {
        mulC16s(src, dst, len, value, kern::ScaleNeg_16s(scaleFactor));
    } else {
        mulC16s(src, dst, len, value, kern::ScalePos_16s(scaleFactor));
    }
    return zevStsNoError;
}

ZevStatus zevsSqrt_32f(const Zev32f* src, Zev32f* dst, int len) {
    ZevStatus st = Check().ptrs(src, dst).length(len);
    if (st != zevStsNoError) return st;
    if (len < kSqrtParallelLength) ownzevsSqrt_32f(src, dst, len);
    else ownzevsSqrt_32f_omp(src, dst, len);
    return zevStsNoError;
}

}  // namespace v8
