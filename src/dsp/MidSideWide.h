#pragma once
// The encoder of the minimum-phase path over a whole stretch on 512-bit registers, eight host
// samples at a time: each sample made finite (finiteOrZero), then A = L + m·R and
// B = R + m·(−L), rounded as MidSide::encode rounds them, into interleaved (A, B) pairs.
// Only where the processor has AVX-512 (CascadeWidth::Avx512).

namespace dsp {

void encodePairsAvx512(const float* left, const float* right, int count, double m, double* pairs);
void encodePairsAvx512(const double* left, const double* right, int count, double m, double* pairs);

}  // namespace dsp
