#include "host.h"

#include <cstdint>
#include <vector>

namespace oemhost {

namespace {

uint32_t Crc32(const uint8_t* data, size_t size, uint32_t crc = 0)
{
    static uint32_t table[256];
    static bool ready = false;
    if (!ready) {
        for (uint32_t n = 0; n < 256; ++n) {
            uint32_t c = n;
            for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            table[n] = c;
        }
        ready = true;
    }
    crc = ~crc;
    for (size_t i = 0; i < size; ++i) crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

void PutBE32(std::vector<uint8_t>& out, uint32_t v)
{
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<uint8_t>(v >> shift));
}

void Chunk(std::vector<uint8_t>& out, const char* type, const std::vector<uint8_t>& body)
{
    PutBE32(out, static_cast<uint32_t>(body.size()));
    const size_t start = out.size();
    out.insert(out.end(), type, type + 4);
    out.insert(out.end(), body.begin(), body.end());
    PutBE32(out, Crc32(out.data() + start, out.size() - start));
}

// A zlib stream of stored (uncompressed) deflate blocks: screenshots are small enough.
std::vector<uint8_t> ZlibStored(const std::vector<uint8_t>& raw)
{
    std::vector<uint8_t> z = { 0x78, 0x01 };
    size_t pos = 0;
    do {
        const size_t len = std::min<size_t>(65535, raw.size() - pos);
        const bool last = pos + len == raw.size();
        z.push_back(last ? 1 : 0);
        z.push_back(static_cast<uint8_t>(len));
        z.push_back(static_cast<uint8_t>(len >> 8));
        z.push_back(static_cast<uint8_t>(~len));
        z.push_back(static_cast<uint8_t>(~len >> 8));
        z.insert(z.end(), raw.begin() + pos, raw.begin() + pos + len);
        pos += len;
    } while (pos < raw.size());
    uint32_t a = 1, b = 0;
    for (uint8_t byte : raw) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    PutBE32(z, (b << 16) | a);
    return z;
}

}  // namespace

bool SaveWindowPng(HWND window, const std::wstring& path)
{
    RECT r;
    if (!GetWindowRect(window, &r)) return false;
    const int width = r.right - r.left, height = r.bottom - r.top;
    if (width <= 0 || height <= 0) return false;

    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, r.left, r.top, SRCCOPY);
    SelectObject(memory, old);

    BITMAPINFO bi = {};
    bi.bmiHeader.biSize = sizeof bi.bmiHeader;
    bi.bmiHeader.biWidth = width;
    bi.bmiHeader.biHeight = -height;   // top-down rows
    bi.bmiHeader.biPlanes = 1;
    bi.bmiHeader.biBitCount = 32;
    bi.bmiHeader.biCompression = BI_RGB;
    std::vector<uint8_t> bgra(static_cast<size_t>(width) * height * 4);
    const int rows = GetDIBits(memory, bitmap, 0, height, bgra.data(), &bi, DIB_RGB_COLORS);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    if (rows != height) return false;

    std::vector<uint8_t> raw;
    raw.reserve(static_cast<size_t>(height) * (1 + width * 3));
    for (int y = 0; y < height; ++y) {
        raw.push_back(0);   // filter: none
        const uint8_t* row = bgra.data() + static_cast<size_t>(y) * width * 4;
        for (int x = 0; x < width; ++x) {
            raw.push_back(row[x * 4 + 2]);
            raw.push_back(row[x * 4 + 1]);
            raw.push_back(row[x * 4 + 0]);
        }
    }
    std::vector<uint8_t> png = { 0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n' };
    std::vector<uint8_t> ihdr;
    PutBE32(ihdr, static_cast<uint32_t>(width));
    PutBE32(ihdr, static_cast<uint32_t>(height));
    ihdr.insert(ihdr.end(), { 8, 2, 0, 0, 0 });   // 8-bit RGB
    Chunk(png, "IHDR", ihdr);
    Chunk(png, "IDAT", ZlibStored(raw));
    Chunk(png, "IEND", {});

    HANDLE f = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (f == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    const BOOL ok = WriteFile(f, png.data(), static_cast<DWORD>(png.size()), &written, nullptr);
    CloseHandle(f);
    return ok && written == png.size();
}

}  // namespace oemhost
