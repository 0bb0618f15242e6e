#define ZEV_ISA sse
#include "arith/kernels/accumulate_body.h"

namespace v8 {

int accumPrologue(const Zev32f* acc, int width) {
    std::uintptr_t at = reinterpret_cast<std::uintptr_t>(acc);
    if (at & 3) return width;
    int n = static_cast<int>(((16 - (at & 15)) & 15) >> 2);
    return n < width ? n : width;
}

template <class Op, class T, bool Masked>
void ownAccumulate_W7(const AccumArgs<T>& a, int width, int height, bool useStream) {
    sse::accumulate<__m128, Op, T, Masked>(a, width, height, useStream);
}

#define ZEV_ACCUM_W7(Op, T, M) template void ownAccumulate_W7<Op, T, M>(const AccumArgs<T>&, int, int, bool);
ZEV_ACCUM_INSTANCES(ZEV_ACCUM_W7)

}  // namespace v8
