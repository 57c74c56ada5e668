// The spectrum multiply-accumulate of every family against complex products formed bin by bin
// from packed spectra (bins 0 and M real, at entries 0 and 1): the sum left in the
// multiply-accumulate layout and the sum stored packed, and each family's layout swap.

#include <gtest/gtest.h>

#include <complex>
#include <random>
#include <string>
#include <vector>

#include "dsp/AlignedBuffer.h"
#include "dsp/SpectrumMac.h"

namespace {

using Complex = std::complex<double>;

// Bin p of a packed spectrum of 2·half entries.
Complex bin(const std::vector<double>& packed, int p, int half) {
    if (p == 0) return packed[0];
    if (p == half) return packed[1];
    return {packed[2 * p], packed[2 * p + 1]};
}

std::vector<double> randomPacked(int half, std::mt19937& rng) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<double> s(2 * static_cast<size_t>(half));
    for (double& v : s) v = u(rng);
    return s;
}

void toMacLayout(const std::vector<double>& packed, double* out) {
    for (size_t e = 0; e < packed.size(); ++e) out[dsp::macLayoutIndex(static_cast<int>(e))] = packed[e];
}

TEST(SpectrumMac, EveryFamilySumsTheComplexProductsInEitherLayout) {
    const dsp::MacFamily families[] = {dsp::MacFamily::Plain, dsp::MacFamily::Sse2, dsp::MacFamily::Avx2Fma,
                                       dsp::MacFamily::Avx512};
    for (const dsp::MacFamily family : families)
        for (const int half : {4, 8, 64})
            for (const int terms : {1, 3})
                for (const bool packed : {false, true}) {
                    SCOPED_TRACE("family " + std::to_string(static_cast<int>(family)) + ", M " + std::to_string(half) +
                                 ", terms " + std::to_string(terms) + (packed ? ", packed" : ""));
                    const dsp::SpectrumMac mac = dsp::spectrumMac(family);
                    std::mt19937 rng(half * 7 + terms);
                    const size_t entries = 2 * static_cast<size_t>(half);
                    const std::vector<double> acc0 = randomPacked(half, rng);
                    std::vector<std::vector<double>> x, k;
                    dsp::AlignedBuffer spectra(2 * terms * entries), acc(entries);
                    std::vector<const double*> xs, ks;
                    for (int t = 0; t < terms; ++t) {
                        x.push_back(randomPacked(half, rng));
                        k.push_back(randomPacked(half, rng));
                        double* xt = spectra.data() + 2 * t * entries;
                        toMacLayout(x.back(), xt);
                        toMacLayout(k.back(), xt + entries);
                        xs.push_back(xt);
                        ks.push_back(xt + entries);
                    }
                    toMacLayout(acc0, acc.data());
                    if (packed) dsp::macSpectraPacked(mac, acc.data(), xs.data(), ks.data(), terms, half);
                    else dsp::macSpectra(mac, acc.data(), xs.data(), ks.data(), terms, half);

                    std::vector<double> result(entries);
                    for (size_t e = 0; e < entries; ++e)
                        result[e] = acc[packed ? e : static_cast<size_t>(dsp::macLayoutIndex(static_cast<int>(e)))];
                    for (int p = 0; p <= half; ++p) {
                        Complex expected = bin(acc0, p, half);
                        for (int t = 0; t < terms; ++t) expected += bin(x[t], p, half) * bin(k[t], p, half);
                        EXPECT_NEAR(std::abs(bin(result, p, half) - expected), 0.0, 1e-14) << "bin " << p;
                    }

                    // The swap takes the packed layout to the multiply-accumulate one and back.
                    dsp::AlignedBuffer swapped(entries);
                    std::copy(acc0.begin(), acc0.end(), swapped.data());
                    mac.swap(swapped.data(), half);
                    for (size_t e = 0; e < entries; ++e)
                        ASSERT_EQ(swapped[dsp::macLayoutIndex(static_cast<int>(e))], acc0[e]) << "entry " << e;
                    mac.swap(swapped.data(), half);
                    for (size_t e = 0; e < entries; ++e) ASSERT_EQ(swapped[e], acc0[e]) << "entry " << e;
                }
}

}  // namespace
