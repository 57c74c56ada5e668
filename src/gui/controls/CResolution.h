#pragma once
// The three-way resolution selector: three equal segments along its top edge, one per step;
// its artwork stacks one frame per lit segment.

#include "gui/toolkit/CControl.h"

class CResolution : public CControl {
public:
    static constexpr int kSteps = 3;

    CResolution(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* bitmap);

    // The segment (0..2) under the point, or -1 outside the segments.
    static int segmentAt(const CRect& size, const CPoint& where);

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;

    CView* newCopy() const override { return new CResolution(*this); }
    const char* getClassName() const override { return "CResolution"; }
};
