// Sorting and the small helpers of the image kernels.
#include <array>
#include <bit>
#include <cstdint>

#include "frame/check.h"
#include "frame/kernels/sort.h"
#include "frame/prims.h"

namespace v8 {

ZevStatus zevsSortAscend_64f_I(Zev64f* srcDst, int len) {
    ZevStatus st = Check().ptrs(srcDst).length(len);
    if (st != zevStsNoError) return st;
    if (len > 1) kern::sortAscend(srcDst, len);
    return zevStsNoError;
}

namespace {

// 2^e for e from -150 to 128, one entry per exponent: normal numbers from
// -126 up, denormals down to -149, then 0; 2^128 is beyond the range, +inf.
constexpr int kScaleMinExp = -150, kScaleMaxExp = 128;
constexpr std::uint32_t powerOfTwoBits(int e) {
    if (e >= 128) return 0x7f800000u;
    if (e >= -126) return static_cast<std::uint32_t>(e + 127) << 23;
    if (e >= -149) return 1u << (e + 149);
    return 0;
}
constexpr auto kScaleTable = [] {
    std::array<std::uint32_t, kScaleMaxExp - kScaleMinExp + 1> t{};
    for (int e = kScaleMinExp; e <= kScaleMaxExp; ++e) t[e - kScaleMinExp] = powerOfTwoBits(e);
    return t;
}();

}  // namespace

Zev32f owncvGetScale_32s32f(int scaleFactor) {
    std::int64_t e = -static_cast<std::int64_t>(scaleFactor);
    e = e < kScaleMinExp ? kScaleMinExp : (e > kScaleMaxExp ? kScaleMaxExp : e);
    return std::bit_cast<Zev32f>(kScaleTable[static_cast<std::size_t>(e - kScaleMinExp)]);
}

int owncvRowMatrAlErr(const void* const* rows, int count) {
    std::uintptr_t bits = 0;
    for (int i = 0; i < count; ++i) bits |= reinterpret_cast<std::uintptr_t>(rows[i]);
    return (bits & 15) != 0 ? 1 : 0;
}

}  // namespace v8
