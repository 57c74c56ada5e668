// Value texts at the ends of their ranges and typed text read back, against hand-worked
// figures: f = 20·10^(3v) Hz, gain (v − 0.5)·48 dB, Q 20^(2v − 1) for a peak else
// 2^(2v − 1.5), output (v − 0.5)·24 dB.

#include <gtest/gtest.h>

#include <cmath>

#include "gui/controls/ValueText.h"

namespace {

using namespace valuetext;
constexpr int kPeaking = 3, kLowShelf = 2, kBypassedPeak = 10, kBypassedLowCut24 = 8;

struct FormatCase {
    Kind kind;
    float value;
    int type;
    const char* text;
};
constexpr FormatCase kFormatCases[] = {
    {kFrequency, 0.0f, kPeaking, "20"},     {kFrequency, 1.0f, kPeaking, "20000"},
    {kFrequency, 0.5f, kPeaking, "632"},    {kGain, 0.0f, kPeaking, "-24.00"},
    {kGain, 0.5f, kPeaking, "0.00"},        {kGain, 1.0f, kPeaking, "24.00"},
    {kQ, 0.0f, kPeaking, "0.05"},           {kQ, 1.0f, kBypassedPeak, "20.00"},
    {kQ, 0.5f, kPeaking, "1.00"},           {kQ, 0.0f, kLowShelf, "0.35"},
    {kQ, 1.0f, kLowShelf, "1.41"},          {kQ, 0.5f, kBypassedLowCut24, "0.71"},
    {kOutput, 0.0f, 0, "-12.0"},            {kOutput, 0.5f, 0, "+0.0"},
    {kOutput, 1.0f, 0, "+12.0"},
};

TEST(ValueText, FormatsTheEndsAndMiddlesOfEachRange) {
    for (const FormatCase& c : kFormatCases)
        EXPECT_EQ(format(c.kind, c.value, c.type), c.text) << c.kind << " " << c.value << " type " << c.type;
}

struct ParseCase {
    Kind kind;
    const char* text;
    int type;
    double expected;  // < 0: refused
};
const ParseCase kParseCases[] = {
    {kFrequency, "1000", kPeaking, std::log10(50.0) / 3},
    {kFrequency, "1k", kPeaking, std::log10(50.0) / 3},
    {kFrequency, "1.5 kHz", kPeaking, std::log10(75.0) / 3},
    {kFrequency, " 200hz ", kPeaking, 1.0 / 3},
    {kFrequency, "5", kPeaking, 0.0},        // below 20 Hz: held at the end
    {kFrequency, "0", kPeaking, -1},
    {kFrequency, "1 dB", kPeaking, -1},
    {kFrequency, "abc", kPeaking, -1},
    {kFrequency, "", kPeaking, -1},
    {kFrequency, "inf", kPeaking, -1},
    {kFrequency, "nan", kPeaking, -1},
    {kGain, "-3 dB", kPeaking, 0.4375},
    {kGain, "+2.5", kPeaking, 0.5 + 2.5 / 48},
    {kGain, "99", kPeaking, 1.0},
    {kGain, "1k", kPeaking, -1},
    {kGain, "3 Hz", kPeaking, -1},
    {kQ, "0.7", kLowShelf, (std::log2(0.7) + 1.5) / 2},
    {kQ, "1", kPeaking, 0.5},
    {kQ, "0", kPeaking, -1},
    {kQ, "2 dB", kPeaking, -1},
    {kOutput, "-3 dB", 0, 0.375},
    {kOutput, "+2.5", 0, 0.5 + 2.5 / 24},
    {kOutput, "1e999", 0, -1},
};

TEST(ValueText, ReadsTypedTextInDisplayUnits) {
    for (const ParseCase& c : kParseCases) {
        const std::optional<float> v = parse(c.kind, c.text, c.type);
        if (c.expected < 0) {
            EXPECT_FALSE(v) << c.text << " gave " << v.value_or(-1);
        } else {
            ASSERT_TRUE(v) << c.text;
            EXPECT_NEAR(*v, c.expected, 1e-6) << c.text;
        }
    }
}

TEST(ValueText, ATypedValueReadsBackAsItsOwnText) {
    for (float v : {0.0f, 0.13f, 0.5f, 0.77f, 1.0f})
        for (Kind kind : {kFrequency, kGain, kQ, kOutput}) {
            const std::string text = format(kind, v, kPeaking);
            const std::optional<float> back = parse(kind, text, kPeaking);
            ASSERT_TRUE(back) << text;
            EXPECT_EQ(format(kind, *back, kPeaking), text) << kind << " " << v;
        }
}

}  // namespace
