#pragma once
// Signals and measurements shared by the audio path tests.

#include <cmath>
#include <complex>
#include <numbers>
#include <utility>
#include <vector>

#include "unit/fft/FftTestSupport.h"

namespace audiotest {

constexpr double kPi = std::numbers::pi;
using fft_test::randomSignal;  // uniform in ±1

inline std::vector<double> sine(double f, size_t length, double phase) {
    std::vector<double> x(length);
    for (size_t n = 0; n < length; ++n) x[n] = std::sin(2.0 * kPi * f * n + phase);
    return x;
}

// The DFT of h at angular frequency w.
inline std::complex<double> dft(const std::vector<double>& h, double w) {
    std::complex<double> s = 0.0;
    for (size_t n = 0; n < h.size(); ++n) s += h[n] * std::polar(1.0, -w * static_cast<double>(n));
    return s;
}

// The complex gain of the last `length` samples of y against sin(2πf(n − delay) + phase), by
// Hann-windowed correlation: a pure delay of exactly `delay` (fractional allowed) gives zero phase.
inline std::complex<double> toneGain(const std::vector<double>& y, double f, double phase, double delay, size_t length) {
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

}  // namespace audiotest
