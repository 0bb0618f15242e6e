// Masked norms of an image, of a difference of two images, and of that difference
// relative to the second image: checks, the choice between one serial pass and
// row bands with per-thread slots, and the final formula.
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/bands.h"
#include "frame/check.h"
#include "frame/core.h"
#include "frame/kernels/simd.h"
#include "stats/kernels/norm.h"
#include "zev_impl.h"

namespace v8 {
namespace {

// When a member runs in row bands. n = width * height (signed 32-bit), M = the
// thread budget; "Omp" rules also need more than one core.
enum class Par {
    Never,
    N19,          // n >= M << 19
    N17,          // n >= M << 17
    N17Omp,       // n >= M << 17 and runomp()
    N15OmpOrN17,  // n >= M << 15 and runomp(), or n >= M << 17
    N15Omp,       // n >= M << 15 and runomp()
    N15,          // n >= M << 15
};

bool goParallel(Par rule, ZeviSize roi) {
    if (rule == Par::Never) return false;
    const std::int64_t n = static_cast<std::int32_t>(std::int64_t{roi.width} * roi.height);
    const std::int64_t M = owncvGetMaxNumThreads();
    const bool n15 = n >= (M << 15), n17 = n >= (M << 17), n19 = n >= (M << 19);
    switch (rule) {
        case Par::N19: return n19;
        case Par::N17: return n17;
        case Par::N17Omp: return n17 && runomp() != 0;
        case Par::N15OmpOrN17: return (n15 && runomp() != 0) || n17;
        case Par::N15Omp: return n15 && runomp() != 0;
        case Par::N15: return n15;
        default: return false;
    }
}

// Band sums of floats are combined in a fixed shape: below eight slots from the
// first up; from eight on, eight running sums over blocks of eight slots, folded
// as ((s0 + s1) + (s2 + s3)) on the even and on the odd lanes, then the two
// lanes, then the remaining slots in order.
double sumFloatSlots(const NormPart* s, int n, double NormPart::*f) {
    double r = 0.0;
    int i = 0;
    if (n >= 8) {
        double acc[8] = {};
        for (; i + 8 <= n; i += 8)
            for (int k = 0; k < 8; ++k) acc[k] += s[i + k].*f;
        double even = (acc[0] + acc[2]) + (acc[4] + acc[6]);
        double odd = (acc[1] + acc[3]) + (acc[5] + acc[7]);
        r = even + odd;
    }
    for (; i < n; ++i) r += s[i].*f;
    return r;
}

template <class T, NormKind K>
NormPart combine(const NormPart* slots, int n) {
    NormPart r{0.0, 0.0};
    if constexpr (K == NormKind::Inf) {
        for (int i = 0; i < n; ++i) {
            r.p = slots[i].p > r.p ? slots[i].p : r.p;
            r.q = slots[i].q > r.q ? slots[i].q : r.q;
        }
    } else if constexpr (std::is_same_v<T, Zev32f>) {
        r.p = sumFloatSlots(slots, n, &NormPart::p);
        r.q = sumFloatSlots(slots, n, &NormPart::q);
    } else {
        for (int i = 0; i < n; ++i) {
            r.p += slots[i].p;
            r.q += slots[i].q;
        }
    }
    return r;
}

template <class T, NormForm F, NormKind K, int Ch>
NormPart kernel(const NormSrc<T>& s, int rows, bool avx2) {
    if constexpr (kNormAvx2<T, Ch>)
        if (avx2) return ownNormBand_avx2<T, F, K, Ch>(s, rows);
    return ownNormBand_V8<T, F, K, Ch>(s, rows);
}

template <class T, NormForm F, NormKind K, int Ch>
NormPart accumulate(Par rule, const NormSrc<T>& s, ZeviSize roi) {
    const bool avx2 = kNormAvx2<T, Ch> && simd::hasAvx2();
    if (!goParallel(rule, roi)) return kernel<T, F, K, Ch>(s, roi.height, avx2);
    NormPart total{0.0, 0.0};
    forEachBandReduce<NormPart>(
        ownGetNumThreads(), roi.height, NormPart{0.0, 0.0},
        [&](const Band& b, NormPart& slot) {
            NormSrc<T> bs = s;
            bs.a = b.rowPtr(s.a, s.aStep);
            if (s.b) bs.b = b.rowPtr(s.b, s.bStep);
            bs.mask = b.rowPtr(s.mask, s.maskStep);
            slot = kernel<T, F, K, Ch>(bs, b.rows, avx2);
        },
        [&](const NormPart* slots, int n) { total = combine<T, K>(slots, n); });
    return total;
}

// A relative norm with a zero denominator still stores a value: NaN for 0 / 0,
// otherwise an infinity of the numerator's sign (a NaN numerator counts as negative).
ZevStatus zeroDenominator(double p, Zev64f* value) {
    if (p == 0.0) *value = std::bit_cast<double>(std::uint64_t{0xFFF8000000000000ull});
    else if (p > 0.0) *value = std::numeric_limits<double>::infinity();
    else *value = -std::numeric_limits<double>::infinity();
    return zevStsZeroDenominator;
}

template <NormForm F, NormKind K>
ZevStatus finish(NormPart t, Zev64f* value) {
    if constexpr (F == NormForm::Rel) {
        if (t.q == 0.0) return zeroDenominator(t.p, value);
        t.p /= t.q;
    }
    *value = K == NormKind::L2 ? std::sqrt(t.p) : t.p;
    return zevStsNoError;
}

template <int Ch>
bool coiValid(int coi) {
    return Ch == 1 || static_cast<unsigned>(coi - 1) <= 2u;
}

template <class T, NormKind K, int Ch>
ZevStatus normOne(Par rule, const T* src, int srcStep, const Zev8u* mask, int maskStep, ZeviSize roi, int coi,
                  Zev64f* value) {
    ZevStatus st = Check()
                       .ptrs(src, mask, value)
                       .roi(roi)
                       .step(srcStep, rowBytes<T>(roi.width, Ch))
                       .multiple(sizeof(T), srcStep)
                       .step(maskStep, rowBytes<Zev8u>(roi.width))
                       .that(coiValid<Ch>(coi), zevStsBadCoi);
    if (st != zevStsNoError) return st;
    NormSrc<T> s{src, srcStep, nullptr, 0, mask, maskStep, roi.width, Ch == 3 ? coi - 1 : 0};
    return finish<NormForm::Norm, K>(accumulate<T, NormForm::Norm, K, Ch>(rule, s, roi), value);
}

template <class T, NormForm F, NormKind K, int Ch>
ZevStatus normTwo(Par rule, const T* src1, int src1Step, const T* src2, int src2Step, const Zev8u* mask,
                  int maskStep, ZeviSize roi, int coi, Zev64f* value) {
    const std::int64_t row = rowBytes<T>(roi.width, Ch);
    ZevStatus st = Check()
                       .ptrs(src1, src2, mask, value)
                       .roi(roi)
                       .step(src1Step, row)
                       .step(src2Step, row)
                       .step(maskStep, rowBytes<Zev8u>(roi.width))
                       .multiple(sizeof(T), src1Step, src2Step)
                       .that(coiValid<Ch>(coi), zevStsBadCoi);
    if (st != zevStsNoError) return st;
    NormSrc<T> s{src1, src1Step, src2, src2Step, mask, maskStep, roi.width, Ch == 3 ? coi - 1 : 0};
    return finish<F, K>(accumulate<T, F, K, Ch>(rule, s, roi), value);
}

}  // namespace
}  // namespace v8

using namespace v8;

// The exported members: name, element type and when each runs in bands.
#define ZEV_NORM_C1(Kind, Tag, T, Rule)                                                                     \
    ZevStatus ZEVFN(zeviNorm_##Kind##_##Tag##_C1MR)(const T* src, int srcStep, const Zev8u* mask,          \
                                                     int maskStep, ZeviSize roiSize, Zev64f* value) {       \
        return normOne<T, NormKind::Kind, 1>(Par::Rule, src, srcStep, mask, maskStep, roiSize, 1, value);   \
    }
#define ZEV_NORM_C3(Kind, Tag, T, Rule)                                                                     \
    ZevStatus ZEVFN(zeviNorm_##Kind##_##Tag##_C3CMR)(const T* src, int srcStep, const Zev8u* mask,         \
                                                      int maskStep, ZeviSize roiSize, int coi, Zev64f* value) { \
        return normOne<T, NormKind::Kind, 3>(Par::Rule, src, srcStep, mask, maskStep, roiSize, coi, value); \
    }
#define ZEV_NORM2_C1(Form, Kind, Tag, T, Rule)                                                              \
    ZevStatus ZEVFN(zeviNorm##Form##_##Kind##_##Tag##_C1MR)(const T* src1, int src1Step, const T* src2,    \
                                                             int src2Step, const Zev8u* mask, int maskStep, \
                                                             ZeviSize roiSize, Zev64f* value) {             \
        return normTwo<T, NormForm::Form, NormKind::Kind, 1>(Par::Rule, src1, src1Step, src2, src2Step, mask, \
                                                             maskStep, roiSize, 1, value);                  \
    }
#define ZEV_NORM2_C3(Form, Kind, Tag, T, Rule)                                                              \
    ZevStatus ZEVFN(zeviNorm##Form##_##Kind##_##Tag##_C3CMR)(const T* src1, int src1Step, const T* src2,   \
                                                              int src2Step, const Zev8u* mask, int maskStep, \
                                                              ZeviSize roiSize, int coi, Zev64f* value) {   \
        return normTwo<T, NormForm::Form, NormKind::Kind, 3>(Par::Rule, src1, src1Step, src2, src2Step, mask, \
                                                             maskStep, roiSize, coi, value);                \
    }

extern "C" {

ZEV_NORM_C1(Inf, 8u, Zev8u, N19)
ZEV_NORM_C1(Inf, 8s, Zev8s, N19)
ZEV_NORM_C1(Inf, 16u, Zev16u, N19)
ZEV_NORM_C1(Inf, 32f, Zev32f, N17)
ZEV_NORM_C1(L1, 8u, Zev8u, N17Omp)
ZEV_NORM_C1(L1, 8s, Zev8s, N17Omp)
ZEV_NORM_C1(L1, 16u, Zev16u, N17)
ZEV_NORM_C1(L1, 32f, Zev32f, N17)
ZEV_NORM_C1(L2, 8u, Zev8u, N17Omp)
ZEV_NORM_C1(L2, 8s, Zev8s, N17Omp)
ZEV_NORM_C1(L2, 16u, Zev16u, N17)
ZEV_NORM_C1(L2, 32f, Zev32f, N17)

ZEV_NORM_C3(Inf, 8u, Zev8u, N17)
ZEV_NORM_C3(Inf, 8s, Zev8s, N17)
ZEV_NORM_C3(Inf, 16u, Zev16u, N17)
ZEV_NORM_C3(Inf, 32f, Zev32f, N15)
ZEV_NORM_C3(L1, 8u, Zev8u, N17)
ZEV_NORM_C3(L1, 8s, Zev8s, N17)
ZEV_NORM_C3(L1, 16u, Zev16u, N17)
ZEV_NORM_C3(L1, 32f, Zev32f, N17)
ZEV_NORM_C3(L2, 8u, Zev8u, N15OmpOrN17)
ZEV_NORM_C3(L2, 8s, Zev8s, N15OmpOrN17)
ZEV_NORM_C3(L2, 16u, Zev16u, N15OmpOrN17)
ZEV_NORM_C3(L2, 32f, Zev32f, N15OmpOrN17)

ZEV_NORM2_C1(Diff, Inf, 8u, Zev8u, Never)
ZEV_NORM2_C1(Diff, Inf, 8s, Zev8s, Never)
ZEV_NORM2_C1(Diff, Inf, 16u, Zev16u, Never)
ZEV_NORM2_C1(Diff, Inf, 32f, Zev32f, Never)
ZEV_NORM2_C1(Diff, L1, 8u, Zev8u, N17Omp)
ZEV_NORM2_C1(Diff, L1, 8s, Zev8s, N17Omp)
ZEV_NORM2_C1(Diff, L1, 16u, Zev16u, N17)
ZEV_NORM2_C1(Diff, L1, 32f, Zev32f, Never)
ZEV_NORM2_C1(Diff, L2, 8u, Zev8u, N17Omp)
ZEV_NORM2_C1(Diff, L2, 8s, Zev8s, N17Omp)
ZEV_NORM2_C1(Diff, L2, 16u, Zev16u, N17)
ZEV_NORM2_C1(Diff, L2, 32f, Zev32f, Never)

ZEV_NORM2_C3(Diff, Inf, 8u, Zev8u, Never)
ZEV_NORM2_C3(Diff, Inf, 8s, Zev8s, Never)
ZEV_NORM2_C3(Diff, Inf, 16u, Zev16u, Never)
ZEV_NORM2_C3(Diff, Inf, 32f, Zev32f, Never)
ZEV_NORM2_C3(Diff, L1, 8u, Zev8u, N17)
ZEV_NORM2_C3(Diff, L1, 8s, Zev8s, N15Omp)
ZEV_NORM2_C3(Diff, L1, 16u, Zev16u, N15Omp)
ZEV_NORM2_C3(Diff, L1, 32f, Zev32f, Never)
ZEV_NORM2_C3(Diff, L2, 8u, Zev8u, N17)
ZEV_NORM2_C3(Diff, L2, 8s, Zev8s, N17)
ZEV_NORM2_C3(Diff, L2, 16u, Zev16u, N15OmpOrN17)
ZEV_NORM2_C3(Diff, L2, 32f, Zev32f, Never)

ZEV_NORM2_C1(Rel, Inf, 8u, Zev8u, N17Omp)
ZEV_NORM2_C1(Rel, Inf, 8s, Zev8s, N17Omp)
ZEV_NORM2_C1(Rel, Inf, 16u, Zev16u, N17Omp)
ZEV_NORM2_C1(Rel, Inf, 32f, Zev32f, N15)
ZEV_NORM2_C1(Rel, L1, 8u, Zev8u, Never)
ZEV_NORM2_C1(Rel, L1, 8s, Zev8s, N17Omp)
ZEV_NORM2_C1(Rel, L1, 16u, Zev16u, N15OmpOrN17)
ZEV_NORM2_C1(Rel, L1, 32f, Zev32f, Never)
ZEV_NORM2_C1(Rel, L2, 8u, Zev8u, N17)
ZEV_NORM2_C1(Rel, L2, 8s, Zev8s, N17)
ZEV_NORM2_C1(Rel, L2, 16u, Zev16u, N15OmpOrN17)
ZEV_NORM2_C1(Rel, L2, 32f, Zev32f, Never)

ZEV_NORM2_C3(Rel, Inf, 8u, Zev8u, N15OmpOrN17)
ZEV_NORM2_C3(Rel, Inf, 8s, Zev8s, N15OmpOrN17)
ZEV_NORM2_C3(Rel, Inf, 16u, Zev16u, N15)
ZEV_NORM2_C3(Rel, Inf, 32f, Zev32f, N15)
ZEV_NORM2_C3(Rel, L1, 8u, Zev8u, N15OmpOrN17)
ZEV_NORM2_C3(Rel, L1, 8s, Zev8s, N15OmpOrN17)
ZEV_NORM2_C3(Rel, L1, 16u, Zev16u, N15)
ZEV_NORM2_C3(Rel, L1, 32f, Zev32f, Never)
ZEV_NORM2_C3(Rel, L2, 8u, Zev8u, N15OmpOrN17)
ZEV_NORM2_C3(Rel, L2, 8s, Zev8s, N15OmpOrN17)
ZEV_NORM2_C3(Rel, L2, 16u, Zev16u, N15)
ZEV_NORM2_C3(Rel, L2, 32f, Zev32f, Never)

}  // extern "C"
