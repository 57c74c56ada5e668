#pragma once
// Drawing for views, over cairo. Coordinates are frame pixels; lines and framed rectangles
// are placed on pixel centres so that one-pixel strokes stay crisp at 1:1.

#include <string>

#include "gui/toolkit/CGeometry.h"

typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

enum CDrawStyle { kDrawStroked = 0, kDrawFilled, kDrawFilledAndStroked };
enum CHoriTxtAlign { kLeftText = 0, kCenterText, kRightText };

class CDrawContext {
public:
    // Draws into the given image surface; the surface outlives the context.
    explicit CDrawContext(cairo_surface_t* target);
    ~CDrawContext();
    CDrawContext(const CDrawContext&) = delete;
    CDrawContext& operator=(const CDrawContext&) = delete;

    void setFillColor(const CColor& c) { fillColor = c; }
    CColor getFillColor() const { return fillColor; }
    void setFrameColor(const CColor& c) { frameColor = c; }
    CColor getFrameColor() const { return frameColor; }
    void setFontColor(const CColor& c) { fontColor = c; }
    CColor getFontColor() const { return fontColor; }
    void setLineWidth(double width) { lineWidth = width; }
    double getLineWidth() const { return lineWidth; }
    // A system font by family name ("sans-serif", "monospace") and pixel size.
    void setFont(const std::string& family, double pixelSize, bool bold = false);

    void drawRect(const CRect& rect, CDrawStyle style = kDrawStroked);
    void drawLine(const CPoint& from, const CPoint& to);
    // An open line through the points in order.
    void drawPolyline(const CPoint* points, int count);
    // A closed shape through the points.
    void drawPolygon(const CPoint* points, int count, CDrawStyle style = kDrawStroked);
    // Text on one line inside rect, vertically centred, in the font colour.
    void drawString(const char* text, const CRect& rect, CHoriTxtAlign align = kCenterText);
    // Width of text in the current font.
    double getStringWidth(const char* text);

    // Drawing outside the clip rectangle leaves the pixels alone.
    void setClipRect(const CRect& rect);
    CRect getClipRect() const { return clip; }
    void resetClipRect();

    // Paints part of a source image: the pixels from source offset on fill dest; alpha 0..1
    // scales the image's own alpha.
    void drawImage(cairo_surface_t* image, const CRect& dest, const CPoint& sourceOffset, double alpha);

private:
    void setSource(const CColor& c);
    void applyClip();

    cairo_t* cr;
    CRect fullArea;
    CRect clip;
    CColor fillColor = kWhiteCColor;
    CColor frameColor = kBlackCColor;
    CColor fontColor = kBlackCColor;
    double lineWidth = 1.0;
    std::string fontFamily = "sans-serif";
    double fontSize = 10.0;
    bool fontBold = false;
};
