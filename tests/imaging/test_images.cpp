#include "test_images.h"

#include <cmath>
#include <cstring>
#include <sstream>

namespace testimg {

namespace {

// A value 0..255 for position (x, y) of a picture of the given kind.
int Sample(Content content, std::mt19937& rng, long x, long y, long w, long h, int channel,
           const double* params)
{
    switch (content) {
    case Content::Noise:
        return static_cast<int>(rng() & 0xFF);
    case Content::Photo: {
        // Soft gradients and blobs with a little grain, like a photograph.
        const double fx = double(x) / (w > 1 ? w - 1 : 1), fy = double(y) / (h > 1 ? h - 1 : 1);
        const double dx = fx - params[0], dy = fy - params[1];
        double v = 128 + 90 * std::sin(6.0 * fx + params[2] + channel) * std::cos(4.0 * fy + params[3]) +
                   60 * std::exp(-(dx * dx + dy * dy) * 12.0) - 40 * fy;
        v += int(rng() % 17) - 8;
        return v < 0 ? 0 : v > 255 ? 255 : static_cast<int>(v);
    }
    case Content::Strokes: {
        // Mostly white with dark, text-like bars and a few grey ones.
        const long cell = (x / 3) * 7 + (y / 5) * 13;
        if ((x % 9) < 2 && (y % 11) < 8) return (cell % 3) ? 0 : 96;
        if ((y % 11) == 9 && (x % 23) < 15) return 30;
        return (rng() % 50 == 0) ? 200 : 255;
    }
    case Content::Flat:
    default:
        return static_cast<int>(params[4]);
    }
}

}  // namespace

const char* ContentName(Content c)
{
    switch (c) {
    case Content::Noise: return "noise";
    case Content::Photo: return "photo";
    case Content::Strokes: return "strokes";
    default: return "flat";
    }
}

void Fill(CxImage& img, std::mt19937& rng, Content content, Palette palette)
{
    const long w = static_cast<long>(img.GetWidth()), h = static_cast<long>(img.GetHeight());
    double params[5];
    for (int i = 0; i < 4; i++) params[i] = (rng() % 1000) / 1000.0 * (i < 2 ? 1.0 : 6.28);
    params[4] = rng() % 256;
    const WORD bpp = img.GetBpp();
    if (bpp == 24) {
        for (long y = 0; y < h; y++) {
            BYTE* row = img.GetBits(static_cast<DWORD>(y));
            for (long x = 0; x < w; x++)
                for (int c = 0; c < 3; c++)
                    row[3 * x + c] = static_cast<BYTE>(Sample(content, rng, x, y, w, h, c, params));
        }
        return;
    }
    const DWORD n = img.GetNumColors();
    RGBQUAD* pal = img.GetPalette();
    for (DWORD i = 0; i < n; i++) {
        if (palette == Palette::Grey) {
            const BYTE v = static_cast<BYTE>(255 / (n - 1) * i);
            pal[i] = RGBQUAD{v, v, v, 0};
        } else if (palette == Palette::BlackWhite) {
            const BYTE v = (i & 1) ? 255 : 0;
            pal[i] = RGBQUAD{v, v, v, 0};
        } else {
            pal[i] = RGBQUAD{static_cast<BYTE>(rng()), static_cast<BYTE>(rng()), static_cast<BYTE>(rng()),
                             static_cast<BYTE>(rng())};
        }
    }
    img.ClearNearestCache();
    for (long y = 0; y < h; y++)
        for (long x = 0; x < w; x++) {
            const int v = Sample(content, rng, x, y, w, h, 0, params);
            img.SetPixelIndex(x, y, static_cast<BYTE>((v * int(n)) >> 8));
        }
    // Padding bytes hold junk, as rows from elsewhere may.
    const DWORD used = (img.GetWidth() * bpp + 7) / 8;
    for (long y = 0; y < h; y++)
        for (DWORD i = used; i < img.GetEffWidth(); i++) img.GetBits(static_cast<DWORD>(y))[i] = static_cast<BYTE>(rng());
}

bool Make(CxImage& img, std::mt19937& rng, DWORD width, DWORD height, DWORD bpp, Content content,
          Palette palette)
{
    img.Destroy();
    if (img.Create(width, height, bpp, 0) == nullptr) return false;
    Fill(img, rng, content, palette);
    return true;
}

bool Clone(const CxImage& src, CxImage& dst)
{
    dst.Destroy();
    dst.CopyInfo(src);
    if (dst.Create(src.GetWidth(), src.GetHeight(), src.GetBpp(), src.GetType()) == nullptr) return false;
    memcpy(dst.GetDIB(), src.GetDIB(), src.GetDIBSize());
    dst.SetClrImportant(src.GetClrImportant());
    dst.SetBkgndIndex(src.GetBkgndIndex());
    dst.SelectionCopy(src);
    dst.AlphaCopy(src);
    dst.ClearNearestCache();
    return true;
}

testing::AssertionResult SameImage(const CxImage& e, const CxImage& a)
{
    if (e.IsValid() != a.IsValid())
        return testing::AssertionFailure() << "valid " << e.IsValid() << " vs " << a.IsValid();
    if (!e.IsValid()) return testing::AssertionSuccess();
    if (e.GetWidth() != a.GetWidth() || e.GetHeight() != a.GetHeight() || e.GetBpp() != a.GetBpp() ||
        e.GetNumColors() != a.GetNumColors() || e.GetClrImportant() != a.GetClrImportant())
        return testing::AssertionFailure()
               << "shape " << e.GetWidth() << "x" << e.GetHeight() << "x" << e.GetBpp() << " colours "
               << e.GetNumColors() << "/" << e.GetClrImportant() << " vs " << a.GetWidth() << "x"
               << a.GetHeight() << "x" << a.GetBpp() << " colours " << a.GetNumColors() << "/"
               << a.GetClrImportant();
    if (memcmp(e.GetDIB(), a.GetDIB(), sizeof(BITMAPINFOHEADER)) != 0)
        return testing::AssertionFailure() << "DIB block headers differ";
    for (DWORD i = 0; i < e.GetNumColors(); i++) {
        const RGBQUAD pe = e.GetPaletteColor(static_cast<BYTE>(i)), pa = a.GetPaletteColor(static_cast<BYTE>(i));
        if (memcmp(&pe, &pa, sizeof pe) != 0) return testing::AssertionFailure() << "palette entry " << i;
    }
    const long w = static_cast<long>(e.GetWidth()), h = static_cast<long>(e.GetHeight());
    for (long y = 0; y < h; y++) {
        if (e.GetBpp() == 24) {
            if (memcmp(e.GetBits(static_cast<DWORD>(y)), a.GetBits(static_cast<DWORD>(y)), size_t(w) * 3) != 0)
                return testing::AssertionFailure() << "row " << y;
            continue;
        }
        for (long x = 0; x < w; x++)
            if (e.GetPixelIndex(x, y) != a.GetPixelIndex(x, y))
                return testing::AssertionFailure() << "pixel (" << x << ", " << y << "): expected "
                                                   << int(e.GetPixelIndex(x, y)) << ", got "
                                                   << int(a.GetPixelIndex(x, y));
    }
    return testing::AssertionSuccess();
}

bool Solid24(CxImage& img, DWORD w, DWORD h, BYTE r, BYTE g, BYTE b)
{
    img.Destroy();
    if (img.Create(w, h, 24, 0) == nullptr) return false;
    for (DWORD y = 0; y < h; y++)
        for (DWORD x = 0; x < w; x++) {
            BYTE* p = img.GetBits(y) + 3 * x;
            p[0] = b;
            p[1] = g;
            p[2] = r;
        }
    return true;
}

bool SolidGrey(CxImage& img, DWORD w, DWORD h, BYTE level)
{
    img.Destroy();
    if (img.Create(w, h, 8, 0) == nullptr) return false;
    img.SetGrayPalette();
    for (DWORD y = 0; y < h; y++) memset(img.GetBits(y), level, img.GetEffWidth());
    return true;
}

}  // namespace testimg
