#include "gui/controls/CResetArea.h"

CMouseEventResult CResetArea::onMouseDown(CPoint& /*where*/, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    beginEdit();
    valueChanged();
    endEdit();
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}
