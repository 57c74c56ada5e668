// The built plug-in driven through its entry point as a careless or hostile host drives it:
// an audio thread with random block sizes (odd ones, and ones above the declared maximum), both
// precisions, input bursts of NaN, ±Inf, denormals, full-scale DC and silence, and hostile and
// ordinary automation between its blocks, while a control thread sends out-of-range and
// non-finite values on every parameter, program changes, chunk round trips, corrupted chunks,
// sample-rate and block-size changes and mains off/on.
// Every second both threads pause and the plug-in is checked: every parameter finite and in
// 0..1, and clean input giving finite, bounded output. The audio thread must not allocate.
//
// It runs for TYX_ROBUSTNESS_SECONDS seconds (20 when unset); set it to hours for a soak run.
// Each failure names the fault it points at, so that one run separates them.

#include <gtest/gtest.h>

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "host/VstHost.h"

// ---- Allocations on the audio thread ----------------------------------------------------------
// The C allocator is interposed in this program; the plug-in's allocations (operator new
// included) reach it through the dynamic linker. The sanitizers bring their own allocator, so
// the count is only taken in builds without one.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TYX_COUNT_ALLOCATIONS 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TYX_COUNT_ALLOCATIONS 0
#endif
#endif
#ifndef TYX_COUNT_ALLOCATIONS
#define TYX_COUNT_ALLOCATIONS 1
#endif

namespace {
std::atomic<pthread_t> watchedThread{};
std::atomic<bool> watching{false};
std::atomic<long> watchedAllocations{0};
}  // namespace

#if TYX_COUNT_ALLOCATIONS
namespace {
void noteAllocation() {
    if (watching.load(std::memory_order_relaxed) &&
        pthread_equal(pthread_self(), watchedThread.load(std::memory_order_relaxed)))
        watchedAllocations.fetch_add(1, std::memory_order_relaxed);
}
}  // namespace

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);

void* malloc(size_t n) {
    noteAllocation();
    return __libc_malloc(n);
}
void* calloc(size_t n, size_t size) {
    noteAllocation();
    return __libc_calloc(n, size);
}
void* realloc(void* p, size_t n) {
    noteAllocation();
    return __libc_realloc(p, n);
}
void* aligned_alloc(size_t alignment, size_t n) {
    noteAllocation();
    return __libc_memalign(alignment, n);
}
void* memalign(size_t alignment, size_t n) {
    noteAllocation();
    return __libc_memalign(alignment, n);
}
int posix_memalign(void** out, size_t alignment, size_t n) {
    noteAllocation();
    void* p = __libc_memalign(alignment, n);
    if (!p) return 12;  // ENOMEM
    *out = p;
    return 0;
}
}
#endif

namespace {

constexpr int kDeclaredMaxBlock = 4096;  // what the control thread tells the plug-in at most
constexpr int kLargestBlock = 8192;      // what the audio thread may still send
constexpr int kCleanBlock = 1024;
// Clean input is a sine of this amplitude; the output may be boosted by the bands and the
// output gain, but a figure beyond this means an unstable filter, not an equalizer.
constexpr double kCleanAmplitude = 0.25;
constexpr double kOutputBound = 1e6;

int runSeconds() {
    const char* env = std::getenv("TYX_ROBUSTNESS_SECONDS");
    const int s = env ? std::atoi(env) : 0;
    return s > 0 ? s : 20;
}

const float kHostileValues[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                                -std::numeric_limits<float>::infinity(), -1.0f, -1e-30f, 1.5f, 1e30f,
                                std::numeric_limits<float>::denorm_min(), 0.0f, 1.0f};
const float kRates[] = {0.0f, -48000.0f, std::numeric_limits<float>::quiet_NaN(), 1e12f, 4999.9f, 8000.0f, 22050.0f,
                        44100.0f, 48000.0f, 88200.0f, 96000.0f, 176400.0f, 192000.0f, 384000.0f};

// Half the time a hostile value, otherwise an ordinary one.
float anyValue(std::mt19937& rng) {
    return rng() % 2 ? kHostileValues[rng() % std::size(kHostileValues)]
                     : std::uniform_real_distribution<float>(0, 1)(rng);
}

enum class Burst { Noise, NaN, Infinity, Denormal, FullScaleDc, Silence, kCount };

// Both precisions' buffers, allocated before the audio thread starts.
template <typename T>
struct Buffers {
    std::vector<T> in[2], out[2];
    T* inputs[2];
    T* outputs[2];
    Buffers() {
        for (int c = 0; c < 2; ++c) {
            in[c].assign(kLargestBlock, T(0));
            out[c].assign(kLargestBlock, T(0));
            inputs[c] = in[c].data();
            outputs[c] = out[c].data();
        }
    }
};

template <typename T>
void fillBurst(Buffers<T>& b, int frames, Burst kind, std::mt19937& rng) {
    std::uniform_real_distribution<double> noise(-0.5, 0.5);
    std::uniform_int_distribution<int> pick(0, frames - 1);
    for (int c = 0; c < 2; ++c) {
        T* x = b.in[c].data();
        for (int i = 0; i < frames; ++i) x[i] = static_cast<T>(noise(rng));
        switch (kind) {
            case Burst::NaN: x[pick(rng)] = std::numeric_limits<T>::quiet_NaN(); break;
            case Burst::Infinity: x[pick(rng)] = (c ? -1 : 1) * std::numeric_limits<T>::infinity(); break;
            case Burst::Denormal: std::fill(x, x + frames, std::numeric_limits<T>::denorm_min()); break;
            case Burst::FullScaleDc: std::fill(x, x + frames, T(c ? -1 : 1)); break;
            case Burst::Silence: std::fill(x, x + frames, T(0)); break;
            default: break;
        }
    }
}

class HostileHost : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        plugin = vsthost::LoadedPlugin::load(TYX_PLUGIN_PATH, &error);
        ASSERT_TRUE(plugin) << error;
        plugin->open();
        plugin->setSampleRate(48000.0f);
        plugin->setBlockSize(kDeclaredMaxBlock);
        plugin->resume();
    }

    // Audio thread: one block of random length, precision and content.
    void hostileBlock(std::mt19937& rng) {
        std::uniform_int_distribution<int> size(1, kLargestBlock);
        std::uniform_int_distribution<int> burst(0, 2 * static_cast<int>(Burst::kCount));
        const int frames = size(rng);
        const int b = burst(rng);
        const Burst kind = b < static_cast<int>(Burst::kCount) ? static_cast<Burst>(b) : Burst::Noise;
        if (rng() % 2) {
            fillBurst(floats, frames, kind, rng);
            plugin->process(floats.inputs, floats.outputs, frames);
        } else {
            fillBurst(doubles, frames, kind, rng);
            plugin->process(doubles.inputs, doubles.outputs, frames);
        }
        // Hosts send automation from the audio thread as well, between its blocks.
        if (rng() % 4 == 0) plugin->setParameter(static_cast<int>(rng() % plugin->numParams()), anyValue(rng));
    }

    // Control thread: one hostile action.
    void hostileControl(std::mt19937& rng) {
        const int params = plugin->numParams();
        switch (rng() % 12) {
            case 0: case 1: case 2: case 3: plugin->setParameter(static_cast<int>(rng() % params), anyValue(rng)); break;
            case 4: plugin->dispatch(effSetProgram, 0, static_cast<VstIntPtr>(rng() % 40) - 8); break;
            case 5: {
                const bool preset = rng() % 2;
                const std::vector<unsigned char> chunk = plugin->getChunk(preset);
                if (!chunk.empty()) plugin->setChunk(chunk.data(), chunk.size(), preset);
                break;
            }
            case 6: {
                std::vector<unsigned char> chunk = plugin->getChunk(rng() % 2);
                if (chunk.empty()) break;
                for (int i = 0; i < 16; ++i) chunk[rng() % chunk.size()] = static_cast<unsigned char>(rng());
                if (rng() % 2) chunk.resize(rng() % chunk.size());
                if (!chunk.empty()) plugin->setChunk(chunk.data(), chunk.size(), rng() % 2);
                break;
            }
            case 7:
                lastRate.store(kRates[rng() % std::size(kRates)], std::memory_order_relaxed);
                plugin->setSampleRate(lastRate.load(std::memory_order_relaxed));
                break;
            case 8: plugin->setBlockSize(static_cast<int>(rng() % (2 * kDeclaredMaxBlock)) - 16); break;
            case 9: plugin->suspend(); break;
            case 10: plugin->resume(); break;
            default: plugin->dispatch(effEditIdle); break;
        }
    }

    // Both threads parked: the plug-in's state must be sane and recover on clean input.
    void checkWhilePaused(int round) {
        std::string kept;
        int bad = 0;
        for (int i = 0; i < plugin->numParams(); ++i) {
            const float v = plugin->getParameter(i);
            if (std::isfinite(v) && v >= 0.0f && v <= 1.0f) continue;
            if (++bad <= 4) kept += " #" + std::to_string(i) + "=" + std::to_string(v);
        }
        EXPECT_EQ(bad, 0) << "round " << round << ": hostile parameter values kept by getParameter:" << kept;
        // No suspend before it: recovering from bad input must not need one.
        const long clean = 2L * std::max(0, plugin->initialDelay()) + 32 * kCleanBlock;
        double peak = 0.0;
        bool finite = true;
        long firstBad = -1;
        for (long done = 0; done < clean; done += kCleanBlock) {
            for (int i = 0; i < kCleanBlock; ++i) {
                const double x = kCleanAmplitude * std::sin(0.05 * static_cast<double>(done + i));
                doubles.in[0][i] = x;
                doubles.in[1][i] = -x;
            }
            plugin->process(doubles.inputs, doubles.outputs, kCleanBlock);
            if (done + 4 * kCleanBlock < clean) continue;  // judge the last blocks only
            for (int c = 0; c < 2; ++c)
                for (int i = 0; i < kCleanBlock; ++i) {
                    const double y = doubles.out[c][i];
                    if (!std::isfinite(y)) {
                        if (firstBad < 0) firstBad = done + i;
                        finite = false;
                    } else {
                        peak = std::max(peak, std::abs(y));
                    }
                }
        }
        EXPECT_TRUE(finite) << "round " << round << ": non-finite output " << firstBad << " samples into clean input"
                            << " (" << clean << " samples of it; reported delay " << plugin->initialDelay() << ")"
                            << settingsText();
        EXPECT_LE(peak, kOutputBound) << "round " << round << ": output unbounded on clean input" << settingsText();
    }

    std::string settingsText() {
        std::string s = ", host rate " + std::to_string(lastRate.load(std::memory_order_relaxed));
        for (const char* name : {"Power", "LinPhase", "FAT", "Resolution", "Output"}) {
            const int i = plugin->findParameter(name);
            if (i >= 0) s += std::string(", ") + name + " " + plugin->parameterDisplay(i);
        }
        return s;
    }

    std::unique_ptr<vsthost::LoadedPlugin> plugin;
    std::atomic<float> lastRate{48000.0f};
    Buffers<float> floats;
    Buffers<double> doubles;
};

TEST_F(HostileHost, SurvivesHostileAudioAndControlThreads) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(runSeconds());
    std::atomic<bool> pause{false}, stop{false};
    std::atomic<int> parked{0};
    long audioBlocks = 0, controlActions = 0;
    bool countWorks = false;

    // Each thread parks at the top of its loop while a pause is asked for.
    const auto parkIfAsked = [&] {
        if (!pause.load(std::memory_order_acquire)) return;
        parked.fetch_add(1, std::memory_order_acq_rel);
        while (pause.load(std::memory_order_acquire)) std::this_thread::yield();
        parked.fetch_sub(1, std::memory_order_acq_rel);
    };

    std::thread audio([&] {
        std::mt19937 rng(11);
        watchedThread.store(pthread_self());
#if TYX_COUNT_ALLOCATIONS
        // The count must see an allocation for its zero to mean anything.
        watching.store(true);
        delete new volatile int(1);
        watching.store(false);
        countWorks = watchedAllocations.exchange(0) > 0;
#endif
        while (!stop.load(std::memory_order_acquire)) {
            parkIfAsked();
            if (stop.load(std::memory_order_acquire)) break;
            watching.store(true, std::memory_order_relaxed);
            hostileBlock(rng);
            watching.store(false, std::memory_order_relaxed);
            ++audioBlocks;
        }
    });
    std::thread control([&] {
        std::mt19937 rng(12);
        while (!stop.load(std::memory_order_acquire)) {
            parkIfAsked();
            if (stop.load(std::memory_order_acquire)) break;
            hostileControl(rng);
            ++controlActions;
        }
    });

    int round = 0;
    while (std::chrono::steady_clock::now() < end && !HasFatalFailure()) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        pause.store(true, std::memory_order_release);
        while (parked.load(std::memory_order_acquire) < 2) std::this_thread::yield();
        checkWhilePaused(++round);
        pause.store(false, std::memory_order_release);
        while (parked.load(std::memory_order_acquire) > 0) std::this_thread::yield();
    }
    stop.store(true, std::memory_order_release);
    audio.join();
    control.join();

    EXPECT_GT(audioBlocks, 0);
    EXPECT_GT(controlActions, 0);
#if TYX_COUNT_ALLOCATIONS
    EXPECT_TRUE(countWorks) << "the interposed allocator does not see this program's allocations";
    EXPECT_EQ(watchedAllocations.load(), 0)
        << "allocations on the audio thread (process calls and the automation it sends)";
#endif
    std::printf("[ robustness ] %d rounds, %ld audio blocks, %ld control actions\n", round, audioBlocks,
                controlActions);
}

}  // namespace
