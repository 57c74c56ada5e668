#pragma once
// Independent truth for the transform tests: the discrete Fourier transform evaluated term by
// term in long double, and helpers to move signals in and out of the transform buffer's layout.

#include <cmath>
#include <complex>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

#include "dsp/Fft.h"
#include "dsp/FftLayout.h"

namespace fft_test {

using LongComplex = std::complex<long double>;

// cos and sin of 2π·j/(2N), j = 0..2N − 1, in long double (one table per N, kept).
inline const std::vector<LongComplex>& roots(int n) {
    static std::map<int, std::vector<LongComplex>> tables;
    auto [it, fresh] = tables.try_emplace(n);
    if (fresh) {
        const long double pi = 3.141592653589793238462643383279502884L;
        it->second.resize(2 * static_cast<size_t>(n));
        for (int j = 0; j < 2 * n; ++j) {
            const long double a = pi * j / n;
            it->second[j] = {std::cos(a), std::sin(a)};
        }
    }
    return it->second;
}

// X[k] = Σ_t x[t]·exp(−2πi·kt/2N) over the 2N samples x.
inline LongComplex dftBin(const std::vector<double>& x, int k) {
    const int two = static_cast<int>(x.size());
    const auto& r = roots(two / 2);
    long double re = 0, im = 0;
    for (int t = 0; t < two; ++t) {
        const LongComplex& w = r[static_cast<size_t>(static_cast<int64_t>(k) * t % two)];
        re += x[t] * w.real();
        im -= x[t] * w.imag();
    }
    return {re, im};
}

inline std::vector<double> randomSignal(size_t count, uint32_t seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<double> x(count);
    for (double& v : x) v = u(rng);
    return x;
}

inline void writeSignal(const std::vector<double>& x, int n, double* buffer) {
    for (int t = 0; t < 2 * n; ++t) buffer[dsp::sampleEntry(n, t)] = x[t];
}

// Bin k (0..N) of a packed spectrum.
inline std::complex<double> readBin(const double* spectrum, int n, int k) {
    if (k == 0) return {spectrum[0], 0.0};
    if (k == n) return {spectrum[1], 0.0};
    const int p = dsp::spectrumPairOfBin(n, k);
    return {spectrum[2 * p], spectrum[2 * p + 1]};
}

// Accumulates sqrt(Σ|got − want|² / Σ|want|²).
class RelativeRms {
public:
    void add(std::complex<long double> got, std::complex<long double> want) {
        error_ += std::norm(got - want);
        reference_ += std::norm(want);
    }
    void add(long double got, long double want) { add(std::complex<long double>(got), std::complex<long double>(want)); }
    double value() const { return static_cast<double>(std::sqrt(error_ / reference_)); }

private:
    long double error_ = 0, reference_ = 0;
};

inline std::vector<dsp::FftFamily> allFamilies() {
    return {dsp::FftFamily::Scalar, dsp::FftFamily::Sse2, dsp::FftFamily::Avx2};
}

}  // namespace fft_test
