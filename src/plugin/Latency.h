#pragma once
// The latency accounting: from the compensation mode, the host rate and the engine settings,
// the delay reported to the host, the delay of the processing path itself, and the padding the
// audio path adds so that the two agree.

#include <cstddef>

namespace latency {

enum Mode : int {
    kNever = 0,     // report the path's own delay
    kLinPhaseOff = 1,
    kAlways = 2,    // report one constant delay per rate class, whatever the settings
};

struct EngineSettings {
    int rate;           // integer host rate
    int frameSize;      // N
    int partition;      // P
    bool fat, linPhase, power;
};

struct Figures {
    int reported;
    int pathLatency;
    int padding;
};

// The largest path delay the settings allow at the rate's class: what mode 2 reports.
int constantDelay(int rate);

int pathLatency(const EngineSettings& s);

Figures figures(int mode, const EngineSettings& s);

// What is handed to the host as its initial delay.
int initialDelay(int mode, const EngineSettings& s);

// "(compensated) 24638 samples (558.68 ms)".
void describe(int mode, const EngineSettings& s, char* text, size_t size);

}  // namespace latency
