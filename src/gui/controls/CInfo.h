#pragma once
// An invisible hot spot over the panel's product badge: a left click asks the editor for the
// information page.

#include "gui/toolkit/CControl.h"

class CExtendedListener;

class CInfo : public CControl {
public:
    CInfo(const CRect& size, CExtendedListener* editor);

    void draw(CDrawContext* /*context*/) override {}
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;

    CView* newCopy() const override { return new CInfo(*this); }
    const char* getClassName() const override { return "CInfo"; }

private:
    CExtendedListener* editor;
};
