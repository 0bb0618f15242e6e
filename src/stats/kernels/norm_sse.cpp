// The norm kernels on 16-byte registers (SSSE3): every member.
#define ZEV_ISA sse
#include "stats/kernels/norm_body.h"

namespace v8 {

template <class T, NormForm F, NormKind K, int Ch>
NormPart ownNormBand_V8(const NormSrc<T>& s, int rows) {
    return sse::band<T, F, K, Ch, __m128i>(s, rows);
}

#define ZEV_NORM_INST(T) ZEV_NORM_INST_F(ownNormBand_V8, T, 1) ZEV_NORM_INST_F(ownNormBand_V8, T, 3)
ZEV_NORM_INST(Zev8u)
ZEV_NORM_INST(Zev8s)
ZEV_NORM_INST(Zev16u)
ZEV_NORM_INST(Zev32f)

}  // namespace v8
