#pragma once
// A band's (or the output's) knob that can also be typed into: it draws a frame of its film
// strip, follows drags and the wheel, and on a double click opens a text field over the
// header, where the value is shown, for typing a value in display units. A band knob reports
// to the editor which band value changed (the editor writes the side or sides Channel selects)
// and brackets its gestures on its own tag, on the right-channel twin (tag + 8), or on both.

#include "gui/controls/ValueDrag.h"
#include "gui/controls/ValueText.h"
#include "gui/toolkit/CTextEdit.h"

class CExtendedListener;

class CMyEditKnob : public CTextEdit {
public:
    // Which tags a gesture brackets.
    enum EditPairing : int { kOwnTag = 1, kTwinTag = 2 };
    static constexpr int kTwinOffset = 8;
    static constexpr int kFrames = 101;

    // strip: the film strip, frames stacked downwards, each as high as the knob; textPlace:
    // where the typed text is edited.
    CMyEditKnob(const CRect& size, CExtendedListener* editor, int32_t tag, valuetext::Kind kind, CBitmap* strip,
                const CRect& textPlace);
    ~CMyEditKnob() override;

    // The band's type step decides the Q's scale and which fields take typing.
    void setTypeStep(int step) { typeStep = step; }
    void setEditPairing(int bits) { pairing = bits; }
    // Band 0..7, or -1 for the output knob.
    int band() const;

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseEntered(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseExited(CPoint& where, const CButtonState& buttons) override;
    bool onWheel(const CPoint& where, const float& distance, const CButtonState& buttons) override;
    void looseFocus() override;

    // A change (dragged, wheeled, typed or reset) goes to the editor as the band's value.
    void valueChanged() override;
    void beginEdit() override;
    void endEdit() override;

    const char* getClassName() const override { return "CMyEditKnob"; }

private:
    bool typingAllowed() const;
    void openTextEntry();
    void resetToDefault();
    bool twinPaired() const;

    CExtendedListener* editor;
    valuetext::Kind kind;
    CBitmap* strip;
    CRect knobPlace;
    CRect textPlace;
    int typeStep = 3;
    int pairing = kOwnTag;
    // The text entry is closing: the typed text, not the value, is what changed.
    bool takingTypedText = false;
    ValueDrag drag{ValueDrag::kKnobSpans};
};
