#pragma once
// The built plug-in loaded as a host loads it, with an Xvfb server and a parent window of the
// test's own for its editor, and the host's idle timer stood in for by idleUntil.

#include <gtest/gtest.h>

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
        plugin.reset();
        XvfbFixture::TearDown();
    }

    // Pumps the editor's idle until the condition holds (two seconds).
    template <typename Condition>
    bool idleUntil(Condition condition) {
        for (int i = 0; i < 200; ++i) {
            plugin->dispatch(effEditIdle);
            if (condition()) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    std::unique_ptr<vsthost::LoadedPlugin> plugin;
};
