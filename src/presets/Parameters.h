#pragma once
// The plug-in's parameter indexes and the two helpers that turn a normalized value into a
// step and back. The plug-in, its editor and the preset system all speak these.

#include <algorithm>
#include <cmath>
#include <optional>

namespace params {

enum Index : int {
    kPower = 0,
    kFat = 1,
    kLrMs = 2,
    kLinPhase = 3,
    kResolution = 4,
    kOutput = 5,
    kType = 6,    // 6..13 bands 1..8, left (mid)
    kTypeR = 14,  // 14..21 right (side)
    kFreq = 22,
    kFreqR = 30,
    kQ = 38,
    kQR = 46,
    kGain = 54,
    kGainR = 62,
    kPlotRange = 70,
    kChannel = 71,
    kSpan = 72,
    kSpanType = 73,
    kSpanColor = 74,
    kSpanSpeed = 75,
    kSpanMode = 76,
    kSpanHold = 77,
    kSpanResp = 78,
    kSolo = 79,
    kAutoZoom = 80,
    kSpanDrive = 81,
    kSpanWidth = 82,
    kSpanFilter = 83,
    kListen = 84,
};

constexpr int kUsedParameters = 85;  // indexes 0..84; the preset layer carries 9 more slots
constexpr int kBands = 8;
constexpr int kBandTypeSteps = 14;   // 0..6 the shapes, 7..13 the same shapes switched off
constexpr int kFirstBypassType = 7;

// Channel steps and their stored form (step + 1).
enum ChannelMode : int { kChannelLeft = 1, kChannelRight = 2, kChannelLink = 3 };

// Every value that arrives from outside (a host, the editor, a chunk, a file, the user's store)
// passes here before anything is stored or derived from it: one that is not finite is refused,
// a finite one is held to 0..1. Hosts, controllers and old sessions do send such values.
inline std::optional<float> admitted(float v) {
    if (!std::isfinite(v)) return std::nullopt;
    return std::clamp(v, 0.0f, 1.0f);
}

// Step k of n for a normalized value: the product is formed in single precision, truncated
// toward zero and limited to n - 1 at the top. Values that are not numbers answer the top step
// rather than converting garbage.
inline int quantize(float v, int n) {
    float product = static_cast<float>(n) * v;
    if (!(product < static_cast<float>(n - 1))) return n - 1;
    if (product < -1.0e9f) product = -1.0e9f;
    return static_cast<int>(product);
}

// The normalized value that stands for step k of n.
inline float stepCentre(int k, int n) { return (static_cast<float>(k) + 0.5f) / static_cast<float>(n); }

// The natural values behind the continuous parameters, computed in the precision they are asked
// in: the texts and the editor's setters work in single precision, the engine in double.
template <typename T>
T outputGainDb(T v) {
    return (v - T(0.5)) * T(24);
}
inline double outputGainFactor(float v) { return std::pow(10.0, outputGainDb<double>(v) / 20.0); }
template <typename T>
T bandFrequencyHz(T v) {
    return T(20) * std::pow(T(10), T(3) * v);
}
// The gain of one design pass; the band's overall effect, and its text, is twice that.
inline double bandDesignGainDb(float v) { return (static_cast<double>(v) - 0.5) * 24.0; }

}  // namespace params
