// Shared bits of the imaging benchmarks: a steady clock, medians and the test pictures.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "imaging/ximage.h"

namespace bench {

inline double NowMicros()
{
    using namespace std::chrono;
    return duration<double, std::micro>(steady_clock::now().time_since_epoch()).count();
}

inline double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

inline uint32_t Next(uint32_t& s)
{
    s ^= s << 13;
    s ^= s >> 17;
    s ^= s << 5;
    return s;
}

inline int Clamp(double v) { return v < 0 ? 0 : v > 255 ? 255 : static_cast<int>(v); }

// The preview's sample: a 96 x 102 photo-like 24-bit picture (soft gradients, a highlight, grain).
inline void MakePreviewPicture(std::vector<uint8_t>& bits, uint32_t& stride)
{
    const int w = 96, h = 102;
    stride = ((w * 24 + 31) / 32) * 4;
    bits.assign(size_t(stride) * h, 0);
    uint32_t seed = 12345;
    for (int y = 0; y < h; y++)
        for (int x = 0; x < w; x++)
            for (int c = 0; c < 3; c++) {
                const double fx = x / 95.0, fy = y / 101.0;
                const double d = (fx - 0.4) * (fx - 0.4) + (fy - 0.6) * (fy - 0.6);
                const double v = 120 + 80 * std::sin(5 * fx + c) * std::cos(3 * fy + 0.5 * c) + 90 * std::exp(-d * 10) -
                                 30 * fy + int(Next(seed) % 13) - 6;
                bits[size_t(y) * stride + 3 * x + c] = static_cast<uint8_t>(Clamp(v));
            }
}

// A 576 x 4096 receipt: mostly white paper, lines of text-like strokes, rules, a gradient band and
// a photo area, as an 8-bit grey image (rows bottom-up, as stored).
inline void MakeReceipt(CxImage& img)
{
    const int w = 576, h = 4096;
    img.Create(w, h, 8, 0);
    img.SetGrayPalette();
    uint32_t seed = 99;
    for (int ty = 0; ty < h; ty++) {
        uint8_t* row = img.GetBits(static_cast<DWORD>(h - 1 - ty));
        for (int x = 0; x < w; x++) {
            int v = 255;
            if (ty >= 300 && ty < 800) {  // photo area
                const double fx = x / 575.0, fy = (ty - 300) / 499.0;
                v = Clamp(128 + 90 * std::sin(7 * fx + 2 * fy) * std::cos(5 * fy) + 40 * fx - 30 * fy +
                          int(Next(seed) % 21) - 10);
            } else if (ty >= 900 && ty < 1000) {  // gradient band
                v = x * 255 / 575;
            } else if ((ty % 40) >= 8 && (ty % 40) < 32 && x >= 24 && x < 552) {  // a text line
                const int cx = (x - 24) % 18, cy = (ty % 40) - 8;
                const uint32_t glyph = ((x - 24) / 18) * 2654435761u + (ty / 40) * 40503u;
                const bool stem = cx < 3 && (glyph & 1);
                const bool bar = (cy < 3 || (cy > 10 && cy < 13) || cy > 20) && cx < 12 && (glyph & 6);
                const bool diag = std::abs(cx - cy / 2) < 2 && (glyph & 8);
                if ((stem || bar || diag) && (glyph % 7) != 0) v = 10 + int(glyph % 40);
            } else if ((ty % 400) == 390 && x % 8 < 5) {  // dashed rule
                v = 0;
            }
            row[x] = static_cast<uint8_t>(v);
        }
    }
}

}  // namespace bench
