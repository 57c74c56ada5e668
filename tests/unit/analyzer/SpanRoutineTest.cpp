// The plain and the SSE routine: which one runs, that they agree, and that the SSE one
// leaves the processor's floating-point modes as it found them.

#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cmath>

#include "AnalyzerTestSupport.h"
#include "platform/CpuFeatures.h"

namespace {

using namespace analyzer_test;

TEST(SpanRoutine, ProcessorTestChoosesTheVectorRoutine) {
    EXPECT_EQ(SPAN().usesVectorRoutine(), platform::cpuFeatures().usable(platform::kCpuSse2));
    EXPECT_FALSE(SPAN(SPAN::Routine::scalar).usesVectorRoutine());
    EXPECT_TRUE(SPAN(SPAN::Routine::vector).usesVectorRoutine());
}

struct AgreementCase {
    float rate;
    int order;
    int mode;
};

class SpanRoutinesAgree : public ::testing::TestWithParam<AgreementCase> {};

// Noise with bursts, level jumps and stretches of silence (so that filter states decay far
// down), read out all along.
TEST_P(SpanRoutinesAgree, OnLongRandomSignals) {
    const AgreementCase c = GetParam();
    SPAN scalar(SPAN::Routine::scalar), vector(SPAN::Routine::vector);
    for (SPAN* s : {&scalar, &vector}) {
        s->setFilterOrder(c.order);
        s->setSampleRate(c.rate);
        s->setMode(c.mode);
        s->setSpeed(3);
    }
    Noise noise(987654321u);
    Noise gains(42u);
    float maxDifference = 0.0f;
    constexpr int kBlocks = 160;
    constexpr int kBlockSize = 4096;
    for (int block = 0; block < kBlocks; ++block) {
        const float r = 0.5f * (gains.next() + 1.0f);
        const float gain = block % 7 == 3 ? 0.0f : std::pow(10.0f, -4.0f * r);
        for (int n = 0; n < kBlockSize; ++n) {
            const float x = gain * noise.next();
            scalar.processSample(x);
            vector.processSample(x);
        }
        const Bars a = readBars(scalar), b = readBars(vector);
        for (int i = 0; i < SPAN::kBands; ++i) {
            ASSERT_TRUE(std::isfinite(a[i]) && std::isfinite(b[i])) << "band " << i;
            maxDifference = std::max(maxDifference, std::abs(a[i] - b[i]));
        }
    }
    EXPECT_LT(maxDifference, 1e-3f);
}

INSTANTIATE_TEST_SUITE_P(Cases, SpanRoutinesAgree,
                         ::testing::Values(AgreementCase{44100.0f, 2, 0}, AgreementCase{48000.0f, 6, 0},
                                           AgreementCase{96000.0f, 6, 1}, AgreementCase{192000.0f, 2, 1}),
                         [](const auto& info) {
                             return std::to_string(static_cast<int>(info.param.rate)) + "Hz_order" +
                                    std::to_string(info.param.order) + "_mode" + std::to_string(info.param.mode);
                         });

TEST(SpanRoutine, VectorRoutineRestoresTheFloatingPointModes) {
    constexpr unsigned kFlushModes = 0x8000u | 0x0040u;  // flush-to-zero, denormals-are-zero
    constexpr unsigned kRoundUp = 0x4000u;
    SPAN span(SPAN::Routine::vector);
    const unsigned saved = _mm_getcsr();
    Noise noise(7);
    for (unsigned modes : {saved & ~kFlushModes, (saved & ~kFlushModes) | kRoundUp, saved | kFlushModes}) {
        _mm_setcsr(modes);
        for (int n = 0; n < 100; ++n) span.processSample(noise.next());
        const unsigned after = _mm_getcsr();
        _mm_setcsr(saved);
        EXPECT_EQ(after & ~0x3Fu, modes & ~0x3Fu);  // exception flags aside
    }
}

}  // namespace
