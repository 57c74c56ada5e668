#pragma once
// The low-pass that each decimated stage runs before its output is taken at half the rate.
// Its coefficients are fixed, the same at every sample rate.

#include "analyzer/BandFilterDesign.h"

namespace analyzer {

// The low-pass for a filter order (2, else 6), sections in running order.
const SectionCascade& decimationLowPass(int order);

}  // namespace analyzer
