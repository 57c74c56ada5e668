#include "analyzer/Detector.h"

#include <cmath>

namespace analyzer {
namespace {

// The mixed speeds let the slow bottom bands, whose readings fluctuate most, settle
// longer than the rest.
constexpr DetectorTimeConstants kTimeConstants[] = {
    {0.125f, 0.125f},  // fast
    {0.25f, 0.25f},    // medium
    {1.0f, 1.0f},      // slow
    {0.15f, 0.3f},     // medium/fast
    {0.25f, 0.5f},     // slow/medium
};

constexpr int kSpeedCount = sizeof(kTimeConstants) / sizeof(kTimeConstants[0]);

float smoothingCoefficient(float rate, float timeConstant) {
    return 1.0f - std::exp(-1.0f / (rate * timeConstant));
}

}  // namespace

DetectorTimeConstants detectorTimeConstants(int speed) {
    return (speed >= 0 && speed < kSpeedCount) ? kTimeConstants[speed] : kTimeConstants[0];
}

void detectorCoefficients(float fs, int speed, float (&coefficients)[kDetectorGroups]) {
    const DetectorTimeConstants t = detectorTimeConstants(speed);
    coefficients[kTopGroup] = smoothingCoefficient(fs, t.upperGroups);
    for (int s = 0; s < kBottomGroup - kFirstStageGroup; ++s) {
        coefficients[kFirstStageGroup + s] =
            smoothingCoefficient(fs / static_cast<float>(1 << s), t.upperGroups);
    }
    coefficients[kBottomGroup] = smoothingCoefficient(fs / 32.0f, t.bottomGroup);
}

}  // namespace analyzer
