// The generated band filters and the fixed decimation low-passes, checked by evaluating
// their responses from the coefficients.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "AnalyzerTestSupport.h"

namespace {

using namespace analyzer_test;
using analyzer::RateBandTables;

constexpr double kHalfPowerDb = -3.0102999566;

struct TableCase {
    float rate;
    int order;
};

class BandFilterTables : public ::testing::TestWithParam<TableCase> {
protected:
    // Every filter of the tables for this case, with the band it serves at the host rate.
    template <class Check>
    void forEachFilter(Check check) {
        const TableCase c = GetParam();
        const RateBandTables* tables = analyzer::bandTablesFor(c.rate, c.order);
        ASSERT_NE(tables, nullptr);
        for (int k = 0; k < 8; ++k) {
            check(tables->top[k], k);
            check(tables->lower[k], 8 + k);
        }
    }
};

TEST_P(BandFilterTables, StableUnityAtCentreAndHalfPowerAtDesignEdges) {
    const TableCase c = GetParam();
    const int sections = c.order == 2 ? 1 : 3;
    forEachFilter([&](const SectionCascade& filter, int band) {
        double f1, f2;
        designEdges(band, c.order, c.rate, f1, f2);
        // The centre is where the prewarped geometric mean of the edges maps back to.
        const double w0 = std::sqrt(std::tan(kPi * f1 / c.rate) * std::tan(kPi * f2 / c.rate));
        const double centre = std::atan(w0) * c.rate / kPi;

        const double atCentre = cascadeGainDb(filter, sections, centre, c.rate);
        EXPECT_NEAR(atCentre, 0.0, 0.01) << "band " << band;
        EXPECT_NEAR(cascadeGainDb(filter, sections, f1, c.rate), kHalfPowerDb, 0.01) << "band " << band;
        EXPECT_NEAR(cascadeGainDb(filter, sections, f2, c.rate), kHalfPowerDb, 0.01) << "band " << band;
        for (int k = 0; k < sections; ++k) {
            const auto& s = filter.section[k];
            EXPECT_TRUE(std::abs(s.a2) < 1.0f && std::abs(s.a1) < 1.0f + s.a2) << "unstable: band " << band << " section " << k;
        }
        // Maximally flat: no overshoot anywhere between the edges.
        for (int k = 1; k < 50; ++k) {
            const double f = f1 * std::pow(f2 / f1, k / 50.0);
            const double g = cascadeGainDb(filter, sections, f, c.rate);
            EXPECT_LT(g, 0.01) << "band " << band << " at " << f;
            EXPECT_GT(g, kHalfPowerDb) << "band " << band << " at " << f;
        }
    });
}

std::vector<TableCase> allTableCases() {
    std::vector<TableCase> cases;
    for (float rate : kRates) {
        cases.push_back({rate, 2});
        cases.push_back({rate, 6});
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(AllRatesAndOrders, BandFilterTables, ::testing::ValuesIn(allTableCases()),
                         [](const ::testing::TestParamInfo<TableCase>& info) {
                             return std::to_string(static_cast<int>(info.param.rate)) + "Hz_order" +
                                    std::to_string(info.param.order);
                         });

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
