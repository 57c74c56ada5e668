#include "gui/controls/CTextPrinter.h"

#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CDrawContext.h"

namespace {
// The glyph cell on screen: 6 pixels wide, from 7 rows above the baseline to 1 below it.
constexpr int kCellWidth = 6;
constexpr int kCellAbove = 7;
constexpr int kCellBelow = 1;
constexpr int kFirstCode = 32;

void take(CBitmap* bitmap) {
    if (bitmap) bitmap->remember();
}
void release(CBitmap* bitmap) {
    if (bitmap) bitmap->forget();
}
}  // namespace

CTextPrinter::CTextPrinter(CBitmap* font) : font(font) { take(font); }

CTextPrinter::CTextPrinter(const CTextPrinter& other) : font(other.font) { take(font); }

CTextPrinter::~CTextPrinter() { release(font); }

int CTextPrinter::drawText(CDrawContext* context, int x, int y, const char* text, bool wide, bool highlight) const {
    return print(context, x, y, text, wide, highlight, {font, highlight ? kHighlightStyle : kNormalStyle, true});
}

int CTextPrinter::print(CDrawContext* context, int x, int y, const char* text, bool wide, bool highlight,
                        const Style& style) {
    if (!context || !text) return x;
    const CColor savedFill = context->getFillColor();
    const CColor savedFrame = context->getFrameColor();
    context->setFillColor(style.colour);
    context->setFrameColor(style.colour);
    for (const char* c = text; *c; ++c) {
        int index = (static_cast<unsigned char>(*c) & 0x7F) + (highlight ? kHighlightOffset : 0) - kFirstCode;
        if (style.checkRange && (index < 0 || index >= kGlyphCount)) index = 0;
        const CRect cell(x, y - kCellAbove, x + kCellWidth, y + kCellBelow + 1);
        context->drawRect(cell, kDrawFilled);
        // Outside the sheet (an unchecked index) the source is transparent: the cell stays plain.
        if (style.font) style.font->draw(context, cell, CPoint(index * kGlyphPitch, 0));
        x += wide ? kWideAdvance : kAdvance;
    }
    context->setFillColor(savedFill);
    context->setFrameColor(savedFrame);
    return x;
}

CTextPrinter2Color::CTextPrinter2Color(CBitmap* first, CBitmap* second) : CTextPrinter(first), secondFont(second) {
    take(secondFont);
}

CTextPrinter2Color::CTextPrinter2Color(const CTextPrinter2Color& other)
    : CTextPrinter(other), secondFont(other.secondFont) {
    take(secondFont);
}

CTextPrinter2Color::~CTextPrinter2Color() { release(secondFont); }

int CTextPrinter2Color::drawText(CDrawContext* context, int x, int y, const char* text, bool wide, bool highlight,
                                 bool second) const {
    if (!second) return CTextPrinter::drawText(context, x, y, text, wide, highlight);
    return print(context, x, y, text, wide, highlight,
                 {secondFont, highlight ? kSecondHighlightStyle : kNormalStyle, false});
}
