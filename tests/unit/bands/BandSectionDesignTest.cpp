// The section of each shape against the bilinear transform of its analog prototype, worked
// out independently in the test.

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "BandTestSupport.h"
#include "dsp/BandSectionDesign.h"

namespace {

using namespace bands_test;
using dsp::BandSettings;
using dsp::BiquadCoefficients;

const double kDesignRates[] = {44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0, 47250.0, 22050.0};
// 20 kHz lies above Nyquist at 22050; the formulas apply there unchanged.
const double kFrequencies[] = {20.0, 63.0, 440.0, 1000.0, 5500.0, 10000.0, 20000.0};
const double kQs[] = {0.0, 0.13, 0.5, 0.81, 1.0};
const double kGains[] = {-12.0, -3.5, 0.0, 4.25, 12.0};

void expectNear(double expected, double actual, const std::string& what) {
    EXPECT_NEAR(actual, expected, 1e-9 * std::max(1.0, std::fabs(expected))) << what;
}

class SectionOfEachShape : public ::testing::TestWithParam<int> {};

TEST_P(SectionOfEachShape, MatchesBilinearImageOfPrototype) {
    const int bandType = GetParam();
    for (double rate : kDesignRates)
        for (double f : kFrequencies)
            for (double q : kQs)
                for (double g : kGains) {
                    const BandSettings band{bandType, f, q, g};
                    const BiquadCoefficients got = dsp::designBandSection(band, rate);
                    const BiquadCoefficients want = bilinearSection(band, rate);
                    const std::string what = "type " + std::to_string(bandType) + " rate " + std::to_string(rate) +
                                             " f " + std::to_string(f) + " q " + std::to_string(q) + " g " +
                                             std::to_string(g);
                    expectNear(want.b0, got.b0, what + " b0");
                    expectNear(want.b1, got.b1, what + " b1");
                    expectNear(want.b2, got.b2, what + " b2");
                    expectNear(want.a1, got.a1, what + " a1");
                    expectNear(want.a2, got.a2, what + " a2");
                }
}

INSTANTIATE_TEST_SUITE_P(Shapes, SectionOfEachShape, ::testing::Range(0, 7));

TEST(BandSectionDesign, EveryBypassedTypeIsIdentityWhateverItsValues) {
    for (int bandType = 7; bandType <= 13; ++bandType)
        for (double g : kGains) {
            const BandSettings band{bandType, 1234.0, 0.9, g};
            EXPECT_TRUE(isIdentity(dsp::designBandSection(band, 48000.0))) << bandType;
        }
}

TEST(BandSectionDesign, QualityFactorFollowsTheShape) {
    EXPECT_DOUBLE_EQ(dsp::qualityFactor(dsp::FilterShape::Peaking, 0.5), 1.0);
    EXPECT_DOUBLE_EQ(dsp::qualityFactor(dsp::FilterShape::Peaking, 0.0), 0.05);
    EXPECT_DOUBLE_EQ(dsp::qualityFactor(dsp::FilterShape::Peaking, 1.0), 20.0);
    EXPECT_DOUBLE_EQ(dsp::qualityFactor(dsp::FilterShape::LowShelf, 0.5), std::sqrt(0.5));
    EXPECT_DOUBLE_EQ(dsp::qualityFactor(dsp::FilterShape::HighCut24, 0.0), std::pow(2.0, -1.5));
    EXPECT_DOUBLE_EQ(dsp::qualityFactor(dsp::FilterShape::LowCut24, 1.0), std::sqrt(2.0));
    EXPECT_EQ(dsp::shapeOf(10), dsp::FilterShape::Peaking);
    EXPECT_TRUE(dsp::isBypassed(7));
    EXPECT_FALSE(dsp::isBypassed(6));
}

TEST(BandSectionDesign, DenormalCoefficientsAreFlushedToZero) {
    // A gain of -12400 dB (reachable with a normalized value far outside 0..1) makes the
    // low shelf's numerator about 1e-310, below the smallest normal double.
    const BiquadCoefficients c = dsp::designBandSection({2, 1000.0, 0.5, -12400.0}, 44100.0);
    EXPECT_EQ(c.b0, 0.0);
    EXPECT_EQ(c.b1, 0.0);
    EXPECT_EQ(c.b2, 0.0);
    EXPECT_NE(c.a1, 0.0);
    for (int bandType = 0; bandType < 7; ++bandType)
        for (double f : {20.0, 20000.0})
            for (double rate : {11025.0, 192000.0}) {
                const BiquadCoefficients s = dsp::designBandSection({bandType, f, 0.5, 12.0}, rate);
                for (double x : {s.b0, s.b1, s.b2, s.a1, s.a2})
                    EXPECT_NE(std::fpclassify(x), FP_SUBNORMAL) << bandType << " " << f << " " << rate;
            }
}

}  // namespace
