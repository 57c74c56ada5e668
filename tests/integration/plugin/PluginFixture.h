#pragma once
// Loads the built TyxVireo.so through its entry point, as a host does.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "host/VstHost.h"

class LoadedPluginTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        plugin = vsthost::LoadedPlugin::load(TYX_PLUGIN_PATH, &error);
        ASSERT_TRUE(plugin) << error;
        plugin->open();
        plugin->setSampleRate(44100.0f);
        plugin->setBlockSize(512);
        plugin->log().clear();
    }

    std::unique_ptr<vsthost::LoadedPlugin> plugin;
};
