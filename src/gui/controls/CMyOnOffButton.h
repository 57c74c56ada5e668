#pragma once
// A button for a two-step parameter: a left click flips the step and reports it; the artwork's
// lower half is the "on" look.

#include "gui/toolkit/CControl.h"

class CMyOnOffButton : public CControl {
public:
    CMyOnOffButton(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* bitmap);

    bool isOn() const;

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;

    CView* newCopy() const override { return new CMyOnOffButton(*this); }
    const char* getClassName() const override { return "CMyOnOffButton"; }
};
