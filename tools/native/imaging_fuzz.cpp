// libFuzzer target for the preview imaging code (native build, AddressSanitizer and
// UndefinedBehaviorSanitizer). Each input builds an image of random size, depth, palette and
// content, sometimes with a selection, an alpha mask, a background index or the escape flag, and
// runs every operation on it. The processing steps are also run by the per-pixel rules of the
// tests and must agree bit for bit; sizes whose byte count would overflow must be refused by
// Create. Inputs starting with "BM" also go through dither-preview's BMP checks and decoder.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "bmpfile.h"
#include "imaging/ximage.h"
#include "reference_rules.h"
#include "test_images.h"

namespace {

void Check(bool ok)
{
    if (!ok) __builtin_trap();
}

bool Same(const CxImage& a, const CxImage& b)
{
    return static_cast<bool>(testimg::SameImage(a, b));
}

void HugeCreate(FuzzedDataProvider& in)
{
    const DWORD w = in.ConsumeIntegral<DWORD>(), h = in.ConsumeIntegral<DWORD>();
    const DWORD bpp = in.ConsumeIntegralInRange<DWORD>(0, 40);
    const DWORD depth = bpp < 2 ? 1 : bpp < 5 ? 4 : bpp > 8 ? 24 : 8;
    const long double bytes = (long double)(((uint64_t(w) * depth + 31) >> 5) << 2) * h;
    if (w == 0 || h == 0) {
        CxImage img;
        Check(img.Create(w, h, bpp, 0) == nullptr);
        Check(strcmp(img.GetLastError(), "CxImage::Create : width and height must be greater than zero") == 0);
        return;
    }
    // Only sizes that must be refused are tried: anything else could really be allocated.
    if (w > 0x7FFFFFFFu || h > 0x7FFFFFFFu || bytes > 4294967295.0L - 1064) {
        CxImage img;
        Check(img.Create(w, h, bpp, 0) == nullptr);
        Check(strcmp(img.GetLastError(), "CxImage::Create can't allocate memory") == 0);
        Check(!img.IsValid());
    }
}

void Bmp(const uint8_t* data, size_t size)
{
    std::vector<uint8_t> file(data, data + size);
    bmpfile::Layout layout;
    std::string error;
    if (!bmpfile::Check(file, &layout, &error)) return;
    if (uint64_t(layout.width) * uint64_t(layout.height) > 512 * 512) return;
    CxImage img;
    Check(bmpfile::Decode(file, layout, img));
    std::vector<uint8_t> plain = bmpfile::WithInfoHeader(file, layout);
    bmpfile::Layout again;
    Check(bmpfile::Check(plain, &again, &error));
    bmpfile::Options o;
    o.method = layout.width % 6;
    o.brightness = layout.height % 21;
    bmpfile::Process(img, o);
    Check(!bmpfile::Encode(img).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size >= 2 && data[0] == 'B' && data[1] == 'M') {
        Bmp(data, size);
        return 0;
    }
    FuzzedDataProvider in(data, size);
    HugeCreate(in);

    const DWORD w = in.ConsumeIntegralInRange<DWORD>(1, 160);
    const DWORD h = in.ConsumeIntegralInRange<DWORD>(1, 120);
    const DWORD bpp = in.ConsumeIntegralInRange<DWORD>(0, 33);
    CxImage src;
    if (src.Create(w, h, bpp, in.ConsumeIntegral<uint8_t>()) == nullptr) __builtin_trap();

    // Palette and pixels from the input, repeated when it runs out.
    std::vector<uint8_t> bytes = in.ConsumeBytes<uint8_t>(in.ConsumeIntegralInRange<size_t>(0, 4096));
    if (bytes.empty()) bytes.push_back(0x5A);
    const bool greyPalette = in.ConsumeBool();
    BYTE* block = static_cast<BYTE*>(src.GetDIB());
    const size_t body = src.GetDIBSize() - sizeof(BITMAPINFOHEADER);
    for (size_t i = 0; i < body; i++) block[sizeof(BITMAPINFOHEADER) + i] = bytes[i % bytes.size()];
    if (greyPalette) src.SetGrayPalette();
    src.ClearNearestCache();
    if (in.ConsumeBool()) src.SetClrImportant(in.ConsumeIntegralInRange<DWORD>(0, 3));
    if (in.ConsumeBool()) src.SetBkgndIndex(in.ConsumeIntegralInRange<long>(-1, 300));
    if (in.ConsumeBool() && src.SelectionCreate()) {
        const int n = in.ConsumeIntegralInRange<int>(0, 8);
        for (int i = 0; i < n; i++)
            src.SelectionAddPixel(in.ConsumeIntegralInRange<long>(-2, long(w) + 1), in.ConsumeIntegralInRange<long>(-2, long(h) + 1));
    }
    if (in.ConsumeBool() && src.AlphaCreate()) src.AlphaSet(0, 0, in.ConsumeIntegral<uint8_t>());

    // Accessors anywhere, inside or out.
    for (int i = 0; i < 8; i++) {
        const long x = in.ConsumeIntegralInRange<long>(-3, long(w) + 3), y = in.ConsumeIntegralInRange<long>(-3, long(h) + 3);
        const BYTE v = in.ConsumeIntegral<uint8_t>();
        const BYTE before = src.GetPixelIndex(x, y);
        src.SetPixelIndex(x, y, v);
        if (!src.IsInside(x, y)) Check(src.GetPixelIndex(x, y) == before);
        if (src.IsInside(x, y)) {
            RGBQUAD c = src.GetPixelColor(x, y);
            src.SetPixelColor(x, y, c);
        }
        RGBQUAD q = {in.ConsumeIntegral<uint8_t>(), in.ConsumeIntegral<uint8_t>(), in.ConsumeIntegral<uint8_t>(), 0};
        const BYTE n = src.GetNearestIndex(q);
        Check(src.GetNumColors() == 0 ? n == 0 : n < src.GetNumColors());
        src.GetPaletteColor(in.ConsumeIntegral<uint8_t>());
    }
    src.IsGrayScale();

    const int positions[] = {0, 10, 20};
    BYTE table[256];
    if (in.ConsumeBool()) {
        BuildBrightnessTable(positions[in.ConsumeIntegralInRange<int>(0, 2)] + in.ConsumeIntegralInRange<int>(-3, 3), table);
    } else {
        for (int i = 0; i < 256; i++) table[i] = in.ConsumeIntegral<uint8_t>();
    }
    const long method = in.ConsumeIntegralInRange<int>(0, 8) == 8 ? in.ConsumeIntegral<uint8_t>() : in.ConsumeIntegralInRange<long>(0, 5);
    const int op = in.ConsumeIntegralInRange<int>(0, 5);
    if (in.ConsumeBool()) src.SetEscape(in.ConsumeBool() ? 1 : 0);
    const bool escaped = src.GetEscape() != 0;

    CxImage fast, ref;
    Check(testimg::Clone(src, fast));
    Check(testimg::Clone(src, ref));
    fast.SetEscape(src.GetEscape());
    ref.SetEscape(0);
    switch (op) {
    case 0:
        Check(fast.Lut(table) == reference::Lut(ref, table));
        if (!escaped) Check(Same(ref, fast));
        break;
    case 1:
        Check(fast.GrayScale() == reference::GrayScale(ref));
        Check(Same(ref, fast));
        break;
    case 2:
        fast.DecreaseBpp(1, 2);
        reference::DecreaseBpp1(ref);
        if (!escaped) Check(Same(ref, fast));
        break;
    default: {
        fast.Lut(table);
        reference::Lut(ref, table);
        const bool a = fast.Dither(method), b = reference::Dither(ref, method);
        Check(a == b);
        if (!escaped) Check(Same(ref, fast));
        break;
    }
    }
    Check(!fast.IsValid() || fast.GetBits() == static_cast<BYTE*>(fast.GetDIB()) + 40 + 4 * fast.GetNumColors());

    // Palettes, masks and hand-over on what is left.
    CxImage other;
    Check(testimg::Clone(fast, other));
    other.SelectionCopy(src);
    other.AlphaCopy(src);
    if (other.GetNumColors() > 1) {
        other.SetStdPalette();
        other.SetGrayPalette();
    }
    CxImage view;
    view.Ghost(other);
    Check(!view.Destroy());
    Check(fast.Transfer(other));
    Check(!other.IsValid() && other.GetDIB() == nullptr);
    Check(fast.Dither(method) == fast.IsValid());
    return 0;
}
