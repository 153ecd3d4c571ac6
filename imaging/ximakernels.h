// The inner loops of the preview's image operations, one image row (or one block of bytes) at a
// time. Each produces exactly the bits of the per-pixel rules of ximadither.cpp; they only use
// row pointers, tables and vector instructions to get there faster.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ximakernels {

// The size of every padded work row of the error diffusion, in cells, with cell 0 at offset
// kPadLeft: two spare cells on the left and eighteen on the right, so that error pushed past an
// edge lands in a cell nobody reads and the vector loops may run past the last pixel. The rows of
// decided levels have the same shape and must be zero outside the pixels.
const size_t kPadLeft = 2;
inline size_t PaddedRow(size_t width) { return width + 20; }

// p[i] = table[p[i]] for n bytes.
void LutBytes(uint8_t* p, size_t n, const uint8_t* table);

// dst[x] = (red x wr + green x wg + blue x wb + bias) >> shift for `width` blue-green-red pixels;
// the result must fit a byte. Grey is (306, 601, 117, 0, 10).
void WeightedRow24(const uint8_t* src, uint8_t* dst, size_t width, int wr, int wg, int wb, int bias, int shift);
inline void GrayRow24(const uint8_t* src, uint8_t* dst, size_t width)
{
    WeightedRow24(src, dst, width, 306, 601, 117, 0, 10);
}

// 1-bit output row (most significant bit first, `outBytes` bytes with the padding zeroed):
// pixel x is set when src[x] >= pattern[x % 16]. Every threshold must be 0..255.
void ThresholdRow(const uint8_t* src, size_t width, const uint8_t pattern[16], uint8_t* out,
                  size_t outBytes);

// Error diffusion in padded work rows (see PaddedRow; the pointers address cell 0). The row kernels
// decide `cur` and spread its error into the one (Floyd-Steinberg) or two (three-row diffusion)
// rows above it in the picture; the pair kernel decides `rowA` and the row above it, `rowB`, and
// spreads into `rowC` above those. `levels` rows are scratch for the decided levels. The
// decisions go to `out` rows as in ThresholdRow.
void FloydSteinbergRow(uint8_t* cur, uint8_t* next1, uint8_t* levels, size_t width, uint8_t* out, size_t outBytes);
void FloydSteinbergRowPair(uint8_t* rowA, uint8_t* rowB, uint8_t* rowC, uint8_t* levelsA, uint8_t* levelsB,
                           size_t width, uint8_t* outA, uint8_t* outB, size_t outBytes);
void SierraRow(uint8_t* cur, uint8_t* next1, uint8_t* next2, uint8_t* levels, size_t width, uint8_t* out,
               size_t outBytes);

}  // namespace ximakernels
