// The band pattern every threaded family uses: one parallel region, the master
// reads the real team size and publishes the split, a barrier, then each thread
// works on its own rows. Families never write this arithmetic themselves.
#pragma once

#include <omp.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

#include "frame/core.h"

namespace v8 {

// One thread's share of a region.
struct Band {
    int id;     // thread number in the team
    int T;      // real team size
    int y0;     // first row of the band
    int rows;   // rows in the band (0: nothing to do)
    int stride; // rows of every band but the last; band id starts at id * stride

    bool first() const { return id == 0; }
    bool last() const { return id == T - 1; }
    // Position code of the even split: 1 first band, 2 last band, 0 in between.
    int position() const { return first() ? 1 : (last() ? 2 : 0); }
    // In-memory border flags: a band reads its neighbours' real rows instead of
    // making a border where another band lies above (0x10) or below (0x20).
    int inMemFlags() const { return (first() ? 0 : 0x10) | (last() ? 0 : 0x20); }
    // This band's share of a work buffer divided evenly among the team.
    template <class B>
    B* share(B* buffer, int bufferBytes) const {
        int part = bufferBytes / T;
        return reinterpret_cast<B*>(reinterpret_cast<std::uint8_t*>(buffer) + static_cast<std::ptrdiff_t>(id) * part);
    }
    // Offset a row pointer to the band's first row.
    template <class P>
    P* rowPtr(P* base, int stepBytes) const {
        using Byte = std::conditional_t<std::is_const_v<P>, const std::uint8_t, std::uint8_t>;
        return reinterpret_cast<P*>(reinterpret_cast<Byte*>(base) + static_cast<std::ptrdiff_t>(y0) * stepBytes);
    }
};

enum class Split {
    Plain,  // height / T rows each, the remainder to the last thread
    Even,   // (height / T) & ~1 rows each, so that band starts stay on even rows
};

struct SplitPlan {
    int T = 1, rows = 0, extra = 0;
    static SplitPlan make(int height, int T, Split split) {
        SplitPlan p;
        p.T = T;
        if (split == Split::Even) {
            p.rows = (height / T) & ~1;
            p.extra = height - T * p.rows;
        } else {
            p.rows = height / T;
            p.extra = height % T;
        }
        return p;
    }
    Band band(int id) const { return Band{id, T, id * rows, rows + (id == T - 1 ? extra : 0), rows}; }
};

// Runs body(const Band&) on every non-empty band of a region of numThreads
// threads. If the runtime grants fewer threads, the split follows the real team.
template <class Body>
void forEachBand(int numThreads, int height, Split split, Body&& body) {
    SplitPlan plan;
#pragma omp parallel num_threads(numThreads)
    {
#pragma omp master
        plan = SplitPlan::make(height, owncvGetNumThreads(), split);
#pragma omp barrier
        Band b = plan.band(owncvGetIdThreads());
        if (b.rows > 0) body(b);
    }
}

template <class Body>
void forEachBand(int numThreads, int height, Body&& body) {
    forEachBand(numThreads, height, Split::Plain, static_cast<Body&&>(body));
}

// Band pattern with one partial-result slot per thread. Each slot starts as
// `neutral`; body(const Band&, Slot&) fills the band's own slot; after the region
// combine(const Slot* slots, int T) sees them in thread order. Up to 32 slots live
// on the caller's stack; a larger team gets a block from the master thread.
template <class Slot, class Body, class Combine>
void forEachBandReduce(int numThreads, int height, const Slot& neutral, Body&& body, Combine&& combine,
                       Split split = Split::Plain) {
    static_assert(std::is_trivially_copyable_v<Slot>, "slots are plain records");
    constexpr int kStackSlots = 32;
    Slot stackSlots[kStackSlots];
    Slot* slots = stackSlots;
    void* heap = nullptr;
    SplitPlan plan;
#pragma omp parallel num_threads(numThreads)
    {
#pragma omp master
        {
            plan = SplitPlan::make(height, owncvGetNumThreads(), split);
            if (plan.T > kStackSlots) {
                int words = static_cast<int>((sizeof(Slot) * plan.T + 7) / 8);
                heap = zevsMalloc_64f(words);
                slots = static_cast<Slot*>(heap);
            }
        }
#pragma omp barrier
        Band b = plan.band(owncvGetIdThreads());
        Slot* mine = new (&slots[b.id]) Slot(neutral);
        if (b.rows > 0) body(b, *mine);
    }
    combine(static_cast<const Slot*>(slots), plan.T);
    if (heap) zevsFree(heap);
}

}  // namespace v8
