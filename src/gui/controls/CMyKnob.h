#pragma once
// A plain film-strip knob: the drag and wheel rule of the value controls, the modifier click
// for the default value, and the frame of its strip that the value falls in.

#include "gui/controls/ValueDrag.h"
#include "gui/toolkit/CControl.h"

class CMyKnob : public CControl {
public:
    // strip: frames stacked downwards, each frameHeight pixels high.
    CMyKnob(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* strip, int frames,
            double frameHeight);

    // The frame the value shows: the pixel offset value·(frames − 1)·height, down to a frame.
    int frameIndex() const;

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    bool onWheel(const CPoint& where, const float& distance, const CButtonState& buttons) override;

    const char* getClassName() const override { return "CMyKnob"; }

private:
    int frames;
    double frameHeight;
    ValueDrag drag{ValueDrag::kKnobSpans};
};
