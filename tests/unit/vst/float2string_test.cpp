#include <gtest/gtest.h>

#include <string>

#include "vst/AudioEffect.h"

namespace {

struct NullEffect : AudioEffect {
    NullEffect() : AudioEffect(nullptr, 1, 1) {}
    void processReplacing(float**, float**, VstInt32) override {}
};

std::string format(float v, int maxLen = 12) {
    NullEffect fx;
    char text[32];
    std::fill(std::begin(text), std::end(text), 'x');
    fx.float2string(v, text, maxLen);
    return text;
}

}  // namespace

TEST(Float2String, EightCharactersWithTheFractionFillingTheRest) {
    EXPECT_EQ(format(0.0f), "0.000000");
    EXPECT_EQ(format(-12.0f), "-12.0000");
    EXPECT_EQ(format(24.0f), "24.00000");
    EXPECT_EQ(format(8.485281f), "8.485281");
    EXPECT_EQ(format(-0.5f), "-0.50000");
    EXPECT_EQ(format(1234567.0f), "1234567.");
    EXPECT_EQ(format(9.9999999f), "10.00000");  // rounding carries into a new digit
}

TEST(Float2String, TooLargeAndLimited) {
    EXPECT_EQ(format(1e9f), "Huge!");
    EXPECT_EQ(format(-1e8f), "Huge!");
    EXPECT_EQ(format(-9999999.0f), "-9999999");
    EXPECT_EQ(format(24.0f, 4), "24.0");
}
