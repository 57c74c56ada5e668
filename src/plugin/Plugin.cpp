#include "plugin/Plugin.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "dsp/DesignRate.h"
#include "gui/Editor.h"
#include "plugin/GlobalSettings.h"
#include "plugin/ParameterTable.h"

using namespace params;

namespace {

constexpr int kMinFrameSize = 4096;
constexpr int kMinRate = 5000;
constexpr int kMaxRate = 200000;
constexpr int kFallbackRate = 44100;

}  // namespace

Plugin::Plugin(audioMasterCallback audioMaster) : CPresetSystemEffect(audioMaster) {
    platform::TimedLock::Guard constructing(engineLock);

    cEffect.version = kVersion;
    setNumInputs(2);
    setNumOutputs(2);
    inputChannels = outputChannels = 2;
    setUniqueID(kUniqueId);
    canProcessReplacing(true);
    canDoubleReplacing(true);

    intRate = kFallbackRate;
    rate = kFallbackRate;
    frame.store({kMinFrameSize, 2 * kMinFrameSize});
    engine.setHostRate(rate);
    applyFrameToEngine();
    auditionSelector = kChannelLink;
    auditionBand = -1;

    analyzer.reset(new (std::nothrow) SPAN());
    if (analyzer) {
        analyzer->setSampleRate(static_cast<float>(intRate));
        analyzer->reset();
    }

    for (int i = 0; i < kUsedParameters; ++i) {
        values[i] = startValue(i);
        if (const int n = stepCount(i)) steps[i] = quantize(values[i], n);
    }
    for (int side = 0; side < 2; ++side)
        for (int b = 0; b < kBands; ++b) steps[bandIndex(0, side, b)] = kFirstBypassType;
    refreshActiveBands();
    designRateHz = dsp::designRate(intRate, false, true);
    redesignAllBands();
    channel = steps[kChannel] + 1;
    gainTarget = std::pow(10.0, (values[kOutput] - 0.5) * 24.0 / 20.0);
    engine.setOutputGainTarget(gainTarget);
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

void Plugin::suspend() {
    platform::TimedLock::Guard guard(engineLock);
    if (!guard) return;
    // Silence in every delay line and buffer, the gain at its target, the peaks cleared.
    engine.suspend();
    if (analyzer) analyzer->reset();
}

void Plugin::resume() {
    secondInputConnected.store(isInputConnected(1), std::memory_order_relaxed);
    secondOutputConnected.store(isOutputConnected(1), std::memory_order_relaxed);
    rebuildIfPending();
}

void Plugin::setSampleRate(float hostRate) {
    bool changed = false;
    {
        platform::TimedLock::Guard guard(engineLock);
        if (!guard) return;
        sampleRate = hostRate;
        // Guarded so that NaN or values beyond int never reach the conversion.
        const int newRate =
            (hostRate >= kMinRate && hostRate < kMaxRate + 1) ? static_cast<int>(hostRate) : kFallbackRate;
        changed = newRate != intRate;
        if (changed) {
            intRate = newRate;
            rate = newRate;
            engine.setHostRate(rate);
        }
        updateReportedDelay();
        // The analyzer gets the host's own rate: at a rate it has no tables for it goes quiet.
        if (analyzer) analyzer->setSampleRate(hostRate);
    }
    if (changed) redesignAllBands();
}

void Plugin::setBlockSize(VstInt32 size) {
    platform::TimedLock::Guard guard(engineLock);
    if (!guard) return;
    blockSize = size;
    const int frameSize = frame.load().frameSize;
    frame.store({frameSize, partitionForBlock(true, frameSize)});
    applyFrameToEngine();
    suspend();
    updateReportedDelay();
}

// The engine hops by half the partition, at its internal rate.
void Plugin::applyFrameToEngine() {
    const EngineFrame f = frame.load();
    engine.setFrame(f.frameSize, f.partition / 2);
}

// The engine's partition length from the host block size: twice the block at ordinary rates,
// less at high rates where the engine runs decimated, twice that with FAT, never more than
// twice the frame. setBlockSize counts a rate on a threshold as the lower class, a FAT or
// Resolution change as the higher one. Never below 2, so that a hop is at least one sample.
int Plugin::partitionForBlock(bool inclusiveThresholds, int frameSize) const {
    const int b = blockSize > 0 ? blockSize : 1;
    int p;
    if (inclusiveThresholds) p = intRate <= 50000 ? 2 * b : intRate <= 100000 ? b : b / 2;
    else p = intRate < 50000 ? 2 * b : intRate < 100000 ? b : b / 2;
    if (steps[kFat] == 1) p *= 2;
    if (p > 2 * frameSize) p = 2 * frameSize;
    return p < 2 ? 2 : p;
}

void Plugin::reconfigureFrame() {
    platform::TimedLock::Guard guard(engineLock);
    if (!guard) return;
    const int resolution = std::max(0, static_cast<int>(steps[kResolution]));
    const int fat = std::max(0, static_cast<int>(steps[kFat]));
    const int frameSize = kMinFrameSize << (resolution + fat);
    frame.store({frameSize, partitionForBlock(false, frameSize)});
    applyFrameToEngine();
    suspend();
}

// A band's sections follow its natural values at once; its curves (and the kernels built from
// all bands) follow too, except while a preset is being loaded: the load ends with one refresh.
void Plugin::updateBand(int b) {
    DesignScope design(*this);
    if (!design) return;
    bandModel.designBand(b, designRateHz);
    if (b == auditionBand) publishAudition();
    if (!isLoading) refreshCurves();
}

// FAT, LinPhase, Resolution, Solo and the sample rate change every band. Called without the
// engine lock held, so that locks are only ever taken in the order design, process, engine.
void Plugin::redesignAllBands() {
    DesignScope design(*this);
    if (!design) return;
    designRateHz = dsp::designRate(intRate, steps[kFat] == 1, steps[kLinPhase] == 1);
    bandModel.designAllBands(designRateHz);
    if (auditionBand >= 0) publishAudition();
    if (!isLoading) refreshCurves();
}

// The caller holds the design lock, which serializes everything that writes the curves. With
// LinPhase on the total curves are measured from the new kernels, so that the plot shows what
// the audio path applies; with it off they are the sums of the band curves, and the kernels
// are cleared.
void Plugin::refreshCurves() {
    bandModel.computeBandCurves();
    dsp::BiquadCoefficients sections[dsp::kBandSlots];
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) sections[slot] = bandModel.section(slot);
    const bool linPhase = steps[kLinPhase] == 1;
    dsp::KernelCurves measured;
    const dsp::KernelBuild build =
        kernels.buildKernels(sections, frame.load().frameSize, designRateHz, linPhase, processLock, &measured);
    if (build == dsp::KernelBuild::Built && linPhase) {
        for (int side = 0; side < dsp::kSides; ++side) bandModel.setTotalCurve(side, measured.side[side]);
    } else {
        bandModel.computeTotalCurves();
    }
}

// A kernel build whose lock wait ran out is repeated at the next chance the host gives on a
// thread other than the audio thread.
void Plugin::rebuildIfPending() {
    if (!kernels.rebuildPending() || isLoading) return;
    DesignScope design(*this);
    if (design) refreshCurves();
}

// Band settings, FAT, Resolution, LinPhase and Solo change the design; setParameter posts them
// (DesignHandover.h) and they are applied here by the thread that holds the design lock.
void Plugin::applyDesignParameter(int index, float value) {
    int band, side, field;
    if (bandParameter(index, band, side, field)) {
        if (applyBandParameter(index, value)) updateBand(band);
        return;
    }
    switch (index) {
        case kFat: case kResolution:
            reconfigureFrame();
            redesignAllBands();
            break;
        case kLinPhase: redesignAllBands(); break;
        case kSolo:
            bandModel.setSoloMask(static_cast<uint32_t>(steps[kSolo]) & 0xFFu);
            redesignAllBands();
            break;
        default: break;
    }
}

// Never waits: the design lock is only tried. A thread that does not get it leaves its posted
// work to the holder, whose DesignScope runs this again once it has let the lock go.
void Plugin::runPendingDesign() {
    while (designWork.pending()) {
        platform::TimedLock::Guard design(designLock, 0);
        if (!design) return;
        designWork.drain([this](int index, float value) { applyDesignParameter(index, value); });
    }
}

VstIntPtr Plugin::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    if (opcode == effEditIdle) rebuildIfPending();
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
    s.hostRate = intRate;
    s.midSide = steps[kLrMs] == 1;
    const int listen = steps[kListen];
    s.listen = listen >= 0 && listen <= 2 ? listen : 0;
    s.compensation = padding;
    s.analyzerWeightA = analyzerWeights[0];
    s.analyzerWeightB = analyzerWeights[1];
    s.feedAnalyzer = analyzerFeedActive();
    s.activeSlots = activeBands.load(std::memory_order_relaxed);
    SPAN* span = analyzer.get();
    engine.process<Sample>(
        inputs, outputs, frames, secondInputConnected.load(std::memory_order_relaxed),
        secondOutputConnected.load(std::memory_order_relaxed), s,
        [this](int slot) { return bandModel.readPublished(slot); }, kernelOps,
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
    const EngineFrame f = frame.load();
    return {intRate, f.frameSize, f.partition, steps[kFat] == 1, steps[kLinPhase] == 1, steps[kPower] == 1};
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
            designWork.post(index, value);
        } else {
            const int previous = steps[index];
            if (const int n = stepCount(index)) steps[index] = quantize(value, n);
            switch (index) {
                case kFat: case kLinPhase: case kSolo: designWork.post(index, value); break;
                case kLrMs: auditionSelector = kChannelLeft; break;
                case kResolution:
                    if (steps[kResolution] != previous) designWork.post(index, value);
                    break;
                case kOutput:
                    gainTarget = std::pow(10.0, (static_cast<double>(value) - 0.5) * 24.0 / 20.0);
                    engine.setOutputGainTarget(gainTarget);
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
        runPendingDesign();
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
        DesignScope design(*this);
        for (int side = 0; side < 2; ++side) {
            if (!write[side]) continue;
            values[sideIndex[side]] = value;
            if (field == kFreqField)
                bandModel.setFrequency(side, b, 20.0f * std::pow(10.0f, 3.0f * value));  // as the editor shows it
            else
                storeBandValue(side, b, field, value);
            CPresetSystemEffect::setParameter(sideIndex[side], value);
        }
        updateBand(b);
    }
    // The host hears of it outside our locks.
    for (int side = 0; side < 2; ++side)
        if (write[side]) callHost(audioMasterAutomate, sideIndex[side], 0, nullptr, value);
}

void Plugin::selectPreset(int index) {
    CPresetSystemEffect::selectPreset(index);
    // The load designed every band's sections but left curves and kernels for now: once.
    {
        DesignScope design(*this);
        if (design) refreshCurves();
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
    DesignScope design(*this);
    if (!design) return;
    auditionBand = band >= 0 && band < kBands ? band : -1;
    publishAudition();
    bandModel.computeBandCurves();
}

void Plugin::setAuditionWidth(float width) {
    DesignScope design(*this);
    if (!design) return;
    auditionWidth = std::clamp(width, 0.0f, 1.0f);
    publishAudition();
}

void Plugin::setAuditionLevel(float level) {
    DesignScope design(*this);
    if (!design) return;
    auditionLevel = std::clamp(level, 0.0f, 1.0f);
    publishAudition();
}

// The section heard follows the band's frequency on the side the audition channel selects, at
// the host rate. The caller holds the design lock, which keeps the hand-over to one writer.
void Plugin::publishAudition() {
    const int b = auditionBand;
    if (b < 0) {
        engine.audition().publish(dsp::AuditionSection::off());
        return;
    }
    const int side = auditionSelector == kChannelRight ? 1 : 0;
    engine.audition().publish(
        dsp::AuditionSection::design(bandModel.band(side, b).frequency, auditionWidth, auditionLevel, intRate));
}

void Plugin::getOutputPeaks(float& a, float& b) const {
    a = engine.peaks().a();
    b = engine.peaks().b();
}

void Plugin::resetOutputPeaks() { engine.peaks().clear(); }

// The minimum-phase path runs only the bands whose type is one of the seven shapes.
void Plugin::refreshActiveBands() {
    int types[dsp::kBandSlots];
    for (int side = 0; side < dsp::kSides; ++side)
        for (int b = 0; b < kBands; ++b) types[side * kBands + b] = steps[bandIndex(kTypeField, side, b)];
    activeBands.store(dsp::MinimumPhaseCascade::activeSlots(types), std::memory_order_relaxed);
}
