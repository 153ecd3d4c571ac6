#include "reference_rules.h"

#include <cstring>

namespace reference {

namespace {

BYTE Grey(RGBQUAD c)
{
    return static_cast<BYTE>((c.rgbRed * 306 + c.rgbGreen * 601 + c.rgbBlue * 117) >> 10);
}

// Adds a share of error to the grey pixel (x, y): reads outside the image give the out-of-range
// value and writes outside it are dropped, both by the accessors themselves.
void AddShare(CxImage& img, long x, long y, int share)
{
    int v = img.GetPixelIndex(x, y) + share;
    if (v < 0) v = 0;
    if (v > 255) v = 255;
    img.SetPixelIndex(x, y, static_cast<BYTE>(v));
}

}  // namespace

bool GrayScale(CxImage& img)
{
    if (!img.IsValid()) return false;
    const long w = static_cast<long>(img.GetWidth()), h = static_cast<long>(img.GetHeight());
    if (img.GetBpp() == 24) {
        CxImage gray;
        gray.CopyInfo(img);
        if (gray.Create(img.GetWidth(), img.GetHeight(), 8, img.GetType()) == nullptr) return false;
        gray.SelectionCopy(img);
        gray.AlphaCopy(img);
        gray.SetGrayPalette();
        for (long y = 0; y < h; y++)
            for (long x = 0; x < w; x++) gray.SetPixelIndex(x, y, Grey(img.GetPixelColor(x, y)));
        return img.Transfer(gray);
    }
    RGBQUAD* pal = img.GetPalette();
    for (DWORD i = 0; i < img.GetNumColors(); i++) pal[i].rgbBlue = Grey(pal[i]);
    img.ClearNearestCache();
    if (img.GetBpp() == 8) {
        // A background index past the palette names no colour and is left as it is.
        if (img.GetBkgndIndex() >= 0 && DWORD(img.GetBkgndIndex()) < img.GetNumColors())
            img.SetBkgndIndex(pal[img.GetBkgndIndex()].rgbBlue);
        for (long y = 0; y < h; y++)
            for (long x = 0; x < w; x++) img.SetPixelIndex(x, y, pal[img.GetPixelIndex(x, y)].rgbBlue);
        img.SetGrayPalette();
        return true;
    }
    CxImage gray;
    gray.CopyInfo(img);
    if (gray.Create(img.GetWidth(), img.GetHeight(), 8, img.GetType()) == nullptr) return false;
    gray.SelectionCopy(img);
    gray.AlphaCopy(img);
    gray.SetGrayPalette();
    for (long y = 0; y < h; y++)
        for (long x = 0; x < w; x++) gray.SetPixelIndex(x, y, pal[img.GetPixelIndex(x, y)].rgbBlue);
    return img.Transfer(gray);
}

bool Lut(CxImage& img, const BYTE* t)
{
    if (!img.IsValid()) return false;
    const RECT box = img.GetSelectionBox();
    if (img.GetNumColors() > 0) {
        if (img.SelectionIsValid() && img.GetBpp() == 8 && img.IsGrayScale()) {
            for (long y = box.bottom; y < box.top; y++)
                for (long x = box.left; x < box.right; x++)
                    if (img.SelectionIsInside(x, y)) img.SetPixelIndex(x, y, t[img.GetPixelIndex(x, y)]);
        } else {
            const bool wasGray = img.IsGrayScale();
            for (DWORD i = 0; i < img.GetNumColors(); i++) {
                RGBQUAD c = img.GetPaletteColor(static_cast<BYTE>(i));
                c.rgbRed = t[c.rgbRed];
                c.rgbGreen = t[c.rgbGreen];
                c.rgbBlue = t[c.rgbBlue];
                img.SetPaletteColor(static_cast<BYTE>(i), c);
            }
            if (wasGray) GrayScale(img);
        }
    } else if (img.SelectionIsValid()) {
        for (long y = box.bottom; y < box.top; y++)
            for (long x = box.left; x < box.right; x++)
                if (img.SelectionIsInside(x, y)) {
                    RGBQUAD c = img.GetPixelColor(x, y);
                    c.rgbRed = t[c.rgbRed];
                    c.rgbGreen = t[c.rgbGreen];
                    c.rgbBlue = t[c.rgbBlue];
                    img.SetPixelColor(x, y, c);
                }
    } else {
        BYTE* p = img.GetBits();
        for (DWORD i = 0; i < img.GetHeader().biSizeImage; i++) p[i] = t[p[i]];
    }
    return true;
}

bool DecreaseBpp1(CxImage& img)
{
    if (img.GetBpp() < 1) return false;
    if (img.GetBpp() == 1 && img.GetClrImportant() == 1) return true;
    CxImage tmp;
    if (tmp.Create(img.GetWidth(), img.GetHeight(), 1, img.GetType()) == nullptr) return false;
    tmp.SetClrImportant(2);
    tmp.SelectionCopy(img);
    tmp.AlphaCopy(img);
    tmp.SetStdPalette();
    const long w = static_cast<long>(img.GetWidth()), h = static_cast<long>(img.GetHeight());
    for (long y = 0; y < h; y++)
        for (long x = 0; x < w; x++) tmp.SetPixelColor(x, y, img.GetPixelColor(x, y));
    img.Transfer(tmp);
    return true;
}

bool Dither(CxImage& img, long method)
{
    if (!img.IsValid()) return false;
    if (img.GetBpp() == 1) return true;
    GrayScale(img);
    CxImage tmp;
    tmp.CopyInfo(img);
    if (tmp.Create(img.GetWidth(), img.GetHeight(), 1, img.GetType()) == nullptr) return false;
    tmp.SelectionCopy(img);
    tmp.AlphaCopy(img);
    const long w = static_cast<long>(img.GetWidth()), h = static_cast<long>(img.GetHeight());

    static const int ordered[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
    static const int matrix8[8][8] = {
        {0, 32, 8, 40, 2, 34, 10, 42},  {48, 16, 56, 24, 50, 18, 58, 26},
        {12, 44, 4, 36, 14, 46, 6, 38}, {60, 28, 52, 20, 62, 30, 54, 22},
        {3, 35, 11, 43, 1, 33, 9, 41},  {51, 19, 59, 27, 49, 17, 57, 25},
        {15, 47, 7, 39, 13, 45, 5, 37}, {63, 31, 55, 23, 61, 29, 53, 21},
    };
    BYTE bayer[256];
    for (int i = 0; i < 256; i++) {
        int a = i >> 2, b = i & 3, d = 0;
        for (int k = 0; k < 4; k++) {
            d = (((d << 1) | ((a ^ b) & 1)) << 1) | (b & 1);
            a >>= 1;
            b >>= 1;
        }
        bayer[i] = static_cast<BYTE>(d);
    }

    for (long y = 0; y < h; y++) {
        for (long x = 0; x < w; x++) {
            const int level = img.GetPixelIndex(x, y);
            switch (method) {
            case 1: {
                int err;
                if (level > 128) {
                    tmp.SetPixelIndex(x, y, 1);
                    err = level - 255;
                } else {
                    tmp.SetPixelIndex(x, y, 0);
                    err = level;
                }
                AddShare(img, x + 1, y, err * 7 / 16);
                AddShare(img, x - 1, y + 1, err * 3 / 16);
                AddShare(img, x, y + 1, err * 5 / 16);
                AddShare(img, x + 1, y + 1, err * 1 / 16);
                break;
            }
            case 2: {
                static const BYTE levels[2] = {0, 1};
                const int i = level * 16 / 255, m = i % 16, o = i / 16;
                tmp.SetPixelIndex(x, y, ordered[y % 4][x % 4] < m ? levels[o + 1] : levels[o]);
                break;
            }
            case 3:
                tmp.SetPixelIndex(x, y, level > bayer[(x % 4) + 4 * (y % 4)] ? 1 : 0);
                break;
            case 4: {
                const int l = level >> 2;
                tmp.SetPixelIndex(x, y, l != 0 && l >= matrix8[x % 8][y % 8] ? 1 : 0);
                break;
            }
            default: {
                int err;
                if (level > 128) {
                    tmp.SetPixelIndex(x, y, 1);
                    err = level - 255;
                } else {
                    tmp.SetPixelIndex(x, y, 0);
                    err = level;
                }
                AddShare(img, x + 1, y, err * 5 / 32);
                AddShare(img, x + 2, y, err * 3 / 32);
                AddShare(img, x - 2, y + 1, err * 2 / 32);
                AddShare(img, x - 1, y + 1, err * 4 / 32);
                AddShare(img, x, y + 1, err * 5 / 32);
                AddShare(img, x + 1, y + 1, err * 4 / 32);
                AddShare(img, x + 2, y + 1, err * 2 / 32);
                AddShare(img, x - 1, y + 2, err * 2 / 32);
                AddShare(img, x, y + 2, err * 3 / 32);
                AddShare(img, x + 1, y + 2, err * 2 / 32);
                break;
            }
            }
        }
    }
    RGBQUAD black = {0, 0, 0, 0}, white = {255, 255, 255, 0};
    tmp.SetPaletteColor(0, black);
    tmp.SetPaletteColor(1, white);
    return img.Transfer(tmp);
}

void Preview(CxImage& img, int position, long method, bool greyscale)
{
    BYTE t[256];
    for (int i = 0; i < 256; i++) {
        int v = i + 100 - 10 * position;
        t[i] = static_cast<BYTE>(v < 0 ? 0 : v > 255 ? 255 : v);
    }
    Lut(img, t);
    if (greyscale) return;
    if (method == 0)
        DecreaseBpp1(img);
    else
        Dither(img, method);
}

}  // namespace reference
