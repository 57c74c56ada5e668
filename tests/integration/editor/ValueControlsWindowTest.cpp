// The built plug-in's editor in a real X11 window on an Xvfb server: a knob dragged with the X
// test extension moves its parameter as the drag rule says.

#include <gtest/gtest.h>

#include <X11/extensions/XTest.h>

#include <chrono>
#include <cmath>
#include <thread>

#include "host/VstHost.h"
#include "unit/toolkit/XvfbFixture.h"

namespace {

constexpr int kBand1FrequencyX = 98, kBand1FrequencyY = 319;
constexpr int kBand1Frequency = 22, kBand1FrequencyRight = 30, kChannel = 71;

class ValueControlsWindow : public XvfbFixture {
protected:
    void SetUp() override {
        XvfbFixture::SetUp();
        if (IsSkipped()) return;
        std::string error;
        plugin = vsthost::LoadedPlugin::load(TYX_PLUGIN_PATH, &error);
        ASSERT_TRUE(plugin) << error;
        plugin->open();
    }
    void TearDown() override {
        plugin.reset();
        XvfbFixture::TearDown();
    }

    template <typename Condition>
    bool idleUntil(Condition condition) {
        for (int i = 0; i < 200; ++i) {
            plugin->dispatch(effEditIdle);
            if (condition()) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    void pointerTo(int x, int y) {
        XTestFakeMotionEvent(display, DefaultScreen(display), x, y, CurrentTime);
        XFlush(display);
        plugin->dispatch(effEditIdle);
    }

    std::unique_ptr<vsthost::LoadedPlugin> plugin;
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
