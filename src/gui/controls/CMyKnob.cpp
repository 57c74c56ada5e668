#include "gui/controls/CMyKnob.h"

#include <algorithm>
#include <cmath>

CMyKnob::CMyKnob(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* strip, int frames,
                 double frameHeight)
    : CControl(size, listener, tag, strip), frames(frames), frameHeight(frameHeight) {}

int CMyKnob::frameIndex() const {
    const float share = std::clamp((value - vmin) / getRange(), 0.0f, 1.0f);
    const float offset = share * static_cast<float>(frames - 1) * static_cast<float>(frameHeight);
    return static_cast<int>(std::floor(offset / static_cast<float>(frameHeight)));
}

void CMyKnob::draw(CDrawContext* context) {
    drawBackgroundFrame(context, frameIndex(), frameHeight);
    setDirty(false);
}

CMouseEventResult CMyKnob::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    if (checkDefaultValue(buttons)) return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    drag.press(*this, where, buttons);
    return kMouseEventHandled;
}

CMouseEventResult CMyKnob::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    if (!drag.isDragging() || !buttons.isLeftButton()) return kMouseEventNotHandled;
    drag.move(*this, where, buttons);
    return kMouseEventHandled;
}

CMouseEventResult CMyKnob::onMouseUp(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    return drag.release(*this) ? kMouseEventHandled : kMouseEventNotHandled;
}

bool CMyKnob::onWheel(const CPoint& /*where*/, const float& distance, const CButtonState& buttons) {
    ValueDrag::turnWheel(*this, distance, buttons);
    return true;
}
