#include "dsp/AudioEngine.h"

namespace dsp {
namespace {

// A gain that is not a finite number is never taken over; the one in use stays.
double finiteOr(double value, double fallback) { return std::isfinite(value) ? value : fallback; }

}  // namespace

AudioEngine::AudioEngine(PathFamily family, int maxFrameSize, int maxCompensation)
    : family_(family), frame_(pack(4096, 4096)), convolver_(maxFrameSize), delay_(maxCompensation) {
    gain_.setRate(hostRate_.load());
}

AudioPathKind AudioEngine::pathFor(const AudioBlockSettings& s) {
    if (!s.power) return AudioPathKind::Bypass;
    const RateRatio ratio = rateRatio(s.hostRate, s.fat, s.linPhase);
    if (!s.linPhase) return ratio == RateRatio::Double ? AudioPathKind::MinimumDouble : AudioPathKind::MinimumUnity;
    switch (ratio) {
        case RateRatio::Double: return AudioPathKind::LinearDouble;
        case RateRatio::Half: return AudioPathKind::LinearHalf;
        case RateRatio::Quarter: return AudioPathKind::LinearQuarter;
        default: return AudioPathKind::LinearUnity;
    }
}

double AudioEngine::pathDelay(AudioPathKind kind, int frameSize, int hop) {
    const int convolution = hop + frameSize / 2 - 1;  // at the internal rate
    switch (kind) {
        case AudioPathKind::LinearUnity: return convolution;
        case AudioPathKind::LinearDouble: return DoubleRateConverter::delayAround(convolution);
        case AudioPathKind::LinearHalf: return 2.0 * convolution + HalfRateConverter::kDelay;
        case AudioPathKind::LinearQuarter: return 4.0 * convolution + QuarterRateConverter::kDelay;
        case AudioPathKind::MinimumDouble: return DoubleRateConverter::delayAround(0);
        default: return 0.0;
    }
}

void AudioEngine::beginBlock(AudioPathKind kind, const AudioBlockSettings& s) {
    const bool clear = clearPending_.exchange(false, std::memory_order_acquire);
    if (clear) clearAll();

    const double rate = hostRate_.load(std::memory_order_relaxed);
    if (rate != appliedRate_ && rate > 0.0) {
        gain_.setRate(rate);
        appliedRate_ = rate;
    }
    const double target = finiteOr(gainTarget_.load(std::memory_order_relaxed), gain_.target());
    gain_.setTarget(target);
    // Before the first suspend there is no earlier gain: the path starts at the target.
    if (clear) gain_.jumpTo(finiteOr(gainAtSuspend_.load(std::memory_order_relaxed), target));

    const int64_t frame = frame_.load(std::memory_order_relaxed);
    if (frame != appliedFrame_) {
        convolver_.configure(static_cast<int>(frame >> 32), static_cast<int>(frame & 0xffffffff));
        appliedFrame_ = frame;
    }

    // A path left earlier may still hold audio from then; it starts again from silence.
    if (kind != path_) {
        clearPath(kind);
        path_ = kind;
    }
    // The ×2 converters take the phase that keeps the path on the host's sample grid.
    doubleRate_.setInnerDelay(kind == AudioPathKind::LinearDouble ? convolver_.delay() : 0);

    delay_.setDelay(s.compensation);

    const AuditionSection& section = auditionHandoff_.read();
    if (section.active && !audition_.active()) audition_.clear();
    audition_.setSection(section);
}

void AudioEngine::clearPath(AudioPathKind kind) {
    switch (kind) {
        case AudioPathKind::LinearUnity: convolver_.clear(); break;
        case AudioPathKind::LinearDouble:
            convolver_.clear();
            doubleRate_.clear();
            break;
        case AudioPathKind::LinearHalf:
            convolver_.clear();
            halfRate_.clear();
            break;
        case AudioPathKind::LinearQuarter:
            convolver_.clear();
            quarterRate_.clear();
            break;
        case AudioPathKind::MinimumUnity: cascade_.clear(); break;
        case AudioPathKind::MinimumDouble:
            cascade_.clear();
            doubleRate_.clear();
            break;
        case AudioPathKind::Bypass: break;
    }
}

void AudioEngine::clearAll() {
    convolver_.clear();
    cascade_.clear();
    doubleRate_.clear();
    halfRate_.clear();
    quarterRate_.clear();
    delay_.clear();
    audition_.clear();
}

}  // namespace dsp
