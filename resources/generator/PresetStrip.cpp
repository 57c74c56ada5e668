// The preset strip's buttons. Every kick button has three frames: normal, hovered, pressed.

#include "../BitmapTable.h"
#include "Layout.h"
#include "Painters.h"

#include <cmath>

namespace artwork {

using namespace layout;

namespace {

Rgb iconColour(int frame) { return frame == 0 ? kIcon : frame == 1 ? rgb(228, 236, 242) : kAccent; }

// A small tray with an arrow going into it (save) or out of it (load).
void drawTrayArrow(cairo_t* cr, int x, int y, int w, int h, bool into, Rgb c) {
    const double cx = x + w / 2.0;
    setColour(cr, c);
    cairo_set_line_width(cr, 1.0);
    cairo_move_to(cr, x + 3.5, y + h - 7);
    cairo_line_to(cr, x + 3.5, y + h - 3.5);
    cairo_line_to(cr, x + w - 3.5, y + h - 3.5);
    cairo_line_to(cr, x + w - 3.5, y + h - 7);
    cairo_stroke(cr);
    const double tip = into ? y + h - 5.5 : y + 2.5;
    const double tail = into ? y + 2.5 : y + h - 5.5;
    const double dir = into ? -1 : 1;
    cairo_move_to(cr, cx, tail);
    cairo_line_to(cr, cx, tip + dir * 2);
    cairo_stroke(cr);
    cairo_move_to(cr, cx - 3, tip + dir * 3);
    cairo_line_to(cr, cx, tip);
    cairo_line_to(cr, cx + 3, tip + dir * 3);
    cairo_close_path(cr);
    cairo_fill(cr);
}

void drawArrowRight(cairo_t* cr, double cx, double cy, Rgb c) {
    setColour(cr, c);
    cairo_set_line_width(cr, 1.0);
    cairo_move_to(cr, cx - 4, cy);
    cairo_line_to(cr, cx + 1, cy);
    cairo_stroke(cr);
    cairo_move_to(cr, cx, cy - 3);
    cairo_line_to(cr, cx + 3.5, cy);
    cairo_line_to(cr, cx, cy + 3);
    cairo_close_path(cr);
    cairo_fill(cr);
}

void drawTriangle(cairo_t* cr, double cx, double cy, double size, double dx, double dy, Rgb c) {
    // Points in the direction (dx, dy), one of the four axis directions.
    setColour(cr, c);
    cairo_move_to(cr, cx + dx * size, cy + dy * size);
    cairo_line_to(cr, cx - dx * size * 0.6 - dy * size, cy - dy * size * 0.6 - dx * size);
    cairo_line_to(cr, cx - dx * size * 0.6 + dy * size, cy - dy * size * 0.6 + dx * size);
    cairo_close_path(cr);
    cairo_fill(cr);
}

template <typename Icon>
void kickFrames(cairo_t* cr, const Sprite& s, Icon icon) {
    for (int frame = 0; frame < s.count; ++frame) {
        const int y = s.y + frame * s.stepY;
        buttonFace(cr, s.x, y, s.width, s.height, frame == 1, frame == 2);
        icon(s.x, y + (frame == 2 ? 1 : 0), iconColour(frame));
    }
}

}  // namespace

void paintStripKickButtons(cairo_t* cr, int id) {
    for (bool save : {true, false}) {
        const Sprite s = *findSprite(id, save ? "save button" : "load button");
        kickFrames(cr, s, [&](int x, int y, Rgb c) { drawTrayArrow(cr, x, y, s.width, s.height, save, c); });
    }
    // Storing pushes the sound into the memory letter beside the button; recalling takes it out
    // again, so both arrows point the same way along the strip.
    for (const char* use : {"store memory A", "recall memory A", "store memory B", "recall memory B"}) {
        const Sprite s = *findSprite(id, use);
        const bool store = use[0] == 's';
        kickFrames(cr, s, [&](int x, int y, Rgb c) {
            drawArrowRight(cr, x + 8.5, y + 7.5, c);
            fillRect(cr, store ? x + 13 : x + 3, y + 4, 1, 7, c);
        });
    }
}

void paintDefaultButtons(cairo_t* cr, int id) {
    for (bool bank : {true, false}) {
        const Sprite s = *findSprite(id, bank ? "default bank button" : "default preset button");
        kickFrames(cr, s, [&](int x, int y, Rgb c) {
            label(cr, bank ? "BANK" : "PRESET", x + s.width / 2.0, y + 10, {8.0, c, true}, Align::Centre);
        });
    }
}

// Two halves, previous and next.
void paintRocker(cairo_t* cr, int id) {
    const Sprite rocker = *findSprite(id, "preset rocker");
    for (int frame = 0; frame < rocker.count; ++frame) {
        const int y = rocker.y + frame * rocker.stepY;
        const int half = rocker.width / 2;
        for (int side = 0; side < 2; ++side) {
            const bool hovered = frame == 1 + side, pressed = frame == 3 + side;
            buttonFace(cr, rocker.x + side * half, y, half, rocker.height, hovered, pressed);
            const Rgb c = iconColour(pressed ? 2 : hovered ? 1 : 0);
            drawTriangle(cr, rocker.x + side * half + half / 2.0, y + rocker.height / 2.0 + (pressed ? 1 : 0), 3.5,
                         side == 0 ? -1 : 1, 0, c);
        }
    }
}

void paintStripSmallButtons(cairo_t* cr, int id) {
    // Keyboard focus: a small pill lamp, dark when off.
    const Sprite focus = *findSprite(id, "keyboard focus button");
    for (int frame = 0; frame < focus.count; ++frame) {
        const int y = focus.y + frame * focus.stepY;
        const Rgb top = frame == 2   ? mix(kAccent, rgb(255, 255, 255), 0.3)
                        : frame == 1 ? rgb(70, 84, 92)
                                     : rgb(34, 46, 54);
        const Rgb bottom = frame == 2 ? kAccent : frame == 1 ? rgb(52, 64, 72) : rgb(24, 34, 40);
        fillRounded(cr, focus.x, y, focus.width, focus.height, 3.0, top, bottom);
        frameRounded(cr, focus.x, y, focus.width, focus.height, 3.0, kRimDark);
    }
    const Sprite manual = *findSprite(id, "manual button");
    kickFrames(cr, manual, [&](int x, int y, Rgb c) {
        pixelArt(cr, x + 4, y + 2, {".##.", "#..#", "...#", "..#.", "....", "..#."}, c);
    });
    const Sprite menu = *findSprite(id, "preset menu button");
    kickFrames(cr, menu, [&](int x, int y, Rgb c) {
        drawTriangle(cr, x + menu.width / 2.0, y + menu.height / 2.0, 3.2, 0, 1, c);
    });
}

}  // namespace artwork
