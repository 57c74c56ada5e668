#pragma once
// Points, rectangles and colours in frame pixels. A rectangle holds left and top and stops
// before right and bottom: CRect(0, 0, 10, 10) covers 10 × 10 pixels.

#include <algorithm>
#include <cstdint>

struct CPoint {
    double x = 0;
    double y = 0;

    constexpr CPoint() = default;
    constexpr CPoint(double x, double y) : x(x), y(y) {}
    CPoint& offset(double dx, double dy) {
        x += dx;
        y += dy;
        return *this;
    }
    bool operator==(const CPoint&) const = default;
};

struct CRect {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    constexpr CRect() = default;
    constexpr CRect(double left, double top, double right, double bottom) : left(left), top(top), right(right), bottom(bottom) {}
    CRect(const CPoint& origin, double width, double height)
        : left(origin.x), top(origin.y), right(origin.x + width), bottom(origin.y + height) {}

    double getWidth() const { return right - left; }
    double getHeight() const { return bottom - top; }
    CPoint getTopLeft() const { return {left, top}; }
    bool isEmpty() const { return right <= left || bottom <= top; }

    CRect& offset(double dx, double dy) {
        left += dx;
        right += dx;
        top += dy;
        bottom += dy;
        return *this;
    }
    CRect& inset(double dx, double dy) {
        left += dx;
        right -= dx;
        top += dy;
        bottom -= dy;
        return *this;
    }
    bool pointInside(const CPoint& p) const { return p.x >= left && p.x < right && p.y >= top && p.y < bottom; }
    bool rectOverlap(const CRect& r) const { return r.left < right && r.right > left && r.top < bottom && r.bottom > top; }
    // The common part; empty (all zero) when they do not overlap.
    CRect& bound(const CRect& r) {
        if (!rectOverlap(r)) return *this = CRect{};
        left = std::max(left, r.left);
        top = std::max(top, r.top);
        right = std::min(right, r.right);
        bottom = std::min(bottom, r.bottom);
        return *this;
    }
    // The smallest rectangle holding both; an empty one adds nothing.
    CRect& unite(const CRect& r) {
        if (r.isEmpty()) return *this;
        if (isEmpty()) return *this = r;
        left = std::min(left, r.left);
        top = std::min(top, r.top);
        right = std::max(right, r.right);
        bottom = std::max(bottom, r.bottom);
        return *this;
    }
    bool operator==(const CRect&) const = default;
};

struct CColor {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    uint8_t alpha = 255;
    bool operator==(const CColor&) const = default;
};

inline constexpr CColor kBlackCColor{0, 0, 0, 255};
inline constexpr CColor kWhiteCColor{255, 255, 255, 255};
inline constexpr CColor kTransparentCColor{0, 0, 0, 0};
