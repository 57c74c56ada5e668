// Cost of the analyzer per input sample: the plain routine against the SSE routine, for
// both filter orders, at 48 kHz on white noise. The SSE routine switches the processor's
// flush-to-zero modes on and back for every sample unless the host already runs with them;
// the "host_flushes" cases show what it costs without that switch. The per-sample figure is the
// "time_per_sample" counter (seconds, printed with an SI prefix: 40n is 40 ns).

#include <benchmark/benchmark.h>
#include <xmmintrin.h>

#include <cstdint>
#include <vector>

#include "analyzer/SPAN.h"

namespace {

constexpr int kBlock = 8192;

std::vector<float> noiseBlock() {
    std::vector<float> x(kBlock);
    uint32_t state = 2463534242u;
    for (float& v : x) {
        state = state * 1664525u + 1013904223u;
        v = 0.5f * static_cast<float>(static_cast<int32_t>(state)) * (1.0f / 2147483648.0f);
    }
    return x;
}

void analyzeNoise(benchmark::State& state, SPAN::Routine routine, int order, bool hostFlushes = false) {
    const std::vector<float> input = noiseBlock();
    const unsigned hostModes = _mm_getcsr();
    if (hostFlushes) _mm_setcsr(hostModes | 0x8040u);  // flush-to-zero, denormals-are-zero
    SPAN concrete(routine);
    SPAN* span = &concrete;  // called the way the audio path calls it, through the interface
    span->setFilterOrder(order);
    span->setSampleRate(48000.0f);
    for (auto _ : state) {
        for (float x : input) span->processSample(x);
        benchmark::ClobberMemory();
    }
    const double samples = static_cast<double>(state.iterations()) * kBlock;
    state.SetItemsProcessed(static_cast<int64_t>(samples));
    state.counters["time_per_sample"] =
        benchmark::Counter(samples, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    _mm_setcsr(hostModes);
}

BENCHMARK_CAPTURE(analyzeNoise, scalar_order2, SPAN::Routine::scalar, 2);
BENCHMARK_CAPTURE(analyzeNoise, vector_order2, SPAN::Routine::vector, 2);
BENCHMARK_CAPTURE(analyzeNoise, scalar_order6, SPAN::Routine::scalar, 6);
BENCHMARK_CAPTURE(analyzeNoise, vector_order6, SPAN::Routine::vector, 6);
BENCHMARK_CAPTURE(analyzeNoise, vector_order2_host_flushes, SPAN::Routine::vector, 2, true);
BENCHMARK_CAPTURE(analyzeNoise, vector_order6_host_flushes, SPAN::Routine::vector, 6, true);

}  // namespace

BENCHMARK_MAIN();
