// Border codes and the scratch-line fill, against a model that walks the row
// element by element the way the border rules are worded.
#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>
#include <vector>

#include "common/guarded.h"
#include "filter/border.h"
#include "pipe_ref.h"

namespace {

// The walking model of the borders lives with the pipeline references.
int walkIndex(int x, int w, int code) { return ref::walk(x, w, code); }

// The expected line: a extension pixels, real pixels, K-1-a extension pixels,
// with the real part shortened as the layout says.
template <class T>
std::vector<T> expectedLine(const T* src, int w, int K, int a, int border, T value, int* rOut) {
    std::vector<T> line;
    auto ext = [&](int x, bool mem) {
        if (mem) return src[x];
        int code = border & 15;
        if (code == zevBorderConst) return value;
        return src[walkIndex(x, w, code)];
    };
    for (int x = -a; x < 0; ++x) line.push_back(ext(x, (border & zevBorderInMemLeft) != 0));
    int head = std::min(K - 1, w);
    for (int x = 0; x < head; ++x) line.push_back(src[x]);
    if (w >= K)
        for (int x = w - (K - 1); x < w; ++x) line.push_back(src[x]);
    *rOut = w >= K ? a + K - 1 : a;
    for (int j = 0; j < K - 1 - a; ++j) line.push_back(ext(w + j, (border & zevBorderInMemRight) != 0));
    return line;
}

}  // namespace

TEST(BorderIndex, NarrowRowsRepeatWithTheirPeriod) {
    // w = 2, wrap: period 2; Mirror: period 2; MirrorR: period 4.
    for (int x = -9; x < 12; ++x) {
        EXPECT_EQ(v8::borderIndex(x, 2, zevBorderWrap), ((x % 2) + 2) % 2) << x;
        EXPECT_EQ(v8::borderIndex(x, 2, zevBorderMirror), ((x % 2) + 2) % 2) << x;
        EXPECT_EQ(v8::borderIndex(x, 1, zevBorderMirror), 0);
        EXPECT_EQ(v8::borderIndex(x, 1, zevBorderMirrorR), 0);
    }
    const int mirrorR3[] = {0, 0, 1, 2, 2, 1, 0, 0, 1, 2};  // x = -7 .. 2
    for (int x = -7; x <= 2; ++x) EXPECT_EQ(v8::borderIndex(x, 3, zevBorderMirrorR), mirrorR3[x + 7]) << x;
    EXPECT_EQ(v8::borderIndex(-1, 5, zevBorderConst), -1);
}

TEST(BorderIndex, AgreesWithTheWalkForAllSmallLines) {
    for (int code = zevBorderReplicate; code <= zevBorderMirrorR; ++code)
        for (int w = 1; w <= 9; ++w)
            for (int x = -40; x < w + 40; ++x) ASSERT_EQ(v8::borderIndex(x, w, code), walkIndex(x, w, code)) << code << " w" << w << " x" << x;
}

TEST(BorderIndex, OpenEndDoesNotReverse) {
    // Above a region whose lower side is readable the walk runs on downward.
    EXPECT_EQ(v8::borderIndex(-4, 3, zevBorderMirror, false, true), 4);
    EXPECT_EQ(v8::borderIndex(-4, 3, zevBorderMirrorR, false, true), 3);
    // Below a region whose upper side is readable it runs on upward.
    EXPECT_EQ(v8::borderIndex(5, 3, zevBorderMirror, true, false), -1);
    EXPECT_EQ(v8::borderIndex(5, 3, zevBorderMirrorR, true, false), 0);
    // Without the flag the same positions bounce.
    EXPECT_EQ(v8::borderIndex(-4, 3, zevBorderMirror), 0);
}

TEST(BorderArgs, CodesAndFlags) {
    for (int b = 0; b <= 4; ++b) EXPECT_TRUE(v8::isPlainBorderCode(b));
    EXPECT_FALSE(v8::isPlainBorderCode(5));
    EXPECT_FALSE(v8::isPlainBorderCode(6));
    EXPECT_FALSE(v8::isPlainBorderCode(-1));
    EXPECT_FALSE(v8::isPlainBorderCode(0x11));
    EXPECT_TRUE(v8::isFlaggedBorderArg(0x11));
    EXPECT_FALSE(v8::isFlaggedBorderArg(0x15));  // 5 is no code, flags or not
    EXPECT_TRUE(v8::isFlaggedBorderArg(zevBorderInMem));
    EXPECT_FALSE(v8::isFlaggedBorderArg(0x0105));
    EXPECT_FALSE(v8::isFlaggedBorderArg(5));
    EXPECT_FALSE(v8::isFlaggedBorderArg(7));
    EXPECT_EQ(v8::expandInMem(zevBorderInMem), 0xF0);
    EXPECT_EQ(v8::expandInMem(0x31), 0x31);
    EXPECT_EQ(v8::withoutRowFlags(0xF1), 0xC1);
}

// (kernel size, border argument) over widths 1..20 and every anchor.
class FillLine : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(FillLine, MatchesTheWalkingModel) {
    const auto [K, border] = GetParam();
    zt::Rng rng(K * 131 + border);
    for (int w = 1; w <= 20; ++w) {
        // K pixels of real memory either side, for the in-memory flags.
        std::vector<std::int16_t> mem(w + 2 * K);
        for (auto& v : mem) v = static_cast<std::int16_t>(rng.uniform(-30000, 30000));
        const std::int16_t* src = mem.data() + K;
        const std::int16_t value = -1234;
        for (int a = 0; a < K; ++a) {
            const int n = v8::borderLineElems(w, K);
            std::vector<std::int16_t> line(n + 8, 0x5A5A);
            int rWant = 0;
            auto want = expectedLine(src, w, K, a, border, value, &rWant);
            ASSERT_EQ(static_cast<int>(want.size()), n);
            int r = v8::fillBorder<std::int16_t>(src, line.data(), w, K, a, border, &value);
            EXPECT_EQ(r, rWant) << "w" << w << " a" << a;
            for (int i = 0; i < n; ++i) ASSERT_EQ(line[i], want[i]) << "w" << w << " a" << a << " i" << i;
            for (int i = n; i < n + 8; ++i) ASSERT_EQ(line[i], 0x5A5A) << "wrote past the line";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllCodes, FillLine,
                         ::testing::Combine(::testing::Values(1, 2, 3, 5, 8, 9),
                                            ::testing::Values(0, 1, 2, 3, 4, 0x40 | 3, 0x80 | 2, 0xC0 | 1,
                                                              0x40 | 0, 0x80 | 4)));

TEST(FillLine, ThreeChannelsKeepWholePixelsAndPerChannelValues) {
    const int w = 2, K = 5, a = 1;
    const std::uint8_t src[] = {10, 11, 12, 20, 21, 22};
    const std::uint8_t value[] = {7, 8, 9};
    std::uint8_t line[3 * 6 + 3];
    std::memset(line, 0xEE, sizeof line);
    int r = v8::fillBorder<std::uint8_t, 3>(src, line, w, K, a, zevBorderConst, value);
    EXPECT_EQ(r, a);
    const std::uint8_t want[] = {7, 8, 9, 10, 11, 12, 20, 21, 22, 7, 8, 9, 7, 8, 9, 7, 8, 9};
    for (int i = 0; i < 18; ++i) EXPECT_EQ(line[i], want[i]) << i;
    EXPECT_EQ(line[18], 0xEE);

    // Mirror on a two-pixel row: pixels alternate 1, 0, 1 ... in both directions.
    r = v8::fillBorder<std::uint8_t, 3>(src, line, w, K, 3, zevBorderMirror, nullptr);
    const std::uint8_t wantM[] = {20, 21, 22, 10, 11, 12, 20, 21, 22, 10, 11, 12, 20, 21, 22, 10, 11, 12};
    for (int i = 0; i < 18; ++i) EXPECT_EQ(line[i], wantM[i]) << i;
}

TEST(FillLine, SinglePixelRowUnderEveryMirror) {
    const float px[8] = {3.5f, -1, -1, -1, -1, -1, -1, -1};  // only the first is the row
    for (int code : {zevBorderMirror, zevBorderMirrorR, zevBorderWrap, zevBorderReplicate})
        for (int a = 0; a < 7; ++a) {
            float line[7];
            v8::fillBorder<float>(px, line, 1, 7, a, code, nullptr);
            for (float v : line) EXPECT_EQ(v, px[0]) << code;
        }
}
