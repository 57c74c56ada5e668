// The band type switches, the panel's on/off buttons, the resolution selector, the level
// readout face, the solo strip and the filter-type legend.

#include "../BitmapTable.h"
#include "Layout.h"
#include "Painters.h"

#include <cmath>

namespace artwork {

using namespace layout;

namespace {

constexpr int kShapes = 7;

// Level in dB of shape `shape` at w = f/f0, the same family of curves the equalizer offers:
// 12 and 24 dB/oct cuts, shelves and a bell, drawn with a moderate boost.
double shapeLevel(int shape, double w) {
    const double w2 = w * w;
    const double secondOrder = std::sqrt((1 - w2) * (1 - w2) + 2 * w2);  // Butterworth, Q = 0.707
    const double boost = 12.0;
    switch (shape) {
    case 0: return 20 * std::log10(w2 / secondOrder);
    case 1: return 40 * std::log10(w2 / secondOrder);
    case 2: return boost / (1 + w2 * w2);
    case 3: {
        const double q = 1.1 * (w - 1 / w);
        return boost / (1 + q * q);
    }
    case 4: return boost * w2 * w2 / (1 + w2 * w2);
    case 5: return 20 * std::log10(1 / secondOrder);
    default: return 40 * std::log10(1 / secondOrder);
    }
}

bool isCut(int shape) { return shape <= 1 || shape >= 5; }

// One 22 × 16 cell: a recessed screen with the shape's response curve.
void drawTypeCell(cairo_t* cr, int x, int y, int shape, bool active, Rgb bandColour) {
    fillRounded(cr, x, y, 22, 16, 2.0, rgb(16, 18, 20), rgb(24, 26, 29));
    frameRounded(cr, x, y, 22, 16, 2.0, rgb(6, 7, 8));
    hLine(cr, x + 2, x + 20, y + 15, rgb(255, 255, 255), 0.06);

    const Rgb ink = active ? mix(bandColour, rgb(255, 255, 255), 0.25) : rgb(92, 97, 104);
    const double left = x + 2.5, right = x + 19.5, bottom = y + 15.0;
    // Cuts start high and leave the cell; the gain shapes move about a 0 dB line lower down,
    // so that a shelf never reads as a cut.
    const bool cut = isCut(shape);
    const double zeroY = cut ? y + 5.0 : y + 10.5;
    const double pixelsPerDb = cut ? 0.25 : 0.45;
    const double pixelsPerDecade = 8.0;
    cairo_save(cr);
    cairo_rectangle(cr, x + 1, y + 1, 20, 14);
    cairo_clip(cr);
    if (!cut) hLine(cr, x + 2, x + 20, int(zeroY), ink, active ? 0.25 : 0.15);
    cairo_new_path(cr);
    for (double px = left; px <= right + 1e-9; px += 0.5) {
        const double w = std::pow(10.0, (px - (left + right) / 2) / pixelsPerDecade);
        const double py = std::min(bottom, zeroY - shapeLevel(shape, w) * pixelsPerDb);
        if (px == left) cairo_move_to(cr, px, py); else cairo_line_to(cr, px, py);
    }
    if (active) {
        // A faint fill between the curve and its floor makes the shape read at a glance.
        cairo_path_t* curve = cairo_copy_path(cr);
        const double floor = cut ? bottom : zeroY;
        cairo_line_to(cr, right, floor);
        cairo_line_to(cr, left, floor);
        cairo_close_path(cr);
        setColour(cr, bandColour, 0.25);
        cairo_fill(cr);
        cairo_append_path(cr, curve);
        cairo_path_destroy(curve);
    }
    cairo_set_line_width(cr, 1.4);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    setColour(cr, ink);
    cairo_stroke(cr);
    cairo_restore(cr);
}

void ledBar(cairo_t* cr, double x, double y, double w, bool lit, Rgb colour) {
    if (lit) {
        setColour(cr, colour, 0.28);
        roundedPath(cr, x - 2, y - 2, w + 4, 7, 3.5);
        cairo_fill(cr);
    }
    fillRounded(cr, int(x), int(y), int(w), 3, 1.5, lit ? mix(colour, rgb(255, 255, 255), 0.35) : rgb(30, 44, 52),
                lit ? colour : rgb(22, 32, 38));
}

void drawLinPhaseIcon(cairo_t* cr, double cx, double cy, Rgb c) {
    // A symmetric impulse: the shape of a linear-phase filter's response.
    cairo_new_path(cr);
    for (double t = -9; t <= 9.001; t += 0.25) {
        const double v = t == 0 ? 1.0 : std::sin(M_PI * t / 2.2) / (M_PI * t / 2.2);
        const double px = cx + t, py = cy + 3 - v * 8;
        if (t == -9) cairo_move_to(cr, px, py); else cairo_line_to(cr, px, py);
    }
    setColour(cr, c);
    cairo_set_line_width(cr, 1.3);
    cairo_stroke(cr);
}

}  // namespace

void paintTypeSwitch(cairo_t* cr, int id) {
    const Rgb band = kBandColours[id - 145];
    const Sprite cells = *findSprite(id, "type cells");
    for (int k = 0; k < cells.count; ++k)
        drawTypeCell(cr, cells.x, cells.y + k * cells.stepY, k % kShapes, k < kShapes, band);
    const Sprite bypassed = *findSprite(id, "type pop-up bypassed");
    for (int r = 0; r < bypassed.count; ++r)
        drawTypeCell(cr, bypassed.x, bypassed.y + r * bypassed.stepY, r, false, band);
}

void paintOnOffButton(cairo_t* cr, int id) {
    const Sprite s = *firstSprite(id);
    for (int on = 0; on < 2; ++on) {
        const int y = s.y + on * s.stepY;
        buttonFace(cr, 1, y + 1, s.width - 2, s.height - 2, false, on);
        ledBar(cr, s.width / 2.0 - 7, y + 6, 14, on, kAccent);
        const Rgb icon = on ? rgb(226, 240, 248) : rgb(150, 158, 166);
        const double cx = s.width / 2.0, cy = y + s.height / 2.0 + 4;
        if (id == 158) {
            powerIcon(cr, cx, cy, 6.5, icon, 1.8);
        } else if (id == 157) {
            drawLinPhaseIcon(cr, cx, cy, icon);
        } else {
            label(cr, "2x", cx, cy + 4, {10.0, icon, true}, Align::Centre);
        }
    }
}

void paintResolution(cairo_t* cr, int id) {
    const Sprite s = *firstSprite(id);
    const char* names[3] = {"LOW", "MED", "HIGH"};
    const int segment = s.width / 3, height = 18;
    for (int k = 0; k < s.count; ++k) {
        const int y = s.y + k * s.stepY;
        for (int i = 0; i < 3; ++i) {
            const int x = i * segment;
            const bool lit = i == k;
            if (lit)
                fillRounded(cr, x, y, segment, height, 2.5, rgb(40, 70, 86), rgb(28, 48, 60));
            else
                buttonFace(cr, x, y, segment, height, false, false);
            frameRounded(cr, x, y, segment, height, 2.5, kRimDark);
            const Rgb text = lit ? kAccent : rgb(150, 158, 166);
            label(cr, names[i], x + segment / 2.0, y + 13, {9.0, text, true}, Align::Centre);
        }
    }
}

void paintReadoutFace(cairo_t* cr, int id) {
    const auto size = *bitmapSize(id);
    fillRect(cr, 0, 0, size.width, size.height, kHighlightCell);
}

void paintSoloStrip(cairo_t* cr, int id) {
    const Sprite normal = *findSprite(id, "solo strip");
    const Sprite lit = *findSprite(id, "solo buttons lit");
    for (int b = 0; b < kBands; ++b) {
        const int x = kSoloFirstX + kSoloOffsets[b];
        buttonFace(cr, x, normal.y, kSoloButtonSize, kSoloButtonSize, false, false);
        label(cr, "S", x + 10.5, normal.y + 15, {10.0, kLabel, true}, Align::Centre);
        const Rgb c = kBandColours[b];
        fillRounded(cr, x, lit.y, kSoloButtonSize, kSoloButtonSize, 2.5, mix(c, rgb(255, 255, 255), 0.25), c);
        frameRounded(cr, x, lit.y, kSoloButtonSize, kSoloButtonSize, 2.5, kRimDark);
        label(cr, "S", x + 10.5, lit.y + 15, {10.0, rgb(255, 255, 255), true}, Align::Centre);
    }
}

void paintLegend(cairo_t* cr, int id) {
    for (const char* use : {"legend rows", "legend rows dimmed"}) {
        const Sprite s = *findSprite(id, use);
        const double alpha = s.y == 0 ? 1.0 : 0.4;
        for (int b = 0; b < s.count; ++b) {
            const int y = s.y + b * s.stepY;
            fillRect(cr, 2, y + 7, 14, 2, kBandColours[b], alpha);
            char text[8] = "BAND 0";
            text[5] = char('1' + b);
            label(cr, text, 21, y + 12, {9.0, mix(rgb(0, 0, 0), kLabel, alpha), true});
        }
    }
}

}  // namespace artwork
