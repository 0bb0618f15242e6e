// Fixed-filter row and column tables for 16-byte registers (the floor).
#define FIXED_ISA ssse3
#define FIXED_VI VecI16x8
#define FIXED_VF VecF32x4
#include "filter/kernels/fixed_kernels.h"
#include "frame/kernels/simd.h"

namespace v8::fixed {

const KernelSet& fixedKernelsSsse3() { return ssse3::kernelSet(); }

bool hasAvx512() {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
}

const KernelSet& fixedKernels() {
    static const KernelSet& set = hasAvx512()         ? fixedKernelsAvx512()
                                  : simd::hasAvx2() ? fixedKernelsAvx2()
                                                    : fixedKernelsSsse3();
    return set;
}

}  // namespace v8::fixed
