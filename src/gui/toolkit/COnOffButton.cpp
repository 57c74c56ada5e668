#include "gui/toolkit/COnOffButton.h"

COnOffButton::COnOffButton(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* background)
    : CControl(size, listener, tag, background) {}

void COnOffButton::draw(CDrawContext* context) {
    drawBackgroundFrame(context, value == vmax ? 1 : 0, size.getHeight());
}

CMouseEventResult COnOffButton::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    beginEdit();
    setValue(value == vmax ? vmin : vmax);
    valueChanged();
    endEdit();
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}
