#include "gui/controls/CResolution.h"

#include "gui/toolkit/CBitmap.h"
#include "presets/Parameters.h"

namespace {
constexpr double kSegmentHeight = 18;  // below it the panel's label shows through
}

CResolution::CResolution(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* bitmap)
    : CControl(size, listener, tag, bitmap) {}

int CResolution::segmentAt(const CRect& size, const CPoint& where) {
    const int width = static_cast<int>(size.getWidth()) / kSteps;
    for (int k = 0; k < kSteps; ++k)
        if (CRect(CPoint(size.left + k * width, size.top), width, kSegmentHeight).pointInside(where)) return k;
    return -1;
}

void CResolution::draw(CDrawContext* context) {
    const CBitmap* bitmap = getBackground();
    if (!bitmap) return;
    const int frameHeight = static_cast<int>(bitmap->getHeight()) / kSteps;
    drawBackgroundFrame(context, params::quantize(value, kSteps), frameHeight);
}

CMouseEventResult CResolution::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    const int k = segmentAt(size, where);
    if (k < 0) return kMouseEventNotHandled;
    beginEdit();
    setValue(params::stepCentre(k, kSteps));
    valueChanged();
    endEdit();
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}
