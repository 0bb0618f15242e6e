// Test images with guard bytes: the region lies inside a larger buffer whose
// other bytes (before the first row, in each row's step padding, after the last
// row) hold a known pattern. After a call the pattern must still be there; after
// an error return nothing at all may have changed.
#pragma once

#include <omp.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "zevcv.h"

namespace zt {

class GuardedBytes {
public:
    // rowBytes: bytes of one region row; padBytes: extra bytes per row in the
    // step; originOffset: bytes the region's origin is moved off 64-byte alignment.
    GuardedBytes(int rowBytes, int height, int padBytes, int originOffset)
        : rowBytes_(rowBytes), height_(height), step_(rowBytes + padBytes), front_(64 + originOffset) {
        size_ = static_cast<std::size_t>(front_) + static_cast<std::size_t>(step_) * height + 64;
        raw_.resize(size_ + 64);
        std::uintptr_t p = reinterpret_cast<std::uintptr_t>(raw_.data());
        base_ = raw_.data() + ((64 - (p & 63)) & 63);
        for (std::size_t i = 0; i < size_; ++i) base_[i] = pattern(i);
    }
    // A copy has its own buffer, with the same geometry and alignment.
    GuardedBytes(const GuardedBytes& o) : GuardedBytes(o.rowBytes_, o.height_, o.step_ - o.rowBytes_, o.front_ - 64) {
        std::memcpy(base_, o.base_, size_);
        saved_ = o.saved_;
    }
    GuardedBytes& operator=(const GuardedBytes&) = delete;
    std::uint8_t* origin() { return base_ + front_; }
    const std::uint8_t* origin() const { return base_ + front_; }
    int step() const { return step_; }

    bool inRegion(std::size_t i) const {
        if (i < static_cast<std::size_t>(front_)) return false;
        std::size_t off = i - front_;
        std::size_t row = off / step_, col = off % step_;
        return row < static_cast<std::size_t>(height_) && col < static_cast<std::size_t>(rowBytes_);
    }
    // Index of the first guard byte that changed, or -1.
    long firstBrokenGuard() const {
        for (std::size_t i = 0; i < size_; ++i)
            if (!inRegion(i) && base_[i] != pattern(i)) return static_cast<long>(i);
        return -1;
    }
    bool guardsIntact() const { return firstBrokenGuard() < 0; }
    void snapshot() { saved_.assign(base_, base_ + size_); }
    bool unchanged() const { return std::memcmp(saved_.data(), base_, size_) == 0; }

private:
    static std::uint8_t pattern(std::size_t i) { return static_cast<std::uint8_t>((i * 151u + 89u) ^ (i >> 8)); }
    int rowBytes_, height_, step_, front_;
    std::size_t size_ = 0;
    std::vector<std::uint8_t> raw_;
    std::uint8_t* base_ = nullptr;
    std::vector<std::uint8_t> saved_;
};

// A typed region of width x height pixels of `channels` elements.
template <class T>
class Image : public GuardedBytes {
public:
    Image(int width, int height, int channels = 1, int padElems = 3, int originOffsetElems = 0)
        : GuardedBytes(width * channels * static_cast<int>(sizeof(T)), height, padElems * static_cast<int>(sizeof(T)),
                       originOffsetElems * static_cast<int>(sizeof(T))),
          w_(width), h_(height), c_(channels) {}
    T* ptr() { return reinterpret_cast<T*>(origin()); }
    const T* ptr() const { return reinterpret_cast<const T*>(origin()); }
    T* row(int y) { return reinterpret_cast<T*>(origin() + static_cast<std::ptrdiff_t>(y) * step()); }
    const T* row(int y) const { return reinterpret_cast<const T*>(origin() + static_cast<std::ptrdiff_t>(y) * step()); }
    T& at(int x, int y, int ch = 0) { return row(y)[x * c_ + ch]; }
    const T& at(int x, int y, int ch = 0) const { return row(y)[x * c_ + ch]; }
    int width() const { return w_; }
    int height() const { return h_; }
    int channels() const { return c_; }
    ZeviSize size() const { return ZeviSize{w_, h_}; }
    template <class Gen>
    void fill(Gen gen) {
        for (int y = 0; y < h_; ++y)
            for (int x = 0; x < w_ * c_; ++x) row(y)[x] = gen();
    }
    // Region contents, row-major, without padding.
    std::vector<T> pixels() const {
        std::vector<T> v;
        v.reserve(static_cast<std::size_t>(w_) * h_ * c_);
        for (int y = 0; y < h_; ++y) v.insert(v.end(), row(y), row(y) + w_ * c_);
        return v;
    }

private:
    int w_, h_, c_;
};

// Deterministic random values for test images.
class Rng {
public:
    explicit Rng(std::uint32_t seed = 12345) : g_(seed) {}
    std::uint32_t next() { return static_cast<std::uint32_t>(g_()); }
    int uniform(int lo, int hi) { return lo + static_cast<int>(next() % static_cast<std::uint32_t>(hi - lo + 1)); }
    float uniformf(float lo, float hi) { return lo + (hi - lo) * static_cast<float>(next() >> 8) / 16777216.0f; }

private:
    std::mt19937 g_;
};

// Sets the library's thread budget for the life of the scope.
class Threads {
public:
    explicit Threads(int n) : old_(omp_get_max_threads()) { omp_set_num_threads(n); }
    ~Threads() { omp_set_num_threads(old_); }
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;

private:
    int old_;
};

// Bitwise equality, so that NaNs and signed zeros compare exactly.
template <class T>
bool sameBits(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

}  // namespace zt
