#define ZEV_ISA sse
#include "arith/kernels/absdiff_body.h"

namespace v8 {

template <class T, bool Stream>
void ownAbsDiffRows_W7(const T* a, int aStep, const T* b, int bStep, T* d, int dStep, int width, int height) {
    sse::absDiff<16, Stream>(a, aStep, b, bStep, d, dStep, width, height);
}
template <class T, bool Stream>
void ownAbsDiffCRows_W7(const T* a, int aStep, T* d, int dStep, int width, int height, T value) {
    sse::absDiffC<16, Stream>(a, aStep, d, dStep, width, height, value);
}

template void ownAbsDiffRows_W7<Zev8u, false>(const Zev8u*, int, const Zev8u*, int, Zev8u*, int, int, int);
template void ownAbsDiffRows_W7<Zev16u, false>(const Zev16u*, int, const Zev16u*, int, Zev16u*, int, int, int);
template void ownAbsDiffRows_W7<Zev16u, true>(const Zev16u*, int, const Zev16u*, int, Zev16u*, int, int, int);
template void ownAbsDiffRows_W7<Zev32f, false>(const Zev32f*, int, const Zev32f*, int, Zev32f*, int, int, int);
template void ownAbsDiffRows_W7<Zev32f, true>(const Zev32f*, int, const Zev32f*, int, Zev32f*, int, int, int);
template void ownAbsDiffCRows_W7<Zev8u, false>(const Zev8u*, int, Zev8u*, int, int, int, Zev8u);
template void ownAbsDiffCRows_W7<Zev16u, false>(const Zev16u*, int, Zev16u*, int, int, int, Zev16u);
template void ownAbsDiffCRows_W7<Zev16u, true>(const Zev16u*, int, Zev16u*, int, int, int, Zev16u);
template void ownAbsDiffCRows_W7<Zev32f, false>(const Zev32f*, int, Zev32f*, int, int, int, Zev32f);
template void ownAbsDiffCRows_W7<Zev32f, true>(const Zev32f*, int, Zev32f*, int, int, int, Zev32f);

}  // namespace v8
