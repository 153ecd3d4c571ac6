// What the dithering page's processing does to pictures whose answers are known by hand:
// brightness, grey conversion, nearest colour and the dither methods.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "imaging/ximage.h"
#include "test_images.h"

namespace {

// The 1-bit result as text, top row first as a person sees it: '#' black, '.' white.
std::string Picture(const CxImage& img)
{
    std::string s;
    for (long y = static_cast<long>(img.GetHeight()) - 1; y >= 0; y--) {
        for (long x = 0; x < static_cast<long>(img.GetWidth()); x++) s += img.GetPixelIndex(x, y) ? '.' : '#';
        s += '\n';
    }
    return s;
}

TEST(Brightness, TableAtEveryPosition)
{
    for (int p = 0; p <= 20; p++) {
        BYTE t[256];
        BuildBrightnessTable(p, t);
        for (int i = 0; i < 256; i++) {
            int v = i + 100 - 10 * p;
            v = v < 0 ? 0 : v > 255 ? 255 : v;
            ASSERT_EQ(v, t[i]) << "position " << p << ", value " << i;
        }
    }
    BYTE t[256];
    BuildBrightnessTable(0, t);
    for (int i = 155; i < 256; i++) EXPECT_EQ(255, t[i]);
    BuildBrightnessTable(20, t);
    for (int i = 0; i <= 100; i++) EXPECT_EQ(0, t[i]);
}

TEST(Brightness, TwentyFourBitImagesMapEveryByteIncludingPadding)
{
    for (int p : {0, 10, 20, 3}) {
        SCOPED_TRACE(testing::Message() << "position " << p);
        CxImage img;
        ASSERT_NE(nullptr, img.Create(5, 3, 24, 0));  // stride 16: one padding byte per row
        BYTE* bits = img.GetBits();
        for (DWORD i = 0; i < img.GetHeader().biSizeImage; i++) bits[i] = static_cast<BYTE>(i * 37);
        BYTE t[256];
        BuildBrightnessTable(p, t);
        ASSERT_TRUE(img.Lut(t));
        for (DWORD i = 0; i < img.GetHeader().biSizeImage; i++)
            ASSERT_EQ(t[static_cast<BYTE>(i * 37)], bits[i]) << "byte " << i;
    }
}

TEST(Brightness, ColourPalettesAreMappedAndPixelsKept)
{
    CxImage img;
    ASSERT_NE(nullptr, img.Create(4, 2, 4, 0));
    img.SetStdPalette();
    img.SetPaletteColor(3, RGBQUAD{10, 150, 250, 42});
    for (long x = 0; x < 4; x++) img.SetPixelIndex(x, 0, static_cast<BYTE>(x * 3));
    BYTE t[256];
    BuildBrightnessTable(2, t);  // +80
    EXPECT_EQ(8, img.GetNearestIndex(RGBQUAD{80, 80, 80, 0})) << "grey (128, 128, 128) is nearest";
    ASSERT_TRUE(img.Lut(t));
    const RGBQUAD c = img.GetPaletteColor(3);
    EXPECT_EQ(90, c.rgbBlue);
    EXPECT_EQ(230, c.rgbGreen);
    EXPECT_EQ(255, c.rgbRed);
    EXPECT_EQ(42, c.rgbReserved) << "the fourth byte is kept";
    EXPECT_EQ(4, img.GetBpp());
    for (long x = 0; x < 4; x++) EXPECT_EQ(x * 3, img.GetPixelIndex(x, 0));
    EXPECT_EQ(0, img.GetNearestIndex(RGBQUAD{80, 80, 80, 0})) << "black became (80, 80, 80): cache cleared";
}

TEST(Brightness, GreyImagesMapTheirLevels)
{
    CxImage img;
    ASSERT_TRUE(testimg::SolidGrey(img, 3, 3, 0));
    for (long i = 0; i < 9; i++) img.SetPixelIndex(i % 3, i / 3, static_cast<BYTE>(i * 30));
    BYTE t[256];
    BuildBrightnessTable(13, t);  // -30
    ASSERT_TRUE(img.Lut(t));
    EXPECT_TRUE(img.IsGrayScale());
    for (long i = 0; i < 9; i++) EXPECT_EQ(i == 0 ? 0 : i * 30 - 30, img.GetPixelIndex(i % 3, i / 3));
}

TEST(Brightness, SelectionLimitsTheChange)
{
    CxImage grey;
    ASSERT_TRUE(testimg::SolidGrey(grey, 4, 4, 100));
    ASSERT_TRUE(grey.SelectionCreate());
    grey.SelectionAddPixel(1, 1);
    grey.SelectionAddPixel(2, 3);
    BYTE t[256];
    BuildBrightnessTable(5, t);  // +50
    ASSERT_TRUE(grey.Lut(t));
    for (long y = 0; y < 4; y++)
        for (long x = 0; x < 4; x++) {
            const bool selected = (x == 1 && y == 1) || (x == 2 && y == 3);
            EXPECT_EQ(selected ? 150 : 100, grey.GetPixelIndex(x, y)) << x << "," << y;
        }

    CxImage rgb;
    ASSERT_TRUE(testimg::Solid24(rgb, 3, 2, 10, 20, 30));
    ASSERT_TRUE(rgb.SelectionCreate());
    rgb.SelectionAddPixel(2, 0);
    ASSERT_TRUE(rgb.Lut(t));
    EXPECT_EQ(60, rgb.GetPixelColor(2, 0).rgbRed);
    EXPECT_EQ(80, rgb.GetPixelColor(2, 0).rgbBlue);
    EXPECT_EQ(10, rgb.GetPixelColor(1, 0).rgbRed);
    EXPECT_EQ(10, rgb.GetPixelColor(2, 1).rgbRed);
}

TEST(GrayScaleTest, WeightsAndDepths)
{
    CxImage rgb;
    ASSERT_TRUE(testimg::Solid24(rgb, 3, 1, 0, 0, 0));
    rgb.SetPixelColor(0, 0, RGBQUAD{0, 0, 255, 0});      // red
    rgb.SetPixelColor(1, 0, RGBQUAD{0, 255, 0, 0});      // green
    rgb.SetPixelColor(2, 0, RGBQUAD{255, 255, 255, 0});  // white
    ASSERT_TRUE(rgb.GrayScale());
    EXPECT_EQ(8, rgb.GetBpp());
    EXPECT_TRUE(rgb.IsGrayScale());
    EXPECT_EQ(76, rgb.GetPixelIndex(0, 0));   // 255 * 306 >> 10
    EXPECT_EQ(149, rgb.GetPixelIndex(1, 0));  // 255 * 601 >> 10
    EXPECT_EQ(255, rgb.GetPixelIndex(2, 0));

    CxImage four;
    ASSERT_NE(nullptr, four.Create(3, 1, 4, 0));
    four.SetStdPalette();
    four.SetPixelIndex(0, 0, 12);  // blue: 255 * 117 >> 10 = 29
    four.SetPixelIndex(1, 0, 7);   // silver 192
    four.SetPixelIndex(2, 0, 2);   // (0,128,0): 128 * 601 >> 10 = 75
    ASSERT_TRUE(four.GrayScale());
    EXPECT_EQ(8, four.GetBpp());
    EXPECT_EQ(29, four.GetPixelIndex(0, 0));
    EXPECT_EQ(192, four.GetPixelIndex(1, 0));
    EXPECT_EQ(75, four.GetPixelIndex(2, 0));

    CxImage eight;
    ASSERT_NE(nullptr, eight.Create(2, 1, 8, 0));
    eight.SetStdPalette();
    eight.SetPixelIndex(0, 0, 9);  // (166, 202, 240)
    eight.SetPixelIndex(1, 0, 255);
    eight.SetBkgndIndex(9);
    ASSERT_TRUE(eight.GrayScale());
    const int g = (166 * 306 + 202 * 601 + 240 * 117) >> 10;
    EXPECT_EQ(g, eight.GetPixelIndex(0, 0));
    EXPECT_EQ(255, eight.GetPixelIndex(1, 0));
    EXPECT_EQ(g, eight.GetBkgndIndex()) << "the background index becomes its grey level";
    EXPECT_TRUE(eight.IsGrayScale());
}

TEST(DecreaseBppTest, NearestOfBlackAndWhiteByAllThreeChannels)
{
    const struct { BYTE r, g, b; int white; } rows[] = {
        {128, 128, 128, 1}, {127, 127, 127, 0}, {255, 0, 0, 0}, {255, 255, 0, 1},
        {200, 100, 83, 1},  {200, 100, 82, 0},  {0, 0, 0, 0},   {255, 255, 255, 1},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << int(r.r) << "," << int(r.g) << "," << int(r.b));
        CxImage img;
        ASSERT_TRUE(testimg::Solid24(img, 9, 2, r.r, r.g, r.b));
        ASSERT_TRUE(img.DecreaseBpp(1, 2));
        EXPECT_EQ(1, img.GetBpp());
        EXPECT_EQ(2u, img.GetClrImportant());
        for (long x = 0; x < 9; x++) ASSERT_EQ(r.white, img.GetPixelIndex(x, 1));
        EXPECT_EQ(255, img.GetPaletteColor(1).rgbRed);
        EXPECT_EQ(0, img.GetPaletteColor(0).rgbGreen);
    }
}

TEST(DecreaseBppTest, EmptyImagesAndFinishedOnes)
{
    CxImage empty;
    EXPECT_FALSE(empty.DecreaseBpp(1, 2));
    EXPECT_STREQ("DecreaseBpp: target BPP greater than source BPP", empty.GetLastError());

    CxImage one;
    ASSERT_NE(nullptr, one.Create(3, 1, 1, 0));
    one.SetPaletteColor(0, RGBQUAD{255, 255, 255, 0});  // an inverted palette ...
    one.SetPaletteColor(1, RGBQUAD{0, 0, 0, 0});
    one.GetBits()[0] = 0xA0;
    one.SetClrImportant(1);  // ... kept as it is when only one colour is important
    void* block = one.GetDIB();
    EXPECT_TRUE(one.DecreaseBpp(1, 2));
    EXPECT_EQ(block, one.GetDIB());
    EXPECT_EQ(0xA0, one.GetBits()[0]);
    one.SetClrImportant(0);
    EXPECT_TRUE(one.DecreaseBpp(1, 2));
    EXPECT_EQ("#.#\n", Picture(one)) << "re-judged against black and white";
}

TEST(DitherMethods, ThresholdOfTheErrorDiffusions)
{
    for (long method : {1L, 0L, 5L, 255L}) {
        SCOPED_TRACE(testing::Message() << "method " << method);
        CxImage img;
        ASSERT_TRUE(testimg::SolidGrey(img, 1, 1, 128));
        ASSERT_TRUE(img.Dither(method));
        EXPECT_EQ(0, img.GetPixelIndex(0, 0));
        ASSERT_TRUE(testimg::SolidGrey(img, 1, 1, 129));
        ASSERT_TRUE(img.Dither(method));
        EXPECT_EQ(1, img.GetPixelIndex(0, 0));
    }
}

TEST(DitherMethods, ErrorSharesTruncateTowardZero)
{
    // 129 prints white and leaves -126. Floyd-Steinberg gives the right neighbour -126 * 7 / 16
    // = -55 (not -56): 184 becomes 129 and prints white, 183 becomes 128 and prints black.
    CxImage img;
    ASSERT_TRUE(testimg::SolidGrey(img, 2, 1, 129));
    img.SetPixelIndex(1, 0, 184);
    ASSERT_TRUE(img.Dither(1));
    EXPECT_EQ("..\n", Picture(img));
    ASSERT_TRUE(testimg::SolidGrey(img, 2, 1, 129));
    img.SetPixelIndex(1, 0, 183);
    ASSERT_TRUE(img.Dither(1));
    EXPECT_EQ(".#\n", Picture(img));
    // Three-row diffusion: -126 * 5 / 32 = -19 (not -20) to the right.
    ASSERT_TRUE(testimg::SolidGrey(img, 2, 1, 129));
    img.SetPixelIndex(1, 0, 148);
    ASSERT_TRUE(img.Dither(5));
    EXPECT_EQ("..\n", Picture(img));
    ASSERT_TRUE(testimg::SolidGrey(img, 2, 1, 129));
    img.SetPixelIndex(1, 0, 147);
    ASSERT_TRUE(img.Dither(5));
    EXPECT_EQ(".#\n", Picture(img));
}

TEST(DitherMethods, StoredRowsRunFirstSoErrorFlowsUpThePicture)
{
    // Stored row 0 is the bottom of the picture. Its 129 leaves -126, of which -126 * 5 / 16 =
    // -39 goes to the pixel above it: 150 becomes 111 and prints black.
    CxImage img;
    ASSERT_TRUE(testimg::SolidGrey(img, 1, 2, 129));
    img.SetPixelIndex(0, 1, 150);
    ASSERT_TRUE(img.Dither(1));
    EXPECT_EQ("#\n.\n", Picture(img));
    // A black bottom pixel of 100 pushes +31 up: the 110 above it becomes 141 and prints white.
    ASSERT_TRUE(testimg::SolidGrey(img, 1, 2, 100));
    img.SetPixelIndex(0, 1, 110);
    ASSERT_TRUE(img.Dither(1));
    EXPECT_EQ(".\n#\n", Picture(img));
}

TEST(DitherMethods, OrderedDither)
{
    CxImage img;
    for (int level : {0, 255}) {
        ASSERT_TRUE(testimg::SolidGrey(img, 9, 9, static_cast<BYTE>(level)));
        ASSERT_TRUE(img.Dither(2));
        for (long y = 0; y < 9; y++)
            for (long x = 0; x < 9; x++) ASSERT_EQ(level == 255 ? 1 : 0, img.GetPixelIndex(x, y));
    }
    static const int matrix[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
    ASSERT_TRUE(testimg::SolidGrey(img, 9, 9, 128));
    ASSERT_TRUE(img.Dither(2));
    for (long y = 0; y < 9; y++)
        for (long x = 0; x < 9; x++)
            ASSERT_EQ(matrix[y % 4][x % 4] < 8 ? 1 : 0, img.GetPixelIndex(x, y)) << x << "," << y;
}

TEST(DitherMethods, GeneratedBayerMatrix)
{
    static const int entries[16] = {0, 192, 48, 240, 128, 64, 176, 112, 32, 224, 16, 208, 160, 96, 144, 80};
    CxImage img;
    for (int level : {0, 1, 100, 192, 193, 240, 241, 255}) {
        SCOPED_TRACE(testing::Message() << "level " << level);
        ASSERT_TRUE(testimg::SolidGrey(img, 10, 7, static_cast<BYTE>(level)));
        ASSERT_TRUE(img.Dither(3));
        for (long y = 0; y < 7; y++)
            for (long x = 0; x < 10; x++)
                ASSERT_EQ(level > entries[(x % 4) + 4 * (y % 4)] ? 1 : 0, img.GetPixelIndex(x, y)) << x << "," << y;
    }
}

TEST(DitherMethods, EightByEightMatrixIsUsedTransposed)
{
    CxImage img;
    ASSERT_TRUE(testimg::SolidGrey(img, 8, 8, 3));
    ASSERT_TRUE(img.Dither(4));
    for (long y = 0; y < 8; y++)
        for (long x = 0; x < 8; x++) ASSERT_EQ(0, img.GetPixelIndex(x, y));
    // Level 4 (L = 1) prints where B is 0 or 1: B(0,0) = 0 and B(4,4) = 1 only.
    ASSERT_TRUE(testimg::SolidGrey(img, 8, 8, 4));
    ASSERT_TRUE(img.Dither(4));
    for (long y = 0; y < 8; y++)
        for (long x = 0; x < 8; x++)
            EXPECT_EQ((x == 0 && y == 0) || (x == 4 && y == 4) ? 1 : 0, img.GetPixelIndex(x, y)) << x << "," << y;
    // Level 8 (L = 2): B = 2 sits at matrix row 0, column 4, i.e. x = 0, y = 4 (not x = 4, y = 0).
    ASSERT_TRUE(testimg::SolidGrey(img, 8, 8, 8));
    ASSERT_TRUE(img.Dither(4));
    EXPECT_EQ(1, img.GetPixelIndex(0, 4));
    EXPECT_EQ(0, img.GetPixelIndex(4, 0));
}

TEST(DitherMethods, OneBitImagesAreLeftAndEmptyOnesFail)
{
    CxImage one;
    ASSERT_NE(nullptr, one.Create(5, 3, 1, 0));
    memset(one.GetBits(), 0x5A, one.GetHeader().biSizeImage);
    one.SetPaletteColor(0, RGBQUAD{1, 2, 3, 0});
    const std::string before(static_cast<const char*>(one.GetDIB()), one.GetDIBSize());
    for (long m = 0; m < 6; m++) {
        EXPECT_TRUE(one.Dither(m));
        EXPECT_EQ(before, std::string(static_cast<const char*>(one.GetDIB()), one.GetDIBSize()));
    }
    CxImage empty;
    EXPECT_FALSE(empty.Dither(1));
}

TEST(DitherMethods, ResultIsOneBitBlackAndWhiteOfTheSameSize)
{
    for (DWORD bpp : {4u, 8u, 24u})
        for (long m : {1L, 2L, 3L, 4L, 7L}) {
            SCOPED_TRACE(testing::Message() << bpp << " bpp, method " << m);
            CxImage img;
            ASSERT_NE(nullptr, img.Create(13, 6, bpp, 4));
            memset(img.GetBits(), 0x77, img.GetHeader().biSizeImage);
            img.SetGrayPalette();
            ASSERT_TRUE(img.Dither(m));
            EXPECT_EQ(1, img.GetBpp());
            EXPECT_EQ(13u, img.GetWidth());
            EXPECT_EQ(6u, img.GetHeight());
            EXPECT_EQ(4u, img.GetType());
            EXPECT_EQ(2u, img.GetNumColors());
            const RGBQUAD b = img.GetPaletteColor(0), w = img.GetPaletteColor(1);
            EXPECT_EQ(0, b.rgbRed + b.rgbGreen + b.rgbBlue);
            EXPECT_EQ(3 * 255, w.rgbRed + w.rgbGreen + w.rgbBlue);
            BITMAPINFOHEADER h;
            memcpy(&h, img.GetDIB(), sizeof h);
            EXPECT_EQ(1, h.biBitCount) << "the block's own header describes the result";
            EXPECT_EQ(img.GetHeader().biSizeImage, h.biSizeImage);
        }
}

TEST(DitherMethods, EscapeStopsAtTheNextRow)
{
    CxImage img;
    ASSERT_TRUE(testimg::SolidGrey(img, 4, 4, 255));
    img.SetEscape(1);
    EXPECT_TRUE(img.Dither(2));
    EXPECT_EQ(1, img.GetBpp());
    EXPECT_EQ(0, img.GetPixelIndex(0, 0)) << "nothing was decided";
}

}  // namespace
