#include "gui/plot/AnalyzerBars.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace plot {

namespace {

constexpr float kFallDbPerMs = 36.0f / 1000.0f;
constexpr float kFadeInMs = 500.0f;
constexpr float kFadeOutMs = 1000.0f;
constexpr int kInfiniteHold = 5;
constexpr float kHoldTimesMs[] = {0, 500, 1000, 2000, 5000};

// The rainbow: hue steps down the bars, fixed lightness 0.65 and saturation 0.61.
constexpr double kHueStart = 0.6194444;
constexpr double kHueStep = 1.0 / 45.0;
constexpr double kM1 = 0.4365;
constexpr double kM2 = 0.8635;

double hueChannel(double t) {
    t -= std::floor(t);
    if (t < 1.0 / 6) return kM1 + (kM2 - kM1) * 6.0 * t;
    if (t < 0.5) return kM2;
    if (t < 2.0 / 3) return kM1 + (kM2 - kM1) * (2.0 / 3 - t) * 6.0;
    return kM1;
}

uint8_t byte(double c) { return static_cast<uint8_t>(std::lround(255.0 * c)); }

}  // namespace

CColor barColour(int table, int k) {
    const auto u = [](int v) { return static_cast<uint8_t>(v); };
    switch (table) {
        case 0: return {u(179 - k), u(199 - k), u(209 - k), 150};
        case 1: return {u((305 - k) % 256), u(151 + k), 180, 95};
        case 2: return {u(172 - k), u(172 - k), u(172 - k), 200};
        default: {
            double hue = kHueStart - k * kHueStep;
            hue -= std::floor(hue);
            return {byte(hueChannel(hue + 1.0 / 3)), byte(hueChannel(hue)), byte(hueChannel(hue - 1.0 / 3)), 150};
        }
    }
}

AnalyzerBars::AnalyzerBars() {
    std::fill(std::begin(bars_), std::end(bars_), kNothingHeld);
    std::fill(std::begin(held_), std::end(held_), kNothingHeld);
    std::fill(std::begin(holdTimerMs_), std::end(holdTimerMs_), 0.0f);
}

void AnalyzerBars::setColorScheme(int scheme) { table_ = scheme >= 0 && scheme < kColourTables - 1 ? scheme : 3; }

void AnalyzerBars::setHoldTime(int index) {
    holdIndex_ = index;
    holdTimeMs_ = index >= 1 && index <= 4 ? kHoldTimesMs[index] : 0.0f;
    std::fill(std::begin(holdTimerMs_), std::end(holdTimerMs_), 0.0f);
}

void AnalyzerBars::setOn(bool on, uint32_t nowMs) {
    if (on && !on_) {
        std::fill(std::begin(bars_), std::end(bars_), kNothingHeld);
        lastTick_ = nowMs;
    }
    on_ = on;
}

void AnalyzerBars::clearHeld() { std::fill(std::begin(held_), std::end(held_), kNothingHeld); }

void AnalyzerBars::advance(const float* levels, uint32_t nowMs) {
    if (on_ && levels) std::copy(levels, levels + kBars, bars_);
    const auto dt = static_cast<float>(static_cast<uint32_t>(nowMs - lastTick_));
    lastTick_ = nowMs;
    fade_ = on_ ? std::min(255.0f, fade_ + dt * 255.0f / kFadeInMs) : std::max(0.0f, fade_ - dt * 255.0f / kFadeOutMs);

    for (int i = 0; i < kBars; ++i) {
        if (holdIndex_ >= 1 && holdIndex_ < kInfiniteHold) {
            holdTimerMs_[i] -= dt;
            if (holdTimerMs_[i] < 0) {
                held_[i] = std::max(kNothingHeld, held_[i] + holdTimerMs_[i] * kFallDbPerMs);
                holdTimerMs_[i] = 0;
            }
        }
        const float lv = level(i);
        if (lv >= held_[i]) {
            held_[i] = lv;
            holdTimerMs_[i] = holdTimeMs_;
        }
    }
}

int AnalyzerBars::heightFor(float dB) {
    const float pixels = kFullBarPixels * (dB - kFloorDb) / -kFloorDb;
    if (!(pixels > 0)) return 0;  // also NaN
    return static_cast<int>(std::min(pixels, 10000.0f));
}

CColor AnalyzerBars::colour(int i) const {
    CColor c = barColour(table_, i);
    c.alpha = static_cast<uint8_t>(c.alpha * static_cast<int>(fade_) / 255);
    return c;
}

}  // namespace plot
