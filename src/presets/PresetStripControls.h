#pragma once
// The buttons of the preset strip: toolkit buttons with a hover look, drawn from a sprite of a
// shared bitmap (each control at its own source x, frames stacked below one another).

#include "gui/toolkit/CKickButton.h"
#include "gui/toolkit/COnOffButton.h"
#include "gui/toolkit/CRockerSwitch.h"

// Where a strip control finds its frames in its bitmap.
struct StripSprite {
    int bitmap;
    double sourceX;
    double frameHeight;
};

// Pressed while held. A double-click-only button ignores single clicks; its Ctrl double
// click reports 0.5 instead of 1 (default buttons: store on a double click, clear on Ctrl).
class CPSKickButton : public CKickButton {
public:
    CPSKickButton(const CRect& size, CControlListener* listener, int32_t tag, const StripSprite& sprite,
                  bool doubleClickOnly = false);
    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseEntered(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseExited(CPoint& where, const CButtonState& buttons) override;
    // Clears the pressed look (the manual button, after the opener answered).
    void release();
    const char* getClassName() const override { return "CPSKickButton"; }

protected:
    void drawFrame(CDrawContext* context, int index) const;

    StripSprite sprite;
    bool hover = false;
    bool doubleClickOnly;
    bool pressed = false;
};

// Opens a file dialog: a right click alone reports 0.5 (the endian-reversed dialog), any other
// click 1; the value drops back to 0 once reported.
class CSaveLoadButton : public CPSKickButton {
public:
    CSaveLoadButton(const CRect& size, CControlListener* listener, int32_t tag, const StripSprite& sprite);
    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    const char* getClassName() const override { return "CSaveLoadButton"; }
};

// Previous (-1, left half) / next (+1, right half) while held, 0 when released.
class CPSRockerSwitch : public CRockerSwitch {
public:
    CPSRockerSwitch(const CRect& size, CControlListener* listener, int32_t tag, const StripSprite& sprite);
    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseEntered(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseExited(CPoint& where, const CButtonState& buttons) override;
    const char* getClassName() const override { return "CPSRockerSwitch"; }

private:
    int sideOf(const CPoint& where) const;
    StripSprite sprite;
    int hoverSide = 0;
};

// Flips between 0 and 1 on a left click; frames: off, off and hovered, on.
class CPSOnOffButton : public COnOffButton {
public:
    CPSOnOffButton(const CRect& size, CControlListener* listener, int32_t tag, const StripSprite& sprite);
    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseEntered(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseExited(CPoint& where, const CButtonState& buttons) override;
    const char* getClassName() const override { return "CPSOnOffButton"; }

private:
    StripSprite sprite;
    bool hover = false;
};
