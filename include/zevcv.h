/*
 * zevcv: computer-vision primitives on images in the caller's memory.
 *
 * Every function takes pointers, byte steps and a region size, and answers
 * with a ZevStatus: 0 on success, negative on error (nothing written),
 * positive for a warning (the work was done; the result carries a remark).
 *
 * This header is valid C89/C99 and C++.
 */
#ifndef ZEVCV_H
#define ZEVCV_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32)
#define ZEVAPI
#else
#define ZEVAPI __attribute__((visibility("default")))
#endif

/* ---------------------------------------------------------------- types */

typedef uint8_t  Zev8u;
typedef int8_t   Zev8s;
typedef uint16_t Zev16u;
typedef int16_t  Zev16s;
typedef int32_t  Zev32s;
typedef float    Zev32f;
typedef double   Zev64f;

typedef struct ZeviSize { int32_t width; int32_t height; } ZeviSize;
typedef struct ZeviPoint { int32_t x; int32_t y; } ZeviPoint;
typedef struct ZeviRect { int32_t x; int32_t y; int32_t width; int32_t height; } ZeviRect;
typedef struct ZeviPoint32f { Zev32f x; Zev32f y; } ZeviPoint32f;

/* Line record of the Hough functions. */
typedef struct ZeviPolar { Zev32f rho; Zev32f theta; } ZeviPolar;

/* Result record of the flood fills. */
typedef struct ZeviFloodRegion {
    Zev64f area;
    Zev64f value[3];
    ZeviRect rect;
} ZeviFloodRegion;

typedef int32_t ZevStatus;

typedef struct ZevLibraryVersion {
    int32_t major;
    int32_t minor;
    int32_t patch;
    int32_t revision;
    char targetTag[4];
    const char* name;
    const char* versionText;
    const char* buildDate;
} ZevLibraryVersion;

/* ----------------------------------------------------------- status codes */

enum {
    zevStsNoError = 0,
    zevStsZeroDenominator = 6,
    zevStsBufferSizeWarning = 12,
    zevStsLinesLimitWarning = 33,
    zevStsAsymmetricKernel = 38,
    zevStsUnspecified = -2,
    zevStsBadArgument = -5,
    zevStsBadSize = -6,
    zevStsBadRange = -7,
    zevStsNullPointer = -8,
    zevStsNoMemory = -9,
    zevStsOutOfRange = -11,
    zevStsBadDataType = -12,
    zevStsBadStep = -14,
    zevStsBadMaskSize = -33,
    zevStsBadAnchor = -34,
    zevStsBadCoi = -52,
    zevStsBadChannels = -53,
    zevStsBadMetric = -56,
    zevStsStepNotMultiple = -108,
    zevStsUnsupportedCompare = -9999
};

/* ------------------------------------------------------ border argument */

/* Low nibble: how pixels outside the image are made. */
enum {
    zevBorderConst = 0,
    zevBorderReplicate = 1,
    zevBorderWrap = 2,
    zevBorderMirror = 3,
    zevBorderMirrorR = 4,
    zevBorderInMem = 6
};

/* Flags: the rows or columns beyond that edge are real memory, read as is. */
enum {
    zevBorderInMemTop = 0x10,
    zevBorderInMemBottom = 0x20,
    zevBorderInMemLeft = 0x40,
    zevBorderInMemRight = 0x80
};

/* ---------------------------------------------------- other small codes */

/* Mask size code: a square mask of side n has the code n * 11. */
enum {
    zevMskSize3x3 = 33,
    zevMskSize5x5 = 55
};

/* Norm kinds. */
enum {
    zevNormInf = 0,
    zevNormL1 = 1,
    zevNormL2 = 2
};

/* Data-type codes of states and size queries. */
enum {
    zevDataType8u = 1,
    zevDataType16u = 5,
    zevDataType32f = 13
};

/* ============================================================ functions */

/* ---- library */

/* The constant version record of this build; never null. */
ZEVAPI const ZevLibraryVersion* zevcvGetLibVersion(void);

/* ---- absolute difference: dst = |src1 - src2|, dst = |src - value| */

ZEVAPI ZevStatus zeviAbsDiff_8u_C1R(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                    Zev8u* dst, int dstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAbsDiff_8u_C3R(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                    Zev8u* dst, int dstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAbsDiff_16u_C1R(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                     Zev16u* dst, int dstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAbsDiff_32f_C1R(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                     Zev32f* dst, int dstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAbsDiffC_8u_C1R(const Zev8u* src, int srcStep, Zev8u* dst, int dstStep,
                                     ZeviSize roiSize, int value);
ZEVAPI ZevStatus zeviAbsDiffC_16u_C1R(const Zev16u* src, int srcStep, Zev16u* dst, int dstStep,
                                      ZeviSize roiSize, int value);
ZEVAPI ZevStatus zeviAbsDiffC_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
                                      ZeviSize roiSize, Zev32f value);

/* ---- norms over the pixels a mask selects: of an image, of the difference of two
 * images, and of that difference relative to the second image. C3CMR forms work on
 * channel coi (1 to 3). A relative norm with a zero denominator returns
 * zevStsZeroDenominator with NaN or an infinity in value. */

ZEVAPI ZevStatus zeviNorm_Inf_8u_C1MR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                      ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_Inf_8s_C1MR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                      ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_Inf_16u_C1MR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                       ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_Inf_32f_C1MR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                       ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L1_8u_C1MR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                     ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L1_8s_C1MR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                     ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L1_16u_C1MR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                      ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L1_32f_C1MR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                      ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L2_8u_C1MR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                     ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L2_8s_C1MR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                     ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L2_16u_C1MR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                      ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L2_32f_C1MR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                      ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_Inf_8u_C1MR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_Inf_8s_C1MR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_Inf_16u_C1MR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                           const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_Inf_32f_C1MR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                           const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L1_8u_C1MR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L1_8s_C1MR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L1_16u_C1MR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L1_32f_C1MR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L2_8u_C1MR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L2_8s_C1MR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L2_16u_C1MR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L2_32f_C1MR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_Inf_8u_C1MR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_Inf_8s_C1MR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_Inf_16u_C1MR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_Inf_32f_C1MR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L1_8u_C1MR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                        const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L1_8s_C1MR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                        const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L1_16u_C1MR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L1_32f_C1MR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L2_8u_C1MR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                        const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L2_8s_C1MR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                        const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L2_16u_C1MR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L2_32f_C1MR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_Inf_8u_C3CMR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                       ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_Inf_8s_C3CMR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                       ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_Inf_16u_C3CMR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                        ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_Inf_32f_C3CMR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                        ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L1_8u_C3CMR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                      ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L1_8s_C3CMR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                      ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L1_16u_C3CMR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                       ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L1_32f_C3CMR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                       ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L2_8u_C3CMR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                      ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L2_8s_C3CMR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                      ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L2_16u_C3CMR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                       ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNorm_L2_32f_C3CMR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                       ZeviSize roiSize, int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_Inf_8u_C3CMR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                           const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                           Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_Inf_8s_C3CMR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                           const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                           Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_Inf_16u_C3CMR(const Zev16u* src1, int src1Step, const Zev16u* src2,
                                            int src2Step, const Zev8u* mask, int maskStep, ZeviSize roiSize,
                                            int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_Inf_32f_C3CMR(const Zev32f* src1, int src1Step, const Zev32f* src2,
                                            int src2Step, const Zev8u* mask, int maskStep, ZeviSize roiSize,
                                            int coi, Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L1_8u_C3CMR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                          Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L1_8s_C3CMR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                          Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L1_16u_C3CMR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                           const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                           Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L1_32f_C3CMR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                           const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                           Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L2_8u_C3CMR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                          Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L2_8s_C3CMR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                          Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L2_16u_C3CMR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                           const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                           Zev64f* value);
ZEVAPI ZevStatus zeviNormDiff_L2_32f_C3CMR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                           const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                           Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_Inf_8u_C3CMR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                          Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_Inf_8s_C3CMR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                          Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_Inf_16u_C3CMR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                           const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                           Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_Inf_32f_C3CMR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                           const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                           Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L1_8u_C3CMR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                         Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L1_8s_C3CMR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                         Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L1_16u_C3CMR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                          Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L1_32f_C3CMR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                          Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L2_8u_C3CMR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                         Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L2_8s_C3CMR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                         const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                         Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L2_16u_C3CMR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                          Zev64f* value);
ZEVAPI ZevStatus zeviNormRel_L2_32f_C3CMR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, ZeviSize roiSize, int coi,
                                          Zev64f* value);
/* ---- mean and standard deviation of a region, one channel or one of three (coi);
        stdDev and mean of zeviMean_StdDev_* may be null */

ZEVAPI ZevStatus zeviMean_8u_C1MR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                  ZeviSize roiSize, Zev64f* mean);
ZEVAPI ZevStatus zeviMean_8u_C3CMR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                   ZeviSize roiSize, int coi, Zev64f* mean);
ZEVAPI ZevStatus zeviMean_8s_C1MR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                  ZeviSize roiSize, Zev64f* mean);
ZEVAPI ZevStatus zeviMean_8s_C3CMR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                   ZeviSize roiSize, int coi, Zev64f* mean);
ZEVAPI ZevStatus zeviMean_16u_C1MR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                  ZeviSize roiSize, Zev64f* mean);
ZEVAPI ZevStatus zeviMean_16u_C3CMR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                   ZeviSize roiSize, int coi, Zev64f* mean);
ZEVAPI ZevStatus zeviMean_32f_C1MR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                  ZeviSize roiSize, Zev64f* mean);
ZEVAPI ZevStatus zeviMean_32f_C3CMR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                   ZeviSize roiSize, int coi, Zev64f* mean);
ZEVAPI ZevStatus zeviMean_StdDev_8u_C1R(const Zev8u* src, int srcStep, ZeviSize roiSize, Zev64f* mean,
                                         Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_8u_C3CR(const Zev8u* src, int srcStep, ZeviSize roiSize, int coi,
                                          Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_8u_C1MR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                          ZeviSize roiSize, Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_8u_C3CMR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                           ZeviSize roiSize, int coi, Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_8s_C1R(const Zev8s* src, int srcStep, ZeviSize roiSize, Zev64f* mean,
                                         Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_8s_C3CR(const Zev8s* src, int srcStep, ZeviSize roiSize, int coi,
                                          Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_8s_C1MR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                          ZeviSize roiSize, Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_8s_C3CMR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                           ZeviSize roiSize, int coi, Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_16u_C1R(const Zev16u* src, int srcStep, ZeviSize roiSize, Zev64f* mean,
                                         Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_16u_C3CR(const Zev16u* src, int srcStep, ZeviSize roiSize, int coi,
                                          Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_16u_C1MR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                          ZeviSize roiSize, Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_16u_C3CMR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                           ZeviSize roiSize, int coi, Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_32f_C1R(const Zev32f* src, int srcStep, ZeviSize roiSize, Zev64f* mean,
                                         Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_32f_C3CR(const Zev32f* src, int srcStep, ZeviSize roiSize, int coi,
                                          Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_32f_C1MR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                          ZeviSize roiSize, Zev64f* mean, Zev64f* stdDev);
ZEVAPI ZevStatus zeviMean_StdDev_32f_C3CMR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                           ZeviSize roiSize, int coi, Zev64f* mean, Zev64f* stdDev);

/* ---- minimum and maximum with the first position of each (row-major); every output may be null */

ZEVAPI ZevStatus zeviMinMaxIndx_8u_C1R(const Zev8u* src, int srcStep, ZeviSize roiSize, Zev32f* minVal,
                                        Zev32f* maxVal, ZeviPoint* minIndex, ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_8u_C3CR(const Zev8u* src, int srcStep, ZeviSize roiSize, int coi,
                                         Zev32f* minVal, Zev32f* maxVal, ZeviPoint* minIndex,
                                         ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_8u_C1MR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                         ZeviSize roiSize, Zev32f* minVal, Zev32f* maxVal, ZeviPoint* minIndex,
                                         ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_8u_C3CMR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                          ZeviSize roiSize, int coi, Zev32f* minVal, Zev32f* maxVal,
                                          ZeviPoint* minIndex, ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_8s_C1R(const Zev8s* src, int srcStep, ZeviSize roiSize, Zev32f* minVal,
                                        Zev32f* maxVal, ZeviPoint* minIndex, ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_8s_C3CR(const Zev8s* src, int srcStep, ZeviSize roiSize, int coi,
                                         Zev32f* minVal, Zev32f* maxVal, ZeviPoint* minIndex,
                                         ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_8s_C1MR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                         ZeviSize roiSize, Zev32f* minVal, Zev32f* maxVal, ZeviPoint* minIndex,
                                         ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_8s_C3CMR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                          ZeviSize roiSize, int coi, Zev32f* minVal, Zev32f* maxVal,
                                          ZeviPoint* minIndex, ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_16u_C1R(const Zev16u* src, int srcStep, ZeviSize roiSize, Zev32f* minVal,
                                        Zev32f* maxVal, ZeviPoint* minIndex, ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_16u_C3CR(const Zev16u* src, int srcStep, ZeviSize roiSize, int coi,
                                         Zev32f* minVal, Zev32f* maxVal, ZeviPoint* minIndex,
                                         ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_16u_C1MR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                         ZeviSize roiSize, Zev32f* minVal, Zev32f* maxVal, ZeviPoint* minIndex,
                                         ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_16u_C3CMR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                          ZeviSize roiSize, int coi, Zev32f* minVal, Zev32f* maxVal,
                                          ZeviPoint* minIndex, ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_32f_C1R(const Zev32f* src, int srcStep, ZeviSize roiSize, Zev32f* minVal,
                                        Zev32f* maxVal, ZeviPoint* minIndex, ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_32f_C3CR(const Zev32f* src, int srcStep, ZeviSize roiSize, int coi,
                                         Zev32f* minVal, Zev32f* maxVal, ZeviPoint* minIndex,
                                         ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_32f_C1MR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                         ZeviSize roiSize, Zev32f* minVal, Zev32f* maxVal, ZeviPoint* minIndex,
                                         ZeviPoint* maxIndex);
ZEVAPI ZevStatus zeviMinMaxIndx_32f_C3CMR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                          ZeviSize roiSize, int coi, Zev32f* minVal, Zev32f* maxVal,
                                          ZeviPoint* minIndex, ZeviPoint* maxIndex);

/* ---- accumulators: d = s + d, s * s + d, s1 * s2 + d, (s - d) * alpha + d, in single precision */

ZEVAPI ZevStatus zeviAdd_8u32f_C1IR(const Zev8u* src, int srcStep, Zev32f* srcDst, int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAdd_8u32f_C1IMR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep, Zev32f* srcDst,
                                     int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAdd_8s32f_C1IR(const Zev8s* src, int srcStep, Zev32f* srcDst, int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAdd_8s32f_C1IMR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep, Zev32f* srcDst,
                                     int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAdd_16u32f_C1IR(const Zev16u* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                     ZeviSize roiSize);
ZEVAPI ZevStatus zeviAdd_16u32f_C1IMR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep, Zev32f* srcDst,
                                      int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAdd_32f_C1IMR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep, Zev32f* srcDst,
                                   int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddSquare_8u32f_C1IR(const Zev8u* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                          ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddSquare_8u32f_C1IMR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                           Zev32f* srcDst, int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddSquare_8s32f_C1IR(const Zev8s* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                          ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddSquare_8s32f_C1IMR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                           Zev32f* srcDst, int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddSquare_16u32f_C1IR(const Zev16u* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                           ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddSquare_16u32f_C1IMR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                            Zev32f* srcDst, int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddSquare_32f_C1IR(const Zev32f* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                        ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddSquare_32f_C1IMR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                         Zev32f* srcDst, int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddProduct_8u32f_C1IR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                           Zev32f* srcDst, int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddProduct_8u32f_C1IMR(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                            const Zev8u* mask, int maskStep, Zev32f* srcDst, int srcDstStep,
                                            ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddProduct_8s32f_C1IR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                           Zev32f* srcDst, int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddProduct_8s32f_C1IMR(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                            const Zev8u* mask, int maskStep, Zev32f* srcDst, int srcDstStep,
                                            ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddProduct_16u32f_C1IR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                            Zev32f* srcDst, int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddProduct_16u32f_C1IMR(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                             const Zev8u* mask, int maskStep, Zev32f* srcDst, int srcDstStep,
                                             ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddProduct_32f_C1IR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                         Zev32f* srcDst, int srcDstStep, ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddProduct_32f_C1IMR(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, Zev32f* srcDst, int srcDstStep,
                                          ZeviSize roiSize);
ZEVAPI ZevStatus zeviAddWeighted_8u32f_C1IR(const Zev8u* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                            ZeviSize roiSize, Zev32f alpha);
ZEVAPI ZevStatus zeviAddWeighted_8u32f_C1IMR(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                             Zev32f* srcDst, int srcDstStep, ZeviSize roiSize, Zev32f alpha);
ZEVAPI ZevStatus zeviAddWeighted_8s32f_C1IR(const Zev8s* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                            ZeviSize roiSize, Zev32f alpha);
ZEVAPI ZevStatus zeviAddWeighted_8s32f_C1IMR(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                             Zev32f* srcDst, int srcDstStep, ZeviSize roiSize, Zev32f alpha);
ZEVAPI ZevStatus zeviAddWeighted_16u32f_C1IR(const Zev16u* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                             ZeviSize roiSize, Zev32f alpha);
ZEVAPI ZevStatus zeviAddWeighted_16u32f_C1IMR(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                              Zev32f* srcDst, int srcDstStep, ZeviSize roiSize, Zev32f alpha);
ZEVAPI ZevStatus zeviAddWeighted_32f_C1IR(const Zev32f* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                          ZeviSize roiSize, Zev32f alpha);
ZEVAPI ZevStatus zeviAddWeighted_32f_C1IMR(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                           Zev32f* srcDst, int srcDstStep, ZeviSize roiSize, Zev32f alpha);
ZEVAPI ZevStatus zeviAddWeighted_32f_C1R(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                         Zev32f* dst, int dstStep, ZeviSize roiSize, Zev32f alpha);
/* ---- row border pipeline: 1-D kernel along rows, rows delivered through row pointers */

ZEVAPI ZevStatus zeviFilterRowBorderPipeline_8u16s_C1R(const Zev8u* src, int srcStep, Zev16s** dst, ZeviSize roiSize,
                                                       const Zev16s* kernel, int kernelSize, int xAnchor,
                                                       int borderType, Zev8u borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterRowBorderPipeline_8u16s_C3R(const Zev8u* src, int srcStep, Zev16s** dst, ZeviSize roiSize,
                                                       const Zev16s* kernel, int kernelSize, int xAnchor,
                                                       int borderType, const Zev8u* borderValue, int divisor,
                                                       Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterRowBorderPipeline_16s_C1R(const Zev16s* src, int srcStep, Zev16s** dst, ZeviSize roiSize,
                                                     const Zev16s* kernel, int kernelSize, int xAnchor, int borderType,
                                                     Zev16s borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterRowBorderPipeline_16s_C3R(const Zev16s* src, int srcStep, Zev16s** dst, ZeviSize roiSize,
                                                     const Zev16s* kernel, int kernelSize, int xAnchor, int borderType,
                                                     const Zev16s* borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterRowBorderPipeline_Low_16s_C1R(const Zev16s* src, int srcStep, Zev16s** dst,
                                                         ZeviSize roiSize, const Zev16s* kernel, int kernelSize,
                                                         int xAnchor, int borderType, Zev16s borderValue, int divisor,
                                                         Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterRowBorderPipeline_Low_16s_C3R(const Zev16s* src, int srcStep, Zev16s** dst,
                                                         ZeviSize roiSize, const Zev16s* kernel, int kernelSize,
                                                         int xAnchor, int borderType, const Zev16s* borderValue,
                                                         int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterRowBorderPipeline_32f_C1R(const Zev32f* src, int srcStep, Zev32f** dst, ZeviSize roiSize,
                                                     const Zev32f* kernel, int kernelSize, int xAnchor, int borderType,
                                                     Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterRowBorderPipeline_32f_C3R(const Zev32f* src, int srcStep, Zev32f** dst, ZeviSize roiSize,
                                                     const Zev32f* kernel, int kernelSize, int xAnchor, int borderType,
                                                     const Zev32f* borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterRowBorderPipelineGetBufferSize_8u16s_C1R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterRowBorderPipelineGetBufferSize_8u16s_C3R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterRowBorderPipelineGetBufferSize_16s_C1R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterRowBorderPipelineGetBufferSize_16s_C3R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterRowBorderPipelineGetBufferSize_32f_C1R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterRowBorderPipelineGetBufferSize_32f_C3R(ZeviSize roiSize, int kernelSize, int* bufferSize);

/* ---- column pipeline: K intermediate rows through row pointers into one output row */

ZEVAPI ZevStatus zeviFilterColumnPipeline_16s_C1R(const Zev16s** src, Zev16s* dst, int dstStep, ZeviSize roiSize,
    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterColumnPipeline_16s_C3R(const Zev16s** src, Zev16s* dst, int dstStep, ZeviSize roiSize,
    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterColumnPipeline_Low_16s_C1R(const Zev16s** src, Zev16s* dst, int dstStep, ZeviSize roiSize,
    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterColumnPipeline_Low_16s_C3R(const Zev16s** src, Zev16s* dst, int dstStep, ZeviSize roiSize,
    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterColumnPipeline_16s8u_C1R(const Zev16s** src, Zev8u* dst, int dstStep, ZeviSize roiSize,
    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterColumnPipeline_16s8u_C3R(const Zev16s** src, Zev8u* dst, int dstStep, ZeviSize roiSize,
    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterColumnPipeline_16s8s_C1R(const Zev16s** src, Zev8s* dst, int dstStep, ZeviSize roiSize,
    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterColumnPipeline_16s8s_C3R(const Zev16s** src, Zev8s* dst, int dstStep, ZeviSize roiSize,
    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterColumnPipeline_32f_C1R(const Zev32f** src, Zev32f* dst, int dstStep, ZeviSize roiSize,
    const Zev32f* kernel, int kernelSize, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterColumnPipeline_32f_C3R(const Zev32f** src, Zev32f* dst, int dstStep, ZeviSize roiSize,
    const Zev32f* kernel, int kernelSize, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterColumnPipelineGetBufferSize_16s_C1R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterColumnPipelineGetBufferSize_16s_C3R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterColumnPipelineGetBufferSize_Low_16s_C1R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterColumnPipelineGetBufferSize_Low_16s_C3R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterColumnPipelineGetBufferSize_16s8u_C1R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterColumnPipelineGetBufferSize_16s8u_C3R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterColumnPipelineGetBufferSize_16s8s_C1R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterColumnPipelineGetBufferSize_16s8s_C3R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterColumnPipelineGetBufferSize_32f_C1R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterColumnPipelineGetBufferSize_32f_C3R(ZeviSize roiSize, int kernelSize, int* bufferSize);
/* ---- fixed derivative and smoothing filters: Sobel, Scharr, Laplacian, lowpass, Gaussian */

ZEVAPI ZevStatus zeviFilterSobelHorizBorder_8u16s_C1R(const Zev8u* src, int srcStep, Zev16s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelHorizBorder_8u8s_C1R(const Zev8u* src, int srcStep, Zev8s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelHorizBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelHorizGetBufferSize_8u16s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelHorizGetBufferSize_8u8s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelHorizGetBufferSize_32f_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelVertBorder_8u16s_C1R(const Zev8u* src, int srcStep, Zev16s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelVertBorder_8u8s_C1R(const Zev8u* src, int srcStep, Zev8s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelVertBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelVertGetBufferSize_8u16s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelVertGetBufferSize_8u8s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelVertGetBufferSize_32f_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelNegVertBorder_8u16s_C1R(const Zev8u* src, int srcStep, Zev16s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelNegVertBorder_8u8s_C1R(const Zev8u* src, int srcStep, Zev8s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelNegVertBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelNegVertGetBufferSize_8u16s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelNegVertGetBufferSize_8u8s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelNegVertGetBufferSize_32f_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelCrossBorder_8u16s_C1R(const Zev8u* src, int srcStep, Zev16s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelCrossBorder_8u8s_C1R(const Zev8u* src, int srcStep, Zev8s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelCrossBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelCrossGetBufferSize_8u16s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelCrossGetBufferSize_8u8s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelCrossGetBufferSize_32f_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelHorizSecondBorder_8u16s_C1R(const Zev8u* src, int srcStep, Zev16s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelHorizSecondBorder_8u8s_C1R(const Zev8u* src, int srcStep, Zev8s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelHorizSecondBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelHorizSecondGetBufferSize_8u16s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelHorizSecondGetBufferSize_8u8s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelHorizSecondGetBufferSize_32f_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelVertSecondBorder_8u16s_C1R(const Zev8u* src, int srcStep, Zev16s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelVertSecondBorder_8u8s_C1R(const Zev8u* src, int srcStep, Zev8s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelVertSecondBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterSobelVertSecondGetBufferSize_8u16s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelVertSecondGetBufferSize_8u8s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterSobelVertSecondGetBufferSize_32f_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterScharrHorizBorder_8u16s_C1R(const Zev8u* src, int srcStep, Zev16s* dst, int dstStep,
    ZeviSize roiSize, int borderType, Zev8u borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterScharrHorizBorder_8u8s_C1R(const Zev8u* src, int srcStep, Zev8s* dst, int dstStep,
    ZeviSize roiSize, int borderType, Zev8u borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterScharrHorizBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterScharrHorizGetBufferSize_8u16s_C1R(ZeviSize roiSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterScharrHorizGetBufferSize_8u8s_C1R(ZeviSize roiSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterScharrHorizGetBufferSize_32f_C1R(ZeviSize roiSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterScharrVertBorder_8u16s_C1R(const Zev8u* src, int srcStep, Zev16s* dst, int dstStep,
    ZeviSize roiSize, int borderType, Zev8u borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterScharrVertBorder_8u8s_C1R(const Zev8u* src, int srcStep, Zev8s* dst, int dstStep,
    ZeviSize roiSize, int borderType, Zev8u borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterScharrVertBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterScharrVertGetBufferSize_8u16s_C1R(ZeviSize roiSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterScharrVertGetBufferSize_8u8s_C1R(ZeviSize roiSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterScharrVertGetBufferSize_32f_C1R(ZeviSize roiSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterLaplacianBorder_8u16s_C1R(const Zev8u* src, int srcStep, Zev16s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterLaplacianBorder_8u8s_C1R(const Zev8u* src, int srcStep, Zev8s* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, int divisor, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterLaplacianBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterLaplacianGetBufferSize_8u16s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterLaplacianGetBufferSize_8u8s_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterLaplacianGetBufferSize_32f_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterLowpassBorder_8u_C1R(const Zev8u* src, int srcStep, Zev8u* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev8u borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterLowpassBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int maskSize, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterLowpassGetBufferSize_8u_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterLowpassGetBufferSize_32f_C1R(ZeviSize roiSize, int maskSize, int* bufferSize);
ZEVAPI ZevStatus zeviFilterGaussBorder_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
    ZeviSize roiSize, int kernelSize, Zev32f sigma, int borderType, Zev32f borderValue, Zev8u* buffer);
ZEVAPI ZevStatus zeviFilterGaussGetBufferSize_32f_C1R(ZeviSize roiSize, int kernelSize, int* bufferSize);
ZEVAPI ZevStatus zeviGenSobelKernel_16s(Zev16s* kernel, int kernelSize, int order, int sign);
ZEVAPI ZevStatus zeviGenSobelKernel_32f(Zev32f* kernel, int kernelSize, int order, int sign);

/* @@ FAMILY DECLARATIONS: each family adds its own block above this line. */

#ifdef __cplusplus
}
#endif

#endif /* ZEVCV_H */
