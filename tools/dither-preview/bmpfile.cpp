#include "bmpfile.h"

#include <cstdio>
#include <cstring>

namespace bmpfile {

namespace {

uint16_t U16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }
uint32_t U32(const uint8_t* p) { return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24); }

bool Fail(std::string* error, const char* text)
{
    *error = text;
    return false;
}

// A decimal number 0..limit, digits only.
bool ParseNumber(const std::string& s, int limit, int* value)
{
    if (s.empty() || s.size() > 6) return false;
    int v = 0;
    for (char c : s) {
        if (c < '0' || c > '9') return false;
        v = v * 10 + (c - '0');
    }
    if (v > limit) return false;
    *value = v;
    return true;
}

}  // namespace

bool Check(const std::vector<uint8_t>& data, Layout* out, std::string* error)
{
    const size_t size = data.size();
    const uint8_t* p = data.data();
    if (size < 14 + 12 || p[0] != 'B' || p[1] != 'M') return Fail(error, "not a BMP file");
    const uint32_t offBits = U32(p + 10);
    const uint32_t headerSize = U32(p + 14);
    Layout l;
    uint32_t compression = 0;
    uint32_t clrUsed = 0;
    int planes;
    if (headerSize == 12) {
        l.width = static_cast<int16_t>(U16(p + 18));
        const int32_t h = static_cast<int16_t>(U16(p + 20));
        l.height = h;
        planes = U16(p + 22);
        l.bpp = U16(p + 24);
        l.paletteEntrySize = 3;
    } else if (headerSize >= 40 && headerSize <= 1024) {
        if (size < 14 + size_t(headerSize)) return Fail(error, "truncated BMP file");
        l.width = static_cast<int32_t>(U32(p + 18));
        l.height = static_cast<int32_t>(U32(p + 22));
        planes = U16(p + 26);
        l.bpp = U16(p + 28);
        compression = U32(p + 30);
        clrUsed = U32(p + 46);
    } else {
        return Fail(error, "not a BMP file (unknown header)");
    }
    if (size < 14 + size_t(headerSize)) return Fail(error, "truncated BMP file");
    if (planes != 1) return Fail(error, "not a BMP file (planes must be 1)");
    if (compression != 0) return Fail(error, "compressed BMP files are not supported");
    if (l.bpp != 1 && l.bpp != 4 && l.bpp != 8 && l.bpp != 24)
        return Fail(error, "only 1-, 4-, 8- and 24-bit BMP files are supported");
    if (l.height < 0) {
        if (l.height == INT32_MIN) return Fail(error, "image dimensions are too large");
        l.height = -l.height;
        l.topDown = true;
    }
    if (l.width == 0 || l.height == 0 || l.width < 0) return Fail(error, "image width and height must be greater than zero");
    if (l.width > kMaxDimension || l.height > kMaxDimension || uint64_t(l.width) * uint64_t(l.height) > kMaxPixels)
        return Fail(error, "image dimensions are too large");
    if (l.bpp <= 8) {
        const uint32_t full = 1u << l.bpp;
        if (clrUsed > full) return Fail(error, "bad BMP palette size");
        l.colors = clrUsed != 0 ? clrUsed : full;
    }
    l.paletteOffset = 14 + size_t(headerSize);
    const size_t paletteEnd = l.paletteOffset + size_t(l.colors) * l.paletteEntrySize;
    if (paletteEnd > size) return Fail(error, "truncated BMP file");
    l.stride = ((size_t(l.width) * l.bpp + 31) / 32) * 4;
    l.bitsOffset = offBits;
    if (offBits < paletteEnd && l.colors > 0) return Fail(error, "bad BMP pixel offset");
    if (offBits < 14 + size_t(headerSize)) return Fail(error, "bad BMP pixel offset");
    if (offBits > size || (size - offBits) / l.stride < size_t(l.height)) return Fail(error, "truncated BMP file");
    *out = l;
    return true;
}

bool Decode(const std::vector<uint8_t>& data, const Layout& l, CxImage& img)
{
    img.Destroy();
    if (img.Create(static_cast<DWORD>(l.width), static_cast<DWORD>(l.height), static_cast<DWORD>(l.bpp), 0) == nullptr)
        return false;
    for (uint32_t i = 0; i < l.colors; i++) {
        const uint8_t* q = data.data() + l.paletteOffset + i * l.paletteEntrySize;
        img.SetPaletteColor(static_cast<BYTE>(i), RGBQUAD{q[0], q[1], q[2], 0});
    }
    for (int32_t y = 0; y < l.height; y++) {
        const int32_t fileRow = l.topDown ? l.height - 1 - y : y;
        memcpy(img.GetBits(static_cast<DWORD>(y)), data.data() + l.bitsOffset + size_t(fileRow) * l.stride, l.stride);
    }
    return true;
}

std::vector<uint8_t> WithInfoHeader(const std::vector<uint8_t>& data, const Layout& l)
{
    const size_t pixels = l.stride * size_t(l.height);
    const uint32_t offBits = static_cast<uint32_t>(14 + 40 + 4 * size_t(l.colors));
    std::vector<uint8_t> out(offBits + pixels, 0);
    uint8_t* p = out.data();
    p[0] = 'B';
    p[1] = 'M';
    const uint32_t fileSize = static_cast<uint32_t>(out.size());
    memcpy(p + 2, &fileSize, 4);
    memcpy(p + 10, &offBits, 4);
    BITMAPINFOHEADER h = BITMAPINFOHEADER();
    h.biSize = 40;
    h.biWidth = l.width;
    h.biHeight = l.height;
    h.biPlanes = 1;
    h.biBitCount = static_cast<WORD>(l.bpp);
    h.biSizeImage = static_cast<DWORD>(pixels);
    h.biClrUsed = l.colors;
    memcpy(p + 14, &h, sizeof h);
    for (uint32_t i = 0; i < l.colors; i++)
        memcpy(p + 54 + 4 * i, data.data() + l.paletteOffset + i * l.paletteEntrySize, 3);
    for (int32_t y = 0; y < l.height; y++) {
        const int32_t fileRow = l.topDown ? l.height - 1 - y : y;
        memcpy(p + offBits + size_t(y) * l.stride, data.data() + l.bitsOffset + size_t(fileRow) * l.stride, l.stride);
    }
    return out;
}

std::vector<uint8_t> Encode(const CxImage& img)
{
    std::vector<uint8_t> out;
    if (!img.IsValid()) return out;
    const size_t dib = img.GetDIBSize();
    out.resize(14 + dib);
    const uint32_t fileSize = static_cast<uint32_t>(out.size());
    const uint32_t offBits = static_cast<uint32_t>(14 + img.GetHeader().biSize + 4 * img.GetNumColors());
    uint8_t* p = out.data();
    p[0] = 'B';
    p[1] = 'M';
    memcpy(p + 2, &fileSize, 4);
    memset(p + 6, 0, 4);
    memcpy(p + 10, &offBits, 4);
    memcpy(p + 14, img.GetDIB(), dib);
    return out;
}

bool ParseArgs(const std::vector<std::string>& args, Options* o, std::string* error)
{
    for (size_t i = 1; i < args.size(); i++) {
        const std::string& a = args[i];
        if (a == "--brightness" || a == "--method") {
            if (i + 1 >= args.size()) return Fail(error, (a + " needs a value").c_str());
            const bool brightness = a == "--brightness";
            int v;
            if (!ParseNumber(args[++i], brightness ? 20 : 255, &v))
                return Fail(error, brightness ? "--brightness must be a whole number from 0 to 20"
                                              : "--method must be a whole number from 0 to 255");
            (brightness ? o->brightness : o->method) = v;
        } else if (a == "--greyscale") {
            o->greyscale = true;
        } else if (a.size() > 1 && a[0] == '-' && a[1] == '-') {
            return Fail(error, ("unknown option " + a).c_str());
        } else {
            o->paths.push_back(i);
        }
    }
    if (o->paths.size() != 2)
        return Fail(error, "usage: dither-preview [--brightness P] [--method N] [--greyscale] INPUT.bmp OUTPUT.bmp");
    return true;
}

void Process(CxImage& img, const Options& o)
{
    BYTE table[256];
    BuildBrightnessTable(o.brightness, table);
    img.Lut(table);
    if (o.greyscale) return;
    if (o.method == 0)
        img.DecreaseBpp(1, 2);
    else
        img.Dither(o.method);
}

bool ReadFile(const char* path, std::vector<uint8_t>* data)
{
    FILE* f = fopen(path, "rb");
    if (f == nullptr) return false;
    data->clear();
    uint8_t buf[65536];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, f)) > 0) data->insert(data->end(), buf, buf + n);
    const bool ok = !ferror(f);
    fclose(f);
    return ok;
}

}  // namespace bmpfile
