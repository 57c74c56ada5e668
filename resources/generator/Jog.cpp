// The jog: a range knob in the middle of a ring of five buttons (channel left, right and link
// above, analyzer and mid/side below). The background holds the groove, the scale and the
// labels; the ring sheet holds each button as a whole-size layer; the indicator is a dot that
// the control places along the knob's path.

#include "../BitmapTable.h"
#include "Layout.h"
#include "Painters.h"

#include <cmath>

namespace artwork {

using namespace layout;

namespace {

constexpr double kRingInner = 47.0;
constexpr double kRingOuter = 58.0;
constexpr double kCapRadius = 38.0;

struct RingButton {
    const char* use;
    double fromDegrees, toDegrees;  // clockwise from +x, y downwards
    const char* caption;            // drawn on the button itself, or null
};
// Each button stays a few degrees inside the angles at which its click zone begins.
constexpr RingButton kRingButtons[] = {
    {"jog upper-left button", -159, -122, nullptr},
    {"jog upper-right button", -58, -21, nullptr},
    {"jog top button", -109, -71, "LINK"},
    {"jog lower-left button", 117, 154, nullptr},
    {"jog lower-right button", 26, 63, nullptr},
};

double radians(double degrees) { return degrees * M_PI / 180.0; }

void ringPath(cairo_t* cr, double cx, double cy, double from, double to, double inner, double outer) {
    cairo_new_path(cr);
    cairo_arc(cr, cx, cy, outer, radians(from), radians(to));
    cairo_arc_negative(cr, cx, cy, inner, radians(to), radians(from));
    cairo_close_path(cr);
}

}  // namespace

void paintJogBackground(cairo_t* cr, int id) {
    const double cx = kJogCentreX + 0.5, cy = kJogCentreY + 0.5;

    // Grooves under the ring buttons.
    for (const RingButton& b : kRingButtons) {
        ringPath(cr, cx, cy, b.fromDegrees - 1.5, b.toDegrees + 1.5, kRingInner - 1, kRingOuter + 1);
        setColour(cr, rgb(12, 13, 15));
        cairo_fill(cr);
    }

    // Scale: eleven ticks over the knob's 270° sweep, between the cap and the ring.
    cairo_set_line_width(cr, 1.0);
    for (int i = 0; i <= 10; ++i) {
        const double a = radians(135 + 27 * i);
        const double inner = i % 5 == 0 ? 40.0 : 41.5;
        setColour(cr, i % 5 == 0 ? kLabel : kLabelDim);
        cairo_move_to(cr, cx + std::cos(a) * inner, cy + std::sin(a) * inner);
        cairo_line_to(cr, cx + std::cos(a) * 44.5, cy + std::sin(a) * 44.5);
        cairo_stroke(cr);
    }

    knobCap(cr, cx, cy, kCapRadius, rgb(78, 83, 91), rgb(34, 37, 41));
    // A dished centre, where the indicator does not go.
    cairo_pattern_t* dish = cairo_pattern_create_linear(0, cy - 22, 0, cy + 22);
    cairo_pattern_add_color_stop_rgb(dish, 0, 36 / 255.0, 39 / 255.0, 44 / 255.0);
    cairo_pattern_add_color_stop_rgb(dish, 1, 62 / 255.0, 66 / 255.0, 73 / 255.0);
    cairo_set_source(cr, dish);
    cairo_arc(cr, cx, cy, 22, 0, 2 * M_PI);
    cairo_fill(cr);
    label(cr, "ZOOM", cx, cy + 3.5, {8.0, kLabelDim, true, 1.0}, Align::Centre);

    const LabelStyle corner{8.0, kLabel, true};
    label(cr, "L/M", 3, 10, corner);
    label(cr, "R/S", 126, 10, corner, Align::Right);
    label(cr, "SPAN", 2, 120, corner);
    label(cr, "M/S", 127, 120, corner, Align::Right);
}

void paintJogRing(cairo_t* cr, int id) {
    const double cx = kJogCentreX + 0.5, cy = kJogCentreY + 0.5;
    for (const RingButton& b : kRingButtons) {
        const Sprite s = *findSprite(id, b.use);
        for (int frame = 0; frame < s.count; ++frame) {
            cairo_save(cr);
            cairo_translate(cr, s.x, s.y + frame * s.stepY);
            const Rgb fill = frame == 0 ? rgb(56, 60, 67) : frame == 1 ? kAccent : kListen;
            const Rgb dark = frame == 0 ? rgb(40, 43, 48) : mix(fill, rgb(0, 0, 0), 0.35);
            cairo_pattern_t* p = cairo_pattern_create_radial(cx, cy, kRingInner, cx, cy, kRingOuter);
            cairo_pattern_add_color_stop_rgb(p, 0, dark.r, dark.g, dark.b);
            cairo_pattern_add_color_stop_rgb(p, 1, fill.r, fill.g, fill.b);
            ringPath(cr, cx, cy, b.fromDegrees, b.toDegrees, kRingInner, kRingOuter);
            cairo_set_source(cr, p);
            cairo_fill_preserve(cr);
            cairo_pattern_destroy(p);
            cairo_set_line_width(cr, 1.0);
            setColour(cr, kRimDark);
            cairo_stroke(cr);
            if (b.caption)
                label(cr, b.caption, cx, cy - kRingInner - 2, {8.0, frame == 0 ? kLabel : rgb(12, 16, 20), true},
                      Align::Centre);
            cairo_restore(cr);
        }
    }
}

void paintJogIndicator(cairo_t* cr, int id) {
    const double c = kJogIndicatorSize / 2.0;
    setColour(cr, rgb(0, 0, 0), 0.6);
    cairo_arc(cr, c, c, c, 0, 2 * M_PI);
    cairo_fill(cr);
    setColour(cr, mix(kAccent, rgb(255, 255, 255), 0.3));
    cairo_arc(cr, c, c, c - 1.2, 0, 2 * M_PI);
    cairo_fill(cr);
}

}  // namespace artwork
