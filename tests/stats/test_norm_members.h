// The 72 norm members as one table for the tests, and a plain reference written
// from the arithmetic rules: exact integer sums, per-row float lanes, bands and
// slot order as a threaded call makes them.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "common/guarded.h"
#include "zevcv.h"

namespace nt {

enum class Ty { U8, S8, U16, F32 };
enum class Form { Norm, Diff, Rel };
enum class Kind { Inf, L1, L2 };
// When a member runs in bands: n = width * height, M = thread budget; Omp rules
// also need more than one core.
enum class Rule { Never, N19, N17, N17Omp, N15OmpOrN17, N15Omp, N15 };

using Caller = ZevStatus (*)(const void* a, int aStep, const void* b, int bStep, const Zev8u* mask, int maskStep,
                             ZeviSize roi, int coi, Zev64f* value);

struct Member {
    const char* name;
    Ty ty;
    Form form;
    Kind kind;
    int ch;
    Rule rule;
    Caller call;
};

const std::vector<Member>& members();
const Member& member(const std::string& name);

inline int elemBytes(Ty t) { return t == Ty::U8 || t == Ty::S8 ? 1 : (t == Ty::U16 ? 2 : 4); }

// Does the member run in bands for this size, budget and core count?
inline bool banded(Rule r, ZeviSize roi, int M, bool multiCore) {
    const std::int64_t n = static_cast<std::int32_t>(std::int64_t{roi.width} * roi.height);
    const std::int64_t m = M;
    switch (r) {
        case Rule::Never: return false;
        case Rule::N19: return n >= (m << 19);
        case Rule::N17: return n >= (m << 17);
        case Rule::N17Omp: return n >= (m << 17) && multiCore;
        case Rule::N15OmpOrN17: return (n >= (m << 15) && multiCore) || n >= (m << 17);
        case Rule::N15Omp: return n >= (m << 15) && multiCore;
        case Rule::N15: return n >= (m << 15);
    }
    return false;
}

// Image data as the reference sees it: raw bytes with steps.
struct View {
    const std::uint8_t* a;
    int aStep;
    const std::uint8_t* b;
    int bStep;
    const Zev8u* mask;
    int maskStep;
    ZeviSize roi;
    int coi;  // 1..3 for three channels
};

struct Expect {
    double value;
    ZevStatus status;
};

// teams: the number of bands of a threaded call (1 for a serial one).
Expect reference(const Member& m, const View& v, int teams);

// Bands the library will use for this member and size under the current budget.
int teamsFor(const Member& m, ZeviSize roi);

// Guarded source images and mask of one call, any element type, and the call.
class Scene {
public:
    // offset: elements the first source's origin is moved off alignment (the
    // second source and the mask get other offsets, so origins differ).
    Scene(const Member& m, int width, int height, int offset = 0);
    // Random elements over the type's whole range (floats in +-1000); pixels are
    // selected with the given chance, by mask bytes of any nonzero value. With
    // spread, float rows are scaled by powers of two far apart, so that sums of
    // band results depend on their order.
    void randomize(zt::Rng& rng, int selectPercent = 75, bool spread = false);
    // Element of channel c at (x, y) of source 0 or 1; value converted to the type.
    void set(int image, int x, int y, int c, double value);
    void setMask(int x, int y, Zev8u v);
    void fillMask(Zev8u v);
    View view(int coi) const;

    struct Result {
        ZevStatus status;
        double value;
        bool valueOnly;  // nothing but *value was written anywhere
    };
    // Calls the member; value starts as `preset`.
    Result call(int coi, double preset = -12345.0);

    zt::GuardedBytes& image(int i) { return i == 0 ? a_ : b_; }
    zt::GuardedBytes& mask() { return mask_; }
    ZeviSize roi() const { return {w_, h_}; }

private:
    const Member& m_;
    int w_, h_, eb_;
    zt::GuardedBytes a_, b_, mask_;
};

inline bool sameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

}  // namespace nt
