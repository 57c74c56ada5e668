#include <gtest/gtest.h>

#include <string>
#include <utility>

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
    const std::pair<float, const char*> cases[] = {
        {0.0f, "0.000000"},      {-12.0f, "-12.0000"}, {8.485281f, "8.485281"}, {-0.5f, "-0.50000"},
        {1234567.0f, "1234567."}, {9.9999999f, "10.00000"},  // rounding carries into a new digit
        {-9999999.0f, "-9999999"}, {1e9f, "Huge!"},         {-1e8f, "Huge!"},
    };
    for (const auto& [v, text] : cases) EXPECT_EQ(format(v), text) << v;
    EXPECT_EQ(format(24.0f, 4), "24.0");
}
