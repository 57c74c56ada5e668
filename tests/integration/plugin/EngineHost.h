#pragma once
// Drives the built plug-in's audio path the way a host does: a store folder of the test's own
// (optionally holding a latency mode), the usual start-up calls, parameters set by index, and
// signals pushed through the process calls in host blocks.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include "host/VstHost.h"
#include "presets/Parameters.h"

namespace enginehost {

// Normalized values that select step k of an n-step parameter.
inline float stepValue(int k, int n) { return (static_cast<float>(k) + 0.5f) / static_cast<float>(n); }
inline float onOff(bool on) { return stepValue(on ? 1 : 0, 2); }

// A fresh store folder; with mode >= 0 it holds the latency mode as a 4-byte little-endian value.
inline std::string makeStore(int latencyMode) {
    char folder[] = "/tmp/tyx-vireo-path-XXXXXX";
    if (!mkdtemp(folder)) return {};
    if (latencyMode >= 0) {
        const std::string path = std::string(folder) + "/latencycomp";
        if (FILE* f = std::fopen(path.c_str(), "wb")) {
            const uint32_t v = static_cast<uint32_t>(latencyMode);
            const unsigned char bytes[4] = {static_cast<unsigned char>(v), static_cast<unsigned char>(v >> 8),
                                            static_cast<unsigned char>(v >> 16), static_cast<unsigned char>(v >> 24)};
            std::fwrite(bytes, 1, 4, f);
            std::fclose(f);
        }
    } else {
        rmdir(folder);  // a first run: no store at all
    }
    return folder;
}

inline void removeStore(const std::string& folder) {
    if (folder.empty()) return;
    unlink((folder + "/latencycomp").c_str());
    rmdir(folder.c_str());
}

// Loaded, opened, rate and block size set, resumed. mode < 0 leaves the store empty.
inline std::unique_ptr<vsthost::LoadedPlugin> start(float rate, int blockSize, int latencyMode, std::string* store) {
    *store = makeStore(latencyMode);
    setenv("TYX_VIREO_CONFIG_DIR", store->c_str(), 1);
    std::string error;
    auto plugin = vsthost::LoadedPlugin::load(TYX_PLUGIN_PATH, &error);
    EXPECT_TRUE(plugin) << error;
    if (!plugin) return plugin;
    plugin->open();
    plugin->setHostRate(rate);
    plugin->setHostBlockSize(blockSize);
    plugin->setSampleRate(rate);
    plugin->setBlockSize(blockSize);
    plugin->resume();
    return plugin;
}

// Pushes both channels through the plug-in in host blocks of `block` samples (the last one
// shorter), or of the sizes in `sizes` taken in turn when given.
template <typename Sample>
void run(vsthost::LoadedPlugin& plugin, const std::vector<Sample>& inL, const std::vector<Sample>& inR,
         std::vector<Sample>& outL, std::vector<Sample>& outR, int block, const std::vector<int>& sizes = {}) {
    const size_t total = inL.size();
    outL.assign(total, Sample(0));
    outR.assign(total, Sample(0));
    size_t at = 0, k = 0;
    while (at < total) {
        int n = sizes.empty() ? block : sizes[k++ % sizes.size()];
        if (static_cast<size_t>(n) > total - at) n = static_cast<int>(total - at);
        Sample* in[2] = {const_cast<Sample*>(inL.data()) + at, const_cast<Sample*>(inR.data()) + at};
        Sample* out[2] = {outL.data() + at, outR.data() + at};
        plugin.process(in, out, n);
        at += static_cast<size_t>(n);
    }
}

// After a pause: the engine starts again from silence.
inline void restart(vsthost::LoadedPlugin& plugin) {
    plugin.suspend();
    plugin.resume();
}

inline size_t argmaxAbs(const std::vector<double>& y) {
    size_t best = 0;
    for (size_t i = 1; i < y.size(); ++i)
        if (std::fabs(y[i]) > std::fabs(y[best])) best = i;
    return best;
}

}  // namespace enginehost
