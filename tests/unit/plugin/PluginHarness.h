#pragma once
// A Plugin linked directly, with a host callback that records what the plug-in tells it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <vector>

#include "plugin/Plugin.h"

struct RecordingHost {
    struct Call {
        VstInt32 opcode;
        VstInt32 index;
        float value;
    };
    std::vector<Call> calls;

    static RecordingHost*& current() {
        static thread_local RecordingHost* host = nullptr;
        return host;
    }
    static VstIntPtr callback(AEffect*, VstInt32 opcode, VstInt32 index, VstIntPtr, void*, float opt) {
        if (opcode == audioMasterVersion) return kVstVersion;
        if (RecordingHost* h = current()) h->calls.push_back({opcode, index, opt});
        return 0;
    }
    std::vector<Call> of(VstInt32 opcode) const {
        std::vector<Call> out;
        for (const Call& c : calls)
            if (c.opcode == opcode) out.push_back(c);
        return out;
    }
};

struct PluginHarness {
    RecordingHost host;
    std::unique_ptr<Plugin> plugin;

    PluginHarness() {
        // Never the developer's own stored settings: a store that does not exist unless the
        // test made one.
        setenv("TYX_VIREO_CONFIG_DIR", "/nonexistent/tyx-vireo-unit-tests", 0);
        RecordingHost::current() = &host;
        plugin = std::make_unique<Plugin>(&RecordingHost::callback);
        host.calls.clear();
    }
    ~PluginHarness() {
        plugin.reset();
        RecordingHost::current() = nullptr;
    }
};

// A test with a fresh plug-in as `p`.
class PluginTest : public ::testing::Test {
protected:
    PluginHarness h;
    Plugin& p = *h.plugin;
};

// Runs a sine of f Hz and amplitude a into both inputs of a plug-in resumed at 48 kHz with
// blocks of 512, for `seconds`; the peak of the left output over the second half.
inline float peakOfSine(Plugin& p, double f, double seconds, float a = 0.5f) {
    constexpr int kBlock = 512;
    constexpr double kRate = 48000.0;
    const int total = static_cast<int>(seconds * kRate);
    std::vector<float> in(kBlock), outL(kBlock), outR(kBlock);
    float* inputs[2] = {in.data(), in.data()};
    float* outputs[2] = {outL.data(), outR.data()};
    float peak = 0.0f;
    for (int start = 0; start < total; start += kBlock) {
        for (int i = 0; i < kBlock; ++i) in[i] = a * static_cast<float>(std::sin(2.0 * std::numbers::pi * f * (start + i) / kRate));
        p.processReplacing(inputs, outputs, kBlock);
        if (2 * start >= total)
            for (float y : outL) peak = std::max(peak, std::fabs(y));
    }
    return peak;
}
