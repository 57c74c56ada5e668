// The editor background: a dark chassis with the display (plot, header strip, readouts) at the
// top left, the band section below it, the jog and the switches on the right and the preset
// strip along the bottom. Areas that controls draw over are left in the colours they expect.

#include "Layout.h"
#include "Painters.h"

#include <cmath>
#include <string>

namespace artwork {

using namespace layout;

namespace {

const LabelStyle kPanelLabel{8.0, kLabel, true, 1.0};
const LabelStyle kSmallLabel{7.5, kLabelDim, true, 1.0};

void chassis(cairo_t* cr) {
    cairo_pattern_t* p = cairo_pattern_create_linear(0, 0, 0, kEditorHeight);
    cairo_pattern_add_color_stop_rgb(p, 0, kPanelTop.r, kPanelTop.g, kPanelTop.b);
    cairo_pattern_add_color_stop_rgb(p, 1, kPanelBottom.r, kPanelBottom.g, kPanelBottom.b);
    cairo_set_source(cr, p);
    cairo_paint(cr);
    cairo_pattern_destroy(p);
    hLine(cr, 0, kEditorWidth, 0, rgb(255, 255, 255), 0.08);
}

// A recessed area: darker fill, dark rim, a faint light edge below.
void inset(cairo_t* cr, int x, int y, int w, int h, Rgb fill) {
    fillRounded(cr, x, y, w, h, 4.0, fill, fill);
    frameRounded(cr, x, y, w, h, 4.0, kRimDark);
    hLine(cr, x + 4, x + w - 4, y + h, rgb(255, 255, 255), 0.07);
}

void display(cairo_t* cr) {
    inset(cr, 25, 15, 529, 175, rgb(12, 13, 15));
    fillRect(cr, kPlot.left, kPlot.top, kPlot.width(), kPlot.height(), kPlotBackground);
    fillRect(cr, kHeader.left, kHeader.top, kHeader.width(), kHeader.height(), kHeaderCell);
    for (const Rect& m : kMeters) {
        // The readouts fill their box one row taller than it is.
        fillRect(cr, m.left, m.top, m.width(), m.height() + 1, kHighlightCell);
        label(cr, "PEAK", m.centreX(), 184, kSmallLabel, Align::Centre);
    }
}

void resetTab(cairo_t* cr, const ResetArea& area) {
    const Rect& r = area.rect;
    fillRounded(cr, r.left, r.top, r.width(), r.height(), 3.0, rgb(52, 56, 62), rgb(40, 43, 48));
    frameRounded(cr, r.left, r.top, r.width(), r.height(), 3.0, kRimDark);
    hLine(cr, r.left + 2, r.right - 2, r.top + 1, rgb(255, 255, 255), 0.08);
    upwardLabel(cr, area.caption, r.centreX(), r.centreY(), kPanelLabel);
}

void bandSection(cairo_t* cr) {
    inset(cr, 22, 224, 586, 265, kInset);
    for (int b = 0; b < kBands; ++b) {
        const Rect sw = typeSwitch(b);
        const int x = sw.left - 2, w = sw.width() + 4;
        fillRounded(cr, x, 229, w, 229, 3.0, rgb(38, 41, 46), rgb(32, 35, 39));
        frameRounded(cr, x, 229, w, 229, 3.0, rgb(16, 17, 19));
        fillRect(cr, x + 3, 229, w - 6, 2, kBandColours[b]);
        const std::string number(1, char('1' + b));
        label(cr, number, sw.centreX(), 244, {10.0, mix(kBandColours[b], rgb(255, 255, 255), 0.35), true},
              Align::Centre);
        // The left part of the switch turns the band on and off.
        powerIcon(cr, sw.left + 5.5, sw.top + 11.5, 3.3, kLabelDim, 1.2);
    }
    for (const ResetArea& area : kResetAreas) resetTab(cr, area);
    label(cr, "SOLO", kResetAreas[0].rect.centreX(), kSoloist.top + 14, kPanelLabel, Align::Centre);
}

void rightColumn(cairo_t* cr) {
    label(cr, "RESOLUTION", kResolution.centreX(), kResolution.bottom - 3, kPanelLabel, Align::Centre);

    // The product mark doubles as the information button.
    label(cr, "TYX", kInfo.centreX(), kInfo.top + 10, {8.0, kAccent, true, 3.0}, Align::Centre);
    label(cr, "VIREO", kInfo.centreX(), kInfo.bottom - 4, {15.0, rgb(222, 230, 236), true, 2.0}, Align::Centre);

    inset(cr, 612, 238, 134, 251, kInset);
    struct Caption {
        Rect control;
        const char* text;
    };
    for (const Caption& c : {Caption{kFat, "FAT"}, Caption{kLinPhase, "LINPHASE"}, Caption{kOutput, "OUTPUT"},
                             Caption{kPower, "POWER"}})
        label(cr, c.text, c.control.centreX(), c.control.top - 4, kPanelLabel, Align::Centre);
    label(cr, "-12", kOutput.left - 2, kOutput.bottom - 3, kSmallLabel, Align::Right);
    label(cr, "+12", kOutput.right + 2, kOutput.bottom - 3, kSmallLabel, Align::Left);
}

void presetStrip(cairo_t* cr) {
    fillRect(cr, 0, 490, kEditorWidth, kEditorHeight - 490, rgb(19, 20, 23));
    hLine(cr, 0, kEditorWidth, 490, rgb(255, 255, 255), 0.06);
    const Rect name = kPresetName;
    fillRect(cr, name.left - 1, name.top - 1, name.width() + 2, name.height() + 2, kNameFieldDark);
    frameRect(cr, name.left - 2, name.top - 2, name.width() + 4, name.height() + 4, kRimDark);
    for (int x : {96, 188, 378, 512}) vLine(cr, x, 494, 508, rgb(255, 255, 255), 0.08);
    const LabelStyle memory{9.0, kLabel, true};
    label(cr, "A", (kStoreA.right + kRecallA.left) / 2.0, 505, memory, Align::Centre);
    label(cr, "B", (kStoreB.right + kRecallB.left) / 2.0, 505, memory, Align::Centre);
    label(cr, "KEYS", kKeyboardFocus.left - 5, 504, kSmallLabel, Align::Right);
}

}  // namespace

void paintBackground(cairo_t* cr, int id) {
    chassis(cr);
    label(cr, "LINEAR-PHASE PARAMETRIC EQUALIZER", kPlot.left, 11, kSmallLabel);
    display(cr);
    bandSection(cr);
    rightColumn(cr);
    presetStrip(cr);
}

}  // namespace artwork
