#pragma once
// The round control beside the plot: a knob in the middle for the plot range, and a ring of
// buttons round it for the listen modes and channel modes (upper left and right, top), the
// analyzer (lower left) and mid/side processing (lower right). The editor does what a ring
// button asks and tells the jog what to light.

#include "gui/controls/ValueDrag.h"
#include "gui/toolkit/CControl.h"

class CExtendedListener;

// Where a point lies on the jog, from its offset to the jog's centre (y grows downwards).
enum class JogZone { kCentre, kUpperLeft, kUpperRight, kTop, kLowerLeft, kLowerRight, kNone };
JogZone jogZoneAt(int dx, int dy);

// Top-left corner of the knob's indicator, relative to the jog's own origin, for value step
// 0..100 (step 0 lower left, 50 straight up, 100 lower right).
CPoint jogIndicatorOrigin(int step);

class CJog : public CControl {
public:
    // The jog draws round this point of its own area.
    static constexpr int kCentreX = 65, kCentreY = 59;
    static constexpr int kIndicatorSteps = 101;

    // background: the jog's face; indicator: the knob's marker; ring: the ring buttons' layers.
    CJog(const CRect& size, CExtendedListener* editor, int32_t tag, CBitmap* background, CBitmap* indicator,
         CBitmap* ring);
    ~CJog() override;

    // What the ring buttons show: Listen 0..2, Channel as 1 LEFT, 2 RIGHT, 3 LINK.
    void setListenMode(int mode);
    void setChannelMode(int mode);
    void setMidSide(bool on);
    void setAnalyzerOn(bool on);
    // While locked only the knob and the analyzer button answer.
    void setLocked(bool on) { locked = on; }

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseEntered(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseExited(CPoint& where, const CButtonState& buttons) override;
    bool onWheel(const CPoint& where, const float& distance, const CButtonState& buttons) override;

    const char* getClassName() const override { return "CJog"; }

private:
    JogZone zoneAt(const CPoint& where) const;
    void clickRing(JogZone zone, bool alternate);
    void clickListenButton(int mode, bool alternate);
    int ringFrame(JogZone button) const;

    CExtendedListener* editor;
    CBitmap* indicator;
    CBitmap* ring;
    int listenMode = 0;
    int channelMode = 3;
    bool midSide = false;
    bool analyzerOn = false;
    bool locked = false;
    ValueDrag drag{ValueDrag::kJogSpans};
};
