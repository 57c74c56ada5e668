#include "plugin/Plugin.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "gui/Editor.h"
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

    auditionSelector = kChannelLink;
    auditionBand = -1;

    analyzer.reset(new (std::nothrow) SPAN());
    if (analyzer) {
        analyzer->setSampleRate(static_cast<float>(equalizer.integerRate()));
        analyzer->reset();
    }

    for (int i = 0; i < kUsedParameters; ++i) {
        values[i] = startValue(i);
        if (const int n = stepCount(i)) steps[i] = quantize(values[i], n);
    }
    for (int side = 0; side < 2; ++side)
        for (int b = 0; b < kBands; ++b) steps[bandIndex(0, side, b)] = kFirstBypassType;
    refreshActiveBands();
    equalizer.redesignAllBands();
    channel = steps[kChannel] + 1;
    gainTarget = std::pow(10.0, (values[kOutput] - 0.5) * 24.0 / 20.0);
    equalizer.audioEngine().setOutputGainTarget(gainTarget);
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

bool Plugin::presetLoading() const { return isLoading; }

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

// Only the record changes; the host sees it when it next reads the record (at resume).
void Plugin::updateReportedDelay() { setInitialDelay(latency::initialDelay(latencyMode, latencySettings())); }

void Plugin::getLatencyText(char* text) const {
    if (text) latency::describe(latencyMode, latencySettings(), text, kLatencyTextSize);
}

bool Plugin::canParameterBeAutomated(VstInt32 index) {
    return index == kPower || (index >= kOutput && index < kPlotRange);
}

bool Plugin::getParameterProperties(VstInt32 index, VstParameterProperties* p) {
    auto integerSteps = [p](int maxInteger) {
        p->flags = kVstParameterUsesIntStep;
        p->minInteger = 0;
        p->maxInteger = maxInteger;
        p->stepInteger = 1;
        p->largeStepInteger = 1;
    };
    switch (index) {
        case kPower: case kFat: case kLrMs: case kLinPhase: case kAutoZoom:
            integerSteps(1);
            break;
        case kResolution: case kChannel:
            integerSteps(2);
            break;
        case kSpan: case kSpanColor: case kSpanSpeed: case kSpanMode: case kSpanHold: case kSpanWidth:
        case kSpanFilter:
            integerSteps(15);
            break;
        case kOutput:
            p->flags = kVstParameterUsesFloatStep;
            p->stepFloat = 1.0f / 24.0f;
            p->smallStepFloat = 1.0f / 240.0f;
            break;
        default:
            if (index >= kType && index < kFreq) {
                integerSteps(13);
            } else {
                p->flags = kVstParameterUsesFloatStep;
                p->stepFloat = 0.01f;
                p->smallStepFloat = 0.0001f;
            }
            break;
    }
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
    if (index >= 0 && index < kUsedParameters) return values[index];
    return CPresetSystemEffect::getParameter(index);
}

void Plugin::setParameter(VstInt32 index, float value) {
    if (index < 0) return;
    if (index < kUsedParameters) {
        values[index] = value;
        int band, side, field;
        if (bandParameter(index, band, side, field)) {
            equalizer.post(index, value);
        } else {
            const int previous = steps[index];
            if (const int n = stepCount(index)) steps[index] = quantize(value, n);
            switch (index) {
                case kFat: case kLinPhase: case kSolo: equalizer.post(index, value); break;
                case kLrMs: auditionSelector = kChannelLeft; break;
                case kResolution:
                    if (steps[kResolution] != previous) equalizer.post(index, value);
                    break;
                case kOutput:
                    gainTarget = std::pow(10.0, (static_cast<double>(value) - 0.5) * 24.0 / 20.0);
                    equalizer.audioEngine().setOutputGainTarget(gainTarget);
                    break;
                case kChannel: applyChannel(); break;
                case kSpan: case kSpanType: case kSpanColor: case kSpanSpeed: case kSpanMode: case kSpanHold:
                case kSpanResp: case kAutoZoom: case kSpanDrive: case kSpanWidth: case kSpanFilter:
                    // Analyzer and zoom settings belong to the user, not to a preset.
                    writeIntoEveryPreset(index, value);
                    applyAnalyzerSetting(index);
                    break;
                default: break;
            }
        }
    }
    if (!isLoading) CPresetSystemEffect::setParameter(index, value);
    if (pluginEditor) pluginEditor->setParameter(index, value);
}

void Plugin::storeBandValue(int side, int b, BandField field, float value) {
    switch (field) {
        case kTypeField: {
            const int k = quantize(value, kBandTypeSteps);
            steps[bandIndex(kTypeField, side, b)] = k;
            bandModel.setBandType(side, b, k);
            refreshActiveBands();
            break;
        }
        case kFreqField: bandModel.setFrequency(side, b, 20.0 * std::pow(10.0, 3.0 * static_cast<double>(value))); break;
        case kQField: bandModel.setQ(side, b, value); break;
        case kGainField: bandModel.setGain(side, b, (static_cast<double>(value) - 0.5) * 24.0); break;
    }
}

// With Channel at LINK (and outside a preset load) the left/mid parameter drives both sides and
// the right/side parameter only records its value; otherwise each side is its own.
bool Plugin::applyBandParameter(int index, float value) {
    int b, side, field;
    bandParameter(index, b, side, field);
    const bool linked = channel == kChannelLink && !isLoading;
    if (side == 1 && linked) return false;
    storeBandValue(side, b, static_cast<BandField>(field), value);
    if (side == 0 && linked) {
        const int rightIndex = index + 8;
        values[rightIndex] = value;
        storeBandValue(1, b, static_cast<BandField>(field), value);
        CPresetSystemEffect::setParameter(rightIndex, value);
    }
    return true;
}

void Plugin::applyChannel() {
    channel = steps[kChannel] + 1;
    auditionSelector = channel;
    const bool midSide = steps[kLrMs] == 1;
    switch (channel) {
        case kChannelLeft:
            analyzerWeights[0] = midSide ? 2.0 : 1.0;
            analyzerWeights[1] = 0.0;
            break;
        case kChannelRight:
            analyzerWeights[0] = 0.0;
            analyzerWeights[1] = midSide ? 2.0 : 1.0;
            break;
        case kChannelLink:
            analyzerWeights[0] = midSide ? 2.0 : 0.5;
            analyzerWeights[1] = midSide ? 0.0 : 0.5;
            break;
        default: break;  // a step without meaning keeps the weights it had
    }
}

void Plugin::writeIntoEveryPreset(int index, float value) {
    if (!presets) return;
    for (int p = 0; p < presets::kPresetCount; ++p) presets[p].values[index] = value;
}

void Plugin::setBandFrequency(int band, float value) { setBandFromEditor(band, kFreqField, value); }
void Plugin::setBandGain(int band, float value) { setBandFromEditor(band, kGainField, value); }
void Plugin::setBandQ(int band, float value) { setBandFromEditor(band, kQField, value); }

void Plugin::setBandFromEditor(int b, BandField field, float value) {
    if (b < 0 || b >= kBands) return;
    const bool mono = inputChannels == 1;
    const bool left = channel == kChannelLeft || channel == kChannelLink || mono;
    const bool right = (channel == kChannelRight || channel == kChannelLink) && !mono;
    const int sideIndex[2] = {bandIndex(field, 0, b), bandIndex(field, 1, b)};
    const bool write[2] = {left, right};
    {
        EqualizerControl::DesignScope design(equalizer);
        for (int side = 0; side < 2; ++side) {
            if (!write[side]) continue;
            values[sideIndex[side]] = value;
            if (field == kFreqField)
                bandModel.setFrequency(side, b, 20.0f * std::pow(10.0f, 3.0f * value));  // as the editor shows it
            else
                storeBandValue(side, b, field, value);
            CPresetSystemEffect::setParameter(sideIndex[side], value);
        }
        equalizer.updateBand(b);
    }
    // The host hears of it outside our locks.
    for (int side = 0; side < 2; ++side)
        if (write[side]) callHost(audioMasterAutomate, sideIndex[side], 0, nullptr, value);
}

void Plugin::selectPreset(int index) {
    CPresetSystemEffect::selectPreset(index);
    // The load designed every band's sections but left curves and kernels for now: once.
    {
        EqualizerControl::DesignScope design(equalizer);
        if (design) equalizer.refreshCurves();
    }
    if (steps[kAutoZoom] == 1) setParameter(kPlotRange, bandModel.autoZoom());
    if (pluginEditor) pluginEditor->takePlotRange();
}

// A first run (nothing stored yet) keeps the constructor's values; otherwise each value the
// store lacks takes its default. Applying them writes them into every preset.
void Plugin::loadGlobalSettings() {
    const auto stored = globals::load(platform::UserStore::forCurrentUser());
    latencyMode = stored ? stored->latencyMode : globals::kDefaultLatencyMode;
    for (int row = 1; row < globals::kRowCount; ++row) {
        const int index = globals::kRows[row].parameter;
        setParameter(index, stored ? stored->parameters[row] : values[index]);
    }
    restoreStartupState();
}

bool Plugin::saveGlobalSettings() {
    globals::Values v;
    v.latencyMode = latencyMode;
    for (int row = 1; row < globals::kRowCount; ++row) v.parameters[row] = values[globals::kRows[row].parameter];
    return globals::save(platform::UserStore::forCurrentUser(), v);
}

void Plugin::applyAnalyzerSetting(int index) {
    if (!analyzer) return;
    const int k = steps[index];
    switch (index) {
        case kSpan:
            if (k == 1) analyzer->reset();
            break;
        case kSpanSpeed: analyzer->setSpeed(k); break;
        case kSpanMode: analyzer->setMode(k); break;
        case kSpanResp: analyzer->setWeighting(k); break;
        case kSpanFilter: analyzer->setFilterOrder(k == 0 ? 2 : 6); break;
        default: break;  // hold, width, type, colour and drive are the plot's business
    }
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
    auditionBand = band >= 0 && band < kBands ? band : -1;
    publishAudition();
    bandModel.computeBandCurves();
}

void Plugin::setAuditionWidth(float width) {
    EqualizerControl::DesignScope design(equalizer);
    if (!design) return;
    auditionWidth = std::clamp(width, 0.0f, 1.0f);
    publishAudition();
}

void Plugin::setAuditionLevel(float level) {
    EqualizerControl::DesignScope design(equalizer);
    if (!design) return;
    auditionLevel = std::clamp(level, 0.0f, 1.0f);
    publishAudition();
}

// The section heard follows the band's frequency on the side the audition channel selects, at
// the host rate. The caller holds the design lock, which keeps the hand-over to one writer.
void Plugin::publishAudition() {
    const int b = auditionBand;
    if (b < 0) {
        equalizer.audioEngine().audition().publish(dsp::AuditionSection::off());
        return;
    }
    const int side = auditionSelector == kChannelRight ? 1 : 0;
    equalizer.audioEngine().audition().publish(dsp::AuditionSection::design(
        bandModel.band(side, b).frequency, auditionWidth, auditionLevel, equalizer.integerRate()));
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
        for (int b = 0; b < kBands; ++b) types[side * kBands + b] = steps[bandIndex(kTypeField, side, b)];
    activeBands.store(dsp::MinimumPhaseCascade::activeSlots(types), std::memory_order_relaxed);
}
