// A host that delivers the editor window's events itself (through the window's _XEventProc
// property, outside effEditIdle) while its audio thread automates the same button. Meant to run
// under ThreadSanitizer: the button's value is written by the click and by the automation, and
// both must happen under the editor's lock.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include "gui/Editor.h"
#include "plugin/Plugin.h"
#include "presets/Parameters.h"
#include "support/QuietHost.h"
#include "unit/toolkit/XvfbFixture.h"

namespace {

constexpr int kPowerX = 678, kPowerY = 462;

using HostDispatchedEvents = XvfbFixture;

TEST_F(HostDispatchedEvents, ClicksAndAutomationMeetUnderTheEditorLock) {
    setenv("TYX_VIREO_CONFIG_DIR", "/nonexistent/tyx-vireo-threaded-tests", 0);
    Plugin plugin(&quietHost);
    Editor& editor = *plugin.getPluginEditor();
    ASSERT_TRUE(editor.open(reinterpret_cast<void*>(parent)));
    const Window child = children().at(0);
    const EventProc proc = eventProcOf(child);
    ASSERT_NE(proc, nullptr);

    std::atomic<bool> done{false};
    std::thread automation([&] {
        // What the effect passes on to its editor after an automated change.
        for (int i = 0; !done.load(); ++i) editor.setParameter(params::kPower, (i & 1) ? 1.0f : 0.0f);
    });
    XEvent event{};
    event.xbutton.display = display;
    event.xbutton.window = child;
    event.xbutton.button = Button1;
    event.xbutton.x = kPowerX;
    event.xbutton.y = kPowerY;
    for (int i = 0; i < 200; ++i) {
        event.xbutton.type = ButtonPress;
        proc(&event);
        event.xbutton.type = ButtonRelease;
        proc(&event);
        if (i % 20 == 0) editor.idle();
    }
    done = true;
    automation.join();
    editor.close();
    EXPECT_FALSE(editor.isOpen());
}

}  // namespace
