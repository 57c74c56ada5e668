// The drag and wheel rule against figures worked by hand: the whole range in 500 (1250 with
// Shift) or 300 (1500) pixels, up and right adding, and no jump when Shift changes mid-drag.

#include <gtest/gtest.h>

#include "gui/controls/ValueDrag.h"

namespace {

struct DragCase {
    const char* name;
    ValueDrag::Spans spans;
    int32_t buttons;
    CPoint to;  // from (100, 100)
    float expected;  // from 0.2 in a range of 1
};
constexpr DragCase kDragCases[] = {
    {"knob up 50", ValueDrag::kKnobSpans, kLButton, {100, 50}, 0.3f},
    {"knob right 50, down 25", ValueDrag::kKnobSpans, kLButton, {150, 125}, 0.25f},
    {"knob fine up 125", ValueDrag::kKnobSpans, kLButton | kShift, {100, -25}, 0.3f},
    {"jog up 30", ValueDrag::kJogSpans, kLButton, {100, 70}, 0.3f},
    {"jog fine left 150", ValueDrag::kJogSpans, kLButton | kShift, {-50, 100}, 0.1f},
    {"knob far beyond the range (bounding is the control's)", ValueDrag::kKnobSpans, kLButton, {100, -900}, 2.2f},
};

TEST(ValueDrag, CoversTheRangeInTheSpanOfItsControl) {
    for (const DragCase& c : kDragCases) {
        ValueDrag drag(c.spans);
        drag.start({100, 100}, 0.2f, 1.0f, c.buttons);
        float v = -1;
        ASSERT_TRUE(drag.follow(c.to, c.buttons, v)) << c.name;
        EXPECT_NEAR(v, c.expected, 1e-6) << c.name;
    }
}

TEST(ValueDrag, ScalesWithTheControlsRange) {
    ValueDrag drag(ValueDrag::kKnobSpans);
    drag.start({0, 0}, 4.0f, 10.0f, kLButton);
    float v = 0;
    drag.follow({0, -50}, kLButton, v);
    EXPECT_NEAR(v, 5.0f, 1e-6);
}

TEST(ValueDrag, ShiftPressedOrReleasedMidDragDoesNotJump) {
    ValueDrag drag(ValueDrag::kKnobSpans);
    drag.start({0, 0}, 0.5f, 1.0f, kLButton);
    float v = 0;
    drag.follow({0, -100}, kLButton, v);
    EXPECT_NEAR(v, 0.7f, 1e-6);
    drag.follow({0, -100 - 1e-9}, kLButton | kShift, v);  // Shift pressed where the pointer is
    EXPECT_NEAR(v, 0.7f, 1e-6);
    drag.follow({0, -225}, kLButton | kShift, v);  // 125 more pixels at 1/1250 each
    EXPECT_NEAR(v, 0.8f, 1e-6);
    // Released: the pixel that brings the change still counts at the slope it ends, the next
    // ones at 1/500.
    drag.follow({0, -226}, kLButton, v);
    EXPECT_NEAR(v, 0.8008f, 1e-6);
    drag.follow({0, -251}, kLButton, v);
    EXPECT_NEAR(v, 0.8508f, 1e-6);
}

TEST(ValueDrag, IgnoresAMoveToTheSamePoint) {
    ValueDrag drag(ValueDrag::kKnobSpans);
    drag.start({10, 10}, 0.5f, 1.0f, kLButton);
    float v = 0.123f;
    EXPECT_FALSE(drag.follow({10, 10}, kLButton, v));
    EXPECT_EQ(v, 0.123f);
}

TEST(ValueDrag, OneWheelUnitIsAHundredthOrWithShiftAThousandth) {
    EXPECT_FLOAT_EQ(ValueDrag::wheelDelta(1, 1, 0), 0.01f);
    EXPECT_FLOAT_EQ(ValueDrag::wheelDelta(-3, 1, 0), -0.03f);
    EXPECT_FLOAT_EQ(ValueDrag::wheelDelta(1, 1, kShift), 0.001f);
    EXPECT_FLOAT_EQ(ValueDrag::wheelDelta(2, 10, 0), 0.2f);
}

}  // namespace
