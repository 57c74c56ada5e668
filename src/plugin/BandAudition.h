#pragma once
// The band the user holds in the editor, heard alone through a band-pass at its frequency.
// Width and level shape that band-pass; all three start where a release leaves them.

#include "dsp/AuditionFilter.h"
#include "plugin/RelaxedAtomic.h"

class BandAudition {
public:
    // Band 0..7; any other number ends the audition.
    void setBand(int band);
    // Width and level in 0..1; a value that is not a number leaves them as they were.
    void setWidth(float width);
    void setLevel(float level);

    // The held band, or -1.
    const RelaxedAtomic<int>& band() const { return band_; }
    // The section that plays a band at frequencyHz.
    dsp::AuditionSection section(double frequencyHz, int hostRate) const;

private:
    RelaxedAtomic<int> band_ = -1;
    float width_ = 0.5f;
    float level_ = 0.5f;
};
