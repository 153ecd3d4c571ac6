// CxImage as the preview's image buffer: creation, the DIB block, pixel and palette access,
// nearest colour, hand-over and masks.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "imaging/ximage.h"
#include "test_images.h"

namespace {

const char kMsgSize[] = "CxImage::Create : width and height must be greater than zero";
const char kMsgAlloc[] = "CxImage::Create can't allocate memory";

RGBQUAD Q(BYTE r, BYTE g, BYTE b, BYTE a = 0) { return RGBQUAD{b, g, r, a}; }

BITMAPINFOHEADER BlockHeader(const CxImage& img)
{
    BITMAPINFOHEADER h;
    memcpy(&h, img.GetDIB(), sizeof h);
    return h;
}

TEST(ImageCreate, NewImageStartsEmptyWithDefaults)
{
    CxImage img;
    EXPECT_FALSE(img.IsValid());
    EXPECT_EQ(nullptr, img.GetDIB());
    EXPECT_EQ(-1, img.GetBkgndIndex());
    EXPECT_EQ(1u, img.GetType());
    EXPECT_EQ(3780, img.GetHeader().biXPelsPerMeter);
    EXPECT_EQ(3780, img.GetHeader().biYPelsPerMeter);
    EXPECT_STREQ("", img.GetLastError());
    EXPECT_EQ(0, img.GetPixelIndex(0, 0));
    EXPECT_EQ(0, img.GetNearestIndex(Q(1, 2, 3)));
    EXPECT_FALSE(img.IsGrayScale());
    EXPECT_FALSE(img.Dither(1));
}

TEST(ImageCreate, ZeroWidthOrHeightIsRefusedWithMessage)
{
    const DWORD sizes[][2] = {{0, 10}, {10, 0}, {0, 0}};
    for (const auto& s : sizes) {
        SCOPED_TRACE(testing::Message() << s[0] << " x " << s[1]);
        CxImage img;
        EXPECT_EQ(nullptr, img.Create(s[0], s[1], 24, 0));
        EXPECT_STREQ(kMsgSize, img.GetLastError());
        EXPECT_FALSE(img.IsValid());
    }
}

TEST(ImageCreate, SizesWhoseByteCountWouldOverflowAreRefused)
{
    const DWORD sizes[][3] = {
        {0xFFFFFFFFu, 0xFFFFFFFFu, 24}, {0x80000000u, 1, 1},   {1, 0x80000000u, 1},
        {70000, 70000, 24},             {0x7FFFFFFFu, 0x7FFFFFFFu, 1}, {0x40000000u, 8, 24},
        {65536, 65536, 8},
    };
    for (const auto& s : sizes) {
        SCOPED_TRACE(testing::Message() << s[0] << " x " << s[1] << " x " << s[2]);
        CxImage img;
        EXPECT_EQ(nullptr, img.Create(s[0], s[1], s[2], 0));
        EXPECT_STREQ(kMsgAlloc, img.GetLastError());
        EXPECT_FALSE(img.IsValid());
    }
}

TEST(ImageCreate, StrideAndImageSizeOfThePreviewPicture)
{
    CxImage img;
    ASSERT_NE(nullptr, img.Create(96, 102, 24, 0));
    EXPECT_EQ(288u, img.GetEffWidth());
    EXPECT_EQ(29376u, img.GetHeader().biSizeImage);
    img.Destroy();
    ASSERT_NE(nullptr, img.Create(96, 102, 1, 0));
    EXPECT_EQ(12u, img.GetEffWidth());
    EXPECT_EQ(1224u, img.GetHeader().biSizeImage);
}

TEST(ImageCreate, DepthIsNormalisedAndTheBlockIsAValidBitmapInfo)
{
    const struct { DWORD asked; WORD bpp; DWORD colours; } rows[] = {
        {0, 1, 2}, {1, 1, 2}, {2, 4, 16}, {3, 4, 16}, {4, 4, 16}, {5, 8, 256}, {8, 8, 256},
        {9, 24, 0}, {16, 24, 0}, {24, 24, 0}, {32, 24, 0},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << "bpp asked " << r.asked);
        CxImage img;
        BYTE* block = static_cast<BYTE*>(img.Create(13, 5, r.asked, 7));
        ASSERT_NE(nullptr, block);
        EXPECT_EQ(block, img.GetDIB());
        EXPECT_EQ(r.bpp, img.GetBpp());
        EXPECT_EQ(7u, img.GetType());
        const BITMAPINFOHEADER h = BlockHeader(img);
        EXPECT_EQ(40u, h.biSize);
        EXPECT_EQ(13, h.biWidth);
        EXPECT_EQ(5, h.biHeight);
        EXPECT_EQ(1, h.biPlanes);
        EXPECT_EQ(r.bpp, h.biBitCount);
        EXPECT_EQ(0u, h.biCompression);
        EXPECT_EQ(r.colours, h.biClrUsed);
        const DWORD stride = ((13 * r.bpp + 31) / 32) * 4;
        EXPECT_EQ(stride, img.GetEffWidth());
        EXPECT_EQ(stride * 5, h.biSizeImage);
        EXPECT_EQ(3780, h.biXPelsPerMeter);
        EXPECT_EQ(block + 40 + 4 * r.colours, img.GetBits());
        EXPECT_EQ(40 + 4 * r.colours + stride * 5, img.GetDIBSize());
        for (DWORD i = 0; i < 4 * r.colours; i++) ASSERT_EQ(0, block[40 + i]) << "palette byte " << i;
    }
}

TEST(ImageCreate, CreatingAgainReplacesThePictureAndItsMasks)
{
    CxImage img;
    ASSERT_NE(nullptr, img.Create(4, 4, 8, 0));
    ASSERT_TRUE(img.SelectionCreate());
    ASSERT_TRUE(img.AlphaCreate());
    ASSERT_NE(nullptr, img.Create(300, 200, 24, 0));
    EXPECT_EQ(300u, img.GetWidth());
    EXPECT_FALSE(img.SelectionIsValid()) << "a 4 x 4 mask does not describe a 300 x 200 picture";
    EXPECT_FALSE(img.AlphaIsValid());
    EXPECT_TRUE(img.SelectionIsInside(299, 199));

    CxImage owner;
    ASSERT_NE(nullptr, owner.Create(3, 3, 8, 0));
    owner.GetBits()[0] = 42;
    CxImage view;
    view.Ghost(owner);
    ASSERT_NE(nullptr, view.Create(5, 5, 1, 0));
    EXPECT_FALSE(view.IsGhost());
    EXPECT_NE(owner.GetDIB(), view.GetDIB());
    EXPECT_EQ(42, owner.GetPixelIndex(0, 0)) << "the owner keeps its picture";
    EXPECT_TRUE(view.Destroy());
}

TEST(ImagePixels, IndexBitOrderAndNibbleOrder)
{
    CxImage one;
    ASSERT_NE(nullptr, one.Create(11, 2, 1, 0));
    memset(one.GetBits(), 0, one.GetHeader().biSizeImage);
    one.SetPixelIndex(0, 0, 1);
    one.SetPixelIndex(9, 0, 1);
    one.SetPixelIndex(3, 1, 1);
    EXPECT_EQ(0x80, one.GetBits(0)[0]);
    EXPECT_EQ(0x40, one.GetBits(0)[1]);
    EXPECT_EQ(0x10, one.GetBits(1)[0]);
    EXPECT_EQ(1, one.GetPixelIndex(9, 0));
    EXPECT_EQ(0, one.GetPixelIndex(8, 0));
    one.SetPixelIndex(0, 0, 0);
    EXPECT_EQ(0x00, one.GetBits(0)[0]);

    CxImage four;
    ASSERT_NE(nullptr, four.Create(5, 1, 4, 0));
    memset(four.GetBits(), 0, four.GetHeader().biSizeImage);
    four.SetPixelIndex(0, 0, 0xA);
    four.SetPixelIndex(1, 0, 0x3);
    four.SetPixelIndex(4, 0, 0xF);
    EXPECT_EQ(0xA3, four.GetBits()[0]);
    EXPECT_EQ(0xF0, four.GetBits()[2]);
    EXPECT_EQ(0x3, four.GetPixelIndex(1, 0));

    CxImage eight;
    ASSERT_NE(nullptr, eight.Create(3, 2, 8, 0));
    eight.SetPixelIndex(2, 1, 200);
    EXPECT_EQ(200, eight.GetBits(1)[2]);
    EXPECT_EQ(200, eight.GetPixelIndex(2, 1));
}

TEST(ImagePixels, ReadsOutsideGiveBackgroundOrFirstByteAndWritesOutsideAreDropped)
{
    CxImage img;
    ASSERT_NE(nullptr, img.Create(4, 3, 8, 0));
    for (DWORD i = 0; i < img.GetHeader().biSizeImage; i++) img.GetBits()[i] = static_cast<BYTE>(i + 17);
    EXPECT_EQ(17, img.GetPixelIndex(-1, 0)) << "background -1: first byte of pixel data";
    EXPECT_EQ(17, img.GetPixelIndex(4, 2));
    EXPECT_EQ(17, img.GetPixelIndex(0, 3));
    img.SetBkgndIndex(5);
    EXPECT_EQ(5, img.GetPixelIndex(0, -1));

    std::string before(static_cast<const char*>(img.GetDIB()), img.GetDIBSize());
    const long outside[][2] = {{-1, 0}, {4, 0}, {0, 3}, {0, -1}, {-100, -100}, {1000000, 2}};
    for (const auto& p : outside) img.SetPixelIndex(p[0], p[1], 99);
    EXPECT_EQ(before, std::string(static_cast<const char*>(img.GetDIB()), img.GetDIBSize()));

    CxImage rgb;
    ASSERT_NE(nullptr, rgb.Create(2, 2, 24, 0));
    memset(rgb.GetBits(), 0x11, rgb.GetHeader().biSizeImage);
    rgb.SetPixelIndex(0, 0, 0xEE);
    EXPECT_EQ(0x11, rgb.GetBits()[0]) << "24-bit images ignore index writes";
    EXPECT_EQ(0, rgb.GetPixelIndex(0, 0)) << "no palette: index 0";
}

TEST(ImagePixels, ColourAccessOn24BitAndPalettedImages)
{
    CxImage rgb;
    ASSERT_NE(nullptr, rgb.Create(3, 2, 24, 0));
    rgb.SetPixelColor(2, 1, Q(10, 20, 30, 99));
    const BYTE* p = rgb.GetBits(1) + 6;
    EXPECT_EQ(30, p[0]);
    EXPECT_EQ(20, p[1]);
    EXPECT_EQ(10, p[2]);
    const RGBQUAD c = rgb.GetPixelColor(2, 1);
    EXPECT_EQ(10, c.rgbRed);
    EXPECT_EQ(20, c.rgbGreen);
    EXPECT_EQ(30, c.rgbBlue);
    EXPECT_EQ(0, c.rgbReserved);
    ASSERT_TRUE(rgb.AlphaCreate());
    rgb.AlphaSet(2, 1, 77);
    EXPECT_EQ(77, rgb.GetPixelColor(2, 1).rgbReserved) << "the alpha mask replaces the fourth byte";

    CxImage pal;
    ASSERT_NE(nullptr, pal.Create(4, 1, 4, 0));
    pal.SetStdPalette();
    pal.SetPixelColor(0, 0, Q(250, 5, 5));
    EXPECT_EQ(9, pal.GetPixelIndex(0, 0)) << "nearest of the 16 colours to near-red is red";
    const RGBQUAD r = pal.GetPixelColor(0, 0);
    EXPECT_EQ(255, r.rgbRed);
    EXPECT_EQ(0, r.rgbGreen);
    EXPECT_EQ(0, pal.GetPaletteColor(16).rgbRed) << "index past the palette: zero colour";
    EXPECT_EQ(0, pal.GetPaletteColor(200).rgbBlue);
}

TEST(ImagePalette, NearestIndexOnBlackAndWhite)
{
    CxImage img;
    ASSERT_NE(nullptr, img.Create(1, 1, 1, 0));
    img.SetStdPalette();
    for (int g = 0; g < 256; g++)
        EXPECT_EQ(g >= 128 ? 1 : 0, img.GetNearestIndex(Q(g, g, g))) << "grey " << g;
    EXPECT_EQ(0, img.GetNearestIndex(Q(255, 0, 0))) << "judged by all three channels";
    EXPECT_EQ(1, img.GetNearestIndex(Q(255, 255, 0)));
    EXPECT_EQ(1, img.GetNearestIndex(Q(200, 100, 83))) << "channel sum 383";
    EXPECT_EQ(0, img.GetNearestIndex(Q(200, 100, 82))) << "channel sum 382";
}

TEST(ImagePalette, TiesGoToTheLowerIndexAndImportantColoursLimitTheSearch)
{
    CxImage img;
    ASSERT_NE(nullptr, img.Create(1, 1, 4, 0));
    img.SetPaletteColor(0, Q(0, 0, 0));
    img.SetPaletteColor(1, Q(2, 0, 0));
    for (int i = 2; i < 16; i++) img.SetPaletteColor(static_cast<BYTE>(i), Q(200, 200, 200));
    EXPECT_EQ(0, img.GetNearestIndex(Q(1, 0, 0))) << "equal distance: the lower index";
    img.SetPaletteColor(5, Q(90, 90, 90));
    EXPECT_EQ(5, img.GetNearestIndex(Q(90, 90, 91)));
    img.SetClrImportant(2);
    EXPECT_EQ(1, img.GetNearestIndex(Q(90, 90, 91))) << "only the first two entries count";
}

TEST(ImagePalette, NearestColourCacheIsClearedWhenThePaletteIsRewritten)
{
    CxImage img;
    ASSERT_NE(nullptr, img.Create(1, 1, 1, 0));
    img.SetStdPalette();
    EXPECT_EQ(1, img.GetNearestIndex(Q(200, 200, 200)));
    // A direct write to the palette bypasses the cache: the old answer comes back.
    img.GetPalette()[0] = Q(200, 200, 200);
    img.GetPalette()[1] = Q(0, 0, 0);
    EXPECT_EQ(1, img.GetNearestIndex(Q(200, 200, 200)));
    img.ClearNearestCache();
    EXPECT_EQ(0, img.GetNearestIndex(Q(200, 200, 200)));
    img.SetStdPalette();
    EXPECT_EQ(1, img.GetNearestIndex(Q(200, 200, 200)));
    img.SetPaletteColor(1, Q(0, 0, 0));
    EXPECT_EQ(0, img.GetNearestIndex(Q(200, 200, 200)));
}

TEST(ImagePalette, GreyAndStandardPalettes)
{
    const struct { DWORD bpp; int step; } greys[] = {{1, 255}, {4, 17}, {8, 1}};
    for (const auto& g : greys) {
        CxImage img;
        ASSERT_NE(nullptr, img.Create(2, 2, g.bpp, 0));
        img.SetGrayPalette();
        for (DWORD i = 0; i < img.GetNumColors(); i++) {
            const RGBQUAD c = img.GetPaletteColor(static_cast<BYTE>(i));
            EXPECT_EQ(g.step * int(i), c.rgbRed);
            EXPECT_EQ(g.step * int(i), c.rgbGreen);
            EXPECT_EQ(g.step * int(i), c.rgbBlue);
        }
        EXPECT_EQ(g.bpp == 8, img.IsGrayScale()) << "only entry i = (i, i, i) everywhere is grey scale";
    }

    CxImage one;
    ASSERT_NE(nullptr, one.Create(1, 1, 1, 0));
    one.SetStdPalette();
    EXPECT_EQ(0, one.GetPaletteColor(0).rgbRed);
    EXPECT_EQ(255, one.GetPaletteColor(1).rgbGreen);

    static const BYTE std16[16][3] = {
        {0, 0, 0},       {128, 0, 0},   {0, 128, 0},   {128, 128, 0}, {0, 0, 128},   {128, 0, 128},
        {0, 128, 128},   {192, 192, 192}, {128, 128, 128}, {255, 0, 0}, {0, 255, 0}, {255, 255, 0},
        {0, 0, 255},     {255, 0, 255}, {0, 255, 255}, {255, 255, 255}};
    CxImage four;
    ASSERT_NE(nullptr, four.Create(1, 1, 4, 0));
    four.SetStdPalette();
    for (int i = 0; i < 16; i++) {
        const RGBQUAD c = four.GetPaletteColor(static_cast<BYTE>(i));
        EXPECT_EQ(std16[i][0], c.rgbRed) << i;
        EXPECT_EQ(std16[i][1], c.rgbGreen) << i;
        EXPECT_EQ(std16[i][2], c.rgbBlue) << i;
    }
    CxImage eight;
    ASSERT_NE(nullptr, eight.Create(1, 1, 8, 0));
    eight.SetStdPalette();
    for (int i = 0; i < 8; i++) {
        EXPECT_EQ(std16[i][0], eight.GetPaletteColor(static_cast<BYTE>(i)).rgbRed) << i;
        EXPECT_EQ(std16[i][2], eight.GetPaletteColor(static_cast<BYTE>(i)).rgbBlue) << i;
        EXPECT_EQ(std16[8 + i][0], eight.GetPaletteColor(static_cast<BYTE>(248 + i)).rgbRed) << i;
        EXPECT_EQ(std16[8 + i][1], eight.GetPaletteColor(static_cast<BYTE>(248 + i)).rgbGreen) << i;
        EXPECT_EQ(std16[8 + i][2], eight.GetPaletteColor(static_cast<BYTE>(248 + i)).rgbBlue) << i;
    }
    EXPECT_EQ(192, eight.GetPaletteColor(8).rgbRed);
    EXPECT_EQ(220, eight.GetPaletteColor(8).rgbGreen);
    EXPECT_EQ(166, eight.GetPaletteColor(9).rgbRed);
    EXPECT_EQ(240, eight.GetPaletteColor(9).rgbBlue);
}

TEST(ImagePalette, IsGrayScaleNeedsEveryEntry)
{
    CxImage img;
    ASSERT_NE(nullptr, img.Create(1, 1, 8, 0));
    img.SetGrayPalette();
    EXPECT_TRUE(img.IsGrayScale());
    img.SetPaletteColor(255, Q(255, 255, 254));
    EXPECT_FALSE(img.IsGrayScale());
    CxImage rgb;
    ASSERT_NE(nullptr, rgb.Create(1, 1, 24, 0));
    EXPECT_FALSE(rgb.IsGrayScale());
}

TEST(ImageTransfer, MovesEverythingAndLeavesTheSourceEmpty)
{
    CxImage src;
    ASSERT_NE(nullptr, src.Create(5, 4, 8, 3));
    src.SetGrayPalette();
    ASSERT_TRUE(src.SelectionCreate());
    src.SelectionAddPixel(1, 2);
    ASSERT_TRUE(src.AlphaCreate());
    src.AlphaSet(4, 3, 9);
    ASSERT_NE(nullptr, src.LayerCreate());
    ASSERT_TRUE(src.AddFrame(new CxImage));
    src.SetBkgndIndex(7);
    void* block = src.GetDIB();

    CxImage dst;
    ASSERT_NE(nullptr, dst.Create(2, 2, 24, 0));
    ASSERT_TRUE(dst.AddFrame(new CxImage));
    ASSERT_TRUE(dst.AddFrame(new CxImage));
    ASSERT_TRUE(dst.Transfer(src));

    EXPECT_EQ(block, dst.GetDIB());
    EXPECT_EQ(5u, dst.GetWidth());
    EXPECT_EQ(8, dst.GetBpp());
    EXPECT_EQ(3u, dst.GetType());
    EXPECT_EQ(7, dst.GetBkgndIndex());
    EXPECT_TRUE(dst.SelectionIsInside(1, 2));
    EXPECT_FALSE(dst.SelectionIsInside(0, 0));
    EXPECT_EQ(9, dst.AlphaGet(4, 3));
    EXPECT_EQ(1, dst.GetNumLayers());
    EXPECT_EQ(1, dst.GetNumFrames()) << "own frames destroyed, the source's taken over";

    EXPECT_FALSE(src.IsValid());
    EXPECT_EQ(nullptr, src.GetDIB());
    EXPECT_EQ(nullptr, src.GetBits());
    EXPECT_EQ(0u, src.GetWidth());
    EXPECT_EQ(0, src.GetBpp());
    EXPECT_FALSE(src.SelectionIsValid());
    EXPECT_FALSE(src.AlphaIsValid());
    EXPECT_EQ(0, src.GetNumLayers());
    EXPECT_EQ(0, src.GetNumFrames());
    EXPECT_EQ(0, src.GetPixelIndex(0, 0));
    EXPECT_FALSE(src.Dither(1));
}

TEST(ImageTransfer, AViewCannotBeDestroyedOrTransferredInto)
{
    CxImage owner;
    ASSERT_NE(nullptr, owner.Create(3, 3, 8, 0));
    CxImage other;
    ASSERT_NE(nullptr, other.Create(2, 2, 8, 0));
    {
        CxImage view;
        view.Ghost(owner);
        EXPECT_TRUE(view.IsGhost());
        EXPECT_EQ(owner.GetDIB(), view.GetDIB());
        EXPECT_FALSE(view.Destroy());
        EXPECT_FALSE(view.Transfer(other));
        EXPECT_TRUE(other.IsValid()) << "a refused transfer moves nothing";
        EXPECT_FALSE(other.Transfer(view)) << "a view has nothing of its own to hand over";
    }
    EXPECT_TRUE(owner.IsValid()) << "the view's end leaves the owner's block alone";
    EXPECT_TRUE(owner.Destroy());
    EXPECT_FALSE(owner.IsValid());
}

TEST(ImageMasks, SelectionAndAlphaCopies)
{
    CxImage a, b, c, noMask;
    ASSERT_NE(nullptr, a.Create(6, 4, 8, 0));
    ASSERT_NE(nullptr, b.Create(6, 4, 24, 0));
    ASSERT_NE(nullptr, c.Create(5, 4, 8, 0));
    ASSERT_NE(nullptr, noMask.Create(6, 4, 8, 0));
    EXPECT_FALSE(b.SelectionCopy(noMask));
    EXPECT_FALSE(b.AlphaCopy(noMask));
    ASSERT_TRUE(a.SelectionCreate());
    a.SelectionAddPixel(2, 1);
    a.SelectionAddPixel(4, 3);
    ASSERT_TRUE(a.AlphaCreate());
    a.AlphaSet(5, 0, 12);
    EXPECT_FALSE(c.SelectionCopy(a)) << "sizes differ";
    EXPECT_FALSE(c.AlphaCopy(a));
    ASSERT_TRUE(b.SelectionCopy(a));
    ASSERT_TRUE(b.AlphaCopy(a));
    EXPECT_TRUE(b.SelectionIsInside(2, 1));
    EXPECT_TRUE(b.SelectionIsInside(4, 3));
    EXPECT_FALSE(b.SelectionIsInside(3, 2));
    const RECT box = b.GetSelectionBox();
    EXPECT_EQ(2, box.left);
    EXPECT_EQ(5, box.right);
    EXPECT_EQ(1, box.bottom);
    EXPECT_EQ(4, box.top);
    EXPECT_EQ(12, b.AlphaGet(5, 0));
    a.AlphaSet(5, 0, 13);
    EXPECT_EQ(12, b.AlphaGet(5, 0)) << "a copy, not a shared mask";
}

TEST(ImageDestroy, FreesLayersAndMasksAndEmptiesTheImage)
{
    CxImage img;
    ASSERT_NE(nullptr, img.Create(4, 4, 4, 0));
    ASSERT_TRUE(img.SelectionCreate());
    ASSERT_TRUE(img.AlphaCreate());
    CxImage* layer = img.LayerCreate();
    ASSERT_NE(nullptr, layer);
    ASSERT_NE(nullptr, layer->Create(2, 2, 8, 0));
    EXPECT_TRUE(img.Destroy());
    EXPECT_FALSE(img.IsValid());
    EXPECT_EQ(0, img.GetNumLayers());
    EXPECT_FALSE(img.SelectionIsValid());
    EXPECT_FALSE(img.AlphaIsValid());
    EXPECT_TRUE(img.Destroy()) << "destroying an empty image is fine";
    ASSERT_NE(nullptr, img.Create(3, 3, 8, 0)) << "and it can be created again";
    EXPECT_EQ(0u, img.GetClrImportant());
}

}  // namespace
