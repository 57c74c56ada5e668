// The built plug-in's editor in a real X11 window on an Xvfb server: a knob dragged with the X
// test extension moves its parameter as the drag rule says.

#include <gtest/gtest.h>

#include <X11/extensions/XTest.h>

#include <cmath>

#include "PluginWindowFixture.h"

namespace {

constexpr int kBand1FrequencyX = 98, kBand1FrequencyY = 319;
constexpr int kBand1Frequency = 22, kBand1FrequencyRight = 30, kChannel = 71;

class ValueControlsWindow : public PluginWindowFixture {
protected:
    void pointerTo(int x, int y) {
        XTestFakeMotionEvent(display, DefaultScreen(display), x, y, CurrentTime);
        XFlush(display);
        plugin->dispatch(effEditIdle);
    }
};

TEST_F(ValueControlsWindow, DraggingAFrequencyKnobUpRaisesItsParameter) {
    plugin->setParameter(kChannel, 1.0f);  // LINK: both sides follow
    plugin->setParameter(kBand1Frequency, 0.5f);
    ASSERT_EQ(plugin->dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(parent)), 1);
    ASSERT_TRUE(idleUntil([&] { return children().size() == 1; }));

    pointerTo(kBand1FrequencyX, kBand1FrequencyY);
    XTestFakeButtonEvent(display, 1, True, CurrentTime);
    for (int dy = 10; dy <= 50; dy += 10) pointerTo(kBand1FrequencyX, kBand1FrequencyY - dy);
    XTestFakeButtonEvent(display, 1, False, CurrentTime);
    XFlush(display);

    // 50 pixels of the 500 that cover the range.
    EXPECT_TRUE(idleUntil([&] { return std::fabs(plugin->getParameter(kBand1Frequency) - 0.6f) < 1e-4f; }))
        << plugin->getParameter(kBand1Frequency);
    EXPECT_NEAR(plugin->getParameter(kBand1FrequencyRight), 0.6f, 1e-4f);
    plugin->dispatch(effEditClose);
}

}  // namespace
