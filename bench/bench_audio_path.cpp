// Cost of one second of stereo audio through each audio path, in host blocks of 512 float
// samples, with eight peaking bands active on each side, as the plug-in runs it.
//
//   path/<path>/<rate>/res<R>/<loops>+<transforms>
//     path        bypass, linear_x1, linear_x2, linear_x1/2, linear_x1/4, minimum_x1, minimum_x2
//     R           the Resolution step (linear paths only): N = 4096 << (R + FAT)
//     loops       the per-sample routine family (plain or sse2)
//     transforms  the FFT family of the kernel designer (scalar, sse2, avx2); the convolution
//                 itself always runs the fastest transforms and multiply-accumulate
//
//   tail/minimum_x1/48000/<loops>+<transforms>
//     the same second, but only its first block is noise and the rest silence: the bands'
//     tails decay through the denormal range, which must cost no more than the noise does
//
// Counters:
//   x_realtime   seconds of audio per second of CPU time (one core)
//
//   converters/<pair>/<rate>/<sums>
//     pair   x2, x1/2, x1/4: a rate converter pair, a one-sample delay between its halves
//     sums   plain, sse2 (128-bit sums), avx2 (the SSE2 family's 256-bit sums)
//
// The hop is the one the plug-in uses for a host block of 512: a partition of 2B up to 50 kHz,
// B up to 100 kHz, B/2 above, doubled with FAT, never more than 2N; hop = partition / 2.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "dsp/AudioEngine.h"
#include "dsp/BandModel.h"
#include "dsp/DesignRate.h"
#include "dsp/Fft.h"
#include "dsp/KernelDesigner.h"
#include "platform/TimedLock.h"
#include "plugin/EngineKernelOps.h"

namespace {

using dsp::AudioPathKind;
using dsp::FftFamily;
using dsp::PathFamily;
using Clock = std::chrono::steady_clock;

constexpr int kBlock = 512;

struct PathSetup {
    const char* name;
    AudioPathKind kind;
    bool power, linPhase, fat;
    int rate;
};

int hopFor(int rate, bool fat, int n) {
    int partition = rate <= 50000 ? 2 * kBlock : rate <= 100000 ? kBlock : kBlock / 2;
    if (fat) partition *= 2;
    if (partition > 2 * n) partition = 2 * n;
    return partition / 2;
}

// Eight peaking bands per side, spread over the audio band with varied gains and widths.
void designBusyBands(dsp::BandModel& model, double designRate) {
    const double hz[dsp::kBandsPerSide] = {45.0, 120.0, 330.0, 900.0, 2200.0, 4700.0, 9000.0, 14500.0};
    for (int side = 0; side < dsp::kSides; ++side)
        for (int band = 0; band < dsp::kBandsPerSide; ++band) {
            const double gain = (band % 2 ? 4.5 : -3.0) * (side ? 0.7 : 1.0);
            const double q = 0.3 + 0.06 * band + 0.05 * side;
            model.setBand(side, band, dsp::BandSettings{3, hz[band] * (side ? 1.12 : 1.0), q, gain});
        }
    model.designAllBands(designRate);
}

void runPath(benchmark::State& state, PathSetup setup, int resolution, PathFamily loops, FftFamily transforms,
             bool tail) {
    if (!dsp::fftFamilyUsable(transforms)) return state.SkipWithError("not usable on this processor");
    const int n = 4096 << (resolution + (setup.fat ? 1 : 0));
    const int hop = hopFor(setup.rate, setup.fat, n);
    const double designRate = dsp::designRate(setup.rate, setup.fat, setup.linPhase);

    dsp::BandModel model(loops == PathFamily::Sse2);
    designBusyBands(model, designRate);
    dsp::BiquadCoefficients sections[dsp::kBandSlots];
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) sections[slot] = model.section(slot);
    platform::TimedLock processLock;
    dsp::KernelDesigner kernels(transforms);
    if (setup.linPhase && kernels.buildKernels(sections, {n, hop}, designRate, true, processLock) !=
                              dsp::KernelBuild::Built)
        return state.SkipWithError("kernel build failed");
    EngineKernelOps ops(kernels);

    dsp::AudioEngine engine(loops);
    engine.setHostRate(setup.rate);
    engine.setFrame(n, hop);
    engine.suspend();
    const dsp::AudioBlockSettings s{.power = setup.power, .linPhase = setup.linPhase, .fat = setup.fat,
                                    .hostRate = setup.rate, .activeSlots = 0xffffu};
    auto reader = [&](int slot) { return model.readPublished(slot); };
    auto feed = [](float) {};

    std::vector<float> in[2], out[2];
    std::mt19937 rng(1);
    std::uniform_real_distribution<float> u(-0.5f, 0.5f);
    for (int c = 0; c < 2; ++c) {
        in[c].resize(kBlock);
        out[c].resize(kBlock);
        for (float& v : in[c]) v = u(rng);
    }
    const std::vector<float> silence(kBlock, 0.0f);
    float* inputs[2] = {in[0].data(), in[1].data()};
    float* silent[2] = {const_cast<float*>(silence.data()), const_cast<float*>(silence.data())};
    float* outputs[2] = {out[0].data(), out[1].data()};

    for (auto _ : state) {
        for (int done = 0; done < setup.rate; done += kBlock) {
            const int frames = std::min(kBlock, setup.rate - done);
            engine.process(tail && done > 0 ? silent : inputs, outputs, frames, true, true, s, reader, ops, feed);
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    if (engine.currentPath() != setup.kind) return state.SkipWithError("ran another path");
    state.counters["x_realtime"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    if (engine.convolver().silencedBlocks() > 0) state.SkipWithError("kernels did not fit the convolver");
}

// One second of stereo noise at `rate` through a converter pair.
template <class Converter, class P>
void runConverters(benchmark::State& state, int rate, bool wide) {
    if (wide && !dsp::avx2Usable()) return state.SkipWithError("not usable on this processor");
    Converter c{dsp::SumWidth(wide)};
    std::vector<double> noise(2 * 4096);
    std::mt19937 rng(1);
    std::uniform_real_distribution<double> u(-0.5, 0.5);
    for (double& v : noise) v = u(rng);
    // Between the halves, a delay of one inner sample stands in for the equalizer, whose
    // output never waits for the sample just given to it.
    P held[2] = {P::zero(), P::zero()};
    for (auto _ : state) {
        P sum = P::zero();
        for (int n = 0; n < rate; ++n) {
            const P x = P::make(noise[2 * (n & 4095)], noise[2 * (n & 4095) + 1]);
            if constexpr (std::is_same_v<Converter, dsp::DoubleRateConverter>) {
                P inner[2];
                c.up(x, inner);
                const P processed[2] = {held[1], inner[0]};
                held[1] = inner[1];
                sum = sum + c.down(processed);
            } else {
                P inner;
                if (c.down(x, inner)) {
                    c.up(held[0]);
                    held[0] = inner;
                }
                sum = sum + c.template out<P>();
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    state.counters["x_realtime"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

template <class Converter>
void registerConverters(const char* name, int rate) {
    const std::string prefix = std::string("converters/") + name + "/" + std::to_string(rate) + "/";
    benchmark::RegisterBenchmark((prefix + "plain").c_str(), runConverters<Converter, dsp::PlainPair>, rate, false);
    benchmark::RegisterBenchmark((prefix + "sse2").c_str(), runConverters<Converter, dsp::Sse2Pair>, rate, false);
    benchmark::RegisterBenchmark((prefix + "avx2").c_str(), runConverters<Converter, dsp::Sse2Pair>, rate, true);
}

const char* fftName(FftFamily f) { return f == FftFamily::Scalar ? "scalar" : f == FftFamily::Sse2 ? "sse2" : "avx2"; }

void registerAll() {
    const PathSetup paths[] = {
        {"bypass", AudioPathKind::Bypass, false, true, false, 48000},
        {"linear_x1", AudioPathKind::LinearUnity, true, true, false, 48000},
        {"linear_x2", AudioPathKind::LinearDouble, true, true, true, 48000},
        {"minimum_x1", AudioPathKind::MinimumUnity, true, false, false, 48000},
        {"minimum_x2", AudioPathKind::MinimumDouble, true, false, true, 48000},
        {"linear_x1/2", AudioPathKind::LinearHalf, true, true, false, 96000},
        {"linear_x1/4", AudioPathKind::LinearQuarter, true, true, false, 192000},
        {"linear_x1/2_fat", AudioPathKind::LinearHalf, true, true, true, 192000},
    };
    const std::pair<PathFamily, FftFamily> families[] = {
        {PathFamily::Plain, FftFamily::Scalar}, {PathFamily::Sse2, FftFamily::Sse2}, {PathFamily::Sse2, FftFamily::Avx2}};
    for (const PathSetup& p : paths) {
        const int resolutions = p.linPhase && p.power ? 3 : 1;
        for (int r = 0; r < resolutions; ++r)
            for (const auto& [loops, fft] : families) {
                if (resolutions == 1 && fft == FftFamily::Avx2) continue;  // no transforms on this path
                std::string name = std::string("path/") + p.name + "/" + std::to_string(p.rate) + "/";
                if (p.linPhase && p.power) name += "res" + std::to_string(r) + "/";
                name += std::string(dsp::pathFamilyName(loops)) + "+" + fftName(fft);
                benchmark::RegisterBenchmark(name.c_str(), runPath, p, r, loops, fft, false)->Unit(benchmark::kMillisecond);
            }
    }
    const PathSetup minimum = paths[3];
    for (const auto& [loops, fft] : families)
        if (fft != FftFamily::Avx2) {
            const std::string name = std::string("tail/minimum_x1/48000/") + dsp::pathFamilyName(loops) + "+" + fftName(fft);
            benchmark::RegisterBenchmark(name.c_str(), runPath, minimum, 0, loops, fft, true)->Unit(benchmark::kMillisecond);
        }
    registerConverters<dsp::DoubleRateConverter>("x2", 48000);
    registerConverters<dsp::HalfRateConverter>("x1/2", 96000);
    registerConverters<dsp::QuarterRateConverter>("x1/4", 192000);
}

}  // namespace

int main(int argc, char** argv) {
    registerAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
