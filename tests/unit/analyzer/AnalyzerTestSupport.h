#pragma once
// Shared helpers of the analyzer tests: signals, read-outs and an analytic prediction of
// what a band should read, worked out from the analog prototype rather than from the
// engine's coefficients.

#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>

#include "analyzer/BandFilterDesign.h"
#include "analyzer/DecimationLowPass.h"
#include "analyzer/SPAN.h"

namespace analyzer_test {

using analyzer::SectionCascade;

constexpr double kPi = std::numbers::pi;
constexpr float kRates[6] = {44100.0f, 48000.0f, 88200.0f, 96000.0f, 176400.0f, 192000.0f};

struct Bars {
    float db[SPAN::kBands];
    float operator[](int i) const { return db[i]; }
};

// Settings are taken over by the audio thread's next sample; a test, its only thread, takes
// them over before it reads.
inline Bars readBars(SPAN& span) {
    span.applyPostedSettings();
    Bars b{};
    span.getBars(b.db);
    return b;
}

inline double nominalCentre(int band) { return 1000.0 * std::pow(2.0, (13.0 - band) / 3.0); }

// How many times the group of a band halves the rate: 0 for the top bands and stage 0,
// s for stage s, 5 for the bottom bands.
inline int rateHalvings(int band) {
    if (band < 8) return 0;
    if (band < 23) return (band - 8) / 3;
    return 5;
}

// Lower and upper -3 dB edges a band filter is designed for, in Hz at the rate it runs at.
inline void designEdges(int band, int order, double hostRate, double& f1, double& f2) {
    const double h = order == 2 ? 1.0 / 11.0 : 1.0 / 6.0;
    const double fc = nominalCentre(band);
    f1 = fc * std::pow(2.0, -h);
    f2 = fc * std::pow(2.0, h);
    if (band == 0 && order == 6 && hostRate == 44100.0) f2 = 21500.0;
}

// Response of a cascade at the angular frequency w (radians per sample).
inline std::complex<double> cascadeResponse(const SectionCascade& c, int sections, double w) {
    const std::complex<double> z1 = std::polar(1.0, -w);
    const std::complex<double> z2 = z1 * z1;
    std::complex<double> h = 1.0;
    for (int k = 0; k < sections; ++k) {
        const auto& s = c.section[k];
        h *= static_cast<double>(s.g) * (double(s.b0) + double(s.b1) * z1 + double(s.b2) * z2) /
             (1.0 + double(s.a1) * z1 + double(s.a2) * z2);
    }
    return h;
}

inline double cascadeGainDb(const SectionCascade& c, int sections, double f, double rate) {
    return 20.0 * std::log10(std::abs(cascadeResponse(c, sections, 2.0 * kPi * f / rate)));
}

// The reading (dB) that band `band` should give for a steady sine of amplitude 1 at f:
// a Butterworth band-pass between prewarped edges, behind the decimation low-passes on its
// way down the tree.
inline double predictedReadingDb(int band, double f, double hostRate, int order) {
    const int halvings = rateHalvings(band);
    const double rate = hostRate / std::pow(2.0, halvings);
    double f1, f2;
    designEdges(band, order, hostRate, f1, f2);
    const double w = std::tan(kPi * f / rate);
    const double w1 = std::tan(kPi * f1 / rate);
    const double w2 = std::tan(kPi * f2 / rate);
    const double omega = (w * w - w1 * w2) / ((w2 - w1) * w);
    const int prototypeOrder = order == 2 ? 1 : 3;
    double db = -10.0 * std::log10(1.0 + std::pow(omega * omega, prototypeOrder));

    const int sections = order == 2 ? 1 : 3;
    for (int s = 0; s < halvings; ++s) {
        db += cascadeGainDb(analyzer::decimationLowPass(order), sections, f, hostRate / std::pow(2.0, s));
    }
    return db;
}

// A deterministic white-noise source, uniform in [-1, 1).
class Noise {
public:
    explicit Noise(uint32_t seed) : state_(seed) {}
    float next() {
        state_ = state_ * 1664525u + 1013904223u;
        return static_cast<float>(static_cast<int32_t>(state_)) * (1.0f / 2147483648.0f);
    }

private:
    uint32_t state_;
};

inline void feedSine(SPAN& span, double f, double rate, long samples, long& phase, double amplitude = 1.0) {
    for (long i = 0; i < samples; ++i, ++phase) {
        span.processSample(static_cast<float>(amplitude * std::sin(2.0 * kPi * f * phase / rate)));
    }
}

inline void feedSilence(SPAN& span, long samples) {
    for (long i = 0; i < samples; ++i) span.processSample(0.0f);
}

// Power mean of the readings, sampled every `every` input samples while the sine goes on:
// irons out the ripple that the detectors leave at twice the tone frequency.
inline Bars meanReadings(SPAN& span, double f, double rate, long samples, long every, long& phase) {
    double power[SPAN::kBands] = {};
    long reads = 0;
    for (long done = 0; done < samples; done += every) {
        feedSine(span, f, rate, every, phase);
        const Bars b = readBars(span);
        for (int i = 0; i < SPAN::kBands; ++i) power[i] += std::pow(10.0, b[i] / 10.0);
        ++reads;
    }
    Bars mean{};
    for (int i = 0; i < SPAN::kBands; ++i) mean.db[i] = static_cast<float>(10.0 * std::log10(power[i] / reads));
    return mean;
}

}  // namespace analyzer_test
