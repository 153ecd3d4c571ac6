// The product's row loops against the pixel-by-pixel rules (reference_rules.cpp) on many random
// pictures: every depth, odd widths and padded rows, 1 x 1 and 1 x N, every method and brightness.
#include <random>

#include <gtest/gtest.h>

#include "imaging/ximage.h"
#include "reference_rules.h"
#include "test_images.h"

namespace {

using testimg::Content;
using testimg::Palette;

const DWORD kSizes[][2] = {
    {1, 1},  {1, 7},   {7, 1},  {2, 3},  {3, 2},   {5, 5},   {7, 9},   {8, 8},    {9, 4},
    {15, 3}, {16, 16}, {17, 5}, {23, 6}, {31, 11}, {32, 2},  {33, 17}, {47, 3},   {63, 9},
    {64, 4}, {65, 12}, {96, 102}, {97, 5}, {127, 3}, {129, 20}, {200, 1}, {1, 200}, {250, 9},
};
const DWORD kDepths[] = {1, 4, 8, 24};
const Content kContents[] = {Content::Noise, Content::Photo, Content::Strokes, Content::Flat};

struct Case {
    DWORD w, h, bpp;
    Content content;
    Palette palette;
};

Case PickCase(std::mt19937& rng, size_t i)
{
    Case c;
    const auto& s = kSizes[i % (sizeof kSizes / sizeof kSizes[0])];
    c.w = s[0];
    c.h = s[1];
    c.bpp = kDepths[(i / 3) % 4];
    c.content = kContents[rng() % 4];
    const unsigned p = rng() % 3;
    c.palette = p == 0 ? Palette::Grey : p == 1 ? Palette::Random : Palette::BlackWhite;
    return c;
}

testing::Message Describe(const Case& c)
{
    return testing::Message() << c.w << " x " << c.h << " x " << c.bpp << " bpp, " << testimg::ContentName(c.content)
                              << ", palette " << int(c.palette);
}

TEST(FastMatchesReference, DitherEveryMethodOnRandomPictures)
{
    std::mt19937 rng(20240601);
    const long methods[] = {1, 2, 3, 4, 0, 5, 200};
    for (size_t i = 0; i < 600; i++) {
        const Case c = PickCase(rng, i);
        CxImage src;
        ASSERT_TRUE(testimg::Make(src, rng, c.w, c.h, c.bpp, c.content, c.palette));
        for (long m : methods) {
            SCOPED_TRACE(Describe(c) << ", method " << m << ", case " << i);
            CxImage fast, ref;
            ASSERT_TRUE(testimg::Clone(src, fast));
            ASSERT_TRUE(testimg::Clone(src, ref));
            const bool rf = fast.Dither(m), rr = reference::Dither(ref, m);
            ASSERT_EQ(rr, rf);
            ASSERT_TRUE(testimg::SameImage(ref, fast));
        }
    }
}

TEST(FastMatchesReference, NearestColourReductionOnRandomPictures)
{
    std::mt19937 rng(777);
    for (size_t i = 0; i < 800; i++) {
        const Case c = PickCase(rng, i);
        CxImage src;
        ASSERT_TRUE(testimg::Make(src, rng, c.w, c.h, c.bpp, c.content, c.palette));
        if (i % 5 == 0) src.SetClrImportant(rng() % 3);
        SCOPED_TRACE(Describe(c) << ", case " << i);
        CxImage fast, ref;
        ASSERT_TRUE(testimg::Clone(src, fast));
        ASSERT_TRUE(testimg::Clone(src, ref));
        fast.DecreaseBpp(1, 2);
        reference::DecreaseBpp1(ref);
        ASSERT_TRUE(testimg::SameImage(ref, fast));
    }
}

TEST(FastMatchesReference, BrightnessAndGreyOnRandomPictures)
{
    std::mt19937 rng(4242);
    for (size_t i = 0; i < 800; i++) {
        const Case c = PickCase(rng, i);
        CxImage src;
        ASSERT_TRUE(testimg::Make(src, rng, c.w, c.h, c.bpp, c.content, c.palette));
        BYTE table[256];
        const bool arbitrary = i % 4 == 3;
        const int position = static_cast<int>(rng() % 21);
        if (arbitrary)
            for (int k = 0; k < 256; k++) table[k] = static_cast<BYTE>(rng());
        else
            BuildBrightnessTable(position, table);
        SCOPED_TRACE(Describe(c) << ", case " << i << (arbitrary ? ", random table" : ", position ") << position);
        CxImage fast, ref;
        ASSERT_TRUE(testimg::Clone(src, fast));
        ASSERT_TRUE(testimg::Clone(src, ref));
        ASSERT_TRUE(fast.Lut(table));
        ASSERT_TRUE(reference::Lut(ref, table));
        ASSERT_TRUE(testimg::SameImage(ref, fast));
        if (c.bpp == 24) {  // every byte, padding included
            for (DWORD y = 0; y < ref.GetHeight(); y++)
                ASSERT_EQ(0, memcmp(ref.GetBits(y), fast.GetBits(y), ref.GetEffWidth())) << "row " << y;
        }
        ASSERT_TRUE(fast.GrayScale());
        ASSERT_TRUE(reference::GrayScale(ref));
        ASSERT_TRUE(testimg::SameImage(ref, fast));
    }
}

TEST(FastMatchesReference, SelectionsAndMasksTravelWithTheImage)
{
    std::mt19937 rng(99);
    for (size_t i = 0; i < 120; i++) {
        const Case c = PickCase(rng, i);
        CxImage src;
        ASSERT_TRUE(testimg::Make(src, rng, c.w, c.h, c.bpp == 1 ? 8 : c.bpp, c.content, Palette::Grey));
        ASSERT_TRUE(src.SelectionCreate());
        ASSERT_TRUE(src.AlphaCreate());
        for (int k = 0; k < 5; k++) {
            const long x = static_cast<long>(rng() % c.w), y = static_cast<long>(rng() % c.h);
            src.SelectionAddPixel(x, y);
            src.AlphaSet(x, y, static_cast<BYTE>(rng()));
        }
        SCOPED_TRACE(Describe(c) << ", case " << i);
        BYTE table[256];
        BuildBrightnessTable(static_cast<int>(rng() % 21), table);
        CxImage fast, ref;
        ASSERT_TRUE(testimg::Clone(src, fast));
        ASSERT_TRUE(testimg::Clone(src, ref));
        fast.Lut(table);
        reference::Lut(ref, table);
        ASSERT_TRUE(testimg::SameImage(ref, fast));
        const long m = static_cast<long>(rng() % 6);
        fast.Dither(m);
        reference::Dither(ref, m);
        ASSERT_TRUE(testimg::SameImage(ref, fast));
        ASSERT_TRUE(fast.SelectionIsValid());
        ASSERT_TRUE(fast.AlphaIsValid());
        for (long y = 0; y < static_cast<long>(c.h); y++)
            for (long x = 0; x < static_cast<long>(c.w); x++) {
                ASSERT_EQ(src.SelectionIsInside(x, y), fast.SelectionIsInside(x, y));
                ASSERT_EQ(src.AlphaGet(x, y), fast.AlphaGet(x, y));
            }
    }
}

TEST(FastMatchesReference, PreviewPipelineAtBrightnessEndsAndMiddle)
{
    std::mt19937 rng(31337);
    for (DWORD bpp : kDepths)
        for (int position : {0, 10, 20})
            for (long method = 0; method <= 4; method++)
                for (bool grey : {false, true}) {
                    if (grey && method != 0) continue;
                    SCOPED_TRACE(testing::Message() << bpp << " bpp, position " << position << ", method " << method
                                                    << (grey ? ", greyscale" : ""));
                    CxImage src;
                    ASSERT_TRUE(testimg::Make(src, rng, 96, 102, bpp, Content::Photo, Palette::Random));
                    CxImage fast, ref;
                    ASSERT_TRUE(testimg::Clone(src, fast));
                    ASSERT_TRUE(testimg::Clone(src, ref));
                    BYTE table[256];
                    BuildBrightnessTable(position, table);
                    fast.Lut(table);
                    if (!grey) {
                        if (method == 0)
                            fast.DecreaseBpp(1, 2);
                        else
                            fast.Dither(method);
                    }
                    reference::Preview(ref, position, method, grey);
                    ASSERT_TRUE(testimg::SameImage(ref, fast));
                }
}

}  // namespace
