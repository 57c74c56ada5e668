#pragma once
// The rate the equalizer runs at inside: twice the host rate where FAT asks for more room
// above the audio band at ordinary rates, a half or a quarter of it where a long linear-phase
// filter would otherwise waste its length on content above the audio band.

namespace dsp {

enum class RateRatio { Double, Unity, Half, Quarter };

inline RateRatio rateRatio(int hostRate, bool fat, bool linPhase) {
    constexpr int kHighRate = 80000;
    constexpr int kVeryHighRate = 170000;
    if (!linPhase) return (fat && hostRate < kHighRate) ? RateRatio::Double : RateRatio::Unity;
    if (hostRate < kHighRate) return fat ? RateRatio::Double : RateRatio::Unity;
    if (hostRate < kVeryHighRate) return fat ? RateRatio::Unity : RateRatio::Half;
    return fat ? RateRatio::Half : RateRatio::Quarter;
}

inline double designRate(int hostRate, bool fat, bool linPhase) {
    switch (rateRatio(hostRate, fat, linPhase)) {
        case RateRatio::Double: return 2.0 * hostRate;
        case RateRatio::Half: return hostRate / 2.0;
        case RateRatio::Quarter: return hostRate / 4.0;
        default: return hostRate;
    }
}

}  // namespace dsp
