#define ZEV_ISA avx2
#include "stats/kernels/mean_int_body.h"

namespace v8 {

template <bool Masked>
IntSums ownSumSq_8u_C1_avx2(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height) {
    return avx2::sumSq8u<32, stat::C1, Masked>(src, srcStep, mask, maskStep, width, height);
}

template IntSums ownSumSq_8u_C1_avx2<false>(const Zev8u*, int, const Zev8u*, int, int, int);
template IntSums ownSumSq_8u_C1_avx2<true>(const Zev8u*, int, const Zev8u*, int, int, int);

}  // namespace v8
