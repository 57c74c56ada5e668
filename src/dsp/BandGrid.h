#pragma once
// The plot grid as the band curves see it: for each of six rate classes, the sines and
// cosines of w and 2w at every grid frequency. The curves are evaluated on the table of the
// class nearest to the design rate rather than on the design rate itself, so the tables are
// computed once per process and never on a parameter change.

#include <limits>

#include "dsp/EqTypes.h"

namespace dsp {

struct RateClass {
    double rate;   // Hz, the rate the class's tables are computed for
    double below;  // a design rate below this (and not below the previous class's bound) selects the class
};

inline constexpr int kRateClassCount = 6;
inline constexpr RateClass kRateClasses[kRateClassCount] = {
    {44100.0, 45000.0},  {48000.0, 50000.0},   {88200.0, 90000.0},
    {96000.0, 100000.0}, {176400.0, 190000.0}, {192000.0, std::numeric_limits<double>::infinity()},
};

// Index into kRateClasses of the class that serves designRate.
int rateClassFor(double designRate);

// w = 2π·f/rate at each grid frequency f. Aligned for the SSE2 curve routine.
struct BandGridTable {
    alignas(16) double sinW[kPlotPoints];
    alignas(16) double cosW[kPlotPoints];
    alignas(16) double sin2W[kPlotPoints];
    alignas(16) double cos2W[kPlotPoints];
};

// The table of a rate class. All six are built together the first time any is asked for.
const BandGridTable& bandGridTable(int rateClass);

}  // namespace dsp
