// The norm kernels on 32-byte registers (AVX2), for one-channel integer images.
// Integer accumulations are exact, so the results are those of the SSSE3 set.
#define ZEV_ISA avx2
#include "stats/kernels/norm_body.h"

namespace v8 {

template <class T, NormForm F, NormKind K, int Ch>
NormPart ownNormBand_avx2(const NormSrc<T>& s, int rows) {
    return avx2::band<T, F, K, Ch, __m256i>(s, rows);
}

ZEV_NORM_INST_F(ownNormBand_avx2, Zev8u, 1)
ZEV_NORM_INST_F(ownNormBand_avx2, Zev8s, 1)
ZEV_NORM_INST_F(ownNormBand_avx2, Zev16u, 1)

}  // namespace v8
