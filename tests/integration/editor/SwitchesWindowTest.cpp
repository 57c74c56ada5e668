// A band type switch of the built plug-in's editor in a real X11 window on an Xvfb server:
// one click with the X test extension opens its list, a second picks a row, and the band's
// type parameter follows.

#include <gtest/gtest.h>

#include <X11/extensions/XTest.h>

#include <algorithm>

#include "integration/editor/PluginWindowFixture.h"

namespace {

// Band 1's type switch: where a click opens its list, and the list's rows (the current shape's
// row 3 pixels below the switch's top, the others 16 pixels apart).
constexpr int kListSpotX = 105, kListSpotY = 259;
constexpr int kRowX = 97, kCurrentRowCentreY = 259;
constexpr int kTypeSteps = 14;

class SwitchesWindow : public PluginWindowFixture {
protected:
    void clickAt(int x, int y) {
        XTestFakeMotionEvent(display, DefaultScreen(display), x, y, CurrentTime);
        XTestFakeButtonEvent(display, 1, True, CurrentTime);
        XTestFakeButtonEvent(display, 1, False, CurrentTime);
        XFlush(display);
    }
    int bandOneType() { return std::min(static_cast<int>(plugin->getParameter(6) * kTypeSteps), kTypeSteps - 1); }
};

TEST_F(SwitchesWindow, ClickOpensTheTypeListAndASecondClickPicksARow) {
    ASSERT_EQ(plugin->dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(parent)), 1);
    ASSERT_EQ(children().size(), 1u);
    XWindowAttributes attributes{};
    ASSERT_TRUE(idleUntil([&] {
        XGetWindowAttributes(display, children()[0], &attributes);
        return attributes.map_state == IsViewable;
    }));

    const int before = bandOneType();
    const int shape = before % 7;
    const int row = (shape + 1) % 7;  // the next shape, on the same side of bypass
    const int expected = before - shape + row;

    clickAt(kListSpotX, kListSpotY);
    for (int i = 0; i < 20; ++i) plugin->dispatch(effEditIdle);  // the list opens; nothing changes yet
    EXPECT_EQ(bandOneType(), before);
    clickAt(kRowX, kCurrentRowCentreY + 16 * (row - shape));
    EXPECT_TRUE(idleUntil([&] { return bandOneType() == expected; })) << before << " -> " << bandOneType();

    plugin->dispatch(effEditClose);
}

}  // namespace
