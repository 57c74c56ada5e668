// The partitioned convolver on the audio thread while another thread keeps publishing kernel
// sets: whatever moment each set arrives, the output equals the reference block convolution
// run with the sets in the order and at the hops the convolver took them. Run under
// ThreadSanitizer.

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <random>
#include <thread>
#include <vector>

#include "support/PublishedKernels.h"
#include "support/ReferenceConvolver.h"
#include "unit/fft/FftTestSupport.h"

namespace {

constexpr int kN = 256;

// Three kernel pairs told apart by their first tap.
std::vector<double> kernel(int which, int side) {
    std::mt19937 rng(10 * which + side);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<double> g(kN + 1);
    for (int k = 0; k <= kN / 2; ++k) g[k] = g[kN - k] = u(rng) / std::sqrt(kN + 1.0);
    g[0] = g[kN] = 0.01 * (which + 1);
    return g;
}

// The exchange's reader side, noting which set was taken at which input sample.
class RecordingKernels final : public dsp::PathConvolutionOps {
public:
    explicit RecordingKernels(testsupport::PublishedKernels& inner) : inner_(inner) {}
    bool newerKernelsWaiting() override { return inner_.newerKernelsWaiting(); }
    const dsp::KernelSet& takeNewestKernels() override {
        const dsp::KernelSet& set = inner_.takeNewestKernels();
        taken.emplace_back(sample, set.frameSize() == 0 ? -1 : identify(set));
        return set;
    }
    int sample = 0;
    std::vector<std::pair<int, int>> taken;  // (input sample, kernel pair or −1 for none)

private:
    // The sum of all head partitions' real bin 0 is the sum of the head's taps.
    static int identify(const dsp::KernelSet& set) {
        const dsp::PartitionPlan& p = set.plan();
        double dc = 0.0;
        for (int q = 0; q < p.headCount; ++q) dc += set.headPartition(0, q)[0] * 2 * p.headHalf;
        for (int q = 0; q < p.tailCount; ++q) dc += set.tailPartition(0, q)[0] * 2 * p.tailHalf;
        int best = 0;
        double bestError = 1e300;
        for (int which = 0; which < 3; ++which) {
            double sum = 0.0;
            for (double g : kernel(which, 0)) sum += g;
            if (std::fabs(sum - dc) < bestError) bestError = std::fabs(sum - dc), best = which;
        }
        return best;
    }
    testsupport::PublishedKernels& inner_;
};

TEST(PartitionedSwapThreaded, OutputEqualsTheReferenceWithTheSetsAsTaken) {
    for (int hop : {3, 64}) {
        dsp::PathConvolver convolver(kN);
        convolver.configure(kN, hop);
        const dsp::PartitionPlan plan = convolver.plan();
        testsupport::PublishedKernels published(kN);
        RecordingKernels recording(published);

        const int length = 30000;
        const auto xa = fft_test::randomSignal(length, 1), xb = fft_test::randomSignal(length, 2);
        std::vector<double> ya(length), yb(length);
        std::atomic<bool> done{false};
        std::thread builder([&] {
            for (int i = 0; !done.load(std::memory_order_relaxed); ++i) {
                published.publish(plan, kernel(i % 3, 0), kernel(i % 3, 1));
                std::this_thread::sleep_for(std::chrono::microseconds(50 + 37 * (i % 5)));
            }
        });
        for (int i = 0; i < length; ++i) {
            if (i % 32 == 0) std::this_thread::sleep_for(std::chrono::microseconds(20));  // a host's pace
            recording.sample = i;
            double a = xa[i], b = xb[i];
            convolver.process(a, b, recording);
            ya[i] = a, yb[i] = b;
        }
        done = true;
        builder.join();

        testsupport::ReferenceConvolver reference(kN, hop);
        testsupport::ReferenceKernels kernels(kN);
        kernels.silenced = true;
        size_t next = 0;
        for (int i = 0; i < length; ++i) {
            for (; next < recording.taken.size() && recording.taken[next].first == i; ++next) {
                const int which = recording.taken[next].second;
                if (which < 0) kernels.silenced = true;
                else kernels.set(kernel(which, 0), kernel(which, 1));
            }
            double a = xa[i], b = xb[i];
            reference.process(a, b, kernels);
            ASSERT_NEAR(ya[i], a, 1e-9) << "hop " << hop << " sample " << i;
            ASSERT_NEAR(yb[i], b, 1e-9) << "hop " << hop << " sample " << i;
        }
        EXPECT_GT(recording.taken.size(), 3u) << "the sets must change while audio runs";
    }
}

}  // namespace
