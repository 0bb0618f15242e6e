#include "frame/kernels/elementwise_ops.h"
#include "frame/kernels/rows_avx2.h"

namespace v8 {

template <class T, bool Max>
void ownMinMaxEvery_avx2(const T* src1, const T* src2, T* dst, int len) {
    kern::mapRow<false, 32>(dst, len, kern::MinMaxEveryOp<T, Max>{}, src1, src2);
}
void ownSub_32f_avx2(const Zev32f* src1, const Zev32f* src2, Zev32f* dst, int len) {
    kern::mapRow<false, 32>(dst, len, kern::SubOp_32f{}, src1, src2);
}

template <class T, bool Greater, bool Stream>
void ownThresholdValRows_avx2(const T* src, int srcStep, T* dst, int dstStep, int width, int height, T threshold,
                              T value) {
    kern::mapRows<Stream, 32>(kern::Plane<T>{dst, dstStep}, width, height,
                              kern::ThresholdValOp<T, Greater>(threshold, value), kern::Plane<const T>{src, srcStep});
}
template <bool Greater>
void ownThresholdRows_32f_avx2(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, int width, int height,
                               Zev32f threshold) {
    kern::mapRows<false, 32>(kern::Plane<Zev32f>{dst, dstStep}, width, height, kern::ThresholdOp_32f<Greater>(threshold),
                             kern::Plane<const Zev32f>{src, srcStep});
}

#define ZEV_THRESHOLD_VAL(T, G, S) \
    template void ownThresholdValRows_avx2<T, G, S>(const T*, int, T*, int, int, int, T, T);
ZEV_THRESHOLD_VAL(Zev8u, false, false)
ZEV_THRESHOLD_VAL(Zev8u, true, false)
ZEV_THRESHOLD_VAL(Zev16u, false, false)
ZEV_THRESHOLD_VAL(Zev16u, true, false)
ZEV_THRESHOLD_VAL(Zev16u, false, true)
ZEV_THRESHOLD_VAL(Zev16u, true, true)
#undef ZEV_THRESHOLD_VAL
template void ownThresholdRows_32f_avx2<false>(const Zev32f*, int, Zev32f*, int, int, int, Zev32f);
template void ownThresholdRows_32f_avx2<true>(const Zev32f*, int, Zev32f*, int, int, int, Zev32f);

template void ownMinMaxEvery_avx2<Zev8u, false>(const Zev8u*, const Zev8u*, Zev8u*, int);
template void ownMinMaxEvery_avx2<Zev8u, true>(const Zev8u*, const Zev8u*, Zev8u*, int);
template void ownMinMaxEvery_avx2<Zev16u, false>(const Zev16u*, const Zev16u*, Zev16u*, int);
template void ownMinMaxEvery_avx2<Zev16u, true>(const Zev16u*, const Zev16u*, Zev16u*, int);
template void ownMinMaxEvery_avx2<Zev32f, false>(const Zev32f*, const Zev32f*, Zev32f*, int);
template void ownMinMaxEvery_avx2<Zev32f, true>(const Zev32f*, const Zev32f*, Zev32f*, int);
template void ownMinMaxEvery_avx2<Zev64f, false>(const Zev64f*, const Zev64f*, Zev64f*, int);
template void ownMinMaxEvery_avx2<Zev64f, true>(const Zev64f*, const Zev64f*, Zev64f*, int);

}  // namespace v8
