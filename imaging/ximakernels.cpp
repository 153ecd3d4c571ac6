// Row loops of the preview operations. See ximakernels.h for what each one computes.
#include "imaging/ximakernels.h"

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
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

// Per grey level: the error the level leaves (level > 128 prints white and leaves level - 255,
// anything else prints black and leaves the level itself) already divided into the shares each
// neighbour receives. C++ division truncates toward zero, as the shares must.
struct FsShares {
    int8_t right7[256], downLeft3[256], down5[256], downRight1[256];
    constexpr FsShares() : right7(), downLeft3(), down5(), downRight1()
    {
        for (int level = 0; level < 256; level++) {
            const int err = level > 128 ? level - 255 : level;
            right7[level] = static_cast<int8_t>(err * 7 / 16);
            downLeft3[level] = static_cast<int8_t>(err * 3 / 16);
            down5[level] = static_cast<int8_t>(err * 5 / 16);
            downRight1[level] = static_cast<int8_t>(err * 1 / 16);
        }
    }
};
constexpr FsShares kFs;

// Three-row diffusion, weights out of 32: 2, 3, 4 and 5 are all the distinct ones.
struct SierraShares {
    int8_t w2[256], w3[256], w4[256], w5[256];
    constexpr SierraShares() : w2(), w3(), w4(), w5()
    {
        for (int level = 0; level < 256; level++) {
            const int err = level > 128 ? level - 255 : level;
            w2[level] = static_cast<int8_t>(err * 2 / 32);
            w3[level] = static_cast<int8_t>(err * 3 / 32);
            w4[level] = static_cast<int8_t>(err * 4 / 32);
            w5[level] = static_cast<int8_t>(err * 5 / 32);
        }
    }
};
constexpr SierraShares kSierra;

struct GrayWeights {
    uint32_t r[256], g[256], b[256];
    constexpr GrayWeights() : r(), g(), b()
    {
        for (uint32_t i = 0; i < 256; i++) {
            r[i] = 306 * i;
            g[i] = 601 * i;
            b[i] = 117 * i;
        }
    }
};
constexpr GrayWeights kGray;

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

void GrayRow24(const uint8_t* src, uint8_t* dst, size_t width)
{
    for (size_t x = 0; x < width; x++, src += 3)
        dst[x] = static_cast<uint8_t>((kGray.b[src[0]] + kGray.g[src[1]] + kGray.r[src[2]]) >> 10);
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

void FloydSteinbergRow(uint8_t* cur, uint8_t* next1, size_t width, uint8_t* out, size_t outBytes)
{
    // The levels still changing live in registers: c is the pixel being decided; n0, n1 are the
    // cells of the next row at x-1 and x, which have already taken some of their shares. A cell
    // takes its shares in the same order as in a pixel-by-pixel walk (from x-1, x, then x+1),
    // each clamped on its own, so the results are identical.
    int c = cur[0];
    int n0 = next1[-1];
    int n1 = next1[0];
    unsigned acc = 0;
    const ptrdiff_t w = static_cast<ptrdiff_t>(width);
    for (ptrdiff_t x = 0; x < w; x++) {
        const int level = c;
        acc = (acc << 1) | (level > 128 ? 1u : 0u);
        if ((x & 7) == 7) out[x >> 3] = static_cast<uint8_t>(acc);
        c = Clamp(cur[x + 1] + kFs.right7[level]);
        n0 = Clamp(n0 + kFs.downLeft3[level]);
        next1[x - 1] = static_cast<uint8_t>(n0);
        n1 = Clamp(n1 + kFs.down5[level]);
        const int n2 = Clamp(next1[x + 1] + kFs.downRight1[level]);
        n0 = n1;
        n1 = n2;
    }
    next1[w - 1] = static_cast<uint8_t>(n0);
    FlushBits(out, width, acc, outBytes);
}

void SierraRow(uint8_t* cur, uint8_t* next1, uint8_t* next2, size_t width, uint8_t* out,
               size_t outBytes)
{
    // Same scheme as FloydSteinbergRow with wider windows: a0..a3 are the next row's cells x-2 ..
    // x+1, b0, b1 the row after it at x-1 and x, c0, c1 this row at x and x+1.
    int c0 = cur[0], c1 = cur[1];
    int a0 = next1[-2], a1 = next1[-1], a2 = next1[0], a3 = next1[1];
    int b0 = next2[-1], b1 = next2[0];
    unsigned acc = 0;
    const ptrdiff_t w = static_cast<ptrdiff_t>(width);
    for (ptrdiff_t x = 0; x < w; x++) {
        const int level = c0;
        acc = (acc << 1) | (level > 128 ? 1u : 0u);
        if ((x & 7) == 7) out[x >> 3] = static_cast<uint8_t>(acc);
        const int s2 = kSierra.w2[level], s3 = kSierra.w3[level];
        const int s4 = kSierra.w4[level], s5 = kSierra.w5[level];
        c0 = Clamp(c1 + s5);
        c1 = Clamp(cur[x + 2] + s3);
        a0 = Clamp(a0 + s2);
        next1[x - 2] = static_cast<uint8_t>(a0);
        a0 = Clamp(a1 + s4);
        a1 = Clamp(a2 + s5);
        a2 = Clamp(a3 + s4);
        a3 = Clamp(next1[x + 2] + s2);
        b0 = Clamp(b0 + s2);
        next2[x - 1] = static_cast<uint8_t>(b0);
        b0 = Clamp(b1 + s3);
        b1 = Clamp(next2[x + 1] + s2);
    }
    next1[w - 2] = static_cast<uint8_t>(a0);
    next1[w - 1] = static_cast<uint8_t>(a1);
    next2[w - 1] = static_cast<uint8_t>(b0);
    FlushBits(out, width, acc, outBytes);
}

}  // namespace ximakernels
