#include "gui/controls/CJog.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "gui/Editor.h"
#include "gui/toolkit/CBitmap.h"

namespace {

// Squared radii (pixels²) of the knob and of the ring of buttons round it.
constexpr int kKnobRadius2 = 1600;
constexpr int kRingInner2 = 2116;
constexpr int kRingOuter2 = 3722;

// Slopes |dy/dx| that bound the diagonal buttons, and the steepness of the top one.
struct SlopeBand {
    double above, below;
};
constexpr SlopeBand kUpperSlopes{0.33, 1.8};
constexpr SlopeBand kLowerSlopes{0.42, 2.3};
constexpr double kTopSlope = 2.5;

// The indicator's path: a circle round the centre of the jog's face, 270° from lower left
// through the top to lower right.
constexpr double kPathCentreX = 65.5, kPathCentreY = 59.5;
constexpr double kPathRadius = 30;
constexpr double kPathStartDegrees = 135, kPathDegreesPerStep = 2.7;
constexpr double kIndicatorHalf = 3.5;
constexpr int kIndicatorSize = 7;

// The ring layers in the ring sheet, left to right; each is a whole jog-sized layer with its
// frames (normal, lit, lit for listening) stacked downwards.
constexpr JogZone kRingLayers[] = {JogZone::kUpperLeft, JogZone::kUpperRight, JogZone::kTop, JogZone::kLowerLeft,
                                   JogZone::kLowerRight};
enum RingFrame { kNormal = 0, kLit = 1, kListening = 2 };

bool inside(SlopeBand band, double s) { return s > band.above && s < band.below; }

}  // namespace

JogZone jogZoneAt(int dx, int dy) {
    const int r2 = dx * dx + dy * dy;
    if (r2 <= kKnobRadius2) return JogZone::kCentre;
    if (r2 < kRingInner2 || r2 >= kRingOuter2) return JogZone::kNone;
    const double s = dx == 0 ? INFINITY : std::abs(static_cast<double>(dy) / dx);
    if (dy < 0 && dx < 0 && inside(kUpperSlopes, s)) return JogZone::kUpperLeft;
    if (dy < 0 && dx > 0 && inside(kUpperSlopes, s)) return JogZone::kUpperRight;
    if (dy > 0 && dx < 0 && inside(kLowerSlopes, s)) return JogZone::kLowerLeft;
    if (dy > 0 && dx > 0 && inside(kLowerSlopes, s)) return JogZone::kLowerRight;
    if (dy < 0 && s > kTopSlope) return JogZone::kTop;
    return JogZone::kNone;
}

CPoint jogIndicatorOrigin(int step) {
    const double a = (kPathStartDegrees + kPathDegreesPerStep * std::clamp(step, 0, 100)) * std::numbers::pi / 180;
    return {std::round(kPathCentreX + kPathRadius * std::cos(a) - kIndicatorHalf),
            std::round(kPathCentreY + kPathRadius * std::sin(a) - kIndicatorHalf)};
}

CJog::CJog(const CRect& size, CExtendedListener* editor, int32_t tag, CBitmap* background, CBitmap* indicator,
           CBitmap* ring)
    : CControl(size, editor, tag, background), editor(editor), indicator(indicator), ring(ring) {
    if (indicator) indicator->remember();
    if (ring) ring->remember();
}

CJog::~CJog() {
    if (indicator) indicator->forget();
    if (ring) ring->forget();
}

void CJog::setListenMode(int mode) {
    if (mode != listenMode) setDirty();
    listenMode = mode;
}

void CJog::setChannelMode(int mode) {
    if (mode != channelMode) setDirty();
    channelMode = mode;
}

void CJog::setMidSide(bool on) {
    if (on != midSide) setDirty();
    midSide = on;
}

void CJog::setAnalyzerOn(bool on) {
    if (on != analyzerOn) setDirty();
    analyzerOn = on;
}

int CJog::ringFrame(JogZone button) const {
    switch (button) {
        case JogZone::kUpperLeft: return listenMode == 1 ? kListening : channelMode == 1 ? kLit : kNormal;
        case JogZone::kUpperRight: return listenMode == 2 ? kListening : channelMode == 2 ? kLit : kNormal;
        case JogZone::kTop: return channelMode == 3 ? kLit : kNormal;
        case JogZone::kLowerLeft: return analyzerOn ? kLit : kNormal;
        case JogZone::kLowerRight: return midSide ? kLit : kNormal;
        default: return kNormal;
    }
}

void CJog::draw(CDrawContext* context) {
    CControl::draw(context);
    const int step = static_cast<int>(std::lround(std::clamp(value, 0.0f, 1.0f) * (kIndicatorSteps - 1)));
    if (indicator) {
        const CPoint at = jogIndicatorOrigin(step);
        const CRect place(size.left + at.x, size.top + at.y, size.left + at.x + kIndicatorSize,
                          size.top + at.y + kIndicatorSize);
        indicator->draw(context, place);
    }
    if (ring) {
        for (size_t layer = 0; layer < std::size(kRingLayers); ++layer)
            ring->draw(context, size,
                       CPoint(static_cast<double>(layer) * getWidth(), ringFrame(kRingLayers[layer]) * getHeight()));
    }
    setDirty(false);
}

JogZone CJog::zoneAt(const CPoint& where) const {
    return jogZoneAt(static_cast<int>(std::floor(where.x - size.left)) - kCentreX,
                     static_cast<int>(std::floor(where.y - size.top)) - kCentreY);
}

CMouseEventResult CJog::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton() && !buttons.isRightButton()) return kMouseEventNotHandled;
    if (checkDefaultValue(buttons)) return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    const JogZone zone = zoneAt(where);
    if (zone == JogZone::kCentre) {
        drag.press(*this, where, buttons);
        return kMouseEventHandled;
    }
    const bool alt = buttons.getModifierState() & kAlt;
    // On the analyzer button Alt only stands in for a button that has no right click.
    const bool alternate = buttons.isRightButton() || (alt && zone != JogZone::kLowerLeft);
    clickRing(zone, alternate);
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}

void CJog::clickListenButton(int mode, bool alternate) {
    if (alternate)
        editor->setListenMode(listenMode == mode ? 0 : mode);
    else if (listenMode != 0)
        editor->setListenMode(0);
    if (channelMode != 3) editor->setChannelMode(mode);
}

void CJog::clickRing(JogZone zone, bool alternate) {
    if (!editor) return;
    const bool lockable = zone != JogZone::kLowerLeft;
    if (locked && lockable) return;
    switch (zone) {
        case JogZone::kUpperLeft: clickListenButton(1, alternate); break;
        case JogZone::kUpperRight: clickListenButton(2, alternate); break;
        case JogZone::kTop: editor->setChannelMode(channelMode == 3 ? 1 : 3); break;
        case JogZone::kLowerLeft:
            if (alternate)
                editor->openSettingsPage();
            else
                editor->toggleAnalyzer();
            break;
        case JogZone::kLowerRight: editor->toggleMidSide(); break;
        default: break;
    }
}

CMouseEventResult CJog::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    if (drag.isDragging()) {
        drag.move(*this, where, buttons);
        return kMouseEventHandled;
    }
    if (!buttons.getButtonState() && editor) editor->showAnalyzerHint(zoneAt(where) == JogZone::kLowerLeft);
    return kMouseEventHandled;
}

CMouseEventResult CJog::onMouseUp(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    return drag.release(*this) ? kMouseEventHandled : kMouseEventNotHandled;
}

CMouseEventResult CJog::onMouseEntered(CPoint& where, const CButtonState& /*buttons*/) {
    if (editor) editor->showAnalyzerHint(zoneAt(where) == JogZone::kLowerLeft);
    return kMouseEventHandled;
}

CMouseEventResult CJog::onMouseExited(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    if (editor) editor->showAnalyzerHint(false);
    return kMouseEventHandled;
}

bool CJog::onWheel(const CPoint& /*where*/, const float& distance, const CButtonState& buttons) {
    ValueDrag::turnWheel(*this, distance, buttons);
    return true;
}
