#pragma once
// A push button: max while the left button holds it down, min again on release; each change
// is reported. Its background stacks two frames: released, pushed.

#include "gui/toolkit/CControl.h"

class CKickButton : public CControl {
public:
    CKickButton(const CRect& size, CControlListener* listener, int32_t tag, double heightOfOneImage,
                CBitmap* background);

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;

    double getHeightOfOneImage() const { return heightOfOneImage; }
    CView* newCopy() const override { return new CKickButton(*this); }
    const char* getClassName() const override { return "CKickButton"; }

protected:
    double heightOfOneImage;
};
