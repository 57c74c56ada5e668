// The plain knob: the frame its value shows (rounded down, never past the last), and the
// clicks it answers.

#include <gtest/gtest.h>

#include "gui/controls/CMyKnob.h"
#include "unit/toolkit/ToolkitSupport.h"

namespace {

constexpr int32_t kTag = 22;

class Knob : public ::testing::Test {
protected:
    Knob() { frame.addView(knob); }
    SpyListener spy;
    CFrame frame{CRect(0, 0, 100, 100)};
    CMyKnob* knob = new CMyKnob(CRect(10, 10, 47, 46), &spy, kTag, nullptr, 101, 36);
};

TEST_F(Knob, ShowsTheFrameItsValueFallsIn) {
    const std::pair<float, int> cases[] = {{0.0f, 0}, {0.0099f, 0}, {0.015f, 1}, {0.999f, 99}, {1.0f, 100}, {1.5f, 100}, {-1.0f, 0}};
    for (auto [value, expected] : cases) {
        knob->setValue(value);
        EXPECT_EQ(knob->frameIndex(), expected) << value;
    }
}

TEST_F(Knob, CtrlClickPutsTheDefaultBackAndTheRightButtonDoesNothing) {
    knob->setValue(0.2f);
    click(frame, 20, 20, kLButton | kControl);
    EXPECT_EQ(spy.changedValues().back(), 0.5f);
    spy.calls.clear();
    click(frame, 20, 20, kRButton);
    EXPECT_TRUE(spy.calls.empty());
}

}  // namespace
