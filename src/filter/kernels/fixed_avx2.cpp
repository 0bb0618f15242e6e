// Fixed-filter row and column tables for 32-byte registers, reached only when
// the processor has AVX2; same arithmetic as the floor, bit for bit.
#define FIXED_ISA avx2
#define FIXED_VI VecI16x16
#define FIXED_VF VecF32x8
#include "filter/kernels/fixed_kernels.h"

namespace v8::fixed {

const KernelSet& fixedKernelsAvx2() { return avx2::kernelSet(); }

}  // namespace v8::fixed
