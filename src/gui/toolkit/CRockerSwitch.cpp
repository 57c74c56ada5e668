#include "gui/toolkit/CRockerSwitch.h"

CRockerSwitch::CRockerSwitch(const CRect& size, CControlListener* listener, int32_t tag, double heightOfOneImage,
                             CBitmap* background)
    : CControl(size, listener, tag, background), heightOfOneImage(heightOfOneImage) {
    vmin = -1;
    vmax = 1;
    defaultValue = 0;
}

void CRockerSwitch::draw(CDrawContext* context) {
    const int index = value < 0 ? 0 : value > 0 ? 2 : 1;
    drawBackgroundFrame(context, index, heightOfOneImage);
}

CMouseEventResult CRockerSwitch::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    beginEdit();
    setValue(where.x < size.left + size.getWidth() / 2 ? vmin : vmax);
    valueChanged();
    return kMouseEventHandled;
}

CMouseEventResult CRockerSwitch::onMouseUp(CPoint& where, const CButtonState& buttons) {
    setValue(0);
    valueChanged();
    endEdit();
    return kMouseEventHandled;
}
