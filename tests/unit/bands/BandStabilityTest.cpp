// Every band the equalizer can be asked for, at every rate it may design at and beyond: each
// section finite and stable; the bilinear image of its prototype wherever that is stable;
// where they are not (a band at or above Nyquist), a band that sounds as its shape promises;
// and both audio paths built from such bands finite and settling.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <set>
#include <string>
#include <vector>

#include "BandTestSupport.h"
#include "dsp/BandModel.h"
#include "dsp/BandSectionDesign.h"
#include "dsp/KernelDesigner.h"
#include "dsp/MinimumPhaseCascade.h"
#include "platform/TimedLock.h"

namespace {

using namespace bands_test;
using dsp::BandSettings;
using dsp::BiquadCoefficients;

// Host rates from the lowest the plug-in accepts to 384 kHz (40000 and 80000 put 20 kHz exactly
// on Nyquist at ratio 1 and 1/2), each at the four ratios of the internal rate.
std::vector<double> designRates() {
    std::set<double> rates;
    for (double host : {5000.0, 8000.0, 11025.0, 16000.0, 22050.0, 32000.0, 40000.0, 44100.0, 48000.0, 80000.0,
                        88200.0, 96000.0, 176400.0, 192000.0, 352800.0, 384000.0})
        for (double ratio : {2.0, 1.0, 0.5, 0.25}) rates.insert(host * ratio);
    return {rates.begin(), rates.end()};
}

// The frequency parameter across its range as the host sets it (20·10^(3v) Hz) and its top as
// the editor computes it in float; then beyond: Nyquist of the rate exactly and an ulp either
// side, the rate itself, and the aliases above it that very low rates meet.
std::vector<double> frequenciesFor(double rate) {
    std::vector<double> f;
    for (int i = 0; i <= 10; ++i) f.push_back(20.0 * std::pow(10.0, 3.0 * i / 10.0));
    f.push_back(20.0f * std::pow(10.0f, 3.0f));
    f.push_back(25000.0);
    for (double edge : {rate / 2, rate})
        for (double x : {std::nextafter(edge, 0.0), edge, std::nextafter(edge, 1e9)}) f.push_back(x);
    for (double multiple : {0.75, 1.25, 1.5, 2.0, 3.0}) f.push_back(multiple * rate);
    return f;
}

// Normalized Q and section gain at the ends and middle of their parameters (the curve test
// covers the points between).
constexpr double kQs[] = {0.0, 0.5, 1.0};
constexpr double kGains[] = {-12.0, 0.0, 12.0};

// Finite, and no denormal for the cascade or the kernel build to crawl through.
bool finiteAndNormal(const BiquadCoefficients& c) {
    for (double x : {c.b0, c.b1, c.b2, c.a1, c.a2})
        if (!std::isfinite(x) || std::fpclassify(x) == FP_SUBNORMAL) return false;
    return true;
}

// Jury's conditions for 1 + a1·z⁻¹ + a2·z⁻²: D(1) > 0, D(−1) > 0 and |a2| < 1, each by more
// than `margin`.
bool stable(const BiquadCoefficients& c, double margin = 0.0) {
    return finiteAndNormal(c) && 1.0 + c.a1 + c.a2 > margin && 1.0 - c.a1 + c.a2 > margin &&
           std::fabs(c.a2) < 1.0 - margin;
}

// Sections whose poles lie within rounding of the unit circle may go either way.
constexpr double kClearlyStable = 1e-12;

// 10·log10|H(e^jw)|²: the dB of one section.
double sectionDb(const BiquadCoefficients& c, double w) {
    const std::complex<double> z1 = std::polar(1.0, -w);
    return 20.0 * std::log10(std::abs((c.b0 + z1 * (c.b1 + z1 * c.b2)) / (1.0 + z1 * (c.a1 + z1 * c.a2))));
}

// A band at or above Nyquist, heard over the lower half of the audio band (up to a quarter of
// the rate): a low cut removes it, a low shelf is its gain across it, and the rest leave it be.
void expectBeyondNyquistSound(int shape, const BiquadCoefficients& c, double gain, const std::string& what) {
    const double quarterRate = std::numbers::pi / 2;
    switch (shape) {
        case 0:
        case 1: EXPECT_LT(sectionDb(c, quarterRate), -40.0) << what; break;
        case 2:
            EXPECT_NEAR(sectionDb(c, 0.0), gain, 1e-6) << what;
            EXPECT_NEAR(sectionDb(c, quarterRate), gain, 0.1) << what;
            break;
        default:
            EXPECT_NEAR(sectionDb(c, 0.0), 0.0, 1e-6) << what;
            EXPECT_NEAR(sectionDb(c, quarterRate), 0.0, 0.1) << what;
    }
}

TEST(BandStability, StableAsDesignedIsTheBilinearImageEveryOtherBandIsHeldStable) {
    int kept = 0, held = 0;
    for (double rate : designRates())
        for (double f : frequenciesFor(rate))
            for (int bandType = 0; bandType < dsp::kBandTypeCount; ++bandType)
                for (double q : kQs)
                    for (double gain : kGains) {
                        const BandSettings band{bandType, f, q, gain};
                        const BiquadCoefficients got = dsp::designBandSection(band, rate);
                        const std::string what = "type " + std::to_string(bandType) + " rate " +
                                                 std::to_string(rate) + " f " + std::to_string(f) + " q " +
                                                 std::to_string(q) + " gain " + std::to_string(gain);
                        ASSERT_TRUE(stable(got)) << what;
                        if (bandType >= dsp::kShapeCount) {
                            ASSERT_TRUE(isIdentity(got)) << what;
                            continue;
                        }
                        const BiquadCoefficients image = bilinearSection(band, rate);
                        if (stable(image, kClearlyStable)) {
                            for (auto field : {&BiquadCoefficients::b0, &BiquadCoefficients::b1, &BiquadCoefficients::b2,
                                               &BiquadCoefficients::a1, &BiquadCoefficients::a2})
                                ASSERT_NEAR(got.*field, image.*field, 1e-9 * std::max(1.0, std::fabs(image.*field))) << what;
                            ++kept;
                            continue;
                        }
                        ASSERT_GT(f, 0.4999 * rate) << "below Nyquist every band is stable as designed: " << what;
                        if (stable(image)) continue;
                        expectBeyondNyquistSound(bandType, got, gain, what);
                        ++held;
                    }
    EXPECT_GT(kept, 20000);  // the grid reaches both sides of the line
    EXPECT_GT(held, 15000);
}

TEST(BandStability, ValuesNoBandCanBeDesignedFromPassFlat) {
    const double nan = std::nan(""), inf = HUGE_VAL;
    struct Case {
        BandSettings band;
        bool flat;  // otherwise held just below Nyquist
    };
    const Case cases[] = {
        {{1, 0.0, 0.5, 0.0}, true},         {{6, -100.0, 0.5, 0.0}, true},  {{3, nan, 0.5, 0.0}, true},
        {{2, 1000.0, nan, 0.0}, true},      {{4, 1000.0, 0.5, nan}, true},  {{3, inf, 0.5, inf}, true},
        {{2, 1000.0, 0.5, -12400.0}, true},  // poles on the unit circle
        {{0, inf, 0.5, 0.0}, false},        {{2, inf, 0.5, 3.0}, false},
    };
    for (const Case& c : cases) {
        const BiquadCoefficients section = dsp::designBandSection(c.band, 44100.0);
        const std::string what = "type " + std::to_string(c.band.bandType) + " f " + std::to_string(c.band.frequency);
        ASSERT_TRUE(stable(section)) << what;
        if (c.flat)
            EXPECT_TRUE(isIdentity(section)) << what;
        else
            expectBeyondNyquistSound(c.band.bandType, section, c.band.gain, what);
    }
}

// Sixteen switched-on bands at one frequency: side A every shape at the low ends of Q and gain
// and a narrow peak; side B every shape at the high ends and a broad shelf cut.
void setAllShapesAt(dsp::BandModel& m, double f) {
    for (int shape = 0; shape < dsp::kShapeCount; ++shape) {
        m.setBand(0, shape, {shape, f, 0.0, -12.0});
        m.setBand(1, shape, {shape, f, 1.0, 12.0});
    }
    m.setBand(0, 7, {3, f, 1.0, 12.0});
    m.setBand(1, 7, {2, f, 0.0, -12.0});
}

bool finiteCurve(const dsp::Curve& c) {
    for (float v : c)
        if (!std::isfinite(v)) return false;
    return true;
}

// The minimum-phase path's impulse response in windows of kWindow samples: the energy of each
// window on each side; nothing once a sample is not finite.
constexpr int kWindow = 4096;
using SideEnergies = std::array<double, dsp::kSides>;
std::vector<SideEnergies> cascadeWindowEnergies(const dsp::BandModel& m, int windows) {
    dsp::MinimumPhaseCascade cascade;
    cascade.load([&](int slot) { return m.section(slot); }, 0xFFFFu);
    std::vector<SideEnergies> energy(windows, SideEnergies{});
    constexpr int kBlock = dsp::MinimumPhaseCascade::kMaxBlock;
    alignas(16) double pairs[2 * kBlock];
    for (int start = 0; start < windows * kWindow; start += kBlock) {
        std::fill(std::begin(pairs), std::end(pairs), 0.0);
        if (start == 0) pairs[0] = pairs[1] = 1.0;
        cascade.process<dsp::PlainPair>(pairs, kBlock);
        for (int i = 0; i < kBlock; ++i) {
            const double a = pairs[2 * i], b = pairs[2 * i + 1];
            if (!std::isfinite(a) || !std::isfinite(b)) return {};
            energy[(start + i) / kWindow][0] += a * a;
            energy[(start + i) / kWindow][1] += b * b;
        }
    }
    return energy;
}

TEST(BandStability, BothPathsAndTheCurvesStayFiniteAtEveryRate) {
    auto model = std::make_unique<dsp::BandModel>(true);
    auto kernels = std::make_unique<dsp::KernelDesigner>();
    auto measured = std::make_unique<dsp::KernelCurves>();
    platform::TimedLock processLock;
    constexpr int kFrameSize = 4096;
    for (double rate : designRates())
        for (double f : {20.0, 20000.0, std::nextafter(rate / 2, 0.0), rate / 2}) {
            const std::string what = "rate " + std::to_string(rate) + " f " + std::to_string(f);
            setAllShapesAt(*model, f);
            model->designAllBands(rate);
            model->computeBandCurves();
            model->computeTotalCurves();
            for (int side = 0; side < dsp::kSides; ++side) {
                ASSERT_TRUE(finiteCurve(model->totalCurve(side))) << what;
                for (int band = 0; band < dsp::kBandsPerSide; ++band)
                    ASSERT_TRUE(finiteCurve(model->bandCurve(side, band))) << what << " band " << band;
            }
            ASSERT_FALSE(cascadeWindowEnergies(*model, 2).empty()) << what;

            BiquadCoefficients sections[dsp::kBandSlots];
            for (int slot = 0; slot < dsp::kBandSlots; ++slot) sections[slot] = model->section(slot);
            ASSERT_EQ(kernels->buildKernels(sections, kFrameSize, rate, true, processLock, measured.get()),
                      dsp::KernelBuild::Built);
            const dsp::KernelSet& newest = kernels->acquireNewest();
            for (int side = 0; side < dsp::kSides; ++side) {
                const double* spectrum = newest.spectrum(side);
                for (int i = 0; i < 2 * kFrameSize; ++i) ASSERT_TRUE(std::isfinite(spectrum[i])) << what << " " << i;
                ASSERT_TRUE(finiteCurve(measured->side[side])) << what;
            }
        }
}

// Beyond Nyquist the slowest band is the narrow peak held just below it; its ringing, and that of
// every other held band, dies away (an unstable cascade grows, a marginal one rings on).
TEST(BandStability, HeldBandsDieAway) {
    // A held section depends on its shape, Q and gain alone, so one rate and frequency serve.
    auto model = std::make_unique<dsp::BandModel>(true);
    setAllShapesAt(*model, 20000.0);
    model->designAllBands(22050.0);
    const std::vector<SideEnergies> energy = cascadeWindowEnergies(*model, 64);
    ASSERT_FALSE(energy.empty());
    for (int side = 0; side < dsp::kSides; ++side) {
        double loudest = 0.0;
        for (const SideEnergies& e : energy) loudest = std::max(loudest, e[side]);
        EXPECT_LT(energy.back()[side], 1e-3 * loudest) << "side " << side;
    }
}

}  // namespace
