#pragma once
// The response curve of a linear-phase kernel on the plot grid, measured from the kernel
// itself rather than summed from the bands, so that the plot shows what the audio path
// really applies (the window's smoothing included).
//
// The kernel's N + 1 taps are transformed with the largest transform (65536 samples, the
// 32768 frame size) whatever N is, for a fine and N-independent frequency spacing; each grid
// point reads the two bins that bracket its frequency and interpolates their power linearly.
// Which bins those are depends only on the design rate, so the bracket positions are
// tabulated once for each of the four rates the plot knows (44100, 48000, 88200, 96000 Hz),
// in the transform's own bin order.

#include "dsp/EqTypes.h"
#include "dsp/Fft.h"

namespace dsp {

class KernelDisplay {
public:
    static constexpr int kTransformSize = kMaxFftSize;           // N of the display transform
    static constexpr int kScratchDoubles = 2 * kTransformSize;  // 65536
    static constexpr int kRateCount = 4;
    static constexpr double kRates[kRateCount] = {44100.0, 48000.0, 88200.0, 96000.0};

    // One grid point at one rate: the entries of the real parts of the two bracketing bins
    // (imaginary parts follow), and how far the grid frequency lies from the lower bin.
    struct Bracket {
        int lowEntry;
        int highEntry;
        double fraction;
    };

    KernelDisplay();

    // The table of a design rate: exactly 48000, 88200 or 96000 Hz select their own, every
    // other rate the 44100 Hz table.
    static int rateIndexFor(double designRate);
    const Bracket& bracket(int rateIndex, int point) const { return tables_[rateIndex][point]; }

    // The curve (dB) of the kernel whose N + 1 taps are in `kernel` (2N doubles, half-
    // interleaved, samples N + 1 .. 2N − 1 zero). `scratch` holds kScratchDoubles and is
    // overwritten; it may be the kernel's own buffer when that holds kScratchDoubles, which
    // spares the copy and leaves the kernel's spectrum there.
    void measure(const double* kernel, int n, double designRate, const Fft& fft, double* scratch, Curve& curve) const;

private:
    Bracket tables_[kRateCount][kPlotPoints];
};

}  // namespace dsp
