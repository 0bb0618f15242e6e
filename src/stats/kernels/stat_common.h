// Pieces shared by the statistics families: the channel layouts (one channel,
// or one channel of three chosen by coi), row stepping, and the argument tests
// that come after the null and size tests.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/check.h"
#include "zevcv.h"

namespace v8::stat {

// One channel; pixel i is element i of the row.
struct C1 {
    static constexpr int ch = 1;
};
// Three interleaved channels, of which one is read: the caller moves the base
// pointer by coi - 1 elements, pixel i is then element 3 * i.
struct C3C {
    static constexpr int ch = 3;
};

template <class T>
inline const T* rowAt(const T* base, int step, int y) {
    return reinterpret_cast<const T*>(reinterpret_cast<const std::uint8_t*>(base) +
                                      static_cast<std::ptrdiff_t>(y) * step);
}

// The channel's first element: coi counts from 1.
template <class L, class T>
inline const T* channelBase(const T* src, int coi) {
    if constexpr (L::ch == 1) return src;
    else return src + (coi - 1);
}

// ---- argument tests, each one link of the chain

// The source step against its row of width pixels of L::ch elements.
template <class T, class L>
inline Check& srcStep(Check& c, int step, int width) {
    return c.step(step, rowBytes<T>(width, L::ch));
}
// A mask has one byte per pixel.
inline Check& maskStep(Check& c, int step, int width) { return c.step(step, rowBytes<Zev8u>(width)); }
// Elements wider than a byte need steps that are multiples of their size; for
// bytes the test passes by construction.
template <class T>
inline Check& stepMultiple(Check& c, int step) {
    return c.multiple(sizeof(T), step);
}
// coi is 1, 2 or 3, tested as unsigned coi - 1 <= 2.
template <class L>
inline Check& channelOfInterest(Check& c, int coi) {
    if constexpr (L::ch == 1) return c;
    else return c.that(static_cast<unsigned>(coi) - 1u <= 2u, zevStsBadCoi);
}

}  // namespace v8::stat
