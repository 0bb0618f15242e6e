// The inner primitives: small copy, fill, convert, compare and sort routines
// that the image families build on. None is exported. Each judges its own
// arguments and answers with a ZevStatus, so a caller may pass the status on.
//
// Argument order follows the library's grammar: sources (pointer, step), the
// destination, the size (roiSize or len), then constants and the scale factor.
#pragma once

#include <cstdint>

#include "zevcv.h"

namespace v8 {

// Compare codes of the threshold routines.
enum : int {
    zevCmpLess = 0,
    zevCmpGreater = 4,
};

// ---------------------------------------------------------------- images
// dst = src, row by row. Checks: pointers; size; steps above 0.
ZevStatus zeviCopy_8u_C1R(const Zev8u* src, int srcStep, Zev8u* dst, int dstStep, ZeviSize roiSize);
ZevStatus zeviCopy_8u_C3R(const Zev8u* src, int srcStep, Zev8u* dst, int dstStep, ZeviSize roiSize);
ZevStatus zeviCopy_8u_C4R(const Zev8u* src, int srcStep, Zev8u* dst, int dstStep, ZeviSize roiSize);
ZevStatus zeviCopy_16s_C1R(const Zev16s* src, int srcStep, Zev16s* dst, int dstStep, ZeviSize roiSize);
ZevStatus zeviCopy_16u_C1R(const Zev16u* src, int srcStep, Zev16u* dst, int dstStep, ZeviSize roiSize);
ZevStatus zeviCopy_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, ZeviSize roiSize);
ZevStatus zeviCopy_32f_C3R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, ZeviSize roiSize);
ZevStatus zeviCopy_32f_C4R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, ZeviSize roiSize);

// Fills the region with value. Checks: pointer; size; step above 0.
ZevStatus zeviSet_8u_C1R(Zev8u* dst, int dstStep, ZeviSize roiSize, Zev8u value);

// dst = src2 - src1 in single precision. Checks: three pointers; size. No step test.
ZevStatus zeviSub_32f_C1R(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step, Zev32f* dst,
                          int dstStep, ZeviSize roiSize);
ZevStatus zeviSub_32f_C3R(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step, Zev32f* dst,
                          int dstStep, ZeviSize roiSize);
ZevStatus zeviSub_32f_C4R(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step, Zev32f* dst,
                          int dstStep, ZeviSize roiSize);

// dst = sat(scale(max(src2 - src1, 0))), rounding ties to even for a positive
// scale factor. Checks: pointers; height; width (C3, C4: width first of all).
ZevStatus zeviSub_8u_C1RSfs(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step, Zev8u* dst,
                            int dstStep, ZeviSize roiSize, int scaleFactor);
ZevStatus zeviSub_8u_C3RSfs(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step, Zev8u* dst,
                            int dstStep, ZeviSize roiSize, int scaleFactor);
ZevStatus zeviSub_8u_C4RSfs(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step, Zev8u* dst,
                            int dstStep, ZeviSize roiSize, int scaleFactor);

// Pixels beyond threshold (below it for zevCmpLess, above it for zevCmpGreater)
// become value, the others are copied. src may equal dst.
// Checks: compare code; pointers; size; steps above 0.
ZevStatus zeviThreshold_Val_8u_C1R(const Zev8u* src, int srcStep, Zev8u* dst, int dstStep, ZeviSize roiSize,
                                   Zev8u threshold, Zev8u value, int cmpOp);
ZevStatus zeviThreshold_Val_16u_C1R(const Zev16u* src, int srcStep, Zev16u* dst, int dstStep, ZeviSize roiSize,
                                    Zev16u threshold, Zev16u value, int cmpOp);
ZevStatus zeviThreshold_GTVal_8u_C1R(const Zev8u* src, int srcStep, Zev8u* dst, int dstStep, ZeviSize roiSize,
                                     Zev8u threshold, Zev8u value);
ZevStatus zeviThreshold_GTVal_16u_C1R(const Zev16u* src, int srcStep, Zev16u* dst, int dstStep, ZeviSize roiSize,
                                      Zev16u threshold, Zev16u value);

// Pixels beyond threshold become threshold. NaN pixels compare false and stay.
// Checks: pointers; size; steps against the row; compare code.
ZevStatus zeviThreshold_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, ZeviSize roiSize,
                                Zev32f threshold, int cmpOp);
ZevStatus zeviThreshold_LT_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, ZeviSize roiSize,
                                   Zev32f threshold);

// Border copies. The source region goes to (leftBorderWidth, topBorderHeight) of
// the destination region; the pixels around it repeat the nearest edge pixel
// (Replicate) or take value (Const). The in-place forms take the pointer of the
// source region, which already lies inside the destination with the same step;
// they write the border around it. An R form whose source already sits at its
// place in the destination runs the in-place form.
// Checks: pointers; steps above 0; all sizes above 0, offsets not negative and
// the source with its offsets inside the destination, else zevStsBadSize.
ZevStatus zeviCopyReplicateBorder_8u_C1R(const Zev8u* src, int srcStep, ZeviSize srcRoiSize, Zev8u* dst,
                                         int dstStep, ZeviSize dstRoiSize, int topBorderHeight,
                                         int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_8u_C3R(const Zev8u* src, int srcStep, ZeviSize srcRoiSize, Zev8u* dst,
                                         int dstStep, ZeviSize dstRoiSize, int topBorderHeight,
                                         int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_8u_C4R(const Zev8u* src, int srcStep, ZeviSize srcRoiSize, Zev8u* dst,
                                         int dstStep, ZeviSize dstRoiSize, int topBorderHeight,
                                         int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_32s_C1R(const Zev32s* src, int srcStep, ZeviSize srcRoiSize, Zev32s* dst,
                                          int dstStep, ZeviSize dstRoiSize, int topBorderHeight,
                                          int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_32s_C3R(const Zev32s* src, int srcStep, ZeviSize srcRoiSize, Zev32s* dst,
                                          int dstStep, ZeviSize dstRoiSize, int topBorderHeight,
                                          int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_32s_C4R(const Zev32s* src, int srcStep, ZeviSize srcRoiSize, Zev32s* dst,
                                          int dstStep, ZeviSize dstRoiSize, int topBorderHeight,
                                          int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_8u_C1IR(Zev8u* srcDst, int srcDstStep, ZeviSize srcRoiSize, ZeviSize dstRoiSize,
                                          int topBorderHeight, int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_8u_C3IR(Zev8u* srcDst, int srcDstStep, ZeviSize srcRoiSize, ZeviSize dstRoiSize,
                                          int topBorderHeight, int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_8u_C4IR(Zev8u* srcDst, int srcDstStep, ZeviSize srcRoiSize, ZeviSize dstRoiSize,
                                          int topBorderHeight, int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_32s_C1IR(Zev32s* srcDst, int srcDstStep, ZeviSize srcRoiSize,
                                           ZeviSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_32s_C3IR(Zev32s* srcDst, int srcDstStep, ZeviSize srcRoiSize,
                                           ZeviSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
ZevStatus zeviCopyReplicateBorder_32s_C4IR(Zev32s* srcDst, int srcDstStep, ZeviSize srcRoiSize,
                                           ZeviSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
ZevStatus zeviCopyConstBorder_8u_C1R(const Zev8u* src, int srcStep, ZeviSize srcRoiSize, Zev8u* dst, int dstStep,
                                     ZeviSize dstRoiSize, int topBorderHeight, int leftBorderWidth, Zev8u value);
ZevStatus zeviCopyConstBorder_16s_C1R(const Zev16s* src, int srcStep, ZeviSize srcRoiSize, Zev16s* dst,
                                      int dstStep, ZeviSize dstRoiSize, int topBorderHeight, int leftBorderWidth,
                                      Zev16s value);
ZevStatus zeviCopyConstBorder_16u_C1R(const Zev16u* src, int srcStep, ZeviSize srcRoiSize, Zev16u* dst,
                                      int dstStep, ZeviSize dstRoiSize, int topBorderHeight, int leftBorderWidth,
                                      Zev16u value);

// ---------------------------------------------------------------- vectors
// len is a signed element count. Unless said otherwise: pointers tested for
// null, then len >= 1 (zevStsBadSize).
ZevStatus zevsCopy_8u(const Zev8u* src, Zev8u* dst, int len);
ZevStatus zevsCopy_16s(const Zev16s* src, Zev16s* dst, int len);
ZevStatus zevsCopy_32f(const Zev32f* src, Zev32f* dst, int len);
ZevStatus zevsSet_8u(Zev8u* dst, int len, Zev8u value);
ZevStatus zevsSet_32s(Zev32s* dst, int len, Zev32s value);
ZevStatus zevsSet_32f(Zev32f* dst, int len, Zev32f value);
ZevStatus zevsZero_8u(Zev8u* dst, int len);
ZevStatus zevsZero_16s(Zev16s* dst, int len);
ZevStatus zevsZero_32s(Zev32s* dst, int len);
ZevStatus zevsZero_32f(Zev32f* dst, int len);
ZevStatus zevsConvert_16u32f(const Zev16u* src, Zev32f* dst, int len);

// Element-wise minimum or maximum. Where the two compare unordered or equal the
// second operand (src2, srcDst) is taken. Checks: pointers; len == 0 is
// zevStsBadSize, a negative len does nothing. zevsMinEvery_64f_I reports nothing.
ZevStatus zevsMinEvery_8u(const Zev8u* src1, const Zev8u* src2, Zev8u* dst, int len);
ZevStatus zevsMinEvery_16u(const Zev16u* src1, const Zev16u* src2, Zev16u* dst, int len);
ZevStatus zevsMinEvery_32f(const Zev32f* src1, const Zev32f* src2, Zev32f* dst, int len);
ZevStatus zevsMinEvery_64f(const Zev64f* src1, const Zev64f* src2, Zev64f* dst, int len);
ZevStatus zevsMaxEvery_8u(const Zev8u* src1, const Zev8u* src2, Zev8u* dst, int len);
ZevStatus zevsMaxEvery_16u(const Zev16u* src1, const Zev16u* src2, Zev16u* dst, int len);
ZevStatus zevsMaxEvery_32f(const Zev32f* src1, const Zev32f* src2, Zev32f* dst, int len);
ZevStatus zevsMaxEvery_64f(const Zev64f* src1, const Zev64f* src2, Zev64f* dst, int len);
ZevStatus zevsMinEvery_8u_I(const Zev8u* src, Zev8u* srcDst, int len);
ZevStatus zevsMinEvery_16u_I(const Zev16u* src, Zev16u* srcDst, int len);
ZevStatus zevsMinEvery_32f_I(const Zev32f* src, Zev32f* srcDst, int len);
ZevStatus zevsMinEvery_64f_I(const Zev64f* src, Zev64f* srcDst, int len);
ZevStatus zevsMaxEvery_8u_I(const Zev8u* src, Zev8u* srcDst, int len);
ZevStatus zevsMaxEvery_16u_I(const Zev16u* src, Zev16u* srcDst, int len);
ZevStatus zevsMaxEvery_32f_I(const Zev32f* src, Zev32f* srcDst, int len);
ZevStatus zevsMaxEvery_64f_I(const Zev64f* src, Zev64f* srcDst, int len);

// dst = src * value.
ZevStatus zevsMulC_32f(const Zev32f* src, Zev32f* dst, int len, Zev32f value);
// dst = sat(scale(src * value)) with a 32-bit product, ties to even.
ZevStatus zevsMulC_16s_Sfs(const Zev16s* src, Zev16s* dst, int len, Zev16s value, int scaleFactor);

// Ascending in place. Checks: pointer; len >= 1.
ZevStatus zevsSortAscend_64f_I(Zev64f* srcDst, int len);

// dst = sqrt(src), correctly rounded; long vectors split over two threads.
ZevStatus zevsSqrt_32f(const Zev32f* src, Zev32f* dst, int len);

// ---------------------------------------------------------------- helpers
// 2^-scaleFactor in single precision: +inf from 2^128 up, 0 below the smallest
// denormal.
Zev32f owncvGetScale_32s32f(int scaleFactor);

// 1 if any of the count row pointers is off a 16-byte boundary, else 0.
int owncvRowMatrAlErr(const void* const* rows, int count);
template <class T>
int owncvRowMatrAlErr(T* const* rows, int count) {
    return owncvRowMatrAlErr(reinterpret_cast<const void* const*>(rows), count);
}

}  // namespace v8
