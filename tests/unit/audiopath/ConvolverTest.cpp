// The block convolution's bookkeeping (frame fill, hop, overlap-add, delay), with the
// transforms left as the identity and the kernel multiply done as a direct circular
// convolution: whatever the real transforms do, forward·multiply·inverse must amount to that.

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "dsp/PathConvolver.h"

namespace {

class DirectConvolution : public dsp::PathConvolutionOps {
public:
    DirectConvolution(int n, std::vector<double> a, std::vector<double> b) : n_(n), kernel_{std::move(a), std::move(b)} {}
    void forward(double*, int) override {}
    void inverse(double*, int) override {}
    bool multiplyByKernel(int side, double* frame, int frameSize) override {
        if (failNext || frameSize != n_) {
            failNext = false;
            return false;
        }
        const int size = 2 * n_;
        auto at = [&](int t) -> double& { return t < n_ ? frame[2 * t] : frame[2 * (t - n_) + 1]; };
        std::vector<double> y(size, 0.0);
        for (int t = 0; t < size; ++t)
            for (size_t k = 0; k < kernel_[side].size(); ++k) y[(t + k) % size] += at(t) * kernel_[side][k];
        for (int t = 0; t < size; ++t) at(t) = y[t];
        return true;
    }
    bool failNext = false;

private:
    int n_;
    std::vector<double> kernel_[2];
};

std::vector<double> symmetricKernel(int n, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<double> g(n + 1);
    for (int k = 0; k <= n / 2; ++k) g[k] = g[n - k] = u(rng);
    return g;
}

TEST(PathConvolver, OverlapAddGivesEachSidesLinearConvolutionHopMinusOneSamplesLate) {
    const int n = 32;
    for (int hop : {32, 16, 7, 1}) {
        const auto ga = symmetricKernel(n, 1), gb = symmetricKernel(n, 2);
        DirectConvolution ops(n, ga, gb);
        dsp::PathConvolver c(64);
        c.configure(n, hop);
        EXPECT_EQ(c.delay(), hop + n / 2 - 1);  // hop − 1, plus the kernel's centre
        std::mt19937 rng(hop);
        std::uniform_real_distribution<double> u(-1.0, 1.0);
        std::vector<double> xa(300), xb(300);
        for (int i = 0; i < 300; ++i) xa[i] = u(rng), xb[i] = u(rng);
        for (int i = 0; i < 300; ++i) {
            double a = xa[i], b = xb[i];
            c.process(a, b, ops);
            double ea = 0.0, eb = 0.0;
            for (int k = 0, m = i - (hop - 1); k <= n && m - k >= 0; ++k) {
                ea += ga[k] * xa[m - k];
                eb += gb[k] * xb[m - k];
            }
            ASSERT_NEAR(a, ea, 1e-12) << "hop " << hop << " at " << i;
            ASSERT_NEAR(b, eb, 1e-12) << "hop " << hop << " at " << i;
        }
    }
}

TEST(PathConvolver, AMissingKernelSilencesThatBlockAndClearRestartsFromSilence) {
    const int n = 16, hop = 8;
    std::vector<double> centre(n + 1, 0.0);
    centre[n / 2] = 1.0;
    DirectConvolution ops(n, centre, centre);
    dsp::PathConvolver c(16);
    c.configure(n, hop);
    const int d = c.delay();
    for (int i = 0; i < 200; ++i) {
        if (i == 8 * hop - 1) ops.failNext = true;  // side A of the block of inputs 56..63
        double a = 1.0, b = 1.0;
        c.process(a, b, ops);
        const bool lost = i - d >= 7 * hop && i - d < 8 * hop;
        ASSERT_EQ(a, i < d || lost ? 0.0 : 1.0) << i;
        ASSERT_EQ(b, i < d ? 0.0 : 1.0) << i;
    }
    EXPECT_EQ(c.silencedBlocks(), 1u);
    c.clear();
    for (int i = 0; i < 100; ++i) {
        double a = 0.0, b = 0.0;
        c.process(a, b, ops);
        ASSERT_EQ(a, 0.0);
        ASSERT_EQ(b, 0.0);
    }
}

}  // namespace
