#include "presets/PresetStripControls.h"

#include "gui/toolkit/CBitmap.h"

namespace {

void drawSpriteFrame(CDrawContext* context, CBitmap* bitmap, const CRect& size, const StripSprite& sprite, int index) {
    if (bitmap) bitmap->draw(context, size, CPoint(sprite.sourceX, index * sprite.frameHeight));
}

// Gives the control the sprite's bitmap; the control keeps its own reference.
void adoptSprite(CControl& control, const StripSprite& sprite) {
    auto* bitmap = new CBitmap(sprite.bitmap);
    control.setBackground(bitmap);
    bitmap->forget();
}

}  // namespace

CPSKickButton::CPSKickButton(const CRect& size, CControlListener* listener, int32_t tag, const StripSprite& sprite,
                             bool doubleClickOnly)
    : CKickButton(size, listener, tag, sprite.frameHeight, nullptr), sprite(sprite), doubleClickOnly(doubleClickOnly) {
    adoptSprite(*this, sprite);
}

void CPSKickButton::drawFrame(CDrawContext* context, int index) const {
    drawSpriteFrame(context, getBackground(), size, sprite, index);
}

void CPSKickButton::draw(CDrawContext* context) {
    drawFrame(context, pressed ? 2 : hover ? 1 : 0);
    setDirty(false);
}

CMouseEventResult CPSKickButton::onMouseDown(CPoint& /*where*/, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    if (doubleClickOnly && !buttons.isDoubleClick()) return kMouseEventHandled;
    pressed = true;
    value = (doubleClickOnly && (buttons.getModifierState() & kControl)) ? 0.5f : 1.0f;
    valueChanged();
    invalid();
    return kMouseEventHandled;
}

CMouseEventResult CPSKickButton::onMouseUp(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    release();
    return kMouseEventHandled;
}

void CPSKickButton::release() {
    value = 0;
    pressed = false;
    invalid();
}

CMouseEventResult CPSKickButton::onMouseEntered(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    hover = true;
    invalid();
    return kMouseEventHandled;
}

CMouseEventResult CPSKickButton::onMouseExited(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    hover = false;
    invalid();
    return kMouseEventHandled;
}

CSaveLoadButton::CSaveLoadButton(const CRect& size, CControlListener* listener, int32_t tag, const StripSprite& sprite)
    : CPSKickButton(size, listener, tag, sprite) {}

void CSaveLoadButton::draw(CDrawContext* context) {
    drawFrame(context, value != 0 ? 2 : hover ? 1 : 0);
    setDirty(false);
}

CMouseEventResult CSaveLoadButton::onMouseDown(CPoint& /*where*/, const CButtonState& buttons) {
    if (!buttons.isLeftButton() && !buttons.isRightButton()) return kMouseEventNotHandled;
    value = buttons.getButtonState() == kRButton ? 0.5f : 1.0f;
    valueChanged();
    value = 0;
    invalid();
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}

CMouseEventResult CSaveLoadButton::onMouseUp(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    return kMouseEventHandled;
}

CPSRockerSwitch::CPSRockerSwitch(const CRect& size, CControlListener* listener, int32_t tag, const StripSprite& sprite)
    : CRockerSwitch(size, listener, tag, sprite.frameHeight, nullptr), sprite(sprite) {
    setMin(-1);
    setMax(1);
    adoptSprite(*this, sprite);
}

int CPSRockerSwitch::sideOf(const CPoint& where) const {
    return where.x <= size.left + size.getWidth() / 2 ? -1 : 1;
}

void CPSRockerSwitch::draw(CDrawContext* context) {
    int index = 0;
    if (value < 0) index = 3;
    else if (value > 0) index = 4;
    else if (hoverSide < 0) index = 1;
    else if (hoverSide > 0) index = 2;
    drawSpriteFrame(context, getBackground(), size, sprite, index);
    setDirty(false);
}

CMouseEventResult CPSRockerSwitch::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    value = static_cast<float>(sideOf(where));
    invalid();
    valueChanged();
    return kMouseEventHandled;
}

CMouseEventResult CPSRockerSwitch::onMouseUp(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    value = 0;
    invalid();
    return kMouseEventHandled;
}

CMouseEventResult CPSRockerSwitch::onMouseMoved(CPoint& where, const CButtonState& /*buttons*/) {
    const int side = sideOf(where);
    if (side != hoverSide) invalid();
    hoverSide = side;
    return kMouseEventHandled;
}

CMouseEventResult CPSRockerSwitch::onMouseEntered(CPoint& where, const CButtonState& buttons) {
    return onMouseMoved(where, buttons);
}

CMouseEventResult CPSRockerSwitch::onMouseExited(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    hoverSide = 0;
    invalid();
    return kMouseEventHandled;
}

CPSOnOffButton::CPSOnOffButton(const CRect& size, CControlListener* listener, int32_t tag, const StripSprite& sprite)
    : COnOffButton(size, listener, tag, nullptr), sprite(sprite) {
    adoptSprite(*this, sprite);
}

void CPSOnOffButton::draw(CDrawContext* context) {
    drawSpriteFrame(context, getBackground(), size, sprite, value == 1 ? 2 : hover ? 1 : 0);
    setDirty(false);
}

CMouseEventResult CPSOnOffButton::onMouseDown(CPoint& /*where*/, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    value = 1 - value;
    valueChanged();
    invalid();
    return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}

CMouseEventResult CPSOnOffButton::onMouseEntered(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    hover = true;
    invalid();
    return kMouseEventHandled;
}

CMouseEventResult CPSOnOffButton::onMouseExited(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    hover = false;
    invalid();
    return kMouseEventHandled;
}
