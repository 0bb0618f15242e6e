/* The public header compiles as plain C, and the library is callable from C. */
#include "zevcv.h"

int zev_c_smoke(void) {
    Zev8u a[6] = {1, 2, 3, 250, 0, 9}, b[6] = {3, 2, 1, 5, 255, 9}, d[6] = {0};
    ZeviSize roi = {3, 2};
    const ZevLibraryVersion* v = zevcvGetLibVersion();
    if (!v || v->major != 7) return 1;
    if (zeviAbsDiff_8u_C1R(a, 3, b, 3, d, 3, roi) != zevStsNoError) return 2;
    if (d[0] != 2 || d[1] != 0 || d[3] != 245 || d[4] != 255 || d[5] != 0) return 3;
    if (zeviAbsDiff_8u_C1R(a, 2, b, 3, d, 3, roi) != zevStsBadStep) return 4;
    return 0;
}
