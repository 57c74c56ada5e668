#include "plugin/EqualizerControl.h"

#include <algorithm>

#include "dsp/DesignRate.h"
#include "plugin/Latency.h"
#include "plugin/ParameterTable.h"

using namespace params;

namespace {

constexpr int kMinRate = 5000;
constexpr int kMaxRate = 200000;
constexpr int kFallbackRate = 44100;
constexpr int kDefaultHostBlock = 1024;  // until the host sets one

}  // namespace

EqualizerControl::EqualizerControl(EqualizerOwner& owner, dsp::BandModel& bands)
    : owner(owner), bands(bands), hostBlock(kDefaultHostBlock) {
    intRate = kFallbackRate;
    engine.setHostRate(kFallbackRate);
    applyFrameToEngine();
    designRateHz = dsp::designRate(kFallbackRate, false, true);
}

void EqualizerControl::suspend() {
    platform::TimedLock::Guard guard(engineLock);
    if (!guard) return;
    // Silence in every delay line and buffer, the gain at its target, the peaks cleared.
    engine.suspend();
    owner.engineCleared();
}

void EqualizerControl::resume(bool secondInput, bool secondOutput) {
    secondInputConnected.store(secondInput, std::memory_order_relaxed);
    secondOutputConnected.store(secondOutput, std::memory_order_relaxed);
    rebuildIfPending();
}

void EqualizerControl::setSampleRate(float hostRate) {
    bool changed = false;
    {
        platform::TimedLock::Guard guard(engineLock);
        if (!guard) return;
        // Guarded so that NaN or values beyond int never reach the conversion.
        const int newRate =
            (hostRate >= kMinRate && hostRate < kMaxRate + 1) ? static_cast<int>(hostRate) : kFallbackRate;
        changed = newRate != intRate;
        if (changed) {
            intRate = newRate;
            engine.setHostRate(newRate);
            // The padding, and with it the convolution hop, follows the rate.
            followPadding();
        }
        owner.hostRateSet(hostRate);
    }
    // Every band is redesigned, which cuts the kernels for the new frame too.
    if (changed) redesignAllBands();
}

void EqualizerControl::setBlockSize(int size) {
    bool recut = false;
    {
        platform::TimedLock::Guard guard(engineLock);
        if (!guard) return;
        hostBlock = size;
        const int frameSize = frame_.load().frameSize;
        recut = setFrame(frameFor(frameSize, partitionForBlock(true, frameSize)));
        owner.blockSizeSet();
    }
    if (recut) recutKernels();
}

// Mode 2 pads the path to a constant delay; the other modes have no padding to borrow from.
// The owner stores the mode before this call, so for a block or two the audio thread may pad
// for the new mode while convolving with the old hop (AudioEngine::beginBlock says what then
// happens); the suspend here starts the path again from silence with the new hop.
void EqualizerControl::compensationModeChanged() {
    bool recut = false;
    {
        platform::TimedLock::Guard guard(engineLock);
        if (!guard) return;
        recut = followPadding();
    }
    if (recut) recutKernels();
}

bool EqualizerControl::followPadding() {
    const EngineFrame f = frame_.load();
    const EngineFrame wanted = frameFor(f.frameSize, f.partition);
    return wanted != f && setFrame(wanted);
}

bool EqualizerControl::setFrame(EngineFrame f) {
    const dsp::KernelFrame before = kernelFrame();
    frame_.store(f);
    applyFrameToEngine();
    suspend();
    const dsp::KernelFrame after = kernelFrame();
    return after.frameSize != before.frameSize || after.hop != before.hop;
}

void EqualizerControl::recutKernels() {
    if (owner.presetLoading()) return;
    DesignScope design(*this);
    if (design) refreshCurves();
}

void EqualizerControl::applyFrameToEngine() {
    const EngineFrame f = frame_.load();
    engine.setFrame(f.frameSize, f.hop(), f.convolutionHop);
}

// The kernel sets are cut for the convolver's plan, which follows the convolution hop.
dsp::KernelFrame EqualizerControl::kernelFrame() const {
    const EngineFrame f = frame_.load();
    return {f.frameSize, f.convolutionHop};
}

// The hop the engine convolves with: the design hop, or where the latency figures pad the
// linear-phase path, the cheapest longer one whose extra delay that padding covers. LinPhase
// and Power may change at any block without a new frame, so the padding is the one the
// linear path of these settings gets; while another path runs the hop is not used.
EngineFrame EqualizerControl::frameFor(int frameSize, int partition) const {
    const EngineFrame designed{frameSize, partition, partition / 2};
    if (owner.compensationMode() != latency::kAlways) return designed;
    const bool fat = owner.switchStep(kFat) == 1;
    const int padding = latency::figures(latency::kAlways, {intRate, frameSize, partition, fat, true, true}).padding;
    const dsp::AudioPathKind path =
        dsp::AudioEngine::pathFor({.power = true, .linPhase = true, .fat = fat, .hostRate = intRate});
    return {frameSize, partition, dsp::AudioEngine::convolutionHopFor(path, frameSize, designed.hop(), padding)};
}

// The engine's partition length from the host block size: twice the block at ordinary rates,
// less at high rates where the engine runs decimated, twice that with FAT, never more than
// twice the frame. setBlockSize counts a rate on a threshold as the lower class, a FAT or
// Resolution change as the higher one. Never below 2, so that a hop is at least one sample.
int EqualizerControl::partitionForBlock(bool inclusiveThresholds, int frameSize) const {
    const int b = hostBlock > 0 ? hostBlock : 1;
    int p;
    if (inclusiveThresholds) p = intRate <= 50000 ? 2 * b : intRate <= 100000 ? b : b / 2;
    else p = intRate < 50000 ? 2 * b : intRate < 100000 ? b : b / 2;
    if (owner.switchStep(kFat) == 1) p *= 2;
    if (p > 2 * frameSize) p = 2 * frameSize;
    return p < 2 ? 2 : p;
}

// The kernels follow with the redesign of every band that comes next.
void EqualizerControl::reconfigureFrame() {
    platform::TimedLock::Guard guard(engineLock);
    if (!guard) return;
    const int resolution = std::max(0, owner.switchStep(kResolution));
    const int fat = std::max(0, owner.switchStep(kFat));
    const int frameSize = kMinFrameSize << (resolution + fat);
    setFrame(frameFor(frameSize, partitionForBlock(false, frameSize)));
}

// A band's sections follow its natural values at once; its curves (and the kernels built from
// all bands) follow too, except while a preset is being loaded: the load ends with one refresh.
void EqualizerControl::updateBand(int b) {
    DesignScope design(*this);
    if (!design) return;
    bands.designBand(b, designRateHz);
    owner.bandsDesigned(b);
    if (!owner.presetLoading()) refreshCurves();
}

// FAT, LinPhase, Resolution, Solo and the sample rate change every band. Called without the
// engine lock held, so that locks are only ever taken in the order design, process, engine.
void EqualizerControl::redesignAllBands() {
    DesignScope design(*this);
    if (!design) return;
    designRateHz = dsp::designRate(intRate, owner.switchStep(kFat) == 1, owner.switchStep(kLinPhase) == 1);
    bands.designAllBands(designRateHz);
    owner.bandsDesigned(-1);
    if (!owner.presetLoading()) refreshCurves();
}

// The caller holds the design lock, which serializes everything that writes the curves. With
// LinPhase on the total curves are measured from the new kernels, so that the plot shows what
// the audio path applies; with it off they are the sums of the band curves, and the kernels
// are cleared.
void EqualizerControl::refreshCurves() {
    bands.computeBandCurves();
    dsp::BiquadCoefficients sections[dsp::kBandSlots];
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) sections[slot] = bands.section(slot);
    const bool linPhase = owner.switchStep(kLinPhase) == 1;
    dsp::KernelCurves measured;
    const dsp::KernelBuild build =
        kernels.buildKernels(sections, kernelFrame(), designRateHz, linPhase, processLock, &measured);
    if (build == dsp::KernelBuild::Built && linPhase) {
        for (int side = 0; side < dsp::kSides; ++side) bands.setTotalCurve(side, measured.side[side]);
    } else {
        bands.computeTotalCurves();
    }
}

// A kernel build whose lock wait ran out is repeated at the next chance the host gives on a
// thread other than the audio thread.
void EqualizerControl::rebuildIfPending() {
    if (!kernels.rebuildPending() || owner.presetLoading()) return;
    DesignScope design(*this);
    if (design) refreshCurves();
}

// What a posted change does, done by the thread that holds the design lock.
void EqualizerControl::applyDesignParameter(int index, float value) {
    int band, side, field;
    if (bandParameter(index, band, side, field)) {
        if (owner.storeBandParameter(index, value)) updateBand(band);
        return;
    }
    switch (index) {
        case kFat: case kResolution:
            reconfigureFrame();
            redesignAllBands();
            break;
        case kLinPhase: redesignAllBands(); break;
        case kSolo:
            bands.setSoloMask(static_cast<uint32_t>(owner.switchStep(kSolo)) & 0xFFu);
            redesignAllBands();
            break;
        default: break;
    }
}

void EqualizerControl::post(int index, float value) {
    if (onAudioThread()) {
        audioWork.post(index, value);
        runAudioThreadWork();
    } else {
        controlWork.post(index, value);
        DesignScope design(*this);  // its release does the work
    }
}

void EqualizerControl::drainPending() {
    const auto apply = [this](int index, float value) { applyDesignParameter(index, value); };
    if (!onAudioThread()) controlWork.drain(apply);
    audioWork.drain(apply);
}

// The outermost scope does what was posted until now, once, and lets the lock go; then it does
// the audio thread's changes that arrived meanwhile (their poster found the lock taken). Both are
// bounded, so a stream of automation cannot keep a thread here: whatever is still posted is done
// by the audio thread before its next block, or by the next scope.
void EqualizerControl::leaveDesignScope() {
    if (designDepth == 1) drainPending();
    --designDepth;
    designLock.unlock();
    runAudioThreadWork();
}

// Never waits: the design lock is only tried, and only by a thread outside any scope.
void EqualizerControl::runAudioThreadWork() {
    constexpr int kPasses = 2;
    for (int pass = 0; pass < kPasses && audioWork.pending(); ++pass) {
        platform::TimedLock::Guard design(designLock, 0);
        if (!design || designDepth != 0) return;
        ++designDepth;
        drainPending();
        --designDepth;
    }
}
