#pragma once
// A two-state button: each left click flips between min and max and reports it. Its
// background stacks two frames of equal height: off, on.

#include "gui/toolkit/CControl.h"

class COnOffButton : public CControl {
public:
    COnOffButton(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* background);

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;

    CView* newCopy() const override { return new COnOffButton(*this); }
    const char* getClassName() const override { return "COnOffButton"; }
};
