// Row loops of the preview operations. See ximakernels.h for what each one computes.
#include "imaging/ximakernels.h"

#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#include <emmintrin.h>
#include <tmmintrin.h>
#endif

namespace ximakernels {

namespace {

// Bit order of a byte reversed: the vector compare gives pixel 0 in bit 0, the 1-bit image wants
// it in bit 7.
struct BitReverse {
    uint8_t v[256];
    constexpr BitReverse() : v()
    {
        for (int i = 0; i < 256; i++) {
            int r = 0;
            for (int b = 0; b < 8; b++)
                if (i & (1 << b)) r |= 0x80 >> b;
            v[i] = static_cast<uint8_t>(r);
        }
    }
};
constexpr BitReverse kReverse;

// The error a decided level leaves: level > 128 prints white and leaves level - 255, anything
// else prints black and leaves the level itself.
constexpr int ErrorOf(int level) { return level > 128 ? level - 255 : level; }

// Per grey level, the error already divided into the shares the neighbours receive. C++ division
// truncates toward zero, as the shares must.
struct FsShares {
    int8_t right7[256], below1[256], below5[256], below3[256];
    constexpr FsShares() : right7(), below1(), below5(), below3()
    {
        for (int level = 0; level < 256; level++) {
            right7[level] = static_cast<int8_t>(ErrorOf(level) * 7 / 16);
            below1[level] = static_cast<int8_t>(ErrorOf(level) * 1 / 16);
            below5[level] = static_cast<int8_t>(ErrorOf(level) * 5 / 16);
            below3[level] = static_cast<int8_t>(ErrorOf(level) * 3 / 16);
        }
    }
};
constexpr FsShares kFs;

// Three-row diffusion, weights out of 32.
struct SierraShares {
    int8_t w2[256], w3[256], w4[256], w5[256];
    constexpr SierraShares() : w2(), w3(), w4(), w5()
    {
        for (int level = 0; level < 256; level++) {
            w2[level] = static_cast<int8_t>(ErrorOf(level) * 2 / 32);
            w3[level] = static_cast<int8_t>(ErrorOf(level) * 3 / 32);
            w4[level] = static_cast<int8_t>(ErrorOf(level) * 4 / 32);
            w5[level] = static_cast<int8_t>(ErrorOf(level) * 5 / 32);
        }
    }
};
constexpr SierraShares kSierra;

inline int Clamp(int v)
{
    v = v < 0 ? 0 : v;
    return v > 255 ? 255 : v;
}

// Finishes a 1-bit row: the last partial byte (bits left-aligned) and zero padding.
inline void FlushBits(uint8_t* out, size_t width, unsigned acc, size_t outBytes)
{
    size_t done = width >> 3;
    if (width & 7) out[done++] = static_cast<uint8_t>(acc << (8 - (width & 7)));
    if (done < outBytes) memset(out + done, 0, outBytes - done);
}

}  // namespace

void LutBytes(uint8_t* p, size_t n, const uint8_t* table)
{
    // The brightness table (and the identity of a grey palette) is a saturating offset: when it
    // is one, the vector unit applies it sixteen bytes at a time.
    const int offset = int(table[128]) - 128;
    bool saturating = true;
    for (int i = 0; i < 256 && saturating; i++) saturating = table[i] == Clamp(i + offset);
    if (saturating && offset == 0) return;
    size_t i = 0;
#if defined(__SSE2__)
    if (saturating) {
        const __m128i d = _mm_set1_epi8(static_cast<char>(offset >= 0 ? offset : -offset));
        if (offset > 0) {
            for (; i + 16 <= n; i += 16) {
                __m128i* q = reinterpret_cast<__m128i*>(p + i);
                _mm_storeu_si128(q, _mm_adds_epu8(_mm_loadu_si128(q), d));
            }
        } else {
            for (; i + 16 <= n; i += 16) {
                __m128i* q = reinterpret_cast<__m128i*>(p + i);
                _mm_storeu_si128(q, _mm_subs_epu8(_mm_loadu_si128(q), d));
            }
        }
    }
#endif
    for (; i < n; i++) p[i] = table[p[i]];
}

namespace {

#if defined(__x86_64__) || defined(__i386__)
// Four pixels at a time from 16-byte loads: one byte shuffle puts red and green of each pixel side by
// side as 16-bit values, another its blue; two multiply-adds give the weighted sums exactly.
__attribute__((target("ssse3"))) size_t WeightedRow24Ssse3(const uint8_t* src, uint8_t* dst, size_t width, int wr,
                                                           int wg, int wb, int bias, int shift)
{
    const __m128i pickRG = _mm_setr_epi8(2, -1, 1, -1, 5, -1, 4, -1, 8, -1, 7, -1, 11, -1, 10, -1);
    const __m128i pickB = _mm_setr_epi8(0, -1, -1, -1, 3, -1, -1, -1, 6, -1, -1, -1, 9, -1, -1, -1);
    const __m128i wRG = _mm_set1_epi32((wg << 16) | wr);
    const __m128i wB = _mm_set1_epi32(wb);
    const __m128i vBias = _mm_set1_epi32(bias);
    const __m128i vShift = _mm_cvtsi32_si128(shift);
    size_t x = 0;
    // The last 16-byte load of a block reads 4 bytes past its 4 pixels: stop while that stays in the row.
    for (; x + 16 + 2 <= width; x += 16) {
        __m128i g[4];
        for (int k = 0; k < 4; k++) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 3 * (x + 4 * k)));
            __m128i sum = _mm_add_epi32(_mm_madd_epi16(_mm_shuffle_epi8(v, pickRG), wRG),
                                        _mm_madd_epi16(_mm_shuffle_epi8(v, pickB), wB));
            g[k] = _mm_srl_epi32(_mm_add_epi32(sum, vBias), vShift);
        }
        const __m128i lo = _mm_packs_epi32(g[0], g[1]), hi = _mm_packs_epi32(g[2], g[3]);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + x), _mm_packus_epi16(lo, hi));
    }
    return x;
}

bool HasSsse3()
{
    static const bool has = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("ssse3") != 0;
    }();
    return has;
}
#endif

}  // namespace

void WeightedRow24(const uint8_t* src, uint8_t* dst, size_t width, int wr, int wg, int wb, int bias, int shift)
{
    size_t x = 0;
#if defined(__x86_64__) || defined(__i386__)
    if (HasSsse3()) x = WeightedRow24Ssse3(src, dst, width, wr, wg, wb, bias, shift);
#endif
    for (; x < width; x++) {
        const uint8_t* p = src + 3 * x;
        dst[x] = static_cast<uint8_t>((p[2] * wr + p[1] * wg + p[0] * wb + bias) >> shift);
    }
}

void ThresholdRow(const uint8_t* src, size_t width, const uint8_t pattern[16], uint8_t* out,
                  size_t outBytes)
{
    size_t x = 0;
#if defined(__SSE2__)
    const __m128i t = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pattern));
    for (; x + 16 <= width; x += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + x));
        const unsigned m = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(v, t), v)));
        out[x >> 3] = kReverse.v[m & 0xFF];
        out[(x >> 3) + 1] = kReverse.v[m >> 8];
    }
#endif
    unsigned acc = 0;
    for (; x < width; x++) {
        acc = (acc << 1) | (src[x] >= pattern[x & 15] ? 1u : 0u);
        if ((x & 7) == 7) out[x >> 3] = static_cast<uint8_t>(acc);
    }
    FlushBits(out, width, acc, outBytes);
}

namespace {

// Error diffusion in two passes. Pass one decides a row: each pixel depends on the one before it
// through the share it receives along the row, a short serial chain kept in registers; the
// decided levels are kept. Pass two (SpreadRow) gives the rows above their shares. A cell takes
// the shares of the pixels below-left to below-right of it in the order those pixels were
// decided, each share (error x weight / divisor, truncated toward zero) added and clamped on its
// own, which is what a pixel-by-pixel walk does to it. Unlike the decisions, cells do not depend
// on one another, so eight go at a time.
//
// The Floyd-Steinberg pair kernel decides two rows at once to keep two independent chains in
// flight: the upper row runs a few pixels behind the lower one and works out each of its cells'
// values from the lower row's decided levels just before it needs them. (For the three-row
// diffusion the five shares per cell make the pair slower than two single rows.)
//
// `levels` rows have the shape of the work rows with zeros around the pixels; level 0 leaves no
// error, so the edges need no tests. `first` is the offset of the leftmost contributing pixel
// (-2 .. 0) and `weights` / `count` the shares in the order they arrive.
void SpreadRow(uint8_t* row, const uint8_t* levels, size_t width, int first, const int* weights, int count,
               int shift)
{
    size_t j = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128(), top = _mm_set1_epi16(255), half = _mm_set1_epi16(128);
    const __m128i bias = _mm_set1_epi16(static_cast<short>((1 << shift) - 1));
    const __m128i vShift = _mm_cvtsi32_si128(shift);
    __m128i w[5];
    for (int k = 0; k < count; k++) w[k] = _mm_set1_epi16(static_cast<short>(weights[k]));
    for (; j < width; j += 8) {  // the rows have room for the last block's overrun
        __m128i v = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(row + j)), zero);
        for (int k = 0; k < count; k++) {
            const __m128i l = _mm_unpacklo_epi8(
                _mm_loadl_epi64(reinterpret_cast<const __m128i*>(levels + ptrdiff_t(j) + first + k)), zero);
            const __m128i e = _mm_sub_epi16(l, _mm_and_si128(_mm_cmpgt_epi16(l, half), top));
            const __m128i m = _mm_mullo_epi16(e, w[k]);
            const __m128i share = _mm_sra_epi16(_mm_add_epi16(m, _mm_and_si128(_mm_srai_epi16(m, 15), bias)), vShift);
            v = _mm_min_epi16(_mm_max_epi16(_mm_add_epi16(v, share), zero), top);
        }
        _mm_storel_epi64(reinterpret_cast<__m128i*>(row + j), _mm_packus_epi16(v, v));
    }
#endif
    for (; j < width; j++) {
        int v = row[j];
        for (int k = 0; k < count; k++) v = Clamp(v + ErrorOf(levels[ptrdiff_t(j) + first + k]) * weights[k] / (1 << shift));
        row[j] = static_cast<uint8_t>(v);
    }
}

const int kFsBelow[3] = {1, 5, 3};            // from x-1, x, x+1
const int kSierraBelow1[5] = {2, 4, 5, 4, 2};  // from x-2 .. x+2
const int kSierraBelow2[3] = {2, 3, 2};        // from x-1 .. x+1

// One decided pixel: its bit into the row's output byte.
inline void PutBit(uint8_t* out, ptrdiff_t x, unsigned& acc, int level)
{
    acc = (acc << 1) | (level > 128 ? 1u : 0u);
    if ((x & 7) == 7) out[x >> 3] = static_cast<uint8_t>(acc);
}

}  // namespace

void FloydSteinbergRow(uint8_t* cur, uint8_t* next1, uint8_t* levels, size_t width, uint8_t* out, size_t outBytes)
{
    int c = cur[0];
    unsigned acc = 0;
    const ptrdiff_t w = static_cast<ptrdiff_t>(width);
    for (ptrdiff_t x = 0; x < w; x++) {
        const int level = c;
        PutBit(out, x, acc, level);
        levels[x] = static_cast<uint8_t>(level);
        c = Clamp(cur[x + 1] + kFs.right7[level]);
    }
    FlushBits(out, width, acc, outBytes);
    SpreadRow(next1, levels, width, -1, kFsBelow, 3, 4);
}

void FloydSteinbergRowPair(uint8_t* rowA, uint8_t* rowB, uint8_t* rowC, uint8_t* levelsA, uint8_t* levelsB,
                           size_t width, uint8_t* outA, uint8_t* outB, size_t outBytes)
{
    const ptrdiff_t w = static_cast<ptrdiff_t>(width);
    const uint8_t* la = levelsA;
    // Cell j of row B once row A's pixels j-1, j and j+1 are decided.
    auto cellB = [&](ptrdiff_t j) {
        int v = Clamp(rowB[j] + kFs.below1[la[j - 1]]);
        v = Clamp(v + kFs.below5[la[j]]);
        return Clamp(v + kFs.below3[la[j + 1]]);
    };
    int cA = rowA[0], cB = 0;
    unsigned accA = 0, accB = 0;
    auto stepA = [&](ptrdiff_t x) {
        const int level = cA;
        PutBit(outA, x, accA, level);
        levelsA[x] = static_cast<uint8_t>(level);
        cA = Clamp(rowA[x + 1] + kFs.right7[level]);
    };
    auto stepB = [&](ptrdiff_t x) {
        const int level = cB;
        PutBit(outB, x, accB, level);
        levelsB[x] = static_cast<uint8_t>(level);
        cB = Clamp(cellB(x + 1) + kFs.right7[level]);
    };
    const ptrdiff_t lead = w < 3 ? w : 3;  // row B's step x needs row A up to x + 2
    ptrdiff_t xA = 0, xB = 0;
    for (; xA < lead; xA++) stepA(xA);
    cB = cellB(0);
    for (; xA < w; xA++, xB++) {
        stepA(xA);
        stepB(xB);
    }
    for (; xB < w; xB++) stepB(xB);
    FlushBits(outA, width, accA, outBytes);
    FlushBits(outB, width, accB, outBytes);
    SpreadRow(rowC, levelsB, width, -1, kFsBelow, 3, 4);
}

void SierraRow(uint8_t* cur, uint8_t* next1, uint8_t* next2, uint8_t* levels, size_t width, uint8_t* out,
               size_t outBytes)
{
    int c0 = cur[0], c1 = cur[1];  // this pixel, and the next one with its share from the one before
    unsigned acc = 0;
    const ptrdiff_t w = static_cast<ptrdiff_t>(width);
    for (ptrdiff_t x = 0; x < w; x++) {
        const int level = c0;
        PutBit(out, x, acc, level);
        levels[x] = static_cast<uint8_t>(level);
        c0 = Clamp(c1 + kSierra.w5[level]);
        c1 = Clamp(cur[x + 2] + kSierra.w3[level]);
    }
    FlushBits(out, width, acc, outBytes);
    SpreadRow(next1, levels, width, -2, kSierraBelow1, 5, 5);
    SpreadRow(next2, levels, width, -1, kSierraBelow2, 3, 5);
}

}  // namespace ximakernels
