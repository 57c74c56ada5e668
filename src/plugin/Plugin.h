#pragma once
// The effect: where the host boundary, the parameter set, the preset bank and (as they
// arrive) the engine, the analyzer and the editor meet.

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <memory>

#include "analyzer/SPAN.h"
#include "dsp/BandModel.h"
#include "gui/EditorEffect.h"
#include "plugin/BandAudition.h"
#include "plugin/EqualizerControl.h"
#include "plugin/Latency.h"
#include "plugin/ParameterState.h"
#include "plugin/RelaxedAtomic.h"
#include "plugin/SideLink.h"
#include "presets/CPresetSystemEffect.h"
#include "presets/Parameters.h"

class Editor;

class Plugin : public CPresetSystemEffect, public EditorEffect, private EqualizerOwner {
public:
    static constexpr VstInt32 kUniqueId = fourCharCode('T', 'X', 'v', 'r');
    static constexpr VstInt32 kVersion = 2040;
    static constexpr VstInt32 kVendorVersion = 0x20004;

    explicit Plugin(audioMasterCallback audioMaster);
    ~Plugin() override;

    // Host boundary.
    void suspend() override;
    // Asks the host once which pins are connected, so the audio thread never has to.
    void resume() override;
    VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) override;
    void setSampleRate(float rate) override;
    void setBlockSize(VstInt32 size) override;
    void processReplacing(float** inputs, float** outputs, VstInt32 frames) override;
    void processDoubleReplacing(double** inputs, double** outputs, VstInt32 frames) override;

    void setParameter(VstInt32 index, float value) override;
    float getParameter(VstInt32 index) override;
    void getParameterLabel(VstInt32 index, char* label) override;
    void getParameterDisplay(VstInt32 index, char* text) override;
    void getParameterName(VstInt32 index, char* text) override;
    bool canParameterBeAutomated(VstInt32 index) override;
    bool getParameterProperties(VstInt32 index, VstParameterProperties* p) override;
    bool setSpeakerArrangement(VstSpeakerArrangement* in, VstSpeakerArrangement* out) override;
    bool setProcessPrecision(VstInt32 precision) override;
    bool getEffectName(char* name) override;
    bool getVendorString(char* text) override;
    bool getProductString(char* text) override;
    VstInt32 getVendorVersion() override { return kVendorVersion; }
    VstInt32 canDo(char* text) override;
    // Our own requests through effVendorSpecific (kSnapshotRequest: write the editor as a PNG).
    VstIntPtr vendorSpecific(VstInt32 index, VstIntPtr value, void* ptr, float opt) override;
    VstPlugCategory getPlugCategory() override { return kPlugCategMastering; }

    // Preset layer.
    void selectPreset(int index) override;
    // While AutoZoom is on, PlotRange follows the range the response needs.
    void applyAutoZoom() override;
    bool isExcludedFromSave(int index) override { return index > params::kListen; }
    bool isExcludedFromLoad(int index) override { return index > params::kChannel; }

    // Editor-facing band setters (band 0..7, value normalized): they write the side or sides
    // that Channel selects and tell the host, without calling the editor back.
    void setBandFrequency(int band, float value) override;
    void setBandGain(int band, float value) override;
    void setBandQ(int band, float value) override;

    // The analyzer's 31 band levels in dB, highest band first; nothing without an analyzer.
    void getAnalyzerBars(float* out) override;
    // The band and total curves for the editor's plot (PluginPlotSide.cpp).
    bool getPlotCurves(float* totals, float* bands) override;

    // The user's global settings: read once at construction, written when the editor asks.
    void loadGlobalSettings();
    bool saveGlobalSettings() override;
    void getLatencyMode(int& mode) const override { mode = latencyMode; }
    // The host is told at the next sample-rate or block-size change; the audio path follows at
    // once.
    void setLatencyMode(int mode) override;

    // The delay reported to the host, the processing path's own delay and the padding the
    // audio path adds so that the two agree, in host samples, for the current settings.
    void getLatencyInfo(int& reported, int& pathLatency, int& padding) const;
    // Writes the delay the latency mode reports into the record; hosts read it at resume.
    void updateReportedDelay();
    static constexpr size_t kLatencyTextSize = 64;
    // "(compensated) 24638 samples (558.68 ms)"; text holds kLatencyTextSize bytes.
    void getLatencyText(char* text) const override;

    // Band audition, driven by the editor while the user holds a band: band 0..7, or −1 to
    // end it; width and level in 0..1 (start at 0.5) shape the band-pass that is heard.
    void setAuditionBand(int band) override;
    void setAuditionWidth(float width) override;
    void setAuditionLevel(float level) override;

    void getOutputPeaks(float& a, float& b) const override;
    void resetOutputPeaks() override;

    // Response curves in dB on the plot grid, filled by the band design.
    const dsp::Curve& getTotalCurves(int side) const { return bandModel.totalCurve(side); }
    const dsp::Curve& getBandCurves(int side, int b) const { return bandModel.bandCurve(side, b); }

    // The engine's frame as the current rate, block size, FAT and Resolution set it.
    double designRate() const { return equalizer.designRate(); }
    const dsp::KernelDesigner& kernelDesigner() const { return equalizer.kernelDesigner(); }
    int fftLength() const { return equalizer.frame().frameSize; }
    int partitionLength() const { return equalizer.frame().partition; }
    int convolutionHop() const { return equalizer.frame().convolutionHop; }
    int integerSampleRate() const { return equalizer.integerRate(); }
    Editor* getPluginEditor() const { return pluginEditor; }

private:
    // Whether the audio path feeds the analyzer: it exists and is on, and an editor window is
    // open to show it. During a band audition the path feeds the auditioned signal instead.
    bool analyzerFeedActive() const;
    void applySetting(int index, float value);
    bool applyBandParameter(int index, float value);
    void storeBandValue(int side, int b, int field, float value);
    void setBandFromEditor(int band, int field, float value);
    bool previewText(int index, float v, char* text);
    latency::EngineSettings latencySettings() const;
    void refreshActiveBands();
    void publishAudition();
    // EqualizerOwner.
    int switchStep(int index) const override;
    bool presetLoading() const override;
    int compensationMode() const override { return latencyMode; }
    bool storeBandParameter(int index, float value) override;
    void bandsDesigned(int band) override;
    void engineCleared() override;
    void hostRateSet(float hostRate) override;
    void blockSizeSet() override;
    template <typename Sample>
    void processBlock(Sample** inputs, Sample** outputs, VstInt32 frames);
    void currentText(int index, char* text);

    ParameterState parameters;
    SideLink link;
    BandAudition audition;
    // Read-only views of the objects above, under the names the plug-in reads them by.
    const ParameterState::Steps& steps = parameters.steps();
    const RelaxedAtomic<int>& auditionBand = audition.band();
    const SideLink::Weights& analyzerWeights = link.analyzerWeights();

    dsp::BandModel bandModel;
    EqualizerControl equalizer{*this, bandModel};
    std::unique_ptr<SPAN> analyzer;

    int inputChannels = 2;
    int outputChannels = 2;
    // Bit s set: band slot s (bands 1..8 of side A, then of side B) is switched on.
    std::atomic<uint32_t> activeBands{0};

    RelaxedAtomic<int> latencyMode = 2;
    Editor* pluginEditor = nullptr;
};
