// The built plug-in's editor in a real X11 window: a parent window of the test's own on an Xvfb
// server, the editor opened through the dispatcher, its controls clicked, dragged and wheeled
// with the X test extension and typed into with keys the host passes on, each outcome read
// back through the parameters; and the window opened and closed again and again.

#include <gtest/gtest.h>

#include <dirent.h>

#include <algorithm>
#include <cmath>

#include "PluginWindowFixture.h"
#include "gui/toolkit/CButtonState.h"

namespace {

int openFileCount() {
    int count = 0;
    if (DIR* dir = opendir("/proc/self/fd")) {
        while (readdir(dir)) ++count;
        closedir(dir);
    }
    return count;
}

// Parameter indexes, and where band 1's controls and the others used here sit.
constexpr int kPower = 0, kOutput = 5, kType = 6, kTypeR = 14, kFreq = 22, kGain = 54, kPlotRange = 70;
constexpr int kPowerX = 678, kPowerY = 462;
constexpr int kGainX = 97, kGainY = 376, kOutputX = 673, kOutputY = 397;
constexpr float kPeaking = 3.5f / 14;
constexpr int kTypeSteps = 14;

using EditorWindow = PluginWindowFixture;

TEST_F(EditorWindow, OpensInTheHostWindowAndAnswersAClick) {
    ERect* rect = nullptr;
    ASSERT_EQ(plugin->dispatch(effEditGetRect, 0, 0, &rect), 1);
    EXPECT_EQ(rect->right - rect->left, 750);
    EXPECT_EQ(rect->bottom - rect->top, 509);
    openEditor();

    const bool powerBefore = plugin->getParameter(kPower) >= 0.5f;
    pointerTo(kPowerX, kPowerY);
    clickButton();
    EXPECT_TRUE(idleUntil([&] { return (plugin->getParameter(kPower) >= 0.5f) != powerBefore; }));

    plugin->dispatch(effEditClose);
    XSync(display, False);
    EXPECT_EQ(children().size(), 0u);
}

TEST_F(EditorWindow, TwoHundredOpenIdleCloseCyclesLeaveNoWindowOrFileBehind) {
    const int filesBefore = openFileCount();
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(plugin->dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(parent)), 1) << i;
        plugin->dispatch(effEditIdle);
        plugin->dispatch(effEditClose);
    }
    XSync(display, False);
    EXPECT_EQ(children().size(), 0u);
    EXPECT_EQ(openFileCount(), filesBefore);
}

TEST_F(EditorWindow, AWheelTurnAndTypingReachTheirParameters) {
    plugin->setParameter(kOutput, 0.5f);
    plugin->setParameter(kType, kPeaking);  // its gain takes typing
    openEditor();
    pointerTo(kOutputX, kOutputY);
    clickButton(4);  // one wheel unit up: a hundredth
    EXPECT_TRUE(idleUntil([&] { return std::fabs(plugin->getParameter(kOutput) - 0.51f) < 1e-5f; }))
        << plugin->getParameter(kOutput);

    pointerTo(kGainX, kGainY);
    clickButton();
    clickButton();  // at once: a double click opens typing
    settle();
    for (const char* c = "-3 dB"; *c; ++c) plugin->dispatch(effEditKeyDown, *c, 0, nullptr, 0);
    plugin->dispatch(effEditKeyDown, 0, VKEY_RETURN, nullptr, 0);
    EXPECT_TRUE(idleUntil([&] { return std::fabs(plugin->getParameter(kGain) - 0.4375f) < 1e-5f; }))
        << plugin->getParameter(kGain);
}

TEST_F(EditorWindow, ClickOpensTheTypeListAndASecondClickPicksARow) {
    // Band 1's type switch: a spot that opens its list; the current shape's row is centred
    // there too, the others 16 pixels apart.
    constexpr int kListX = 105, kRowX = 97, kCurrentRowY = 259;
    const auto bandOneType = [&] { return std::min(static_cast<int>(plugin->getParameter(kType) * kTypeSteps), kTypeSteps - 1); };
    openEditor();
    const int before = bandOneType();
    const int shape = before % 7;
    const int row = (shape + 1) % 7;  // the next shape, on the same side of bypass

    pointerTo(kListX, kCurrentRowY);
    clickButton();
    for (int i = 0; i < 20; ++i) plugin->dispatch(effEditIdle);  // the list opens; nothing changes yet
    EXPECT_EQ(bandOneType(), before);
    pointerTo(kRowX, kCurrentRowY + 16 * (row - shape));
    clickButton();
    EXPECT_TRUE(idleUntil([&] { return bandOneType() == before - shape + row; })) << before << " -> " << bandOneType();
}

TEST_F(EditorWindow, DraggingAPlotHandleMovesItsBandsFrequencyAndGain) {
    // A band at frequency value 0.5 and 0 dB sits at pixel 70 + 453/2 on the 0 dB line at 99.
    constexpr int kHandleX = 296, kHandleY = 99, kDx = 50, kDy = -29;
    plugin->setParameter(kPlotRange, 0.0f);  // ±24 dB
    plugin->setParameter(kType, kPeaking);
    plugin->setParameter(kTypeR, kPeaking);
    plugin->setParameter(kFreq, 0.5f);
    plugin->setParameter(kGain, 0.5f);
    openEditor();

    pointerTo(kHandleX, kHandleY);
    settle();
    button(1, true);
    pointerTo(kHandleX + kDx / 2, kHandleY + kDy / 2);
    settle();
    pointerTo(kHandleX + kDx, kHandleY + kDy);
    settle();
    button(1, false);

    const float wantFrequency = 0.5f + kDx / 453.0f, wantGain = 0.5f - kDy / 126.0f;
    EXPECT_TRUE(idleUntil([&] {
        return std::fabs(plugin->getParameter(kFreq) - wantFrequency) < 2.0f / 453 &&
               std::fabs(plugin->getParameter(kGain) - wantGain) < 2.0f / 126;
    })) << plugin->getParameter(kFreq) << " " << plugin->getParameter(kGain);
}

}  // namespace
