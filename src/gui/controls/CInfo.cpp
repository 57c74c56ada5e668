#include "gui/controls/CInfo.h"

#include "gui/Editor.h"

CInfo::CInfo(const CRect& size, CExtendedListener* editor) : CControl(size, editor, -1), editor(editor) {}

CMouseEventResult CInfo::onMouseDown(CPoint& /*where*/, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    if (editor) editor->infoClicked();
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}
