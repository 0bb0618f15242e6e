// Small helpers shared by the mean and extrema tests.
#pragma once

#include <cctype>
#include <string>

#include "common/guarded.h"
#include "zevcv.h"

namespace st {

enum class Ty { U8, S8, U16, F32 };

inline int elemBytes(Ty t) { return t == Ty::U8 || t == Ty::S8 ? 1 : (t == Ty::U16 ? 2 : 4); }

// Calls f with a value of the element type, to pick a template instance at run time.
template <class F>
void byType(Ty t, F f) {
    switch (t) {
        case Ty::U8: f(Zev8u{}); break;
        case Ty::S8: f(Zev8s{}); break;
        case Ty::U16: f(Zev16u{}); break;
        case Ty::F32: f(Zev32f{}); break;
    }
}

// Source and mask of an argument test, with their contents saved, so that an
// error return can be checked to have touched nothing. Invalid sizes still get
// a small valid image to point at.
template <class E>
struct ArgImages {
    int w, h;
    zt::Image<E> img;
    zt::Image<Zev8u> mask;
    ArgImages(int width, int height, int channels)
        : w(width > 0 ? width : 4), h(height > 0 ? height : 3), img(w, h, channels, 6), mask(w, h, 1, 6) {
        img.snapshot();
        mask.snapshot();
    }
    bool unchanged() const { return img.unchanged() && mask.unchanged(); }
};

// A test name from free text.
inline std::string ident(const std::string& s) {
    std::string r;
    for (char ch : s) r += std::isalnum(static_cast<unsigned char>(ch)) ? ch : '_';
    return r;
}

}  // namespace st
