// Sobel kernels of any odd size and derivative order: a row of Pascal's
// triangle grown from the right end, then differenced `order` times.
#include <cstdint>

#include "frame/check.h"
#include "zev_impl.h"

namespace v8 {
namespace {

// T computes in its own width: the 16-bit form wraps like the type does.
template <class T>
ZevStatus genSobelKernel(T* kernel, int kernelSize, int order, int sign) {
    ZevStatus st = Check()
                       .ptrs(kernel)
                       .that(kernelSize >= 1 && (kernelSize & 1) == 1, zevStsBadSize)
                       .that(order >= 0 && order < kernelSize, zevStsBadSize);
    if (st != zevStsNoError) return st;
    const int K = kernelSize;
    for (int i = 0; i < K; ++i) kernel[i] = T(0);
    kernel[K - 1] = T(1);
    // Pass p reaches one element further left than pass p-1.
    int p = 1;
    for (int n = 0; n < K - order - 1; ++n, ++p)
        for (int i = K - 1 - p; i < K - 1; ++i) kernel[i] = static_cast<T>(kernel[i] + kernel[i + 1]);
    for (int n = 0; n < order; ++n, ++p)
        for (int i = K - 1 - p; i < K - 1; ++i) kernel[i] = static_cast<T>(kernel[i] - kernel[i + 1]);
    if (sign < 0)
        for (int i = 0; i < K; ++i) kernel[i] = static_cast<T>(-kernel[i]);
    return zevStsNoError;
}

}  // namespace
}  // namespace v8

extern "C" ZevStatus ZEVFN(zeviGenSobelKernel_16s)(Zev16s* kernel, int kernelSize, int order, int sign) {
    return v8::genSobelKernel(kernel, kernelSize, order, sign);
}
extern "C" ZevStatus ZEVFN(zeviGenSobelKernel_32f)(Zev32f* kernel, int kernelSize, int order, int sign) {
    return v8::genSobelKernel(kernel, kernelSize, order, sign);
}
