#pragma once
// The second-order section of one band, designed from its settings at the engine's internal
// rate. The engine always applies a section twice (forward and backward in the linear-phase
// kernel, two sections in series in the minimum-phase cascade), so a section carries half of
// the band's dB gain and its slopes are half of those in the shape names.

#include "dsp/BandSettings.h"
#include "dsp/EqTypes.h"

namespace dsp {

// b0 = 1, everything else 0: passes the signal unchanged.
inline constexpr BiquadCoefficients kIdentitySection{};

// Designs the section in double precision and flushes each coefficient of denormals. The
// result is always finite and stable: a band whose section as designed would not be (one at
// or above the Nyquist frequency of designRate) is designed with its frequency held just
// below Nyquist, and one that cannot be designed at all is passed flat. Every section that is
// stable as designed is returned exactly as designed.
BiquadCoefficients designBandSection(const BandSettings& band, double designRate);

}  // namespace dsp
