// The member table and the reference of the norm tests.
#include "test_norm_members.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cstdlib>

#include "frame/core.h"

namespace nt {
namespace {

#define NT_ONE_C1(K, Tag, T, R)                                                                                     \
    Member{"zeviNorm_" #K "_" #Tag "_C1MR", Ty::T, Form::Norm, Kind::K, 1, Rule::R,                                  \
           +[](const void* a, int as, const void*, int, const Zev8u* m, int ms, ZeviSize r, int, Zev64f* v) {      \
               return zeviNorm_##K##_##Tag##_C1MR(static_cast<const Zev##Tag*>(a), as, m, ms, r, v);                \
           }}
#define NT_ONE_C3(K, Tag, T, R)                                                                                     \
    Member{"zeviNorm_" #K "_" #Tag "_C3CMR", Ty::T, Form::Norm, Kind::K, 3, Rule::R,                                 \
           +[](const void* a, int as, const void*, int, const Zev8u* m, int ms, ZeviSize r, int c, Zev64f* v) {    \
               return zeviNorm_##K##_##Tag##_C3CMR(static_cast<const Zev##Tag*>(a), as, m, ms, r, c, v);            \
           }}
#define NT_TWO_C1(F, K, Tag, T, R)                                                                                  \
    Member{"zeviNorm" #F "_" #K "_" #Tag "_C1MR", Ty::T, Form::F, Kind::K, 1, Rule::R,                               \
           +[](const void* a, int as, const void* b, int bs, const Zev8u* m, int ms, ZeviSize r, int, Zev64f* v) { \
               return zeviNorm##F##_##K##_##Tag##_C1MR(static_cast<const Zev##Tag*>(a), as,                         \
                                                       static_cast<const Zev##Tag*>(b), bs, m, ms, r, v);           \
           }}
#define NT_TWO_C3(F, K, Tag, T, R)                                                                                  \
    Member{"zeviNorm" #F "_" #K "_" #Tag "_C3CMR", Ty::T, Form::F, Kind::K, 3, Rule::R,                              \
           +[](const void* a, int as, const void* b, int bs, const Zev8u* m, int ms, ZeviSize r, int c,            \
               Zev64f* v) {                                                                                         \
               return zeviNorm##F##_##K##_##Tag##_C3CMR(static_cast<const Zev##Tag*>(a), as,                        \
                                                        static_cast<const Zev##Tag*>(b), bs, m, ms, r, c, v);       \
           }}

// Which members run in bands, and from what size.
const std::vector<Member> kMembers = {
    NT_ONE_C1(Inf, 8u, U8, N19),          NT_ONE_C1(Inf, 8s, S8, N19),
    NT_ONE_C1(Inf, 16u, U16, N19),        NT_ONE_C1(Inf, 32f, F32, N17),
    NT_ONE_C1(L1, 8u, U8, N17Omp),        NT_ONE_C1(L1, 8s, S8, N17Omp),
    NT_ONE_C1(L1, 16u, U16, N17),         NT_ONE_C1(L1, 32f, F32, N17),
    NT_ONE_C1(L2, 8u, U8, N17Omp),        NT_ONE_C1(L2, 8s, S8, N17Omp),
    NT_ONE_C1(L2, 16u, U16, N17),         NT_ONE_C1(L2, 32f, F32, N17),
    NT_ONE_C3(Inf, 8u, U8, N17),          NT_ONE_C3(Inf, 8s, S8, N17),
    NT_ONE_C3(Inf, 16u, U16, N17),        NT_ONE_C3(Inf, 32f, F32, N15),
    NT_ONE_C3(L1, 8u, U8, N17),           NT_ONE_C3(L1, 8s, S8, N17),
    NT_ONE_C3(L1, 16u, U16, N17),         NT_ONE_C3(L1, 32f, F32, N17),
    NT_ONE_C3(L2, 8u, U8, N15OmpOrN17),   NT_ONE_C3(L2, 8s, S8, N15OmpOrN17),
    NT_ONE_C3(L2, 16u, U16, N15OmpOrN17), NT_ONE_C3(L2, 32f, F32, N15OmpOrN17),

    NT_TWO_C1(Diff, Inf, 8u, U8, Never),  NT_TWO_C1(Diff, Inf, 8s, S8, Never),
    NT_TWO_C1(Diff, Inf, 16u, U16, Never), NT_TWO_C1(Diff, Inf, 32f, F32, Never),
    NT_TWO_C1(Diff, L1, 8u, U8, N17Omp),  NT_TWO_C1(Diff, L1, 8s, S8, N17Omp),
    NT_TWO_C1(Diff, L1, 16u, U16, N17),   NT_TWO_C1(Diff, L1, 32f, F32, Never),
    NT_TWO_C1(Diff, L2, 8u, U8, N17Omp),  NT_TWO_C1(Diff, L2, 8s, S8, N17Omp),
    NT_TWO_C1(Diff, L2, 16u, U16, N17),   NT_TWO_C1(Diff, L2, 32f, F32, Never),
    NT_TWO_C3(Diff, Inf, 8u, U8, Never),  NT_TWO_C3(Diff, Inf, 8s, S8, Never),
    NT_TWO_C3(Diff, Inf, 16u, U16, Never), NT_TWO_C3(Diff, Inf, 32f, F32, Never),
    NT_TWO_C3(Diff, L1, 8u, U8, N17),     NT_TWO_C3(Diff, L1, 8s, S8, N15Omp),
    NT_TWO_C3(Diff, L1, 16u, U16, N15Omp), NT_TWO_C3(Diff, L1, 32f, F32, Never),
    NT_TWO_C3(Diff, L2, 8u, U8, N17),     NT_TWO_C3(Diff, L2, 8s, S8, N17),
    NT_TWO_C3(Diff, L2, 16u, U16, N15OmpOrN17), NT_TWO_C3(Diff, L2, 32f, F32, Never),

    NT_TWO_C1(Rel, Inf, 8u, U8, N17Omp),  NT_TWO_C1(Rel, Inf, 8s, S8, N17Omp),
    NT_TWO_C1(Rel, Inf, 16u, U16, N17Omp), NT_TWO_C1(Rel, Inf, 32f, F32, N15),
    NT_TWO_C1(Rel, L1, 8u, U8, Never),    NT_TWO_C1(Rel, L1, 8s, S8, N17Omp),
    NT_TWO_C1(Rel, L1, 16u, U16, N15OmpOrN17), NT_TWO_C1(Rel, L1, 32f, F32, Never),
    NT_TWO_C1(Rel, L2, 8u, U8, N17),      NT_TWO_C1(Rel, L2, 8s, S8, N17),
    NT_TWO_C1(Rel, L2, 16u, U16, N15OmpOrN17), NT_TWO_C1(Rel, L2, 32f, F32, Never),
    NT_TWO_C3(Rel, Inf, 8u, U8, N15OmpOrN17), NT_TWO_C3(Rel, Inf, 8s, S8, N15OmpOrN17),
    NT_TWO_C3(Rel, Inf, 16u, U16, N15),   NT_TWO_C3(Rel, Inf, 32f, F32, N15),
    NT_TWO_C3(Rel, L1, 8u, U8, N15OmpOrN17), NT_TWO_C3(Rel, L1, 8s, S8, N15OmpOrN17),
    NT_TWO_C3(Rel, L1, 16u, U16, N15),    NT_TWO_C3(Rel, L1, 32f, F32, Never),
    NT_TWO_C3(Rel, L2, 8u, U8, N15OmpOrN17), NT_TWO_C3(Rel, L2, 8s, S8, N15OmpOrN17),
    NT_TWO_C3(Rel, L2, 16u, U16, N15),    NT_TWO_C3(Rel, L2, 32f, F32, Never),
};

struct Part {
    double p = 0.0, q = 0.0;
};

template <class T>
T elem(const std::uint8_t* base, int step, int y, int x, int ch, int coi) {
    T v;
    std::memcpy(&v, base + static_cast<std::ptrdiff_t>(y) * step + (static_cast<std::ptrdiff_t>(x) * ch + coi - 1) * sizeof(T),
                sizeof(T));
    return v;
}

bool selected(const View& v, int y, int x) { return v.mask[static_cast<std::ptrdiff_t>(y) * v.maskStep + x] != 0; }

// Integers: magnitudes widened to 64 bits, sums exact.
template <class T>
Part intBand(const Member& m, const View& v, int y0, int rows) {
    std::uint64_t p = 0, q = 0;
    auto take = [&](std::uint64_t& acc, std::int64_t mag) {
        std::uint64_t u = static_cast<std::uint64_t>(mag < 0 ? -mag : mag);
        if (m.kind == Kind::Inf) acc = std::max(acc, u);
        else if (m.kind == Kind::L1) acc += u;
        else acc += u * u;
    };
    for (int y = y0; y < y0 + rows; ++y)
        for (int x = 0; x < v.roi.width; ++x) {
            if (!selected(v, y, x)) continue;
            std::int64_t a = elem<T>(v.a, v.aStep, y, x, m.ch, v.coi);
            if (m.form == Form::Norm) {
                take(p, a);
                continue;
            }
            std::int64_t b = elem<T>(v.b, v.bStep, y, x, m.ch, v.coi);
            take(p, a - b);
            if (m.form == Form::Rel) take(q, b);
        }
    return Part{static_cast<double>(p), static_cast<double>(q)};
}

float absf(float x) { return std::bit_cast<float>(std::bit_cast<std::uint32_t>(x) & 0x7fffffffu); }

// Floats: the largest magnitude (a NaN one never wins), or sums in four single
// lanes per row: whole groups of four pixels go lane by lane (one channel of
// three: pixel j of a group into lane (3 j + channel) % 4); a tail of C1 puts a
// pair into lanes 0 and 1 and a single one into lane 0; a C3 tail goes into lane 0.
// Row: (lane0 + lane2) and (lane1 + lane3) into two doubles; band: their sum,
// rounded to float.
struct FloatAcc {
    Kind kind;
    float mx = 0.0f;
    float lane[4] = {};
    double d0 = 0.0, d1 = 0.0;
    void add(float mag, int l) {
        if (kind == Kind::Inf) {
            if (mag > mx) mx = mag;
        } else {
            float v = kind == Kind::L2 ? mag * mag : mag;
            lane[l] = lane[l] + v;
        }
    }
    // The single-precision roundings go through memory: GCC 12's straight-line
    // vectorizer has been seen dropping them when two of these run side by side.
    void row() {
        volatile float a = lane[0] + lane[2];
        volatile float b = lane[1] + lane[3];
        d0 += a;
        d1 += b;
        std::fill(lane, lane + 4, 0.0f);
    }
    double result() const {
        volatile float total = static_cast<float>(d0 + d1);
        return kind == Kind::Inf ? static_cast<double>(mx) : static_cast<double>(total);
    }
};

int floatLane(int x, int width, int ch, int coi) {
    const int whole = width / 4 * 4;
    if (x < whole) return ch == 1 ? x % 4 : (3 * (x % 4) + coi - 1) % 4;
    if (ch == 3) return 0;
    const int idx = x - whole, rem = width - whole;
    return (rem >= 2 && idx < 2) ? idx : 0;
}

Part floatBand(const Member& m, const View& v, int y0, int rows) {
    FloatAcc P{m.kind}, Q{m.kind};
    for (int y = y0; y < y0 + rows; ++y) {
        for (int x = 0; x < v.roi.width; ++x) {
            if (!selected(v, y, x)) continue;
            const int l = floatLane(x, v.roi.width, m.ch, v.coi);
            float a = elem<float>(v.a, v.aStep, y, x, m.ch, v.coi);
            if (m.form == Form::Norm) {
                P.add(absf(a), l);
                continue;
            }
            float b = elem<float>(v.b, v.bStep, y, x, m.ch, v.coi);
            P.add(absf(a - b), l);
            if (m.form == Form::Rel) Q.add(absf(b), l);
        }
        P.row();
        Q.row();
    }
    return Part{P.result(), Q.result()};
}

// Float band results: up to seven from the first up; else eight running sums
// taken as four pairs over blocks of eight, ((pair0 + pair1) + (pair2 + pair3))
// per lane, then lane 0 + lane 1, then the leftovers in order.
double sumBands(const std::vector<double>& s) {
    const std::size_t n = s.size();
    double r = 0.0;
    std::size_t i = 0;
    if (n >= 8) {
        double pair[4][2] = {};
        for (; i + 8 <= n; i += 8)
            for (int j = 0; j < 4; ++j) {
                pair[j][0] += s[i + 2 * j];
                pair[j][1] += s[i + 2 * j + 1];
            }
        double lane[2];
        for (int k = 0; k < 2; ++k) lane[k] = (pair[0][k] + pair[1][k]) + (pair[2][k] + pair[3][k]);
        r = lane[0] + lane[1];
    }
    for (; i < n; ++i) r += s[i];
    return r;
}

}  // namespace

const std::vector<Member>& members() { return kMembers; }

const Member& member(const std::string& name) {
    for (const Member& m : kMembers)
        if (name == m.name) return m;
    std::abort();
}

Expect reference(const Member& m, const View& v, int teams) {
    const int h = v.roi.height;
    const int rows = h / teams, extra = h % teams;
    std::vector<Part> parts;
    for (int t = 0; t < teams; ++t) {
        const int y0 = t * rows, n = rows + (t == teams - 1 ? extra : 0);
        Part part;
        if (n > 0) {
            switch (m.ty) {
                case Ty::U8: part = intBand<Zev8u>(m, v, y0, n); break;
                case Ty::S8: part = intBand<Zev8s>(m, v, y0, n); break;
                case Ty::U16: part = intBand<Zev16u>(m, v, y0, n); break;
                case Ty::F32: part = floatBand(m, v, y0, n); break;
            }
        }
        parts.push_back(part);
    }
    Part total;
    if (m.kind == Kind::Inf) {
        for (const Part& p : parts) {
            total.p = std::max(total.p, p.p);
            total.q = std::max(total.q, p.q);
        }
    } else if (m.ty == Ty::F32) {
        std::vector<double> ps, qs;
        for (const Part& p : parts) {
            ps.push_back(p.p);
            qs.push_back(p.q);
        }
        total.p = sumBands(ps);
        total.q = sumBands(qs);
    } else {
        for (const Part& p : parts) {
            total.p += p.p;
            total.q += p.q;
        }
    }
    if (m.form != Form::Rel) return {m.kind == Kind::L2 ? std::sqrt(total.p) : total.p, zevStsNoError};
    if (total.q != 0.0 || std::isnan(total.q)) {
        double r = total.p / total.q;
        return {m.kind == Kind::L2 ? std::sqrt(r) : r, zevStsNoError};
    }
    double inf = std::numeric_limits<double>::infinity();
    double value = total.p == 0.0 ? std::bit_cast<double>(std::uint64_t{0xFFF8000000000000ull})
                                  : (total.p > 0.0 ? inf : -inf);
    return {value, zevStsZeroDenominator};
}

}  // namespace nt

namespace nt {

int teamsFor(const Member& m, ZeviSize roi) {
    const int M = v8::owncvGetMaxNumThreads();
    return banded(m.rule, roi, M, v8::runomp() != 0) ? M : 1;
}

Scene::Scene(const Member& m, int width, int height, int offset)
    : m_(m),
      w_(width),
      h_(height),
      eb_(elemBytes(m.ty)),
      a_(width * m.ch * eb_, height, 3 * eb_, offset * eb_),
      b_(width * m.ch * eb_, height, 5 * eb_, (offset + 1) % 4 * eb_),
      mask_(width, height, 7, (offset + 3) % 16) {}

void Scene::set(int image, int x, int y, int c, double value) {
    zt::GuardedBytes& g = image == 0 ? a_ : b_;
    std::uint8_t* p = g.origin() + static_cast<std::ptrdiff_t>(y) * g.step() +
                      (static_cast<std::ptrdiff_t>(x) * m_.ch + c) * eb_;
    switch (m_.ty) {
        case Ty::U8: *p = static_cast<Zev8u>(value); break;
        case Ty::S8: *reinterpret_cast<Zev8s*>(p) = static_cast<Zev8s>(value); break;
        case Ty::U16: {
            Zev16u v = static_cast<Zev16u>(value);
            std::memcpy(p, &v, 2);
            break;
        }
        case Ty::F32: {
            Zev32f v = static_cast<Zev32f>(value);
            std::memcpy(p, &v, 4);
            break;
        }
    }
}

void Scene::setMask(int x, int y, Zev8u v) { mask_.origin()[static_cast<std::ptrdiff_t>(y) * mask_.step() + x] = v; }

void Scene::fillMask(Zev8u v) {
    for (int y = 0; y < h_; ++y)
        for (int x = 0; x < w_; ++x) setMask(x, y, v);
}

void Scene::randomize(zt::Rng& rng, int selectPercent, bool spread) {
    for (int i = 0; i < 2; ++i)
        for (int y = 0; y < h_; ++y)
            for (int x = 0; x < w_; ++x)
                for (int c = 0; c < m_.ch; ++c) {
                    switch (m_.ty) {
                        case Ty::U8: set(i, x, y, c, rng.uniform(0, 255)); break;
                        case Ty::S8: set(i, x, y, c, rng.uniform(-128, 127)); break;
                        case Ty::U16: set(i, x, y, c, rng.uniform(0, 65535)); break;
                        case Ty::F32:
                            set(i, x, y, c,
                                std::ldexp(rng.uniformf(-1000.0f, 1000.0f), spread ? (y * 7) % 60 - 30 : 0));
                            break;
                    }
                }
    for (int y = 0; y < h_; ++y)
        for (int x = 0; x < w_; ++x)
            setMask(x, y, rng.uniform(0, 99) < selectPercent ? static_cast<Zev8u>(rng.uniform(1, 255)) : 0);
}

View Scene::view(int coi) const {
    return View{a_.origin(), a_.step(), b_.origin(), b_.step(), mask_.origin(), mask_.step(), roi(), coi};
}

Scene::Result Scene::call(int coi, double preset) {
    a_.snapshot();
    b_.snapshot();
    mask_.snapshot();
    double out[3] = {7.0, preset, 9.0};
    ZevStatus st = m_.call(a_.origin(), a_.step(), b_.origin(), b_.step(), mask_.origin(), mask_.step(), roi(),
                           coi, &out[1]);
    bool untouched = a_.unchanged() && b_.unchanged() && mask_.unchanged() && out[0] == 7.0 && out[2] == 9.0;
    return Result{st, out[1], untouched};
}

}  // namespace nt
