// CxImage and GDI: loading a bitmap handle through GetDIBits, and handing the DIB block to
// CreateDIBSection unchanged, as the preview paint does.
#include <windows.h>

#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include "imaging/ximage.h"
#include "test_images.h"

namespace {

struct ScreenDC {
    HDC dc = GetDC(nullptr);
    ~ScreenDC() { ReleaseDC(nullptr, dc); }
};

// A DIB section made from an image's block, with the image's pixels copied in.
HBITMAP SectionFrom(const CxImage& img)
{
    void* bits = nullptr;
    HBITMAP h = CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(img.GetDIB()), DIB_RGB_COLORS, &bits,
                                 nullptr, 0);
    if (h != nullptr) memcpy(bits, img.GetBits(), img.GetHeader().biSizeImage);
    return h;
}

TEST(ImageFromBitmap, NullOrBadHandleFails)
{
    CxImage img;
    EXPECT_FALSE(img.CreateFromBitmap(nullptr));
    EXPECT_FALSE(img.IsValid());
    ASSERT_NE(nullptr, img.Create(2, 2, 8, 0));
    EXPECT_FALSE(img.CreateFromBitmap(reinterpret_cast<HBITMAP>(static_cast<INT_PTR>(0x7777))));
    EXPECT_FALSE(img.IsValid()) << "the previous picture is destroyed first";
}

TEST(ImageFromBitmap, DibSectionsOfEveryDepthComeBackAsTheyWere)
{
    std::mt19937 rng(5);
    const DWORD sizes[][2] = {{1, 1}, {13, 7}, {96, 102}, {33, 4}};
    for (DWORD bpp : {1u, 4u, 8u, 24u})
        for (const auto& s : sizes) {
            SCOPED_TRACE(testing::Message() << s[0] << " x " << s[1] << " x " << bpp);
            CxImage src;
            ASSERT_TRUE(testimg::Make(src, rng, s[0], s[1], bpp, testimg::Content::Noise, testimg::Palette::Random));
            for (DWORD i = 0; i < src.GetNumColors(); i++) src.GetPalette()[i].rgbReserved = 0;
            HBITMAP h = SectionFrom(src);
            ASSERT_NE(nullptr, h) << "CreateDIBSection accepts the block as it is";
            CxImage img;
            ASSERT_TRUE(img.CreateFromBitmap(h));
            DeleteObject(h);
            EXPECT_EQ(0u, img.GetType());
            EXPECT_TRUE(testimg::SameImage(src, img));
            BITMAPINFOHEADER block;
            memcpy(&block, img.GetDIB(), sizeof block);
            EXPECT_EQ(0, memcmp(&block, &img.GetHeader(), sizeof block)) << "the block describes itself";
        }
}

TEST(ImageFromBitmap, ScreenBitmapsBecomeTwentyFourBit)
{
    ScreenDC screen;
    HBITMAP ddb = CreateCompatibleBitmap(screen.dc, 5, 3);
    ASSERT_NE(nullptr, ddb);
    HDC mem = CreateCompatibleDC(screen.dc);
    HGDIOBJ old = SelectObject(mem, ddb);
    for (int y = 0; y < 3; y++)
        for (int x = 0; x < 5; x++) SetPixel(mem, x, y, RGB(x * 50, y * 100, 7));
    SelectObject(mem, old);
    DeleteDC(mem);
    CxImage img;
    ASSERT_TRUE(img.CreateFromBitmap(ddb));
    DeleteObject(ddb);
    EXPECT_EQ(24, img.GetBpp());
    for (int y = 0; y < 3; y++)
        for (int x = 0; x < 5; x++) {
            // Device rows run top-down; the image's row 0 is the bottom one.
            const RGBQUAD c = img.GetPixelColor(x, 2 - y);
            EXPECT_EQ(x * 50, c.rgbRed) << x << "," << y;
            EXPECT_EQ(y * 100, c.rgbGreen) << x << "," << y;
            EXPECT_EQ(7, c.rgbBlue) << x << "," << y;
        }
}

TEST(ImageToScreen, DitheredBlocksDrawAsBlackAndWhiteDots)
{
    std::mt19937 rng(11);
    CxImage src;
    ASSERT_TRUE(testimg::Make(src, rng, 37, 21, 24, testimg::Content::Photo, testimg::Palette::Random));
    for (long method = 0; method <= 5; method++) {
        SCOPED_TRACE(testing::Message() << "method " << method);
        CxImage img;
        ASSERT_TRUE(testimg::Clone(src, img));
        if (method == 0)
            ASSERT_TRUE(img.DecreaseBpp(1, 2));
        else
            ASSERT_TRUE(img.Dither(method));
        HBITMAP section = SectionFrom(img);
        ASSERT_NE(nullptr, section);
        ScreenDC screen;
        HDC from = CreateCompatibleDC(screen.dc);
        HDC to = CreateCompatibleDC(screen.dc);
        BITMAPINFO bi = {};
        bi.bmiHeader.biSize = sizeof bi.bmiHeader;
        bi.bmiHeader.biWidth = 37;
        bi.bmiHeader.biHeight = -21;  // top-down, as a person reads it
        bi.bmiHeader.biPlanes = 1;
        bi.bmiHeader.biBitCount = 32;
        void* pixels = nullptr;
        HBITMAP canvas = CreateDIBSection(nullptr, &bi, DIB_RGB_COLORS, &pixels, nullptr, 0);
        ASSERT_NE(nullptr, canvas);
        HGDIOBJ o1 = SelectObject(from, section), o2 = SelectObject(to, canvas);
        ASSERT_TRUE(BitBlt(to, 0, 0, 37, 21, from, 0, 0, SRCCOPY));
        GdiFlush();
        const DWORD* p = static_cast<const DWORD*>(pixels);
        for (long y = 0; y < 21; y++)
            for (long x = 0; x < 37; x++) {
                const DWORD expected = img.GetPixelIndex(x, 20 - y) ? 0xFFFFFF : 0x000000;
                ASSERT_EQ(expected, p[y * 37 + x] & 0xFFFFFF) << x << "," << y;
            }
        SelectObject(from, o1);
        SelectObject(to, o2);
        DeleteObject(canvas);
        DeleteObject(section);
        DeleteDC(from);
        DeleteDC(to);
    }
}

}  // namespace
