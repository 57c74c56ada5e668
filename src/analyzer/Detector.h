#pragma once
// The level detectors that follow the band filters: their time constants per speed, the
// smoothing coefficient of each rate group, and the update rule of one level.

#include <cmath>

namespace analyzer {

// Detector groups, each running at its own rate: the top bands at fs, stages 0-4 at
// fs / 2^s, the bottom bands at fs / 32.
inline constexpr int kTopGroup = 0;
inline constexpr int kFirstStageGroup = 1;
inline constexpr int kBottomGroup = 6;
inline constexpr int kDetectorGroups = 7;

// Levels never fall below this, so their logarithm is always defined (-100 dB of power).
inline constexpr float kLevelFloor = 1e-10f;

struct DetectorTimeConstants {
    float upperGroups;  // top group and stages 0-4, in seconds
    float bottomGroup;  // in seconds
};

// Speed 0 fast, 1 medium, 2 slow, 3 medium/fast, 4 slow/medium; any other index as 0.
DetectorTimeConstants detectorTimeConstants(int speed);

// 1 - exp(-1 / (r T)) for each group's rate r at the host rate fs, in single precision.
void detectorCoefficients(float fs, int speed, float (&coefficients)[kDetectorGroups]);

// Peak detection: instant attack, exponential release.
inline float updatePeakLevel(float level, float y, float c) {
    const float a = std::fabs(y);
    const float s = level + c * (a - level);
    const float held = s > a ? s : a;
    return held > kLevelFloor ? held : kLevelFloor;
}

// Mean-square detection.
inline float updateAverageLevel(float level, float y, float c) {
    const float s = level + c * (y * y - level);
    return s > kLevelFloor ? s : kLevelFloor;
}

}  // namespace analyzer
