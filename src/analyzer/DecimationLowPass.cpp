#include "analyzer/DecimationLowPass.h"

namespace analyzer {
namespace {

// Order 6: flat within 0.02 dB up to 0.1 of the input rate, -3 dB near 0.127 and at least
// 60 dB down from 0.2 on, so that halving the rate folds nothing audible into the bands
// of the next stage. Order 2: one section, -3 dB near 0.108 of the input rate.
// Numerators are 1 + b1 z^-1 + z^-2.
constexpr SectionCascade kOrder6 = {{
    {1.0f, 1.5258671f, 1.0f, -1.2184304f, 0.39913964f, 0.051134534f},
    {1.0f, 0.056815106f, 1.0f, -1.2320045f, 0.58744812f, 0.17281263f},
    {1.0f, -0.49761102f, 1.0f, -1.3069131f, 0.85152805f, 0.36249927f},
}};

constexpr SectionCascade kOrder2 = {{
    {1.0f, 1.6560760f, 1.0f, -1.1647930f, 0.44549942f, 0.075899199f},
}};

}  // namespace

const SectionCascade& decimationLowPass(int order) { return order == 2 ? kOrder2 : kOrder6; }

}  // namespace analyzer
