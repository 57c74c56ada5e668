#pragma once
// Signals and measurements shared by the audio path tests.

#include <cmath>
#include <complex>
#include <numbers>
#include <utility>
#include <vector>

#include "dsp/PathConvolver.h"
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

// Identity transforms and the kernel multiply as a direct circular convolution over the 2N-sample
// frame: whatever the real transforms do, forward·multiply·inverse must amount to that.
class DirectConvolution : public dsp::PathConvolutionOps {
public:
    DirectConvolution(int n, const std::vector<double>& a, const std::vector<double>& b) : n_(n) {
        for (int side = 0; side < 2; ++side)
            for (size_t k = 0; k < (side ? b : a).size(); ++k)
                if ((side ? b : a)[k] != 0.0) taps_[side].emplace_back(k, (side ? b : a)[k]);
    }
    // A single tap at N/2 on both sides: the kernel of a path with every band bypassed.
    explicit DirectConvolution(int n) : n_(n) { taps_[0] = taps_[1] = {{n / 2, 1.0}}; }
    void forward(double*, int) override {}
    void inverse(double*, int) override {}
    bool multiplyByKernels(double* frameA, double* frameB, int frameSize) override {
        if (failNext || frameSize != n_) return failNext = false;
        convolve(0, frameA);
        convolve(1, frameB);
        return true;
    }
    bool failNext = false;

private:
    void convolve(int side, double* frame) const {
        const size_t size = 2 * n_;
        auto at = [&](size_t t) -> double& { return t < size_t(n_) ? frame[2 * t] : frame[2 * (t - n_) + 1]; };
        std::vector<double> y(size, 0.0);
        for (size_t t = 0; t < size; ++t)
            for (const auto& [k, g] : taps_[side]) y[(t + k) % size] += at(t) * g;
        for (size_t t = 0; t < size; ++t) at(t) = y[t];
    }

    int n_;
    std::vector<std::pair<size_t, double>> taps_[2];
};

}  // namespace audiotest
