#pragma once
// The whole audio path of one plug-in instance, from the host's input buffers to its output
// buffers: the optional mid/side encoder, the equalizer at its internal rate (linear-phase
// block convolution or the minimum-phase cascade, with the rate converters around it), the
// smoothed output gain, listen, the compensation delay, the decoder, band audition, the
// analyzer feed and the held peaks. Power off runs the bypass: the raw inputs through the
// compensation delay alone.
//
// Which equalizer runs at which rate (`designRate` = host rate ×2, ×1, ×1/2 or ×1/4):
//   LinPhase on:  FAT off: r < 80000 ×1, r < 170000 ×1/2, else ×1/4
//                 FAT on:  r < 80000 ×2, r < 170000 ×1,   else ×1/2
//   LinPhase off: FAT on and r < 80000 ×2, else ×1
// Delays, with hop and N at the internal rate and d = hop + N/2 − 1 the convolution's delay
// (converter figures in RateConverters.h):
//   linear ×1: d; ×2: d/2 + 62.5 (d is odd whenever hop is even; for an odd hop, d/2 + 63);
//   ×1/2: 2·d + 126; ×1/4: 4·d + 255; minimum ×1: 0; minimum ×2: 63.
// Every path delays by a whole number of host samples: an impulse comes out as a peak on one
// sample, symmetric around it.
//
// Routine families. Each path's per-sample loop exists in the plain family (each side with
// scalar arithmetic) and the SSE2 family (both sides in one register), chosen once at
// construction and bit-identical in their results (SidePair.h); a block runs one compile-time
// instance of the loop for its path, family and sample type. The minimum-phase paths run that
// loop in stages over stretches of the block, so that the cascade sees many samples at once.
//
// Hostile samples. A non-finite input sample enters as silence. A finite one can still
// overflow a filter state; the value that shows it is kept out of the compensation delay and
// the path's state is cleared at the end of that block, so the output is always finite and
// the path is back to normal one block later.
//
// Threads. process() runs on the audio thread and owns every buffer. Other threads change the
// engine only through the setters below, which post the change for the next block (atomics,
// no locks), and through the two lock-free hand-overs (audition sections, peak holds). The
// owner's kernel source (PathConvolutionOps) hands over published kernels without a lock, so
// the audio thread never waits. Nothing here allocates after construction.

#include <algorithm>
#include <atomic>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>

#include "dsp/AuditionFilter.h"
#include "dsp/CompensationDelay.h"
#include "dsp/DesignRate.h"
#include "dsp/GainSmoother.h"
#include "dsp/MidSide.h"
#include "dsp/MinimumPhaseCascade.h"
#include "dsp/PathConvolver.h"
#include "dsp/PathPeakHold.h"
#include "dsp/RateConverters.h"
#include "dsp/SidePair.h"

namespace dsp {

enum class AudioPathKind { Bypass, LinearUnity, LinearDouble, LinearHalf, LinearQuarter, MinimumUnity, MinimumDouble };

// What the owner decides per process call.
struct AudioBlockSettings {
    bool power = true;
    bool linPhase = true;
    bool fat = false;
    int hostRate = 44100;          // the integer host rate
    bool midSide = false;          // the LR<>MS switch (applied only to truly stereo buffers)
    int listen = 0;                // 0 both sides, 1 side A only, 2 side B only
    int compensation = 0;          // D, the padding of the latency figures
    double analyzerWeightA = 0.5;  // the analyzer's mono mix of the two sides
    double analyzerWeightB = 0.5;
    bool feedAnalyzer = false;     // analyzer on and its view open
    uint32_t activeSlots = 0;      // minimum phase: band slots switched on (MinimumPhaseCascade::activeSlots)
};

class AudioEngine {
public:
    // Allocates every buffer for the largest frame and delay. The routine family is the one
    // this machine runs best unless one is named.
    explicit AudioEngine(int maxFrameSize = PathConvolver::kMaxFrameSize,
                         int maxCompensation = CompensationDelay::kMaxDelay)
        : AudioEngine(defaultPathFamily(), maxFrameSize, maxCompensation) {}
    explicit AudioEngine(PathFamily family, int maxFrameSize = PathConvolver::kMaxFrameSize,
                         int maxCompensation = CompensationDelay::kMaxDelay);
    AudioEngine(const AudioEngine&) = delete;
    AudioEngine& operator=(const AudioEngine&) = delete;

    static AudioPathKind pathFor(const AudioBlockSettings& s);
    // The path's own delay in host samples, for a frame of N and a hop at the internal rate.
    static double pathDelay(AudioPathKind kind, int frameSize, int hop);

    // ---- Any thread; each takes effect at the start of the next block --------------------
    void setHostRate(double hostRate) { hostRate_.store(hostRate, std::memory_order_relaxed); }
    void setOutputGainTarget(double gain) { gainTarget_.store(gain, std::memory_order_relaxed); }
    // Frame size N and hop (samples at the internal rate). A change clears the convolution.
    void setFrame(int frameSize, int hop) {
        frame_.store(pack(frameSize, hop), std::memory_order_relaxed);
    }
    // After a pause: all delay lines and buffers silent, the gain at the target it has now
    // without a ramp (a target set after this call ramps from there), the peaks cleared
    // (those at once).
    void suspend() {
        peaks_.clear();
        gainAtSuspend_.store(gainTarget_.load(std::memory_order_relaxed), std::memory_order_relaxed);
        clearPending_.store(true, std::memory_order_release);
    }

    PathPeakHold& peaks() { return peaks_; }
    const PathPeakHold& peaks() const { return peaks_; }
    // The editor publishes the audition section here (AuditionSection::design / off).
    AuditionHandoff& audition() { return auditionHandoff_; }

    // ---- Audio thread ----------------------------------------------------------------------
    // One host block. inputs/outputs are the host's arrays of two channel pointers; a second
    // channel that is not connected falls back to the first. reader(slot) yields the band
    // sections for the minimum-phase path (read once per block); ops transforms and multiplies
    // for the linear-phase path; feed(float) receives one analyzer sample per host sample
    // when settings.feedAnalyzer is set.
    template <typename Sample, class Reader, class Feed>
    void process(Sample* const* inputs, Sample* const* outputs, int frames, bool secondInputConnected,
                 bool secondOutputConnected, const AudioBlockSettings& settings, Reader&& reader,
                 PathConvolutionOps& ops, Feed&& feed);

    // Audio-thread state, for tests and diagnostics.
    PathFamily family() const { return family_; }
    AudioPathKind currentPath() const { return path_; }
    double currentGain() const { return gain_.current(); }
    const PathConvolver& convolver() const { return convolver_; }

private:
    // The analyzer's sample: a sum of huge sides can leave the float range.
    static float finiteFloat(double v) { return static_cast<float>(std::fmin(std::fmax(finiteOrZero(v), -FLT_MAX), FLT_MAX)); }
    static int64_t pack(int n, int hop) { return (static_cast<int64_t>(n) << 32) | static_cast<uint32_t>(hop); }

    // Block start: applies what other threads posted and what the settings ask for.
    void beginBlock(AudioPathKind kind, const AudioBlockSettings& s);
    void clearAll();
    void clearPath(AudioPathKind kind);

    // The block's loop for its path, in the engine's family.
    template <AudioPathKind Kind, typename Sample, class Feed>
    void runIn(const ChannelBuffers<Sample>& io, int frames, const AudioBlockSettings& s, const MidSide& ms,
               PathConvolutionOps& ops, Feed& feed) {
        if (family_ == PathFamily::Sse2) run<Kind, Sse2Pair>(io, frames, s, ms, ops, feed);
        else run<Kind, PlainPair>(io, frames, s, ms, ops, feed);
    }

    template <AudioPathKind Kind, class P, typename Sample, class Feed>
    void run(const ChannelBuffers<Sample>& io, int frames, const AudioBlockSettings& s, const MidSide& ms,
             PathConvolutionOps& ops, Feed& feed);

    static constexpr bool isMinimum(AudioPathKind kind) {
        return kind == AudioPathKind::MinimumUnity || kind == AudioPathKind::MinimumDouble;
    }
    // Host samples per stage of the minimum-phase paths: the cascade takes its whole stretch
    // of samples at the internal rate at once.
    static constexpr int minimumStretch(AudioPathKind kind) {
        return MinimumPhaseCascade::kMaxBlock / (kind == AudioPathKind::MinimumDouble ? 2 : 1);
    }

    // The minimum-phase paths' first two stages for host samples start..end − 1: the inputs
    // encoded (and taken to twice the rate), then the cascade over all of them, into inner_.
    template <AudioPathKind Kind, class P, typename Sample>
    void equalizeMinimum(const ChannelBuffers<Sample>& io, int start, int end, const MidSide& ms) {
        double* v = inner_;
        for (int i = start; i < end; ++i) {
            const P x = ms.template encode<P>(finiteOrZero(io.in[0][i]), finiteOrZero(io.in[1][i]));
            if constexpr (Kind == AudioPathKind::MinimumDouble) {
                P up[2];
                doubleRate_.up(x, up);
                up[0].store(v);
                up[1].store(v + 2);
                v += 4;
            } else {
                x.store(v);
                v += 2;
            }
        }
        cascade_.process<P>(inner_, static_cast<int>(v - inner_) / 2);
    }
    // Its last stage's input for host sample i of the stretch that begins at `start`.
    template <AudioPathKind Kind, class P>
    P equalizedMinimum(int i, int start) {
        if constexpr (Kind == AudioPathKind::MinimumDouble) {
            const double* v = inner_ + 4 * (i - start);
            const P pair[2] = {P::load(v), P::load(v + 2)};
            return doubleRate_.down(pair);
        } else {
            return P::load(inner_ + 2 * (i - start));
        }
    }

    // The linear-phase equalizer at the internal rate, one sample of each side.
    template <class P>
    [[gnu::always_inline]] P equalize(P x, PathConvolutionOps& ops) {
        // The convolver returns each side through memory. The two values are kept apart there,
        // so that the pair is rebuilt from two loads: one 16-byte load of two 8-byte stores
        // cannot be forwarded from the store buffer and would stall every sample.
        double sides[3] = {x.a(), 0.0, x.b()};
        convolver_.process(sides[0], sides[2], ops);
        return P::make(sides[0], sides[2]);
    }

    const PathFamily family_;
    std::atomic<double> hostRate_{44100.0};
    std::atomic<double> gainTarget_{1.0};
    std::atomic<double> gainAtSuspend_{std::numeric_limits<double>::quiet_NaN()};  // none yet
    std::atomic<int64_t> frame_;
    std::atomic<bool> clearPending_{true};
    PathPeakHold peaks_;
    AuditionHandoff auditionHandoff_;

    // Audio thread only.
    double appliedRate_ = 0.0;
    int64_t appliedFrame_ = -1;
    AudioPathKind path_ = AudioPathKind::Bypass;
    GainSmoother gain_;
    PathConvolver convolver_;
    MinimumPhaseCascade cascade_;
    DoubleRateConverter doubleRate_;
    HalfRateConverter halfRate_;
    QuarterRateConverter quarterRate_;
    CompensationDelay delay_;
    AuditionFilter audition_;
    alignas(16) double inner_[2 * MinimumPhaseCascade::kMaxBlock];  // the minimum-phase stretch, (A, B) pairs
};

// ---------------------------------------------------------------------------------------------

template <typename Sample, class Reader, class Feed>
void AudioEngine::process(Sample* const* inputs, Sample* const* outputs, int frames, bool secondInputConnected,
                          bool secondOutputConnected, const AudioBlockSettings& settings, Reader&& reader,
                          PathConvolutionOps& ops, Feed&& feed) {
    if (!inputs || !outputs || !inputs[0] || !outputs[0] || frames <= 0) return;
    const auto io = ChannelBuffers<Sample>::resolve(inputs, outputs, secondInputConnected, secondOutputConnected);
    const AudioPathKind kind = pathFor(settings);
    beginBlock(kind, settings);
    if (kind == AudioPathKind::MinimumUnity || kind == AudioPathKind::MinimumDouble)
        cascade_.load(reader, settings.activeSlots);
    const MidSide ms = MidSide::choose(settings.midSide, io.stereo);

    switch (kind) {
        case AudioPathKind::Bypass: runIn<AudioPathKind::Bypass>(io, frames, settings, ms, ops, feed); break;
        case AudioPathKind::LinearUnity: runIn<AudioPathKind::LinearUnity>(io, frames, settings, ms, ops, feed); break;
        case AudioPathKind::LinearDouble:
            runIn<AudioPathKind::LinearDouble>(io, frames, settings, ms, ops, feed);
            break;
        case AudioPathKind::LinearHalf: runIn<AudioPathKind::LinearHalf>(io, frames, settings, ms, ops, feed); break;
        case AudioPathKind::LinearQuarter:
            runIn<AudioPathKind::LinearQuarter>(io, frames, settings, ms, ops, feed);
            break;
        case AudioPathKind::MinimumUnity:
            runIn<AudioPathKind::MinimumUnity>(io, frames, settings, ms, ops, feed);
            break;
        case AudioPathKind::MinimumDouble:
            runIn<AudioPathKind::MinimumDouble>(io, frames, settings, ms, ops, feed);
            break;
    }
}

template <AudioPathKind Kind, class P, typename Sample, class Feed>
void AudioEngine::run(const ChannelBuffers<Sample>& io, int frames, const AudioBlockSettings& s, const MidSide& ms,
                      PathConvolutionOps& ops, Feed& feed) {
    const ListenFactors listen = ListenFactors::forListen(s.listen);
    const P factors = P::make(ms.h * listen.a, ms.h * listen.b);
    const P weights = P::make(s.analyzerWeightA, s.analyzerWeightB);
    const bool auditioning = audition_.active();
    const bool feeding = s.feedAnalyzer;
    const bool gainSettled = gain_.settled();
    P peak = P::zero();
    P health = P::zero();  // stays zero while every sample leaving the equalizer is finite

    // The minimum-phase paths run in stages over stretches of the block (equalizeMinimum);
    // the others take each sample through the whole path.
    const int stretch = isMinimum(Kind) ? minimumStretch(Kind) : frames;
    for (int start = 0; start < frames; start += stretch) {
        const int end = std::min(frames, start + stretch);
        if constexpr (isMinimum(Kind)) equalizeMinimum<Kind, P>(io, start, end, ms);
        for (int i = start; i < end; ++i) {
            // A non-finite input sample never reaches a filter state: it would stay there for good.
            const double xL = finiteOrZero(io.in[0][i]);
            const double xR = finiteOrZero(io.in[1][i]);
            const double g = gainSettled ? gain_.current() : gain_.next();
            P x;

            if constexpr (Kind == AudioPathKind::Bypass) {
                x = delay_.process(P::make(xL, xR));
            } else {
                if constexpr (isMinimum(Kind)) {
                    x = equalizedMinimum<Kind, P>(i, start);
                } else {
                    x = ms.template encode<P>(xL, xR);
                }
                if constexpr (Kind == AudioPathKind::LinearUnity) {
                    x = equalize(x, ops);
                } else if constexpr (Kind == AudioPathKind::LinearDouble) {
                    P inner[2];
                    doubleRate_.up(x, inner);
                    inner[0] = equalize(inner[0], ops);
                    inner[1] = equalize(inner[1], ops);
                    x = doubleRate_.down(inner);
                } else if constexpr (Kind == AudioPathKind::LinearHalf) {
                    P inner;
                    if (halfRate_.down(x, inner)) halfRate_.up(equalize(inner, ops));
                    x = halfRate_.template out<P>();
                } else if constexpr (Kind == AudioPathKind::LinearQuarter) {
                    P inner;
                    if (quarterRate_.down(x, inner)) quarterRate_.up(equalize(inner, ops));
                    x = quarterRate_.template out<P>();
                }
                // A finite input can still overflow a state; such a value is caught here, kept out
                // of the compensation delay, and its path cleared at the end of the block.
                x = x * (P::splat(g) * factors);
                health = health + (x - x);
                x = delay_.process(x.finiteOrZero());
            }

            if (!auditioning) {
                if (feeding) {
                    const P w = weights * x;
                    feed(finiteFloat(w.a() + w.b()));
                }
                const P y = Kind == AudioPathKind::Bypass ? x : ms.decode(x);
                io.out[0][i] = static_cast<Sample>(y.a());
                io.out[1][i] = static_cast<Sample>(y.b());
            } else {
                const double yL = audition_.process<Sample>(0, xL);
                const double yR = audition_.process<Sample>(1, xR);
                if (feeding) feed(finiteFloat(s.analyzerWeightA * yL + s.analyzerWeightB * yR));
                io.out[0][i] = static_cast<Sample>(yL * g);
                io.out[1][i] = static_cast<Sample>(yR * g);
            }
            PathPeakHold::trackPair(peak, x);
        }
    }
    peaks_.raise(peak.a(), peak.b());
    if (!health.bothZero()) clearPath(Kind);
}

}  // namespace dsp
