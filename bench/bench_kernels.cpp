// Cost of one kernel build at each frame size, and where it goes.
//
//   build/F/N            buildKernels as a band change calls it: LinPhase on, curves measured,
//                        kernels cut for a hop of 512
//   build/F_no_curves/N  the same without the display curves
//   cascade/N            the impulse responses of both sides' eight sections (N/2 + 1 samples)
//   transforms/F/N       per side the two transforms of N samples of the autocorrelation, and
//                        the cut into partitions for a hop of 512
//   display/F/N          measuring both sides' curves (two 65536-sample transforms and the
//                        interpolation of 453 points each)
// The rest of a build is clearing and copying buffers, the window and the publication.

#include <benchmark/benchmark.h>

#include <cmath>

#include "dsp/AlignedBuffer.h"
#include "dsp/Fft.h"
#include "dsp/KernelDesigner.h"
#include "dsp/KernelDisplay.h"
#include "dsp/PartitionSpectra.h"
#include "platform/TimedLock.h"

namespace {

using dsp::AlignedBuffer;
using dsp::BiquadCoefficients;
using dsp::FftFamily;

BiquadCoefficients peaking(double f0, double gainDb, double q, double rate) {
    const double A = std::pow(10.0, gainDb / 40.0), w = 2 * M_PI * f0 / rate, alpha = std::sin(w) / (2 * q);
    const double a0 = 1 + alpha / A;
    return {(1 + alpha * A) / a0, -2 * std::cos(w) / a0, (1 - alpha * A) / a0, -2 * std::cos(w) / a0, (1 - alpha / A) / a0};
}

// The hop of host blocks of 512 at 48 kHz: the kernels are cut into partitions for it.
constexpr int kHop = 512;

// Eight active bands per side, as a busy preset has them.
struct BusyBands {
    BiquadCoefficients s[dsp::kBandSlots];
    BusyBands() {
        for (int slot = 0; slot < dsp::kBandSlots; ++slot)
            s[slot] = peaking(40.0 * std::pow(2.0, slot % 8 + 0.3 * (slot / 8)), slot % 2 ? 4 : -3, 1.5, 48000.0);
    }
};

void build(benchmark::State& state, FftFamily family, bool curves) {
    if (!dsp::fftFamilyUsable(family)) return state.SkipWithError("not usable on this processor");
    const int n = static_cast<int>(state.range(0));
    const BusyBands bands;
    platform::TimedLock processLock;
    dsp::KernelDesigner designer(family);
    dsp::KernelCurves measured;
    for (auto _ : state) {
        designer.buildKernels(bands.s, {n, kHop}, 48000.0, true, processLock, curves ? &measured : nullptr);
        benchmark::ClobberMemory();
    }
}

void cascade(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const BusyBands bands;
    AlignedBuffer a(2 * n), b(2 * n);
    for (auto _ : state) {
        dsp::cascadeImpulseResponses(bands.s, n / 2, a.data(), b.data());
        benchmark::ClobberMemory();
    }
}

void transforms(benchmark::State& state, FftFamily family) {
    if (!dsp::fftFamilyUsable(family)) return state.SkipWithError("not usable on this processor");
    const int n = static_cast<int>(state.range(0));
    const dsp::Fft fft(family);
    const dsp::PartitionPlan plan = dsp::PartitionPlan::forFrame(n, kHop);
    AlignedBuffer kernel(2 * n), spectra(plan.spectrumDoubles());
    for (auto _ : state) {
        for (int side = 0; side < 2; ++side) {
            kernel[0] = 1.0;
            fft.forwardAny(kernel.data(), n / 2);
            fft.inverseAny(kernel.data(), n / 2);
            dsp::partitionKernel(kernel.data(), plan, fft, spectra.data());
        }
        benchmark::ClobberMemory();
    }
}

void display(benchmark::State& state, FftFamily family) {
    if (!dsp::fftFamilyUsable(family)) return state.SkipWithError("not usable on this processor");
    const int n = static_cast<int>(state.range(0));
    const dsp::Fft fft(family);
    const dsp::KernelDisplay measure;
    AlignedBuffer kernel(2 * n), scratch(dsp::KernelDisplay::kScratchDoubles);
    kernel[n] = 1.0;
    dsp::Curve curve;
    for (auto _ : state) {
        for (int side = 0; side < 2; ++side) measure.measure(kernel.data(), n, 48000.0, fft, scratch.data(), curve);
        benchmark::ClobberMemory();
    }
}

void frameSizes(benchmark::internal::Benchmark* b) {
    for (int n : dsp::kFftSizes) b->Arg(n);
    b->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(build, scalar, FftFamily::Scalar, true)->Apply(frameSizes);
BENCHMARK_CAPTURE(build, sse2, FftFamily::Sse2, true)->Apply(frameSizes);
BENCHMARK_CAPTURE(build, avx2, FftFamily::Avx2, true)->Apply(frameSizes);
BENCHMARK_CAPTURE(build, avx2_no_curves, FftFamily::Avx2, false)->Apply(frameSizes);
BENCHMARK(cascade)->Apply(frameSizes);
BENCHMARK_CAPTURE(transforms, sse2, FftFamily::Sse2)->Apply(frameSizes);
BENCHMARK_CAPTURE(transforms, avx2, FftFamily::Avx2)->Apply(frameSizes);
BENCHMARK_CAPTURE(display, sse2, FftFamily::Sse2)->Apply(frameSizes);
BENCHMARK_CAPTURE(display, avx2, FftFamily::Avx2)->Apply(frameSizes);

}  // namespace

BENCHMARK_MAIN();
