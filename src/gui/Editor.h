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

// The callbacks that the plug-in's custom controls call besides valueChanged.
class CExtendedListener : public CPresetSystemEditor {
public:
    explicit CExtendedListener(AudioEffect* effect) : CPresetSystemEditor(effect) {}

    // Band 0..7 shown in the header and marked in the plot, or -1 to clear both; flag 1 when
    // the pointer is over a frequency field.
    virtual void hoverBand(int band, int flag) = 0;
    // Makes band 0..7 the editor's selected band.
    virtual void selectBand(int band) = 0;
    // The band whose frequency field was right-clicked (0..7), or -1 when the pointer left it.
    virtual void setFocusBand(int band) = 0;
    // Solo mask from the solo strip (bit b = band b); bands off on both sides are dropped.
    virtual void setSoloMask(int mask) = 0;
    // The information spot was clicked.
    virtual void infoClicked() = 0;

    // --- value controls: header, jog, edit knobs
    // The jog's ring buttons: Listen 0..2 (0 off); channel mode 1 LEFT, 2 RIGHT, 3 LINK; the
    // mid/side and analyzer toggles; the analyzer's settings page; and whether the analyzer
    // button's short help is shown.
    virtual void setListenMode(int mode) = 0;
    virtual void setChannelMode(int mode) = 0;
    virtual void toggleMidSide() = 0;
    virtual void toggleAnalyzer() = 0;
    virtual void openSettingsPage() = 0;
    virtual void showAnalyzerHint(bool shown) = 0;
    // An edit knob changed band 0..7's value (normalized); the editor writes it to the side or
    // sides Channel selects.
    virtual void bandFrequencyChanged(int band, float value) = 0;
    virtual void bandGainChanged(int band, float value) = 0;
    virtual void bandQChanged(int band, float value) = 0;

    // --- switches, solo strip, small views, meters
    // The two held output peaks (largest absolute sample since the last clear); left as they
    // are without an effect.
    virtual void getOutputPeaks(float* first, float* second) = 0;
    // Clears both held peaks and the plot's held bars.
    virtual void resetOutputPeaks() = 0;

    // --- response plot and settings page
};

class Editor : public CExtendedListener {
public:
    static constexpr short kWidth = 750;
    static constexpr short kHeight = 509;
    static constexpr uint32_t kIdleIntervalMs = 25;
    // Tags of the reset areas left of the knob rows; the other tags are parameter indexes.
    enum ResetTag : int32_t { kAllBandsOff = 95, kResetFrequencies = 96, kResetGains = 97, kResetQ = 98 };
    // Channel as the editor reads it: the step, not the stored form.
    enum ChannelStep : int { kLeftStep = 0, kRightStep = 1, kLinkStep = 2 };

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

    // --- value controls: header, jog, edit knobs (EditorValueControls.cpp)
    void hoverBand(int band, int flag) override;
    void selectBand(int band) override;
    void setFocusBand(int band) override;
    // The header's analyzer-drive line, shown for a second after each drive change.
    void showDrive(float dB);
    void setListenMode(int mode) override;
    void setChannelMode(int mode) override;
    void toggleMidSide() override;
    void toggleAnalyzer() override;
    void openSettingsPage() override;
    void showAnalyzerHint(bool shown) override;
    void bandFrequencyChanged(int band, float value) override;
    void bandGainChanged(int band, float value) override;
    void bandQChanged(int band, float value) override;

    // --- switches, solo strip, small views, meters (EditorSwitches.cpp)
    void setSoloMask(int mask) override;
    void getOutputPeaks(float* first, float* second) override;
    void resetOutputPeaks() override;

    // --- response plot and settings page (EditorPlot.cpp)
    void infoClicked() override;
    void clearHeldBars();
    void showSettingsPage();
    // The plot marks the hovered band (-1 none) and takes the selected one.
    void plotHoverBand(int band);
    void plotSelectBand(int band);
    // Shows a page of the plot while the window is open: 0 the plot, 1 settings, 2 information.
    void showPlotPage(int page);
    // The analyzer bars end their fade at once (for still pictures).
    void settlePlotFade();

private:
    bool build();
    void release();
    void showParameter(int index, float value);

    // Each group of controls is built, released, shown and animated by its own file.
    // --- value controls (EditorValueControls.cpp)
    void buildValueControls(CFrame* frame);
    void releaseValueControls();
    void showValueControlsParameter(int index, float value);
    // Changes of value controls not handled by valueChanged's common tags.
    void valueControlChanged(CControl* control);
    void idleValueControls(uint32_t elapsedMs);
    // The side whose band values the knobs and the header show: 0 left (mid), 1 right (side).
    int shownSide() const;
    // The header shows band 0..7 from the shown side, or only the output for -1.
    void showBandInHeader(int band);
    // Every band knob and the header take the shown side's values again.
    void reloadBandControls();
    void updateEditPairings();
    void toggleSwitch(int index);
    // A band value an edit knob wrote through the effect is shown as the effect now holds it.
    void showBandValue(int firstIndex, int band);

    // --- switches, solo strip, small views, meters (EditorSwitches.cpp)
    void buildSwitches(CFrame* frame);
    void releaseSwitches();
    void showSwitchesParameter(int index, float value);
    void idleSwitches(uint32_t elapsedMs);

    // --- response plot and settings page (EditorPlot.cpp)
    void buildPlot(CFrame* frame);
    void releasePlot();
    void showPlotParameter(int index, float value);
    void idlePlot(uint32_t elapsedMs);
    // What the plot asks of the editor (EditorPlot.cpp); lives while the plot does.
    class PlotLink;
    friend class PlotLink;
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
    // --- value controls
    class CHeader* header = nullptr;
    bool analyzerHintShown = false;
    class CJog* jog = nullptr;
    // Per band: the frequency, gain and Q knobs.
    class CMyEditKnob* frequencyKnobs[params::kBands] = {};
    class CMyEditKnob* gainKnobs[params::kBands] = {};
    class CMyEditKnob* qKnobs[params::kBands] = {};
    class CMyEditKnob* outputKnob = nullptr;
    int selectedBand = -1;
    int hoveredBand = -1;
    // The band last handed to the effect as the focus band (-1 none).
    int focusBand = -1;

    // --- switches, solo strip, small views, meters
    CControl* powerButton = nullptr;
    CControl* fatButton = nullptr;
    CControl* linPhaseButton = nullptr;
    CControl* resolutionSelector = nullptr;
    CControl* typeSwitches[params::kBands] = {};
    CControl* soloist = nullptr;
    CControl* meters[2] = {};

    // --- response plot
    class CPlot* plot = nullptr;
    PlotLink* plotLink = nullptr;
};
