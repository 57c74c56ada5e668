#include "dsp/PartitionStage.h"

#include <algorithm>

namespace dsp {

// Every partition is at least one run of 8 doubles long.
PartitionStage::PartitionStage(size_t maxDoubles)
    : sides_{{AlignedBuffer(maxDoubles), AlignedBuffer(maxDoubles)}, {AlignedBuffer(maxDoubles), AlignedBuffer(maxDoubles)}},
      terms_{std::vector<const double*>(maxDoubles / 8 + 1), std::vector<const double*>(maxDoubles / 8 + 1)} {}

void PartitionStage::configure(int half, int count) {
    half_ = half;
    count_ = std::max(count, 1);
    clear();
}

void PartitionStage::clear() {
    const size_t used = static_cast<size_t>(count_) * 2 * half_;
    for (Side& s : sides_) {
        s.spectra.clear(used);
        s.accumulated.clear(used);
    }
    current_ = 0;
    since_ = 0;
}

void PartitionStage::complete(int side, const PartitionSpectra& kernels, bool usable, const Fft& fft, SpectrumMac mac) {
    double* frame = spectrum(side, current_);
    fft.forwardAny(frame, half_);
    mac.swap(frame, half_);

    double* acc = accumulated(side, current_);
    if (usable) {
        const int terms = std::min(since_ + 1, count_);
        for (int p = 0; p < terms; ++p) {
            terms_.x[p] = spectrum(side, current_ + count_ - p);
            terms_.k[p] = kernels[p];
        }
        macSpectraPacked(mac, acc, terms_.x.data(), terms_.k.data(), terms, half_);
    } else {
        mac.swap(acc, half_);
    }
    fft.inverseAny(acc, half_);
}

void PartitionStage::advance() {
    current_ = current_ + 1 == count_ ? 0 : current_ + 1;
    since_ = std::min(since_ + 1, count_);
}

void PartitionStage::catchUp(int side, double* partial, const PartitionSpectra& kernels, bool usable, const Fft& fft,
                             SpectrumMac mac) {
    if (!usable) return;
    // Block current − d reaches the outputs current .. current − d + count − 1 through the
    // partitions d .. count − 1.
    for (int d = 1; d <= std::min(since_, count_ - 1); ++d) {
        const double* x = spectrum(side, current_ + count_ - d);
        for (int p = d; p < count_; ++p) macSpectrum(mac, accumulated(side, current_ + p - d), x, kernels[p], half_);
    }
    if (partial) {
        fft.forwardAny(partial, half_);
        mac.swap(partial, half_);
        for (int p = 0; p < count_; ++p) macSpectrum(mac, accumulated(side, current_ + p), partial, kernels[p], half_);
    }
}

}  // namespace dsp
