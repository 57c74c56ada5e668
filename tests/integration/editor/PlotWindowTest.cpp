// The built plug-in's response plot in a real X11 window on Xvfb: a handle dragged with the X
// test extension moves its band's frequency and gain parameters.

#include <gtest/gtest.h>

#include <X11/extensions/XTest.h>

#include <chrono>
#include <cmath>
#include <thread>

#include "integration/editor/PluginWindowFixture.h"

namespace {

// Parameter indexes of band 1 and the plot range.
constexpr int kType = 6, kTypeR = 14, kFreq = 22, kGain = 54, kPlotRange = 70;
constexpr float kPeaking = 3.5f / 14;
// A band at frequency value 0.5 and 0 dB sits at pixel 70 + 453/2 on the 0 dB line at 99.
constexpr int kHandleX = 296, kHandleY = 99;
constexpr int kDx = 50, kDy = -29;

class PlotWindow : public PluginWindowFixture {
protected:
    void TearDown() override {
        if (plugin) plugin->dispatch(effEditClose);
        PluginWindowFixture::TearDown();
    }
    void pointerTo(int x, int y) {
        XTestFakeMotionEvent(display, DefaultScreen(display), x, y, CurrentTime);
        XFlush(display);
        for (int i = 0; i < 10; ++i) {  // a few idle cycles: the editor takes the event
            plugin->dispatch(effEditIdle);
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
        }
    }
};

TEST_F(PlotWindow, DraggingAHandleMovesItsBandsFrequencyAndGain) {
    plugin->setParameter(kPlotRange, 0.0f);  // ±24 dB
    plugin->setParameter(kType, kPeaking);
    plugin->setParameter(kTypeR, kPeaking);
    plugin->setParameter(kFreq, 0.5f);
    plugin->setParameter(kGain, 0.5f);
    ASSERT_EQ(plugin->dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(parent)), 1);
    ASSERT_EQ(children().size(), 1u);
    XWindowAttributes attributes{};
    ASSERT_TRUE(idleUntil([&] {
        XGetWindowAttributes(display, children()[0], &attributes);
        return attributes.map_state == IsViewable;
    }));

    pointerTo(kHandleX, kHandleY);
    XTestFakeButtonEvent(display, 1, True, CurrentTime);
    XFlush(display);
    pointerTo(kHandleX + kDx / 2, kHandleY + kDy / 2);
    pointerTo(kHandleX + kDx, kHandleY + kDy);
    XTestFakeButtonEvent(display, 1, False, CurrentTime);
    XFlush(display);

    const float wantFrequency = 0.5f + kDx / 453.0f, wantGain = 0.5f - kDy / 126.0f;
    EXPECT_TRUE(idleUntil([&] {
        return std::fabs(plugin->getParameter(kFreq) - wantFrequency) < 2.0f / 453 &&
               std::fabs(plugin->getParameter(kGain) - wantGain) < 2.0f / 126;
    })) << plugin->getParameter(kFreq) << " " << plugin->getParameter(kGain);
}

}  // namespace
