#pragma once
// Loads the built TyxVireo.so through its entry point, as a host does.

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <unistd.h>

#include "host/VstHost.h"

class LoadedPluginTest : public ::testing::Test {
protected:
    void SetUp() override {
        // A store folder that does not exist: the first run of a new user.
        char folder[] = "/tmp/tyx-vireo-XXXXXX";
        ASSERT_NE(mkdtemp(folder), nullptr);
        rmdir(folder);
        setenv("TYX_VIREO_CONFIG_DIR", folder, 1);
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
