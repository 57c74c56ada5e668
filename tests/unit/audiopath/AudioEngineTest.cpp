// The whole path, driven as the plug-in drives it: the path table, delays per path, mid/side and
// listen, gain, audition, the analyzer feed, the bypass and the two routine families. The
// linear-phase kernel is the all-bands-bypassed one (a single tap at N/2), applied directly in
// the time domain.

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "dsp/AudioEngine.h"

namespace {

using dsp::AudioBlockSettings;
using dsp::AudioEngine;
using dsp::AudioPathKind;
using dsp::PathFamily;
constexpr double kPi = std::numbers::pi;

// Transforms left as the identity; the kernel multiply is the circular convolution with a
// single tap at N/2, that is a rotation of the 2N-sample frame by N/2.
class PassThroughKernel : public dsp::PathConvolutionOps {
public:
    void setFrameSize(int n) {
        n_ = n;
        scratch_.assign(2 * n, 0.0);
    }
    void forward(double*, int) override {}
    void inverse(double*, int) override {}
    bool multiplyByKernel(int, double* frame, int frameSize) override {
        if (frameSize != n_) return false;
        const int size = 2 * n_;
        for (int t = 0; t < size; ++t) scratch_[(t + n_ / 2) % size] = at(frame, t);
        for (int t = 0; t < size; ++t) at(frame, t) = scratch_[t];
        return true;
    }

private:
    double& at(double* f, int t) const { return t < n_ ? f[2 * t] : f[2 * (t - n_) + 1]; }
    int n_ = 4096;
    std::vector<double> scratch_;
};

struct NoBands {
    dsp::BiquadCoefficients operator()(int) const { return {}; }
};

// A plug-in-like driver: the engine plus its kernel, run over whole signals in host blocks.
struct Rig {
    AudioEngine engine;
    PassThroughKernel kernel;
    AudioBlockSettings settings;
    std::vector<float> analyzer;
    int block = 512;

    explicit Rig(int n = 4096, int hop = 512, int rate = 44100, PathFamily family = dsp::defaultPathFamily())
        : engine(family) {
        configure(n, hop, rate);
    }
    void configure(int n, int hop, int rate) {
        kernel.setFrameSize(n);
        engine.setFrame(n, hop);
        engine.setHostRate(rate);
        settings.hostRate = rate;
        engine.suspend();
    }

    template <typename Sample, class Reader = NoBands>
    void run(const std::vector<Sample>& l, const std::vector<Sample>& r, std::vector<Sample>& outL,
             std::vector<Sample>& outR, bool secondIn = true, bool secondOut = true, Reader reader = {}) {
        outL.assign(l.size(), Sample(0));
        outR.assign(l.size(), Sample(0));
        for (size_t start = 0; start < l.size(); start += block) {
            const int frames = static_cast<int>(std::min<size_t>(block, l.size() - start));
            Sample* in[2] = {const_cast<Sample*>(l.data()) + start, const_cast<Sample*>(r.data()) + start};
            Sample* out[2] = {outL.data() + start, outR.data() + start};
            engine.process(in, out, frames, secondIn, secondOut, settings, reader, kernel,
                           [this](float v) { analyzer.push_back(v); });
        }
    }
};

std::vector<double> noise(size_t length, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> u(-0.5, 0.5);
    std::vector<double> x(length);
    for (double& v : x) v = u(rng);
    return x;
}

// The complex gain of y against the tone delayed by `delay` (which may be fractional), by
// Hann-windowed correlation over the last `length` samples.
std::complex<double> toneGain(const std::vector<double>& y, double f, double phase, double delay, size_t length) {
    std::complex<double> cy = 0.0, cx = 0.0;
    const size_t start = y.size() - length;
    for (size_t i = 0; i < length; ++i) {
        const double n = static_cast<double>(start + i);
        const double w = 0.5 - 0.5 * std::cos(2.0 * kPi * (i + 0.5) / length);
        const std::complex<double> e = std::polar(1.0, -2.0 * kPi * f * n);
        cy += w * y[start + i] * e;
        cx += w * std::sin(2.0 * kPi * f * (n - delay) + phase) * e;
    }
    return cy / cx;
}

TEST(AudioEngine, ChoosesThePathFromPowerLinPhaseFatAndRate) {
    AudioBlockSettings s;
    auto path = [&](bool power, bool lin, bool fat, int rate) {
        s.power = power;
        s.linPhase = lin;
        s.fat = fat;
        s.hostRate = rate;
        return AudioEngine::pathFor(s);
    };
    EXPECT_EQ(path(false, true, true, 44100), AudioPathKind::Bypass);
    EXPECT_EQ(path(true, true, false, 44100), AudioPathKind::LinearUnity);
    EXPECT_EQ(path(true, true, false, 96000), AudioPathKind::LinearHalf);
    EXPECT_EQ(path(true, true, false, 192000), AudioPathKind::LinearQuarter);
    EXPECT_EQ(path(true, true, true, 48000), AudioPathKind::LinearDouble);
    EXPECT_EQ(path(true, true, true, 88200), AudioPathKind::LinearUnity);
    EXPECT_EQ(path(true, true, true, 176400), AudioPathKind::LinearHalf);
    EXPECT_EQ(path(true, false, false, 192000), AudioPathKind::MinimumUnity);
    EXPECT_EQ(path(true, false, true, 44100), AudioPathKind::MinimumDouble);
    EXPECT_EQ(path(true, false, true, 96000), AudioPathKind::MinimumUnity);
}

TEST(AudioEngine, PowerOffPassesTheInputThroughTheCompensationDelayAlone) {
    Rig rig;
    rig.settings.power = false;
    rig.settings.feedAnalyzer = true;
    rig.settings.analyzerWeightA = 1.0;
    rig.settings.analyzerWeightB = 0.0;
    rig.engine.setOutputGainTarget(3.0);  // not applied when bypassed
    const auto x = noise(3000, 1), y = noise(3000, 2);
    std::vector<float> fl(x.begin(), x.end()), fr(y.begin(), y.end()), ol, orr;
    rig.run(fl, fr, ol, orr);
    EXPECT_EQ(ol, fl);  // without padding: sample for sample
    EXPECT_EQ(orr, fr);
    EXPECT_EQ(rig.analyzer, fl);  // one analyzer sample per host sample, wA·L + wB·R
    float peakA = 0.0f, peakB = 0.0f;
    for (size_t n = 0; n < fl.size(); ++n) peakA = std::max(peakA, std::fabs(fl[n])), peakB = std::max(peakB, std::fabs(fr[n]));
    EXPECT_EQ(rig.engine.peaks().a(), peakA);
    EXPECT_EQ(rig.engine.peaks().b(), peakB);

    rig.settings.compensation = 777;
    rig.engine.suspend();
    EXPECT_EQ(rig.engine.peaks().a(), 0.0f);
    rig.run(fl, fr, ol, orr);
    for (size_t n = 0; n < fl.size(); ++n) {
        ASSERT_EQ(ol[n], n >= 777 ? fl[n - 777] : 0.0f);
        ASSERT_EQ(orr[n], n >= 777 ? fr[n - 777] : 0.0f);
    }
}

TEST(AudioEngine, LinearPhaseWithBypassedBandsIsAPureDelayOfHopPlusHalfFrameMinusOne) {
    Rig rig(4096, 512, 44100);  // host block 512 at 44.1 kHz: L = 1024, hop 512
    rig.settings.compensation = 100;
    const auto l = noise(8000, 3), r = noise(8000, 4);
    std::vector<double> ol, orr;
    rig.run(l, r, ol, orr);
    const int d = 512 + 2048 - 1 + 100;
    EXPECT_EQ(AudioEngine::pathDelay(AudioPathKind::LinearUnity, 4096, 512), 2559.0);
    for (size_t n = 0; n < l.size(); ++n) {
        ASSERT_NEAR(ol[n], n >= d ? l[n - d] : 0.0, 1e-15) << n;
        ASSERT_NEAR(orr[n], n >= d ? r[n - d] : 0.0, 1e-15) << n;
    }
}

struct PathCase {
    const char* name;
    int rate;
    bool linPhase, fat;
    int n, hop;
    AudioPathKind kind;
    double expectedDelay;  // host samples
};

TEST(AudioEngine, EveryPathDelaysByItsDesignedAmount) {
    // Host block 512; N and hop as the plug-in derives them (hop = L/2 at the internal rate).
    const PathCase cases[] = {
        {"linear x1 44.1k", 44100, true, false, 4096, 512, AudioPathKind::LinearUnity, 2559.0},
        {"linear x2 44.1k FAT", 44100, true, true, 8192, 1024, AudioPathKind::LinearDouble, 2622.0},
        {"linear x1/2 96k", 96000, true, false, 4096, 256, AudioPathKind::LinearHalf, 4732.0},
        {"linear x1/4 192k", 192000, true, false, 4096, 128, AudioPathKind::LinearQuarter, 8955.0},
        {"linear x1/2 176.4k FAT", 176400, true, true, 8192, 256, AudioPathKind::LinearHalf, 8828.0},
        {"minimum x1 48k", 48000, false, false, 4096, 512, AudioPathKind::MinimumUnity, 0.0},
        {"minimum x2 48k FAT", 48000, false, true, 8192, 1024, AudioPathKind::MinimumDouble, 63.0},
    };
    for (const PathCase& c : cases) {
        Rig rig(c.n, c.hop, c.rate);
        rig.settings.linPhase = c.linPhase;
        rig.settings.fat = c.fat;
        EXPECT_EQ(AudioEngine::pathFor(rig.settings), c.kind) << c.name;
        EXPECT_EQ(AudioEngine::pathDelay(c.kind, c.n, c.hop), c.expectedDelay) << c.name;
        for (double hz : {50.0, 1000.0, 7000.0, 15000.0}) {
            const double f = hz / c.rate;
            const size_t length = static_cast<size_t>(c.expectedDelay) + 12000;
            std::vector<double> x(length), y(length), ol, orr;
            for (size_t n = 0; n < length; ++n) {
                x[n] = std::sin(2.0 * kPi * f * n + 0.2);
                y[n] = -x[n];
            }
            rig.engine.suspend();
            rig.run(x, y, ol, orr);
            const auto g = toneGain(ol, f, 0.2, c.expectedDelay, 8192);
            EXPECT_NEAR(std::abs(g), 1.0, 0.005) << c.name << " at " << hz << " Hz";
            EXPECT_NEAR(std::arg(g), 0.0, 1e-6) << c.name << " at " << hz << " Hz";
            const auto gb = toneGain(orr, f, 0.2 + kPi, c.expectedDelay, 8192);
            EXPECT_NEAR(std::abs(gb), 1.0, 0.005) << c.name << " side B";
        }
        EXPECT_EQ(rig.engine.currentPath(), c.kind) << c.name;
    }
}

TEST(AudioEngine, AnImpulseThroughLinearPhaseAtTwiceTheRatePeaksOnItsDelayAndIsSymmetric) {
    // FAT at 48 kHz with host blocks of 512 and 500 (hop 1024 and 1000 at 96 kHz, N = 8192):
    // the convolution delays by an odd number of inner samples, and the path still lands on
    // the host grid.
    for (int hop : {1024, 1000}) {
        for (PathFamily family : {PathFamily::Plain, PathFamily::Sse2}) {
            Rig rig(8192, hop, 48000, family);
            rig.settings.fat = true;
            const double delay = AudioEngine::pathDelay(AudioPathKind::LinearDouble, 8192, hop);
            EXPECT_EQ(delay, (hop + 4096 - 1) / 2.0 + 62.5);
            const size_t at = 300, peak = at + static_cast<size_t>(delay);
            std::vector<double> x(peak + 400, 0.0), ol, orr;
            x[at] = 1.0;
            rig.run(x, x, ol, orr);
            size_t loudest = 0;
            for (size_t n = 0; n < ol.size(); ++n)
                if (std::fabs(ol[n]) > std::fabs(ol[loudest])) loudest = n;
            EXPECT_EQ(loudest, peak) << hop;
            EXPECT_GT(ol[peak], 0.9);
            for (size_t j = 1; j < 300; ++j) ASSERT_NEAR(ol[peak + j], ol[peak - j], 1e-15) << hop << " " << j;
            EXPECT_EQ(orr, ol);
        }
    }
}

TEST(AudioEngine, MidSideNeedsTwoRealChannelsAndListenPicksMidOrSide) {
    Rig rig;
    rig.settings.linPhase = false;  // no bands: the minimum-phase path is a wire
    rig.settings.midSide = true;
    const auto l = noise(1000, 5), r = noise(1000, 6);
    std::vector<double> ol, orr;

    // Stereo, both sides heard: mid/side there and back is the identity.
    rig.run(l, r, ol, orr);
    for (size_t n = 0; n < l.size(); ++n) {
        ASSERT_NEAR(ol[n], l[n], 1e-15);
        ASSERT_NEAR(orr[n], r[n], 1e-15);
    }
    // Listen 1 (mid) on both outputs; listen 2 the side, inverted on the left.
    rig.settings.listen = 1;
    rig.run(l, r, ol, orr);
    for (size_t n = 0; n < l.size(); ++n) {
        ASSERT_NEAR(ol[n], 0.5 * (l[n] + r[n]), 1e-15);
        ASSERT_NEAR(orr[n], 0.5 * (l[n] + r[n]), 1e-15);
    }
    rig.settings.listen = 2;
    rig.run(l, r, ol, orr);
    for (size_t n = 0; n < l.size(); ++n) {
        ASSERT_NEAR(ol[n], -0.5 * (r[n] - l[n]), 1e-15);
        ASSERT_NEAR(orr[n], 0.5 * (r[n] - l[n]), 1e-15);
    }
    // Mono input: processed as plain left/right from input 0 (listen 1 keeps side A = L only).
    rig.settings.listen = 1;
    rig.run(l, r, ol, orr, /*secondIn=*/false);
    for (size_t n = 0; n < l.size(); ++n) {
        ASSERT_EQ(ol[n], l[n]);
        ASSERT_EQ(orr[n], 0.0);
    }
}

TEST(AudioEngine, TheMinimumPhasePathRunsTheBandsPerSide) {
    Rig rig;
    rig.settings.linPhase = false;
    rig.settings.activeSlots = 1u << 8;  // band 1 of side B
    const dsp::BiquadCoefficients half{0.5, 0.0, 0.0, 0.0, 0.0};
    auto reader = [&](int slot) { return slot == 8 ? half : dsp::BiquadCoefficients{}; };
    const auto l = noise(600, 7), r = noise(600, 8);
    std::vector<double> ol, orr;
    rig.run(l, r, ol, orr, true, true, reader);
    for (size_t n = 0; n < l.size(); ++n) {
        ASSERT_EQ(ol[n], l[n]);
        ASSERT_EQ(orr[n], 0.25 * r[n]);  // the section twice
    }
}

TEST(AudioEngine, OutputGainStartsAtItsTargetAfterAPauseAndGlidesOtherwise) {
    Rig rig;
    rig.settings.linPhase = false;
    rig.engine.setOutputGainTarget(2.0);
    rig.engine.suspend();
    std::vector<double> one(2000, 1.0), ol, orr;
    rig.run(one, one, ol, orr);
    EXPECT_EQ(ol.front(), 2.0);
    EXPECT_EQ(ol.back(), 2.0);
    rig.engine.setOutputGainTarget(0.5);
    rig.run(one, one, ol, orr);
    const double k = 1.0 - std::exp(-2.0 * kPi * 30.0 / 44100.0);
    double previous = 2.0;
    for (double v : ol) {
        ASSERT_LE(v, previous);
        ASSERT_LE(previous - v, k * 1.5 + 1e-15);
        previous = v;
    }
}

TEST(AudioEngine, AuditionReplacesTheOutputsWithTheFilteredInputs) {
    Rig rig;
    rig.settings.linPhase = false;
    rig.settings.feedAnalyzer = true;
    rig.engine.setOutputGainTarget(2.0);
    rig.engine.suspend();
    const auto section = dsp::AuditionSection::design(1000.0, 0.5, 0.5, 44100.0);
    rig.engine.audition().publish(section);
    const auto l = noise(1200, 11), r = noise(1200, 12);
    std::vector<double> ol, orr;
    rig.run(l, r, ol, orr);

    dsp::AuditionFilter truth;
    truth.setSection(section);
    for (size_t n = 0; n < l.size(); ++n) {
        const double yl = truth.process<double>(0, l[n]);
        const double yr = truth.process<double>(1, r[n]);
        ASSERT_NEAR(ol[n], 2.0 * yl, 1e-15);
        ASSERT_NEAR(orr[n], 2.0 * yr, 1e-15);
        ASSERT_FLOAT_EQ(rig.analyzer[n], static_cast<float>(0.5 * yl + 0.5 * yr));
    }
    // The main path ran meanwhile: its peaks are those of the (doubled) input.
    EXPECT_GT(rig.engine.peaks().a(), 0.9f);

    rig.engine.audition().publish(dsp::AuditionSection::off());
    rig.run(l, r, ol, orr);
    for (size_t n = 0; n < l.size(); ++n) ASSERT_NEAR(ol[n], 2.0 * l[n], 1e-15);
}

TEST(AudioEngine, FloatBuffersGiveTheDoubleResultRoundedToFloat) {
    for (bool lin : {true, false}) {
        Rig rigD(4096, 512, 48000), rigF(4096, 512, 48000);
        for (Rig* rig : {&rigD, &rigF}) {
            rig->settings.linPhase = lin;
            rig->settings.fat = true;
            rig->settings.midSide = true;
            rig->engine.setOutputGainTarget(1.3);
            rig->kernel.setFrameSize(8192);
            rig->engine.setFrame(8192, 1024);
        }
        const auto l = noise(5000, 13), r = noise(5000, 14);
        std::vector<float> fl(l.begin(), l.end()), fr(r.begin(), r.end()), fol, forr;
        std::vector<double> dl(fl.begin(), fl.end()), dr(fr.begin(), fr.end()), dol, dorr;
        rigD.run(dl, dr, dol, dorr);
        rigF.run(fl, fr, fol, forr);
        for (size_t n = 0; n < fl.size(); ++n) {
            ASSERT_EQ(fol[n], static_cast<float>(dol[n])) << n;
            ASSERT_EQ(forr[n], static_cast<float>(dorr[n])) << n;
        }
    }
}

// The plain and the SSE2 family side by side over a long random stereo signal, with whatever
// changes between blocks changing: block sizes, gain, mid/side, listen, compensation, bands on
// one side only, audition. They must agree bit for bit.
template <typename Sample>
void expectFamiliesAgree(AudioPathKind kind, bool power, bool lin, bool fat, int rate) {
    Rig rigs[2] = {Rig(4096, 384, rate, PathFamily::Plain), Rig(4096, 384, rate, PathFamily::Sse2)};
    dsp::BiquadCoefficients bands[dsp::kBandSlots];
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) {  // resonances, different on every slot
        const double radius = 0.999 - 0.002 * (slot % 8), w = 0.01 + 0.05 * slot;
        bands[slot] = {0.5, 0.1 * (slot % 3), -0.2, -2.0 * radius * std::cos(w), radius * radius};
    }
    auto reader = [&](int slot) { return bands[slot]; };
    const uint32_t masks[] = {0xffffu, 0x00ffu, 0xff00u, 0x0a5bu, 0xf301u, 0u};
    const auto l = noise(60000, 21), r = noise(60000, 22);
    std::vector<Sample> in[2] = {{l.begin(), l.end()}, {r.begin(), r.end()}}, out[2][2];
    for (int f = 0; f < 2; ++f) {
        rigs[f].settings = {.power = power, .linPhase = lin, .fat = fat, .hostRate = rate, .analyzerWeightA = 0.3,
                            .feedAnalyzer = true};
        for (auto& channel : out[f]) channel.assign(l.size(), Sample(0));
    }
    std::mt19937 rng(static_cast<unsigned>(kind));
    for (size_t start = 0, block = 0; start < l.size(); ++block) {
        const int frames = static_cast<int>(std::min<size_t>(1 + rng() % 900, l.size() - start));
        const double gain = rng() % 4 == 0 ? 0.25 + 0.3 * (rng() % 8) : 0.0;
        const bool midSide = rng() % 3 != 0;
        const int listen = rng() % 5 < 3 ? 0 : static_cast<int>(rng() % 3);
        const uint32_t slots = masks[rng() % std::size(masks)];
        const int compensation = rng() % 8 == 0 ? static_cast<int>(rng() % 500) : -1;
        for (int f = 0; f < 2; ++f) {
            Rig& rig = rigs[f];
            rig.settings.midSide = midSide;
            rig.settings.listen = listen;
            rig.settings.activeSlots = slots;
            if (compensation >= 0) rig.settings.compensation = compensation;
            if (gain > 0.0) rig.engine.setOutputGainTarget(gain);
            if (block % 40 == 20) rig.engine.audition().publish(dsp::AuditionSection::design(900.0, 0.4, 0.6, rate));
            if (block % 40 == 23) rig.engine.audition().publish(dsp::AuditionSection::off());
            Sample* inputs[2] = {in[0].data() + start, in[1].data() + start};
            Sample* outputs[2] = {out[f][0].data() + start, out[f][1].data() + start};
            rig.engine.process(inputs, outputs, frames, true, true, rig.settings, reader, rig.kernel,
                               [&rig](float v) { rig.analyzer.push_back(v); });
        }
        start += static_cast<size_t>(frames);
    }
    const std::string what = std::to_string(static_cast<int>(kind)) + (sizeof(Sample) == 4 ? " float" : " double");
    EXPECT_EQ(rigs[1].engine.currentPath(), kind) << what;
    for (int c = 0; c < 2; ++c)
        EXPECT_EQ(std::memcmp(out[0][c].data(), out[1][c].data(), l.size() * sizeof(Sample)), 0) << what << " " << c;
    ASSERT_EQ(rigs[0].analyzer.size(), l.size());
    ASSERT_EQ(rigs[1].analyzer.size(), l.size());
    EXPECT_EQ(std::memcmp(rigs[0].analyzer.data(), rigs[1].analyzer.data(), l.size() * sizeof(float)), 0) << what;
    EXPECT_EQ(rigs[0].engine.peaks().a(), rigs[1].engine.peaks().a()) << what;
    EXPECT_EQ(rigs[0].engine.peaks().b(), rigs[1].engine.peaks().b()) << what;
    EXPECT_EQ(rigs[0].engine.currentGain(), rigs[1].engine.currentGain()) << what;
}

TEST(AudioEngine, BothRoutineFamiliesGiveBitIdenticalResultsOnEveryPath) {
    EXPECT_EQ(AudioEngine().family(), dsp::defaultPathFamily());
    EXPECT_EQ(dsp::defaultPathFamily(), PathFamily::Sse2);  // every x86-64 processor has SSE2
    const struct {
        AudioPathKind kind;
        bool power, lin, fat;
        int rate;
    } cases[] = {
        {AudioPathKind::Bypass, false, true, false, 44100},        {AudioPathKind::LinearUnity, true, true, false, 44100},
        {AudioPathKind::LinearDouble, true, true, true, 48000},    {AudioPathKind::LinearHalf, true, true, false, 96000},
        {AudioPathKind::LinearQuarter, true, true, false, 192000}, {AudioPathKind::MinimumUnity, true, false, false, 44100},
        {AudioPathKind::MinimumDouble, true, false, true, 48000},
    };
    for (const auto& c : cases) {
        expectFamiliesAgree<float>(c.kind, c.power, c.lin, c.fat, c.rate);
        expectFamiliesAgree<double>(c.kind, c.power, c.lin, c.fat, c.rate);
    }
}

TEST(AudioEngine, APathTakenUpAgainStartsFromSilence) {
    Rig rig;
    const auto l = noise(3000, 15);
    std::vector<double> ol, orr;
    rig.run(l, l, ol, orr);  // linear phase holds 2559 samples of this in its buffers
    rig.settings.linPhase = false;
    std::vector<double> silence(1024, 0.0);
    rig.run(silence, silence, ol, orr);
    rig.settings.linPhase = true;
    rig.run(std::vector<double>(6000, 0.0), std::vector<double>(6000, 0.0), ol, orr);
    for (double v : ol) ASSERT_EQ(v, 0.0);
}

}  // namespace

#include "plugin/Latency.h"

namespace {

// The engine's own delay against the latency figures the plug-in reports, over the settings
// at the six usual rates.
TEST(AudioEngine, PathDelaysAgreeWithTheReportedLatencyFigures) {
    for (int rate : {44100, 48000, 88200, 96000, 176400, 192000}) {
        for (bool lin : {false, true}) {
            for (bool fat : {false, true}) {
                for (int resolution = 0; resolution < 3; ++resolution) {
                    for (int blockSize : {64, 512, 4096}) {
                        const int n = 4096 << (resolution + (fat ? 1 : 0));
                        int p = rate <= 50000 ? 2 * blockSize : rate <= 100000 ? blockSize : blockSize / 2;
                        if (fat) p *= 2;
                        p = std::min(p, 2 * n);
                        AudioBlockSettings s;
                        s.hostRate = rate;
                        s.linPhase = lin;
                        s.fat = fat;
                        const AudioPathKind kind = AudioEngine::pathFor(s);
                        const double engine = AudioEngine::pathDelay(kind, n, p / 2);
                        const int figures = latency::pathLatency({rate, n, p, fat, lin, true});
                        EXPECT_EQ(engine, figures)
                            << rate << " Hz lin " << lin << " fat " << fat << " res " << resolution << " block "
                            << blockSize;
                    }
                }
            }
        }
    }
}

}  // namespace
