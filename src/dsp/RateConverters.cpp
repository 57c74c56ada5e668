#include "dsp/RateConverters.h"

#include <type_traits>

#include "dsp/RateConverterSums.h"

namespace dsp {
namespace {

// ---- Filter taps --------------------------------------------------------------------------

// Half-band low-pass, 127 taps at the higher rate: centre 0.5, even offsets zero, and the odd
// offsets ±63, ±61, … ±1 carry these values (outermost first).
constexpr int kHalfBandPairs = 32;
constexpr double kHalfBandTaps[kHalfBandPairs] = {
    -0.0004070025915, 0.0004434359652, -0.000505981206,  0.0005969132947, -0.0007185986036, 0.0008735194392,
    -0.001064306774,  0.00129378341,   -0.001565020542,  0.00188141175,   -0.002246769883,  0.002665454451,
    -0.003142540203,  0.003684042205,  -0.004297219676,  0.004990991656,  -0.005776514594,  0.006667999601,
    -0.007683893167,  0.008848624366,  -0.01019526281,   0.01176969391,   -0.01363742886,   0.01589521833,
    -0.01869195267,   0.02226884858,   -0.02704346789,   0.03380575043,   -0.04425008847,   0.06278435719,
    -0.1055750277,    0.3181335138,
};

// Quarter-band low-pass, 255 taps at the higher rate: centre 0.25, offsets that are multiples
// of 4 zero, and the other offsets from ±127 inwards (127, 126, 125, 123, 122, 121, 119, …,
// 3, 2, 1) carry these values (outermost first).
constexpr int kQuarterBandPairs = 96;
constexpr double kQuarterBandTaps[kQuarterBandPairs] = {
    -1.214600038e-07, -2.381848141e-07, -2.479459563e-07, 5.138895953e-07,  9.991216059e-07,  9.440476388e-07,
    -1.573904199e-06, -2.797259967e-06, -2.450571156e-06, 3.633764864e-06,  6.169753645e-06,  5.196858658e-06,
    -7.228008671e-06, -1.195150243e-05, -9.831348545e-06, 1.312824689e-05,  2.132597692e-05,  1.725861986e-05,
    -2.238228992e-05, -3.58819099e-05,  -2.868038123e-05, 3.635674165e-05,  5.767451781e-05,  4.563938162e-05,
    -5.678192111e-05, -8.928958133e-05, -7.006503768e-05, 8.579791087e-05,  0.0001339087324,  0.0001043196621,
    -0.0001260007937, -0.0001953747995, -0.0001512446364, 0.0001804888226,  0.0002782572066,  0.0002142068114,
    -0.0002529095016, -0.000387919389,  -0.0002971469843, 0.0003475105006,  0.0005305932455,  0.0004046346906,
    -0.0004692002435, -0.0007134701898, -0.0005419370883, 0.0006236282988,  0.0009448250514,  0.0007151149324,
    -0.0008173020797, -0.001234199066,  -0.00093116647,   0.001057766072,   0.001592683543,   0.001198252246,
    -0.001353885168,  -0.002033370315,  -0.001526053433,  0.00171629906,    0.002572076039,   0.001926349461,
    -0.002158158504,  -0.003228519111,  -0.002413959496,  0.002696333992,   0.004028259864,   0.003008301805,
    -0.003353439803,  -0.005005970449,  -0.003736040327,  0.004161325012,   0.006211126476,   0.004635737389,
    -0.005167349744,  -0.007718368769,  -0.005766439209,  0.006446320663,   0.009647541111,   0.007224580013,
    -0.008124951317,  -0.01220568118,   -0.009180266679,  0.01043726904,    0.01578505841,    0.01196482165,
    -0.01386868394,   -0.02122927289,   -0.01631992505,   0.0196143311,     0.03073787128,    0.02431101857,
    -0.03160866476,   -0.05238903918,   -0.04462468254,   0.07479107816,    0.15893294,       0.2250005514,
};


// The taps as the converters use them, each stored as a pair (c, c) for both sides, scaled
// by the conversion factor so that the interpolators' centre weight is 1 and each of their
// polyphase phases has (close to) unity gain. Half-band: the odd taps doubled, outermost
// first. Quarter-band: the listed taps ×4, split by the decimator's ring, and the
// interpolator's three fractional phases, 64 taps each.

template <int Count>
constexpr PairedTaps<Count> paired(const double (&taps)[Count], double factor) {
    PairedTaps<Count> t{};
    for (int i = 0; i < Count; ++i) t.c[2 * i] = t.c[2 * i + 1] = factor * taps[i];
    return t;
}

// Offsets 127, 126, 125, 123, …: every offset from 127 down to 1 that is not a multiple of 4.
constexpr int quarterOffset(int i) { return 127 - (i + i / 3); }

// The whole 255-tap filter, ×4, indexed 0..254 with the centre at 127.
constexpr std::array<double, kQuarterBandLength> makeQuarterBandFull() {
    std::array<double, kQuarterBandLength> full{};
    full[127] = 1.0;
    for (int i = 0; i < kQuarterBandPairs; ++i) {
        const int o = quarterOffset(i);
        full[127 - o] = 4.0 * kQuarterBandTaps[i];
        full[127 + o] = 4.0 * kQuarterBandTaps[i];
    }
    return full;
}

// The decimator's taps by ring: listed tap 3m + k multiplies position 4m + k of the span (ring
// k, pair m) and its mirror image 254 − 4m − k (ring 2 − k, pair 63 − m).
constexpr std::array<PairedTaps<32>, 3> makeQuarterBandRings() {
    std::array<PairedTaps<32>, 3> rings{};
    for (int k = 0; k < 3; ++k)
        for (int m = 0; m < 32; ++m) rings[k].c[2 * m] = rings[k].c[2 * m + 1] = 4.0 * kQuarterBandTaps[3 * m + k];
    return rings;
}

// Interpolating by 4 places e[j] at index 4j of the fine grid; the fine sample 4m + p then
// reads tap p + 4r for e[m − r]. Phases p = 0, 1, 2 are the fractional ones (offsets 1, 2, 3
// modulo 4 from the centre); p = 3 falls on the centre alone and is the stored sample. Each
// phase is stored in the order of the ring window, oldest first: pair q multiplies e[m − 63 + q].
constexpr std::array<PairedTaps<64>, 3> makeQuarterBandPhases() {
    const auto full = makeQuarterBandFull();
    std::array<PairedTaps<64>, 3> phases{};
    for (int p = 0; p < 3; ++p)
        for (int q = 0; q < 64; ++q) phases[p].c[2 * q] = phases[p].c[2 * q + 1] = full[p + 4 * (63 - q)];
    return phases;
}

constexpr auto kHalfBand = paired(kHalfBandTaps, 2.0);
constexpr auto kQuarterBandRings = makeQuarterBandRings();
constexpr auto kQuarterBandPhases = makeQuarterBandPhases();

static_assert(quarterOffset(0) == 127 && quarterOffset(2) == 125 && quarterOffset(3) == 123);
static_assert(quarterOffset(kQuarterBandPairs - 1) == 1);

// Σ term(i) for i = 0..Count − 1, in four partial sums (i mod 4) added up at the end: one
// running sum would make every product wait for the addition before it, four keep the
// processor's adders busy. The order is fixed, so every family rounds alike (the 256-bit sums
// hold s0, s1 in one register and s2, s3 in another).
template <class P, int Count, class Term>
inline P fourWaySum(Term term) {
    static_assert(Count % 4 == 0);
    P s0 = P::zero(), s1 = P::zero(), s2 = P::zero(), s3 = P::zero();
    for (int i = 0; i < Count; i += 4) {
        s0 = s0 + term(i);
        s1 = s1 + term(i + 1);
        s2 = s2 + term(i + 2);
        s3 = s3 + term(i + 3);
    }
    return (s0 + s1) + (s2 + s3);
}

// out[k] = Σ c[k][m]·(lo[k][m] + hi[k][m]): symmetric filters folded, lo[k] a window oldest
// first and hi[k] the mirror images, newest first.
template <class P, int Count, int Sums>
inline void foldedSums(SumWidth width, const PairedTaps<Count>* const (&c)[Sums], const double* const (&lo)[Sums],
                       const double* const (&hi)[Sums], P (&out)[Sums]) {
    if constexpr (std::is_same_v<P, Sse2Pair>) {
        if (width.wide) {
            const double* taps[Sums];
            __m128d sums[Sums];
            for (int k = 0; k < Sums; ++k) taps[k] = c[k]->c;
            rate_sums::foldedSumsAvx2<Count, Sums>(taps, lo, hi, sums);
            for (int k = 0; k < Sums; ++k) out[k] = {sums[k]};
            return;
        }
    }
    for (int k = 0; k < Sums; ++k)
        out[k] = fourWaySum<P, Count>(
            [&](int m) { return P::load(c[k]->at(m)) * (P::load(lo[k] + 2 * m) + P::load(hi[k] + 2 * m)); });
}

// One folded sum: the half-band filters.
template <class P>
inline P halfBandSum(SumWidth width, const PairRing<64>& ring) {
    P out[1];
    foldedSums<P, kHalfBandPairs, 1>(width, {&kHalfBand}, {ring.window()}, {ring.reversed()}, out);
    return out[0];
}

// out[k] = Σ c[k][q]·w[q]: the polyphase phases of an interpolator over one window.
template <class P, int Count, size_t Sums>
inline void phaseSums(SumWidth width, const std::array<PairedTaps<Count>, Sums>& c, const double* w, P (&out)[Sums]) {
    if constexpr (std::is_same_v<P, Sse2Pair>) {
        if (width.wide) {
            const double* taps[Sums];
            __m128d sums[Sums];
            for (size_t k = 0; k < Sums; ++k) taps[k] = c[k].c;
            rate_sums::sumsAvx2<Count, Sums>(taps, w, sums);
            for (size_t k = 0; k < Sums; ++k) out[k] = {sums[k]};
            return;
        }
    }
    for (size_t k = 0; k < Sums; ++k)
        out[k] = fourWaySum<P, Count>([&](int q) { return P::load(c[k].at(q)) * P::load(w + 2 * q); });
}

}  // namespace

// Ring x[n−63..n]: the taps ±(2j'+1) around the midpoint of x[n−32] and x[n−31] pair
// window[j] with window[63 − j].
template <class P>
void HalfBandInterpolator::process(P x, P (&out)[2]) {
    ring_.push(x);
    out[0] = halfBandSum<P>(width_, ring_);
    out[1] = P::load(ring_.window() + 2 * 32);
}

// Even ring v[2n−126..2n] (step 2). Centred on the odd side, the odd ring holds up to v[2n−1]
// and the centre v[2n−63] is 31 pairs back in it. Centred on the even side, the centre v[2n−62]
// is 31 back in the even ring and the odd ring, with v[2n+1] pushed, holds the taps.
template <class P>
P HalfBandDownsampler::process(P first, P second) {
    const P half = P::splat(0.5);
    even_.push(first);
    if (centreOnEven_) {
        odd_.push(second);
        return half * (P::load(even_.back(31)) + halfBandSum<P>(width_, odd_));
    }
    const P y = half * (P::load(odd_.back(31)) + halfBandSum<P>(width_, even_));
    odd_.push(second);
    return y;
}

// Span x[n−126..n]: centre x[n−63] (31 back in ring 1, whose newest is x[n−1]); the odd offsets
// from it are the even positions, ring 0, each paired with its mirror image.
template <>
template <class P>
P HalfBandDecimator::evaluate() const {
    return P::splat(0.5) * (P::load(rings_[1].back(31)) + halfBandSum<P>(width_, rings_[0]));
}

// Span x[n−254..n]: centre x[n−127] (position 127, 31 back in ring 3); rings 0..2 hold the
// listed taps' positions, each ring's pairs facing the mirror images in ring 2 − k.
template <>
template <class P>
P QuarterBandDecimator::evaluate() const {
    P s[3];
    foldedSums<P, 32, 3>(width_, {&kQuarterBandRings[0], &kQuarterBandRings[1], &kQuarterBandRings[2]},
                         {rings_[0].window(), rings_[1].window(), rings_[2].window()},
                         {rings_[2].reversed(), rings_[1].reversed(), rings_[0].reversed()}, s);
    return P::splat(0.25) * (P::load(rings_[3].back(31)) + ((s[0] + s[1]) + s[2]));
}

template <class P>
void QuarterBandInterpolator::process(P e, P (&out)[4]) {
    ring_.push(e);
    const double* w = ring_.window();  // pair q = e[m − 63 + q]
    out[0] = P::load(w + 2 * 31);
    P phases[3];
    phaseSums<P>(width_, kQuarterBandPhases, w, phases);
    for (int p = 0; p < 3; ++p) out[p + 1] = phases[p];
}

// ---- Both families ---------------------------------------------------------------------------

#define TYX_CONVERTERS_FOR(P)                                                  \
    template void HalfBandInterpolator::process<P>(P, P(&)[2]);                \
    template P HalfBandDownsampler::process<P>(P, P);                          \
    template P HalfBandDecimator::evaluate<P>() const;                         \
    template P QuarterBandDecimator::evaluate<P>() const;                      \
    template void QuarterBandInterpolator::process<P>(P, P(&)[4]);
TYX_CONVERTERS_FOR(PlainPair)
TYX_CONVERTERS_FOR(Sse2Pair)
#undef TYX_CONVERTERS_FOR

}  // namespace dsp
