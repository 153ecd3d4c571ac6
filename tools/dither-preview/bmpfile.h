// BMP files for dither-preview: checking a file before anything decodes it, reading one into a
// CxImage without GDI (the native build and the tests), and writing an image's DIB block out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "imaging/ximage.h"

namespace bmpfile {

// Files larger than this in either direction, or with more pixels than kMaxPixels, are refused.
const int32_t kMaxDimension = 32768;
const uint64_t kMaxPixels = 64ull * 1024 * 1024;

struct Layout {
    int32_t width = 0;
    int32_t height = 0;  // always positive
    bool topDown = false;
    int bpp = 0;         // 1, 4, 8 or 24
    uint32_t colors = 0; // palette entries stored in the file
    size_t paletteOffset = 0;
    size_t paletteEntrySize = 4;  // 3 for the old OS/2 core header
    size_t bitsOffset = 0;
    size_t stride = 0;
};

// Checks that `data` is a complete, uncompressed 1-, 4-, 8- or 24-bit BMP of sane size. On
// failure `error` gets a short reason ("not a BMP file", "compressed BMP files are not supported").
bool Check(const std::vector<uint8_t>& data, Layout* layout, std::string* error);

// The same picture as a plain file: a 40-byte BITMAPINFOHEADER, 4-byte palette entries and
// bottom-up rows. Wine's loader misreads the 3-byte colour tables of the old 12-byte core header
// and returns blank pixels for top-down files; rewritten, both load correctly.
std::vector<uint8_t> WithInfoHeader(const std::vector<uint8_t>& data, const Layout& layout);

// Decodes a checked file into `img` (created here): same size, depth and palette, rows bottom-up.
bool Decode(const std::vector<uint8_t>& data, const Layout& layout, CxImage& img);

// The file for an image: a BITMAPFILEHEADER followed by the image's DIB block unchanged.
std::vector<uint8_t> Encode(const CxImage& img);

// The command line: [--brightness P] [--method N] [--greyscale] INPUT OUTPUT, options anywhere.
struct Options {
    int brightness = 10;
    int method = 1;
    bool greyscale = false;
    std::vector<size_t> paths;  // indices of INPUT and OUTPUT in the argument list
};
bool ParseArgs(const std::vector<std::string>& args, Options* options, std::string* error);

// Brightness for the position, then method 0 (nearest of black and white) or Dither(method),
// unless greyscale: the preview page's processing.
void Process(CxImage& img, const Options& options);

bool ReadFile(const char* path, std::vector<uint8_t>* data);

}  // namespace bmpfile
