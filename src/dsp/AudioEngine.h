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
// Delays, with N at the internal rate and d = Hc + N/2 − 1 the convolution's delay, Hc its
// convolution hop (PathConvolver.h; the hop itself unless setFrame names a longer one)
// (converter figures in RateConverters.h):
//   linear ×1: d; ×2: d/2 + 62.5 (d is odd whenever Hc is even; for an odd Hc, d/2 + 63);
//   ×1/2: 2·d + 126; ×1/4: 4·d + 255; minimum ×1: 0; minimum ×2: 63.
// Every path delays by a whole number of host samples: an impulse comes out as a peak on one
// sample, symmetric around it.
//
// Routine families. Each path's per-sample loop exists in the plain family (each side with
// scalar arithmetic) and the SSE2 family (both sides in one register), chosen once at
// construction and bit-identical in their results (SidePair.h); a block runs one compile-time
// instance of the loop for its path, family and sample type. Every path runs in stages over
// stretches of the block: the equalizer, then gain, compensation delay, output and peaks each
// as a loop of its own, so that the minimum-phase cascade sees many samples at once and no
// running maximum or sum waits on itself every sample.
//
// Hostile samples. A non-finite input sample enters as silence. A finite one can still
// overflow a filter state; the value that shows it is kept out of the compensation delay and
// the path's state is cleared at the end of that block, so the output is always finite and
// the path is back to normal one block later.
//
// Denormals. Every path but the bypass runs with denormals flushed to zero (DenormalFlush.h)
// and gives the host its own floating-point mode back on return; the bypass passes even
// denormal samples through untouched.
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
#include <type_traits>

#include "dsp/AuditionFilter.h"
#include "dsp/CompensationDelay.h"
#include "dsp/DenormalFlush.h"
#include "dsp/DesignRate.h"
#include "dsp/GainSmoother.h"
#include "dsp/MidSide.h"
#include "dsp/MidSideWide.h"
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
    // Host samples a convolution hop longer than the hop adds to the path's delay; 0 where that
    // is not a whole number of host samples (such a hop is never chosen).
    static int borrowedDelay(AudioPathKind kind, int frameSize, int hop, int convolutionHop);
    // The convolution hop (hop·2^j ≤ N) with the least estimated work per sample whose added
    // delay fits in `padding` host samples of compensation delay: the delay the path is padded
    // with anyway, spent on a longer hop instead.
    static int convolutionHopFor(AudioPathKind kind, int frameSize, int hop, int padding);

    // ---- Any thread; each takes effect at the start of the next block --------------------
    void setHostRate(double hostRate) { hostRate_.store(hostRate, std::memory_order_relaxed); }
    void setOutputGainTarget(double gain) { gainTarget_.store(gain, std::memory_order_relaxed); }
    // Frame size N, hop and convolution hop (samples at the internal rate; PathConvolver.h),
    // posted as one word so that a block never combines values of two calls. A change clears
    // the convolution. The compensation delay of the linear paths is shortened by the delay
    // the convolution hop adds (borrowedDelay).
    void setFrame(int frameSize, int hop, int convolutionHop) {
        frame_.store(pack(frameSize, hop, convolutionHop), std::memory_order_relaxed);
    }
    void setFrame(int frameSize, int hop) { setFrame(frameSize, hop, hop); }
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
    // N in the top 24 bits, log2(convolution hop / hop) in the next 8, the hop in the low 32.
    static int64_t pack(int n, int hop, int convolutionHop);
    struct Frame {
        int frameSize, hop, convolutionHop;
    };
    static Frame unpack(int64_t packed);

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

    // step(chains[k], i) for i = 0..count − 1, sample i feeding chain i mod 4 (the last few
    // chain 0): four independent running results where one would wait on itself every sample.
    template <class P, class Step>
    [[gnu::always_inline]] static void inFourChains(int count, P (&chains)[4], Step&& step) {
        P c0 = chains[0], c1 = chains[1], c2 = chains[2], c3 = chains[3];
        int i = 0;
        for (; i + 4 <= count; i += 4) {
            step(c0, i);
            step(c1, i + 1);
            step(c2, i + 2);
            step(c3, i + 3);
        }
        for (; i < count; ++i) step(c0, i);
        chains[0] = c0;
        chains[1] = c1;
        chains[2] = c2;
        chains[3] = c3;
    }

    static constexpr bool isLinear(AudioPathKind kind) {
        return kind == AudioPathKind::LinearUnity || kind == AudioPathKind::LinearDouble ||
               kind == AudioPathKind::LinearHalf || kind == AudioPathKind::LinearQuarter;
    }
    static constexpr bool isMinimum(AudioPathKind kind) {
        return kind == AudioPathKind::MinimumUnity || kind == AudioPathKind::MinimumDouble;
    }
    // Host samples per stage of the minimum-phase paths: the cascade takes its whole stretch
    // of samples at the internal rate at once.
    static constexpr int minimumStretch(AudioPathKind kind) {
        return MinimumPhaseCascade::kMaxBlock / (kind == AudioPathKind::MinimumDouble ? 2 : 1);
    }

    // The equalizer's output for host samples start..end − 1 (the inputs made finite, encoded,
    // equalized at the internal rate and brought back), as pairs into x; the bypass passes
    // the finite inputs as they are.
    template <AudioPathKind Kind, class P, typename Sample>
    void equalizeStretch(const ChannelBuffers<Sample>& io, int start, int end, const MidSide& ms,
                         PathConvolutionOps& ops, double* x) {
        if constexpr (isMinimum(Kind)) {
            // The inputs encoded (and taken to twice the rate), then the cascade over all of them.
            // The channel pointers and the matrix in locals: the stores below could otherwise
            // alias them and have them reloaded every sample.
            const Sample* const inL = io.in[0];
            const Sample* const inR = io.in[1];
            const MidSide matrix = ms;
            double* v = inner_;
            if constexpr (Kind == AudioPathKind::MinimumUnity && std::is_same_v<P, Sse2Pair>) {
                if (encodeWide_) {
                    encodePairsAvx512(inL + start, inR + start, end - start, matrix.m, inner_);
                    cascade_.process<P>(inner_, end - start);
                    return;
                }
            }
            for (int i = start; i < end; ++i) {
                const P e = matrix.encode(P::make(inL[i], inR[i]).finiteOrZero());
                if constexpr (Kind == AudioPathKind::MinimumDouble) {
                    P up[2];
                    doubleRate_.up(e, up);
                    up[0].store(v);
                    up[1].store(v + 2);
                    v += 4;
                } else {
                    e.store(v);
                    v += 2;
                }
            }
            cascade_.process<P>(inner_, static_cast<int>(v - inner_) / 2);
            if constexpr (Kind == AudioPathKind::MinimumDouble) {
                for (int i = 0; i < end - start; ++i) {
                    const P pair[2] = {P::load(inner_ + 4 * i), P::load(inner_ + 4 * i + 2)};
                    doubleRate_.down(pair).store(x + 2 * i);
                }
            }
            return;
        }
        for (int i = start; i < end; ++i) {
            // A non-finite input sample never reaches a filter state: it would stay there for good.
            const double xL = finiteOrZero(io.in[0][i]);
            const double xR = finiteOrZero(io.in[1][i]);
            P y;
            if constexpr (Kind == AudioPathKind::Bypass) {
                y = P::make(xL, xR);
            } else {
                y = ms.template encode<P>(xL, xR);
                if constexpr (Kind == AudioPathKind::LinearDouble) {
                    P inner[2];
                    doubleRate_.up(y, inner);
                    inner[0] = equalize(inner[0], ops);
                    inner[1] = equalize(inner[1], ops);
                    y = doubleRate_.down(inner);
                } else if constexpr (Kind == AudioPathKind::LinearHalf) {
                    P inner;
                    if (halfRate_.down(y, inner)) halfRate_.up(equalize(inner, ops));
                    y = halfRate_.template out<P>();
                } else if constexpr (Kind == AudioPathKind::LinearQuarter) {
                    P inner;
                    if (quarterRate_.down(y, inner)) quarterRate_.up(equalize(inner, ops));
                    y = quarterRate_.template out<P>();
                }
            }
            y.store(x + 2 * (i - start));
        }
        // At the host rate the convolver takes the whole stretch at once.
        if constexpr (Kind == AudioPathKind::LinearUnity) convolver_.processPairs(x, end - start, ops);
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
    const bool encodeWide_ = widestCascadeWidth() == CascadeWidth::Avx512;  // the minimum path's encoder too
    DoubleRateConverter doubleRate_;
    HalfRateConverter halfRate_;
    QuarterRateConverter quarterRate_;
    CompensationDelay delay_;
    AuditionFilter audition_;
    // Host samples per stage of the other paths.
    static constexpr int kStretch = MinimumPhaseCascade::kMaxBlock;
    alignas(16) double inner_[2 * MinimumPhaseCascade::kMaxBlock];  // the minimum-phase stretch, (A, B) pairs
    alignas(16) double stretch_[2 * kStretch];                      // a stretch's pairs between the stages
    double gains_[kStretch];                                        // a ramping gain's steps over a stretch
};

// ---------------------------------------------------------------------------------------------

template <typename Sample, class Reader, class Feed>
void AudioEngine::process(Sample* const* inputs, Sample* const* outputs, int frames, bool secondInputConnected,
                          bool secondOutputConnected, const AudioBlockSettings& settings, Reader&& reader,
                          PathConvolutionOps& ops, Feed&& feed) {
    if (!inputs || !outputs || !inputs[0] || !outputs[0] || frames <= 0) return;
    const AudioPathKind kind = pathFor(settings);
    const DenormalFlush flush(kind != AudioPathKind::Bypass);
    const auto io = ChannelBuffers<Sample>::resolve(inputs, outputs, secondInputConnected, secondOutputConnected);
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
    // Four of each running result, so that neither forms one dependency chain through the block.
    P peaks[4] = {P::zero(), P::zero(), P::zero(), P::zero()};
    P health[4] = {P::zero(), P::zero(), P::zero(), P::zero()};  // zero while every sample leaving the equalizer is finite

    // The block runs in stages over stretches of it: the equalizer takes each sample through
    // its own path (the minimum-phase cascade a whole stretch at once), and every later stage
    // is a plain loop over the stretch.
    const int stretch = isMinimum(Kind) ? minimumStretch(Kind) : kStretch;
    for (int start = 0; start < frames; start += stretch) {
        const int end = std::min(frames, start + stretch);
        const int count = end - start;
        // MinimumUnity leaves its stretch in inner_ already, in host-rate pairs.
        double* const x = Kind == AudioPathKind::MinimumUnity ? inner_ : stretch_;
        equalizeStretch<Kind, P>(io, start, end, ms, ops, x);

        if (!gainSettled)
            for (int i = 0; i < count; ++i) gains_[i] = gain_.next();
        if constexpr (Kind != AudioPathKind::Bypass) {
            // A finite input can still overflow a state; such a value is caught here, kept out
            // of the compensation delay, and its path cleared at the end of the block.
            const P settled = P::splat(gain_.current()) * factors;
            inFourChains(count, health, [&](P& sum, int i) {
                const P y = P::load(x + 2 * i) * (gainSettled ? settled : P::splat(gains_[i]) * factors);
                sum = sum + (y - y);
                y.finiteOrZero().store(x + 2 * i);
            });
        }
        delay_.processBlock(x, count);

        if (!auditioning) {
            for (int i = 0; i < count; ++i) {
                const P v = P::load(x + 2 * i);
                if (feeding) {
                    const P w = weights * v;
                    feed(finiteFloat(w.a() + w.b()));
                }
                const P y = Kind == AudioPathKind::Bypass ? v : ms.decode(v);
                io.out[0][start + i] = static_cast<Sample>(y.a());
                io.out[1][start + i] = static_cast<Sample>(y.b());
            }
        } else {
            for (int i = start; i < end; ++i) {
                const double g = gainSettled ? gain_.current() : gains_[i - start];
                const double yL = audition_.process<Sample>(0, finiteOrZero(io.in[0][i]));
                const double yR = audition_.process<Sample>(1, finiteOrZero(io.in[1][i]));
                if (feeding) feed(finiteFloat(s.analyzerWeightA * yL + s.analyzerWeightB * yR));
                io.out[0][i] = static_cast<Sample>(yL * g);
                io.out[1][i] = static_cast<Sample>(yR * g);
            }
        }
        inFourChains(count, peaks, [&](P& peak, int i) { PathPeakHold::trackPair(peak, P::load(x + 2 * i)); });
    }
    const P peak = P::max(P::max(peaks[0], peaks[1]), P::max(peaks[2], peaks[3]));
    peaks_.raise(peak.a(), peak.b());
    if (!((health[0] + health[1]) + (health[2] + health[3])).bothZero()) clearPath(Kind);
}

}  // namespace dsp
