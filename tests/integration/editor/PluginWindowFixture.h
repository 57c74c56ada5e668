#pragma once
// The built plug-in loaded as a host loads it, with the Xvfb parent window of XvfbFixture to
// open its editor in, the host's idle timer pumped by hand, and the pointer moved and clicked
// with the X test extension.

#include <gtest/gtest.h>

#include <X11/extensions/XTest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "host/VstHost.h"
#include "unit/toolkit/XvfbFixture.h"

class PluginWindowFixture : public XvfbFixture {
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
        if (plugin) plugin->dispatch(effEditClose);
        plugin.reset();
        XvfbFixture::TearDown();
    }

    // Pumps the editor's idle, as a host's timer would, until the condition holds (two seconds).
    template <typename Condition>
    bool idleUntil(Condition condition) {
        for (int i = 0; i < 200; ++i) {
            plugin->dispatch(effEditIdle);
            if (condition()) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    // Idles long enough for the window to have handled the events sent so far.
    void settle() {
        for (int i = 0; i < 10; ++i) {
            plugin->dispatch(effEditIdle);
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
        }
    }

    // Opens the editor in the parent window as its only child and waits until it shows.
    void openEditor() {
        ASSERT_EQ(plugin->dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(parent)), 1);
        ASSERT_EQ(children().size(), 1u);
        ASSERT_TRUE(idleUntil([&] {
            XWindowAttributes attributes{};
            return XGetWindowAttributes(display, children()[0], &attributes) && attributes.map_state == IsViewable;
        }));
    }
    void pointerTo(int x, int y) {
        XTestFakeMotionEvent(display, DefaultScreen(display), x, y, CurrentTime);
        XFlush(display);
        plugin->dispatch(effEditIdle);
    }
    void button(unsigned which, bool down) {
        XTestFakeButtonEvent(display, which, down, CurrentTime);
        XFlush(display);
    }
    void clickButton(unsigned which = 1) {
        button(which, true);
        button(which, false);
    }

    std::unique_ptr<vsthost::LoadedPlugin> plugin;
};
