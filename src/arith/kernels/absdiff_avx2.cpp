#define ZEV_ISA avx2
#include "arith/kernels/absdiff_body.h"

namespace v8 {

template <class T>
void ownAbsDiffRows_avx2(const T* a, int aStep, const T* b, int bStep, T* d, int dStep, int width, int height) {
    avx2::absDiff<32, false>(a, aStep, b, bStep, d, dStep, width, height);
}
template <class T>
void ownAbsDiffCRows_avx2(const T* a, int aStep, T* d, int dStep, int width, int height, T value) {
    avx2::absDiffC<32, false>(a, aStep, d, dStep, width, height, value);
}

template void ownAbsDiffRows_avx2<Zev8u>(const Zev8u*, int, const Zev8u*, int, Zev8u*, int, int, int);
template void ownAbsDiffRows_avx2<Zev16u>(const Zev16u*, int, const Zev16u*, int, Zev16u*, int, int, int);
template void ownAbsDiffRows_avx2<Zev32f>(const Zev32f*, int, const Zev32f*, int, Zev32f*, int, int, int);
template void ownAbsDiffCRows_avx2<Zev8u>(const Zev8u*, int, Zev8u*, int, int, int, Zev8u);
template void ownAbsDiffCRows_avx2<Zev16u>(const Zev16u*, int, Zev16u*, int, int, int, Zev16u);
template void ownAbsDiffCRows_avx2<Zev32f>(const Zev32f*, int, Zev32f*, int, int, int, Zev32f);

}  // namespace v8
