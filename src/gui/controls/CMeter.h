#pragma once
// A channel's held output peak as a number in dB, right-aligned on its box: dark grey while the
// peak stays at or below 0 dB, red once it has passed it; " -oo " for silence. A left click
// clears both channels' held peaks (and the plot's held bars).

#include "gui/controls/CTextPrinter.h"
#include "gui/toolkit/CControl.h"

class CExtendedListener;

class CMeter : public CControl, public CTextPrinter2Color {
public:
    static constexpr CColor kColdColour{79, 79, 79, 255};
    static constexpr CColor kHotColour{229, 53, 5, 255};

    struct Reading {
        char text[16];
        bool hot;  // above 0 dB
    };
    // What a held peak (linear, any value) reads.
    static Reading reading(float peak);

    // owner may be null (the readout then shows silence); channel 0 is the first channel, any
    // other the second. The face is the box's artwork while the peak is not above 0 dB.
    CMeter(const CRect& size, CExtendedListener* owner, CBitmap* face, CBitmap* font, CBitmap* secondFont, int channel);
    CMeter(const CMeter& other) = default;

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;

    CView* newCopy() const override { return new CMeter(*this); }
    const char* getClassName() const override { return "CMeter"; }

private:
    CExtendedListener* owner;
    int32_t channel;
};
