#pragma once
// The built-in test signal: stereo at 48 kHz, 1.5 s of white noise (left and right
// independent), a quarter second of silence, then a 3 s exponential sine sweep from 20 Hz to
// 20 kHz on both channels. Every part fades in and out over 10 ms, so nothing clicks.

#include "AudioIo.h"

namespace render {

class TestSignal : public SampleSource {
public:
    static constexpr int kRate = 48000;

    int channels() const override { return 2; }
    int sampleRate() const override { return kRate; }
    int64_t frames() const override;
    size_t read(double* interleaved, size_t frames) override;

    // One line for the summary.
    static const char* description();

private:
    double noise();

    int64_t position_ = 0;
    uint32_t seed_ = 0x1234567u;
};

}  // namespace render
