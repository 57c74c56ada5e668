#pragma once
// How the plug-in's knobs follow the mouse and the wheel. A drag adds the vertical and the
// horizontal movement (up or right raises the value) and covers the whole range in a fixed
// number of pixels, more with Shift held for fine work. When Shift is pressed or released in
// the middle of a drag, the drag re-anchors so that the value does not jump.

#include "gui/toolkit/CButtonState.h"
#include "gui/toolkit/CGeometry.h"

class CControl;

class ValueDrag {
public:
    // Pixels for the whole range: normally, and with Shift held.
    struct Spans {
        double normal;
        double fine;
    };
    static constexpr Spans kKnobSpans{500, 1250};
    static constexpr Spans kJogSpans{300, 1500};
    // One wheel unit moves this share of the range (with Shift: the fine share).
    static constexpr float kWheelShare = 0.01f;
    static constexpr float kFineWheelShare = 0.001f;

    explicit ValueDrag(Spans spans) : spans(spans) {}

    void start(const CPoint& where, float value, float range, const CButtonState& buttons);
    // The value for the pointer at where (not yet bounded to the range); false when the point
    // did not change since the last call, and value is then left alone.
    bool follow(const CPoint& where, const CButtonState& buttons, float& value);

    // What distance wheel units add to a value.
    static float wheelDelta(float distance, float range, const CButtonState& buttons);

    // The rule applied to a control: a press begins its edit gesture, each move sets its value
    // (bounded to its range) and tells its listener, the release ends the gesture.
    void press(CControl& control, const CPoint& where, const CButtonState& buttons);
    bool isDragging() const { return dragging; }
    void move(CControl& control, const CPoint& where, const CButtonState& buttons);
    // False when no drag was under way.
    bool release(CControl& control);
    static void turnWheel(CControl& control, float distance, const CButtonState& buttons);

private:
    double slopeFor(const CButtonState& buttons) const;

    Spans spans;
    float range = 1;
    CPoint startPoint;
    CPoint lastPoint;
    double slope = 0;
    double offset = 0;
    int32_t anchoredState = 0;
    bool dragging = false;
};
