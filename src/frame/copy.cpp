// Copies, fills and the widening conversion, on images and on vectors.
#include <cstdint>
#include <cstring>

#include "frame/check.h"
#include "frame/kernels/pointwise.h"
#include "frame/prims.h"

namespace v8 {
namespace {

using kern::Plane;

// A copy moves bytes: one kernel serves every element type and channel count.
// Each row is one block copy; the C library's measured faster than a register
// loop on short rows and the same on long ones.
void copyBytes(const void* src, int srcStep, void* dst, int dstStep, int rowBytes, int height) {
    Plane<const std::uint8_t> s{static_cast<const std::uint8_t*>(src), srcStep};
    Plane<std::uint8_t> d{static_cast<std::uint8_t*>(dst), dstStep};
    for (int y = 0; y < height; ++y) std::memcpy(d.row(y), s.row(y), static_cast<std::size_t>(rowBytes));
}

template <class T, int C>
ZevStatus copyImage(const T* src, int srcStep, T* dst, int dstStep, ZeviSize roi) {
    ZevStatus st = Check().ptrs(src, dst).roi(roi).positiveSteps(srcStep, dstStep);
    if (st != zevStsNoError) return st;
    copyBytes(src, srcStep, dst, dstStep, static_cast<int>(rowBytes<T>(roi.width, C)), roi.height);
    return zevStsNoError;
}

template <class T>
ZevStatus copyVector(const T* src, T* dst, int len) {
    ZevStatus st = Check().ptrs(src, dst).length(len);
    if (st != zevStsNoError) return st;
    copyBytes(src, 0, dst, 0, static_cast<int>(rowBytes<T>(len)), 1);
    return zevStsNoError;
}

template <class T>
ZevStatus setVector(T* dst, int len, T value) {
    ZevStatus st = Check().ptrs(dst).length(len);
    if (st != zevStsNoError) return st;
    kern::mapRow<false>(dst, len, kern::FillOp<T>(value));
    return zevStsNoError;
}

}  // namespace

#define ZEV_COPY(T, tag, C)                                                                      \
    ZevStatus zeviCopy_##tag##_C##C##R(const T* src, int srcStep, T* dst, int dstStep, ZeviSize roiSize) { \
        return copyImage<T, C>(src, srcStep, dst, dstStep, roiSize);                             \
    }
ZEV_COPY(Zev8u, 8u, 1)
ZEV_COPY(Zev8u, 8u, 3)
ZEV_COPY(Zev8u, 8u, 4)
ZEV_COPY(Zev16s, 16s, 1)
ZEV_COPY(Zev32f, 32f, 1)
ZEV_COPY(Zev32f, 32f, 3)
ZEV_COPY(Zev32f, 32f, 4)
#undef ZEV_COPY

// The same bits either way: the unsigned copy is the signed one.
ZevStatus zeviCopy_16u_C1R(const Zev16u* src, int srcStep, Zev16u* dst, int dstStep, ZeviSize roiSize) {
    return zeviCopy_16s_C1R(reinterpret_cast<const Zev16s*>(src), srcStep, reinterpret_cast<Zev16s*>(dst), dstStep,
                            roiSize);
}

ZevStatus zeviSet_8u_C1R(Zev8u* dst, int dstStep, ZeviSize roiSize, Zev8u value) {
    ZevStatus st = Check().ptrs(dst).roi(roiSize).positiveSteps(dstStep);
    if (st != zevStsNoError) return st;
    Plane<Zev8u> d{dst, dstStep};
    for (int y = 0; y < roiSize.height; ++y) std::memset(d.row(y), value, static_cast<std::size_t>(roiSize.width));
    return zevStsNoError;
}

ZevStatus zevsCopy_8u(const Zev8u* src, Zev8u* dst, int len) { return copyVector(src, dst, len); }
ZevStatus zevsCopy_16s(const Zev16s* src, Zev16s* dst, int len) { return copyVector(src, dst, len); }
ZevStatus zevsCopy_32f(const Zev32f* src, Zev32f* dst, int len) { return copyVector(src, dst, len); }

ZevStatus zevsSet_8u(Zev8u* dst, int len, Zev8u value) { return setVector(dst, len, value); }
ZevStatus zevsSet_32s(Zev32s* dst, int len, Zev32s value) { return setVector(dst, len, value); }
ZevStatus zevsSet_32f(Zev32f* dst, int len, Zev32f value) { return setVector(dst, len, value); }

ZevStatus zevsZero_8u(Zev8u* dst, int len) { return setVector<Zev8u>(dst, len, 0); }
ZevStatus zevsZero_16s(Zev16s* dst, int len) { return setVector<Zev16s>(dst, len, 0); }
ZevStatus zevsZero_32s(Zev32s* dst, int len) { return setVector<Zev32s>(dst, len, 0); }
ZevStatus zevsZero_32f(Zev32f* dst, int len) { return setVector<Zev32f>(dst, len, 0.0f); }

// Every 16-bit value is exact in single precision.
ZevStatus zevsConvert_16u32f(const Zev16u* src, Zev32f* dst, int len) {
    ZevStatus st = Check().ptrs(src, dst).length(len);
    if (st != zevStsNoError) return st;
    const __m128i z = _mm_setzero_si128();
    int i = 0;
    for (; i <= len - 8; i += 8) {
        __m128i v = simd::load<__m128i>(src + i);
        simd::store(dst + i, _mm_cvtepi32_ps(_mm_unpacklo_epi16(v, z)));
        simd::store(dst + i + 4, _mm_cvtepi32_ps(_mm_unpackhi_epi16(v, z)));
    }
    for (; i < len; ++i) dst[i] = static_cast<Zev32f>(src[i]);
    return zevStsNoError;
}

}  // namespace v8
