#pragma once
// Independent truth for the kernel tests: a few band sections, their exact responses and
// impulse responses in long double, and the bound on how far a windowed, truncated
// autocorrelation's spectrum can lie from |H|².

#include <algorithm>
#include <cmath>
#include <complex>
#include <vector>

#include "dsp/AlignedBuffer.h"
#include "dsp/EqTypes.h"
#include "dsp/KernelDesigner.h"

namespace kernel_test {

using dsp::BiquadCoefficients;
using Sections = BiquadCoefficients[dsp::kBandSlots];
constexpr long double kPi = 3.141592653589793238462643383279502884L;

// Sections in the familiar audio-cookbook forms (a0 normalised), gain per section in dB.
inline BiquadCoefficients peaking(double f0, double gainDb, double q, double rate) {
    const double A = std::pow(10.0, gainDb / 40.0), w = 2 * M_PI * f0 / rate, alpha = std::sin(w) / (2 * q);
    const double a0 = 1 + alpha / A;
    return {(1 + alpha * A) / a0, -2 * std::cos(w) / a0, (1 - alpha * A) / a0, -2 * std::cos(w) / a0, (1 - alpha / A) / a0};
}

inline BiquadCoefficients shelf(bool high, double f0, double gainDb, double q, double rate) {
    const double A = std::pow(10.0, gainDb / 40.0), w = 2 * M_PI * f0 / rate, c = std::cos(w);
    const double beta = std::sqrt(A) * std::sin(w) / q;
    const double s = high ? -1.0 : 1.0;  // the high shelf is the low shelf with c → −c, b1, a1 negated
    const double a0 = (A + 1) + s * (A - 1) * c + beta;
    return {A * ((A + 1) - s * (A - 1) * c + beta) / a0, s * 2 * A * ((A - 1) - s * (A + 1) * c) / a0,
            A * ((A + 1) - s * (A - 1) * c - beta) / a0, -s * 2 * ((A - 1) + s * (A + 1) * c) / a0,
            ((A + 1) + s * (A - 1) * c - beta) / a0};
}

// First-order low-pass by the bilinear transform of 1/(s + 1), pre-warped at f0.
inline BiquadCoefficients firstOrderLowPass(double f0, double rate) {
    const double k = 1.0 / std::tan(M_PI * f0 / rate);
    return {1 / (k + 1), 1 / (k + 1), 0.0, (1 - k) / (k + 1), 0.0};
}

inline std::complex<long double> response(const BiquadCoefficients& c, long double w) {
    const std::complex<long double> z1 = std::polar(1.0L, -w), z2 = z1 * z1;
    return (static_cast<long double>(c.b0) + static_cast<long double>(c.b1) * z1 + static_cast<long double>(c.b2) * z2) /
           (1.0L + static_cast<long double>(c.a1) * z1 + static_cast<long double>(c.a2) * z2);
}

// Π |H_b(e^jw)|² over one side's eight sections: what that side's kernel aims at.
inline long double sidePower(const Sections& s, int side, long double w) {
    long double p = 1;
    for (int b = 0; b < dsp::kBandsPerSide; ++b) p *= std::norm(response(s[side * dsp::kBandsPerSide + b], w));
    return p;
}

// The side's cascade impulse response in long double, until it has decayed below 1e-30 of
// its largest value for a while (or `limit` samples).
inline std::vector<long double> impulseResponse(const Sections& s, int side, size_t limit = 1 << 18) {
    long double x1[8] = {}, x2[8] = {}, y1[8] = {}, y2[8] = {}, peak = 0;
    std::vector<long double> h;
    size_t quiet = 0;
    for (size_t k = 0; k < limit && quiet < 64; ++k) {
        long double x = k == 0 ? 1 : 0;
        for (int b = 0; b < dsp::kBandsPerSide; ++b) {
            const BiquadCoefficients& c = s[side * dsp::kBandsPerSide + b];
            const long double y = c.b0 * x + c.b1 * x1[b] + c.b2 * x2[b] - c.a1 * y1[b] - c.a2 * y2[b];
            x2[b] = x1[b], x1[b] = x, y2[b] = y1[b], y1[b] = y;
            x = y;
        }
        h.push_back(x);
        peak = std::max(peak, std::fabs(x));
        quiet = std::fabs(x) < 1e-30L * peak ? quiet + 1 : 0;
    }
    return h;
}

// How far the designed kernel's spectrum may lie from |H|² at any frequency. The kernel (less
// its N/2 delay) is g[m] = c_T[m]·w[m], |m| ≤ N/2: the autocorrelation of h truncated to
// h[0..N/2] under the Hamming window w[m] = 0.54 + 0.46·cos(2πm/N). The full autocorrelation c
// has the spectrum |H|² exactly, so at every w
//   |G(w) − |H|²| ≤ Σ_{|m|≤N/2} |c_T[m]·w[m] − c[m]| + Σ_{|m|>N/2} |c[m]|.
inline long double spectrumBound(const Sections& s, int side, int n) {
    const std::vector<long double> h = impulseResponse(s, side);
    const long H = static_cast<long>(h.size());
    const long half = n / 2;
    long double bound = 0;
    for (long m = 0; m < H; ++m) {
        long double full = 0, truncated = 0;
        for (long k = 0; k + m < H; ++k) {
            full += h[k] * h[k + m];
            if (k + m <= half) truncated += h[k] * h[k + m];
        }
        const long double term = m <= half
                                     ? std::fabs(truncated * (0.54L + 0.46L * std::cos(2 * kPi * m / n)) - full)
                                     : std::fabs(full);
        bound += (m == 0 ? 1 : 2) * term;  // lags m and −m
    }
    return bound;
}

// Sixteen identity sections with some replaced.
struct SectionSet {
    Sections s;
    SectionSet() {
        for (auto& c : s) c = BiquadCoefficients{};
    }
    SectionSet& with(int slot, const BiquadCoefficients& c) {
        s[slot] = c;
        return *this;
    }
};

// The time-domain taps behind a side's newest kernel spectrum, seen the way the audio path
// sees them: a unit sample convolved with the kernel. All 2N samples.
inline std::vector<double> activeTaps(dsp::KernelDesigner& d, int side, int n) {
    dsp::AlignedBuffer frames[2] = {dsp::AlignedBuffer(2 * n), dsp::AlignedBuffer(2 * n)};
    dsp::AlignedBuffer& frame = frames[side];
    frame[0] = 1.0;
    d.fft().forward(frame.data(), n);
    d.multiplyByNewest(frames[0].data(), frames[1].data(), n);
    d.fft().inverse(frame.data(), n);
    std::vector<double> taps(2 * n);
    for (int t = 0; t < 2 * n; ++t) taps[t] = frame[t < n ? 2 * t : 2 * (t - n) + 1];
    return taps;
}

}  // namespace kernel_test
