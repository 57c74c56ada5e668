// The rate converters, the minimum-phase cascade and the audition filter measured from outside:
// against analytic responses, the cascade's sections run one sample at a time, and figures
// recorded from the converters' single-sum form.

#include <gtest/gtest.h>

#include <cfloat>
#include <map>
#include <random>
#include <string>

#include "AudioTestSupport.h"
#include "dsp/AuditionFilter.h"
#include "dsp/MinimumPhaseCascade.h"
#include "dsp/RateConverters.h"

namespace {

using namespace audiotest;
using Signal = std::vector<double>;

// A converter pair with nothing between its halves; side B carries the negated signal and must
// come out negated (the sides never mix).
template <class C>
Signal roundTrip(const Signal& x) {
    C c;
    Signal y(x.size());
    using P = dsp::PlainPair;
    for (size_t n = 0; n < x.size(); ++n) {
        const P in = P::make(x[n], -x[n]);
        P out;
        if constexpr (std::is_same_v<C, dsp::DoubleRateConverter>) {
            P inner[2];
            c.up(in, inner);
            out = c.down(inner);
        } else {
            P inner;
            if (c.down(in, inner)) c.up(inner);
            out = c.template out<P>();
        }
        EXPECT_EQ(out.b(), -out.a());
        y[n] = out.a();
    }
    return y;
}

TEST(RateConverters, PassTheirBandAtUnityGainAsAPureDelayOfTheDesignedLength) {
    const struct {
        const char* name;
        Signal (*run)(const Signal&);
        int delay;
        double from, to, toleranceDb;  // band in cycles per host sample
    } cases[] = {
        {"x2", roundTrip<dsp::DoubleRateConverter>, 63, 0.0005, 0.25, 0.01},
        {"x2 top", roundTrip<dsp::DoubleRateConverter>, 63, 0.25, 0.45, 0.025},
        {"x1/2", roundTrip<dsp::HalfRateConverter>, 126, 0.0005, 0.125, 0.01},
        {"x1/2 top", roundTrip<dsp::HalfRateConverter>, 126, 0.125, 0.2, 0.02},
        {"x1/4", roundTrip<dsp::QuarterRateConverter>, 255, 0.0005, 0.11, 0.01},  // 21 kHz at 192 kHz
    };
    for (const auto& c : cases) {
        for (int t = 0; t < 30; ++t) {
            const double f = c.from * std::pow(c.to / c.from, t / 29.0);
            const auto g = toneGain(c.run(sine(f, 1024 + 16384, 0.3)), f, 0.3, c.delay, 16384);
            EXPECT_LT(std::fabs(20.0 * std::log10(std::abs(g))), c.toleranceDb) << c.name << " at " << f;
            EXPECT_LT(std::fabs(std::arg(g)), 1e-9) << c.name << " at " << f;
        }
    }
}

TEST(RateConverters, TheDecimatingPairsRemoveContentAboveTheInnerNyquistFrequency) {
    auto expectRemoved = [](Signal (*run)(const Signal&), double rate, size_t length, double floorDb,
                            std::initializer_list<double> tones) {
        for (double hz : tones) {
            const Signal x = sine(hz / rate, length, 0.3), y = run(x);
            double ex = 0.0, ey = 0.0;
            for (size_t n = length / 8; n < length; ++n) ex += x[n] * x[n], ey += y[n] * y[n];
            EXPECT_LT(10.0 * std::log10(ey / ex), floorDb) << hz;
        }
    };  // 24 kHz inside at 96 kHz, 48 kHz inside at 192 kHz
    expectRemoved(roundTrip<dsp::HalfRateConverter>, 96000.0, 8192, -55.0, {26400.0, 30000.0, 38400.0, 47000.0});
    expectRemoved(roundTrip<dsp::QuarterRateConverter>, 192000.0, 16384, -100.0, {27000.0, 30000.0, 40000.0, 60000.0, 90000.0});
}

// Noise through each converter pair in the plain family and in the SSE2 family with 128-bit
// and 256-bit sums: every output sample is the same, bit for bit, on both sides.
template <class C, class P, int InnerDelay = 0>
std::vector<double> pairTrace(bool wide, const Signal& x) {
    C c{dsp::SumWidth(wide)};
    if constexpr (std::is_same_v<C, dsp::DoubleRateConverter>) c.setInnerDelay(InnerDelay);
    std::vector<double> y;
    for (size_t n = 0; n < x.size(); ++n) {
        const P in = P::make(x[n], x[(n * 5) % x.size()]);
        P out;
        if constexpr (std::is_same_v<C, dsp::DoubleRateConverter>) {
            P inner[2];
            c.up(in, inner);
            inner[1] = inner[1] * P::splat(-0.75);  // the halves meet something other than an identity
            out = c.down(inner);
        } else {
            P inner;
            if (c.down(in, inner)) c.up(inner * P::splat(-0.75));
            out = c.template out<P>();
        }
        y.push_back(out.a()), y.push_back(out.b());
    }
    return y;
}

TEST(RateConverters, EverySumWidthGivesTheSameNumbers) {
    const Signal x = randomSignal(3000, 9);
    const struct {
        const char* name;
        std::vector<double> (*plain)(bool, const Signal&), (*sse2)(bool, const Signal&);
    } cases[] = {
        {"x2", pairTrace<dsp::DoubleRateConverter, dsp::PlainPair>, pairTrace<dsp::DoubleRateConverter, dsp::Sse2Pair>},
        {"x2, odd inner delay", pairTrace<dsp::DoubleRateConverter, dsp::PlainPair, 1>,
         pairTrace<dsp::DoubleRateConverter, dsp::Sse2Pair, 1>},
        {"x1/2", pairTrace<dsp::HalfRateConverter, dsp::PlainPair>, pairTrace<dsp::HalfRateConverter, dsp::Sse2Pair>},
        {"x1/4", pairTrace<dsp::QuarterRateConverter, dsp::PlainPair>, pairTrace<dsp::QuarterRateConverter, dsp::Sse2Pair>},
    };
    for (const auto& c : cases) {
        const auto reference = c.plain(false, x);
        EXPECT_EQ(c.sse2(false, x), reference) << c.name;
        EXPECT_EQ(c.sse2(true, x), reference) << c.name << " (256-bit sums where the machine has them)";
    }
}

// Each converter filter on noise, side A, against figures recorded from the straightforward
// form (one running sum per filter, in tap order): the partial sums may round differently,
// never by more than 1e-12.
TEST(RateConverters, KeepTheOutputOfTheSingleSumForm) {
    const struct {
        const char* trace;
        double at[6];  // samples 128, 260, 400, 652, 996, 1196 (decimating ones for the down halves)
        double energy;
    } expected[] = {
        {"up0", {0.23703246516375287, 0.74386374426466151, 0.82167756675585979, 0.76415672366248566, 0.369068932543205, 0.65609852011355918}, 371.08721722382518},
        {"downEven", {0.116837357722339, 0.36018554531092961, -0.1933000319142496, -0.33333858679930928, 0.45874930216173454, 0.36420367489187738}, 185.71421355085388},
        {"downOdd", {-0.678942673964821, 0.071949620668906866, -0.36668381925271365, -0.38157877652781758, 0.54442123899888184, 0.043879015001895616}, 186.5283788068829},
        {"halfDown", {0.29835292433099653, -1.1421650121773617, 0.4638846288492296, -0.22185968987689855, -0.44334865535084295, -0.83179658365209486}, 89.32833933279484},
        {"quarterDown", {0.010838170943248279, 0.5484044321795789, 0.12305969944599862, -0.063412047447721609, 0.69757994423033964, -0.056687795230332259}, 19.784039587409051},
        {"quarterUp", {0.055579486153165769, -0.4681471131947178, -0.57906958142310105, -0.99094445465864478, 0.45437571817032518, 0.17292030130698266}, 356.90418514031472},
    };
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    const int length = 1200;
    Signal x(length), y(length);
    for (double& v : x) v = u(rng);
    for (double& v : y) v = u(rng);
    std::map<std::string, Signal> traces;
    using P = dsp::PlainPair;
    for (bool odd : {false, true}) {
        dsp::DoubleRateConverter c;
        c.setInnerDelay(odd ? 1 : 0);
        Signal up(length), down(length);
        for (int n = 0; n < length; ++n) {
            P inner[2];
            c.up(P::make(x[n], -x[n]), inner);
            up[n] = inner[0].a();
            const P processed[2] = {P::make(y[n], 0.0), P::make(x[(n * 7) % length], 0.0)};
            down[n] = c.down(processed).a();
        }
        traces["up0"] = up, traces[odd ? "downOdd" : "downEven"] = down;
    }
    dsp::HalfRateConverter half;
    dsp::QuarterRateConverter quarter;
    Signal halfDown(length), quarterDown(length), quarterUp(length);
    for (int n = 0; n < length; ++n) {
        P inner;
        if (half.down(P::make(x[n], 0.0), inner)) halfDown[n] = inner.a(), half.up(inner);
        half.out<P>();  // its up half is the ×2 interpolator above
        if (quarter.down(P::make(x[n], 0.0), inner)) quarterDown[n] = inner.a(), quarter.up(P::make(y[n], 0.0));
        quarterUp[n] = quarter.out<P>().a();
    }
    traces["halfDown"] = halfDown, traces["quarterDown"] = quarterDown, traces["quarterUp"] = quarterUp;
    for (const auto& e : expected) {
        const Signal& t = traces.at(e.trace);
        const int at[6] = {128, 260, 400, 652, 996, 1196};
        for (int k = 0; k < 6; ++k) EXPECT_NEAR(t[at[k]], e.at[k], 1e-12) << e.trace << " at " << at[k];
        double energy = 0.0;
        for (double v : t) energy += v * v;
        EXPECT_NEAR(energy, e.energy, 1e-12 * e.energy) << e.trace;
    }
}

constexpr double kRate = 44100.0;

dsp::BiquadCoefficients peaking(double f, double q, double gainDb) {
    const double A = std::pow(10.0, gainDb / 40.0), w = 2.0 * kPi * f / kRate;
    const double alpha = std::sin(w) / (2.0 * q), a0 = 1.0 + alpha / A;
    return {(1.0 + alpha * A) / a0, -2.0 * std::cos(w) / a0, (1.0 - alpha * A) / a0, -2.0 * std::cos(w) / a0,
            (1.0 - alpha / A) / a0};
}

// x through the cascade in blocks of the given sizes (cycled), side by side.
template <class P>
void filter(dsp::MinimumPhaseCascade& c, const Signal (&x)[2], Signal (&y)[2], std::initializer_list<int> blocks) {
    alignas(16) double pairs[2 * dsp::MinimumPhaseCascade::kMaxBlock];
    for (int side = 0; side < 2; ++side) y[side].resize(x[side].size());
    auto size = blocks.begin();
    for (size_t start = 0; start < x[0].size(); start += static_cast<size_t>(*size)) {
        if (++size == blocks.end()) size = blocks.begin();
        const int count = static_cast<int>(std::min<size_t>(*size, x[0].size() - start));
        for (int i = 0; i < count; ++i) pairs[2 * i] = x[0][start + i], pairs[2 * i + 1] = x[1][start + i];
        c.process<P>(pairs, count);
        for (int i = 0; i < count; ++i) y[0][start + i] = pairs[2 * i], y[1][start + i] = pairs[2 * i + 1];
    }
}

// Each side through its own sections one sample at a time, the section y = b0·x + b1·x1 +
// b2·x2 − a1·y1 − a2·y2 summed in that order.
Signal serialSections(const std::vector<dsp::BiquadCoefficients>& sections, Signal x) {
    for (const auto& c : sections)
        for (int pass = 0; pass < 2; ++pass) {
            double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
            for (double& v : x) {
                const double y = c.b0 * v + c.b1 * x1 + c.b2 * x2 - c.a1 * y1 - c.a2 * y2;
                x2 = x1, x1 = v, y2 = y1, y1 = y, v = y;
            }
        }
    return x;
}

// An impulse through a copy of the cascade, cut into uneven blocks: each side gives exactly
// its own sections run one after the other.
void expectSerialSections(dsp::MinimumPhaseCascade c, const std::vector<dsp::BiquadCoefficients> (&sides)[2]) {
    Signal x[2] = {Signal(4096, 0.0), Signal(4096, 0.0)}, y[2];
    x[0][0] = x[1][0] = 1.0;
    filter<dsp::PlainPair>(c, x, y, {512, 1, 77, 300});
    for (int side = 0; side < 2; ++side) EXPECT_EQ(y[side], serialSections(sides[side], x[side])) << "side " << side;
}

struct Bank {
    dsp::BiquadCoefficients slots[dsp::kBandSlots] = {};
    int reads[dsp::kBandSlots] = {};
    dsp::BiquadCoefficients operator()(int slot) { return ++reads[slot], slots[slot]; }
};

TEST(MinimumPhaseCascade, EachSideRunsItsOwnActiveBandsInSeries) {
    const int types[dsp::kBandSlots] = {3, 7, 13, 0, 6, 3, 8, 3, 7, 2, 7, 7, 7, 7, 7, 7};
    const uint32_t active = dsp::MinimumPhaseCascade::activeSlots(types);
    EXPECT_EQ(active, 0b10'1011'1001u);
    Bank bank;
    for (auto& s : bank.slots) s = peaking(500.0, 1.0, 6.0);  // switched-off slots hold bands too
    bank.slots[0] = peaking(80.0, 0.7, -5.0);
    bank.slots[3] = peaking(3000.0, 0.7, -4.0);
    bank.slots[5] = peaking(12000.0, 4.0, 3.0);
    bank.slots[9] = peaking(200.0, 1.0, 5.0);
    dsp::MinimumPhaseCascade c;
    c.load(bank, 1u << 4);  // band 5 left ringing, switched off, then on again with the others
    alignas(16) double ones[100];
    for (int n = 0; n < 50; ++n) ones[2 * n] = 1.0, ones[2 * n + 1] = 0.0;
    c.process<dsp::PlainPair>(ones, 50);
    c.load(bank, 0);
    c.load(bank, active);
    for (int s = 0; s < dsp::kBandSlots; ++s) EXPECT_EQ(bank.reads[s], ((active >> s) & 1) + (s == 4)) << s;
    expectSerialSections(c, {{bank.slots[0], bank.slots[3], bank.slots[4], bank.slots[5], bank.slots[7]}, {bank.slots[9]}});

    dsp::MinimumPhaseCascade oneSide;
    oneSide.load(bank, 1u << 2);
    expectSerialSections(oneSide, {{bank.slots[2]}, {}});
}

// However a block is cut, each side's result is bit for bit its sections run one after the
// other, one sample at a time: the wavefront reorders work, never arithmetic.
TEST(MinimumPhaseCascade, BlocksGiveExactlyTheSerialSectionsOfEachSide) {
    Bank bank;
    for (int s = 0; s < dsp::kBandSlots; ++s) bank.slots[s] = peaking(60.0 * (s + 1), 0.5 + 0.3 * (s % 4), s % 2 ? 6.0 : -9.0);
    const Signal x[2] = {randomSignal(5000, 41), randomSignal(5000, 42)};
    for (uint32_t active : {0xffffu, 0x01ffu, 0xfe01u, 0x0000u, 0x8001u}) {
        // The SSE2 family on 128-, 256- and 512-bit registers.
        dsp::MinimumPhaseCascade plain, sse2(dsp::CascadeWidth::Pairs), wide(dsp::CascadeWidth::Avx2), widest;
        plain.load(bank, active);
        sse2.load(bank, active);
        wide.load(bank, active);
        widest.load(bank, active);
        Signal y[2], z[2], w[2], v[2];
        filter<dsp::PlainPair>(plain, x, y, {512, 3, 1, 200, 511});
        filter<dsp::Sse2Pair>(sse2, x, z, {17, 512, 64});
        filter<dsp::Sse2Pair>(wide, x, w, {512, 31, 32, 33, 1, 300});
        filter<dsp::Sse2Pair>(widest, x, v, {512, 14, 15, 16, 1, 2, 300});
        for (int side = 0; side < 2; ++side) {
            std::vector<dsp::BiquadCoefficients> own;
            for (int b = 0; b < dsp::kBandsPerSide; ++b)
                if ((active >> (side * dsp::kBandsPerSide + b)) & 1u) own.push_back(bank.slots[side * dsp::kBandsPerSide + b]);
            const Signal expected = serialSections(own, x[side]);
            EXPECT_EQ(y[side], expected) << std::hex << active << " side " << side;
            EXPECT_EQ(z[side], expected) << std::hex << active << " side " << side;
            EXPECT_EQ(w[side], expected) << std::hex << active << " side " << side;
            EXPECT_EQ(v[side], expected) << std::hex << active << " side " << side;
        }
    }
}

TEST(MinimumPhaseCascade, ABandKeepsRingingWhenAnotherBandOfItsSideSwitchesOff) {
    Bank bank;  // slot 0 a wire, slot 3 a resonance; side B's slot 12 the same resonance
    bank.slots[3] = bank.slots[12] = peaking(2000.0, 8.0, 9.0);
    dsp::MinimumPhaseCascade withWire, alone;
    withWire.load(bank, (1u << 0) | (1u << 3) | (1u << 12));
    alone.load(bank, (1u << 3) | (1u << 12));
    Signal x[2] = {Signal(400, 0.0), Signal(400, 0.0)}, head[2], tail[2], y[2], expected[2];
    x[0][0] = x[1][0] = 1.0;
    const Signal headX[2] = {{x[0].begin(), x[0].begin() + 30}, {x[1].begin(), x[1].begin() + 30}};
    const Signal tailX[2] = {{x[0].begin() + 30, x[0].end()}, {x[1].begin() + 30, x[1].end()}};
    filter<dsp::PlainPair>(withWire, headX, head, {30});
    withWire.load(bank, (1u << 3) | (1u << 12));  // slot 3 moves up a stage
    filter<dsp::PlainPair>(withWire, tailX, tail, {512});
    filter<dsp::PlainPair>(alone, x, expected, {512});
    for (int side = 0; side < 2; ++side) {
        y[side] = head[side];
        y[side].insert(y[side].end(), tail[side].begin(), tail[side].end());
    }
    for (size_t n = 0; n < x[0].size(); ++n) ASSERT_NEAR(y[0][n], expected[0][n], 1e-15) << n;
    EXPECT_EQ(y[1], expected[1]);
}

TEST(AuditionFilter, PeaksAtTheBandFrequencyWithTheLevelsGain) {
    const double rate = 48000.0, level = 0.25;
    for (double f : {100.0, 1000.0, 8000.0}) {
        for (double width : {0.0, 1.0}) {
            dsp::AuditionFilter filter;
            filter.setSection(dsp::AuditionSection::design(f, width, level, rate));
            Signal h(32768);
            for (size_t n = 0; n < h.size(); ++n) h[n] = filter.process<double>(0, n == 0 ? 1.0 : 0.0);
            double bestF = 0.0, best = 0.0;  // the loudest of ±1/4 octave in 1/200-octave steps
            for (int i = -50; i <= 50; ++i) {
                const double fi = f * std::pow(2.0, i / 200.0), m = std::abs(dft(h, 2.0 * kPi * fi / rate));
                if (m > best) best = m, bestF = fi;
            }
            EXPECT_NEAR(std::log2(bestF / f), 0.0, 0.02) << f << " Hz, width " << width;
            // A zero at DC only: the centre gain is 2^(4·level) / (2·cos(w/2)).
            const double w = 2.0 * kPi * f / rate;
            EXPECT_NEAR(best * 2.0 * std::cos(w / 2.0) / std::pow(2.0, 4.0 * level), 1.0, 0.01) << f;
            EXPECT_LT(std::abs(dft(h, w / 8.0)), best / 4.0);  // a band-pass
            EXPECT_LT(std::abs(dft(h, std::min(8.0 * w, 2.0 * kPi * 0.48))), best / 3.0);
        }
    }
}

TEST(AuditionFilter, AnOverflowingInputLeavesNoNonFiniteState) {
    dsp::AuditionFilter f;
    f.setSection(dsp::AuditionSection::design(440.0, 1.0, 1.0, 44100.0));  // the loudest, narrowest
    for (int n = 0; n < 2000; ++n) f.process<double>(0, std::sin(2.0 * kPi * 440.0 * n / 44100.0) > 0.0 ? DBL_MAX : -DBL_MAX);
    for (int n = 0; n < 10; ++n) ASSERT_TRUE(std::isfinite(f.process<double>(0, 0.5))) << n;
}

}  // namespace
