#pragma once
// Drives the built plug-in through its entry point the way a host does.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "host/VstHost.h"
#include "presets/Parameters.h"
#include "support/TempStore.h"

namespace enginehost {

using params::stepCentre;
inline float onOff(bool on) { return stepCentre(on ? 1 : 0, 2); }

// The plug-in loaded and opened with a store folder of its own, rate and block size set, and
// resumed when asked. With mode >= 0 the store holds that latency mode; otherwise it does not
// exist, as on a user's first run.
struct Started {
    ScopedStoreFolder folder;
    std::unique_ptr<vsthost::LoadedPlugin> plugin;

    Started(float rate, int blockSize, int latencyMode, bool resume = true) {
        if (latencyMode >= 0) folder.writeDword("latencycomp", static_cast<uint32_t>(latencyMode));
        std::string error;
        plugin = vsthost::LoadedPlugin::load(TYX_PLUGIN_PATH, &error);
        EXPECT_TRUE(plugin) << error;
        if (!plugin) return;
        plugin->open();
        plugin->setHostRate(rate);
        plugin->setHostBlockSize(blockSize);
        plugin->setSampleRate(rate);
        plugin->setBlockSize(blockSize);
        if (resume) plugin->resume();
    }
};

// Pushes both channels through the plug-in in host blocks of `block` samples (the last one
// shorter), or of the sizes in `sizes` taken in turn when given.
template <typename Sample>
void run(vsthost::LoadedPlugin& plugin, const std::vector<Sample>& inL, const std::vector<Sample>& inR,
         std::vector<Sample>& outL, std::vector<Sample>& outR, int block, const std::vector<int>& sizes = {}) {
    const size_t total = inL.size();
    outL.assign(total, Sample(0));
    outR.assign(total, Sample(0));
    for (size_t at = 0, k = 0; at < total;) {
        const size_t n = std::min<size_t>(sizes.empty() ? block : sizes[k++ % sizes.size()], total - at);
        Sample* in[2] = {const_cast<Sample*>(inL.data()) + at, const_cast<Sample*>(inR.data()) + at};
        Sample* out[2] = {outL.data() + at, outR.data() + at};
        plugin.process(in, out, static_cast<int>(n));
        at += n;
    }
}

// After a pause: the engine starts again from silence.
inline void restart(vsthost::LoadedPlugin& plugin) { plugin.suspend(), plugin.resume(); }

inline size_t argmaxAbs(const std::vector<double>& y) {
    return std::max_element(y.begin(), y.end(), [](double a, double b) { return std::fabs(a) < std::fabs(b); }) -
           y.begin();
}

}  // namespace enginehost

// A first run of a new user (no store folder), set to 44100 Hz in blocks of 512, not resumed.
class LoadedPluginTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(plugin); }
    enginehost::Started started{44100.0f, 512, -1, false};
    vsthost::LoadedPlugin* plugin = started.plugin.get();
};
