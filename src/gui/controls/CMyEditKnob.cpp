#include "gui/controls/CMyEditKnob.h"

#include <cmath>

#include "gui/Editor.h"
#include "gui/toolkit/CBitmap.h"
#include "presets/Parameters.h"

namespace {
// The text field drawn over the header while a value is typed.
constexpr CColor kFieldColour{223, 247, 255, 255};
constexpr CColor kTypingColour{0, 0, 0, 255};
constexpr double kFieldFontSize = 9;
constexpr size_t kLongestTyping = 16;

int firstTagOf(valuetext::Kind kind) {
    switch (kind) {
        case valuetext::kFrequency: return params::kFreq;
        case valuetext::kGain: return params::kGain;
        case valuetext::kQ: return params::kQ;
        case valuetext::kOutput: break;
    }
    return -1;
}
}  // namespace

CMyEditKnob::CMyEditKnob(const CRect& size, CExtendedListener* editor, int32_t tag, valuetext::Kind kind,
                         CBitmap* strip, const CRect& textPlace)
    : CTextEdit(size, editor, tag), editor(editor), kind(kind), strip(strip), knobPlace(size), textPlace(textPlace) {
    if (strip) strip->remember();
    setBackColor(kFieldColour);
    setFontColor(kTypingColour);
    setFont("sans-serif", kFieldFontSize);
    setMaxLength(kLongestTyping);
}

CMyEditKnob::~CMyEditKnob() {
    if (strip) strip->forget();
}

int CMyEditKnob::band() const { return kind == valuetext::kOutput ? -1 : tag - firstTagOf(kind); }

bool CMyEditKnob::twinPaired() const { return (pairing & kTwinTag) && kind != valuetext::kOutput; }

bool CMyEditKnob::typingAllowed() const {
    switch (kind) {
        case valuetext::kGain: return valuetext::hasGain(typeStep);
        case valuetext::kQ: return valuetext::hasQ(typeStep);
        default: return true;
    }
}

void CMyEditKnob::draw(CDrawContext* context) {
    if (isEditing()) {
        CTextEdit::draw(context);
    } else if (strip) {
        const double frameHeight = knobPlace.getHeight();
        const long frame = std::lround(std::clamp(value, 0.0f, 1.0f) * (kFrames - 1));
        strip->draw(context, size, CPoint(0, static_cast<double>(frame) * frameHeight));
    }
    setDirty(false);
}

CMouseEventResult CMyEditKnob::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (isEditing()) return CTextEdit::onMouseDown(where, buttons);
    if (!buttons.isLeftButton() && !buttons.isRightButton()) return kMouseEventNotHandled;
    if (editor && band() >= 0) {
        editor->selectBand(band());
        if (kind == valuetext::kFrequency && buttons.isRightButton()) editor->setFocusBand(band());
    }
    const bool focused = frame && frame->getFocusView() == this;
    if (buttons.isDoubleClick() && !focused && typingAllowed()) {
        openTextEntry();
        return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    }
    const bool ctrlClick = buttons.getButtonState() == kLButton && buttons.getModifierState() == kControl;
    if (ctrlClick && (kind == valuetext::kGain || kind == valuetext::kOutput)) {
        resetToDefault();
        return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    }
    drag.press(*this, where, buttons);
    return kMouseEventHandled;
}

void CMyEditKnob::openTextEntry() {
    setText(valuetext::format(kind, value, typeStep).c_str());
    setViewSize(textPlace);
    if (frame)
        frame->setFocusView(this);
    else
        takeFocus();
}

void CMyEditKnob::resetToDefault() {
    beginEdit();
    setValue(defaultValue);
    valueChanged();
    endEdit();
}

CMouseEventResult CMyEditKnob::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    if (isEditing()) return CTextEdit::onMouseMoved(where, buttons);
    if (!drag.isDragging() || !buttons.getButtonState()) return kMouseEventNotHandled;
    drag.move(*this, where, buttons);
    return kMouseEventHandled;
}

CMouseEventResult CMyEditKnob::onMouseUp(CPoint& where, const CButtonState& buttons) {
    if (isEditing()) return CTextEdit::onMouseUp(where, buttons);
    return drag.release(*this) ? kMouseEventHandled : kMouseEventNotHandled;
}

CMouseEventResult CMyEditKnob::onMouseEntered(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    if (editor && band() >= 0) editor->hoverBand(band(), kind == valuetext::kFrequency ? 1 : 0);
    return kMouseEventHandled;
}

CMouseEventResult CMyEditKnob::onMouseExited(CPoint& /*where*/, const CButtonState& /*buttons*/) {
    if (editor && band() >= 0) {
        editor->hoverBand(-1, 1);
        editor->setFocusBand(-1);
    }
    return kMouseEventHandled;
}

bool CMyEditKnob::onWheel(const CPoint& /*where*/, const float& distance, const CButtonState& buttons) {
    if (isEditing()) return false;
    ValueDrag::turnWheel(*this, distance, buttons);
    return true;
}

void CMyEditKnob::looseFocus() {
    takingTypedText = true;
    CTextEdit::looseFocus();
    takingTypedText = false;
    setViewSize(knobPlace);
}

void CMyEditKnob::valueChanged() {
    if (takingTypedText) {
        const std::optional<float> typed = valuetext::parse(kind, getText(), typeStep);
        if (!typed) return;
        value = *typed;
        setDirty();
    }
    if (kind == valuetext::kOutput) {
        CTextEdit::valueChanged();
        return;
    }
    if (!editor) return;
    switch (kind) {
        case valuetext::kFrequency: editor->bandFrequencyChanged(band(), value); break;
        case valuetext::kGain: editor->bandGainChanged(band(), value); break;
        case valuetext::kQ: editor->bandQChanged(band(), value); break;
        case valuetext::kOutput: break;
    }
}

void CMyEditKnob::beginEdit() {
    if (pairing & kOwnTag) CTextEdit::beginEdit();
    if (twinPaired() && editor) editor->beginEdit(tag + kTwinOffset);
}

void CMyEditKnob::endEdit() {
    if (pairing & kOwnTag) CTextEdit::endEdit();
    if (twinPaired() && editor) editor->endEdit(tag + kTwinOffset);
}
