// Test pictures and comparisons for the imaging tests.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "imaging/ximage.h"

namespace testimg {

enum class Content { Noise, Photo, Strokes, Flat };
enum class Palette { Random, Grey, BlackWhite };

// Fills `img` (already created) with content; paletted images get the given palette.
void Fill(CxImage& img, std::mt19937& rng, Content content, Palette palette);
// A new image of the given size and depth, filled.
bool Make(CxImage& img, std::mt19937& rng, DWORD width, DWORD height, DWORD bpp, Content content,
          Palette palette);
// An independent copy: header, palette, pixels, important colours, background index, masks.
bool Clone(const CxImage& src, CxImage& dst);
// Same size, depth, palette, important colours and pixels (inside the width; padding ignored).
testing::AssertionResult SameImage(const CxImage& expected, const CxImage& actual);
// A 24-bit image whose pixels are all (r, g, b), or an 8-bit grey one whose levels are all `level`.
bool Solid24(CxImage& img, DWORD w, DWORD h, BYTE r, BYTE g, BYTE b);
bool SolidGrey(CxImage& img, DWORD w, DWORD h, BYTE level);

const char* ContentName(Content c);

}  // namespace testimg
