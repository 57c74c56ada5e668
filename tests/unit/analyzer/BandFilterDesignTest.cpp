// The generated band filters and the fixed decimation low-passes, checked by evaluating
// their responses from the coefficients.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "AnalyzerTestSupport.h"

namespace {

using namespace analyzer_test;
using analyzer::RateBandTables;

constexpr double kHalfPowerDb = -3.0102999566;

// Every band filter of every rate and order: unity at its centre (where the prewarped
// geometric mean of the edges maps back to), half power at both design edges, stable, and
// maximally flat (no overshoot between the edges).
TEST(BandFilterTables, StableUnityAtCentreAndHalfPowerAtDesignEdges) {
    for (float rate : kRates)
        for (int order : {2, 6}) {
            const RateBandTables* tables = analyzer::bandTablesFor(rate, order);
            ASSERT_NE(tables, nullptr);
            const int sections = order == 2 ? 1 : 3;
            for (int band = 0; band < 16; ++band) {
                SCOPED_TRACE("rate " + std::to_string(rate) + " order " + std::to_string(order) + " band " + std::to_string(band));
                const SectionCascade& filter = band < 8 ? tables->top[band] : tables->lower[band - 8];
                double f1, f2;
                designEdges(band, order, rate, f1, f2);
                const double w0 = std::sqrt(std::tan(kPi * f1 / rate) * std::tan(kPi * f2 / rate));
                EXPECT_NEAR(cascadeGainDb(filter, sections, std::atan(w0) * rate / kPi, rate), 0.0, 0.01);
                EXPECT_NEAR(cascadeGainDb(filter, sections, f1, rate), kHalfPowerDb, 0.01);
                EXPECT_NEAR(cascadeGainDb(filter, sections, f2, rate), kHalfPowerDb, 0.01);
                for (int k = 0; k < sections; ++k) {
                    const auto& s = filter.section[k];
                    EXPECT_TRUE(std::abs(s.a2) < 1.0f && std::abs(s.a1) < 1.0f + s.a2) << "unstable section " << k;
                }
                for (int k = 1; k < 50; ++k) {
                    const double g = cascadeGainDb(filter, sections, f1 * std::pow(f2 / f1, k / 50.0), rate);
                    EXPECT_TRUE(g < 0.01 && g > kHalfPowerDb) << k;
                }
            }
        }
}

TEST(BandFilterTables, OnlyTheSixRatesHaveTables) {
    for (float rate : kRates) EXPECT_NE(analyzer::bandTablesFor(rate, 6), nullptr);
    for (float rate : {0.0f, 32000.0f, 44099.0f, 384000.0f}) EXPECT_EQ(analyzer::bandTablesFor(rate, 2), nullptr);
}

TEST(DecimationLowPass, Order6IsFlatThenDeepAndOrder2HalvesThePowerNear0108) {
    const SectionCascade& lp6 = analyzer::decimationLowPass(6);
    for (double f = 0.0; f <= 0.1; f += 0.001) EXPECT_NEAR(cascadeGainDb(lp6, 3, f, 1.0), 0.0, 0.0201) << f;
    for (double f = 0.2; f <= 0.5; f += 0.001) EXPECT_LT(cascadeGainDb(lp6, 3, f, 1.0), -60.0) << f;
    EXPECT_NEAR(cascadeGainDb(lp6, 3, 0.127, 1.0), kHalfPowerDb, 0.3);
    const SectionCascade& lp2 = analyzer::decimationLowPass(2);
    EXPECT_NEAR(cascadeGainDb(lp2, 1, 0.108, 1.0), kHalfPowerDb, 0.3);
    EXPECT_GT(cascadeGainDb(lp2, 1, 0.100, 1.0), kHalfPowerDb);
    EXPECT_LT(cascadeGainDb(lp2, 1, 0.116, 1.0), kHalfPowerDb);
}

}  // namespace
