// Fixed-filter fused routines for 64-byte registers, reached only when the
// processor has AVX-512 (BW, DQ); same arithmetic as the floor, bit for bit.
#define FIXED_ISA avx512
#define FIXED_VI VecI16x32
#define FIXED_VF VecF32x16
#include "filter/kernels/fixed_kernels.h"

namespace v8::fixed {

const KernelSet& fixedKernelsAvx512() { return avx512::kernelSet(); }

}  // namespace v8::fixed
