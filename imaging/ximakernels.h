// The inner loops of the preview's image operations, one image row (or one block of bytes) at a
// time. Each produces exactly the bits of the per-pixel rules of ximadither.cpp; they only use
// row pointers, tables and vector instructions to get there faster.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ximakernels {

// The width of every padded work row: `width` cells plus two spare cells at each end, so that
// error pushed past the left or right edge lands in a cell nobody reads.
inline size_t PaddedRow(size_t width) { return width + 4; }

// p[i] = table[p[i]] for n bytes.
void LutBytes(uint8_t* p, size_t n, const uint8_t* table);

// Grey value (red x 306 + green x 601 + blue x 117) >> 10 of `width` blue-green-red pixels.
void GrayRow24(const uint8_t* src, uint8_t* dst, size_t width);

// 1-bit output row (most significant bit first, `outBytes` bytes with the padding zeroed):
// pixel x is set when src[x] >= pattern[x % 16]. Every threshold must be 0..255.
void ThresholdRow(const uint8_t* src, size_t width, const uint8_t pattern[16], uint8_t* out,
                  size_t outBytes);

// Error diffusion of one row in padded work rows (see PaddedRow; the pointers address cell 0).
// `cur` is the row being decided, `next1` / `next2` the rows above it in the picture that take
// the spread error; the decisions go to `out` as in ThresholdRow.
void FloydSteinbergRow(uint8_t* cur, uint8_t* next1, size_t width, uint8_t* out, size_t outBytes);
void SierraRow(uint8_t* cur, uint8_t* next1, uint8_t* next2, size_t width, uint8_t* out,
               size_t outBytes);

}  // namespace ximakernels
