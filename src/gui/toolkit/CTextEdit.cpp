#include "gui/toolkit/CTextEdit.h"

#include <algorithm>
#include <cmath>

#include "gui/toolkit/CFrame.h"

namespace {
constexpr double kPadding = 2;
constexpr uint8_t kSelectionAlpha = 90;
}  // namespace

CTextEdit::CTextEdit(const CRect& size, CControlListener* listener, int32_t tag, const char* initial, CBitmap* background)
    : CControl(size, listener, tag, background), text(initial ? initial : "") {}

void CTextEdit::setText(const char* newText) {
    text = newText ? newText : "";
    if (text.size() > maxLength) text.resize(maxLength);
    setDirty();
}

void CTextEdit::draw(CDrawContext* context) {
    if (getBackground()) {
        CControl::draw(context);
    } else if (backColor.alpha) {
        context->setFillColor(backColor);
        context->drawRect(size, kDrawFilled);
    }
    if (frameColor.alpha) {
        context->setFrameColor(frameColor);
        context->drawRect(size, kDrawStroked);
    }
    const std::string& shown = editing ? editText : text;
    context->setFont(fontFamily, fontSize);
    context->setFontColor(fontColor);
    CRect inner = size;
    inner.inset(kPadding, 0);
    const double width = context->getStringWidth(shown.c_str());
    double left = inner.left;
    if (!editing && horiAlign == kCenterText) left = inner.left + (inner.getWidth() - width) / 2;
    if (!editing && horiAlign == kRightText) left = inner.right - width;
    caretX.assign(1, left);
    for (size_t i = 1; i <= shown.size(); ++i) caretX.push_back(left + context->getStringWidth(shown.substr(0, i).c_str()));
    if (editing) {
        const auto [from, to] = std::minmax(anchor, cursor);
        if (from != to) {
            CColor highlight = fontColor;
            highlight.alpha = kSelectionAlpha;
            context->setFillColor(highlight);
            context->drawRect(CRect(caretX[from], size.top + 1, caretX[to], size.bottom - 1), kDrawFilled);
        }
    }
    context->drawString(shown.c_str(), CRect(left, size.top, std::max(inner.right, left + width), size.bottom), kLeftText);
    if (editing) {
        context->setFrameColor(fontColor);
        context->setLineWidth(1);
        const double x = std::floor(caretX[cursor]);
        context->drawLine(CPoint(x, size.top + 2), CPoint(x, size.bottom - 3));
    }
}

size_t CTextEdit::positionAt(double x) const {
    if (caretX.empty()) return editText.size();
    size_t best = 0;
    for (size_t i = 1; i < caretX.size() && i <= editText.size(); ++i)
        if (std::abs(caretX[i] - x) < std::abs(caretX[best] - x)) best = i;
    return best;
}

CMouseEventResult CTextEdit::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!buttons.isLeftButton()) return kMouseEventNotHandled;
    if (!editing) {
        if (frame)
            frame->setFocusView(this);
        else
            takeFocus();
        return kMouseEventHandled;
    }
    if (buttons.isDoubleClick()) {
        anchor = 0;
        cursor = editText.size();
    } else {
        moveCursor(positionAt(where.x), buttons.getModifierState() & kShift);
    }
    setDirty();
    return kMouseEventHandled;
}

CMouseEventResult CTextEdit::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    if (editing && buttons.isLeftButton()) moveCursor(positionAt(where.x), true);
    return kMouseEventHandled;
}

CMouseEventResult CTextEdit::onMouseUp(CPoint&, const CButtonState&) { return kMouseEventHandled; }

void CTextEdit::moveCursor(size_t to, bool extend) {
    cursor = std::min(to, editText.size());
    if (!extend) anchor = cursor;
    setDirty();
}

void CTextEdit::replaceSelection(const std::string& with) {
    const auto [from, to] = std::minmax(anchor, cursor);
    std::string next = editText.substr(0, from) + with + editText.substr(to);
    if (next.size() > maxLength) return;
    editText = std::move(next);
    cursor = anchor = from + with.size();
    setDirty();
}

int32_t CTextEdit::onKeyDown(CKeyCode& key) {
    if (!editing) return -1;
    const bool shift = key.modifier & MODIFIER_SHIFT;
    const bool hasSelection = anchor != cursor;
    switch (key.virt) {
        case VKEY_RETURN:
        case VKEY_ENTER: endEditing(true); return 1;
        case VKEY_ESCAPE: endEditing(false); return 1;
        case VKEY_LEFT: moveCursor(cursor > 0 ? cursor - 1 : 0, shift); return 1;
        case VKEY_RIGHT: moveCursor(cursor + 1, shift); return 1;
        case VKEY_HOME: moveCursor(0, shift); return 1;
        case VKEY_END: moveCursor(editText.size(), shift); return 1;
        case VKEY_BACK:
            if (!hasSelection && cursor > 0) anchor = cursor - 1;
            replaceSelection("");
            return 1;
        case VKEY_DELETE:
            if (!hasSelection && cursor < editText.size()) anchor = cursor + 1;
            replaceSelection("");
            return 1;
        case VKEY_SPACE: replaceSelection(" "); return 1;
        default: break;
    }
    if (key.character == 'a' && (key.modifier & MODIFIER_CONTROL)) {
        anchor = 0;
        moveCursor(editText.size(), true);
        return 1;
    }
    if (key.character >= 32 && key.character < 256 && key.character != 127 && !(key.modifier & MODIFIER_CONTROL)) {
        replaceSelection(std::string(1, static_cast<char>(key.character)));
        return 1;
    }
    return -1;
}

void CTextEdit::takeFocus() {
    editing = true;
    cancelled = false;
    editText = text;
    anchor = 0;
    cursor = editText.size();
    setDirty();
}

void CTextEdit::endEditing(bool take) {
    cancelled = !take;
    if (frame && frame->getFocusView() == this)
        frame->setFocusView(nullptr);
    else
        looseFocus();
}

void CTextEdit::looseFocus() {
    if (!editing) return;
    editing = false;
    setDirty();
    if (cancelled) return;
    text = editText;
    beginEdit();
    valueChanged();
    endEdit();
}
