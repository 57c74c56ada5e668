#pragma once
// An invisible area (the panel prints its label) that reports a left click to its listener as
// one edit, without a value: the listener acts on the tag.

#include "gui/toolkit/CControl.h"

class CResetArea : public CControl {
public:
    CResetArea(const CRect& size, CControlListener* listener, int32_t tag) : CControl(size, listener, tag) {}

    void draw(CDrawContext* /*context*/) override {}
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;

    CView* newCopy() const override { return new CResetArea(*this); }
    const char* getClassName() const override { return "CResetArea"; }
};
