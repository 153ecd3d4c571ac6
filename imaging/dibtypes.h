// The Windows bitmap structures the image buffer is made of. The Windows build takes them from
// <windows.h>; the native Linux build (fuzzing, benchmarks) declares the same layouts itself, so
// the imaging code compiles unchanged on both.
#pragma once

#include <cstdint>

#ifdef _WIN32
#include <windows.h>
#else

typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int32_t LONG;

#pragma pack(push, 2)
struct BITMAPFILEHEADER {
    WORD bfType;
    DWORD bfSize;
    WORD bfReserved1;
    WORD bfReserved2;
    DWORD bfOffBits;
};
#pragma pack(pop)

struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};

struct RGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

#ifndef BI_RGB
#define BI_RGB 0L
#endif

#endif

static_assert(sizeof(BITMAPFILEHEADER) == 14, "BMP file header is 14 bytes");
static_assert(sizeof(BITMAPINFOHEADER) == 40, "DIB header is 40 bytes");
static_assert(sizeof(RGBQUAD) == 4, "palette entries are 4 bytes");
