#include <stdio.h>
#include <zevcv.h>

int main(void) {
    Zev8u a[4] = {10, 20, 30, 40}, b[4] = {40, 20, 0, 41}, d[4];
    ZeviSize roi = {4, 1};
    if (zeviAbsDiff_8u_C1R(a, 4, b, 4, d, 4, roi) != zevStsNoError || d[0] != 30 || d[3] != 1) return 1;
    printf("%s\n", zevcvGetLibVersion()->name);
    return 0;
}
