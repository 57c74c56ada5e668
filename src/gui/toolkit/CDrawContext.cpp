#include "gui/toolkit/CDrawContext.h"

#include <cairo.h>
#include <cmath>

CDrawContext::CDrawContext(cairo_surface_t* target) : cr(cairo_create(target)) {
    fullArea = CRect(0, 0, cairo_image_surface_get_width(target), cairo_image_surface_get_height(target));
    clip = fullArea;
}

CDrawContext::~CDrawContext() { cairo_destroy(cr); }

void CDrawContext::setSource(const CColor& c) {
    cairo_set_source_rgba(cr, c.red / 255.0, c.green / 255.0, c.blue / 255.0, c.alpha / 255.0);
}

void CDrawContext::setFont(const std::string& family, double pixelSize, bool bold) {
    fontFamily = family;
    fontSize = pixelSize;
    fontBold = bold;
}

void CDrawContext::setClipRect(const CRect& rect) {
    clip = rect;
    clip.bound(fullArea);
    applyClip();
}

void CDrawContext::resetClipRect() {
    clip = fullArea;
    applyClip();
}

void CDrawContext::applyClip() {
    cairo_reset_clip(cr);
    cairo_rectangle(cr, clip.left, clip.top, clip.getWidth(), clip.getHeight());
    cairo_clip(cr);
}

void CDrawContext::drawRect(const CRect& rect, CDrawStyle style) {
    if (style != kDrawStroked) {
        cairo_rectangle(cr, rect.left, rect.top, rect.getWidth(), rect.getHeight());
        setSource(fillColor);
        cairo_fill(cr);
    }
    if (style != kDrawFilled) {
        // The stroke lies inside the rectangle, its outer edge on the rectangle's edge.
        const double half = lineWidth / 2;
        cairo_rectangle(cr, rect.left + half, rect.top + half, rect.getWidth() - lineWidth,
                        rect.getHeight() - lineWidth);
        setSource(frameColor);
        cairo_set_line_width(cr, lineWidth);
        cairo_stroke(cr);
    }
}

namespace {
// Odd-width strokes on whole-pixel coordinates would straddle two pixels; shift them onto the
// pixel centre.
double crisp(double v, double width) {
    return (static_cast<long>(std::lround(width)) % 2 == 1 && v == std::floor(v)) ? v + 0.5 : v;
}
}  // namespace

void CDrawContext::drawLine(const CPoint& from, const CPoint& to) {
    const CPoint points[2] = {from, to};
    drawPolyline(points, 2);
}

void CDrawContext::drawPolyline(const CPoint* points, int count) {
    if (count < 2) return;
    cairo_new_path(cr);
    for (int i = 0; i < count; ++i)
        cairo_line_to(cr, crisp(points[i].x, lineWidth), crisp(points[i].y, lineWidth));
    setSource(frameColor);
    cairo_set_line_width(cr, lineWidth);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_SQUARE);
    cairo_stroke(cr);
}

void CDrawContext::drawPolygon(const CPoint* points, int count, CDrawStyle style) {
    if (count < 3) return;
    auto path = [&] {
        cairo_new_path(cr);
        for (int i = 0; i < count; ++i) cairo_line_to(cr, points[i].x, points[i].y);
        cairo_close_path(cr);
    };
    if (style != kDrawStroked) {
        path();
        setSource(fillColor);
        cairo_fill(cr);
    }
    if (style != kDrawFilled) {
        path();
        setSource(frameColor);
        cairo_set_line_width(cr, lineWidth);
        cairo_stroke(cr);
    }
}

double CDrawContext::getStringWidth(const char* text) {
    cairo_select_font_face(cr, fontFamily.c_str(), CAIRO_FONT_SLANT_NORMAL,
                           fontBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, fontSize);
    cairo_text_extents_t extents;
    cairo_text_extents(cr, text, &extents);
    return extents.x_advance;
}

void CDrawContext::drawString(const char* text, const CRect& rect, CHoriTxtAlign align) {
    const double width = getStringWidth(text);
    cairo_font_extents_t font;
    cairo_font_extents(cr, &font);
    double x = rect.left;
    if (align == kCenterText) x = rect.left + (rect.getWidth() - width) / 2;
    if (align == kRightText) x = rect.right - width;
    const double baseline = std::round(rect.top + (rect.getHeight() + font.ascent - font.descent) / 2);
    cairo_save(cr);
    cairo_rectangle(cr, rect.left, rect.top, rect.getWidth(), rect.getHeight());
    cairo_clip(cr);
    cairo_move_to(cr, std::round(x), baseline);
    setSource(fontColor);
    cairo_show_text(cr, text);
    cairo_restore(cr);
}

void CDrawContext::drawImage(cairo_surface_t* image, const CRect& dest, const CPoint& sourceOffset, double alpha) {
    cairo_save(cr);
    cairo_rectangle(cr, dest.left, dest.top, dest.getWidth(), dest.getHeight());
    cairo_clip(cr);
    cairo_set_source_surface(cr, image, dest.left - sourceOffset.x, dest.top - sourceOffset.y);
    // Whole-pixel offsets copy pixels exactly; no smoothing between neighbours.
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_NEAREST);
    cairo_paint_with_alpha(cr, alpha);
    cairo_restore(cr);
}
