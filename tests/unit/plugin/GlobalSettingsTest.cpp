// The user's global settings in the per-user store: read at construction into every preset,
// written on request, with defaults for whatever is missing.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "PluginHarness.h"

namespace fs = std::filesystem;

class GlobalSettings : public ::testing::Test {
protected:
    void SetUp() override {
        char folder[] = "/tmp/tyx-globals-XXXXXX";
        ASSERT_NE(mkdtemp(folder), nullptr);
        dir = folder;
        setenv("TYX_VIREO_CONFIG_DIR", folder, 1);
    }
    void TearDown() override {
        fs::remove_all(dir);
        unsetenv("TYX_VIREO_CONFIG_DIR");
    }
    // A value as the store keeps it: 4 little-endian bytes.
    void writeValue(const char* name, uint32_t v) {
        const unsigned char bytes[4] = {static_cast<unsigned char>(v), static_cast<unsigned char>(v >> 8),
                                        static_cast<unsigned char>(v >> 16), static_cast<unsigned char>(v >> 24)};
        std::ofstream(dir / name, std::ios::binary).write(reinterpret_cast<const char*>(bytes), 4);
    }
    static uint32_t bits(float f) {
        uint32_t b;
        std::memcpy(&b, &f, 4);
        return b;
    }
    fs::path dir;
};

TEST_F(GlobalSettings, StoredValuesReachEveryPresetAndMissingOnesTakeDefaults) {
    writeValue("spancolor", bits(0.40625f));  // step 6: no colour of that number
    writeValue("spanspeed", bits(2.5f / 16));
    writeValue("latencycomp", 0);
    writeValue("autozoom", 0x12345);          // a damaged value is applied as the bits it holds
    std::ofstream(dir / "spanmode", std::ios::binary) << "xy";  // wrong length: default
    PluginHarness h;
    Plugin& p = *h.plugin;
    EXPECT_EQ(p.getParameter(74), 0.40625f);
    char text[32];
    p.getParameterDisplay(74, text);
    EXPECT_STREQ(text, "undef");
    EXPECT_EQ(p.getParameter(75), 2.5f / 16);
    EXPECT_EQ(p.getParameter(76), 3.0f / 32);  // default: average
    EXPECT_EQ(p.getParameter(82), 1.0f / 32);
    int mode = -1;
    p.getLatencyMode(mode);
    EXPECT_EQ(mode, 0);
    for (int preset = 0; preset < presets::kPresetCount; ++preset) EXPECT_EQ(p.getPreset(preset)->values[74], 0.40625f);
}

TEST_F(GlobalSettings, FirstRunKeepsConstructorValuesAndSaveWritesEveryValue) {
    fs::remove_all(dir);
    {
        PluginHarness h;
        Plugin& p = *h.plugin;
        int mode = -1;
        p.getLatencyMode(mode);
        EXPECT_EQ(mode, 2);
        EXPECT_EQ(p.getParameter(74), 1.0f / 32);  // grey
        EXPECT_EQ(p.getParameter(80), 0.25f);
        p.setParameter(74, 2.5f / 16);
        p.setLatencyMode(1);
        EXPECT_TRUE(p.saveGlobalSettings());
    }
    for (const char* name : {"latencycomp", "autozoom", "spantype", "spancolor", "spanspeed", "spanmode", "spanhold",
                             "spanweight", "spanwidth", "spanorder"})
        EXPECT_EQ(fs::file_size(dir / name), 4u) << name;
    PluginHarness again;
    EXPECT_EQ(again.plugin->getParameter(74), 2.5f / 16);
    int mode = -1;
    again.plugin->getLatencyMode(mode);
    EXPECT_EQ(mode, 1);
}
