// Forward plus inverse transform of 2N real samples at each frame size: our families against
// FFTW's real-to-complex and complex-to-real plans of the same size (FFTW_MEASURE, double),
// measured in the same run.
//
//   fftw/N                 FFTW r2c + c2r (no scaling, like ours)
//   forward_inverse/F/N    our family F, forward + inverse
//   ratio/F/N              our family F against FFTW, timed in alternating batches so that
//                          both see the same machine load; counters ours_us and fftw_us are the
//                          fastest batch's time per call, ratio = ours_us / fftw_us.
//   multiply/F/N           the spectrum multiply of both sides, as the convolution runs it.

#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>

#include "dsp/AlignedBuffer.h"
#include "dsp/Fft.h"

namespace {

using dsp::AlignedBuffer;
using dsp::Fft;
using dsp::FftFamily;

void fillSignal(double* x, int count) {
    for (int i = 0; i < count; ++i) x[i] = std::sin(0.001 * i * i) + 0.25 * std::cos(0.37 * i);
}

// One FFTW plan pair on its own buffers.
class FftwReference {
public:
    explicit FftwReference(int n) : n_(n) {
        real_ = fftw_alloc_real(2 * static_cast<size_t>(n));
        complex_ = fftw_alloc_complex(static_cast<size_t>(n) + 1);
        forward_ = fftw_plan_dft_r2c_1d(2 * n, real_, complex_, FFTW_MEASURE);
        inverse_ = fftw_plan_dft_c2r_1d(2 * n, complex_, real_, FFTW_MEASURE);
        fillSignal(real_, 2 * n);
    }
    ~FftwReference() {
        fftw_destroy_plan(forward_);
        fftw_destroy_plan(inverse_);
        fftw_free(real_);
        fftw_free(complex_);
    }
    void run() {
        fftw_execute(forward_);
        fftw_execute(inverse_);
        real_[0] *= 1.0 / (2 * n_);  // keep the values bounded over many rounds
    }

private:
    int n_;
    double* real_;
    fftw_complex* complex_;
    fftw_plan forward_, inverse_;
};

class OurTransforms {
public:
    OurTransforms(FftFamily family, int n) : fft_(family), n_(n), buffer_(2 * static_cast<size_t>(n)) {
        fillSignal(buffer_.data(), 2 * n);
    }
    void run() {
        fft_.forward(buffer_.data(), n_);
        fft_.inverse(buffer_.data(), n_);
        buffer_[0] *= 1.0 / (2 * n_);
    }

private:
    Fft fft_;
    int n_;
    AlignedBuffer buffer_;
};

template <class Transforms>
double secondsPerCall(Transforms& t, int calls) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i) t.run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / calls;
}

void fftw(benchmark::State& state) {
    FftwReference reference(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        reference.run();
        benchmark::ClobberMemory();
    }
}

void forwardInverse(benchmark::State& state, FftFamily family) {
    if (!dsp::fftFamilyUsable(family)) return state.SkipWithError("not usable on this processor");
    OurTransforms ours(family, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        ours.run();
        benchmark::ClobberMemory();
    }
}

void ratio(benchmark::State& state, FftFamily family) {
    if (!dsp::fftFamilyUsable(family)) return state.SkipWithError("not usable on this processor");
    const int n = static_cast<int>(state.range(0));
    OurTransforms ours(family, n);
    FftwReference reference(n);
    const int calls = std::max(4, (1 << 20) / (8 * n));
    double bestOurs = 1e9, bestFftw = 1e9;
    for (auto _ : state) {
        bestOurs = std::min(bestOurs, secondsPerCall(ours, calls));
        bestFftw = std::min(bestFftw, secondsPerCall(reference, calls));
    }
    state.counters["ours_us"] = bestOurs * 1e6;
    state.counters["fftw_us"] = bestFftw * 1e6;
    state.counters["ratio"] = bestOurs / bestFftw;
}

void multiply(benchmark::State& state, FftFamily family) {
    if (!dsp::fftFamilyUsable(family)) return state.SkipWithError("not usable on this processor");
    const int n = static_cast<int>(state.range(0));
    const Fft fft(family);
    AlignedBuffer a(2 * n), b(2 * n), ka(2 * n), kb(2 * n);
    fillSignal(a.data(), 2 * n);
    fillSignal(b.data(), 2 * n);
    for (int j = 0; j < n; ++j) {  // unit gains, so that the frames neither grow nor decay
        ka[2 * j] = kb[2 * j] = std::cos(0.001 * j);
        ka[2 * j + 1] = kb[2 * j + 1] = std::sin(0.001 * j);
    }
    ka[1] = kb[1] = 1.0;
    for (auto _ : state) {
        fft.multiply(a.data(), ka.data(), n);
        fft.multiply(b.data(), kb.data(), n);
        benchmark::ClobberMemory();
    }
}

void frameSizes(benchmark::internal::Benchmark* b) {
    for (int n : dsp::kFftSizes) b->Arg(n);
    b->Unit(benchmark::kMicrosecond);
}

BENCHMARK(fftw)->Apply(frameSizes);
BENCHMARK_CAPTURE(forwardInverse, scalar, FftFamily::Scalar)->Apply(frameSizes);
BENCHMARK_CAPTURE(forwardInverse, sse2, FftFamily::Sse2)->Apply(frameSizes);
BENCHMARK_CAPTURE(forwardInverse, avx2, FftFamily::Avx2)->Apply(frameSizes);
BENCHMARK_CAPTURE(ratio, scalar, FftFamily::Scalar)->Apply(frameSizes)->Iterations(15);
BENCHMARK_CAPTURE(ratio, sse2, FftFamily::Sse2)->Apply(frameSizes)->Iterations(40);
BENCHMARK_CAPTURE(ratio, avx2, FftFamily::Avx2)->Apply(frameSizes)->Iterations(40);
BENCHMARK_CAPTURE(multiply, sse2, FftFamily::Sse2)->Apply(frameSizes);
BENCHMARK_CAPTURE(multiply, avx2, FftFamily::Avx2)->Apply(frameSizes);

}  // namespace

BENCHMARK_MAIN();
