#pragma once
// The editor opened off screen on a fresh plug-in with an empty store of its own, and the
// events the scripts send it; every outcome is read back through the plug-in.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "gui/Editor.h"
#include "unit/plugin/PluginHarness.h"
#include "unit/toolkit/ToolkitSupport.h"

class EditorScriptFixture : public ::testing::Test {
protected:
    EditorScriptFixture() {
        // Set before the plug-in locates its store.
        std::filesystem::remove_all(storeDir);
        setenv("TYX_VIREO_CONFIG_DIR", storeDir.c_str(), 1);
        h = std::make_unique<PluginHarness>();
        editor().openOffscreen();
    }
    ~EditorScriptFixture() override {
        editor().close();
        h.reset();
        std::filesystem::remove_all(storeDir);
    }

    Plugin& p() { return *h->plugin; }
    Editor& editor() { return *p().getPluginEditor(); }
    CFrame& frame() { return *editor().getFrame(); }
    float param(int index) { return p().getParameter(index); }
    int step(int index, int steps) { return params::quantize(param(index), steps); }
    int typeStep(int index) { return step(index, params::kBandTypeSteps); }
    void setType(int index, int s) { p().setParameter(index, params::stepCentre(s, params::kBandTypeSteps)); }

    void click(CPoint at, int32_t buttons = kLButton) { ::click(frame(), at.x, at.y, buttons); }
    void move(CPoint at, int32_t buttons = 0) { frame().onMouseMoved(at, buttons); }
    void press(CPoint at, int32_t buttons = kLButton) { frame().onMouseDown(at, buttons); }
    void drag(CPoint from, double dx, double dy, int32_t buttons = kLButton) {
        press(from, buttons);
        move(CPoint(from.x + dx, from.y + dy), buttons);
        ::release(frame(), from.x + dx, from.y + dy, buttons);
    }
    void wheel(CPoint at, float distance, int32_t modifiers = 0) {
        frame().onWheel(at, CMouseWheelAxis::kVertical, distance, modifiers);
    }
    void writeSnapshot(const char* name) {
        if (const char* dir = std::getenv("TYX_SNAPSHOT_DIR")) {
            EXPECT_TRUE(editor().writeSnapshot(std::string(dir) + "/" + name));
        }
    }

    // 48 kHz in blocks of 512, running, as peakOfSine wants it.
    void startAudio() {
        p().setSampleRate(48000);
        p().setBlockSize(512);
        p().resume();
    }
    float peakOfSine(double hz, double seconds) { return ::peakOfSine(p(), hz, seconds); }

    std::string storeDir = testing::TempDir() + "editor-script-store";
    std::unique_ptr<PluginHarness> h;
};
