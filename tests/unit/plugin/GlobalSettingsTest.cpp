// The user's global settings in the per-user store: read at construction into every preset,
// written on request, with defaults for whatever is missing.

#include <gtest/gtest.h>

#include <bit>
#include <filesystem>

#include "PluginHarness.h"
#include "support/TempStore.h"

using namespace params;

namespace {

int latencyModeOf(const Plugin& p) {
    int mode = -1;
    p.getLatencyMode(mode);
    return mode;
}

}  // namespace

TEST(GlobalSettings, StoredValuesReachEveryPresetAndMissingOnesTakeDefaults) {
    ScopedStoreFolder folder;
    folder.writeDword("spancolor", std::bit_cast<uint32_t>(0.40625f));  // step 6: no colour of that number
    folder.writeDword("spanspeed", std::bit_cast<uint32_t>(2.5f / 16));
    folder.writeDword("latencycomp", 0);
    folder.writeDword("autozoom", 0x12345);  // a damaged value is applied as the bits it holds
    folder.writeValue("spanmode", "xy");     // wrong length: default
    PluginHarness h;
    Plugin& p = *h.plugin;
    EXPECT_EQ(p.getParameter(kSpanColor), 0.40625f);
    char text[32];
    p.getParameterDisplay(kSpanColor, text);
    EXPECT_STREQ(text, "undef");
    EXPECT_EQ(p.getParameter(kSpanSpeed), 2.5f / 16);
    EXPECT_EQ(p.getParameter(kSpanMode), 3.0f / 32);  // default: average
    EXPECT_EQ(p.getParameter(kSpanWidth), 1.0f / 32);
    EXPECT_EQ(latencyModeOf(p), 0);
    for (int preset = 0; preset < presets::kPresetCount; ++preset)
        EXPECT_EQ(p.getPreset(preset)->values[kSpanColor], 0.40625f);
}

TEST(GlobalSettings, FirstRunKeepsConstructorValuesAndSaveWritesEveryValue) {
    ScopedStoreFolder folder;  // its store does not exist yet
    {
        PluginHarness h;
        Plugin& p = *h.plugin;
        EXPECT_EQ(latencyModeOf(p), 2);
        EXPECT_EQ(p.getParameter(kSpanColor), 1.0f / 32);  // grey
        EXPECT_EQ(p.getParameter(kAutoZoom), 0.25f);
        p.setParameter(kSpanColor, 2.5f / 16);
        p.setLatencyMode(1);
        EXPECT_TRUE(p.saveGlobalSettings());
    }
    for (const char* name : {"latencycomp", "autozoom", "spantype", "spancolor", "spanspeed", "spanmode", "spanhold",
                             "spanweight", "spanwidth", "spanorder"})
        EXPECT_EQ(std::filesystem::file_size(folder.store() + "/" + name), 4u) << name;
    PluginHarness again;
    EXPECT_EQ(again.plugin->getParameter(kSpanColor), 2.5f / 16);
    EXPECT_EQ(latencyModeOf(*again.plugin), 1);
}
