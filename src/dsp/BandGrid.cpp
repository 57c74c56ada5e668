#include "dsp/BandGrid.h"

#include <cmath>

namespace dsp {
namespace {

constexpr double kTwoPi = 6.283185307179586476925286766559;

// Built in place in static storage (about 87 KB), once, thread-safely on first use.
struct AllGridTables {
    BandGridTable table[kRateClassCount];

    AllGridTables() {
        for (int r = 0; r < kRateClassCount; ++r) {
            BandGridTable& t = table[r];
            for (int i = 0; i < kPlotPoints; ++i) {
                const double w = kTwoPi * plotFrequency(i) / kRateClasses[r].rate;
                t.sinW[i] = std::sin(w);
                t.cosW[i] = std::cos(w);
                t.sin2W[i] = std::sin(2.0 * w);
                t.cos2W[i] = std::cos(2.0 * w);
            }
        }
    }
};

}  // namespace

int rateClassFor(double designRate) {
    for (int r = 0; r < kRateClassCount - 1; ++r)
        if (designRate < kRateClasses[r].below) return r;
    return kRateClassCount - 1;
}

const BandGridTable& bandGridTable(int rateClass) {
    static const AllGridTables tables;
    return tables.table[rateClass];
}

}  // namespace dsp
