// Minimal image files for the examples: PNG through libpng when it is there,
// binary PGM/PPM always.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#ifdef ZEV_HAVE_PNG
#include <png.h>
#endif

namespace demo {

struct Image8 {
    int width = 0, height = 0, channels = 1;
    std::vector<std::uint8_t> pixels;  // rows packed: step = width * channels
    int step() const { return width * channels; }
    std::uint8_t* data() { return pixels.data(); }
    const std::uint8_t* data() const { return pixels.data(); }
    static Image8 make(int w, int h, int c, std::uint8_t v = 0) {
        Image8 im;
        im.width = w, im.height = h, im.channels = c;
        im.pixels.assign(static_cast<std::size_t>(w) * h * c, v);
        return im;
    }
};

inline bool endsWith(const std::string& s, const char* tail) {
    std::string t(tail);
    return s.size() >= t.size() && s.compare(s.size() - t.size(), t.size(), t) == 0;
}

inline bool writePnm(const std::string& path, const Image8& im) {
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return false;
    std::fprintf(f, "P%d\n%d %d\n255\n", im.channels == 3 ? 6 : 5, im.width, im.height);
    bool ok = std::fwrite(im.data(), 1, im.pixels.size(), f) == im.pixels.size();
    return std::fclose(f) == 0 && ok;
}

inline bool readPnm(const std::string& path, Image8& im) {
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return false;
    int kind = 0, w = 0, h = 0, maxv = 0;
    bool ok = std::fscanf(f, "P%d %d %d %d", &kind, &w, &h, &maxv) == 4 && (kind == 5 || kind == 6) && maxv == 255 &&
              w > 0 && h > 0;
    if (ok) {
        std::fgetc(f);
        im = Image8::make(w, h, kind == 6 ? 3 : 1);
        ok = std::fread(im.data(), 1, im.pixels.size(), f) == im.pixels.size();
    }
    std::fclose(f);
    return ok;
}

#ifdef ZEV_HAVE_PNG
inline bool writePng(const std::string& path, const Image8& im) {
    png_image img{};
    img.version = PNG_IMAGE_VERSION;
    img.width = static_cast<png_uint_32>(im.width);
    img.height = static_cast<png_uint_32>(im.height);
    img.format = im.channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
    return png_image_write_to_file(&img, path.c_str(), 0, im.data(), im.step(), nullptr) != 0;
}

inline bool readPng(const std::string& path, Image8& im, int channels) {
    png_image img{};
    img.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&img, path.c_str())) return false;
    img.format = channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
    im = Image8::make(static_cast<int>(img.width), static_cast<int>(img.height), channels);
    bool ok = png_image_finish_read(&img, nullptr, im.data(), im.step(), nullptr) != 0;
    png_image_free(&img);
    return ok;
}
#endif

// Writes PNG where possible, else PGM/PPM; returns the path written or "".
inline std::string save(const std::string& stem, const Image8& im) {
#ifdef ZEV_HAVE_PNG
    if (writePng(stem + ".png", im)) return stem + ".png";
#endif
    std::string path = stem + (im.channels == 3 ? ".ppm" : ".pgm");
    return writePnm(path, im) ? path : std::string();
}

// Reads a PNG (if supported) or PGM/PPM file as `channels` channels.
inline bool load(const std::string& path, Image8& im, int channels) {
#ifdef ZEV_HAVE_PNG
    if (endsWith(path, ".png") || endsWith(path, ".PNG")) return readPng(path, im, channels);
#endif
    Image8 raw;
    if (!readPnm(path, raw)) return false;
    if (raw.channels == channels) {
        im = raw;
        return true;
    }
    im = Image8::make(raw.width, raw.height, channels);
    for (std::size_t i = 0; i < static_cast<std::size_t>(raw.width) * raw.height; ++i) {
        if (channels == 1) {
            const std::uint8_t* p = &raw.pixels[i * 3];
            im.pixels[i] = static_cast<std::uint8_t>((p[0] * 77 + p[1] * 150 + p[2] * 29 + 128) >> 8);
        } else {
            for (int c = 0; c < 3; ++c) im.pixels[i * 3 + c] = raw.pixels[i];
        }
    }
    return true;
}

}  // namespace demo
