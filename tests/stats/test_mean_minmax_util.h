// Small helpers shared by the mean and extrema tests.
#pragma once

#include <cctype>
#include <string>

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

// A test name from free text.
inline std::string ident(const std::string& s) {
    std::string r;
    for (char ch : s) r += std::isalnum(static_cast<unsigned char>(ch)) ? ch : '_';
    return r;
}

}  // namespace st
