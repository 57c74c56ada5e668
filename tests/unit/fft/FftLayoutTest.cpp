// The buffer layouts: frame sizes, sample entries and where each bin of a packed spectrum is.

#include <gtest/gtest.h>

#include <vector>

#include "dsp/FftLayout.h"

namespace {

TEST(FftLayout, KnowsTheFourFrameSizesOnly) {
    EXPECT_EQ(dsp::fftSizeIndex(4096), 0);
    EXPECT_EQ(dsp::fftSizeIndex(8192), 1);
    EXPECT_EQ(dsp::fftSizeIndex(16384), 2);
    EXPECT_EQ(dsp::fftSizeIndex(32768), 3);
    for (int n : {0, 1, 2048, 4095, 65536, -4096}) EXPECT_EQ(dsp::fftSizeIndex(n), -1) << n;
}

TEST(FftLayout, HalfInterleavesTheSamples) {
    EXPECT_EQ(dsp::sampleEntry(4096, 0), 0);
    EXPECT_EQ(dsp::sampleEntry(4096, 1), 2);
    EXPECT_EQ(dsp::sampleEntry(4096, 4095), 8190);
    EXPECT_EQ(dsp::sampleEntry(4096, 4096), 1);
    EXPECT_EQ(dsp::sampleEntry(4096, 8191), 8191);
}

// Every pair 1..N − 1 holds exactly one bin 1..N − 1, and binOfSpectrumPair undoes
// spectrumPairOfBin (the transform tests check that the bins are really there).
TEST(FftLayout, BinPositionsAreAPermutation) {
    for (int n = 2; n <= 32768; n *= 2) {
        std::vector<int> binAt(n, 0);
        for (int k = 1; k < n; ++k) {
            const int p = dsp::spectrumPairOfBin(n, k);
            ASSERT_GE(p, 1) << "N = " << n << " bin " << k;
            ASSERT_LT(p, n) << "N = " << n << " bin " << k;
            ASSERT_EQ(binAt[p], 0) << "N = " << n << " pair " << p << " twice";
            binAt[p] = k;
            ASSERT_EQ(dsp::binOfSpectrumPair(n, p), k) << "N = " << n << " pair " << p;
        }
    }
}

// The recursion's order for eight samples: the first half holds the even bins (bin 2 at pair
// 1), the second half the odd ones (bin 1, then bin 3).
TEST(FftLayout, SmallOrderIsTheRecursionsOrder) {
    EXPECT_EQ(dsp::spectrumPairOfBin(4, 2), 1);
    EXPECT_EQ(dsp::spectrumPairOfBin(4, 1), 2);
    EXPECT_EQ(dsp::spectrumPairOfBin(4, 3), 3);
    EXPECT_EQ(dsp::spectrumPairOfBin(4096, 2048), 1);  // bin N/2 is always next to the real bins
}

}  // namespace
