// Separable 5x5 filter, 8u -> 16s, replicated borders, at 1920x1080: the row
// pipeline and the column pipeline chained through a strip of intermediate rows,
// against the peer's sepFilter2D. The two stages are also timed alone.
#include <algorithm>
#include <vector>

#include "common/bench_util.h"
#include "zevcv.h"

#ifdef ZEV_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

constexpr int K = 5, kStrip = 128;
const Zev16s kRow[K] = {1, 4, 6, 4, 1};
const Zev16s kCol[K] = {-1, -2, 0, 2, 1};
const Zev16s kSmooth[K] = {1, 4, 6, 4, 1};  // with divisor 256 on the columns: a 5x5 Gaussian

struct Chain {
    zb::Plane<Zev8u> src;
    zb::Plane<Zev16s> dst, mid;  // mid: one strip of row-filtered rows, or the whole image
    std::vector<Zev8u> rowBuf, colBuf;
    Chain() : src(1), dst(1), mid(1) {
        src.fill([](int x, int y) { return zb::scene(x, y, 3); });
    }
    // Buffers sized for the thread count of the run.
    void size() {
        int r = 0, c = 0;
        zeviFilterRowBorderPipelineGetBufferSize_8u16s_C1R(ZeviSize{zb::kW, zb::kH}, K, &r);
        zeviFilterColumnPipelineGetBufferSize_16s_C1R(ZeviSize{zb::kW, zb::kH}, K, &c);
        if (static_cast<int>(rowBuf.size()) < r) rowBuf.resize(r);
        if (static_cast<int>(colBuf.size()) < c) colBuf.resize(c);
    }
    // Strips of output rows; each strip filters the source rows it needs (clamped
    // at the image's ends) and hands the column stage repeated pointers there.
    void run(const Zev16s* colKernel = kCol, int colDivisor = 1, const Zev16s* rowKernel = kRow) {
        const int h = zb::kH, a = K / 2;
        Zev16s* midRows[kStrip + K - 1];
        const Zev16s* colRows[kStrip + K - 1];
        for (int y0 = 0; y0 < h; y0 += kStrip) {
            const int rows = std::min(kStrip, h - y0);
            const int first = std::max(0, y0 - a), last = std::min(h - 1, y0 + rows - 1 + a);
            for (int i = 0; i <= last - first; ++i) midRows[i] = mid.row(i);
            zeviFilterRowBorderPipeline_8u16s_C1R(src.row(first), src.step, midRows, ZeviSize{zb::kW, last - first + 1},
                                                  rowKernel, K, a, zevBorderReplicate, 0, 1, rowBuf.data());
            for (int i = 0; i < rows + K - 1; ++i) {
                int y = std::min(last, std::max(first, y0 - a + i));
                colRows[i] = midRows[y - first];
            }
            zeviFilterColumnPipeline_16s_C1R(colRows, dst.row(y0), dst.step, ZeviSize{zb::kW, rows}, colKernel, K,
                                             colDivisor, colBuf.data());
        }
    }
};

Chain& chain() {
    static Chain c;
    return c;
}

void registerAll() {
    Chain& c = chain();
    zb::registerPair("zev", "sepFilter5x5_8u16s", [&](benchmark::State&) {
        c.size();
        c.run();
    });
    // Rounded scaling in the column stage: the float path.
    zb::registerPair("zev", "gauss5x5_div256_8u16s", [&](benchmark::State&) {
        c.size();
        c.run(kSmooth, 256);
    });
    // A 5x5 box average: divisor 25, no shortcut, the float rule throughout.
    static const Zev16s kOnes[K] = {1, 1, 1, 1, 1};
    zb::registerPair("zev", "box5x5_div25_8u16s", [&](benchmark::State&) {
        c.size();
        c.run(kOnes, 25, kOnes);
    });
    // The stages alone over a whole frame (row: 8u -> 16s; column: 16s -> 16s).
    static zb::Plane<Zev16s> whole(1);
    zb::registerPair("zev", "row5_8u16s_only", [&](benchmark::State&) {
        c.size();
        static std::vector<Zev16s*> rows;
        rows.resize(zb::kH);
        for (int y = 0; y < zb::kH; ++y) rows[y] = whole.row(y);
        zeviFilterRowBorderPipeline_8u16s_C1R(c.src.data, c.src.step, rows.data(), ZeviSize{zb::kW, zb::kH}, kRow, K,
                                              2, zevBorderReplicate, 0, 1, c.rowBuf.data());
    });
    zb::registerPair("zev", "column5_16s_only", [&](benchmark::State&) {
        c.size();
        static std::vector<const Zev16s*> rows;
        rows.resize(zb::kH + K - 1);
        for (int i = 0; i < zb::kH + K - 1; ++i) rows[i] = whole.row(std::min(zb::kH - 1, std::max(0, i - 2)));
        zeviFilterColumnPipeline_16s_C1R(rows.data(), c.dst.data, c.dst.step, ZeviSize{zb::kW, zb::kH}, kCol, K, 1,
                                         c.colBuf.data());
    });
#ifdef ZEV_HAVE_OPENCV
    zb::registerPair("peer", "sepFilter5x5_8u16s", [&](benchmark::State&) {
        static const cv::Mat kx = (cv::Mat_<float>(1, K) << 1, 4, 6, 4, 1);
        static const cv::Mat ky = (cv::Mat_<float>(K, 1) << -1, -2, 0, 2, 1);
        cv::Mat s = c.src.mat(CV_8UC1), d = c.dst.mat(CV_16SC1);
        cv::sepFilter2D(s, d, CV_16S, kx, ky, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
    });
    zb::registerPair("peer", "box5x5_div25_8u16s", [&](benchmark::State&) {
        static const cv::Mat kx = (cv::Mat_<float>(1, K) << 1, 1, 1, 1, 1);
        static const cv::Mat ky = (cv::Mat_<float>(K, 1) << 1 / 25.f, 1 / 25.f, 1 / 25.f, 1 / 25.f, 1 / 25.f);
        cv::Mat s = c.src.mat(CV_8UC1), d = c.dst.mat(CV_16SC1);
        cv::sepFilter2D(s, d, CV_16S, kx, ky, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
    });
    zb::registerPair("peer", "gauss5x5_div256_8u16s", [&](benchmark::State&) {
        static const cv::Mat kx = (cv::Mat_<float>(1, K) << 1, 4, 6, 4, 1);
        static const cv::Mat ky = (cv::Mat_<float>(K, 1) << 1 / 256.f, 4 / 256.f, 6 / 256.f, 4 / 256.f, 1 / 256.f);
        cv::Mat s = c.src.mat(CV_8UC1), d = c.dst.mat(CV_16SC1);
        cv::sepFilter2D(s, d, CV_16S, kx, ky, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
    });
#endif
}

}  // namespace

ZEV_BENCH_MAIN(registerAll)
