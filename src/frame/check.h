// Argument checks as a chain of small tests. The first failure decides and the
// rest of the chain is skipped, so a call reads in the order the checks run:
//
//   ZevStatus st = Check().ptrs(src, dst).roi(roi).step(srcStep, row).step(dstStep, row)
//                         .multiple(sizeof(Zev32f), srcStep, dstStep);
#pragma once

#include <cstddef>
#include <cstdint>

#include "zevcv.h"

namespace v8 {

// Bytes in one row of `width` pixels with `channels` elements of type T.
template <class T>
constexpr std::int64_t rowBytes(int width, int channels = 1) {
    return static_cast<std::int64_t>(width) * channels * static_cast<std::int64_t>(sizeof(T));
}

class Check {
public:
    // Null pointers, in argument order.
    template <class... P>
    Check& ptrs(const P*... p) {
        if (ok() && ((p == nullptr) || ...)) st_ = zevStsNullPointer;
        return *this;
    }
    // The region: width, then height, each above zero.
    Check& roi(ZeviSize size) { return width(size.width).height(size.height); }
    Check& width(int w) { return that(w > 0, zevStsBadSize); }
    Check& height(int h) { return that(h > 0, zevStsBadSize); }
    // A step at least the row's bytes, compared as signed numbers.
    Check& step(int stepBytes, std::int64_t rowBytes) { return that(stepBytes >= rowBytes, zevStsBadStep); }
    // Steps judged only for being above zero, in argument order.
    template <class... S>
    Check& positiveSteps(S... steps) {
        return that(((steps > 0) && ...), zevStsBadStep);
    }
    // A vector length of at least one element.
    Check& length(int len) { return that(len >= 1, zevStsBadSize); }
    // Steps of an image whose elements have elemBytes (1, 2, 4 or 8) bytes are
    // multiples of it; the steps of one element size are tested together.
    template <class... S>
    Check& multiple(std::size_t elemBytes, S... steps) {
        const int mask = static_cast<int>(elemBytes) - 1;
        return that((((steps) | ... | 0) & mask) == 0, zevStsStepNotMultiple);
    }
    // Any other rule, with the status it fails with.
    Check& that(bool condition, ZevStatus failure) {
        if (ok() && !condition) st_ = failure;
        return *this;
    }

    bool ok() const { return st_ == zevStsNoError; }
    ZevStatus status() const { return st_; }
    operator ZevStatus() const { return st_; }

private:
    ZevStatus st_ = zevStsNoError;
};

}  // namespace v8
