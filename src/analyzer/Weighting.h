#pragma once
// Frequency weightings applied to the band readings.

namespace analyzer {

enum class Weighting { flat = 0, a = 1, c = 2 };

// 1 selects A, 2 selects C, anything else flat.
Weighting weightingFromIndex(int index);

// 31 offsets in dB, from the 20 Hz band (index 0) up to the 20 kHz band (index 30).
const float* weightingOffsets(Weighting weighting);

}  // namespace analyzer
