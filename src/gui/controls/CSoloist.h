#pragma once
// The strip of eight band solo buttons. Its value is the Solo parameter (a mask of the bands in
// 256 steps); a click on a button toggles that band, a right click, a double click or a click
// with a modifier clears them all. The editor decides which mask is kept.

#include "gui/toolkit/CControl.h"

class CExtendedListener;

class CSoloist : public CControl {
public:
    static constexpr int kBands = 8;
    static constexpr double kButtonSize = 21;

    // The strip's artwork on top, the lit buttons below it at the same places.
    CSoloist(const CRect& size, CExtendedListener* editor, CBitmap* bitmap);
    CSoloist(const CSoloist& other) = default;

    int soloMask() const;
    // Button b (0..7) of a strip placed at size.
    static CRect button(const CRect& size, int b);
    // The button under the point, or -1 (the gaps between buttons belong to none).
    static int buttonAt(const CRect& size, const CPoint& where);

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;

    CView* newCopy() const override { return new CSoloist(*this); }
    const char* getClassName() const override { return "CSoloist"; }

private:
    void report(int mask);

    CExtendedListener* editor;
};
