#pragma once
// Short 8-bit strings printed from a bitmap font: the glyphs sit side by side, 8 pixels apart,
// in character order from the space; the highlighted glyphs follow the 96 normal ones. Each
// glyph is printed over a cell filled in the style colour, so the text is readable on any
// background.

#include "gui/toolkit/CGeometry.h"

class CBitmap;
class CDrawContext;

class CTextPrinter {
public:
    static constexpr int kGlyphPitch = 8;    // pixels between glyphs in the font bitmap
    static constexpr int kAdvance = 6;       // pen movement per character
    static constexpr int kWideAdvance = 8;   // ... in wide text
    static constexpr int kHighlightOffset = 96;
    static constexpr int kGlyphCount = 192;
    static constexpr CColor kNormalStyle{223, 247, 255, 255};
    static constexpr CColor kHighlightStyle{79, 79, 79, 255};

    // Takes a reference to the font (null prints only the cells).
    explicit CTextPrinter(CBitmap* font);
    CTextPrinter(const CTextPrinter& other);
    CTextPrinter& operator=(const CTextPrinter&) = delete;
    virtual ~CTextPrinter();

    // Prints text with its baseline at y, starting at x; answers the x after the last character.
    int drawText(CDrawContext* context, int x, int y, const char* text, bool wide = false,
                 bool highlight = false) const;

protected:
    struct Style {
        const CBitmap* font;
        CColor colour;
        bool checkRange;  // an index outside the font prints the space glyph
    };
    static int print(CDrawContext* context, int x, int y, const char* text, bool wide, bool highlight,
                     const Style& style);

private:
    CBitmap* font;
};

// The same with a second font (and, highlighted, a red style) chosen per call.
class CTextPrinter2Color : public CTextPrinter {
public:
    static constexpr CColor kSecondHighlightStyle{229, 53, 5, 255};

    CTextPrinter2Color(CBitmap* first, CBitmap* second);
    CTextPrinter2Color(const CTextPrinter2Color& other);
    ~CTextPrinter2Color() override;

    using CTextPrinter::drawText;
    int drawText(CDrawContext* context, int x, int y, const char* text, bool wide, bool highlight,
                 bool second) const;

private:
    CBitmap* secondFont;
};
