// Band kernels of the masked norms. One generic kernel, instantiated per element
// type, form (one image, difference, relative), norm kind and layout.
#pragma once

#include "zevcv.h"

namespace v8 {

enum class NormKind { Inf, L1, L2 };
enum class NormForm { Norm, Diff, Rel };

// The images of one call, pointing at the first row of a band. For the
// one-image form b is unused. ch is the zero-based channel of a C3C layout.
template <class T>
struct NormSrc {
    const T* a;
    int aStep;
    const T* b;
    int bStep;
    const Zev8u* mask;
    int maskStep;
    int width;
    int ch;
};

// A band's partial result: p is the norm's accumulation (maximum or sum), q the
// denominator's of a relative norm. Integer sums are exact; a 32f sum is the
// band's double total rounded once to single precision.
struct NormPart {
    double p;
    double q;
};

template <class T, NormForm F, NormKind K, int Ch>
NormPart ownNormBand_V8(const NormSrc<T>& s, int rows);

// The same on 32-byte registers, for one-channel integer images only; reached
// after a run-time check for AVX2.
template <class T, NormForm F, NormKind K, int Ch>
NormPart ownNormBand_avx2(const NormSrc<T>& s, int rows);

template <class T, int Ch>
constexpr bool kNormAvx2 = Ch == 1 && sizeof(T) <= 2;

}  // namespace v8
