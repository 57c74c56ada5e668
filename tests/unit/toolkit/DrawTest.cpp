// Drawing checked pixel by pixel against hand-made images.
#include <gtest/gtest.h>

#include "ToolkitSupport.h"
#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CDrawContext.h"
#include "gui/toolkit/FrameImage.h"

namespace {

const CColor kRed{255, 0, 0, 255};
const CColor kGreen{0, 255, 0, 255};
const CColor kBlue{0, 0, 255, 255};
const CColor kWhite{255, 255, 255, 255};
const CColor kClear{0, 0, 0, 0};

// A 4 × 2 image: red, green, blue, half-transparent white; then a row of opaque white.
std::vector<unsigned char> testPng() {
    return makePng(4, 2, {0xffff0000, 0xff00ff00, 0xff0000ff, 0x80ffffff,
                          0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff});
}

std::vector<CColor> row(const FrameImage& image, int y, int from, int to) {
    std::vector<CColor> out;
    for (int x = from; x < to; ++x) out.push_back(image.pixel(x, y));
    return out;
}

TEST(Bitmap, BrokenOrTruncatedPngLoadsEmpty) {
    const auto png = testPng();
    const unsigned char junk[] = {1, 2, 3};
    for (auto [data, size] : {std::pair{png.data(), png.size() / 2}, std::pair{junk, sizeof junk},
                              std::pair{static_cast<const unsigned char*>(nullptr), size_t{0}}}) {
        auto* bitmap = new CBitmap(data, size);
        EXPECT_FALSE(bitmap->isLoaded());
        EXPECT_EQ(bitmap->getWidth(), 0);
        bitmap->forget();
    }
}

TEST(Bitmap, DrawsFromTheSourceOffsetWithAlpha) {
    const auto png = testPng();
    auto* bitmap = new CBitmap(png.data(), png.size());
    FrameImage image(8, 3);
    {
        CDrawContext context(image.surface());
        bitmap->draw(&context, CRect(0, 0, 4, 2));
        bitmap->draw(&context, CRect(5, 0, 7, 1), CPoint(1, 0));          // green, blue
        bitmap->drawAlphaBlend(&context, CRect(0, 2, 2, 3), CPoint(0, 0), 128);  // red, green at half
        bitmap->draw(&context, CRect(4, 2, 8, 3), CPoint(0, 1));          // the second row
    }
    EXPECT_EQ(row(image, 0, 0, 8),
              (std::vector<CColor>{kRed, kGreen, kBlue, CColor{255, 255, 255, 128}, kClear, kGreen, kBlue, kClear}));
    EXPECT_EQ(row(image, 1, 0, 4), (std::vector<CColor>{kWhite, kWhite, kWhite, kWhite}));
    const CColor halfRed = image.pixel(0, 2);
    EXPECT_EQ(halfRed.red, 255);
    EXPECT_NEAR(halfRed.alpha, 128, 1);
    EXPECT_NEAR(image.pixel(1, 2).alpha, 128, 1);
    EXPECT_EQ(row(image, 2, 4, 8), (std::vector<CColor>{kWhite, kWhite, kWhite, kWhite}));
    bitmap->forget();
}

TEST(DrawContext, RectanglesCoverExactlyTheirPixelsInsideTheClip) {
    FrameImage image(6, 6);
    {
        CDrawContext c(image.surface());
        c.setClipRect(CRect(1, 1, 3, 3));
        c.setFillColor(kRed);
        c.drawRect(CRect(0, 0, 6, 6), kDrawFilled);
        c.resetClipRect();
        c.setFrameColor(kBlue);
        c.drawRect(CRect(0, 0, 6, 6), kDrawStroked);
    }
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x) {
            const bool edge = x == 0 || y == 0 || x == 5 || y == 5;
            const bool inside = x >= 1 && x < 3 && y >= 1 && y < 3;
            EXPECT_EQ(image.pixel(x, y), edge ? kBlue : inside ? kRed : kClear) << x << "," << y;
        }
}

TEST(DrawContext, OnePixelLinesAndPolylinesAreCrisp) {
    FrameImage image(6, 6);
    {
        CDrawContext c(image.surface());
        c.setFrameColor(kGreen);
        c.drawLine(CPoint(0, 2), CPoint(5, 2));
        const CPoint corner[] = {{4, 0}, {4, 5}};
        c.setFrameColor(kBlue);
        c.drawPolyline(corner, 2);
    }
    EXPECT_EQ(row(image, 2, 0, 4), (std::vector<CColor>{kGreen, kGreen, kGreen, kGreen}));
    EXPECT_EQ(row(image, 1, 0, 4), (std::vector<CColor>{kClear, kClear, kClear, kClear}));
    EXPECT_EQ(row(image, 3, 0, 4), (std::vector<CColor>{kClear, kClear, kClear, kClear}));
    for (int y = 0; y < 6; ++y) EXPECT_EQ(image.pixel(4, y), kBlue) << y;
    EXPECT_EQ(image.pixel(3, 0), kClear);
    EXPECT_EQ(image.pixel(5, 0), kClear);
}

TEST(DrawContext, TextInkStaysInItsRectangle) {
    FrameImage image(60, 20);
    {
        CDrawContext c(image.surface());
        c.setFont("sans-serif", 12);
        c.setFontColor(kBlackCColor);
        EXPECT_GT(c.getStringWidth("Load"), 10);
        c.drawString("Load", CRect(10, 2, 50, 18));
    }
    int ink = 0, outside = 0;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 60; ++x)
            if (image.pixel(x, y).alpha) (CRect(10, 2, 50, 18).pointInside(CPoint(x, y)) ? ink : outside)++;
    EXPECT_GT(ink, 10);
    EXPECT_EQ(outside, 0);
}

}  // namespace
