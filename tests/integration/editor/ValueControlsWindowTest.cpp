// The built plug-in's editor in a real X11 window on an Xvfb server: knobs dragged, wheeled and
// double-clicked with the X test extension, and typed into with keys the host passes on.

#include <gtest/gtest.h>

#include <X11/extensions/XTest.h>

#include <cmath>

#include "PluginWindowFixture.h"
#include "gui/toolkit/CButtonState.h"

namespace {

constexpr int kBand1FrequencyX = 98, kBand1FrequencyY = 319;
constexpr int kBand1GainX = 97, kBand1GainY = 376;
constexpr int kOutputX = 673, kOutputY = 397;
constexpr int kOutput = 5, kBand1Type = 6, kBand1Frequency = 22, kBand1FrequencyRight = 30, kBand1Gain = 54,
              kChannel = 71;

class ValueControlsWindow : public PluginWindowFixture {
protected:
    // Opens the editor in the parent window and waits until it shows.
    void openEditor() {
        ASSERT_EQ(plugin->dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(parent)), 1);
        ASSERT_TRUE(idleUntil([&] {
            XWindowAttributes attributes{};
            return children().size() == 1 && XGetWindowAttributes(display, children()[0], &attributes) &&
                   attributes.map_state == IsViewable;
        }));
    }
    void pointerTo(int x, int y) {
        XTestFakeMotionEvent(display, DefaultScreen(display), x, y, CurrentTime);
        XFlush(display);
        plugin->dispatch(effEditIdle);
    }
    void clickButton(unsigned button) {
        XTestFakeButtonEvent(display, button, True, CurrentTime);
        XTestFakeButtonEvent(display, button, False, CurrentTime);
        XFlush(display);
    }
    // Idles long enough for the window to have handled the events sent so far.
    void settle() {
        int rounds = 0;
        idleUntil([&] { return ++rounds > 10; });
    }
    // Keys as a host hands them on: a character, or a virtual key.
    void typeKeys(const char* text) {
        for (const char* c = text; *c; ++c) plugin->dispatch(effEditKeyDown, *c, 0, nullptr, 0);
        plugin->dispatch(effEditKeyDown, 0, VKEY_RETURN, nullptr, 0);
    }
};

TEST_F(ValueControlsWindow, DraggingAFrequencyKnobUpRaisesItsParameter) {
    plugin->setParameter(kChannel, 1.0f);  // LINK: both sides follow
    plugin->setParameter(kBand1Frequency, 0.5f);
    openEditor();

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

TEST_F(ValueControlsWindow, AWheelTurnAndTypingReachTheirParameters) {
    plugin->setParameter(kOutput, 0.5f);
    plugin->setParameter(kBand1Type, 0.25f);  // peaking: its gain takes typing
    openEditor();

    pointerTo(kOutputX, kOutputY);
    clickButton(4);  // one wheel unit up: a hundredth
    EXPECT_TRUE(idleUntil([&] { return std::fabs(plugin->getParameter(kOutput) - 0.51f) < 1e-5f; }))
        << plugin->getParameter(kOutput);

    pointerTo(kBand1GainX, kBand1GainY);
    clickButton(1);
    clickButton(1);  // at once: a double click opens typing
    settle();
    typeKeys("-3 dB");
    EXPECT_TRUE(idleUntil([&] { return std::fabs(plugin->getParameter(kBand1Gain) - 0.4375f) < 1e-5f; }))
        << plugin->getParameter(kBand1Gain);
    plugin->dispatch(effEditClose);
}

}  // namespace
