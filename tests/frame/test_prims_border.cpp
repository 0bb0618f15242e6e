// Border copies against a reference that reads, for each destination pixel,
// the source pixel it stands for; guard bytes around the destination.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/guarded.h"
#include "frame/prims.h"

namespace {

using zt::Image;

struct Geometry {
    int srcW, srcH, dstW, dstH, top, left;
};

// Shapes: no border, borders on one side only, all sides, single rows and columns.
const Geometry kShapes[] = {
    {5, 4, 5, 4, 0, 0},   {5, 4, 9, 4, 0, 4},   {5, 4, 5, 9, 5, 0},  {1, 1, 7, 6, 3, 2},
    {17, 3, 40, 11, 4, 9}, {33, 2, 35, 5, 1, 1}, {1, 9, 20, 9, 0, 19}, {12, 1, 12, 8, 7, 0},
};

// The source pixel that destination pixel (x, y) repeats.
int clampIndex(int v, int lo, int n) { return std::clamp(v - lo, 0, n - 1); }

template <class T, int C>
using ReplicateR = ZevStatus (*)(const T*, int, ZeviSize, T*, int, ZeviSize, int, int);
template <class T, int C>
using ReplicateIR = ZevStatus (*)(T*, int, ZeviSize, ZeviSize, int, int);

template <class T, int C>
void expectReplicated(const Image<T>& dst, const std::vector<T>& srcPixels, const Geometry& g) {
    for (int y = 0; y < g.dstH; ++y)
        for (int x = 0; x < g.dstW; ++x)
            for (int c = 0; c < C; ++c) {
                int sx = clampIndex(x, g.left, g.srcW), sy = clampIndex(y, g.top, g.srcH);
                ASSERT_EQ(dst.at(x, y, c), srcPixels[(static_cast<std::size_t>(sy) * g.srcW + sx) * C + c])
                    << "at " << x << "," << y << " channel " << c;
            }
}

// Writes the source into the destination at its offsets; returns where it starts.
template <class T, int C>
T* placeSource(Image<T>& dst, const Image<T>& src, const Geometry& g) {
    for (int y = 0; y < g.srcH; ++y)
        for (int x = 0; x < g.srcW; ++x)
            for (int c = 0; c < C; ++c) dst.at(x + g.left, y + g.top, c) = src.at(x, y, c);
    return &dst.at(g.left, g.top);
}

template <class T, int C>
void checkReplicate(ReplicateR<T, C> fn, ReplicateIR<T, C> fnI) {
    zt::Rng rng(41);
    for (const Geometry& g : kShapes) {
        for (int off : {0, 1, 3}) {
            SCOPED_TRACE(::testing::Message() << g.srcW << "x" << g.srcH << " in " << g.dstW << "x" << g.dstH
                                              << " at " << g.left << "," << g.top << " offset " << off);
            Image<T> src(g.srcW, g.srcH, C, 2, off), dst(g.dstW, g.dstH, C, 3, (off + 2) % 8);
            src.fill([&] { return static_cast<T>(rng.next()); });
            ASSERT_EQ(fn(src.ptr(), src.step(), src.size(), dst.ptr(), dst.step(), dst.size(), g.top, g.left),
                      zevStsNoError);
            expectReplicated<T, C>(dst, src.pixels(), g);
            ASSERT_TRUE(dst.guardsIntact());

            // In place: the source already sits in the destination; its pointer is given.
            Image<T> both(g.dstW, g.dstH, C, 1, off);
            T* inner = placeSource<T, C>(both, src, g);
            ASSERT_EQ(fnI(inner, both.step(), src.size(), both.size(), g.top, g.left), zevStsNoError);
            expectReplicated<T, C>(both, src.pixels(), g);
            ASSERT_TRUE(both.guardsIntact());

            // The R form given the source in its place does the same.
            Image<T> again(g.dstW, g.dstH, C, 1, off);
            T* at = placeSource<T, C>(again, src, g);
            ASSERT_EQ(fn(at, again.step(), src.size(), again.ptr(), again.step(), again.size(), g.top, g.left),
                      zevStsNoError);
            expectReplicated<T, C>(again, src.pixels(), g);
            ASSERT_TRUE(again.guardsIntact());
        }
    }
}

TEST(PrimsBorder, Replicate8u) {
    checkReplicate<Zev8u, 1>(v8::zeviCopyReplicateBorder_8u_C1R, v8::zeviCopyReplicateBorder_8u_C1IR);
    checkReplicate<Zev8u, 3>(v8::zeviCopyReplicateBorder_8u_C3R, v8::zeviCopyReplicateBorder_8u_C3IR);
    checkReplicate<Zev8u, 4>(v8::zeviCopyReplicateBorder_8u_C4R, v8::zeviCopyReplicateBorder_8u_C4IR);
}

TEST(PrimsBorder, Replicate32s) {
    checkReplicate<Zev32s, 1>(v8::zeviCopyReplicateBorder_32s_C1R, v8::zeviCopyReplicateBorder_32s_C1IR);
    checkReplicate<Zev32s, 3>(v8::zeviCopyReplicateBorder_32s_C3R, v8::zeviCopyReplicateBorder_32s_C3IR);
    checkReplicate<Zev32s, 4>(v8::zeviCopyReplicateBorder_32s_C4R, v8::zeviCopyReplicateBorder_32s_C4IR);
}

// A source that overlaps its destination (the region moved within its own
// buffer) is read before it is overwritten.
TEST(PrimsBorder, ReplicateFromOverlappingSource) {
    const Geometry g{6, 5, 10, 9, 3, 2};
    Image<Zev8u> buf(g.dstW, g.dstH, 1, 2, 0);
    zt::Rng rng(43);
    buf.fill([&] { return static_cast<Zev8u>(rng.next()); });
    std::vector<Zev8u> srcPixels;
    for (int y = 0; y < g.srcH; ++y)
        for (int x = 0; x < g.srcW; ++x) srcPixels.push_back(buf.at(x, y));
    ASSERT_EQ(v8::zeviCopyReplicateBorder_8u_C1R(buf.ptr(), buf.step(), ZeviSize{g.srcW, g.srcH}, buf.ptr(),
                                                 buf.step(), buf.size(), g.top, g.left),
              zevStsNoError);
    expectReplicated<Zev8u, 1>(buf, srcPixels, g);
    ASSERT_TRUE(buf.guardsIntact());
}

template <class T>
using ConstFn = ZevStatus (*)(const T*, int, ZeviSize, T*, int, ZeviSize, int, int, T);

template <class T>
void checkConst(ConstFn<T> fn, T value) {
    zt::Rng rng(47);
    for (const Geometry& g : kShapes)
        for (int off : {0, 1}) {
            Image<T> src(g.srcW, g.srcH, 1, 1, off), dst(g.dstW, g.dstH, 1, 2, 1 - off);
            src.fill([&] { return static_cast<T>(rng.next()); });
            ASSERT_EQ(fn(src.ptr(), src.step(), src.size(), dst.ptr(), dst.step(), dst.size(), g.top, g.left, value),
                      zevStsNoError);
            for (int y = 0; y < g.dstH; ++y)
                for (int x = 0; x < g.dstW; ++x) {
                    bool inside = x >= g.left && x < g.left + g.srcW && y >= g.top && y < g.top + g.srcH;
                    ASSERT_EQ(dst.at(x, y), inside ? src.at(x - g.left, y - g.top) : value) << x << "," << y;
                }
            ASSERT_TRUE(dst.guardsIntact());
        }
}

TEST(PrimsBorder, ConstantValue) {
    checkConst<Zev8u>(v8::zeviCopyConstBorder_8u_C1R, 0xc3);
    checkConst<Zev16s>(v8::zeviCopyConstBorder_16s_C1R, -12345);
    checkConst<Zev16u>(v8::zeviCopyConstBorder_16u_C1R, 54321);
}

// Checks: pointers; steps above 0; then every size rule as zevStsBadSize.
struct BorderFault {
    std::string name;
    bool nullSrc, nullDst;
    int srcStep, dstStep;
    Geometry g;
    ZevStatus want;
};

class BorderChecks : public ::testing::TestWithParam<BorderFault> {};

TEST_P(BorderChecks, FirstFaultDecidesAndNothingIsWritten) {
    const auto& f = GetParam();
    Image<Zev8u> src(8, 8), dst(16, 16);
    dst.snapshot();
    const Zev8u* s = f.nullSrc ? nullptr : src.ptr();
    Zev8u* d = f.nullDst ? nullptr : dst.ptr();
    const ZeviSize ss{f.g.srcW, f.g.srcH}, ds{f.g.dstW, f.g.dstH};
    EXPECT_EQ(v8::zeviCopyReplicateBorder_8u_C1R(s, f.srcStep, ss, d, f.dstStep, ds, f.g.top, f.g.left), f.want);
    EXPECT_EQ(v8::zeviCopyConstBorder_8u_C1R(s, f.srcStep, ss, d, f.dstStep, ds, f.g.top, f.g.left, 9), f.want);
    if (!f.nullSrc && f.srcStep > 0) {
        // The in-place form judges its one pointer and step the same way.
        EXPECT_EQ(v8::zeviCopyReplicateBorder_8u_C1IR(f.nullDst ? nullptr : &dst.at(f.g.left > 0 ? 1 : 0, 1),
                                                      f.dstStep, ss, ds, f.g.top, f.g.left),
                  f.want);
    }
    EXPECT_TRUE(dst.unchanged());
}

INSTANTIATE_TEST_SUITE_P(
    Prims, BorderChecks,
    ::testing::Values(
        BorderFault{"NullSourceBeforeSize", true, false, 11, 19, {0, 2, 4, 4, 0, 0}, zevStsNullPointer},
        BorderFault{"NullDestinationBeforeStep", false, true, 11, 0, {2, 2, 4, 4, 0, 0}, zevStsNullPointer},
        BorderFault{"ZeroStepBeforeSize", false, false, 11, 0, {0, 2, 4, 4, 0, 0}, zevStsBadStep},
        BorderFault{"NegativeStep", false, false, 11, -19, {2, 2, 4, 4, 1, 1}, zevStsBadStep},
        BorderFault{"SourceWidthZero", false, false, 11, 19, {0, 2, 4, 4, 1, 1}, zevStsBadSize},
        BorderFault{"DestinationHeightZero", false, false, 11, 19, {2, 2, 4, 0, 1, 1}, zevStsBadSize},
        BorderFault{"NegativeTop", false, false, 11, 19, {2, 2, 4, 4, -1, 1}, zevStsBadSize},
        BorderFault{"NegativeLeft", false, false, 11, 19, {2, 2, 4, 4, 1, -1}, zevStsBadSize},
        BorderFault{"SourceTooTall", false, false, 11, 19, {2, 4, 4, 4, 1, 1}, zevStsBadSize},
        BorderFault{"SourceTooWide", false, false, 11, 19, {3, 2, 4, 4, 1, 2}, zevStsBadSize},
        BorderFault{"OffsetsOverflow", false, false, 11, 19, {2, 2, 4, 4, 0x7fffffff, 1}, zevStsBadSize}),
    [](const auto& info) { return info.param.name; });

}  // namespace
