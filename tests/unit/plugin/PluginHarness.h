#pragma once
// A Plugin linked directly, with a host callback that records what the plug-in tells it.

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
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
