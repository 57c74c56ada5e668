#include "analyzer/SPAN.h"

#include <cmath>

#include "analyzer/DecimationLowPass.h"
#include "platform/CpuFeatures.h"

namespace {

constexpr int kPeakMode = 0;
constexpr int kAverageMode = 1;

// The average detector measures mean square; a sine's mean square is half its peak
// squared, so this offset makes a sine read its peak level in both modes.
constexpr float kSineMeanSquareOffsetDb = 3.0102999f;

// Rates below this are never processed.
constexpr float kLowestActiveRate = 1000.0f;

// No audio comes anywhere near this (+300 dB of full scale); beyond it the squared band
// outputs could overflow. Such a sample, like a non-finite one, is measured as silence:
// once in the recursive filters it would stay there and blank the display for good.
constexpr float kLargestInput = 1e15f;

}  // namespace

SPAN::SPAN(Routine routine) {
    useVector_ = routine == Routine::vector ||
                 (routine == Routine::fromCpu && platform::cpuFeatures().usable(platform::kCpuSse2));
    applyPostedSettings();
}

void SPAN::processSample(float x) {
    if (posted_.count.load(std::memory_order_relaxed) != applied_.count) applyPostedSettings();
    if (activeRate_.load(std::memory_order_relaxed) < kLowestActiveRate) return;
    if (!(std::fabs(x) <= kLargestInput)) x = 0.0f;  // NaN fails the comparison too
    const bool peak = activeMode_.load(std::memory_order_relaxed) == kPeakMode;
    if (useVector_) {
        analyzer::processVector(bank_, x, peak);
    } else {
        analyzer::processScalar(bank_, x, peak);
    }
}

void SPAN::applyPostedSettings() {
    applied_.count = posted_.count.load(std::memory_order_acquire);

    switchMode(posted_.mode.load(std::memory_order_relaxed));

    const float fs = posted_.rate.load(std::memory_order_relaxed);
    const int speed = posted_.speed.load(std::memory_order_relaxed);
    const int order = posted_.order.load(std::memory_order_relaxed);
    if (fs != applied_.requestedRate || speed != applied_.speed || order != applied_.order) {
        redesign(fs, speed, order);
    }

    const uint32_t resets = posted_.resets.load(std::memory_order_relaxed);
    if (resets != applied_.resets) {
        applied_.resets = resets;
        bank_.clear();
    }
}

void SPAN::getBars(float* out) {
    if (out == nullptr) return;

    float bars[kBands];
    while (!lock_.lock()) {
        // The read-out waits as long as it takes; only another read-out can hold the lock.
    }
    for (int i = 0; i < kBands; ++i) bars[i] = 10.0f * std::log10(bank_.level(i));
    lock_.unlock();

    const int mode = activeMode_.load(std::memory_order_relaxed);
    const float* offsets = analyzer::weightingOffsets(weighting_.load(std::memory_order_relaxed));
    for (int i = 0; i < kBands; ++i) {
        float l = bars[i];
        if (mode == kPeakMode) {
            l = 2.0f * l;  // the level is an amplitude
        } else if (mode == kAverageMode) {
            l = l + kSineMeanSquareOffsetDb;
        }
        out[i] = l + offsets[kBands - 1 - i];  // offsets run from the lowest band up
    }
}

void SPAN::reset() { postRestart(); }

void SPAN::setSampleRate(float fs) {
    posted_.rate.store(fs, std::memory_order_relaxed);
    postRestart();
}

void SPAN::setSpeed(int index) {
    posted_.speed.store(index, std::memory_order_relaxed);
    postRestart();
}

void SPAN::setMode(int index) {
    posted_.mode.store(index, std::memory_order_relaxed);
    post();
}

void SPAN::setWeighting(int index) {
    weighting_.store(analyzer::weightingFromIndex(index), std::memory_order_relaxed);
}

void SPAN::setFilterOrder(int value) {
    posted_.order.store(value == 2 ? 2 : 6, std::memory_order_relaxed);
    postRestart();
}

float SPAN::sampleRate() const {
    const float fs = posted_.rate.load(std::memory_order_relaxed);
    return analyzer::bandTablesFor(fs, filterOrder()) != nullptr ? fs : 0.0f;
}

void SPAN::redesign(float fs, int speed, int order) {
    applied_.requestedRate = fs;
    applied_.speed = speed;
    applied_.order = order;

    float coefficients[analyzer::kDetectorGroups];
    analyzer::detectorCoefficients(fs, speed, coefficients);
    bank_.setDetectorCoefficients(coefficients);

    // An unsupported rate keeps the previous tables; nothing runs until a supported rate
    // is set again.
    const analyzer::RateBandTables* tables = analyzer::bandTablesFor(fs, order);
    if (tables != nullptr) {
        bank_.loadCoefficients(*tables, analyzer::decimationLowPass(order), analyzer::sectionsForOrder(order));
    }
    activeRate_.store(tables != nullptr ? fs : 0.0f, std::memory_order_relaxed);
    bank_.clear();
}

void SPAN::switchMode(int index) {
    if (index == activeMode_.load(std::memory_order_relaxed)) return;
    activeMode_.store(index, std::memory_order_relaxed);
    if (index != kAverageMode) return;

    // Peak amplitudes become the mean square of a sine of that amplitude, so that a steady
    // tone keeps its reading across the switch.
    for (int i = 0; i < kBands; ++i) {
        const float peak = bank_.level(i);
        const float meanSquare = 0.5f * peak * peak;
        bank_.setLevel(i, meanSquare > analyzer::kLevelFloor ? meanSquare : analyzer::kLevelFloor);
    }
}
