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

namespace {
// The widest set, except the 3x3 float steps: their three overlapping source
// loads split a cache line on almost every wide register, and the 16-byte
// registers measure faster there (Sobel 3x3 32f at 1920x1080: 744 us against
// 781 with 32-byte and 801 with 64-byte registers).
KernelSet chooseKernels() {
    KernelSet set = hasAvx512() ? fixedKernelsAvx512() : simd::hasAvx2() ? fixedKernelsAvx2() : fixedKernelsSsse3();
    set.owntabRowColumn_32f = fixedKernelsSsse3().owntabRowColumn_32f;
    return set;
}
}  // namespace

const KernelSet& fixedKernels() {
    static const KernelSet set = chooseKernels();
    return set;
}

}  // namespace v8::fixed
