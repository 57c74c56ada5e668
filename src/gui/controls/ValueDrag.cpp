#include "gui/controls/ValueDrag.h"

#include "gui/toolkit/CControl.h"

namespace {
bool fine(const CButtonState& buttons) { return buttons.getModifierState() & kShift; }
}  // namespace

double ValueDrag::slopeFor(const CButtonState& buttons) const {
    return range / (fine(buttons) ? spans.fine : spans.normal);
}

void ValueDrag::start(const CPoint& where, float value, float valueRange, const CButtonState& buttons) {
    range = valueRange;
    startPoint = lastPoint = where;
    anchoredState = buttons;
    slope = slopeFor(buttons);
    offset = value;
}

bool ValueDrag::follow(const CPoint& where, const CButtonState& buttons, float& value) {
    if (where == lastPoint) return false;
    lastPoint = where;
    const double delta = (startPoint.y - where.y) + (where.x - startPoint.x);
    if (static_cast<int32_t>(buttons) != anchoredState) {
        // The value stays where it is: the old slope's share of the distance so far moves into
        // the offset, and only movement from here on uses the new slope.
        const double newSlope = slopeFor(buttons);
        offset += (slope - newSlope) * delta;
        slope = newSlope;
        anchoredState = buttons;
    }
    value = static_cast<float>(slope * delta + offset);
    return true;
}

float ValueDrag::wheelDelta(float distance, float range, const CButtonState& buttons) {
    return distance * range * (fine(buttons) ? kFineWheelShare : kWheelShare);
}

void ValueDrag::press(CControl& control, const CPoint& where, const CButtonState& buttons) {
    start(where, control.getValue(), control.getRange(), buttons);
    dragging = true;
    control.beginEdit();
}

namespace {
void change(CControl& control, float value) {
    control.setValue(value);
    control.bounceValue();
    control.valueChanged();
}
}  // namespace

void ValueDrag::move(CControl& control, const CPoint& where, const CButtonState& buttons) {
    float value = control.getValue();
    if (dragging && follow(where, buttons, value)) change(control, value);
}

bool ValueDrag::release(CControl& control) {
    if (!dragging) return false;
    dragging = false;
    control.endEdit();
    return true;
}

void ValueDrag::turnWheel(CControl& control, float distance, const CButtonState& buttons) {
    change(control, control.getValue() + wheelDelta(distance, control.getRange(), buttons));
}
