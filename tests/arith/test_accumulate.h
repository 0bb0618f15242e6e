// The accumulator members as data: how to call each one, its operation, source
// type and mask form, and its row kernels for each instruction set.
#pragma once

#include <cstdint>
#include <type_traits>
#include <vector>

#include "arith/kernels/accumulate.h"
#include "zevcv.h"

namespace acc {

// Everything any member takes; members ignore what they do not have.
struct Call {
    const void* s1 = nullptr;
    int s1Step = 0;
    const void* s2 = nullptr;
    int s2Step = 0;
    const Zev8u* mask = nullptr;
    int maskStep = 0;
    Zev32f* d = nullptr;
    int dStep = 0;
    ZeviSize roi{0, 0};
    float alpha = 0.0f;
};

enum class Isa { Sse, Avx2 };

struct Geometry;

struct Member {
    const char* name;
    ZevStatus (*call)(const Call&);
    void (*kernel)(Isa, const Call&, bool useStream);
    int srcBytes;      // element size of the source
    bool twoSources;   // the product
    bool masked;
    bool interleaved;  // 16u sources: source multiples judged before the other bounds
    bool flatRows;     // vector blocks from the row start, whatever the alignment
    // Runs the exactness check of this member on one geometry (defined by the test).
    void (*exact)(const Member&, const Geometry&);
};

struct Geometry {
    int w, h;
    int srcOff, accOff, maskOff;  // origin offsets in elements
    int srcPad, accPad;           // step padding in elements
    float alpha;
    enum Path { Public, Kernel, KernelStream } path;
    Isa isa;
};

template <class Op, class T, bool M>
void runKernel(Isa isa, const Call& c, bool useStream) {
    v8::AccumArgs<T> a;
    a.src1 = static_cast<const T*>(c.s1), a.src1Step = c.s1Step;
    a.src2 = static_cast<const T*>(c.s2), a.src2Step = c.s2Step;
    a.mask = c.mask, a.maskStep = c.maskStep;
    a.acc = c.d, a.dst = c.d, a.accStep = a.dstStep = c.dStep;
    a.alpha = c.alpha;
    if (isa == Isa::Sse) v8::ownAccumulate_W7<Op, T, M>(a, c.roi.width, c.roi.height, useStream);
    else v8::ownAccumulate_avx2<Op, T, M>(a, c.roi.width, c.roi.height, useStream);
}

template <class Op, class T, bool M>
void exactCheck(const Member& m, const Geometry& g);

// Masked 32f members and the masked product and weighted step run their
// vector blocks from the row start; all others first step pixel by pixel up to
// the accumulator's first 16-byte boundary.
template <class Op, class T, bool M>
constexpr bool kBlocksFromRowStart =
    M && (std::is_same_v<T, Zev32f> || std::is_same_v<Op, v8::AccProduct> || std::is_same_v<Op, v8::AccWeighted>);

template <class Op, class T, bool M>
Member member(const char* name, ZevStatus (*call)(const Call&)) {
    return Member{name,
                  call,
                  &runKernel<Op, T, M>,
                  static_cast<int>(sizeof(T)),
                  std::is_same_v<Op, v8::AccProduct>,
                  M,
                  std::is_same_v<T, Zev16u>,
                  kBlocksFromRowStart<Op, T, M>,
                  &exactCheck<Op, T, M>};
}

// The 31 in-place members.
#define ZEV_T(c, T, i) static_cast<const T*>(c.s##i), c.s##i##Step
#define ZEV_ONE(Fn, T, Op)                                                                                   \
    member<v8::Op, T, false>(#Fn, [](const Call& c) { return Fn(ZEV_T(c, T, 1), c.d, c.dStep, c.roi); })
#define ZEV_ONE_M(Fn, T, Op)                                                                                        \
    member<v8::Op, T, true>(                                                                                        \
        #Fn, [](const Call& c) { return Fn(ZEV_T(c, T, 1), c.mask, c.maskStep, c.d, c.dStep, c.roi); })
#define ZEV_TWO(Fn, T)                                                                                     \
    member<v8::AccProduct, T, false>(                                                                      \
        #Fn, [](const Call& c) { return Fn(ZEV_T(c, T, 1), ZEV_T(c, T, 2), c.d, c.dStep, c.roi); })
#define ZEV_TWO_M(Fn, T)                                                                                             \
    member<v8::AccProduct, T, true>(#Fn, [](const Call& c) {                                                         \
        return Fn(ZEV_T(c, T, 1), ZEV_T(c, T, 2), c.mask, c.maskStep, c.d, c.dStep, c.roi);                         \
    })
#define ZEV_W(Fn, T)                                                                                               \
    member<v8::AccWeighted, T, false>(                                                                             \
        #Fn, [](const Call& c) { return Fn(ZEV_T(c, T, 1), c.d, c.dStep, c.roi, c.alpha); })
#define ZEV_W_M(Fn, T)                                                                                              \
    member<v8::AccWeighted, T, true>(                                                                               \
        #Fn, [](const Call& c) { return Fn(ZEV_T(c, T, 1), c.mask, c.maskStep, c.d, c.dStep, c.roi, c.alpha); })

inline std::vector<Member> allMembers() {
    return {
        ZEV_ONE(zeviAdd_8u32f_C1IR, Zev8u, AccAdd),
        ZEV_ONE(zeviAdd_8s32f_C1IR, Zev8s, AccAdd),
        ZEV_ONE(zeviAdd_16u32f_C1IR, Zev16u, AccAdd),
        ZEV_ONE_M(zeviAdd_8u32f_C1IMR, Zev8u, AccAdd),
        ZEV_ONE_M(zeviAdd_8s32f_C1IMR, Zev8s, AccAdd),
        ZEV_ONE_M(zeviAdd_16u32f_C1IMR, Zev16u, AccAdd),
        ZEV_ONE_M(zeviAdd_32f_C1IMR, Zev32f, AccAdd),
        ZEV_ONE(zeviAddSquare_8u32f_C1IR, Zev8u, AccSquare),
        ZEV_ONE(zeviAddSquare_8s32f_C1IR, Zev8s, AccSquare),
        ZEV_ONE(zeviAddSquare_16u32f_C1IR, Zev16u, AccSquare),
        ZEV_ONE(zeviAddSquare_32f_C1IR, Zev32f, AccSquare),
        ZEV_ONE_M(zeviAddSquare_8u32f_C1IMR, Zev8u, AccSquare),
        ZEV_ONE_M(zeviAddSquare_8s32f_C1IMR, Zev8s, AccSquare),
        ZEV_ONE_M(zeviAddSquare_16u32f_C1IMR, Zev16u, AccSquare),
        ZEV_ONE_M(zeviAddSquare_32f_C1IMR, Zev32f, AccSquare),
        ZEV_TWO(zeviAddProduct_8u32f_C1IR, Zev8u),
        ZEV_TWO(zeviAddProduct_8s32f_C1IR, Zev8s),
        ZEV_TWO(zeviAddProduct_16u32f_C1IR, Zev16u),
        ZEV_TWO(zeviAddProduct_32f_C1IR, Zev32f),
        ZEV_TWO_M(zeviAddProduct_8u32f_C1IMR, Zev8u),
        ZEV_TWO_M(zeviAddProduct_8s32f_C1IMR, Zev8s),
        ZEV_TWO_M(zeviAddProduct_16u32f_C1IMR, Zev16u),
        ZEV_TWO_M(zeviAddProduct_32f_C1IMR, Zev32f),
        ZEV_W(zeviAddWeighted_8u32f_C1IR, Zev8u),
        ZEV_W(zeviAddWeighted_8s32f_C1IR, Zev8s),
        ZEV_W(zeviAddWeighted_16u32f_C1IR, Zev16u),
        ZEV_W(zeviAddWeighted_32f_C1IR, Zev32f),
        ZEV_W_M(zeviAddWeighted_8u32f_C1IMR, Zev8u),
        ZEV_W_M(zeviAddWeighted_8s32f_C1IMR, Zev8s),
        ZEV_W_M(zeviAddWeighted_16u32f_C1IMR, Zev16u),
        ZEV_W_M(zeviAddWeighted_32f_C1IMR, Zev32f),
    };
}

#undef ZEV_T
#undef ZEV_ONE
#undef ZEV_ONE_M
#undef ZEV_TWO
#undef ZEV_TWO_M
#undef ZEV_W
#undef ZEV_W_M

}  // namespace acc
