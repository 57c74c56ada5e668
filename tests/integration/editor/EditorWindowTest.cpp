// The built plug-in's editor in a real X11 window: a parent window of the test's own on an Xvfb
// server started here, the editor opened through the dispatcher, clicked with the X test
// extension, and opened and closed again and again.

#include <gtest/gtest.h>

#include <X11/extensions/XTest.h>

#include <dirent.h>

#include "PluginWindowFixture.h"

namespace {

int openFileCount() {
    int count = 0;
    if (DIR* dir = opendir("/proc/self/fd")) {
        while (readdir(dir)) ++count;
        closedir(dir);
    }
    return count;
}

constexpr int kPowerX = 678, kPowerY = 462;

using EditorWindow = PluginWindowFixture;

TEST_F(EditorWindow, OpensInTheHostWindowAndAnswersAClick) {
    ERect* rect = nullptr;
    ASSERT_EQ(plugin->dispatch(effEditGetRect, 0, 0, &rect), 1);
    EXPECT_EQ(rect->right - rect->left, 750);
    EXPECT_EQ(rect->bottom - rect->top, 509);

    ASSERT_EQ(plugin->dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(parent)), 1);
    ASSERT_EQ(children().size(), 1u);
    const Window child = children()[0];
    XWindowAttributes attributes{};
    ASSERT_TRUE(idleUntil([&] {
        XGetWindowAttributes(display, child, &attributes);
        return attributes.map_state == IsViewable;
    }));

    const bool powerBefore = plugin->getParameter(0) >= 0.5f;
    XTestFakeMotionEvent(display, DefaultScreen(display), kPowerX, kPowerY, CurrentTime);
    XTestFakeButtonEvent(display, 1, True, CurrentTime);
    XTestFakeButtonEvent(display, 1, False, CurrentTime);
    XFlush(display);
    EXPECT_TRUE(idleUntil([&] { return (plugin->getParameter(0) >= 0.5f) != powerBefore; }));

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

}  // namespace
