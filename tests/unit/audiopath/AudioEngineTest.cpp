// The whole path driven as the plug-in drives it, with the linear-phase kernel of bypassed bands.

#include <gtest/gtest.h>

#include <cfloat>
#include <cstring>
#include <random>
#include <string>

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

#include "AudioTestSupport.h"
#include "dsp/AudioEngine.h"
#include "dsp/BandSectionDesign.h"
#include "support/PublishedKernels.h"

namespace {

using namespace audiotest;
using dsp::AudioBlockSettings;
using dsp::AudioEngine;
using dsp::PathFamily;
using Kind = dsp::AudioPathKind;

// The engine plus its kernel, run over whole signals in host blocks.
struct Rig {
    AudioEngine engine;
    testsupport::PublishedKernels kernel{dsp::PathConvolver::kMaxFrameSize};
    AudioBlockSettings settings;
    std::vector<float> analyzer;

    explicit Rig(int n = 4096, int hop = 512, int rate = 44100, PathFamily family = dsp::defaultPathFamily(),
                 int convolutionHop = 0)
        : engine(family) {
        if (convolutionHop == 0) convolutionHop = hop;
        kernel.publishCentreTap(dsp::PartitionPlan::forFrame(n, convolutionHop));
        engine.setFrame(n, hop, convolutionHop);
        engine.setHostRate(rate);
        settings.hostRate = rate;
        engine.suspend();
    }

    template <typename Sample, class Reader>
    void process(const std::vector<Sample>* in, std::vector<Sample>* out, size_t start, int frames, bool secondIn,
                 Reader reader) {
        Sample* inputs[2] = {const_cast<Sample*>(in[0].data()) + start, const_cast<Sample*>(in[1].data()) + start};
        Sample* outputs[2] = {out[0].data() + start, out[1].data() + start};
        engine.process(inputs, outputs, frames, secondIn, true, settings, reader, kernel,
                       [this](float v) { analyzer.push_back(v); });
    }
    // In host blocks of 512, with no bands unless a reader gives some.
    template <typename Sample, class Reader = dsp::BiquadCoefficients (*)(int)>
    void run(const std::vector<Sample>& l, const std::vector<Sample>& r, std::vector<Sample>& outL,
             std::vector<Sample>& outR, bool secondIn = true, Reader reader = [](int) { return dsp::BiquadCoefficients{}; }) {
        const std::vector<Sample> in[2] = {l, r};
        std::vector<Sample> out[2] = {std::vector<Sample>(l.size()), std::vector<Sample>(l.size())};
        for (size_t start = 0; start < l.size(); start += 512)
            process(in, out, start, static_cast<int>(std::min<size_t>(512, l.size() - start)), secondIn, reader);
        outL = std::move(out[0]), outR = std::move(out[1]);
    }
};

template <class A, class B>
void expectOutputs(const std::vector<double>& ol, const std::vector<double>& orr, A wantL, B wantR) {
    for (size_t n = 0; n < ol.size(); ++n) {
        ASSERT_NEAR(ol[n], wantL(n), 1e-15) << n;
        ASSERT_NEAR(orr[n], wantR(n), 1e-15) << n;
    }
}

TEST(AudioEngine, PowerOffPassesTheInputThroughTheCompensationDelayAlone) {
    Rig rig;
    rig.settings.power = false;
    rig.settings.feedAnalyzer = true;
    rig.settings.analyzerWeightA = 1.0;
    rig.settings.analyzerWeightB = 0.0;
    rig.engine.setOutputGainTarget(3.0);  // not applied when bypassed
    const auto x = randomSignal(3000, 1), y = randomSignal(3000, 2);
    std::vector<float> fl(x.begin(), x.end()), fr(y.begin(), y.end()), ol, orr;
    fl[5] = 1e-40f, fr[9] = -3e-42f;  // denormal samples pass as they are too
    rig.run(fl, fr, ol, orr);
    EXPECT_EQ(ol, fl);
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

// Every path, with N and hop as the plug-in derives them for host blocks of 512 (hop = L/2 at the
// internal rate), and its delay in host samples.
const struct PathCase {
    Kind kind;
    AudioBlockSettings settings;
    int n, hop;
    double delay;
} kPaths[] = {
    {Kind::Bypass, {.power = false, .hostRate = 44100}, 4096, 512, 0.0},
    {Kind::LinearUnity, {.hostRate = 44100}, 4096, 512, 2559.0},
    {Kind::LinearDouble, {.fat = true, .hostRate = 44100}, 8192, 1024, 2622.0},
    {Kind::LinearHalf, {.hostRate = 96000}, 4096, 256, 4732.0},
    {Kind::LinearQuarter, {.hostRate = 192000}, 4096, 128, 8955.0},
    {Kind::LinearHalf, {.fat = true, .hostRate = 176400}, 8192, 256, 8828.0},
    {Kind::MinimumUnity, {.linPhase = false, .hostRate = 48000}, 4096, 512, 0.0},
    {Kind::MinimumDouble, {.linPhase = false, .fat = true, .hostRate = 48000}, 8192, 1024, 63.0},
};

std::string nameOf(const PathCase& c) {
    return "path " + std::to_string(static_cast<int>(c.kind)) + " at " + std::to_string(c.settings.hostRate);
}

// With a compensation delay, a linear path convolves in a longer hop paid for by that padding;
// the total delay stays the path's own plus the padding.
TEST(AudioEngine, EveryPathDelaysByItsDesignedAmount) {
    for (const PathCase& c : kPaths)
        for (int padding : {0, 20000}) {
            SCOPED_TRACE(nameOf(c) + " padded by " + std::to_string(padding));
            const int rate = c.settings.hostRate;
            const int convolutionHop = AudioEngine::convolutionHopFor(c.kind, c.n, c.hop, padding);
            const bool linear = c.kind != Kind::Bypass && c.kind != Kind::MinimumUnity && c.kind != Kind::MinimumDouble;
            EXPECT_EQ(convolutionHop > c.hop, linear && padding > 0);
            Rig rig(c.n, c.hop, rate, dsp::defaultPathFamily(), convolutionHop);
            rig.settings = c.settings;
            rig.settings.compensation = padding;
            EXPECT_EQ(AudioEngine::pathDelay(c.kind, c.n, c.hop), c.delay);
            const double total = c.delay + padding;
            for (double hz : {50.0, 1000.0, 7000.0, 15000.0}) {
                const double f = hz / rate;
                const auto x = sine(f, static_cast<size_t>(total) + 12000, 0.2);
                std::vector<double> y(x.size()), ol, orr;
                for (size_t n = 0; n < x.size(); ++n) y[n] = -x[n];
                rig.engine.suspend();
                rig.run(x, y, ol, orr);
                const auto g = toneGain(ol, f, 0.2, total, 8192), gb = toneGain(orr, f, 0.2 + kPi, total, 8192);
                EXPECT_NEAR(std::abs(g), 1.0, 0.005) << hz << " Hz";
                EXPECT_NEAR(std::arg(g), 0.0, 1e-6) << hz << " Hz";
                EXPECT_NEAR(std::abs(gb), 1.0, 0.005) << hz << " Hz, side B";
            }
            EXPECT_EQ(rig.engine.currentPath(), c.kind);
        }
}

TEST(AudioEngine, AnImpulseThroughLinearPhaseAtTwiceTheRatePeaksOnItsDelayAndIsSymmetric) {
    // FAT at 48 kHz, host blocks 512 and 500: an odd number of inner samples still lands on the host grid.
    for (int hop : {1024, 1000}) {
        Rig rig(8192, hop, 48000);
        rig.settings.fat = true;
        const size_t at = 300, peak = at + static_cast<size_t>(AudioEngine::pathDelay(Kind::LinearDouble, 8192, hop));
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

TEST(AudioEngine, MidSideNeedsTwoRealChannelsAndListenPicksMidOrSide) {
    Rig rig;
    rig.settings.linPhase = false;  // no bands: the minimum-phase path is a wire
    rig.settings.midSide = true;
    const auto l = randomSignal(1000, 5), r = randomSignal(1000, 6);
    std::vector<double> ol, orr;
    rig.run(l, r, ol, orr);  // there and back is the identity
    expectOutputs(ol, orr, [&](size_t n) { return l[n]; }, [&](size_t n) { return r[n]; });
    rig.settings.listen = 1;  // mid on both outputs
    rig.run(l, r, ol, orr);
    auto mid = [&](size_t n) { return 0.5 * (l[n] + r[n]); };
    expectOutputs(ol, orr, mid, mid);
    rig.settings.listen = 2;  // side, inverted on the left
    rig.run(l, r, ol, orr);
    expectOutputs(ol, orr, [&](size_t n) { return 0.5 * (l[n] - r[n]); }, [&](size_t n) { return 0.5 * (r[n] - l[n]); });
    rig.settings.listen = 1;  // mono input: plain left/right from input 0, side A = L only
    rig.run(l, r, ol, orr, /*secondIn=*/false);
    expectOutputs(ol, orr, [&](size_t n) { return l[n]; }, [](size_t) { return 0.0; });
}

TEST(AudioEngine, TheMinimumPhasePathRunsTheBandsPerSide) {
    Rig rig;
    rig.settings.linPhase = false;
    rig.settings.activeSlots = 1u << 8;  // band 1 of side B
    auto reader = [](int slot) { return slot == 8 ? dsp::BiquadCoefficients{0.5, 0.0, 0.0, 0.0, 0.0} : dsp::BiquadCoefficients{}; };
    const auto l = randomSignal(600, 7), r = randomSignal(600, 8);
    std::vector<double> ol, orr;
    rig.run(l, r, ol, orr, true, reader);
    expectOutputs(ol, orr, [&](size_t n) { return l[n]; }, [&](size_t n) { return 0.25 * r[n]; });  // the section twice
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
    const double k = 1.5 * (1.0 - std::exp(-2.0 * kPi * 30.0 / 44100.0));  // a 30 Hz one-pole's first, largest step
    for (bool afterPause : {false, true}) {  // a target set after a pause glides from the paused gain too
        SCOPED_TRACE(afterPause ? "after a pause" : "while running");
        rig.engine.setOutputGainTarget(2.0);
        rig.engine.suspend();
        rig.run(one, one, ol, orr);
        if (afterPause) rig.engine.suspend();
        rig.engine.setOutputGainTarget(0.5);
        rig.run(one, one, ol, orr);
        EXPECT_NEAR(ol.front(), 2.0 - k, 1e-15);
        ol.insert(ol.begin(), 2.0);
        for (size_t n = 1; n < ol.size(); ++n) ASSERT_TRUE(ol[n] <= ol[n - 1] && ol[n - 1] - ol[n] <= k + 1e-15) << n;
        EXPECT_NEAR(ol.back(), 0.5, 1e-3);
    }
}

// One hostile sample on side A, in every path and family: nothing non-finite leaves the engine
// (outputs, analyzer, peaks), and the path forgets it: the end matches a run with a silent
// sample there. The bands boost, so the largest finite input overflows the minimum-phase states.
TEST(AudioEngine, ANonFiniteOrOverflowingSampleNeverReachesTheOutputAndIsForgottenWithinABlock) {
    const dsp::BiquadCoefficients boost{1.2, -1.7, 0.72, -1.7, 0.75};  // a stable section, +7 dB at its peak
    auto reader = [&](int) { return boost; };
    const double hostile[] = {std::nan(""), HUGE_VAL, -HUGE_VAL, DBL_MAX};
    for (const PathCase& c : kPaths) {
        for (PathFamily family : {PathFamily::Plain, PathFamily::Sse2}) {
            const size_t at = 3000, length = static_cast<size_t>(c.delay) + 3 * 4096 + 8000;
            const auto l = randomSignal(length, 31), r = randomSignal(length, 32);
            Rig reference(c.n, c.hop, c.settings.hostRate, family);
            reference.settings = c.settings;
            reference.settings.activeSlots = 0x0f0fu;
            std::vector<double> cleanL = l, refL, refR;
            cleanL[at] = 0.0;
            reference.run(cleanL, r, refL, refR, true, reader);
            for (double bad : hostile) {
                SCOPED_TRACE(nameOf(c) + " " + dsp::pathFamilyName(family) + " input " + std::to_string(bad));
                Rig rig(c.n, c.hop, c.settings.hostRate, family);
                rig.settings = reference.settings;
                rig.settings.feedAnalyzer = true;
                std::vector<double> hostileL = l, ol, orr;
                hostileL[at] = bad;
                rig.run(hostileL, r, ol, orr, true, reader);
                for (size_t n = 0; n < length; ++n) ASSERT_TRUE(std::isfinite(ol[n]) && std::isfinite(orr[n])) << n;
                for (float v : rig.analyzer) ASSERT_TRUE(std::isfinite(v));
                EXPECT_TRUE(std::isfinite(rig.engine.peaks().a()));
                for (size_t n = length - 2000; n < length; ++n) {
                    ASSERT_NEAR(ol[n], refL[n], 1e-9) << n;
                    ASSERT_NEAR(orr[n], refR[n], 1e-9) << n;
                }
            }
        }
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
    const auto l = randomSignal(1200, 11), r = randomSignal(1200, 12);
    std::vector<double> ol, orr;
    rig.run(l, r, ol, orr);
    dsp::AuditionFilter truth;
    truth.setSection(section);
    for (size_t n = 0; n < l.size(); ++n) {
        const double yl = truth.process<double>(0, l[n]), yr = truth.process<double>(1, r[n]);
        ASSERT_NEAR(ol[n], 2.0 * yl, 1e-15);
        ASSERT_NEAR(orr[n], 2.0 * yr, 1e-15);
        ASSERT_FLOAT_EQ(rig.analyzer[n], static_cast<float>(0.5 * yl + 0.5 * yr));
    }
    EXPECT_GT(rig.engine.peaks().a(), 0.9f);  // the main path ran meanwhile, on the doubled input
    rig.engine.audition().publish(dsp::AuditionSection::off());
    rig.run(l, r, ol, orr);
    for (size_t n = 0; n < l.size(); ++n) ASSERT_NEAR(ol[n], 2.0 * l[n], 1e-15);
}

// Plain and SSE2 side by side over a long stereo signal, with block sizes, gain, mid/side,
// listen, compensation, per-side bands and audition changing between blocks: bit for bit equal.
template <typename Sample>
void expectFamiliesAgree(const PathCase& c) {
    const int rate = c.settings.hostRate;
    Rig rigs[2] = {Rig(4096, 384, rate, PathFamily::Plain), Rig(4096, 384, rate, PathFamily::Sse2)};
    dsp::BiquadCoefficients bands[dsp::kBandSlots];
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) {  // a different resonance on every slot
        const double radius = 0.999 - 0.002 * (slot % 8), w = 0.01 + 0.05 * slot;
        bands[slot] = {0.5, 0.1 * (slot % 3), -0.2, -2.0 * radius * std::cos(w), radius * radius};
    }
    auto reader = [&](int slot) { return bands[slot]; };
    const uint32_t masks[] = {0xffffu, 0x00ffu, 0xff00u, 0x0a5bu, 0xf301u, 0u};
    const auto l = randomSignal(60000, 21), r = randomSignal(60000, 22);
    std::vector<Sample> in[2] = {{l.begin(), l.end()}, {r.begin(), r.end()}}, out[2][2];
    // Non-finite samples enter as silence in both families, at any place in a block.
    in[0][1234] = std::numeric_limits<Sample>::quiet_NaN(), in[1][40001] = -std::numeric_limits<Sample>::infinity();
    for (int f = 0; f < 2; ++f) {
        rigs[f].settings = c.settings;
        rigs[f].settings.analyzerWeightA = 0.3;
        rigs[f].settings.feedAnalyzer = true;
        for (auto& channel : out[f]) channel.assign(l.size(), Sample(0));
    }
    std::mt19937 rng(static_cast<unsigned>(rate));
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
            rig.process(in, out[f], start, frames, true, reader);
        }
        start += static_cast<size_t>(frames);
    }
    SCOPED_TRACE(nameOf(c) + (sizeof(Sample) == 4 ? " float" : " double"));
    EXPECT_EQ(rigs[1].engine.currentPath(), c.kind);
    for (int ch = 0; ch < 2; ++ch) EXPECT_EQ(std::memcmp(out[0][ch].data(), out[1][ch].data(), l.size() * sizeof(Sample)), 0);
    ASSERT_EQ(rigs[0].analyzer.size(), l.size());
    EXPECT_EQ(rigs[0].analyzer, rigs[1].analyzer);
    EXPECT_EQ(rigs[0].engine.peaks().a(), rigs[1].engine.peaks().a());
    EXPECT_EQ(rigs[0].engine.peaks().b(), rigs[1].engine.peaks().b());
    EXPECT_EQ(rigs[0].engine.currentGain(), rigs[1].engine.currentGain());
}

TEST(AudioEngine, BothRoutineFamiliesGiveBitIdenticalResultsOnEveryPath) {
    EXPECT_EQ(AudioEngine().family(), PathFamily::Sse2);  // every x86-64 processor has SSE2
    for (const PathCase& c : kPaths) {
        expectFamiliesAgree<float>(c);
        expectFamiliesAgree<double>(c);
    }
}

TEST(AudioEngine, LinearPhaseWithBypassedBandsIsAPureDelayAndStartsFromSilenceWhenTakenUpAgain) {
    Rig rig;
    rig.settings.compensation = 100;
    const auto l = randomSignal(8000, 3), r = randomSignal(8000, 4);
    std::vector<double> ol, orr, silence(6000, 0.0);
    rig.run(l, r, ol, orr);
    const size_t d = 512 + 2048 - 1 + 100;  // hop + N/2 − 1 + compensation
    expectOutputs(ol, orr, [&](size_t n) { return n >= d ? l[n - d] : 0.0; }, [&](size_t n) { return n >= d ? r[n - d] : 0.0; });
    rig.settings.linPhase = false;  // the linear path still holds the end of the noise
    rig.run(silence, silence, ol, orr);
    rig.settings.linPhase = true;
    rig.run(silence, silence, ol, orr);
    for (double v : ol) ASSERT_EQ(v, 0.0);
}

// The minimum-phase arithmetic as it was before the wide cascade and the flushed denormals:
// each side's active bands in order, each section twice, one sample at a time, every result
// kept out of the denormal range by adding and subtracting 1e-30. A band switched off forgets
// its state.
struct GuardedCascade {
    double state[dsp::kBandSlots][2][4] = {};  // x1, x2, y1, y2 per pass

    void block(const dsp::BiquadCoefficients* bands, uint32_t active, double* a, double* b, size_t count) {
        for (int slot = 0; slot < dsp::kBandSlots; ++slot)
            if (!((active >> slot) & 1u)) std::memset(state[slot], 0, sizeof state[slot]);
        for (size_t n = 0; n < count; ++n)
            for (int side = 0; side < dsp::kSides; ++side) {
                double v = side ? b[n] : a[n];
                for (int slot = side * dsp::kBandsPerSide; slot < (side + 1) * dsp::kBandsPerSide; ++slot) {
                    if (!((active >> slot) & 1u)) continue;
                    const dsp::BiquadCoefficients& c = bands[slot];
                    for (auto& s : state[slot]) {
                        double y = c.b0 * v + c.b1 * s[0] + c.b2 * s[1] - c.a1 * s[2] - c.a2 * s[3];
                        y = (y + 1e-30) - 1e-30;
                        s[1] = s[0], s[0] = v, s[3] = s[2], s[2] = y, v = y;
                    }
                }
                (side ? b[n] : a[n]) = v;
            }
    }
};

// Every shape at the ends of its ranges: 20 Hz and 20 kHz, both Q extremes, ±24 dB (±12 per
// section). Side A has eight bands, side B five.
const dsp::BandSettings kHardBands[dsp::kBandSlots] = {
    {3, 20.0, 1.0, 12.0},    {3, 20000.0, 0.0, -12.0}, {2, 20.0, 1.0, 12.0},   {4, 20000.0, 0.0, -12.0},
    {0, 20.0, 0.5, 0.0},     {6, 20000.0, 1.0, 0.0},   {3, 20.0, 0.0, -12.0},  {3, 20000.0, 1.0, 12.0},
    {1, 20.0, 1.0, 0.0},     {5, 20000.0, 0.0, 0.0},   {3, 20.0, 1.0, -12.0},  {2, 20000.0, 0.0, 12.0},
    {4, 20.0, 1.0, -12.0},   {7, 1000.0, 0.5, 0.0},    {7, 1000.0, 0.5, 0.0},  {7, 1000.0, 0.5, 0.0},
};

// Seconds of full-scale noise through the minimum-phase path with the hard bands, in random
// host blocks, bands switching off and on between blocks: every output sample within 1e-12 of
// the guarded arithmetic. The wide cascade runs exactly the same products and sums, and the
// flush only touches values far below that; a fused multiply-add would not pass here, as the
// 20 Hz bands at Q 20 amplify a change of rounding well past 1e-12.
TEST(AudioEngine, TheMinimumPhasePathStaysWithinOnePicoOfTheGuardedArithmetic) {
    int types[dsp::kBandSlots];
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) types[slot] = kHardBands[slot].bandType;
    const uint32_t all = dsp::MinimumPhaseCascade::activeSlots(types);
    const uint32_t masks[] = {all, all & ~0x0102u, all & ~0x1c00u, all & 0x00ffu, all & ~0x0001u};
    for (int rate : {44100, 96000, 192000}) {
        dsp::BiquadCoefficients bands[dsp::kBandSlots];
        for (int slot = 0; slot < dsp::kBandSlots; ++slot) bands[slot] = dsp::designBandSection(kHardBands[slot], rate);
        for (PathFamily family : {PathFamily::Plain, PathFamily::Sse2}) {
            SCOPED_TRACE(std::to_string(rate) + " Hz, " + dsp::pathFamilyName(family));
            Rig rig(4096, 512, rate, family);
            rig.settings.linPhase = false;
            GuardedCascade reference;
            const size_t length = 2 * static_cast<size_t>(rate);
            const auto l = randomSignal(length, 61), r = randomSignal(length, 62);
            std::vector<double> in[2] = {l, r}, out[2] = {std::vector<double>(length), std::vector<double>(length)};
            std::vector<double> want[2] = {l, r};
            std::mt19937 rng(static_cast<unsigned>(rate));
            for (size_t start = 0, block = 0; start < length; ++block) {
                const int frames = static_cast<int>(std::min<size_t>(1 + rng() % 900, length - start));
                rig.settings.activeSlots = masks[(block / 7) % std::size(masks)];
                rig.process(in, out, start, frames, true, [&](int slot) { return bands[slot]; });
                reference.block(bands, rig.settings.activeSlots, want[0].data() + start, want[1].data() + start,
                                static_cast<size_t>(frames));
                start += static_cast<size_t>(frames);
            }
            for (int side = 0; side < 2; ++side)
                for (size_t n = 0; n < length; ++n) ASSERT_NEAR(out[side][n], want[side][n], 1e-12) << side << " " << n;
        }
    }
}

#if defined(__x86_64__)
// Loud noise, then silence: the tail of a resonance decays through the denormal range, where
// the cascade on its own (no flush) produces subnormal values; through the engine it never
// does and reaches exact zero. The host's floating-point mode is its own again after each call.
TEST(AudioEngine, ADecayingTailFlushesToZeroAndTheHostsModeIsRestored) {
    constexpr unsigned kModeBits = ~0x3fu;  // all but the sticky exception flags
    const dsp::BiquadCoefficients band = dsp::designBandSection({3, 1000.0, 0.5, 12.0}, 44100.0);
    auto reader = [&](int slot) { return slot == 0 ? band : dsp::BiquadCoefficients{}; };
    Rig rig;
    rig.settings.linPhase = false;
    rig.settings.activeSlots = 1u;
    std::vector<double> x = randomSignal(4096, 7), ol, orr;
    x.resize(x.size() + 60000, 0.0);
    const unsigned hostMode = _mm_getcsr() & kModeBits;
    ASSERT_EQ(hostMode & dsp::DenormalFlush::kFlushBits, 0u);
    rig.run(x, x, ol, orr, true, reader);
    EXPECT_EQ(_mm_getcsr() & kModeBits, hostMode);
    std::vector<double> again, unused;
    _mm_setcsr(hostMode | dsp::DenormalFlush::kFlushBits);  // a host that flushes itself keeps doing so
    rig.run(x, x, again, unused, true, reader);
    EXPECT_EQ(_mm_getcsr() & kModeBits, hostMode | dsp::DenormalFlush::kFlushBits);
    _mm_setcsr(hostMode);

    dsp::MinimumPhaseCascade alone(dsp::CascadeWidth::Pairs);
    alone.load(reader, 1u);
    size_t subnormal = 0;
    for (size_t start = 0; start < x.size(); start += dsp::MinimumPhaseCascade::kMaxBlock) {
        alignas(16) double pairs[2 * dsp::MinimumPhaseCascade::kMaxBlock] = {};
        const int count = static_cast<int>(std::min<size_t>(dsp::MinimumPhaseCascade::kMaxBlock, x.size() - start));
        for (int i = 0; i < count; ++i) pairs[2 * i] = x[start + static_cast<size_t>(i)];
        alone.process<dsp::PlainPair>(pairs, count);
        for (int i = 0; i < count; ++i) subnormal += std::fpclassify(pairs[2 * i]) == FP_SUBNORMAL;
    }
    EXPECT_GT(subnormal, 0u);
    for (size_t n = 0; n < ol.size(); ++n) ASSERT_NE(std::fpclassify(ol[n]), FP_SUBNORMAL) << n;
    for (size_t n = ol.size() - 1000; n < ol.size(); ++n) ASSERT_EQ(ol[n], 0.0) << n;
}
#endif

}  // namespace
