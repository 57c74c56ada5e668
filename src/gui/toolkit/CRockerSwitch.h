#pragma once
// A rocker: pressing its left half gives -1, its right half +1, releasing 0; each change is
// reported. Its background stacks three frames: left pushed, at rest, right pushed.

#include "gui/toolkit/CControl.h"

class CRockerSwitch : public CControl {
public:
    CRockerSwitch(const CRect& size, CControlListener* listener, int32_t tag, double heightOfOneImage,
                  CBitmap* background);

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;

    double getHeightOfOneImage() const { return heightOfOneImage; }
    CView* newCopy() const override { return new CRockerSwitch(*this); }
    const char* getClassName() const override { return "CRockerSwitch"; }

protected:
    double heightOfOneImage;
};
