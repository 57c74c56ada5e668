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
// instance of the loop for its path, family and sample type.
//
// Threads. process() runs on the audio thread and owns every buffer. Other threads change the
// engine only through the setters below, which post the change for the next block (atomics,
// no locks), and through the two lock-free hand-overs (audition sections, peak holds). The
// owner's kernel multiply (PathConvolutionOps) reads published kernels without a lock, so the
// audio thread never waits. Nothing here allocates after construction.

#include <atomic>
#include <cmath>
#include <cstdint>

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
    // After a pause: all delay lines and buffers silent, the gain at its target without a
    // ramp, the peaks cleared (those at once).
    void suspend() {
        peaks_.clear();
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

    // The equalizer at the internal rate, one sample of each side.
    template <bool Linear, class P>
    P equalize(P x, PathConvolutionOps& ops) {
        if constexpr (Linear) {
            // The convolver returns each side through memory. The two values are kept apart
            // there, so that the pair is rebuilt from two loads: one 16-byte load of two 8-byte
            // stores cannot be forwarded from the store buffer and would stall every sample.
            double sides[3] = {x.a(), 0.0, x.b()};
            convolver_.process(sides[0], sides[2], ops);
            return P::make(sides[0], sides[2]);
        } else {
            return cascade_.process(x);
        }
    }

    const PathFamily family_;
    std::atomic<double> hostRate_{44100.0};
    std::atomic<double> gainTarget_{1.0};
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
    constexpr bool kLinear = Kind == AudioPathKind::LinearUnity || Kind == AudioPathKind::LinearDouble ||
                             Kind == AudioPathKind::LinearHalf || Kind == AudioPathKind::LinearQuarter;
    const ListenFactors listen = ListenFactors::forListen(s.listen);
    const P factors = P::make(ms.h * listen.a, ms.h * listen.b);
    const P weights = P::make(s.analyzerWeightA, s.analyzerWeightB);
    const bool auditioning = audition_.active();
    const bool feeding = s.feedAnalyzer;
    const bool gainSettled = gain_.settled();
    P peak = P::zero();

    for (int i = 0; i < frames; ++i) {
        const double xL = io.in[0][i];
        const double xR = io.in[1][i];
        const double g = gainSettled ? gain_.current() : gain_.next();
        P x;

        if constexpr (Kind == AudioPathKind::Bypass) {
            x = delay_.process(P::make(xL, xR));
        } else {
            x = ms.template encode<P>(xL, xR);
            if constexpr (Kind == AudioPathKind::LinearUnity || Kind == AudioPathKind::MinimumUnity) {
                x = equalize<kLinear>(x, ops);
            } else if constexpr (Kind == AudioPathKind::LinearDouble || Kind == AudioPathKind::MinimumDouble) {
                P inner[2];
                doubleRate_.up(x, inner);
                inner[0] = equalize<kLinear>(inner[0], ops);
                inner[1] = equalize<kLinear>(inner[1], ops);
                x = doubleRate_.down(inner);
            } else if constexpr (Kind == AudioPathKind::LinearHalf) {
                P inner;
                if (halfRate_.down(x, inner)) halfRate_.up(equalize<true>(inner, ops));
                x = halfRate_.template out<P>();
            } else if constexpr (Kind == AudioPathKind::LinearQuarter) {
                P inner;
                if (quarterRate_.down(x, inner)) quarterRate_.up(equalize<true>(inner, ops));
                x = quarterRate_.template out<P>();
            }
            x = delay_.process(x * (P::splat(g) * factors));
        }

        if (!auditioning) {
            if (feeding) {
                const P w = weights * x;
                feed(static_cast<float>(w.a() + w.b()));
            }
            const P y = Kind == AudioPathKind::Bypass ? x : ms.decode(x);
            io.out[0][i] = static_cast<Sample>(y.a());
            io.out[1][i] = static_cast<Sample>(y.b());
        } else {
            const double yL = audition_.process<Sample>(0, xL);
            const double yR = audition_.process<Sample>(1, xR);
            if (feeding) feed(static_cast<float>(s.analyzerWeightA * yL + s.analyzerWeightB * yR));
            io.out[0][i] = static_cast<Sample>(yL * g);
            io.out[1][i] = static_cast<Sample>(yR * g);
        }
        PathPeakHold::trackPair(peak, x);
    }
    peaks_.raise(peak.a(), peak.b());
}

}  // namespace dsp
