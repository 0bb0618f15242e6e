#define ZEV_ISA avx2
#include "stats/kernels/minmax_body.h"

namespace v8 {

template <class T, bool Masked>
MinMaxStage<T> ownMinMaxIndx_C1_avx2_1(const T* src, int srcStep, const Zev8u* mask, int maskStep, int width,
                                       int height) {
    return avx2::stage<32, T, stat::C1, Masked>(src, srcStep, mask, maskStep, width, height);
}

template MinMaxStage<Zev8u> ownMinMaxIndx_C1_avx2_1<Zev8u, false>(const Zev8u*, int, const Zev8u*, int, int, int);
template MinMaxStage<Zev8u> ownMinMaxIndx_C1_avx2_1<Zev8u, true>(const Zev8u*, int, const Zev8u*, int, int, int);
template MinMaxStage<Zev32f> ownMinMaxIndx_C1_avx2_1<Zev32f, false>(const Zev32f*, int, const Zev8u*, int, int, int);
template MinMaxStage<Zev32f> ownMinMaxIndx_C1_avx2_1<Zev32f, true>(const Zev32f*, int, const Zev8u*, int, int, int);

}  // namespace v8
