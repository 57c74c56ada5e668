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
// allocation-, lock- and I/O-free.
//
// Delays, in host samples, with nothing between the two halves (an identity at the inner
// rate):
//   ×2 then ×1/2 (DoubleRateConverter):       63   (63 samples of 2·rate in each half)
//   ×1/2 then ×2 (HalfRateConverter):        126   (63 host samples in each half)
//   ×1/4 then ×4 (QuarterRateConverter):     255   (127 in each half, plus one host sample
//                                                   of hand-over; see QuarterRateConverter)
// A processing delay of d inner-rate samples adds d/2, 2·d and 4·d host samples respectively.
//
// Passband: the half-band filter is flat to ±0.011 dB up to 0.22 of its rate (±0.0055 dB up to
// 0.15) and 6 dB down at a quarter of it; a converter pair passes the square of that. The
// quarter-band filter is flat to ±0.0001 dB up to 0.11 of its rate, 6 dB down at an eighth and
// more than 100 dB down from 0.14 on. Both are used with their taps as designed: the ripple is
// centred on unity, which a stricter DC normalisation would only shift to one side.

#include <array>
#include <cstddef>

namespace dsp {

inline constexpr int kHalfBandLength = 127;     // taps of the half-band filter
inline constexpr int kQuarterBandLength = 255;  // taps of the quarter-band filter

// ---- A ring of the last Size values, readable as one contiguous window ---------------------

template <int Size>
class HistoryRing {
public:
    void clear() {
        data_.fill(0.0);
        pos_ = 0;
    }
    void push(double x) {
        data_[pos_] = x;
        data_[pos_ + Size] = x;
        if (++pos_ == Size) pos_ = 0;
    }
    // The window, oldest first: window()[0] is the value pushed Size − 1 pushes ago and
    // window()[Size − 1] the newest.
    const double* window() const { return data_.data() + pos_; }
    // The value pushed `age` pushes before the newest (age 0 = newest).
    double back(int age) const { return data_[pos_ + Size - 1 - age]; }

private:
    std::array<double, 2 * Size> data_{};  // every value twice, so a window never wraps
    int pos_ = 0;
};

// ---- ×2: host → 2·host → host, for the equalizer at twice the host rate ------------------

// One host sample becomes two samples at twice the rate. The first is the half-band value
// between the ring's two middle samples, the second the newer of those two samples itself.
class HalfBandUpsampler {
public:
    void clear() { ring_.clear(); }
    void process(double x, double& first, double& second);

private:
    HistoryRing<64> ring_;
};

// Two samples at twice the rate become one host sample. The half-band filter is centred on
// the odd sample 63 samples (at twice the rate) before the newest even one; the newest odd
// sample waits for the next call, which is what aligns this half with HalfBandUpsampler to a
// whole number of host samples.
class HalfBandDownsampler {
public:
    void clear() {
        even_.clear();
        odd_.clear();
    }
    double process(double first, double second);

private:
    HistoryRing<64> even_;  // the first sample of each pair
    HistoryRing<64> odd_;   // the second sample of each pair
};

// ---- ×1/2: host → host/2 → host ------------------------------------------------------------

// Every second host sample, the half-band filter over the last 127 host samples.
class HalfBandDecimator {
public:
    void clear() { ring_.clear(); }
    void push(double x) { ring_.push(x); }
    double evaluate() const;

private:
    HistoryRing<kHalfBandLength> ring_;
};

// One sample at half the host rate becomes two host samples: first the half-band value
// between the ring's two middle samples, then the newer of those two itself.
class HalfBandInterpolator {
public:
    void clear() { ring_.clear(); }
    void process(double e, double& first, double& second);

private:
    HistoryRing<64> ring_;
};

// ---- ×1/4: host → host/4 → host ------------------------------------------------------------

// Every fourth host sample, the quarter-band filter over the last 255 host samples.
class QuarterBandDecimator {
public:
    void clear() { ring_.clear(); }
    void push(double x) { ring_.push(x); }
    double evaluate() const;

private:
    HistoryRing<kQuarterBandLength> ring_;
};

// One sample at a quarter of the host rate becomes four host samples: the stored sample
// e[m − 32] itself, then the three polyphase values a quarter, a half and three quarters of
// an inner period after it.
class QuarterBandInterpolator {
public:
    void clear() { ring_.clear(); }
    void process(double e, double (&out)[4]);

private:
    HistoryRing<64> ring_;
};

// ---- Stereo converters with their phase, as the audio path drives them --------------------

// Per host sample: up() gives the two inner-rate pairs to process, in order; down() takes the
// two processed pairs and gives the host-rate pair.
class DoubleRateConverter {
public:
    static constexpr int kDelay = 63;  // host samples, up and down together

    void clear();
    void up(double a, double b, double (&outA)[2], double (&outB)[2]);
    void down(const double (&inA)[2], const double (&inB)[2], double& a, double& b);

private:
    HalfBandUpsampler upA_, upB_;
    HalfBandDownsampler downA_, downB_;
};

// Per host sample, in this order:
//   if (c.down(a, b, innerA, innerB)) { process the inner pair; c.up(innerA, innerB); }
//   c.out(a, b);
// down() returns true on every second host sample (the first one after clear()).
class HalfRateConverter {
public:
    static constexpr int kFactor = 2;
    static constexpr int kDelay = 126;  // host samples, down and up together

    void clear();
    bool down(double a, double b, double& innerA, double& innerB);
    void up(double innerA, double innerB);
    void out(double& a, double& b);

private:
    HalfBandDecimator decA_, decB_;
    HalfBandInterpolator intA_, intB_;
    double pendingA_[kFactor] = {};
    double pendingB_[kFactor] = {};
    int phase_ = 0;  // host samples since the last decimation, 0 on the decimating sample
};

// Same protocol as HalfRateConverter, with one inner sample per four host samples.
//
// The decimator delays by 127 host samples. The interpolator's group starts with the stored
// sample e[m − 32], one inner sample older than the one a minimal-delay hand-over would end
// with, so it delays by 32 inner samples = 128 host samples: 255 for the round trip, which is
// what the path's delay accounting allows for (the minimal hand-over would give 254).
class QuarterRateConverter {
public:
    static constexpr int kFactor = 4;
    static constexpr int kDelay = 255;  // host samples, down and up together

    void clear();
    bool down(double a, double b, double& innerA, double& innerB);
    void up(double innerA, double innerB);
    void out(double& a, double& b);

private:
    QuarterBandDecimator decA_, decB_;
    QuarterBandInterpolator intA_, intB_;
    double pendingA_[kFactor] = {};
    double pendingB_[kFactor] = {};
    int phase_ = 0;
};

}  // namespace dsp
