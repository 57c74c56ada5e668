#include "plugin/Plugin.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "gui/Editor.h"
#include "plugin/AnalyzerSettings.h"
#include "plugin/GlobalSettings.h"
#include "plugin/ParameterTable.h"

using namespace params;

Plugin::Plugin(audioMasterCallback audioMaster) : CPresetSystemEffect(audioMaster) {
    cEffect.version = kVersion;
    setNumInputs(2);
    setNumOutputs(2);
    inputChannels = outputChannels = 2;
    setUniqueID(kUniqueId);
    canProcessReplacing(true);
    canDoubleReplacing(true);

    analyzer.reset(new (std::nothrow) SPAN());
    if (analyzer) {
        analyzer->setSampleRate(static_cast<float>(equalizer.integerRate()));
        analyzer->reset();
    }

    refreshActiveBands();
    equalizer.redesignAllBands();
    equalizer.audioEngine().setOutputGainTarget(outputGainFactor(parameters.value(kOutput)));
    suspend();

    loadGlobalSettings();

    pluginEditor = new Editor(this);
    setEditor(pluginEditor);
    restoreStartupState();
    selectPreset(0);
    updateReportedDelay();
}

Plugin::~Plugin() = default;  // the base class deletes the editor

// ---------------------------------------------------------------------------------------------
// Host boundary

void Plugin::suspend() { equalizer.suspend(); }

void Plugin::resume() { equalizer.resume(isInputConnected(1), isOutputConnected(1)); }

void Plugin::setSampleRate(float hostRate) {
    sampleRate = hostRate;
    equalizer.setSampleRate(hostRate);
}

void Plugin::setBlockSize(VstInt32 size) {
    blockSize = size;
    equalizer.setBlockSize(size);
}

// ---- What the equalizer asks of the plug-in ---------------------------------------------------

int Plugin::switchStep(int index) const { return steps[index]; }

bool Plugin::presetLoading() const { return static_cast<bool>(isLoading); }

bool Plugin::storeBandParameter(int index, float value) { return applyBandParameter(index, value); }

// The auditioned band's section follows the band.
void Plugin::bandsDesigned(int band) {
    if (auditionBand >= 0 && (band < 0 || band == auditionBand)) publishAudition();
}

void Plugin::engineCleared() {
    if (analyzer) analyzer->reset();
}

void Plugin::hostRateSet(float hostRate) {
    updateReportedDelay();
    // The analyzer gets the host's own rate: at a rate it has no tables for it goes quiet.
    if (analyzer) analyzer->setSampleRate(hostRate);
}

void Plugin::blockSizeSet() { updateReportedDelay(); }

VstIntPtr Plugin::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    if (opcode == effEditIdle) equalizer.rebuildIfPending();
    return CPresetSystemEffect::dispatcher(opcode, index, value, ptr, opt);
}

// One host block through the engine. Everything the block needs is gathered here, without
// locks, allocation or calls into the host: the host's pin answers were kept at resume.
template <typename Sample>
void Plugin::processBlock(Sample** inputs, Sample** outputs, VstInt32 frames) {
    int reported, pathLatency, padding;
    getLatencyInfo(reported, pathLatency, padding);
    dsp::AudioBlockSettings s;
    s.power = steps[kPower] == 1;
    s.linPhase = steps[kLinPhase] == 1;
    s.fat = steps[kFat] == 1;
    s.hostRate = equalizer.integerRate();
    s.midSide = steps[kLrMs] == 1;
    const int listen = steps[kListen];
    s.listen = listen >= 0 && listen <= 2 ? listen : 0;
    s.compensation = padding;
    s.analyzerWeightA = analyzerWeights[0];
    s.analyzerWeightB = analyzerWeights[1];
    s.feedAnalyzer = analyzerFeedActive();
    s.activeSlots = activeBands.load(std::memory_order_relaxed);
    SPAN* span = analyzer.get();
    equalizer.process<Sample>(
        inputs, outputs, frames, s, [this](int slot) { return bandModel.readPublished(slot); },
        [span](float x) { span->processSample(x); });
}

void Plugin::processReplacing(float** inputs, float** outputs, VstInt32 frames) {
    processBlock(inputs, outputs, frames);
}

void Plugin::processDoubleReplacing(double** inputs, double** outputs, VstInt32 frames) {
    processBlock(inputs, outputs, frames);
}

// ---------------------------------------------------------------------------------------------
// Latency

latency::EngineSettings Plugin::latencySettings() const {
    const EngineFrame f = equalizer.frame();
    return {equalizer.integerRate(), f.frameSize, f.partition, steps[kFat] == 1, steps[kLinPhase] == 1,
            steps[kPower] == 1};
}

void Plugin::getLatencyInfo(int& reported, int& pathLatency, int& padding) const {
    const latency::Figures f = latency::figures(latencyMode, latencySettings());
    reported = f.reported;
    pathLatency = f.pathLatency;
    padding = f.padding;
}

void Plugin::setLatencyMode(int mode) {
    latencyMode = mode;
    equalizer.compensationModeChanged();
}

// Only the record changes; the host sees it when it next reads the record (at resume).
void Plugin::updateReportedDelay() { setInitialDelay(latency::initialDelay(latencyMode, latencySettings())); }

void Plugin::getLatencyText(char* text) const {
    if (text) latency::describe(latencyMode, latencySettings(), text, kLatencyTextSize);
}

bool Plugin::canParameterBeAutomated(VstInt32 index) { return automatable(index); }

bool Plugin::getParameterProperties(VstInt32 index, VstParameterProperties* p) {
    describeSteps(index, *p);
    return true;
}

bool Plugin::setSpeakerArrangement(VstSpeakerArrangement* in, VstSpeakerArrangement* out) {
    if (in) inputChannels = in->numChannels;
    if (out) outputChannels = out->numChannels;
    if (pluginEditor) pluginEditor->setMonoInput(inputChannels == 1 && outputChannels == 1);
    return false;
}

bool Plugin::setProcessPrecision(VstInt32 precision) {
    return precision == kVstProcessPrecision32 || precision == kVstProcessPrecision64;
}

bool Plugin::getEffectName(char* name) {
    std::strcpy(name, "Tyx Vireo");
    return true;
}

bool Plugin::getVendorString(char* text) {
    std::strcpy(text, "tyx-fonica.com");
    return true;
}

bool Plugin::getProductString(char* text) {
    std::strcpy(text, "Linear-phase parametric equalizer");
    return true;
}

VstInt32 Plugin::canDo(char* text) { return std::strcmp(text, "receiveVstMidiEvent") == 0 ? 1 : 0; }

// ---------------------------------------------------------------------------------------------
// Parameters

float Plugin::getParameter(VstInt32 index) {
    if (index >= 0 && index < kUsedParameters) return parameters.value(index);
    return CPresetSystemEffect::getParameter(index);
}

// A value that is not a number changes nothing and reaches no one; one outside 0..1 is held
// to it before anything is stored or derived.
void Plugin::setParameter(VstInt32 index, float received) {
    const auto admittedValue = admitted(received);
    if (index < 0 || !admittedValue) return;
    const float value = *admittedValue;
    if (index < kUsedParameters) {
        parameters.setValue(index, value);
        int band, side, field;
        if (bandParameter(index, band, side, field)) {
            equalizer.post(index, value);
        } else {
            applySetting(index, value);
        }
    }
    if (!isLoading) CPresetSystemEffect::setParameter(index, value);
    if (pluginEditor) pluginEditor->setParameter(index, value);
}

// What a parameter other than a band's changes beyond its own value and step.
void Plugin::applySetting(int index, float value) {
    const int previous = steps[index];
    parameters.setStepFrom(index, value);
    switch (index) {
        case kFat: case kLinPhase: case kSolo: equalizer.post(index, value); break;
        case kLrMs: link.midSideChanged(); break;
        case kResolution:
            if (steps[kResolution] != previous) equalizer.post(index, value);
            break;
        case kOutput: equalizer.audioEngine().setOutputGainTarget(outputGainFactor(value)); break;
        case kChannel: link.setChannel(steps[kChannel], steps[kLrMs] == 1); break;
        case kSpan: case kSpanType: case kSpanColor: case kSpanSpeed: case kSpanMode: case kSpanHold:
        case kSpanResp: case kAutoZoom: case kSpanDrive: case kSpanWidth: case kSpanFilter:
            // Analyzer and zoom settings belong to the user, not to a preset.
            storeInEveryPreset(index, value);
            if (analyzer) applyAnalyzerSetting(*analyzer, index, steps[index]);
            break;
        default: break;
    }
}

// With Channel at LINK (and outside a preset load) the left/mid parameter drives both sides and
// the right/side parameter only records its value; otherwise each side is its own. False when
// nothing is to be redesigned.
bool Plugin::applyBandParameter(int index, float value) {
    int b, side, field;
    bandParameter(index, b, side, field);
    const bool linked = link.linked(static_cast<bool>(isLoading));
    if (side == 1 && linked) return false;
    storeBandValue(side, b, field, value);
    if (side == 0 && linked) {
        const int rightIndex = bandIndex(field, 1, b);
        parameters.setValue(rightIndex, value);
        storeBandValue(1, b, field, value);
        CPresetSystemEffect::setParameter(rightIndex, value);
    }
    return true;
}

// A band parameter's natural value into the band model.
void Plugin::storeBandValue(int side, int b, int field, float value) {
    switch (field) {
        case kTypeField: {
            const int index = bandIndex(kTypeField, side, b);
            parameters.setStepFrom(index, value);
            bandModel.setBandType(side, b, steps[index]);
            refreshActiveBands();
            break;
        }
        case kFreqField: bandModel.setFrequency(side, b, bandFrequencyHz<double>(value)); break;
        case kQField: bandModel.setQ(side, b, value); break;
        case kGainField: bandModel.setGain(side, b, bandDesignGainDb(value)); break;
    }
}

void Plugin::setBandFrequency(int band, float value) { setBandFromEditor(band, kFreqField, value); }
void Plugin::setBandGain(int band, float value) { setBandFromEditor(band, kGainField, value); }
void Plugin::setBandQ(int band, float value) { setBandFromEditor(band, kQField, value); }

void Plugin::setBandFromEditor(int b, int field, float received) {
    const auto admittedValue = admitted(received);
    if (b < 0 || b >= kBands || !admittedValue) return;
    const float value = *admittedValue;
    const bool mono = inputChannels == 1;
    {
        EqualizerControl::DesignScope design(equalizer);
        for (int side = 0; side < 2; ++side) {
            if (!link.edits(side, mono)) continue;
            const int index = bandIndex(field, side, b);
            parameters.setValue(index, value);
            if (field == kFreqField)
                bandModel.setFrequency(side, b, bandFrequencyHz(value));  // in single precision, as the editor shows it
            else
                storeBandValue(side, b, field, value);
            CPresetSystemEffect::setParameter(index, value);
        }
        equalizer.updateBand(b);
    }
    // The host hears of it outside our locks.
    for (int side = 0; side < 2; ++side)
        if (link.edits(side, mono)) callHost(audioMasterAutomate, bandIndex(field, side, b), 0, nullptr, value);
}

void Plugin::selectPreset(int index) {
    CPresetSystemEffect::selectPreset(index);
    // The load designed every band's sections but left curves and kernels for now: once.
    {
        EqualizerControl::DesignScope design(equalizer);
        if (design) equalizer.refreshCurves();
    }
    applyAutoZoom();
    if (pluginEditor) pluginEditor->takePlotRange();
}

// The curves it reads are written by whichever thread holds the design lock, the audio thread
// included when it automates a band.
void Plugin::applyAutoZoom() {
    if (steps[kAutoZoom] != 1) return;
    float zoom;
    {
        EqualizerControl::DesignScope design(equalizer);
        if (!design) return;
        zoom = bandModel.autoZoom();
    }
    setParameter(kPlotRange, zoom);
}

// A first run (nothing stored yet) keeps the constructor's values; otherwise each value the
// store lacks takes its default. Applying them writes them into every preset.
void Plugin::loadGlobalSettings() {
    const auto stored = globals::load(platform::UserStore::forCurrentUser());
    setLatencyMode(stored ? stored->latencyMode : globals::kDefaultLatencyMode);
    for (int row = 1; row < globals::kRowCount; ++row) {
        const int index = globals::kRows[row].parameter;
        setParameter(index, stored ? stored->parameters[row] : parameters.value(index));
    }
    restoreStartupState();
}

bool Plugin::saveGlobalSettings() {
    globals::Values v;
    v.latencyMode = latencyMode;
    for (int row = 1; row < globals::kRowCount; ++row) v.parameters[row] = parameters.value(globals::kRows[row].parameter);
    return globals::save(platform::UserStore::forCurrentUser(), v);
}

void Plugin::getAnalyzerBars(float* out) {
    if (analyzer) analyzer->getBars(out);
}

// Any editor the host opened counts; the feed costs nothing while no one can see the bars.
bool Plugin::analyzerFeedActive() const {
    return analyzer && steps[kSpan] == 1 && editor && editor->isOpen();
}

void Plugin::setAuditionBand(int band) {
    EqualizerControl::DesignScope design(equalizer);
    if (!design) return;
    audition.setBand(band);
    publishAudition();
    bandModel.computeBandCurves();
}

void Plugin::setAuditionWidth(float width) {
    EqualizerControl::DesignScope design(equalizer);
    if (!design) return;
    audition.setWidth(width);
    publishAudition();
}

void Plugin::setAuditionLevel(float level) {
    EqualizerControl::DesignScope design(equalizer);
    if (!design) return;
    audition.setLevel(level);
    publishAudition();
}

// The section heard follows the band's frequency on the side the audition channel selects, at
// the host rate. The caller holds the design lock, which keeps the hand-over to one writer.
void Plugin::publishAudition() {
    const int b = audition.band();
    equalizer.audioEngine().audition().publish(
        b < 0 ? dsp::AuditionSection::off()
              : audition.section(bandModel.band(link.auditionSide(), b).frequency, equalizer.integerRate()));
}

void Plugin::getOutputPeaks(float& a, float& b) const {
    a = equalizer.audioEngine().peaks().a();
    b = equalizer.audioEngine().peaks().b();
}

void Plugin::resetOutputPeaks() { equalizer.audioEngine().peaks().clear(); }

// The minimum-phase path runs only the bands whose type is one of the seven shapes.
void Plugin::refreshActiveBands() {
    int types[dsp::kBandSlots];
    for (int side = 0; side < dsp::kSides; ++side)
        for (int b = 0; b < kBands; ++b) types[dsp::bandSlot(side, b)] = steps[bandIndex(kTypeField, side, b)];
    activeBands.store(dsp::MinimumPhaseCascade::activeSlots(types), std::memory_order_relaxed);
}
