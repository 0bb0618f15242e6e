#define ZEV_ISA avx2
#include "arith/kernels/accumulate_body.h"

namespace v8 {

template <class Op, class T, bool Masked>
void ownAccumulate_avx2(const AccumArgs<T>& a, int width, int height, bool useStream) {
    avx2::accumulate<__m256, Op, T, Masked>(a, width, height, useStream);
}

#define ZEV_ACCUM_AVX2(Op, T, M) template void ownAccumulate_avx2<Op, T, M>(const AccumArgs<T>&, int, int, bool);
ZEV_ACCUM_INSTANCES(ZEV_ACCUM_AVX2)

}  // namespace v8
