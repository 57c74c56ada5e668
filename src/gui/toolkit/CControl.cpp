#include "gui/toolkit/CControl.h"

#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CControlListener.h"

CControl::CControl(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* background)
    : CView(size), listener(listener), tag(tag) {
    setBackground(background);
}

CControl::CControl(const CControl& other)
    : CView(other),
      listener(other.listener),
      tag(other.tag),
      value(other.value),
      vmin(other.vmin),
      vmax(other.vmax),
      defaultValue(other.defaultValue),
      wheelInc(other.wheelInc) {
    setBackground(other.background);
}

CControl::~CControl() { setBackground(nullptr); }

void CControl::setBackground(CBitmap* bitmap) {
    if (bitmap) bitmap->remember();
    if (background) background->forget();
    background = bitmap;
    setDirty();
}

void CControl::draw(CDrawContext* context) {
    if (background) background->draw(context, size);
}

void CControl::drawBackgroundFrame(CDrawContext* context, int index, double frameHeight) const {
    if (background) background->draw(context, size, CPoint(0, index * frameHeight));
}

void CControl::setValue(float v) {
    if (v == value) return;
    value = v;
    setDirty();
}

void CControl::bounceValue() {
    if (value > vmax) value = vmax;
    if (value < vmin) value = vmin;
}

bool CControl::checkDefaultValue(CButtonState buttons) {
    if (buttons.getButtonState() != kLButton || buttons.getModifierState() != kControl) return false;
    beginEdit();
    setValue(defaultValue);
    valueChanged();
    endEdit();
    return true;
}

void CControl::valueChanged() {
    if (listener) listener->valueChanged(this);
}

void CControl::beginEdit() {
    ++editDepth;
    if (listener) listener->controlBeginEdit(this);
}

void CControl::endEdit() {
    if (editDepth == 0) return;
    --editDepth;
    if (listener) listener->controlEndEdit(this);
}
