#include "dsp/AudioEngine.h"

namespace dsp {
namespace {

// A gain that is not a finite number is never taken over; the one in use stays.
double finiteOr(double value, double fallback) { return std::isfinite(value) ? value : fallback; }

// A longer convolution hop is taken only where the plan's estimate saves at least this share
// of the work: near the optimum the estimates of neighbouring hops differ by less than the
// cache effects they leave out (measured: the transforms of the longest hops run slower than
// estimated), and every doubling makes a kernel change mid-block settle more samples.
constexpr double kLeastSaving = 1.0 / 16.0;

}  // namespace

AudioEngine::AudioEngine(PathFamily family, int maxFrameSize, int maxCompensation)
    : family_(family), frame_(pack(4096, 4096, 4096)), convolver_(maxFrameSize), delay_(maxCompensation) {
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

int AudioEngine::borrowedDelay(AudioPathKind kind, int frameSize, int hop, int convolutionHop) {
    const double added = pathDelay(kind, frameSize, convolutionHop) - pathDelay(kind, frameSize, hop);
    return added > 0.0 && added == std::floor(added) ? static_cast<int>(added) : 0;
}

int AudioEngine::convolutionHopFor(AudioPathKind kind, int frameSize, int hop, int padding) {
    int best = hop;
    double bestWork = PartitionPlan::forFrame(frameSize, hop).workPerSample();
    for (long longer = 2L * hop; longer <= frameSize; longer *= 2) {
        const int added = borrowedDelay(kind, frameSize, hop, static_cast<int>(longer));
        if (added == 0 || added > padding) break;
        const double work = PartitionPlan::forFrame(frameSize, static_cast<int>(longer)).workPerSample();
        if (work < bestWork * (1.0 - kLeastSaving)) {
            bestWork = work;
            best = static_cast<int>(longer);
        }
    }
    return best;
}

int64_t AudioEngine::pack(int n, int hop, int convolutionHop) {
    int shift = 0;
    while (shift < 31 && (static_cast<int64_t>(hop) << (shift + 1)) <= convolutionHop) ++shift;
    return (static_cast<int64_t>(n) << 40) | (static_cast<int64_t>(shift) << 32) | static_cast<uint32_t>(hop);
}

AudioEngine::Frame AudioEngine::unpack(int64_t packed) {
    const int hop = static_cast<int>(packed & 0xffffffff);
    const int shift = static_cast<int>((packed >> 32) & 0xff);
    const int64_t convolutionHop = std::min<int64_t>(static_cast<int64_t>(hop) << shift, INT32_MAX);
    return {static_cast<int>(packed >> 40), hop, static_cast<int>(convolutionHop)};
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
        const Frame f = unpack(frame);
        convolver_.configure(f.frameSize, f.hop, f.convolutionHop);
        appliedFrame_ = frame;
    }

    // A path left earlier may still hold audio from then; it starts again from silence.
    if (kind != path_) {
        clearPath(kind);
        path_ = kind;
    }
    // The ×2 converters take the phase that keeps the path on the host's sample grid.
    doubleRate_.setInnerDelay(kind == AudioPathKind::LinearDouble ? convolver_.delay() : 0);

    // The padding (from the settings) and the frame are posted apart: for a block or two
    // after a reconfiguration the padding may be meant for another convolution hop. The total
    // delay is then off by at most that hop's extra delay, the padding never below nothing,
    // and the suspend that follows every reconfiguration starts the path again from silence.
    const int borrowed = isLinear(kind) ? borrowedDelay(kind, convolver_.frameSize(), convolver_.hop(),
                                                        convolver_.convolutionHop())
                                        : 0;
    delay_.setDelay(std::max(0, s.compensation - borrowed));

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
