// The band split, the reduction slots and the core services.
#include <gtest/gtest.h>
#include <omp.h>

#include <vector>

#include "common/guarded.h"
#include "frame/bands.h"
#include "frame/core.h"

namespace {

struct Seen {
    int T = 0;
    std::vector<v8::Band> bands;  // indexed by thread id; rows 0 where no call
};

Seen split(int threads, int height, v8::Split how) {
    Seen s;
    s.bands.assign(64, v8::Band{-1, 0, 0, 0, 0});
    v8::forEachBand(threads, height, how, [&](const v8::Band& b) {
        s.bands[b.id] = b;  // each thread writes its own element
    });
    for (auto& b : s.bands)
        if (b.id >= 0) s.T = b.T;
    return s;
}

}  // namespace

struct SplitCase {
    int threads, height;
    v8::Split how;
    std::vector<std::pair<int, int>> expected;  // (first row, rows) per thread; (0,0) skipped
};

class BandSplit : public ::testing::TestWithParam<SplitCase> {};

TEST_P(BandSplit, RowsAndRemainderGoWhereTheyShould) {
    const auto& c = GetParam();
    Seen s = split(c.threads, c.height, c.how);
    if (s.T != c.threads) GTEST_SKIP() << "runtime granted " << s.T << " threads";
    int covered = 0;
    for (int id = 0; id < c.threads; ++id) {
        auto [y0, rows] = c.expected[id];
        const v8::Band& b = s.bands[id];
        if (rows == 0) {
            EXPECT_EQ(b.id, -1) << "thread " << id << " has no rows and must not run the body";
            continue;
        }
        EXPECT_EQ(b.id, id);
        EXPECT_EQ(b.y0, y0) << "thread " << id;
        EXPECT_EQ(b.rows, rows) << "thread " << id;
        covered += b.rows;
    }
    EXPECT_EQ(covered, c.height);
}

INSTANTIATE_TEST_SUITE_P(
    Frame, BandSplit,
    ::testing::Values(
        // Eight threads over five rows: only the last one works, on all rows.
        SplitCase{8, 5, v8::Split::Plain, {{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 5}}},
        SplitCase{3, 10, v8::Split::Plain, {{0, 3}, {3, 3}, {6, 4}}},
        SplitCase{4, 11, v8::Split::Plain, {{0, 2}, {2, 2}, {4, 2}, {6, 5}}},
        SplitCase{2, 1, v8::Split::Plain, {{0, 0}, {0, 1}}},
        SplitCase{1, 7, v8::Split::Plain, {{0, 7}}},
        // Even split: band starts stay on even rows.
        SplitCase{3, 10, v8::Split::Even, {{0, 2}, {2, 2}, {4, 6}}},
        SplitCase{4, 7, v8::Split::Even, {{0, 0}, {0, 0}, {0, 0}, {0, 7}}},
        SplitCase{2, 9, v8::Split::Even, {{0, 4}, {4, 5}}}));

TEST(BandFlags, PositionAndInMemoryFlags) {
    v8::SplitPlan p = v8::SplitPlan::make(100, 4, v8::Split::Plain);
    EXPECT_EQ(p.band(0).inMemFlags(), 0x20);
    EXPECT_EQ(p.band(1).inMemFlags(), 0x30);
    EXPECT_EQ(p.band(3).inMemFlags(), 0x10);
    EXPECT_EQ(v8::SplitPlan::make(100, 1, v8::Split::Plain).band(0).inMemFlags(), 0);
    EXPECT_EQ(p.band(0).position(), 1);
    EXPECT_EQ(p.band(2).position(), 0);
    EXPECT_EQ(p.band(3).position(), 2);
    int buffer[100];
    EXPECT_EQ(p.band(2).share(buffer, 400), buffer + 50);
}

TEST(BandReduce, SlotsCombineInThreadOrderForAnyTeam) {
    // Sum of row numbers; each band adds its own rows into its slot.
    for (int threads : {1, 2, 3, 8, 33, 40}) {
        for (int height : {1, 5, 32, 97}) {
            std::vector<int> order;
            long total = -1;
            int T = 0;
            v8::forEachBandReduce<long>(
                threads, height, 0L,
                [&](const v8::Band& b, long& slot) {
                    for (int y = b.y0; y < b.y0 + b.rows; ++y) slot += y;
                },
                [&](const long* slots, int team) {
                    T = team;
                    total = 0;
                    for (int i = 0; i < team; ++i) total += slots[i];
                });
            EXPECT_GE(T, 1);
            EXPECT_EQ(total, static_cast<long>(height) * (height - 1) / 2) << threads << " threads, " << height;
        }
    }
}

TEST(Core, ServicesGiveRealAnswers) {
    int cache = 0;
    EXPECT_EQ(v8::zevGetMaxCacheSizeB(&cache), zevStsNoError);
    EXPECT_GT(cache, 4096);
    EXPECT_GE(v8::zevGetNumCoresOnDie(), 1);
    {
        zt::Threads t(3);
        EXPECT_EQ(v8::ownGetNumThreads(), 3);
        EXPECT_EQ(v8::owncvGetMaxNumThreads(), 3);
    }
    EXPECT_EQ(v8::owncvGetNumThreads(), 1);
    EXPECT_EQ(v8::owncvGetIdThreads(), 0);
    EXPECT_EQ(v8::owncvGetCacheSize(), cache);
}

TEST(Core, RunOmpRules) {
    int cores = v8::zevGetNumCoresOnDie();
    EXPECT_EQ(v8::runomp(), cores == 1 ? 0 : cores);
    EXPECT_EQ(v8::runsepomp(3), v8::runomp());
    EXPECT_EQ(v8::runsepomp(5), v8::runomp());
    EXPECT_EQ(v8::runsepomp(7), v8::runomp() | 1);
    EXPECT_NE(v8::runsepomp(7), 0);
}

TEST(Core, MallocWrappers) {
    EXPECT_EQ(v8::zevsMalloc_8u(0), nullptr);
    EXPECT_EQ(v8::zevsMalloc_32f(-4), nullptr);
    void* p = v8::zevsMalloc_64f(10);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 16, 0u);
    static_cast<double*>(p)[9] = 1.0;
    v8::zevsFree(p);
    v8::zevsFree(nullptr);
}
