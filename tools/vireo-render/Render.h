#pragma once
// The offline process loop: feeds the source to the plug-in block by block as a host's audio
// thread does, and takes the reported latency out again so that the output lines up with the
// input.

#include <csignal>
#include <cstdint>

#include "AudioIo.h"
#include "host/VstHost.h"

namespace render {

// Peak and RMS of everything that went past.
struct Levels {
    double peak = 0.0;
    double sumOfSquares = 0.0;
    uint64_t samples = 0;

    void add(double v) {
        const double a = v < 0 ? -v : v;
        if (a > peak) peak = a;
        sumOfSquares += v * v;
        ++samples;
    }
    double peakDb() const;
    double rmsDb() const;
};

struct RenderSettings {
    int block = 512;
    bool useDouble = false;    // processDoubleReplacing instead of processReplacing
    int latency = 0;           // the delay the plug-in reports, in samples
    bool keepLatency = false;  // write the delayed output as it comes, start and all
    bool progress = false;     // draw a progress bar on standard error
};

struct RenderResult {
    uint64_t framesIn = 0;
    uint64_t framesOut = 0;
    Levels in, out;
};

// Runs the whole source through the plug-in, which must be resumed. After the source ends,
// `latency` frames of silence push out what the plug-in still holds. Without keepLatency the
// first `latency` output frames are dropped: the output has as many frames as the input, each
// aligned with its input frame. With it, the output is `latency` frames longer. A mono source
// goes in on the first input with a silent second one, and comes out of the first output.
// Throws RunError when interrupted.
RenderResult renderAudio(vsthost::LoadedPlugin& plugin, SampleSource& source, SampleSink& sink,
                         const RenderSettings& settings);

// Set from the SIGINT/SIGTERM handler; the loop stops at the next block.
extern volatile std::sig_atomic_t interrupted;

}  // namespace render
