#pragma once
// SPAN: the real-time one-third-octave analyzer. 31 band-pass filters, from 20 kHz (band 0)
// down to 20 Hz (band 30), run sample by sample in a multirate octave tree; each band
// drives a level detector, and the read-out turns the levels into dB.
//
// Threads: processSample runs on the audio thread and takes no lock; getBars may run on
// any other thread and takes the analyzer's own lock while it reads the levels. The settings
// calls (rate, speed, order, mode, reset) may come from any thread: they only post the new
// value, and the audio thread takes it over before its next sample, so the filters it runs
// are never rewritten under it. The getters report the settings as last posted.

#include <atomic>
#include <cstdint>

#include "analyzer/FilterBank.h"
#include "analyzer/Weighting.h"
#include "platform/TimedLock.h"

class SPAN {
public:
    static constexpr int kBands = analyzer::kBandCount;

    // Which routine processes the samples: the one the processor test picks, or either one
    // on purpose (both give the same results).
    enum class Routine { fromCpu, scalar, vector };

    // Order 2, speed 0, peak mode, flat weighting, 44100 Hz, cleared.
    explicit SPAN(Routine routine = Routine::fromCpu);
    virtual ~SPAN() = default;
    SPAN(const SPAN&) = delete;
    SPAN& operator=(const SPAN&) = delete;

    // One mono input sample, after taking over any posted settings. Ignored while no
    // supported rate is set.
    virtual void processSample(float x);
    // Takes over the posted settings now. Audio thread only, or while no audio thread runs.
    void applyPostedSettings();
    // 31 readings in dB, highest band first, weighting applied. Null does nothing.
    virtual void getBars(float* out);
    // Clears filters and levels and restarts the decimation schedule.
    virtual void reset();
    // 44100, 48000, 88200, 96000, 176400 or 192000 Hz; any other rate makes the analyzer
    // inactive (it then reads the floor) until a supported one is set. Resets.
    virtual void setSampleRate(float fs);
    // 0 fast, 1 medium, 2 slow, 3 medium/fast, 4 slow/medium; others as 0. Resets.
    virtual void setSpeed(int index);
    // 0 peak, 1 average; higher values detect like 1 but read out without the sine offset.
    virtual void setMode(int index);
    // 1 A, 2 C, anything else flat. Only the read-out uses it, so it applies at once.
    virtual void setWeighting(int index);
    // 2 selects order 2, any other value order 6. Resets.
    virtual void setFilterOrder(int value);

    // The posted rate if it is supported, else 0 (inactive).
    float sampleRate() const;
    int speed() const { return posted_.speed.load(std::memory_order_relaxed); }
    int mode() const { return posted_.mode.load(std::memory_order_relaxed); }
    int filterOrder() const { return posted_.order.load(std::memory_order_relaxed); }

private:
    // What the settings calls ask for. `count` goes up after every post, so the audio thread
    // needs to look at the fields only when it has moved.
    struct Posted {
        std::atomic<float> rate{44100.0f};
        std::atomic<int> speed{0};
        std::atomic<int> order{2};
        std::atomic<int> mode{0};
        std::atomic<uint32_t> resets{0};
        std::atomic<uint32_t> count{0};
    };
    // What the filter bank runs with; the audio thread's own.
    struct Applied {
        float requestedRate = 0.0f;  // what `rate` was at the last design, supported or not
        int speed = -1;
        int order = -1;
        uint32_t resets = 0;
        uint32_t count = 0;
    };

    void post() { posted_.count.fetch_add(1, std::memory_order_release); }
    // Rate, speed and order changes restart the measurement even when the value is unchanged.
    void postRestart() {
        posted_.resets.fetch_add(1, std::memory_order_relaxed);
        post();
    }
    void redesign(float fs, int speed, int order);
    void switchMode(int index);

    platform::TimedLock lock_;  // taken by the read-out only
    analyzer::FilterBank bank_;
    Posted posted_;
    Applied applied_;
    std::atomic<float> activeRate_{0.0f};  // 0 while inactive
    std::atomic<int> activeMode_{0};       // the detector the levels were measured with
    std::atomic<analyzer::Weighting> weighting_{analyzer::Weighting::flat};
    bool useVector_ = false;
};
