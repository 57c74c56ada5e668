#include "plugin/Latency.h"

#include <cstdio>

namespace latency {
namespace {

// Delays of one ×2 converter pair and of the decimated paths' converters, in host samples.
constexpr int kDoubleRateConverters = 63;
constexpr int kLowClassLimit = 50000;
constexpr int kMidClassLimit = 100000;
constexpr int kConstantDelay[3] = {24638, 49276, 98554};

}  // namespace

int constantDelay(int rate) {
    return rate < kLowClassLimit ? kConstantDelay[0] : rate < kMidClassLimit ? kConstantDelay[1] : kConstantDelay[2];
}

int pathLatency(const EngineSettings& s) {
    if (!s.power) return 0;
    const int gathered = s.partition / 2 + s.frameSize / 2;
    if (s.rate < kLowClassLimit) {
        if (!s.linPhase) return s.fat ? kDoubleRateConverters : 0;
        return s.fat ? gathered / 2 + kDoubleRateConverters - 1 : gathered - 1;
    }
    if (!s.linPhase) return 0;
    if (s.rate < kMidClassLimit) {
        const int l0 = gathered - 1;
        return s.fat ? l0 : 2 * l0 + 2 * kDoubleRateConverters;
    }
    const int l1 = 2 * gathered + 124;
    return s.fat ? l1 : 2 * l1 + 3;
}

Figures figures(int mode, const EngineSettings& s) {
    const int path = pathLatency(s);
    if (mode == kAlways) {
        // At high rates with FAT off, Resolution high and a host block of 65536 the path is one
        // sample longer than the constant; the host is still told the constant, and the padding
        // cannot go below nothing.
        const int k = constantDelay(s.rate);
        return {k, path, k > path ? k - path : 0};
    }
    if (mode == kLinPhaseOff && s.rate < kLowClassLimit && !s.linPhase) {
        const int padding = (s.fat && s.power) ? 0 : kDoubleRateConverters;
        return {kDoubleRateConverters, path, padding};
    }
    return {path, path, 0};
}

int initialDelay(int mode, const EngineSettings& s) {
    switch (mode) {
        case kNever: return 0;
        case kLinPhaseOff: return s.rate < kLowClassLimit ? kDoubleRateConverters : 0;
        default: return figures(mode, s).reported;
    }
}

void describe(int mode, const EngineSettings& s, char* text, size_t size) {
    const Figures f = figures(mode, s);
    const bool compensated = mode == kAlways || (mode == kLinPhaseOff && !s.linPhase);
    std::snprintf(text, size, "(%s) %d samples (%.2f ms)", compensated ? "compensated" : "not compensated",
                  f.reported, f.reported * 1000.0 / s.rate);
}

}  // namespace latency
