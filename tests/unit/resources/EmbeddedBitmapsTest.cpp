// The embedded artwork, decoded the way the editor decodes it, checked against the table that
// the controls follow.

#include <gtest/gtest.h>

#include <cmath>

#include "DecodedBitmap.h"
#include "resources/BitmapTable.h"

namespace {

using artwork::kBitmaps;
using artwork::kSprites;
using artwork::Sprite;

int alpha(uint32_t p) { return int(p >> 24); }
int brightness(uint32_t p) { return int(((p >> 16) & 0xFF) + ((p >> 8) & 0xFF) + (p & 0xFF)) / 3; }

bool sameImage(cairo_surface_t* s, int x0, int y0, int x1, int y1, int w, int h) {
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if (pixel(s, x0 + x, y0 + y) != pixel(s, x1 + x, y1 + y)) return false;
    return true;
}

bool hasInk(cairo_surface_t* s, int x0, int y0, int w, int h) {
    for (int y = y0; y < y0 + h; ++y)
        for (int x = x0; x < x0 + w; ++x)
            if (alpha(pixel(s, x, y)) != 0) return true;
    return false;
}

TEST(EmbeddedBitmaps, EveryNumberFrom128To162DecodesAtItsTableSize) {
    ASSERT_EQ(kBitmaps.size(), 35u);
    for (int id = 128; id <= 162; ++id) {
        SCOPED_TRACE(id);
        const auto size = artwork::bitmapSize(id);
        ASSERT_TRUE(size);
        const Surface s = decode(id);
        ASSERT_TRUE(s);
        EXPECT_EQ(cairo_image_surface_get_width(s.get()), size->width);
        EXPECT_EQ(cairo_image_surface_get_height(s.get()), size->height);
    }
}

TEST(EmbeddedBitmaps, UnknownNumbersAreRefused) {
    for (int id : {-1, 0, 127, 163, 1000}) {
        const unsigned char* png = reinterpret_cast<const unsigned char*>("x");
        unsigned long size = 7;
        EXPECT_FALSE(findEmbeddedBitmap(id, &png, &size)) << id;
        EXPECT_EQ(size, 7u);
    }
}

// Every image the controls are told to take lies inside its bitmap and has something drawn;
// neighbouring frames of a stack differ, so a control never shows a frame that is a copy of
// another state.
TEST(EmbeddedBitmaps, EverySpriteFrameIsInsideItsBitmapAndDrawn) {
    for (const Sprite& sp : kSprites) {
        SCOPED_TRACE(std::to_string(sp.bitmap) + " " + std::string(sp.use));
        const Surface s = decode(sp.bitmap);
        ASSERT_TRUE(s);
        const int w = cairo_image_surface_get_width(s.get()), h = cairo_image_surface_get_height(s.get());
        EXPECT_LE(sp.x + (sp.count - 1) * sp.stepX + sp.width, w);
        EXPECT_LE(sp.y + (sp.count - 1) * sp.stepY + sp.height, h);
        if (sp.use == "font glyphs") continue;  // the space glyph is empty by design
        for (int k = 0; k < sp.count; ++k) {
            const int x = sp.x + k * sp.stepX, y = sp.y + k * sp.stepY;
            EXPECT_TRUE(hasInk(s.get(), x, y, sp.width, sp.height)) << "frame " << k;
            if (k > 0) {
                EXPECT_FALSE(sameImage(s.get(), x, y, x - sp.stepX, y - sp.stepY, sp.width, sp.height))
                    << "frame " << k << " repeats frame " << k - 1;
            }
        }
    }
}

// These controls take their frame height as the bitmap's height divided by their frame count,
// so every image in such a bitmap must step by exactly that much.
TEST(EmbeddedBitmaps, FrameStacksStepByTheBitmapHeightOverTheFrameCount) {
    struct Stack {
        int firstId, lastId, frames;
    };
    for (const Stack& stack : {Stack{135, 143, 101}, Stack{144, 144, 101}, Stack{153, 153, 2}, Stack{157, 158, 2},
                               Stack{159, 159, 3}, Stack{134, 134, 3}, Stack{154, 154, 3}, Stack{155, 155, 5},
                               Stack{156, 156, 3}})
        for (int id = stack.firstId; id <= stack.lastId; ++id)
            for (const Sprite& sp : kSprites) {
                if (sp.bitmap != id) continue;
                SCOPED_TRACE(std::to_string(id) + " " + std::string(sp.use));
                EXPECT_EQ(sp.count, stack.frames);
                EXPECT_EQ(sp.stepY * stack.frames, artwork::bitmapSize(id)->height);
            }
}

// The printer fills each glyph cell with the style colour and draws the glyph over it: normal
// glyphs must be dark ink on transparency, highlighted glyphs the same shapes in light ink.
TEST(EmbeddedBitmaps, GlyphSheetsHoldDarkNormalAndLightHighlightedGlyphs) {
    for (int id : {129, 130}) {
        SCOPED_TRACE(id);
        const Surface s = decode(id);
        ASSERT_TRUE(s);
        const int space = 0, letterA = 'A' - 32, highlightedA = letterA + artwork::kHighlightedGlyphOffset;
        EXPECT_FALSE(hasInk(s.get(), space * artwork::kGlyphPitch, 0, 6, 9));
        ASSERT_TRUE(hasInk(s.get(), letterA * artwork::kGlyphPitch, 0, 6, 9));
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 6; ++x) {
                const uint32_t normal = pixel(s.get(), letterA * artwork::kGlyphPitch + x, y);
                const uint32_t lit = pixel(s.get(), highlightedA * artwork::kGlyphPitch + x, y);
                EXPECT_EQ(alpha(normal), alpha(lit)) << x << "," << y;
                if (alpha(normal) == 255) {
                    EXPECT_LT(brightness(normal), 64) << x << "," << y;
                    EXPECT_GT(brightness(lit), 200) << x << "," << y;
                }
            }
        // Ink stays inside the 5 × 8 part of every cell, whichever way a printer clips it.
        for (int g = 0; g < artwork::kGlyphCount; ++g) {
            EXPECT_FALSE(hasInk(s.get(), g * artwork::kGlyphPitch + 5, 0, 3, 9)) << "glyph " << g;
            EXPECT_FALSE(hasInk(s.get(), g * artwork::kGlyphPitch, 8, 6, 1)) << "glyph " << g;
        }
    }
}

// Controls draw over parts of the background in colours of their own; there the background
// must already be that colour so that nothing shows between their drawings.
TEST(EmbeddedBitmaps, BackgroundLeavesTheHeaderStripAndReadoutsInTheirColours) {
    const Surface s = decode(128);
    ASSERT_TRUE(s);
    struct Area {
        int left, top, right, bottom;
        uint32_t colour;
    };
    for (const Area& a : {Area{85, 164, 510, 184, 0xFFDFF7FFu}, Area{51, 164, 82, 175, 0xFF4F4F4Fu},
                          Area{511, 164, 542, 175, 0xFF4F4F4Fu}})
        for (int y = a.top; y < a.bottom; ++y)
            for (int x = a.left; x < a.right; ++x)
                ASSERT_EQ(pixel(s.get(), x, y), a.colour) << x << "," << y;
    const uint32_t plot = pixel(s.get(), 30, 20);
    for (int y = 20; y < 163; ++y)
        for (int x = 30; x < 548; ++x) ASSERT_EQ(pixel(s.get(), x, y), plot) << x << "," << y;
}

// A bypassed band's pop-up shows the same images as the closed cell of the bypassed steps.
TEST(EmbeddedBitmaps, TypeSwitchPopUpColumnRepeatsTheBypassedCells) {
    for (int id = 145; id <= 152; ++id) {
        SCOPED_TRACE(id);
        const Surface s = decode(id);
        ASSERT_TRUE(s);
        const Sprite cells = *artwork::findSprite(id, "type cells");
        const Sprite popUp = *artwork::findSprite(id, "type pop-up bypassed");
        EXPECT_EQ(popUp.x - cells.x, 112);
        for (int r = 0; r < 7; ++r) {
            const int active = cells.y + r * cells.stepY, bypassed = cells.y + (r + 7) * cells.stepY;
            EXPECT_TRUE(sameImage(s.get(), popUp.x, popUp.y + r * popUp.stepY, cells.x, bypassed, cells.width,
                                  cells.height))
                << "shape " << r;
            EXPECT_FALSE(sameImage(s.get(), cells.x, active, cells.x, bypassed, cells.width, cells.height))
                << "shape " << r << " looks the same on and off";
        }
    }
}

// The solo strip lights a button by drawing the image 21 pixels below its spot; the gaps
// between the buttons, where a click does nothing, show nothing in either row.
TEST(EmbeddedBitmaps, SoloStripHasEachLitButtonBelowItsSpotAndEmptyGaps) {
    const Surface s = decode(161);
    ASSERT_TRUE(s);
    const int offsets[8] = {0, 70, 139, 207, 277, 347, 415, 485};
    for (int b = 0; b < 8; ++b) {
        const int x = 8 + offsets[b];
        EXPECT_TRUE(hasInk(s.get(), x, 21, 21, 21)) << b;
        EXPECT_FALSE(sameImage(s.get(), x, 0, x, 21, 21, 21)) << b;
        if (b < 7) {
            const int gap = x + 21, gapWidth = 8 + offsets[b + 1] - gap;
            EXPECT_FALSE(hasInk(s.get(), gap, 0, gapWidth, 42)) << "gap after " << b;
        }
    }
}

// Each ring button is drawn only where a click reaches that button: the ring between radius
// 46 and 61 round the jog's centre, within the button's slope range.
TEST(EmbeddedBitmaps, JogRingButtonsLieInsideTheirClickZones) {
    const Surface s = decode(132);
    ASSERT_TRUE(s);
    struct Zone {
        const char* use;
        int xSign, ySign;  // 0: either
        double minSlope, maxSlope;
    };
    const Zone zones[] = {{"jog upper-left button", -1, -1, 0.33, 1.8}, {"jog upper-right button", 1, -1, 0.33, 1.8},
                          {"jog top button", 0, -1, 2.5, 1e9},         {"jog lower-left button", -1, 1, 0.42, 2.3},
                          {"jog lower-right button", 1, 1, 0.42, 2.3}};
    for (const Zone& z : zones) {
        const Sprite sp = *artwork::findSprite(132, z.use);
        for (int frame = 0; frame < sp.count; ++frame)
            for (int y = 0; y < sp.height; ++y)
                for (int x = 0; x < sp.width; ++x) {
                    if (alpha(pixel(s.get(), sp.x + x, sp.y + frame * sp.stepY + y)) < 64) continue;
                    const int dx = x - 65, dy = y - 59, r2 = dx * dx + dy * dy;
                    const double slope = dx == 0 ? 1e8 : std::abs(double(dy) / dx);
                    const bool inside = r2 >= 2116 && r2 < 3722 && (z.xSign == 0 || z.xSign * dx > 0) &&
                                        z.ySign * dy > 0 && slope > z.minSlope && slope < z.maxSlope;
                    ASSERT_TRUE(inside) << z.use << " frame " << frame << " at " << x << "," << y;
                }
    }
}

}  // namespace
