// zevcv_demo: a small motion pipeline on two frames.
//
//   zevcv_demo [frame1 frame2] [-o outdir]
//
// Without image arguments it draws a scene of two frames in memory: a ball, a
// box and a triangle that move between the frames over a shaded background.
// Each step prints its time and writes its result beside the inputs.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <sys/stat.h>

#include "image_io.h"
#include "zevcv.h"

namespace {

using demo::Image8;

struct Rgb {
    std::uint8_t r, g, b;
};

void paint(Image8& im, int x, int y, Rgb c) {
    if (x < 0 || y < 0 || x >= im.width || y >= im.height) return;
    std::uint8_t* p = &im.pixels[(static_cast<std::size_t>(y) * im.width + x) * 3];
    p[0] = c.r, p[1] = c.g, p[2] = c.b;
}

// One frame of the default scene; t moves the shapes.
Image8 drawScene(int w, int h, double t) {
    Image8 im = Image8::make(w, h, 3);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            // Sky-to-floor shading with a faint texture, so differences are not trivial.
            int tex = ((x * 7 + y * 13) % 11) - 5;
            Rgb c{static_cast<std::uint8_t>(60 + y * 100 / h + tex), static_cast<std::uint8_t>(90 + y * 80 / h + tex),
                  static_cast<std::uint8_t>(170 - y * 60 / h + tex)};
            paint(im, x, y, c);
        }
    // Ball.
    double cx = w * (0.25 + 0.12 * t), cy = h * (0.35 + 0.05 * t), r = h * 0.12;
    for (int y = static_cast<int>(cy - r); y <= cy + r; ++y)
        for (int x = static_cast<int>(cx - r); x <= cx + r; ++x)
            if ((x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r) paint(im, x, y, {230, 70, 40});
    // Box.
    int bx = static_cast<int>(w * (0.60 - 0.06 * t)), by = static_cast<int>(h * 0.55), bw = w / 6, bh = h / 4;
    for (int y = by; y < by + bh; ++y)
        for (int x = bx; x < bx + bw; ++x) paint(im, x, y, {250, 210, 60});
    // Triangle.
    double tx = w * 0.2, ty = h * (0.92 - 0.08 * t), ts = h * 0.3;
    for (int y = static_cast<int>(ty - ts); y <= ty; ++y) {
        double half = (y - (ty - ts)) * 0.6;
        for (int x = static_cast<int>(tx - half); x <= tx + half; ++x) paint(im, x, y, {60, 200, 90});
    }
    return im;
}

Image8 toGray(const Image8& c) {
    Image8 g = Image8::make(c.width, c.height, 1);
    for (std::size_t i = 0; i < g.pixels.size(); ++i) {
        const std::uint8_t* p = &c.pixels[i * 3];
        g.pixels[i] = static_cast<std::uint8_t>((p[0] * 77 + p[1] * 150 + p[2] * 29 + 128) >> 8);
    }
    return g;
}

// Stretches a difference image so that small changes become visible.
Image8 stretch(const Image8& im, int gain) {
    Image8 out = im;
    for (auto& v : out.pixels) v = static_cast<std::uint8_t>(std::min(255, v * gain));
    return out;
}

class Pipeline {
public:
    explicit Pipeline(std::string outDir) : out_(std::move(outDir)) {}

    // Runs one step, prints its status and time; returns false on an error status.
    bool step(const char* name, const std::function<ZevStatus()>& fn) {
        auto t0 = std::chrono::steady_clock::now();
        ZevStatus st = fn();
        double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
        std::printf("  %-44s %8.3f ms  status %d\n", name, ms, st);
        if (st < 0) ++failures_;
        return st >= 0;
    }
    void save(const char* stem, const Image8& im) {
        std::string path = demo::save(out_ + "/" + stem, im);
        std::printf("      -> %s\n", path.empty() ? "(could not write)" : path.c_str());
    }
    int failures() const { return failures_; }

private:
    std::string out_;
    int failures_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    std::string outDir = "zevcv_demo_out";
    std::string paths[2];
    int nPaths = 0;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "-o") && i + 1 < argc) outDir = argv[++i];
        else if (!std::strcmp(argv[i], "-h") || !std::strcmp(argv[i], "--help")) {
            std::printf("usage: %s [frame1 frame2] [-o outdir]\n", argv[0]);
            return 0;
        } else if (nPaths < 2) paths[nPaths++] = argv[i];
    }
    if (nPaths == 1) {
        std::fprintf(stderr, "give two frames, or none for the built-in scene\n");
        return 2;
    }
    mkdir(outDir.c_str(), 0755);

    const ZevLibraryVersion* v = zevcvGetLibVersion();
    std::printf("%s %s\n", v->name, v->versionText);

    Image8 c1, c2;
    if (nPaths == 2) {
        if (!demo::load(paths[0], c1, 3) || !demo::load(paths[1], c2, 3)) {
            std::fprintf(stderr, "cannot read %s or %s (PNG, PGM or PPM)\n", paths[0].c_str(), paths[1].c_str());
            return 2;
        }
        if (c1.width != c2.width || c1.height != c2.height) {
            std::fprintf(stderr, "the two frames differ in size\n");
            return 2;
        }
    } else {
        c1 = drawScene(640, 480, 0.0);
        c2 = drawScene(640, 480, 1.0);
    }
    const ZeviSize roi{c1.width, c1.height};
    std::printf("frames: %d x %d\n", roi.width, roi.height);

    Pipeline p(outDir);
    p.save("frame1", c1);
    p.save("frame2", c2);
    Image8 g1 = toGray(c1), g2 = toGray(c2);
    p.save("frame1_gray", g1);

    // 1. What moved: absolute difference of the gray frames.
    Image8 diff = Image8::make(roi.width, roi.height, 1);
    p.step("absolute difference, gray frames", [&] {
        return zeviAbsDiff_8u_C1R(g1.data(), g1.step(), g2.data(), g2.step(), diff.data(), diff.step(), roi);
    });
    p.save("motion_gray", stretch(diff, 3));

    // 2. The same on colour: one channel per colour, three times the width.
    Image8 cdiff = Image8::make(roi.width, roi.height, 3);
    p.step("absolute difference, colour frames", [&] {
        return zeviAbsDiff_8u_C3R(c1.data(), c1.step(), c2.data(), c2.step(), cdiff.data(), cdiff.step(), roi);
    });
    p.save("motion_colour", stretch(cdiff, 3));

    // 3. Distance of every pixel from mid-gray: a contrast map of frame 2.
    Image8 contrast = Image8::make(roi.width, roi.height, 1);
    p.step("absolute difference from a constant (128)", [&] {
        return zeviAbsDiffC_8u_C1R(g2.data(), g2.step(), contrast.data(), contrast.step(), roi, 128);
    });
    p.save("contrast", stretch(contrast, 2));

    // 4. Float path: the difference of the frames in single precision.
    std::vector<Zev32f> f1(g1.pixels.begin(), g1.pixels.end()), f2(g2.pixels.begin(), g2.pixels.end()),
        fd(g1.pixels.size());
    const int fstep = roi.width * 4;
    p.step("absolute difference, 32-bit float", [&] {
        return zeviAbsDiff_32f_C1R(f1.data(), fstep, f2.data(), fstep, fd.data(), fstep, roi);
    });
    std::size_t moving = 0;
    for (float x : fd) moving += x > 20.f;
    std::printf("      %zu of %zu pixels changed by more than 20 levels\n", moving, fd.size());

    // 5. Statistics of the motion: mean and deviation of the difference, where it
    // is largest, and how much the moving shapes changed (the L1 and L2 norms of
    // the frame difference over the pixels that moved).
    Zev64f mean = 0, dev = 0;
    p.step("mean and deviation of the difference", [&] {
        return zeviMean_StdDev_8u_C1R(diff.data(), diff.step(), roi, &mean, &dev);
    });
    std::printf("      mean %.3f, deviation %.3f\n", mean, dev);
    Zev32f lo = 0, hi = 0;
    ZeviPoint loAt{}, hiAt{};
    p.step("extremes of the difference with positions", [&] {
        return zeviMinMaxIndx_8u_C1R(diff.data(), diff.step(), roi, &lo, &hi, &loAt, &hiAt);
    });
    std::printf("      smallest %.0f at (%d, %d), largest %.0f at (%d, %d)\n", lo, loAt.x, loAt.y, hi, hiAt.x,
                hiAt.y);
    Image8 moved = Image8::make(roi.width, roi.height, 1);
    for (std::size_t i = 0; i < moved.pixels.size(); ++i) moved.pixels[i] = diff.pixels[i] > 20 ? 255 : 0;
    p.save("moved_mask", moved);
    Zev64f l1 = 0, l2 = 0;
    p.step("L1 and L2 norms of the change where it moved", [&] {
        ZevStatus st = zeviNormDiff_L1_8u_C1MR(g1.data(), g1.step(), g2.data(), g2.step(), moved.data(),
                                               moved.step(), roi, &l1);
        if (st < 0) return st;
        return zeviNormDiff_L2_8u_C1MR(g1.data(), g1.step(), g2.data(), g2.step(), moved.data(), moved.step(), roi,
                                       &l2);
    });
    std::printf("      L1 %.0f, L2 %.1f\n", l1, l2);

    // 6. Smoothing: a 5x5 average of frame 2 and a Gaussian blur in float.
    Image8 smooth = Image8::make(roi.width, roi.height, 1);
    p.step("5x5 average (replicated border)", [&] {
        int size = 0;
        ZevStatus st = zeviFilterLowpassGetBufferSize_8u_C1R(roi, zevMskSize5x5, &size);
        if (st < 0) return st;
        std::vector<Zev8u> buf(static_cast<std::size_t>(size));
        return zeviFilterLowpassBorder_8u_C1R(g2.data(), g2.step(), smooth.data(), smooth.step(), roi, zevMskSize5x5,
                                              zevBorderReplicate, 0, buf.data());
    });
    p.save("smooth_5x5", smooth);
    std::vector<Zev32f> blurred(f2.size());
    p.step("Gaussian blur, 9 taps, sigma 2.5, float", [&] {
        int size = 0;
        ZevStatus st = zeviFilterGaussGetBufferSize_32f_C1R(roi, 9, &size);
        if (st < 0) return st;
        std::vector<Zev8u> buf(static_cast<std::size_t>(size));
        return zeviFilterGaussBorder_32f_C1R(f2.data(), fstep, blurred.data(), fstep, roi, 9, 2.5f,
                                             zevBorderReplicate, 0.f, buf.data());
    });
    Image8 blurred8 = Image8::make(roi.width, roi.height, 1);
    for (std::size_t i = 0; i < blurred.size(); ++i)
        blurred8.pixels[i] = static_cast<std::uint8_t>(std::clamp(blurred[i] + 0.5f, 0.f, 255.f));
    p.save("gauss_9", blurred8);

    // 7. Gradient: Sobel derivatives in both directions, shown as their magnitude.
    std::vector<Zev16s> gx(g2.pixels.size()), gy(g2.pixels.size());
    const int gstep = roi.width * 2;
    p.step("Sobel 3x3, both directions (8u to 16s)", [&] {
        int sx = 0, sy = 0;
        ZevStatus st = zeviFilterSobelVertGetBufferSize_8u16s_C1R(roi, zevMskSize3x3, &sx);
        if (st >= 0) st = zeviFilterSobelHorizGetBufferSize_8u16s_C1R(roi, zevMskSize3x3, &sy);
        if (st < 0) return st;
        std::vector<Zev8u> buf(static_cast<std::size_t>(std::max(sx, sy)));
        st = zeviFilterSobelVertBorder_8u16s_C1R(g2.data(), g2.step(), gx.data(), gstep, roi, zevMskSize3x3,
                                                 zevBorderReplicate, 0, buf.data());
        if (st < 0) return st;
        return zeviFilterSobelHorizBorder_8u16s_C1R(g2.data(), g2.step(), gy.data(), gstep, roi, zevMskSize3x3,
                                                    zevBorderReplicate, 0, buf.data());
    });
    Image8 edges = Image8::make(roi.width, roi.height, 1);
    Image8 dx = Image8::make(roi.width, roi.height, 1), dy = dx;
    for (std::size_t i = 0; i < gx.size(); ++i) {
        int m = std::abs(gx[i]) + std::abs(gy[i]);
        edges.pixels[i] = static_cast<std::uint8_t>(std::min(255, m));
        dx.pixels[i] = static_cast<std::uint8_t>(std::clamp(128 + gx[i] / 4, 0, 255));
        dy.pixels[i] = static_cast<std::uint8_t>(std::clamp(128 + gy[i] / 4, 0, 255));
    }
    p.save("sobel_dx", dx);
    p.save("sobel_dy", dy);
    p.save("gradient_magnitude", edges);

    std::printf("done: pictures in %s/\n", outDir.c_str());
    return p.failures() ? 1 : 0;
}
