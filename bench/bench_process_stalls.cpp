// The longest process call while another thread works the plug-in hard, through the built
// plug-in's entry point: what a host's audio thread would have to absorb as one late block.
//
//   stalls/busy   a control thread loads chunks, switches FAT, Resolution and LinPhase and moves
//                 band settings without pause; the audio thread processes blocks of random
//                 length up to 8192 at 48 kHz, alternating the precisions
//   stalls/idle   the same audio thread with no control thread, for comparison
//   stalls/automated  busy, and the audio thread also sends one band automation per block, as
//                 hosts do; the setParameter call counts as part of the block
// Counters: longest_ms (the figure that matters; a 512-sample block lasts 10.7 ms at 48 kHz),
// p999_ms, calls, longest_cpu_ms (the most processor time one call took), and longest_off_cpu_ms: the most that one call spent not running (waiting for
// a lock, or preempted — on a loaded machine the two cannot be told apart, but a lock wait
// shows as a figure far above the idle run's).
// TYX_BENCH_PLUGIN names another plug-in file to measure (for example an older build).

#include <benchmark/benchmark.h>

#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "host/VstHost.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kLargestBlock = 8192;
constexpr auto kRunTime = std::chrono::seconds(6);

double threadCpuMs() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec * 1e-6;
}

std::string pluginPath() {
    const char* env = std::getenv("TYX_BENCH_PLUGIN");
    return env && *env ? env : TYX_PLUGIN_PATH;
}

// One control action after another, as a user clicking around and a host loading sessions do.
void controlWork(vsthost::LoadedPlugin& p, const std::vector<unsigned char>& chunk, std::atomic<bool>& stop) {
    const int fat = p.findParameter("FAT"), resolution = p.findParameter("Resolution");
    const int linPhase = p.findParameter("LinPhase"), gain = p.findParameter("FLT1 Gain");
    const int type = p.findParameter("FLT1 Type");
    std::mt19937 rng(5);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    for (long i = 0; !stop.load(std::memory_order_relaxed); ++i) {
        switch (i % 6) {
            case 0: p.setChunk(chunk.data(), chunk.size()); break;
            case 1: p.setParameter(fat, static_cast<float>(i / 6 % 2)); break;
            case 2: p.setParameter(resolution, unit(rng)); break;
            case 3: p.setParameter(linPhase, i / 6 % 3 ? 1.0f : 0.0f); break;
            case 4: p.setParameter(type, 0.5f); break;
            default: p.setParameter(gain + static_cast<int>(rng() % 8), unit(rng)); break;
        }
    }
}

void stalls(benchmark::State& state, bool busy, bool automated) {
    std::string error;
    auto plugin = vsthost::LoadedPlugin::load(pluginPath(), &error);
    if (!plugin) return state.SkipWithError(error.c_str());
    plugin->open();
    plugin->setSampleRate(48000.0f);
    plugin->setBlockSize(kLargestBlock);
    plugin->resume();
    const std::vector<unsigned char> chunk = plugin->getChunk();

    std::vector<float> f[4];
    std::vector<double> d[4];
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> noise(-0.5, 0.5);
    for (int c = 0; c < 4; ++c) {
        f[c].resize(kLargestBlock);
        d[c].resize(kLargestBlock);
        for (int i = 0; i < kLargestBlock; ++i) f[c][i] = static_cast<float>(d[c][i] = noise(rng));
    }
    float* fin[2] = {f[0].data(), f[1].data()};
    float* fout[2] = {f[2].data(), f[3].data()};
    double* din[2] = {d[0].data(), d[1].data()};
    double* dout[2] = {d[2].data(), d[3].data()};

    const int gain = plugin->findParameter("FLT2 Gain");
    std::vector<double> callsMs;
    callsMs.reserve(1 << 20);
    double longestOffCpu = 0.0, longestCpu = 0.0;
    for (auto _ : state) {
        std::atomic<bool> stop{false};
        std::thread control;
        if (busy) control = std::thread([&] { controlWork(*plugin, chunk, stop); });
        std::uniform_int_distribution<int> size(1, kLargestBlock);
        const auto end = Clock::now() + kRunTime;
        for (long n = 0; Clock::now() < end; ++n) {
            const int frames = size(rng);
            const auto start = Clock::now();
            const double cpuStart = threadCpuMs();
            if (automated) plugin->setParameter(gain, static_cast<float>(n % 100) / 100.0f);
            if (n % 2) plugin->process(fin, fout, frames);
            else plugin->process(din, dout, frames);
            const double wall = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
            callsMs.push_back(wall);
            const double cpu = threadCpuMs() - cpuStart;
            longestCpu = std::max(longestCpu, cpu);
            longestOffCpu = std::max(longestOffCpu, wall - cpu);
        }
        stop.store(true);
        if (control.joinable()) control.join();
    }
    std::sort(callsMs.begin(), callsMs.end());
    state.counters["longest_ms"] = callsMs.empty() ? 0.0 : callsMs.back();
    state.counters["p999_ms"] = callsMs.empty() ? 0.0 : callsMs[callsMs.size() * 999 / 1000];
    state.counters["calls"] = static_cast<double>(callsMs.size());
    state.counters["longest_cpu_ms"] = longestCpu;
    state.counters["longest_off_cpu_ms"] = longestOffCpu;
}

BENCHMARK_CAPTURE(stalls, busy, true, false)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(stalls, automated, true, true)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(stalls, idle, false, false)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
