#pragma once
// The converters around the equalizer when it runs at another rate than the host: ×2 (the
// equalizer at twice the host rate, for room above the audio band) and ×1/2, ×1/4 (a long
// linear-phase filter at a half or a quarter of a high host rate, so that its length is spent
// on the audio band).
//
// All of them are linear-phase FIR low-passes at the higher of the two rates: a 127-tap
// half-band filter for the factor 2 and a 255-tap quarter-band filter for the factor 4, each
// run in polyphase form so that no product with a zero tap or a stuffed zero is computed.
// Every converter is fixed-size state (no allocation at all) and its per-sample calls are
// allocation-, lock- and I/O-free. Both sides go through one converter: its rings hold (A, B)
// pairs, and each per-sample call is a template over the pair type of SidePair.h, so the plain
// and the SSE2 family share the state and compute the same numbers.
//
// Delays, in host samples, with nothing between the two halves (an identity at the inner
// rate):
//   ×2 then ×1/2 (DoubleRateConverter):       63   (63 samples of 2·rate in each half)
//   ×1/2 then ×2 (HalfRateConverter):        126   (63 host samples in each half)
//   ×1/4 then ×4 (QuarterRateConverter):     255   (127 in each half, plus one host sample
//                                                   of hand-over; see QuarterRateConverter)
// A processing delay of d inner-rate samples adds d/2, 2·d and 4·d host samples respectively.
// For the factor 2 with an odd d, d/2 would fall between two host samples; the downsampler
// then takes its other phase, half an inner sample earlier (DoubleRateConverter::setInnerDelay).
//
// Passband: the half-band filter is flat to ±0.011 dB up to 0.22 of its rate (±0.0055 dB up to
// 0.15) and 6 dB down at a quarter of it; a converter pair passes the square of that. The
// quarter-band filter is flat to ±0.0001 dB up to 0.11 of its rate, 6 dB down at an eighth and
// more than 100 dB down from 0.14 on. Both are used with their taps as designed: the ripple is
// centred on unity, which a stricter DC normalisation would only shift to one side.


#include <array>

#include "dsp/SidePair.h"

namespace dsp {

inline constexpr int kHalfBandLength = 127;     // taps of the half-band filter
inline constexpr int kQuarterBandLength = 255;  // taps of the quarter-band filter

// ---- A ring of the last Size (A, B) pairs, readable as one contiguous window ---------------

template <int Size>
class PairRing {
public:
    void clear() {
        data_.fill(0.0);
        reversed_.fill(0.0);
        pos_ = 0;
    }
    template <class P>
    void push(P x) {
        // The position is read once: a vector store may alias it, so the compiler would read it
        // back after every store, each read waiting for the store before it.
        const int pos = pos_;
        x.store(&data_[2 * pos]);
        x.store(&data_[2 * (pos + Size)]);
        x.store(&reversed_[2 * (Size - 1 - pos)]);
        x.store(&reversed_[2 * (2 * Size - 1 - pos)]);
        pos_ = pos + 1 == Size ? 0 : pos + 1;
    }
    // The window, oldest first, as interleaved pairs: pair j at window() + 2j; pair 0 was
    // pushed Size − 1 pushes ago, pair Size − 1 is the newest.
    const double* window() const { return &data_[2 * pos_]; }
    // The same window newest first: pair j here is pair Size − 1 − j of window(). A filter that
    // pairs each sample with its mirror image reads both halves in ascending order.
    const double* reversed() const { return &reversed_[2 * (Size - pos_)]; }
    // The pair pushed `age` pushes before the newest (age 0 = newest).
    const double* back(int age) const { return &data_[2 * (pos_ + Size - 1 - age)]; }

private:
    // Every pair twice in each, so that neither window ever wraps.
    alignas(32) std::array<double, 4 * Size> data_{};
    alignas(32) std::array<double, 4 * Size> reversed_{};
    int pos_ = 0;
};

// The register width of the SSE2 family's sums: 256 bits where asked for and the machine has
// AVX2. The numbers are the same either way; the plain family ignores it.
struct SumWidth {
    explicit SumWidth(bool wideWhereUsable = true) : wide(wideWhereUsable && avx2Usable()) {}
    bool wide;
};

// ---- The filters, one (A, B) pair per call -------------------------------------------------

// One sample becomes two samples at twice the rate: first the half-band value between the
// ring's two middle samples, then the newer of those two samples itself. The up half of both
// the ×2 and the ×1/2 converter.
class HalfBandInterpolator {
public:
    explicit HalfBandInterpolator(SumWidth width = SumWidth()) : width_(width) {}
    void clear() { ring_.clear(); }
    template <class P>
    void process(P x, P (&out)[2]);

private:
    SumWidth width_;
    PairRing<64> ring_;
};

// Two samples at twice the rate, v[2n] and v[2n + 1], become one host sample. The half-band
// filter is centred either on the odd sample v[2n − 63] (the newest odd sample waits for the
// next call), which aligns this half with HalfBandInterpolator to a whole number of host
// samples when the processing between them delays by an even number of samples; or on the
// even sample v[2n − 62], with the odd taps reaching v[2n + 1], for an odd processing delay.
class HalfBandDownsampler {
public:
    explicit HalfBandDownsampler(SumWidth width = SumWidth()) : width_(width) {}
    void clear() {
        even_.clear();
        odd_.clear();
    }
    void setCentreOnEven(bool onEven) { centreOnEven_ = onEven; }
    bool centreOnEven() const { return centreOnEven_; }
    template <class P>
    P process(P first, P second);

private:
    SumWidth width_;
    PairRing<64> even_;  // the first sample of each pair
    PairRing<64> odd_;   // the second sample of each pair
    bool centreOnEven_ = false;
};

// Every Factor-th host sample (the first one after clear() and every Factor-th after it), the
// band filter of that factor (half-band for 2, quarter-band for 4) over the last host samples
// it spans. The samples are kept in Factor polyphase rings, one per position modulo Factor in
// the filter's span, so that every sum runs over consecutive pairs of one ring.
template <int Factor>
class BandDecimator {
public:
    static constexpr int kFactor = Factor;
    explicit BandDecimator(SumWidth width = SumWidth()) : width_(width) {}
    void clear() {
        for (auto& r : rings_) r.clear();
        next_ = kNewestRing;
    }
    template <class P>
    void push(P x) {
        rings_[next_].push(x);
        if (++next_ == Factor) next_ = 0;
    }
    // Only right after the push of a decimating sample.
    template <class P>
    P evaluate() const;

private:
    // The filter spans 127 (factor 2) or 255 (factor 4) positions, the newest last; position p
    // goes to ring p mod Factor, and the newest position is 126 or 254.
    static constexpr int kNewestRing = (Factor == 2 ? kHalfBandLength - 1 : kQuarterBandLength - 1) % Factor;
    SumWidth width_;
    PairRing<64> rings_[Factor];
    int next_ = kNewestRing;  // the ring of the next push
};
using HalfBandDecimator = BandDecimator<2>;
using QuarterBandDecimator = BandDecimator<4>;

// One sample at a quarter of the host rate becomes four host samples: the stored sample
// e[m − 32] itself, then the three polyphase values a quarter, a half and three quarters of
// an inner period after it.
class QuarterBandInterpolator {
public:
    explicit QuarterBandInterpolator(SumWidth width = SumWidth()) : width_(width) {}
    void clear() { ring_.clear(); }
    template <class P>
    void process(P e, P (&out)[4]);

private:
    SumWidth width_;
    PairRing<64> ring_;
};

// ---- ×2: host → 2·host → host, for the equalizer at twice the host rate ------------------

// Per host sample: up() gives the two inner-rate pairs to process, in order; down() takes the
// two processed pairs and gives the host-rate pair.
class DoubleRateConverter {
public:
    static constexpr int kDelay = 63;  // host samples, up and down together, around an identity

    explicit DoubleRateConverter(SumWidth width = SumWidth()) : up_(width), down_(width) {}

    // The delay in host samples of the pair around processing that delays by `innerDelay`
    // samples at twice the rate, with the phase setInnerDelay() picks for it: always whole.
    static constexpr int delayAround(int innerDelay) {
        return innerDelay % 2 == 0 ? innerDelay / 2 + kDelay : (innerDelay + 2 * kDelay - 1) / 2;
    }
    // Chooses the downsampler's phase for the processing delay between the halves.
    void setInnerDelay(int innerDelay) { down_.setCentreOnEven(innerDelay % 2 != 0); }

    void clear() {
        up_.clear();
        down_.clear();
    }
    template <class P>
    void up(P x, P (&inner)[2]) {
        up_.process(x, inner);
    }
    template <class P>
    P down(const P (&inner)[2]) {
        return down_.process(inner[0], inner[1]);
    }

private:
    HalfBandInterpolator up_;
    HalfBandDownsampler down_;
};

// ---- ×1/2 and ×1/4: host → host/Factor → host ----------------------------------------------

// Per host sample, in this order:
//   if (c.down(x, inner)) { process the inner pair; c.up(inner); }
//   x = c.out<P>();
// down() returns true on every Factor-th host sample (the first one after clear()); up()
// gives the Factor host samples that out() hands out until the next inner sample.
template <class Decimator, class Interpolator, int Delay>
class DecimatingConverter {
public:
    static constexpr int kFactor = Decimator::kFactor;
    static constexpr int kDelay = Delay;  // host samples, down and up together

    explicit DecimatingConverter(SumWidth width = SumWidth()) : decimator_(width), interpolator_(width) {}

    void clear() {
        decimator_.clear();
        interpolator_.clear();
        pending_.fill(0.0);
        phase_ = 0;
    }
    template <class P>
    bool down(P x, P& inner) {
        decimator_.push(x);
        if (phase_ != 0) return false;
        inner = decimator_.template evaluate<P>();
        return true;
    }
    template <class P>
    void up(P inner) {
        P out[kFactor];
        interpolator_.process(inner, out);
        for (int k = 0; k < kFactor; ++k) out[k].store(&pending_[2 * k]);
    }
    template <class P>
    P out() {
        const P x = P::load(&pending_[2 * phase_]);
        if (++phase_ == kFactor) phase_ = 0;
        return x;
    }

private:
    Decimator decimator_;
    Interpolator interpolator_;
    alignas(16) std::array<double, 2 * kFactor> pending_{};
    int phase_ = 0;  // host samples since the last decimation, 0 on the decimating sample
};

using HalfRateConverter = DecimatingConverter<HalfBandDecimator, HalfBandInterpolator, 126>;

// The decimator delays by 127 host samples. The interpolator's group starts with the stored
// sample e[m − 32], one inner sample older than the one a minimal-delay hand-over would end
// with, so it delays by 32 inner samples = 128 host samples: 255 for the round trip, which is
// what the path's delay accounting allows for (the minimal hand-over would give 254).
using QuarterRateConverter = DecimatingConverter<QuarterBandDecimator, QuarterBandInterpolator, 255>;

}  // namespace dsp
