#include "dsp/FftLayout.h"

namespace dsp {
namespace {

int bitReversed(int value, int count) {  // count: a power of two
    int reversed = 0;
    for (int bit = 1; bit < count; bit <<= 1) {
        reversed = (reversed << 1) | (value & 1);
        value >>= 1;
    }
    return reversed;
}

}  // namespace

// The even bins of 2M samples are the bins of the real transform of M samples in the first
// half of the pairs; the odd bins come from the complex transform of M/2 points in the
// second half, which leaves output j (= bin 4j + 1, or the mirror image of bin 4j' + 3 with
// j = M/2 − 1 − j') at position bit-reverse(j).
int spectrumPairOfBin(int n, int k) {
    int m = n;
    while ((k & 1) == 0) {
        k >>= 1;
        m >>= 1;
    }
    const int half = m / 2;
    const int output = (k & 3) == 1 ? (k - 1) / 4 : half - 1 - (k - 3) / 4;
    return half + bitReversed(output, half);
}

int binOfSpectrumPair(int n, int p) {
    int m = n;
    int evenFactor = 1;
    while (p < m / 2) {  // in the first half: an even bin of the next smaller transform
        m >>= 1;
        evenFactor <<= 1;
    }
    const int half = m / 2;
    const int output = bitReversed(p - half, half);
    const int odd = output < half / 2 || half == 1 ? 4 * output + 1 : 4 * (half - 1 - output) + 3;
    return odd * evenFactor;
}

}  // namespace dsp
