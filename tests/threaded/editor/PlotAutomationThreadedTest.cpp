// The response plot drawn by the editor's idle while another thread automates band values and
// the analyzer and processes audio: the plot reads curves and bars that thread is changing.
// Meant to run under ThreadSanitizer.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

#include "gui/Editor.h"
#include "plugin/Plugin.h"
#include "presets/Parameters.h"
#include "support/QuietHost.h"

TEST(PlotThreads, CurvesAndBarsChangeWhileThePlotDraws) {
    setenv("TYX_VIREO_CONFIG_DIR", "/nonexistent/tyx-vireo-threaded-tests", 0);
    Plugin plugin(&quietHost);
    plugin.setSampleRate(48000);
    plugin.setBlockSize(256);
    plugin.resume();
    plugin.setParameter(params::kType, params::stepCentre(3, params::kBandTypeSteps));
    plugin.setParameter(params::kSpan, 1.0f);
    Editor& editor = *plugin.getPluginEditor();
    ASSERT_TRUE(editor.openOffscreen());

    std::atomic<bool> done{false};
    std::thread host([&] {
        std::vector<float> left(256), right(256), outLeft(256), outRight(256);
        float* in[2] = {left.data(), right.data()};
        float* out[2] = {outLeft.data(), outRight.data()};
        for (int i = 0; !done.load(); ++i) {
            for (size_t n = 0; n < left.size(); ++n) left[n] = right[n] = (n % 16 < 8) ? 0.5f : -0.5f;
            plugin.setParameter(params::kGain, (i % 10) / 10.0f);
            plugin.setParameter(params::kFreq, (i % 7) / 7.0f);
            plugin.processReplacing(in, out, 256);
        }
    });
    for (int i = 0; i < 30; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(26));
        editor.idle();
    }
    done = true;
    host.join();
    editor.close();
    plugin.suspend();
}
