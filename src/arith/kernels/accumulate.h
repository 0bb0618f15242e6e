// Row kernels of the accumulators: a 32f accumulator takes a frame, its square,
// the product of two frames, or a weighted step towards a frame, optionally
// under a mask. One generic kernel serves every operation, source type and mask
// form; the SSSE3 set is the floor, an AVX2 set of the same kernels is reached
// by a run-time check, and both give the same bits.
#pragma once

#include <type_traits>

#include "zevcv.h"

namespace v8 {

// The operations, each in single precision, each step rounded, never fused:
struct AccAdd {};       // d = s + d
struct AccSquare {};    // d = s * s + d
struct AccProduct {};   // d = s1 * s2 + d
struct AccWeighted {};  // d = (s - d) * alpha + d

template <class Op>
constexpr bool kAccumTwoSources = std::is_same_v<Op, AccProduct>;

// One call's images. `acc` is read and `dst` written; both are the accumulator
// for the in-place members. src2 is used by AccProduct only, mask when masked.
template <class T>
struct AccumArgs {
    const T* src1 = nullptr;
    int src1Step = 0;
    const T* src2 = nullptr;
    int src2Step = 0;
    const Zev8u* mask = nullptr;
    int maskStep = 0;
    const Zev32f* acc = nullptr;
    int accStep = 0;
    Zev32f* dst = nullptr;
    int dstStep = 0;
    Zev32f alpha = 0.0f;
};

// Row structure, which decides what an excluded pixel becomes: masked 32f
// members and the masked product and weighted members run their vector blocks
// from the row start (rows under 4 pixels go scalar); all others first step
// element by element until the accumulator is 16-byte aligned. In a vector
// block an excluded pixel is rewritten (d + 0, or 0 * s2 + d for the product);
// in a scalar position it is skipped.
template <class Op, class T, bool Masked>
constexpr bool kAccumPrologue =
    !(Masked && (sizeof(T) == 4 || std::is_same_v<Op, AccProduct> || std::is_same_v<Op, AccWeighted>));

// Pixels in the scalar prologue of a row whose accumulator starts at `acc`.
// An accumulator off its element alignment never reaches a 16-byte boundary.
int accumPrologue(const Zev32f* acc, int width);

// width x height pixels; useStream writes the aligned blocks past the cache.
template <class Op, class T, bool Masked>
void ownAccumulate_W7(const AccumArgs<T>& a, int width, int height, bool useStream);
template <class Op, class T, bool Masked>
void ownAccumulate_avx2(const AccumArgs<T>& a, int width, int height, bool useStream);

// Every instantiation, for the kernel files.
#define ZEV_ACCUM_TYPES(X, Op, M) X(Op, Zev8u, M) X(Op, Zev8s, M) X(Op, Zev16u, M) X(Op, Zev32f, M)
#define ZEV_ACCUM_INSTANCES(X)                                                                               \
    ZEV_ACCUM_TYPES(X, AccAdd, false) ZEV_ACCUM_TYPES(X, AccAdd, true) ZEV_ACCUM_TYPES(X, AccSquare, false) \
    ZEV_ACCUM_TYPES(X, AccSquare, true) ZEV_ACCUM_TYPES(X, AccProduct, false)                               \
    ZEV_ACCUM_TYPES(X, AccProduct, true) ZEV_ACCUM_TYPES(X, AccWeighted, false)                             \
    ZEV_ACCUM_TYPES(X, AccWeighted, true)

}  // namespace v8
