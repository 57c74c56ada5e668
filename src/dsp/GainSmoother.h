#pragma once
// The output gain, smoothed towards its target by a one-pole low-pass with a 30 Hz corner so
// that automation and knob moves never step the signal.

#include <cmath>
#include <cstring>
#include <numbers>

namespace dsp {

class GainSmoother {
public:
    static constexpr double kCornerHz = 30.0;
    static constexpr double kRangeDb = 24.0;  // the Output parameter spans ±12 dB

    explicit GainSmoother(double hostRate = 44100.0) { setRate(hostRate); }

    // The smoothing factor k = 1 − exp(−2π·30 / rate); the current gain is kept.
    void setRate(double hostRate) { k_ = 1.0 - std::exp(-2.0 * std::numbers::pi * kCornerHz / hostRate); }

    void setTarget(double gain) { target_ = gain; }
    double target() const { return target_; }
    double current() const { return gain_; }

    // After a pause the gain starts at its target, without a ramp.
    void jumpToTarget() { gain_ = target_; }
    // Or at a gain decided earlier (the target when the pause began), ramping from there.
    void jumpTo(double gain) { gain_ = gain; }

    // One step: g += (target − g)·k, kept out of the denormal range as it settles.
    double next() {
        gain_ = step(gain_);
        return gain_;
    }

    // Whether the gain has settled for good: a step leaves it exactly as it is, and so does
    // every step after it while the target stays. The audio path then uses current() instead
    // of next() for a whole block, which gives the same numbers without the step's chain of
    // dependent operations on every sample.
    bool settled() const {
        const double g = step(gain_);
        return std::memcmp(&g, &gain_, sizeof g) == 0;
    }

    // The linear gain of the Output parameter's normalized value v: 10^((v − 0.5)·24 / 20).
    static double targetFromParameter(double v) { return std::pow(10.0, (v - 0.5) * kRangeDb / 20.0); }

private:
    double step(double g) const {
        g += (target_ - g) * k_;
        return (g + 1e-30) - 1e-30;
    }

    double k_ = 0.0;
    double target_ = 1.0;
    double gain_ = 1.0;
};

}  // namespace dsp
