#include "TestSignal.h"

#include <algorithm>
#include <cmath>

namespace render {
namespace {

constexpr int64_t kNoiseFrames = TestSignal::kRate * 3 / 2;
constexpr int64_t kGapFrames = TestSignal::kRate / 4;
constexpr int64_t kSweepFrames = TestSignal::kRate * 3;
constexpr int64_t kFadeFrames = TestSignal::kRate / 100;
constexpr double kNoiseLevel = 0.25;  // peak of the uniform noise, -12 dBFS
constexpr double kSweepLevel = 0.5;   // -6 dBFS
constexpr double kSweepStart = 20.0;
constexpr double kSweepEnd = 20000.0;
constexpr double kPi = 3.14159265358979323846;

// A raised-cosine ramp at both ends of a part of `length` frames.
double fade(int64_t at, int64_t length) {
    const int64_t edge = std::min(at, length - 1 - at);
    if (edge >= kFadeFrames) return 1.0;
    return 0.5 - 0.5 * std::cos(kPi * static_cast<double>(edge) / kFadeFrames);
}

double sweep(int64_t at) {
    const double t = static_cast<double>(at) / TestSignal::kRate;
    const double duration = static_cast<double>(kSweepFrames) / TestSignal::kRate;
    const double rise = std::log(kSweepEnd / kSweepStart);
    const double phase = 2.0 * kPi * kSweepStart * duration / rise * (std::exp(t / duration * rise) - 1.0);
    return kSweepLevel * std::sin(phase);
}

}  // namespace

int64_t TestSignal::frames() const { return kNoiseFrames + kGapFrames + kSweepFrames; }

const char* TestSignal::description() {
    return "built-in test signal: 48000 Hz stereo, 1.5 s of noise, then a 3 s sweep from 20 Hz to 20 kHz";
}

double TestSignal::noise() {
    seed_ = seed_ * 1664525u + 1013904223u;  // a fixed generator: the demo is the same every run
    return kNoiseLevel * (static_cast<double>(seed_) / 2147483648.0 - 1.0);
}

size_t TestSignal::read(double* interleaved, size_t count) {
    const size_t n = static_cast<size_t>(std::min<int64_t>(static_cast<int64_t>(count), frames() - position_));
    for (size_t i = 0; i < n; ++i, ++position_) {
        double left = 0.0, right = 0.0;
        if (position_ < kNoiseFrames) {
            const double g = fade(position_, kNoiseFrames);
            left = g * noise();
            right = g * noise();
        } else if (position_ >= kNoiseFrames + kGapFrames) {
            const int64_t at = position_ - kNoiseFrames - kGapFrames;
            left = right = fade(at, kSweepFrames) * sweep(at);
        }
        interleaved[2 * i] = left;
        interleaved[2 * i + 1] = right;
    }
    return n;
}

}  // namespace render
