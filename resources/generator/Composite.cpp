#include "Composite.h"

#include "../BitmapTable.h"
#include "Layout.h"

#include <cmath>
#include <string_view>

namespace artwork {

using namespace layout;

namespace {

class Preview {
public:
    Preview(const std::map<int, cairo_surface_t*>& bitmaps, cairo_t* cr) : bitmaps(bitmaps), cr(cr) {}

    void put(int id, std::string_view use, int frame, double x, double y) {
        const Sprite s = use.empty() ? *firstSprite(id) : *findSprite(id, use);
        const double sx = s.x + frame * s.stepX, sy = s.y + frame * s.stepY;
        cairo_set_source_surface(cr, bitmaps.at(id), x - sx, y - sy);
        cairo_rectangle(cr, x, y, s.width, s.height);
        cairo_fill(cr);
    }

    // The text printer: each glyph cell filled with the style colour, the glyph drawn over it.
    void print(int fontId, int x, int y, std::string_view text, bool highlight, Rgb cell) {
        for (char ch : text) {
            int index = (ch & 0x7F) + (highlight ? kHighlightedGlyphOffset : 0) - 32;
            if (index < 0 || index >= kGlyphCount) index = 0;
            fillRect(cr, x, y - kGlyphBaselineRow, 6, 9, cell);
            cairo_set_source_surface(cr, bitmaps.at(fontId), x - index * kGlyphPitch, y - kGlyphBaselineRow);
            cairo_rectangle(cr, x, y - kGlyphBaselineRow, 6, 9);
            cairo_fill(cr);
            x += 6;
        }
    }

private:
    const std::map<int, cairo_surface_t*>& bitmaps;
    cairo_t* cr;
};

int knobBitmap(int row, int band) { return 135 + 3 * row + (band < 3 ? 0 : band < 5 ? 1 : 2); }

void mockPlot(cairo_t* cr) {
    // A few grid lines and one response curve, to judge the contrast of what the plot draws.
    const double left = kPlot.left + 40, right = kPlot.right - 25, top = kPlot.top + 16, bottom = kPlot.bottom - 1;
    const double w = right - left, mid = std::floor((top + bottom) / 2);
    for (double decade : {10.0, 100.0, 1000.0})
        for (int m = 1; m <= 9; ++m) {
            const double f = decade * m;
            if (f < 30 || f > 10000) continue;
            const int x = int(left + w * std::log10(f / 20) / 3);
            vLine(cr, x, int(top), int(bottom), kGridDark);
        }
    hLine(cr, int(left), int(right), int(mid), kGridLight, 0.6);
    cairo_new_path(cr);
    for (double x = left; x <= right; x += 1) {
        const double f = 20 * std::pow(1000.0, (x - left) / w);
        const double q = 1.4 * (f / 1000 - 1000 / f);
        const double db = 4.0 / (1 + q * q) - 3.0 / (1 + std::pow(60 / f, 4));
        cairo_line_to(cr, x + 0.5, mid + 0.5 - db * (mid - top) / 6);
    }
    setColour(cr, rgb(230, 236, 240));
    cairo_set_line_width(cr, 1.5);
    cairo_stroke(cr);
}

}  // namespace

cairo_surface_t* composeEditor(const std::map<int, cairo_surface_t*>& bitmaps, PreviewState state) {
    const bool inUse = state == PreviewState::InUse;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kEditorWidth, kEditorHeight);
    cairo_t* cr = cairo_create(surface);
    Preview p(bitmaps, cr);
    p.put(128, "", 0, 0, 0);
    if (inUse) mockPlot(cr);

    p.put(162, "", 0, kJog.left, kJog.top);
    for (std::string_view use : {"jog upper-left button", "jog upper-right button", "jog top button",
                                 "jog lower-left button", "jog lower-right button"}) {
        const bool lit = inUse && (use == "jog top button" || use == "jog lower-left button");
        p.put(132, use, lit ? 1 : 0, kJog.left, kJog.top);
    }
    const int step = inUse ? 62 : 0;
    const double a = (135 + 2.7 * step) * M_PI / 180;
    p.put(131, "", 0, kJog.left + std::round(kJogCentreX + 0.5 + kJogIndicatorRadius * std::cos(a) - 3.5),
          kJog.top + std::round(kJogCentreY + 0.5 + kJogIndicatorRadius * std::sin(a) - 3.5));

    const int frequencyFrames[kBands] = {13, 23, 37, 47, 57, 67, 90, 96};
    const int gainFrames[kBands] = {50, 50, 58, 44, 50, 62, 50, 50};
    const int qFrames[kBands] = {50, 50, 50, 64, 50, 40, 50, 50};
    const int types[kBands] = {0, 2, 3, 3, 10, 3, 4, 12};
    for (int b = 0; b < kBands; ++b) {
        p.put(knobBitmap(0, b), "", inUse ? frequencyFrames[b] : 0, kFrequencyKnobLeft[b], kFrequencyKnobTop);
        p.put(knobBitmap(1, b), "", inUse ? gainFrames[b] : 0, kGainKnobLeft[b], kGainKnobTop);
        p.put(knobBitmap(2, b), "", inUse ? qFrames[b] : 0, kQKnobLeft[b], kQKnobTop);
        const Rect sw = typeSwitch(b);
        p.put(145 + b, "type cells", inUse ? types[b] : 0, sw.left + kTypeCellX, sw.top + kTypeCellY);
    }
    p.put(144, "", inUse ? 50 : 0, kOutput.left, kOutput.top);
    p.put(153, "", 0, kFat.left, kFat.top);
    p.put(157, "", inUse ? 1 : 0, kLinPhase.left, kLinPhase.top);
    p.put(158, "", inUse ? 1 : 0, kPower.left, kPower.top);
    p.put(159, "", inUse ? 1 : 0, kResolution.left, kResolution.top);

    p.put(161, "solo strip", 0, kSoloist.left, kSoloist.top);
    if (inUse)
        for (int b : {2, 3}) {
            const int x = kSoloFirstX + kSoloOffsets[b];
            cairo_set_source_surface(cr, bitmaps.at(161), kSoloist.left, kSoloist.top - kSoloButtonSize);
            cairo_rectangle(cr, kSoloist.left + x, kSoloist.top, kSoloButtonSize, kSoloButtonSize);
            cairo_fill(cr);
        }

    for (int m = 0; m < 2; ++m) {
        const Rect& r = kMeters[m];
        p.put(160, "", 0, r.left, r.top);
        if (!inUse) continue;
        const bool over = m == 1;
        const std::string_view text = over ? "+0.4" : "-3.2";
        if (over) fillRect(cr, r.left, r.top, r.width(), r.height() + 1, kAlarmCell);
        p.print(130, (m == 0 ? 82 : 542) - 6 * int(text.size()), 173, text, true, over ? kAlarmCell : kHighlightCell);
    }
    if (inUse) {
        p.print(129, 86, 173, "3", true, kHighlightCell);
        p.print(129, 96, 173, "TYPE:", false, kHeaderCell);
        p.print(129, 126, 173, "Peaking", false, kHeaderCell);
        p.print(129, 230, 173, "FREQ:", false, kHeaderCell);
        p.print(129, 260, 173, "250", false, kHeaderCell);
        p.print(129, 310, 173, "GAIN:", false, kHeaderCell);
        p.print(129, 340, 173, "3.84", false, kHeaderCell);
        p.print(129, 388, 173, "Q:", false, kHeaderCell);
        p.print(129, 400, 173, "1.00", false, kHeaderCell);
    }
    p.print(129, 455, 173, "OUT:", false, kHeaderCell);
    p.print(129, 479, 173, "+0.0", false, kHeaderCell);

    p.put(134, "save button", 0, kSaveBank.left, kSaveBank.top);
    p.put(154, "default bank button", 0, kDefaultBank.left, kDefaultBank.top);
    p.put(134, "load button", inUse ? 1 : 0, kLoadBank.left, kLoadBank.top);
    p.put(134, "save button", 0, kSavePreset.left, kSavePreset.top);
    p.put(154, "default preset button", inUse ? 2 : 0, kDefaultPreset.left, kDefaultPreset.top);
    p.put(134, "load button", 0, kLoadPreset.left, kLoadPreset.top);
    p.put(156, "preset menu button", 0, kPresetMenu.left, kPresetMenu.top);
    p.put(155, "preset rocker", inUse ? 2 : 0, kRocker.left, kRocker.top);
    p.put(134, "store memory A", 0, kStoreA.left, kStoreA.top);
    p.put(134, "recall memory A", 0, kRecallA.left, kRecallA.top);
    p.put(134, "store memory B", 0, kStoreB.left, kStoreB.top);
    p.put(134, "recall memory B", 0, kRecallB.left, kRecallB.top);
    p.put(156, "keyboard focus button", inUse ? 2 : 0, kKeyboardFocus.left, kKeyboardFocus.top);
    p.put(156, "manual button", 0, kManual.left, kManual.top);
    if (inUse) label(cr, "Flat", kPresetName.left + 3, kPresetName.bottom - 3, {9.0, rgb(209, 227, 238), false});

    cairo_destroy(cr);
    return surface;
}

}  // namespace artwork
