#pragma once
// A band's effective response in dB on the plot grid: 20·log10(|H(e^jw)|²), the section
// applied twice, as the engine applies it.
//
// Precision is fixed so that every machine draws the same curve: the rational part is
// evaluated in double, the power ratio is rounded to float, its base-10 logarithm (taken in
// double) is rounded to float, and the factor 20 is applied in float.
//
// Two routines with identical results: the plain one, and one that evaluates the rational
// part for two grid points per SSE2 instruction. Both take the logarithm point by point with
// the same library call, which is what keeps them bit-identical (and is most of the cost).

#include "dsp/BandGrid.h"
#include "dsp/EqTypes.h"

namespace dsp {

void computeBandCurvePlain(const BiquadCoefficients& section, const BandGridTable& grid, Curve& curve);
void computeBandCurveSse2(const BiquadCoefficients& section, const BandGridTable& grid, Curve& curve);

}  // namespace dsp
