// The effect passing automated switch, output, band and Channel values to its editor from the audio
// thread while the user-interface thread opens the editor (off screen), idles it and closes it
// again, over and over.
// Meant to run under ThreadSanitizer: the editor's controls are only touched under its lock,
// and a value that arrives while the frame is busy is shown by the next idle.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "gui/Editor.h"
#include "plugin/Plugin.h"
#include "presets/Parameters.h"
#include "support/QuietHost.h"

namespace {
constexpr int kAutomated[] = {params::kPower,  params::kFat,      params::kLinPhase,
                               params::kOutput, params::kGain + 2, params::kChannel};
}  // namespace

TEST(EditorThreads, AutomationWhileTheEditorOpensIdlesAndCloses) {
    setenv("TYX_VIREO_CONFIG_DIR", "/nonexistent/tyx-vireo-threaded-tests", 0);
    Plugin plugin(&quietHost);
    Editor& editor = *plugin.getPluginEditor();
    std::atomic<bool> done{false};
    std::thread automation([&] {
        for (int i = 0; !done.load(); ++i) {
            const float v = (i & 1) ? 1.0f : 0.0f;
            for (int index : kAutomated) editor.setParameter(index, v);
        }
    });
    for (int cycle = 0; cycle < 20; ++cycle) {
        ASSERT_TRUE(editor.openOffscreen());
        for (int i = 0; i < 3; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(26));
            editor.idle();
        }
        editor.close();
    }
    done = true;
    automation.join();
    EXPECT_FALSE(editor.isOpen());
}
