// The rate converters measured from outside: impulses, and tones correlated with the input,
// never by restating the filters.

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "dsp/RateConverters.h"

namespace {

using Signal = std::vector<double>;
constexpr double kPi = std::numbers::pi;

// A converter pair with nothing between its halves; side B gets the negated signal and must
// come out negated (the sides never mix).
template <class C>
Signal roundTrip(const Signal& x) {
    C c;
    Signal y(x.size());
    for (size_t n = 0; n < x.size(); ++n) {
        double a, b;
        if constexpr (std::is_same_v<C, dsp::DoubleRateConverter>) {
            double ia[2], ib[2];
            c.up(x[n], -x[n], ia, ib);
            c.down(ia, ib, a, b);
        } else {
            double ia, ib;
            if (c.down(x[n], -x[n], ia, ib)) c.up(ia, ib);
            c.out(a, b);
        }
        EXPECT_EQ(b, -a);
        y[n] = a;
    }
    return y;
}

Signal sine(double f, size_t length) {
    Signal x(length);
    for (size_t n = 0; n < length; ++n) x[n] = std::sin(2.0 * kPi * f * n + 0.3);
    return x;
}

// Complex gain of y against x delayed by `delay`, by Hann-windowed correlation with the tone's
// complex exponential over a settled stretch: a pure delay of exactly `delay` gives zero phase.
std::complex<double> gainAgainstInput(const Signal& x, const Signal& y, double f, int delay, size_t start) {
    const size_t length = x.size() - start;
    std::complex<double> cy = 0.0, cx = 0.0;
    for (size_t i = 0; i < length; ++i) {
        const size_t n = start + i;
        const double w = 0.5 - 0.5 * std::cos(2.0 * kPi * (i + 0.5) / length);
        const auto e = std::polar(1.0, -2.0 * kPi * f * n);
        cy += w * y[n] * e;
        cx += w * x[n - delay] * e;
    }
    return cy / cx;
}

struct SweepCase {
    const char* name;
    Signal (*run)(const Signal&);
    int delay;
    double from, to;  // cycles per host sample
    double toleranceDb;
};

TEST(RateConverters, PassTheirBandAtUnityGainAsAPureDelayOfTheDesignedLength) {
    // ×2: the half-band filter's response squared, ±0.01 dB to a quarter of the host rate and
    // ±0.025 dB to 0.45 of it. ×1/2: the same filter at the host rate, to 0.2 of it. ×1/4:
    // flat to 0.11 of the host rate (21 kHz at 192 kHz).
    const SweepCase cases[] = {
        {"x2", roundTrip<dsp::DoubleRateConverter>, 63, 0.0005, 0.25, 0.01},
        {"x2 top", roundTrip<dsp::DoubleRateConverter>, 63, 0.25, 0.45, 0.025},
        {"x1/2", roundTrip<dsp::HalfRateConverter>, 126, 0.0005, 0.125, 0.01},
        {"x1/2 top", roundTrip<dsp::HalfRateConverter>, 126, 0.125, 0.2, 0.02},
        {"x1/4", roundTrip<dsp::QuarterRateConverter>, 255, 0.0005, 0.11, 0.01},
    };
    EXPECT_EQ(dsp::DoubleRateConverter::kDelay, 63);
    EXPECT_EQ(dsp::HalfRateConverter::kDelay, 126);
    EXPECT_EQ(dsp::QuarterRateConverter::kDelay, 255);
    for (const SweepCase& c : cases) {
        for (int t = 0; t < 30; ++t) {
            const double f = c.from * std::pow(c.to / c.from, t / 29.0);
            const Signal x = sine(f, 1024 + 16384);
            const auto g = gainAgainstInput(x, c.run(x), f, c.delay, 1024);
            EXPECT_LT(std::fabs(20.0 * std::log10(std::abs(g))), c.toleranceDb) << c.name << " at " << f;
            EXPECT_LT(std::fabs(std::arg(g)), 1e-9) << c.name << " at " << f;
        }
    }
}

TEST(RateConverters, AnImpulseThroughTheDoublingPairComesOutCentred63SamplesLate) {
    for (int at : {0, 1, 10, 11}) {  // both parities
        Signal x(400, 0.0);
        x[at] = 1.0;
        const Signal y = roundTrip<dsp::DoubleRateConverter>(x);
        size_t peak = 0;
        for (size_t n = 0; n < y.size(); ++n)
            if (std::fabs(y[n]) > std::fabs(y[peak])) peak = n;
        ASSERT_EQ(static_cast<int>(peak), at + 63);
        for (int j = 1; j <= 63; ++j) EXPECT_NEAR(y[peak + j], y[peak - j], 1e-15) << j;  // symmetric
        for (size_t n = 0; n + 63 < peak; ++n) EXPECT_EQ(y[n], 0.0) << n;  // 127 taps long
        for (size_t n = peak + 64; n < y.size(); ++n) EXPECT_EQ(y[n], 0.0) << n;
        double area = 0.0;
        for (double v : y) area += v;
        EXPECT_NEAR(area, 1.0, 1e-3);  // the gain at DC
        EXPECT_GT(y[peak], 0.98);
    }
}

TEST(RateConverters, TheDecimatingPairsRemoveContentAboveTheInnerNyquistFrequency) {
    // ×1/2 at 96 kHz (24 kHz inside): 26.4, 30, 38.4 and 47 kHz. ×1/4 at 192 kHz (48 kHz
    // inside): 27, 30, 40, 60, 90 kHz.
    for (double hz : {26400.0, 30000.0, 38400.0, 47000.0}) {
        const Signal x = sine(hz / 96000.0, 8192), y = roundTrip<dsp::HalfRateConverter>(x);
        double ex = 0.0, ey = 0.0;
        for (size_t n = 1024; n < x.size(); ++n) ex += x[n] * x[n], ey += y[n] * y[n];
        EXPECT_LT(10.0 * std::log10(ey / ex), -55.0) << hz;
    }
    for (double hz : {27000.0, 30000.0, 40000.0, 60000.0, 90000.0}) {
        const Signal x = sine(hz / 192000.0, 16384), y = roundTrip<dsp::QuarterRateConverter>(x);
        double ex = 0.0, ey = 0.0;
        for (size_t n = 2048; n < x.size(); ++n) ex += x[n] * x[n], ey += y[n] * y[n];
        EXPECT_LT(10.0 * std::log10(ey / ex), -100.0) << hz;
    }
}

}  // namespace
