#pragma once
// Where things are in a transform buffer of 2N doubles (N = 4096, 8192, 16384 or 32768).
//
// Time domain, the half-interleaved layout: entry 2t holds sample t and entry 2t + 1 holds
// sample N + t, t = 0..N − 1. A signal shorter than N samples occupies the even entries only.
//
// Frequency domain, the packed spectrum of the 2N real samples: entries 0 and 1 hold the real
// bins 0 and N; every further pair (2p, 2p + 1) holds the real and imaginary part of one bin
// 1..N − 1, in the order the transform leaves them (no reordering pass ever runs; the inverse
// takes the same order). spectrumPairOfBin() tells where a bin is.

namespace dsp {

inline constexpr int kFftSizeCount = 4;
inline constexpr int kFftSizes[kFftSizeCount] = {4096, 8192, 16384, 32768};
inline constexpr int kMinFftSize = 4096;
inline constexpr int kMaxFftSize = 32768;

// 0..3 for the four frame sizes, −1 for any other value.
constexpr int fftSizeIndex(int n) {
    switch (n) {
        case 4096: return 0;
        case 8192: return 1;
        case 16384: return 2;
        case 32768: return 3;
        default: return -1;
    }
}

// The partitioned convolution's transforms: 2M real samples for any power of two
// M = 1 .. kMaxFftSize, in the same layout. Index 0..15 is log2 M, −1 any other value.
inline constexpr int kAnyFftSizeCount = 16;
constexpr int anyFftSizeIndex(int m) {
    if (m < 1 || m > kMaxFftSize || (m & (m - 1)) != 0) return -1;
    int index = 0;
    while ((1 << index) < m) ++index;
    return index;
}

// Entry of sample t (0 ≤ t < 2N) in the half-interleaved layout.
constexpr int sampleEntry(int n, int t) { return t < n ? 2 * t : 2 * (t - n) + 1; }

// The pair 1..N − 1 that holds bin k (1 ≤ k ≤ N − 1) of the packed spectrum of 2N samples.
// Valid for every power of two N ≥ 2, not only the frame sizes.
int spectrumPairOfBin(int n, int k);

// The bin 1..N − 1 held by pair p (1 ≤ p ≤ N − 1); the inverse of spectrumPairOfBin().
int binOfSpectrumPair(int n, int p);

}  // namespace dsp
