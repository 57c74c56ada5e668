#pragma once
// Shared pieces of the toolkit tests: a listener that records what controls tell it, PNG
// bytes made from hand-written pixels, and short-hands for events against a frame.

#include <cairo.h>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CControl.h"
#include "gui/toolkit/CControlListener.h"
#include "gui/toolkit/CFrame.h"

struct SpyListener : CControlListener {
    struct Call {
        std::string what;  // "changed", "begin", "end"
        int32_t tag;
        float value;
        bool operator==(const Call&) const = default;
        friend void PrintTo(const Call& c, std::ostream* os) { *os << c.what << " " << c.tag << " " << c.value; }
    };
    std::vector<Call> calls;

    void valueChanged(CControl* c) override { calls.push_back({"changed", c->getTag(), c->getValue()}); }
    void controlBeginEdit(CControl* c) override { calls.push_back({"begin", c->getTag(), c->getValue()}); }
    void controlEndEdit(CControl* c) override { calls.push_back({"end", c->getTag(), c->getValue()}); }
    std::vector<float> changedValues() const {
        std::vector<float> v;
        for (const auto& c : calls)
            if (c.what == "changed") v.push_back(c.value);
        return v;
    }
};

// A PNG of width × height whose pixels are given as unpremultiplied 0xAARRGGBB, row by row.
inline std::vector<unsigned char> makePng(int width, int height, const std::vector<uint32_t>& argb) {
    cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    unsigned char* data = cairo_image_surface_get_data(s);
    const int stride = cairo_image_surface_get_stride(s);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint32_t p = argb[static_cast<size_t>(y * width + x)];
            const uint32_t a = p >> 24;
            auto pre = [a](uint32_t c) { return (c * a + 127) / 255; };
            const uint32_t v = (a << 24) | (pre((p >> 16) & 0xff) << 16) | (pre((p >> 8) & 0xff) << 8) | pre(p & 0xff);
            std::memcpy(data + y * stride + 4 * x, &v, 4);
        }
    cairo_surface_mark_dirty(s);
    std::vector<unsigned char> png;
    cairo_surface_write_to_png_stream(
        s,
        [](void* closure, const unsigned char* bytes, unsigned int length) {
            auto* out = static_cast<std::vector<unsigned char>*>(closure);
            out->insert(out->end(), bytes, bytes + length);
            return CAIRO_STATUS_SUCCESS;
        },
        &png);
    cairo_surface_destroy(s);
    return png;
}

// A font sheet of 192 glyph cells 8 pixels apart, 9 high: glyph i's first five columns and eight
// rows opaque in colour (i, 255 − i, sheet), column 5 and row 8 transparent, so that what lands
// on screen names the glyph and the sheet it came from.
inline CBitmap* glyphSheet(uint8_t sheet) {
    constexpr int width = 8 * 192, height = 9;
    std::vector<uint32_t> argb(width * height, 0);
    for (int i = 0; i < 192; ++i)
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 5; ++x) argb[y * width + 8 * i + x] = 0xff000000u | uint32_t(i) << 16 | uint32_t(255 - i) << 8 | sheet;
    const auto png = makePng(width, height, argb);
    return new CBitmap(png.data(), png.size());
}

inline void press(CFrame& frame, double x, double y, int32_t buttons = kLButton) {
    CPoint p(x, y);
    frame.onMouseDown(p, buttons);
}

inline void release(CFrame& frame, double x, double y, int32_t buttons = kLButton) {
    CPoint p(x, y);
    frame.onMouseUp(p, buttons);
}

inline void click(CFrame& frame, double x, double y, int32_t buttons = kLButton) {
    press(frame, x, y, buttons);
    release(frame, x, y, buttons);
}

inline void move(CFrame& frame, double x, double y, int32_t buttons = 0) {
    CPoint p(x, y);
    frame.onMouseMoved(p, buttons);
}

inline CKeyCode character(char c) { return CKeyCode{c, 0, 0}; }
inline CKeyCode virtualKey(uint8_t virt, uint8_t modifier = 0) { return CKeyCode{0, virt, modifier}; }

// Idles the frame until the condition holds (at most ten seconds).
template <typename Condition>
bool idleUntil(CFrame& frame, Condition condition) {
    for (int i = 0; i < 1000 && !condition(); ++i) {
        frame.idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}
