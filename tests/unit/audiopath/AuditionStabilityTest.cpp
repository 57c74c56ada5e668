// The audition band-pass at every host rate: a band at or above Nyquist (20 kHz at 22050 Hz)
// must still give a stable section, and every section that was stable keeps its bits.

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "dsp/AuditionFilter.h"

namespace {

// Both poles inside the unit circle (the stability triangle of a two-pole recursion).
bool stable(const dsp::AuditionSection& s) { return std::fabs(s.a2) < 1.0 && std::fabs(s.a1) < 1.0 + s.a2; }

}  // namespace

TEST(AuditionStability, HeldJustBelowNyquistAndUnchangedBelowIt) {
    for (double rate : {8000.0, 22050.0, 32000.0, 44100.0, 96000.0})
        for (double f : {20.0, 1000.0, 7999.0, 11025.0, 16000.0, 20000.0})
            for (double width : {0.0, 0.5, 1.0}) {
                SCOPED_TRACE(std::to_string(rate) + " Hz, band at " + std::to_string(f));
                const dsp::AuditionSection s = dsp::AuditionSection::design(f, width, 0.5, rate);
                ASSERT_TRUE(s.active);
                EXPECT_TRUE(stable(s));
                if (f < rate / 2) {
                    // The band-pass formula, written out: what a stable design must still give.
                    const double w = 2.0 * std::numbers::pi * f / rate;
                    const double alpha = std::sin(w) / (2.0 * std::pow(20.0, 0.5 * width + 0.5));
                    EXPECT_EQ(s.a1, -2.0 * std::cos(w) / (1.0 + alpha));
                    EXPECT_EQ(s.a2, (1.0 - alpha) / (1.0 + alpha));
                } else {
                    const dsp::AuditionSection held = dsp::AuditionSection::design(0.4995 * rate, width, 0.5, rate);
                    EXPECT_NEAR(s.a1, held.a1, 1e-12);
                    EXPECT_NEAR(s.b0, held.b0, 1e-12);
                }
            }
    EXPECT_FALSE(dsp::AuditionSection::design(std::nan(""), 0.5, 0.5, 44100.0).active);
}
