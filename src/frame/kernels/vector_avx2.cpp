#include "frame/kernels/elementwise_ops.h"
#include "frame/kernels/vector_kernels.h"

namespace v8 {

template <class T, bool Max>
void ownMinMaxEvery_avx2(const T* src1, const T* src2, T* dst, int len) {
    kern::mapRow<false, 32>(dst, len, kern::MinMaxEveryOp<T, Max>{}, src1, src2);
}
void ownSub_32f_avx2(const Zev32f* src1, const Zev32f* src2, Zev32f* dst, int len) {
    kern::mapRow<false, 32>(dst, len, kern::SubOp_32f{}, src1, src2);
}

template void ownMinMaxEvery_avx2<Zev8u, false>(const Zev8u*, const Zev8u*, Zev8u*, int);
template void ownMinMaxEvery_avx2<Zev8u, true>(const Zev8u*, const Zev8u*, Zev8u*, int);
template void ownMinMaxEvery_avx2<Zev16u, false>(const Zev16u*, const Zev16u*, Zev16u*, int);
template void ownMinMaxEvery_avx2<Zev16u, true>(const Zev16u*, const Zev16u*, Zev16u*, int);
template void ownMinMaxEvery_avx2<Zev32f, false>(const Zev32f*, const Zev32f*, Zev32f*, int);
template void ownMinMaxEvery_avx2<Zev32f, true>(const Zev32f*, const Zev32f*, Zev32f*, int);
template void ownMinMaxEvery_avx2<Zev64f, false>(const Zev64f*, const Zev64f*, Zev64f*, int);
template void ownMinMaxEvery_avx2<Zev64f, true>(const Zev64f*, const Zev64f*, Zev64f*, int);

}  // namespace v8
