#pragma once
// The plug-in's editor object. It exists for the effect's whole life; its window exists only
// while the host has it open. Until the window is built, the editor reports its size and
// declines to open, and the effect's notifications reach it harmlessly.

#include "presets/CPresetSystemEditor.h"

// The callbacks that the plug-in's custom controls call.
class CExtendedListener : public CPresetSystemEditor {
public:
    explicit CExtendedListener(AudioEffect* effect) : CPresetSystemEditor(effect) {}
};

class Editor : public CExtendedListener {
public:
    static constexpr short kWidth = 750;
    static constexpr short kHeight = 509;

    explicit Editor(AudioEffect* effect);

    bool open(void* parentWindow) override;
    void close() override;
    bool isOpen() override { return false; }

    // The host's speaker arrangement is mono in and mono out.
    void setMonoInput(bool mono) { monoInput = mono; }
    bool isMonoInput() const { return monoInput; }

    // Take the current PlotRange into the plot and its range control.
    void takePlotRange() {}

private:
    bool monoInput = false;
};
