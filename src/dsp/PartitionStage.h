#pragma once
// One stage of the partitioned convolution (the head or the tail): blocks of one length, each
// transformed once, convolved with partitions of the same length through transforms of 2M
// points, for both sides.
//
// The output spectrum of block c is Σ_p X[c − p]·K_p over the spectra X of the blocks kept in
// a frequency-domain delay line, with the partitions K_p of the set held now. That is the rule
// "every block with the set held when it completed" as long as the set has not changed since
// block c − p; the blocks from before a change are therefore settled when it happens: each
// one's products with the set they belong to are added, once, into the accumulated spectra of
// the outputs still to come (catchUp), and from then on the sum runs only over the blocks
// since the change. A change costs up to P²/2 products once; every other block P products that
// accumulate in registers, reading the delay line and the partitions only.

#include <cstddef>
#include <vector>

#include "dsp/AlignedBuffer.h"
#include "dsp/EqTypes.h"
#include "dsp/Fft.h"
#include "dsp/SpectrumMac.h"

namespace dsp {

// Where one side's partitions are in a kernel set: the first, and the distance between two.
struct PartitionSpectra {
    const double* first;
    size_t stride;
    const double* operator[](int p) const { return first + p * stride; }
};

class PartitionStage {
public:

    // Buffers for up to `maxDoubles` doubles of spectra per side (count·2M of any plan).
    explicit PartitionStage(size_t maxDoubles);

    // Transforms of 2·half points, `count` partitions. Clears the stage.
    void configure(int half, int count);
    void clear();

    // Where block c's time signal of 2M entries goes before complete(): the delay line's slot
    // for c, which it is transformed in.
    double* frame(int side) { return spectrum(side, current_); }
    // Block c (in frame(side)) is complete: its spectrum joins the delay line, and c's output,
    // summed with `kernels` when `usable`, is transformed back into the accumulated spectrum of
    // c, which output(side) then shows until advance(). Whoever reads it leaves it silent: the
    // slot collects the sums of the block count blocks later (clearing it while reading saves
    // a pass of its own).
    void complete(int side, const PartitionSpectra& kernels, bool usable, const Fft& fft, SpectrumMac mac);
    double* output(int side) { return accumulated(side, current_); }
    // After both sides.
    void advance();

    // A new set is about to be held: the blocks since the last change add their products with
    // the set they belong to (`kernels`, when `usable`) to every output still to come, and so
    // does `partial` (a time signal of 2M entries, destroyed), the part of the current block
    // that belongs to that set (nullptr: none). Call for both sides, then changed().
    void catchUp(int side, double* partial, const PartitionSpectra& kernels, bool usable, const Fft& fft,
                 SpectrumMac mac);
    void changed() { since_ = 0; }

private:
    double* spectrum(int side, int block) { return sides_[side].spectra.data() + slotOffset(block); }
    const double* spectrum(int side, int block) const { return sides_[side].spectra.data() + slotOffset(block); }
    double* accumulated(int side, int block) { return sides_[side].accumulated.data() + slotOffset(block); }
    const double* accumulated(int side, int block) const { return sides_[side].accumulated.data() + slotOffset(block); }
    size_t slotOffset(int block) const { return static_cast<size_t>(block % count_) * 2 * half_; }

    struct Side {
        AlignedBuffer spectra;      // the delay line: the last `count` blocks' spectra
        AlignedBuffer accumulated;  // per output block still to come: products settled early
    };
    Side sides_[kSides];
    struct Terms {
        std::vector<const double*> x, k;  // one sum's delay-line spectra and partitions
    } terms_;
    int half_ = 4;
    int count_ = 1;
    int current_ = 0;  // the block being completed, modulo a multiple of count_
    int since_ = 0;    // blocks completed with the set held now
};

}  // namespace dsp
