// The four operations of every family at every frame size, against the definitions (the
// inverse through the convolution the engine uses it for); the buffer layouts they share; and
// the families against each other.

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "FftTestSupport.h"
#include "dsp/AlignedBuffer.h"

namespace {

using dsp::AlignedBuffer;
using dsp::Fft;
using dsp::FftFamily;
using namespace fft_test;

constexpr double kMaxRelativeRms = 1e-13;

class FftAtSize : public ::testing::TestWithParam<std::tuple<FftFamily, int>> {
protected:
    void SetUp() override {
        if (!dsp::fftFamilyUsable(family())) GTEST_SKIP() << "this processor cannot run " << dsp::fftFamilyName(family());
    }
    FftFamily family() const { return std::get<0>(GetParam()); }
    int n() const { return std::get<1>(GetParam()); }
    Fft fft() const { return Fft(family()); }

    // Every bin for the smallest size; a few hundred random ones (and both ends) for the
    // others, where the direct sums would take minutes.
    std::vector<int> binsToCheck() const {
        std::vector<int> bins;
        if (n() == 4096) {
            for (int k = 0; k <= n(); ++k) bins.push_back(k);
        } else {
            std::mt19937 rng(n());
            std::uniform_int_distribution<int> pick(1, n() - 1);
            bins = {0, 1, 2, 3, n() / 2, n() - 1, n()};
            for (int i = 0; i < 300; ++i) bins.push_back(pick(rng));
        }
        return bins;
    }
};

TEST_P(FftAtSize, ForwardMatchesDirectDft) {
    const std::vector<double> x = randomSignal(2 * n(), 11);
    AlignedBuffer buffer(2 * n());
    writeSignal(x, n(), buffer.data());
    fft().forward(buffer.data(), n());

    RelativeRms error;
    for (int k : binsToCheck()) {
        const std::complex<double> got = readBin(buffer.data(), n(), k);
        error.add(std::complex<long double>(got.real(), got.imag()), dftBin(x, k));
    }
    EXPECT_LE(error.value(), kMaxRelativeRms);
}

// inverse(multiply(forward(x), scale(forward(k)))) against the circular convolution summed
// directly, which also pins the scale of the real bins against the others. The short signal
// sits across the buffer's end so that the sum wraps; the kernel has the engine's N + 1 taps.
TEST_P(FftAtSize, ProductOfSpectraIsCircularConvolution) {
    const int two = 2 * n();
    const int length = 300, start = two - 150;
    const std::vector<double> shortSignal = randomSignal(length, 14);
    const std::vector<double> taps = randomSignal(n() + 1, 15);
    std::vector<double> x(two, 0.0), k(two, 0.0);
    for (int i = 0; i < length; ++i) x[(start + i) % two] = shortSignal[i];
    for (int i = 0; i <= n(); ++i) k[i] = taps[i];

    AlignedBuffer data(two), kernel(two);
    writeSignal(x, n(), data.data());
    writeSignal(k, n(), kernel.data());
    const Fft f = fft();
    f.forward(kernel.data(), n());
    f.scale(kernel.data(), n());
    f.forward(data.data(), n());
    f.multiply(data.data(), kernel.data(), n());
    f.inverse(data.data(), n());

    std::vector<long double> direct(two, 0.0L);
    for (int i = 0; i < length; ++i)
        for (int j = 0; j <= n(); ++j) direct[(start + i + j) % two] += static_cast<long double>(shortSignal[i]) * taps[j];
    RelativeRms error;
    for (int t = 0; t < two; ++t) error.add(data[dsp::sampleEntry(n(), t)], direct[t]);
    EXPECT_LE(error.value(), kMaxRelativeRms);
}

INSTANTIATE_TEST_SUITE_P(EveryFamilyAndSize, FftAtSize,
                         ::testing::Combine(::testing::ValuesIn(allFamilies()), ::testing::ValuesIn(dsp::kFftSizes)),
                         [](const auto& info) {
                             return std::string(dsp::fftFamilyName(std::get<0>(info.param))) + "_" +
                                    std::to_string(std::get<1>(info.param));
                         });

// The transforms of any power-of-two size that the partitioned convolution uses: every bin of
// the forward transform against the direct sums, and scale-then-inverse giving the signal back.
TEST(FftAnySize, ForwardMatchesDirectDftAndInverseUndoesIt) {
    for (FftFamily family : allFamilies()) {
        if (!dsp::fftFamilyUsable(family)) continue;
        const Fft f(family);
        for (int m = 1; m <= 2048; m *= 2) {
            SCOPED_TRACE(std::string(dsp::fftFamilyName(family)) + " M = " + std::to_string(m));
            const std::vector<double> x = randomSignal(2 * m, 31 + m);
            AlignedBuffer buffer(2 * m);
            writeSignal(x, m, buffer.data());
            f.forwardAny(buffer.data(), m);
            RelativeRms error;
            for (int k = 0; k <= m; ++k) {
                const std::complex<double> got = readBin(buffer.data(), m, k);
                error.add(std::complex<long double>(got.real(), got.imag()), dftBin(x, k));
            }
            EXPECT_LE(error.value(), kMaxRelativeRms);
            buffer[0] /= 2.0 * m, buffer[1] /= 2.0 * m;
            for (int e = 2; e < 2 * m; ++e) buffer[e] /= m;
            f.inverseAny(buffer.data(), m);
            for (int t = 0; t < 2 * m; ++t) ASSERT_NEAR(buffer[dsp::sampleEntry(m, t)], x[t], 1e-14) << t;
        }
    }
}

TEST(FftDispatch, UnknownSizeLeavesTheBufferUntouched) {
    const int entries = 2 * dsp::kMaxFftSize + 8;
    const std::vector<double> original = randomSignal(entries, 21);
    AlignedBuffer buffer(entries);
    for (FftFamily family : allFamilies()) {
        const Fft f(family);
        for (int n : {0, -4096, 1, 2048, 4095, 4097, 12288, 65536}) {
            for (int e = 0; e < entries; ++e) buffer[e] = original[e];
            f.forward(buffer.data(), n);
            f.inverse(buffer.data(), n);
            f.scale(buffer.data(), n);
            f.multiply(buffer.data(), original.data(), n);
            if (dsp::anyFftSizeIndex(n) < 0) f.forwardAny(buffer.data(), n), f.inverseAny(buffer.data(), n);
            EXPECT_EQ(std::memcmp(buffer.data(), original.data(), sizeof(double) * entries), 0) << "N = " << n;
        }
    }
}

// Every usable family gives the plain family's numbers, bit for bit, for each operation.
TEST(FftFamilies, AgreeBitForBit) {
    const Fft plain(FftFamily::Scalar);
    for (FftFamily family : allFamilies()) {
        if (family == FftFamily::Scalar || !dsp::fftFamilyUsable(family)) continue;
        const Fft simd(family);
        for (int n : dsp::kFftSizes) {
            const std::vector<double> x = randomSignal(2 * n, 22), k = randomSignal(2 * n, 23);
            AlignedBuffer a(2 * n), b(2 * n), ka(2 * n), kb(2 * n);
            for (int e = 0; e < 2 * n; ++e) a[e] = b[e] = x[e], ka[e] = kb[e] = k[e];
            const auto same = [&](const char* step) {
                EXPECT_EQ(std::memcmp(a.data(), b.data(), sizeof(double) * 2 * n), 0)
                    << dsp::fftFamilyName(family) << " N = " << n << " after " << step;
            };
            plain.forward(a.data(), n), simd.forward(b.data(), n), same("forward");
            plain.forward(ka.data(), n), simd.forward(kb.data(), n);
            plain.scale(ka.data(), n), simd.scale(kb.data(), n);
            plain.multiply(a.data(), ka.data(), n), simd.multiply(b.data(), kb.data(), n), same("multiply");
            plain.scale(a.data(), n), simd.scale(b.data(), n), same("scale");
            plain.inverse(a.data(), n), simd.inverse(b.data(), n), same("inverse");
        }
    }
}

TEST(FftLayout, FrameSizesSampleEntriesAndBinPositions) {
    for (int n : {0, 1, 2048, 4095, 65536, -4096}) EXPECT_EQ(dsp::fftSizeIndex(n), -1) << n;
    for (int i = 0; i < 4; ++i) EXPECT_EQ(dsp::fftSizeIndex(4096 << i), i);
    // Half-interleaved: samples 0..N-1 in the even entries, N..2N-1 in the odd ones.
    EXPECT_EQ(dsp::sampleEntry(4096, 1), 2);
    EXPECT_EQ(dsp::sampleEntry(4096, 4096), 1);
    EXPECT_EQ(dsp::sampleEntry(4096, 8191), 8191);
    // Every pair 1..N-1 holds exactly one bin 1..N-1, and binOfSpectrumPair undoes spectrumPairOfBin.
    for (int n = 2; n <= 32768; n *= 2) {
        std::vector<int> binAt(n, 0);
        for (int k = 1; k < n; ++k) {
            const int p = dsp::spectrumPairOfBin(n, k);
            ASSERT_TRUE(p >= 1 && p < n && binAt[p] == 0) << "N = " << n << " bin " << k << " at pair " << p;
            binAt[p] = k;
            ASSERT_EQ(dsp::binOfSpectrumPair(n, p), k) << "N = " << n << " pair " << p;
        }
    }
}

}  // namespace
