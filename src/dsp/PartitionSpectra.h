#pragma once
// Cuts a kernel of N + 1 taps into the partitions of a plan (PartitionPlan.h) and turns each
// into a packed spectrum scaled for the inverse transform, in the multiply-accumulate layout
// (SpectrumMac.h), ready for the partitioned convolution.

#include "dsp/Fft.h"
#include "dsp/PartitionPlan.h"

namespace dsp {

// kernel: the N + 1 taps in the half-interleaved layout of 2N entries (tap t at entry
// sampleEntry(N, t)); spectra: plan.spectrumDoubles() entries, head partitions first.
void partitionKernel(const double* kernel, const PartitionPlan& plan, const Fft& fft, double* spectra);

}  // namespace dsp
