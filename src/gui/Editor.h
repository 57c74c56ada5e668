#pragma once
// The plug-in's editor object. It exists for the effect's whole life; its frame and controls
// exist only while the window is open (or while a picture of it is being rendered).

#include <atomic>
#include <string>

#include "gui/IdleAnimation.h"
#include "gui/toolkit/CFrame.h"
#include "platform/TimedLock.h"
#include "presets/CPresetSystemEditor.h"
#include "presets/Parameters.h"

class CControl;
class EditorEffect;

// The editor's frame. With the keyboard-focus option on, it takes the keys at once and again
// whenever the mouse is used in it.
class MyFrame : public CFrame {
public:
    using CFrame::CFrame;
    void setKeyboardFocus(bool on);
    bool hasKeyboardFocusOption() const { return keyboardFocus; }
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;

private:
    bool keyboardFocus = false;
};

// The callbacks that the plug-in's custom controls call.
class CExtendedListener : public CPresetSystemEditor {
public:
    explicit CExtendedListener(AudioEffect* effect) : CPresetSystemEditor(effect) {}
};

class Editor : public CExtendedListener {
public:
    static constexpr short kWidth = 750;
    static constexpr short kHeight = 509;
    static constexpr uint32_t kIdleIntervalMs = 25;

    explicit Editor(AudioEffect* effect);
    ~Editor() override;

    // Builds the frame in a child window of the host's window; false (and nothing left
    // behind) when no window can be made there.
    bool open(void* parentWindow) override;
    // The same frame and controls without a window: it renders into its image only.
    bool openOffscreen();
    void close() override;
    bool isOpen() override { return opened.load(std::memory_order_acquire); }
    void idle() override;
    bool onKeyDown(VstKeyCode& key) override;
    bool onKeyUp(VstKeyCode& key) override;

    void valueChanged(CControl* control) override;
    void setParameter(VstInt32 index, float value) override;
    void setKeyboardFocus(bool on) override;

    // Writes the editor as it looks now (opened off screen for the moment when it is closed)
    // as a PNG file.
    bool writeSnapshot(const std::string& path);

    // The host's speaker arrangement is mono in and mono out.
    void setMonoInput(bool mono) { monoInput = mono; }
    bool isMonoInput() const { return monoInput; }

    // Take the current PlotRange into the plot and its range control.
    void takePlotRange() { animation.showRange(parameter(params::kPlotRange)); }
    // What the plot and the range control are given: the eased range and the display opacity.
    float shownPlotRange() const { return animation.shownRange(); }
    int displayOpacity() const { return animation.displayOpacity(); }

private:
    bool build();
    void release();
    void showParameter(int index, float value);
    void showAllParameters();
    float parameter(int index) const;
    void setAutomated(int index, float value);
    void setBandType(int tag, float value);
    void resetBands(int tag);
    MyFrame* myFrame() const;

    EditorEffect* editorEffect() const;

    platform::TimedLock editorLock;
    std::atomic<bool> opened{false};
    // A parameter change that arrived while the frame was busy: idle shows every value again.
    std::atomic<bool> refreshPending{false};
    uint32_t lastIdleTicks = 0;
    IdleAnimation animation;
    bool monoInput = false;

    // Controls owned by the frame; null while closed.
    CControl* powerButton = nullptr;
    CControl* fatButton = nullptr;
    CControl* linPhaseButton = nullptr;
};
