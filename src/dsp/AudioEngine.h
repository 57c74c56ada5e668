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
// Delays, with hop and N at the internal rate (converter figures in RateConverters.h):
//   linear ×1: hop + N/2 − 1; ×2: (hop + N/2 − 1)/2 + 63 (half a sample off the host grid,
//   since hop + N/2 − 1 is odd); ×1/2: 2·(hop + N/2 − 1) + 126; ×1/4: 4·(hop + N/2 − 1) + 255;
//   minimum ×1: 0; minimum ×2: 63.
//
// Threads. process() runs on the audio thread and owns every buffer. Other threads change the
// engine only through the setters below, which post the change for the next block (atomics,
// no locks), and through the two lock-free hand-overs (audition sections, peak holds). The one
// wait on the audio thread is inside the owner's kernel multiply (PathConvolutionOps), which
// takes the engine lock. Nothing here allocates after construction.

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
    // Allocates every buffer for the largest frame and delay.
    explicit AudioEngine(int maxFrameSize = PathConvolver::kMaxFrameSize,
                         int maxCompensation = CompensationDelay::kMaxDelay);
    AudioEngine(const AudioEngine&) = delete;
    AudioEngine& operator=(const AudioEngine&) = delete;

    static AudioPathKind pathFor(const AudioBlockSettings& s);
    // The path's own delay in host samples (fractional for linear ×2), for a frame of N and a
    // hop at the internal rate.
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
    AudioPathKind currentPath() const { return path_; }
    double currentGain() const { return gain_.current(); }
    const PathConvolver& convolver() const { return convolver_; }

private:
    static int64_t pack(int n, int hop) { return (static_cast<int64_t>(n) << 32) | static_cast<uint32_t>(hop); }

    // Block start: applies what other threads posted and what the settings ask for.
    void beginBlock(AudioPathKind kind, const AudioBlockSettings& s);
    void clearAll();
    void clearPath(AudioPathKind kind);

    template <AudioPathKind Kind, typename Sample, class Feed>
    void run(const ChannelBuffers<Sample>& io, int frames, const AudioBlockSettings& s, const MidSide& ms,
             PathConvolutionOps& ops, Feed& feed);

    // The equalizer at the internal rate, one sample of each side.
    template <bool Linear>
    void equalize(double& a, double& b, PathConvolutionOps& ops) {
        if constexpr (Linear) convolver_.process(a, b, ops);
        else cascade_.process(a, b);
    }

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
        case AudioPathKind::Bypass: run<AudioPathKind::Bypass>(io, frames, settings, ms, ops, feed); break;
        case AudioPathKind::LinearUnity: run<AudioPathKind::LinearUnity>(io, frames, settings, ms, ops, feed); break;
        case AudioPathKind::LinearDouble: run<AudioPathKind::LinearDouble>(io, frames, settings, ms, ops, feed); break;
        case AudioPathKind::LinearHalf: run<AudioPathKind::LinearHalf>(io, frames, settings, ms, ops, feed); break;
        case AudioPathKind::LinearQuarter:
            run<AudioPathKind::LinearQuarter>(io, frames, settings, ms, ops, feed);
            break;
        case AudioPathKind::MinimumUnity: run<AudioPathKind::MinimumUnity>(io, frames, settings, ms, ops, feed); break;
        case AudioPathKind::MinimumDouble:
            run<AudioPathKind::MinimumDouble>(io, frames, settings, ms, ops, feed);
            break;
    }
}

template <AudioPathKind Kind, typename Sample, class Feed>
void AudioEngine::run(const ChannelBuffers<Sample>& io, int frames, const AudioBlockSettings& s, const MidSide& ms,
                      PathConvolutionOps& ops, Feed& feed) {
    constexpr bool kLinear = Kind == AudioPathKind::LinearUnity || Kind == AudioPathKind::LinearDouble ||
                             Kind == AudioPathKind::LinearHalf || Kind == AudioPathKind::LinearQuarter;
    const ListenFactors listen = ListenFactors::forListen(s.listen);
    const double factorA = ms.h * listen.a;
    const double factorB = ms.h * listen.b;
    const bool auditioning = audition_.active();
    const bool feeding = s.feedAnalyzer;
    const double wA = s.analyzerWeightA, wB = s.analyzerWeightB;
    double peakA = 0.0, peakB = 0.0;

    for (int i = 0; i < frames; ++i) {
        const double xL = io.in[0][i];
        const double xR = io.in[1][i];
        const double g = gain_.next();
        double a, b;

        if constexpr (Kind == AudioPathKind::Bypass) {
            a = xL;
            b = xR;
            delay_.process(a, b);
        } else {
            ms.encode(xL, xR, a, b);
            if constexpr (Kind == AudioPathKind::LinearUnity || Kind == AudioPathKind::MinimumUnity) {
                equalize<kLinear>(a, b, ops);
            } else if constexpr (Kind == AudioPathKind::LinearDouble || Kind == AudioPathKind::MinimumDouble) {
                double ia[2], ib[2];
                doubleRate_.up(a, b, ia, ib);
                equalize<kLinear>(ia[0], ib[0], ops);
                equalize<kLinear>(ia[1], ib[1], ops);
                doubleRate_.down(ia, ib, a, b);
            } else if constexpr (Kind == AudioPathKind::LinearHalf) {
                double ia, ib;
                if (halfRate_.down(a, b, ia, ib)) {
                    equalize<true>(ia, ib, ops);
                    halfRate_.up(ia, ib);
                }
                halfRate_.out(a, b);
            } else if constexpr (Kind == AudioPathKind::LinearQuarter) {
                double ia, ib;
                if (quarterRate_.down(a, b, ia, ib)) {
                    equalize<true>(ia, ib, ops);
                    quarterRate_.up(ia, ib);
                }
                quarterRate_.out(a, b);
            }
            a *= g * factorA;
            b *= g * factorB;
            delay_.process(a, b);
        }

        if (!auditioning) {
            if (feeding) feed(static_cast<float>(wA * a + wB * b));
            if constexpr (Kind == AudioPathKind::Bypass) {
                io.out[0][i] = static_cast<Sample>(a);
                io.out[1][i] = static_cast<Sample>(b);
            } else {
                double l, r;
                ms.decode(a, b, l, r);
                io.out[0][i] = static_cast<Sample>(l);
                io.out[1][i] = static_cast<Sample>(r);
            }
        } else {
            const double yL = audition_.process<Sample>(0, xL);
            const double yR = audition_.process<Sample>(1, xR);
            if (feeding) feed(static_cast<float>(wA * yL + wB * yR));
            io.out[0][i] = static_cast<Sample>(yL * g);
            io.out[1][i] = static_cast<Sample>(yR * g);
        }
        PathPeakHold::track(peakA, a);
        PathPeakHold::track(peakB, b);
    }
    peaks_.raise(peakA, peakB);
}

}  // namespace dsp
