#include <gtest/gtest.h>

#include "dsp/CompensationDelay.h"

namespace {

// Feeds an impulse on side A at 0 and a negative one on side B at 2; returns where each
// comes out (−1: never, −2: more than once or altered).
void echoes(dsp::CompensationDelay& d, int length, int& atA, int& atB) {
    atA = atB = -1;
    for (int n = 0; n < length; ++n) {
        double a = n == 0 ? 1.0 : 0.0, b = n == 2 ? -1.0 : 0.0;
        d.process(a, b);
        if (a != 0.0) atA = (atA == -1 && a == 1.0) ? n : -2;
        if (b != 0.0) atB = (atB == -1 && b == -1.0) ? n : -2;
    }
}

TEST(CompensationDelay, DelaysBothSidesByExactlyD) {
    dsp::CompensationDelay d;
    EXPECT_EQ(d.maxDelay(), 98554);
    for (int delay : {0, 1, 2, 63, 2559, 24638, 98554}) {
        d.clear();
        d.setDelay(delay);
        int a, b;
        echoes(d, delay + 10, a, b);
        EXPECT_EQ(a, delay);
        EXPECT_EQ(b, delay + 2);
    }
    d.setDelay(200000);
    EXPECT_EQ(d.delay(), 98554);
    d.setDelay(-1);
    EXPECT_EQ(d.delay(), 0);
}

TEST(CompensationDelay, ShorteningMidStreamSettlesOnTheNewDelay) {
    dsp::CompensationDelay d(1000);
    d.setDelay(900);
    for (int n = 0; n < 950; ++n) {  // leaves the index beyond the new, shorter ring
        double a = 0.5, b = 0.25;
        d.process(a, b);
    }
    d.setDelay(10);
    for (int n = 0; n < 11; ++n) {
        double a = 0.0, b = 0.0;
        d.process(a, b);
    }
    int a, b;
    echoes(d, 30, a, b);
    EXPECT_EQ(a, 10);
    EXPECT_EQ(b, 12);
}

}  // namespace
