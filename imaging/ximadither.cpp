// The preview's processing steps on a CxImage: brightness table, grey conversion, reduction to one
// bit by nearest colour, and the four dithering methods plus the three-row error diffusion.
//
// Every step produces exactly what the per-pixel rules below say. The rules are written once, as
// small functions of (level, x, y); the loops turn them into tables and thresholds and hand the
// rows to the kernels in ximakernels.cpp. No window or GDI call is made here.
#include <cstdint>
#include <cstring>
#include <new>

#include "imaging/ximage.h"
#include "imaging/ximakernels.h"

namespace {

const char kMsgTargetBpp[] = "DecreaseBpp: target BPP greater than source BPP";
const char kMsgAlloc[] = "CxImage::Create can't allocate memory";

inline BYTE GrayOf(RGBQUAD c)
{
    return static_cast<BYTE>((c.rgbRed * 306 + c.rgbGreen * 601 + c.rgbBlue * 117) >> 10);
}

// ---- the ordered methods as rules of (grey level, x, y); 1 = white ----

// Method 2: 4 x 4 ordered dither with the two levels {0, 1}.
const BYTE kOrdered4[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

int OrderedRule(int level, long x, long y)
{
    static const int levels[3] = {0, 1, 1};  // index 2 is never reached: I = 16 gives m = 0
    const int i = level * 16 / 255;
    const int m = i % 16, o = i / 16;
    return kOrdered4[y % 4][x % 4] < m ? levels[o + 1] : levels[o];
}

// Method 3: the generated Bayer table; only entries 0..15 are used.
void BuildBayerTable(BYTE* table)
{
    for (int i = 0; i < 256; i++) {
        int a = i >> 2, b = i & 3, d = 0;
        for (int k = 0; k < 4; k++) {
            d = (((d << 1) | ((a ^ b) & 1)) << 1) | (b & 1);
            a >>= 1;
            b >>= 1;
        }
        table[i] = static_cast<BYTE>(d);
    }
}

int BayerRule(int level, long x, long y, const BYTE* table)
{
    return level > table[(x % 4) + 4 * (y % 4)] ? 1 : 0;
}

// Method 4: 8 x 8 matrix on level / 4. The row of the matrix follows x and the column y: the
// transposed use is deliberate and must stay, or the preview stops matching the paper.
const BYTE kMatrix8[8][8] = {
    {0, 32, 8, 40, 2, 34, 10, 42},  {48, 16, 56, 24, 50, 18, 58, 26},
    {12, 44, 4, 36, 14, 46, 6, 38}, {60, 28, 52, 20, 62, 30, 54, 22},
    {3, 35, 11, 43, 1, 33, 9, 41},  {51, 19, 59, 27, 49, 17, 57, 25},
    {15, 47, 7, 39, 13, 45, 5, 37}, {63, 31, 55, 23, 61, 29, 53, 21},
};

int Matrix8Rule(int level, long x, long y)
{
    const int l = level >> 2;
    if (l == 0) return 0;
    return l >= kMatrix8[x % 8][y % 8] ? 1 : 0;
}

int OrderedMethodRule(long method, int level, long x, long y, const BYTE* bayer)
{
    switch (method) {
    case 2: return OrderedRule(level, x, y);
    case 3: return BayerRule(level, x, y, bayer);
    default: return Matrix8Rule(level, x, y);
    }
}

// All three ordered rules are monotonic in the level: brighter never turns a white dot black. So
// each position has a threshold, the lowest level that prints white, and a row is one vector
// compare against a pattern of sixteen thresholds (the matrices repeat every 4 or 8 pixels, in
// both directions).
struct RowPatterns {
    BYTE row[8][16];
    bool valid;  // false if some position never prints white (a threshold of 256 has no byte)
};

RowPatterns BuildRowPatterns(long method, const BYTE* bayer)
{
    RowPatterns p;
    p.valid = true;
    for (long y = 0; y < 8; y++)
        for (long x = 0; x < 8; x++) {
            int lo = 0, hi = 256;  // the threshold is in [lo, hi]; 256 means never
            while (lo < hi) {
                const int mid = (lo + hi) / 2;
                if (OrderedMethodRule(method, mid, x, y, bayer))
                    hi = mid;
                else
                    lo = mid + 1;
            }
            if (lo == 256) p.valid = false;
            p.row[y][x] = p.row[y][x + 8] = static_cast<BYTE>(lo);
        }
    return p;
}

// Methods 2 and 4 depend on nothing but their matrices: their patterns are worked out once.
const RowPatterns& FixedPatterns(long method)
{
    static const RowPatterns ordered = BuildRowPatterns(2, nullptr);
    static const RowPatterns matrix8 = BuildRowPatterns(4, nullptr);
    return method == 2 ? ordered : matrix8;
}

// Pixels of a 1-, 4- or 8-bit row as indices.
inline BYTE IndexInRow(const BYTE* row, WORD bpp, DWORD x)
{
    switch (bpp) {
    case 8: return row[x];
    case 4: return (x & 1) ? (row[x >> 1] & 0x0F) : (row[x >> 1] >> 4);
    default: return (row[x >> 3] >> (7 - (x & 7))) & 1;
    }
}

// A 1-bit row from a per-index table of bits.
void BitsFromIndexRow(const BYTE* src, WORD bpp, DWORD width, const BYTE* bitOf, BYTE* out,
                      DWORD outBytes)
{
    unsigned acc = 0;
    for (DWORD x = 0; x < width; x++) {
        acc = (acc << 1) | bitOf[IndexInRow(src, bpp, x)];
        if ((x & 7) == 7) out[x >> 3] = static_cast<BYTE>(acc);
    }
    DWORD done = width >> 3;
    if (width & 7) out[done++] = static_cast<BYTE>(acc << (8 - (width & 7)));
    if (done < outBytes) memset(out + done, 0, outBytes - done);
}

// When bitOf[i] is 1 exactly for i >= t (t in 0..255), a per-index table is one threshold.
bool IsThreshold(const BYTE* bitOf, BYTE* t)
{
    int first = 0;
    while (first < 256 && bitOf[first] == 0) first++;
    if (first == 256) return false;
    for (int i = first; i < 256; i++)
        if (bitOf[i] != 1) return false;
    *t = static_cast<BYTE>(first);
    return true;
}

long Percent(DWORD row, DWORD height)
{
    return static_cast<long>(100ull * row / height);
}

}  // namespace

void BuildBrightnessTable(int position, BYTE (&table)[256])
{
    for (int i = 0; i < 256; i++) {
        // Single precision, truncated toward zero, then clamped: for every position this is
        // i + 100 - 10 x position held to 0..255.
        const float v = static_cast<float>(i - 128) + static_cast<float>(228 - 10 * position) + 0.5f;
        int t = static_cast<int>(v);
        if (t < 0) t = 0;
        if (t > 255) t = 255;
        table[i] = static_cast<BYTE>(t);
    }
}

bool CxImage::Lut(const BYTE* table)
{
    if (m_dib == nullptr || table == nullptr) return false;
    RECT box = m_selectionBox;
    if (box.left < 0) box.left = 0;
    if (box.bottom < 0) box.bottom = 0;
    if (box.right > m_head.biWidth) box.right = m_head.biWidth;
    if (box.top > m_head.biHeight) box.top = m_head.biHeight;

    if (m_head.biClrUsed > 0) {
        if (m_selection != nullptr && m_head.biBitCount == 8 && IsGrayScale()) {
            // The pixel values of a grey image are its levels: map only the selected ones.
            if (box.left >= box.right || box.bottom >= box.top) return true;
            const DWORD boxHeight = static_cast<DWORD>(box.top - box.bottom);
            for (long y = box.bottom; y < box.top; y++) {
                m_progress = Percent(static_cast<DWORD>(y - box.bottom), boxHeight);
                if (m_escape) break;
                for (long x = box.left; x < box.right; x++)
                    if (SelectionIsInside(x, y)) BlindSetPixelIndex(x, y, table[BlindGetPixelIndex(x, y)]);
            }
        } else {
            const bool wasGray = IsGrayScale();
            RGBQUAD* pal = GetPalette();
            for (DWORD i = 0; i < m_head.biClrUsed; i++) {
                pal[i].rgbBlue = table[pal[i].rgbBlue];
                pal[i].rgbGreen = table[pal[i].rgbGreen];
                pal[i].rgbRed = table[pal[i].rgbRed];
            }
            m_lastColorValid = false;
            if (wasGray) GrayScale();
        }
    } else if (m_selection != nullptr) {
        if (box.left >= box.right || box.bottom >= box.top) return true;
        for (long y = box.bottom; y < box.top; y++)
            for (long x = box.left; x < box.right; x++)
                if (SelectionIsInside(x, y)) {
                    RGBQUAD c = GetPixelColor(x, y);
                    c.rgbRed = table[c.rgbRed];
                    c.rgbGreen = table[c.rgbGreen];
                    c.rgbBlue = table[c.rgbBlue];
                    SetPixelColor(x, y, c);
                }
    } else {
        // Every byte, row padding included.
        ximakernels::LutBytes(m_bits, m_head.biSizeImage, table);
    }
    return true;
}

bool CxImage::GrayScale()
{
    if (m_dib == nullptr) return false;
    const DWORD width = GetWidth(), height = GetHeight();

    if (m_head.biClrUsed == 0) {
        CxImage gray;
        if (!StartGrayCopy(gray)) return false;
        for (DWORD y = 0; y < height; y++) {
            BYTE* dst = gray.GetBits(y);
            ximakernels::GrayRow24(GetBits(y), dst, width);
            memset(dst + width, 0, gray.GetEffWidth() - width);
        }
        return Transfer(gray);
    }

    RGBQUAD* pal = GetPalette();
    for (DWORD i = 0; i < m_head.biClrUsed; i++) pal[i].rgbBlue = GrayOf(pal[i]);
    m_lastColorValid = false;

    if (m_head.biBitCount == 8) {
        if (m_bkgndIndex >= 0 && DWORD(m_bkgndIndex) < m_head.biClrUsed)
            m_bkgndIndex = pal[m_bkgndIndex].rgbBlue;
        BYTE lut[256];
        for (int i = 0; i < 256; i++) lut[i] = pal[i].rgbBlue;
        ximakernels::LutBytes(m_bits, m_head.biSizeImage, lut);
        SetGrayPalette();
        return true;
    }
    return GrayScaleFromPalette();
}

// An empty 8-bit grey image of this one's size, with its settings, selection and alpha mask.
bool CxImage::StartGrayCopy(CxImage& gray)
{
    gray.CopyInfo(*this);
    if (gray.Create(GetWidth(), GetHeight(), 8, m_type) == nullptr) {
        SetLastError(gray.GetLastError());
        return false;
    }
    gray.SelectionCopy(*this);
    gray.AlphaCopy(*this);
    gray.SetGrayPalette();
    return true;
}

// 1- and 4-bit images: an 8-bit image whose pixels are the grey levels (already in the palette's
// blue bytes) of the source's indices.
bool CxImage::GrayScaleFromPalette()
{
    const DWORD width = GetWidth(), height = GetHeight();
    CxImage gray;
    if (!StartGrayCopy(gray)) return false;
    const RGBQUAD* pal = GetPalette();
    BYTE level[16];
    for (DWORD i = 0; i < 16; i++) level[i] = i < m_head.biClrUsed ? pal[i].rgbBlue : 0;
    const WORD bpp = m_head.biBitCount;
    for (DWORD y = 0; y < height; y++) {
        const BYTE* src = GetBits(y);
        BYTE* dst = gray.GetBits(y);
        for (DWORD x = 0; x < width; x++) dst[x] = level[IndexInRow(src, bpp, x)];
        memset(dst + width, 0, gray.GetEffWidth() - width);
    }
    return Transfer(gray);
}

bool CxImage::DecreaseBpp(DWORD nbit, DWORD clrimportant)
{
    if (m_head.biBitCount < nbit) {
        SetLastError(kMsgTargetBpp);
        return false;
    }
    if (m_dib == nullptr || nbit != 1) return false;
    if (m_head.biBitCount == 1 && m_head.biClrImportant == 1) return true;

    const DWORD width = GetWidth(), height = GetHeight();
    CxImage tmp;
    if (tmp.Create(width, height, 1, m_type) == nullptr) return false;
    tmp.SetClrImportant(clrimportant);
    tmp.SelectionCopy(*this);
    tmp.AlphaCopy(*this);
    tmp.SetStdPalette();
    const DWORD outBytes = tmp.GetEffWidth();

    // The answer of the new image's nearest-colour search, per source colour: for paletted
    // sources one table entry per index, for 24-bit sources a rule on the channel sum.
    BYTE bitOf[256] = {};
    BYTE threshold = 0;
    bool useThreshold = false;
    bool sumRule = false;
    if (m_head.biClrUsed > 0) {
        for (DWORD i = 0; i < m_head.biClrUsed && i < 256; i++)
            bitOf[i] = tmp.GetNearestIndex(GetPaletteColor(static_cast<BYTE>(i)));
        useThreshold = m_head.biBitCount == 8 && IsThreshold(bitOf, &threshold);
    } else {
        // Against black (0) and white (1) with two important colours, white is nearer exactly
        // when (255-r)^2 + (255-g)^2 + (255-b)^2 < r^2 + g^2 + b^2, i.e. 510 (r+g+b) > 3 x 255^2,
        // i.e. r + g + b >= 383; a tie goes to black.
        const RGBQUAD* pal = tmp.GetPalette();
        const DWORD n = tmp.GetClrImportant() != 0 ? tmp.GetClrImportant() : tmp.GetNumColors();
        sumRule = n == 2 && pal[0].rgbRed == 0 && pal[0].rgbGreen == 0 && pal[0].rgbBlue == 0 &&
                  pal[1].rgbRed == 255 && pal[1].rgbGreen == 255 && pal[1].rgbBlue == 255;
    }
    BYTE pattern[16];
    memset(pattern, threshold, sizeof pattern);
    BYTE sumPattern[16];
    memset(sumPattern, 96, sizeof sumPattern);
    BYTE* sums = sumRule ? new (std::nothrow) BYTE[width] : nullptr;

    DWORD y = 0;
    for (; y < height; y++) {
        m_progress = Percent(y, height);
        if (m_escape) break;
        const BYTE* src = GetBits(y);
        BYTE* out = tmp.GetBits(y);
        if (m_head.biClrUsed > 0) {
            if (useThreshold)
                ximakernels::ThresholdRow(src, width, pattern, out, outBytes);
            else
                BitsFromIndexRow(src, m_head.biBitCount, width, bitOf, out, outBytes);
        } else if (sumRule && sums != nullptr) {
            // (r + g + b + 1) >> 2 >= 96 exactly when r + g + b >= 383.
            ximakernels::WeightedRow24(src, sums, width, 1, 1, 1, 1, 2);
            ximakernels::ThresholdRow(sums, width, sumPattern, out, outBytes);
        } else {
            memset(out, 0, outBytes);
            for (DWORD x = 0; x < width; x++)
                tmp.BlindSetPixelIndex(x, y, tmp.GetNearestIndex(GetPixelColor(x, y)));
        }
    }
    delete[] sums;
    // Rows left out by an escape stay black rather than uninitialised.
    for (; y < height; y++) memset(tmp.GetBits(y), 0, outBytes);
    Transfer(tmp);
    return true;
}

bool CxImage::Dither(long method)
{
    if (m_dib == nullptr) return false;
    if (m_head.biBitCount == 1) return true;
    if (!GrayScale()) return false;

    const DWORD width = GetWidth(), height = GetHeight();
    CxImage tmp;
    tmp.CopyInfo(*this);
    if (tmp.Create(width, height, 1, m_type) == nullptr) {
        SetLastError(tmp.GetLastError());
        return false;
    }
    tmp.SelectionCopy(*this);
    tmp.AlphaCopy(*this);
    const DWORD outBytes = tmp.GetEffWidth();

    DWORD y = 0;
    if (method >= 2 && method <= 4) {
        BYTE* bayer = nullptr;
        if (method == 3) {
            bayer = new (std::nothrow) BYTE[256];
            if (bayer == nullptr) {
                SetLastError(kMsgAlloc);
                return false;
            }
            BuildBayerTable(bayer);
        }
        // The patterns repeat every 8 rows.
        const RowPatterns patterns = method == 3 ? BuildRowPatterns(3, bayer) : FixedPatterns(method);
        const bool vector = patterns.valid;
        for (; y < height; y++) {
            m_progress = Percent(y, height);
            if (m_escape) break;
            const BYTE* src = GetBits(y);
            BYTE* out = tmp.GetBits(y);
            if (vector) {
                ximakernels::ThresholdRow(src, width, patterns.row[y % 8], out, outBytes);
            } else {
                memset(out, 0, outBytes);
                for (DWORD x = 0; x < width; x++)
                    tmp.BlindSetPixelIndex(x, y, static_cast<BYTE>(OrderedMethodRule(method, src[x], x, y, bayer)));
            }
        }
        delete[] bayer;
    } else {
        // Error diffusion in padded work rows that take turns: the rows being decided and the
        // rows above them in the picture that their error flows into (slot r % n holds picture
        // row r). Error pushed past an edge lands in the padding and is lost. Floyd-Steinberg
        // decides rows two at a time where there are two left.
        const bool floyd = method == 1;
        const DWORD n = 3;
        const size_t padded = ximakernels::PaddedRow(width);
        const size_t pad = ximakernels::kPadLeft;
        BYTE* work = new (std::nothrow) BYTE[(n + 2) * padded];
        if (work == nullptr) {
            SetLastError(kMsgAlloc);
            return false;
        }
        memset(work, 0, (n + 2) * padded);
        BYTE* levelsA = work + n * padded + pad;
        BYTE* levelsB = work + (n + 1) * padded + pad;
        auto slot = [&](DWORD row) { return work + (row % n) * padded + pad; };
        for (DWORD r = 0; r < n && r < height; r++) memcpy(slot(r), GetBits(r), width);
        while (y < height) {
            m_progress = Percent(y, height);
            if (m_escape) break;
            bool pair = false;
            if (floyd && y + 1 < height) {
                m_progress = Percent(y + 1, height);
                pair = m_escape == 0;
            }
            BYTE* out = tmp.GetBits(y);
            if (floyd && pair)
                ximakernels::FloydSteinbergRowPair(slot(y), slot(y + 1), slot(y + 2), levelsA, levelsB, width, out,
                                                   tmp.GetBits(y + 1), outBytes);
            else if (floyd)
                ximakernels::FloydSteinbergRow(slot(y), slot(y + 1), levelsA, width, out, outBytes);
            else
                ximakernels::SierraRow(slot(y), slot(y + 1), slot(y + 2), levelsA, width, out, outBytes);
            const DWORD done = pair ? 2 : 1;
            for (DWORD k = 0; k < done; k++)
                if (y + k + n < height) memcpy(slot(y + k), GetBits(y + k + n), width);
            y += done;
        }
        delete[] work;
    }
    for (; y < height; y++) memset(tmp.GetBits(y), 0, outBytes);

    RGBQUAD black = {0, 0, 0, 0}, white = {255, 255, 255, 0};
    if (tmp.GetNumColors() > 0) tmp.SetPaletteColor(0, black);
    if (tmp.GetNumColors() > 1) tmp.SetPaletteColor(1, white);
    return Transfer(tmp);
}
