#pragma once
// The filter-type legend: one row per band, 16 pixels apart from the top, each row taken from
// the artwork 32 pixels further down than the one before. It takes no input.

#include "gui/toolkit/CControl.h"

class CFilterType : public CControl {
public:
    static constexpr int kBands = 8;
    static constexpr double kRowHeight = 16;
    static constexpr double kSourcePitch = 32;

    CFilterType(const CRect& size, CBitmap* bitmap);

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& /*where*/, const CButtonState& /*buttons*/) override {
        return kMouseEventNotHandled;
    }

    CView* newCopy() const override { return new CFilterType(*this); }
    const char* getClassName() const override { return "CFilterType"; }
};
