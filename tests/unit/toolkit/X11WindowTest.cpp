// The frame in a real X11 child window, on an Xvfb server that the test starts itself: input
// made with the X test extension arrives as the frame's events, and hosts that dispatch through
// _XEventProc reach a button too.
#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include "ToolkitSupport.h"
#include "XvfbFixture.h"
#include "gui/toolkit/CKickButton.h"

namespace {

class X11Window : public XvfbFixture {
protected:
    // Opens the frame in the parent window and idles it until the window shows; answers the window.
    Window openShown(CFrame& frame) {
        if (!frame.open(reinterpret_cast<void*>(parent)) || children().size() != 1) return 0;
        const Window child = children()[0];
        XWindowAttributes attributes;
        const bool shown = idleUntil(frame, [&] {
            XGetWindowAttributes(display, child, &attributes);
            return attributes.map_state == IsViewable;
        });
        return shown ? child : 0;
    }
};

constexpr CRect kButton(100, 100, 140, 130);

// Records the button states of presses and the wheel steps it gets.
struct InputLog : CView {
    std::vector<int32_t>* presses;
    std::vector<float>* wheel;
    InputLog(std::vector<int32_t>* presses, std::vector<float>* wheel)
        : CView(CRect(0, 0, 750, 509)), presses(presses), wheel(wheel) {}
    CMouseEventResult onMouseDown(CPoint&, const CButtonState& b) override {
        presses->push_back(b);
        return kMouseEventHandled;
    }
    CMouseEventResult onMouseUp(CPoint&, const CButtonState&) override { return kMouseEventHandled; }
    bool onWheel(const CPoint&, const float& distance, const CButtonState&) override {
        wheel->push_back(distance);
        return true;
    }
};

TEST_F(X11Window, ClicksModifiersAndWheelArriveFromXAndTheWindowShowsTheFrame) {
    std::vector<int32_t> presses;
    std::vector<float> wheel;
    CFrame frame(CRect(0, 0, 750, 509));
    frame.setBackgroundColor(CColor{30, 60, 90, 255});
    frame.addView(new InputLog(&presses, &wheel));
    const Window child = openShown(frame);
    ASSERT_NE(child, 0u);
    auto clickButton = [&](unsigned button) {
        XTestFakeButtonEvent(display, button, True, CurrentTime);
        XTestFakeButtonEvent(display, button, False, CurrentTime);
    };
    const KeyCode control = XKeysymToKeycode(display, XK_Control_L);
    XTestFakeMotionEvent(display, DefaultScreen(display), 200, 200, CurrentTime);
    clickButton(1);
    clickButton(1);  // at once: a double click
    clickButton(1);  // a third press starts a new pair
    XTestFakeKeyEvent(display, control, True, CurrentTime);
    clickButton(3);
    XTestFakeKeyEvent(display, control, False, CurrentTime);
    clickButton(4);
    clickButton(5);
    clickButton(5);
    XFlush(display);
    EXPECT_TRUE(idleUntil(frame, [&] { return presses.size() == 4 && wheel.size() == 3; }));
    EXPECT_EQ(presses, (std::vector<int32_t>{kLButton, kLButton | kDoubleClick, kLButton, kRButton | kControl}));
    EXPECT_EQ(wheel, (std::vector<float>{1, -1, -1}));

    frame.idle();
    XImage* shot = XGetImage(display, child, 0, 0, 750, 509, AllPlanes, ZPixmap);
    ASSERT_NE(shot, nullptr);
    EXPECT_EQ(XGetPixel(shot, 10, 10) & 0xffffff, 0x1e3c5au);
    XDestroyImage(shot);
}

TEST_F(X11Window, HostsMayDispatchEventsThroughTheEventProcProperty) {
    SpyListener spy;
    CFrame frame(CRect(0, 0, 750, 509));
    frame.addView(new CKickButton(kButton, &spy, 42, 30, nullptr));
    ASSERT_TRUE(frame.open(reinterpret_cast<void*>(parent)));
    const Window child = children().at(0);

    const EventProc proc = eventProcOf(child);
    ASSERT_NE(proc, nullptr);

    XEvent event{};
    event.xbutton.type = ButtonPress;
    event.xbutton.display = display;
    event.xbutton.window = child;
    event.xbutton.button = Button1;
    event.xbutton.x = 110;
    event.xbutton.y = 110;
    proc(&event);
    event.xbutton.type = ButtonRelease;
    proc(&event);
    EXPECT_EQ(spy.changedValues(), (std::vector<float>{1, 0}));
    event.xbutton.window = parent;  // not ours: ignored
    proc(&event);
    EXPECT_EQ(spy.changedValues().size(), 2u);
}

TEST_F(X11Window, ABadParentFailsCleanlyAndTheFrameStaysOffScreen) {
    CFrame frame(CRect(0, 0, 10, 10));
    EXPECT_FALSE(frame.open(reinterpret_cast<void*>(uintptr_t{0x7fffff0})));
    EXPECT_FALSE(frame.open(nullptr));
    EXPECT_FALSE(frame.isWindowOpen());
}

}  // namespace
