#include "gui/controls/CMyOnOffButton.h"

#include "gui/toolkit/CBitmap.h"
#include "presets/Parameters.h"

CMyOnOffButton::CMyOnOffButton(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* bitmap)
    : CControl(size, listener, tag, bitmap) {}

bool CMyOnOffButton::isOn() const { return params::quantize(value, 2) == 1; }

void CMyOnOffButton::draw(CDrawContext* context) {
    if (const CBitmap* bitmap = getBackground()) drawBackgroundFrame(context, isOn() ? 1 : 0, bitmap->getHeight() / 2);
}

CMouseEventResult CMyOnOffButton::onMouseDown(CPoint& /*where*/, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    beginEdit();
    setValue(params::stepCentre(isOn() ? 0 : 1, 2));
    valueChanged();
    endEdit();
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}
