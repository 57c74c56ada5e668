#include "gui/toolkit/CKickButton.h"

CKickButton::CKickButton(const CRect& size, CControlListener* listener, int32_t tag, double heightOfOneImage,
                         CBitmap* background)
    : CControl(size, listener, tag, background), heightOfOneImage(heightOfOneImage) {}

void CKickButton::draw(CDrawContext* context) {
    drawBackgroundFrame(context, value == vmax ? 1 : 0, heightOfOneImage);
}

CMouseEventResult CKickButton::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    beginEdit();
    setValue(vmax);
    valueChanged();
    return kMouseEventHandled;
}

CMouseEventResult CKickButton::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    // Sliding off the button shows it released; sliding back shows it pushed again.
    if (buttons.isLeftButton()) setValue(size.pointInside(where) ? vmax : vmin);
    return kMouseEventHandled;
}

CMouseEventResult CKickButton::onMouseUp(CPoint& where, const CButtonState& buttons) {
    setValue(vmin);
    valueChanged();
    endEdit();
    return kMouseEventHandled;
}
