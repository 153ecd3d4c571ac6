// The preview's processing rules written the plain way: pixel by pixel through CxImage's
// accessors, in the order the rules are stated. The tests hold the product's fast loops to
// these, bit for bit.
#pragma once

#include "imaging/ximage.h"

namespace reference {

bool Lut(CxImage& img, const BYTE* table);
bool GrayScale(CxImage& img);
bool DecreaseBpp1(CxImage& img);
bool Dither(CxImage& img, long method);

// The whole preview step after loading: brightness for `position`, then method 0 (nearest colour)
// or Dither(method) unless `greyscale`.
void Preview(CxImage& img, int position, long method, bool greyscale);

}  // namespace reference
