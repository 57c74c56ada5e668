// The text printers against the glyph rule, on synthetic font sheets whose every glyph cell is
// painted in a colour that names its index.

#include <gtest/gtest.h>

#include "gui/controls/CTextPrinter.h"
#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CDrawContext.h"
#include "gui/toolkit/FrameImage.h"
#include "unit/toolkit/ToolkitSupport.h"

namespace {

// Glyph sheets from glyphSheet(): what lands on screen says which glyph was taken.
struct Canvas {
    FrameImage image{120, 30};
    CDrawContext context{image.surface()};
    CColor at(int x, int y) { return image.pixel(x, y); }
};

CColor glyph(int index, uint8_t sheet) { return {uint8_t(index), uint8_t(255 - index), sheet, 255}; }

}  // namespace

TEST(TextPrinter, GlyphIndexCellAndAdvance) {
    CBitmap* font = glyphSheet(1);
    CTextPrinter printer(font);
    EXPECT_EQ(font->getNbReference(), 2);  // the printer keeps the sheet alive
    font->forget();

    // 'A' normal, 'A' | 0x80 (the top bit is dropped), a newline (below the space: the space),
    // DEL highlighted (index 95 + 96 = 191, the last glyph).
    struct Case {
        const char* text;
        bool wide, highlight;
        int index;
        CColor fill;
        int nextX;
    };
    const Case cases[] = {
        {"A", false, false, 33, CTextPrinter::kNormalStyle, 16},
        {"\xC1", false, false, 33, CTextPrinter::kNormalStyle, 16},
        {"\n", false, false, 0, CTextPrinter::kNormalStyle, 16},
        {"A", true, true, 33 + 96, CTextPrinter::kHighlightStyle, 18},
        {"\x7f", false, true, 191, CTextPrinter::kHighlightStyle, 16},
    };
    for (const Case& c : cases) {
        Canvas canvas;
        canvas.context.setFillColor(kBlackCColor);
        canvas.context.setFrameColor(kWhiteCColor);
        const int next = printer.drawText(&canvas.context, 10, 20, c.text, c.wide, c.highlight);
        SCOPED_TRACE(c.index);
        EXPECT_EQ(next, c.nextX);
        EXPECT_EQ(canvas.at(10, 13), glyph(c.index, 1));  // top-left of the glyph: 7 rows above the baseline
        EXPECT_EQ(canvas.at(14, 20), glyph(c.index, 1));
        EXPECT_EQ(canvas.at(15, 17), c.fill);  // sixth column: the cell's fill
        EXPECT_EQ(canvas.at(12, 21), c.fill);  // the row below the baseline
        EXPECT_EQ(canvas.at(16, 17).alpha, 0);  // nothing beyond the cell
        EXPECT_EQ(canvas.at(12, 12).alpha, 0);
        EXPECT_EQ(canvas.context.getFillColor(), kBlackCColor);  // colours restored
        EXPECT_EQ(canvas.context.getFrameColor(), kWhiteCColor);
    }
}

TEST(TextPrinter, StringsAdvanceSixOrEightPixels) {
    CBitmap* font = glyphSheet(1);
    CTextPrinter printer(font);
    font->forget();
    Canvas canvas;
    EXPECT_EQ(printer.drawText(&canvas.context, 0, 10, "12"), 12);
    EXPECT_EQ(canvas.at(6, 5), glyph('2' - 32, 1));
    EXPECT_EQ(printer.drawText(&canvas.context, 0, 25, "12", true), 16);
    EXPECT_EQ(canvas.at(8, 20), glyph('2' - 32, 1));
    EXPECT_EQ(canvas.at(6, 20).alpha, 0);  // the gap between wide cells is left alone
}

TEST(TextPrinter, TwoColourPrinterChoosesSheetAndStyle) {
    CBitmap* first = glyphSheet(1);
    CBitmap* second = glyphSheet(2);
    CTextPrinter2Color printer(first, second);
    first->forget();
    second->forget();
    struct Case {
        bool highlight, second;
        uint8_t sheet;
        CColor fill;
    };
    const Case cases[] = {
        {false, false, 1, CTextPrinter::kNormalStyle},
        {true, false, 1, CTextPrinter::kHighlightStyle},
        {false, true, 2, CTextPrinter::kNormalStyle},
        {true, true, 2, CTextPrinter2Color::kSecondHighlightStyle},
    };
    for (const Case& c : cases) {
        Canvas canvas;
        printer.drawText(&canvas.context, 0, 10, "5", false, c.highlight, c.second);
        const int index = '5' - 32 + (c.highlight ? 96 : 0);
        EXPECT_EQ(canvas.at(0, 3), glyph(index, c.sheet));
        EXPECT_EQ(canvas.at(5, 3), c.fill);
    }
    // The second sheet has no range check: a code below the space takes no glyph, only the cell.
    Canvas canvas;
    printer.drawText(&canvas.context, 0, 10, "\n", false, false, true);
    EXPECT_EQ(canvas.at(0, 3), CTextPrinter::kNormalStyle);
}
