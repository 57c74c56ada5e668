#pragma once
// SPAN: the real-time one-third-octave analyzer. 31 band-pass filters, from 20 kHz (band 0)
// down to 20 Hz (band 30), run sample by sample in a multirate octave tree; each band
// drives a level detector, and the read-out turns the levels into dB.
//
// Threads: processSample runs on the audio thread and takes no lock; getBars may run on
// any other thread and takes the analyzer's own lock while it reads the levels. Settings
// calls are not serialized with processing; one arriving mid-stream can at worst disturb
// the display for one time constant.

#include <atomic>

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

    // One mono input sample. Ignored while no supported rate is set.
    virtual void processSample(float x);
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
    // 1 A, 2 C, anything else flat.
    virtual void setWeighting(int index);
    // 2 selects order 2, any other value order 6. Resets.
    virtual void setFilterOrder(int value);

    float sampleRate() const { return sampleRate_.load(std::memory_order_relaxed); }
    bool usesVectorRoutine() const { return useVector_; }
    int speed() const { return speed_; }
    int mode() const { return mode_.load(std::memory_order_relaxed); }
    int filterOrder() const { return order_; }

private:
    platform::TimedLock lock_;  // taken by the read-out only
    analyzer::FilterBank bank_;
    std::atomic<float> sampleRate_{0.0f};  // 0 while inactive
    std::atomic<int> mode_{0};
    std::atomic<analyzer::Weighting> weighting_{analyzer::Weighting::flat};
    int speed_ = 0;
    int order_ = 2;
    bool useVector_ = false;
};
