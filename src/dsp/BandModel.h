#pragma once
// The equalizer's bands as the engine and the plot see them: the natural values of each band
// on each side, the sections designed from them, the solo mask, and the dB curves drawn from
// the sections. It turns band state into coefficients and curves; when that happens (locks,
// program loads, kernel builds, the plot range parameter) is up to its owner.
//
// Threads: everything but readPublished() belongs to the designing side, which the owner
// serializes with its design lock (curves also with its engine lock). readPublished() is the
// audio thread's lock-free view of the sections (see BandCoefficientHandoff.h).

#include <cstdint>

#include "dsp/BandCoefficientHandoff.h"
#include "dsp/BandSettings.h"
#include "dsp/EqTypes.h"

namespace dsp {

// The sections of all sixteen band slots, one array per coefficient, slot order as bandSlot().
struct BandCoefficientArrays {
    double b0[kBandSlots];
    double b1[kBandSlots];
    double b2[kBandSlots];
    double a1[kBandSlots];
    double a2[kBandSlots];

    BiquadCoefficients section(int slot) const { return {b0[slot], b1[slot], b2[slot], a1[slot], a2[slot]}; }
    void store(int slot, const BiquadCoefficients& c) {
        b0[slot] = c.b0;
        b1[slot] = c.b1;
        b2[slot] = c.b2;
        a1[slot] = c.a1;
        a2[slot] = c.a2;
    }
};

class BandModel {
public:
    static constexpr double kStartDesignRate = 44100.0;

    // Every band bypassed at its start values, designed at kStartDesignRate, curves flat.
    // useSse2 picks the curve routine; both give the same curves.
    explicit BandModel(bool useSse2);
    BandModel();  // SSE2 when this machine offers it

    BandModel(const BandModel&) = delete;
    BandModel& operator=(const BandModel&) = delete;

    // Natural values; they take effect at the band's next designBand().
    void setBand(int side, int band, const BandSettings& settings) { settings_[bandSlot(side, band)] = settings; }
    void setBandType(int side, int band, int bandType) { settings_[bandSlot(side, band)].bandType = bandType; }
    void setFrequency(int side, int band, double hz) { settings_[bandSlot(side, band)].frequency = hz; }
    void setQ(int side, int band, double q) { settings_[bandSlot(side, band)].q = q; }
    void setGain(int side, int band, double sectionGainDb) { settings_[bandSlot(side, band)].gain = sectionGainDb; }
    const BandSettings& band(int side, int band) const { return settings_[bandSlot(side, band)]; }

    // Bit b set solos band b + 1; 0 solos none. Takes effect at the next designBand() of each
    // band, so a change is followed by designAllBands().
    void setSoloMask(uint32_t mask) { soloMask_ = mask; }
    uint32_t soloMask() const { return soloMask_; }

    // Designs band 0..7 on both sides at designRate, applies the solo rule, stores the two
    // sections and publishes them to the audio thread. The curves follow the rate class of the
    // latest designRate but are recomputed only by computeBandCurves().
    void designBand(int band, double designRate);
    void designAllBands(double designRate);

    double designRate() const { return designRate_; }
    int rateClass() const { return rateClass_; }

    // The stored sections, for the kernel build and the curves (designing side only).
    const BandCoefficientArrays& coefficients() const { return coefficients_; }
    BiquadCoefficients section(int slot) const { return coefficients_.section(slot); }

    // Audio thread only: the newest complete section of the slot, without locks or waiting.
    BiquadCoefficients readPublished(int slot) { return handoff_.read(slot); }

    // The curves of all sixteen band slots from the stored sections.
    void computeBandCurves();
    // Each side's total as the plain sum of its eight band curves (band 1 first, in float).
    void computeTotalCurves();
    // A side's total from elsewhere (the linear-phase kernel's measured response).
    void setTotalCurve(int side, const Curve& curve);

    const Curve& bandCurve(int side, int band) const { return bandCurves_[bandSlot(side, band)]; }
    const Curve& totalCurve(int side) const { return totalCurves_[side]; }

    // The plot range value r in [0, 1] that fits the loudest feature of the curves: the
    // largest of |curve| of every switched-on shelf or peaking band, each side's signed sum of
    // all its band curves, and |sum| of each side's shelf and peaking curves.
    float autoZoom() const;
    // The plot range value for a peak in dB; a plot of half-height 6·2^(2 − 3r) dB then shows
    // the peak with 10 % headroom. 0 dB gives 1 (the closest zoom).
    static float plotRangeForPeak(float peakDb);

private:
    bool isSoloedOut(int band) const { return soloMask_ != 0 && (soloMask_ & (1u << band)) == 0; }

    bool useSse2_;
    double designRate_ = kStartDesignRate;
    int rateClass_ = 0;
    uint32_t soloMask_ = 0;
    BandSettings settings_[kBandSlots];
    BandCoefficientArrays coefficients_{};
    Curve bandCurves_[kBandSlots] = {};
    Curve totalCurves_[kSides] = {};
    BandCoefficientHandoff handoff_;
};

}  // namespace dsp
