#include "plugin/BandAudition.h"

#include "presets/Parameters.h"

void BandAudition::setBand(int band) { band_ = band >= 0 && band < params::kBands ? band : -1; }

void BandAudition::setWidth(float width) {
    if (const auto w = params::admitted(width)) width_ = *w;
}

void BandAudition::setLevel(float level) {
    if (const auto l = params::admitted(level)) level_ = *l;
}

dsp::AuditionSection BandAudition::section(double frequencyHz, int hostRate) const {
    return dsp::AuditionSection::design(frequencyHz, width_, level_, hostRate);
}
