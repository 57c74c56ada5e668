// Film-strip knobs: a graphite cap with a pointer, on a recessed track that the value arc fills.

#include "../BitmapTable.h"
#include "Layout.h"
#include "Painters.h"

#include <cmath>

namespace artwork {

namespace {

constexpr double kStartAngle = 0.75 * M_PI;  // lower left, clockwise with y downwards
constexpr double kSweep = 1.5 * M_PI;

void drawKnob(cairo_t* cr, double cx, double cy, double size, double value, bool fromCentre) {
    using namespace layout;
    const double track = size * 0.445;  // arc radius
    const double arcWidth = std::max(2.0, size * 0.065);
    const double cap = size * 0.335;
    const double angle = kStartAngle + value * kSweep;

    cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
    cairo_set_line_width(cr, arcWidth + 1.0);
    setColour(cr, rgb(12, 13, 15));
    cairo_new_path(cr);
    cairo_arc(cr, cx, cy, track, kStartAngle, kStartAngle + kSweep);
    cairo_stroke(cr);

    const double from = fromCentre ? kStartAngle + kSweep / 2 : kStartAngle;
    if (std::fabs(angle - from) > 1e-9) {
        cairo_set_line_width(cr, arcWidth);
        setColour(cr, kAccent);
        cairo_new_path(cr);
        if (angle > from)
            cairo_arc(cr, cx, cy, track, from, angle);
        else
            cairo_arc_negative(cr, cx, cy, track, from, angle);
        cairo_stroke(cr);
    }

    knobCap(cr, cx, cy, cap, rgb(88, 94, 102), rgb(38, 41, 46));

    // Pointer from near the centre to the cap's edge.
    const double dx = std::cos(angle), dy = std::sin(angle);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_width(cr, std::max(1.6, size * 0.055));
    setColour(cr, rgb(236, 242, 246));
    cairo_move_to(cr, cx + dx * cap * 0.32, cy + dy * cap * 0.32);
    cairo_line_to(cr, cx + dx * (cap - 1.8), cy + dy * (cap - 1.8));
    cairo_stroke(cr);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
}

}  // namespace

void paintKnobStrip(cairo_t* cr, int id) {
    const Sprite s = *firstSprite(id);
    const bool fromCentre = s.use == "gain knob" || s.use == "output knob";
    const double size = std::min(s.width, s.height);
    for (int k = 0; k < s.count; ++k) {
        const double value = double(k) / (s.count - 1);
        drawKnob(cr, s.x + s.width / 2.0, s.y + k * s.stepY + s.height / 2.0, size, value, fromCentre);
    }
}

}  // namespace artwork
