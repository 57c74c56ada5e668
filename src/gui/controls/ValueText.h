#pragma once
// The numbers the header and the edit knobs show for band and output values, and the reverse:
// text typed into a knob read back into a normalized value.

#include <optional>
#include <string>

namespace valuetext {

// What a value field shows; the numbers match the knob kinds.
enum Kind : int { kFrequency = 1, kGain = 2, kQ = 3, kOutput = 4 };

// Texts for a band type step 0..13: "Peaking", "Bypass", ...
const char* typeText(int typeStep);
// Whether the band's gain and Q mean anything for its type (the 12 dB/oct cuts have no Q,
// only the shelves and the peak have a gain; a bypassed band keeps its shape's fields).
bool hasGain(int typeStep);
bool hasQ(int typeStep);

// The value in display units: hertz, dB of the band's overall effect, the Q factor of the
// band's type (peaking has the wider range), dB of output gain.
double displayValue(Kind kind, float value, int typeStep);
// "%.0f" hertz, "%.2f" gain, "%.2f" Q, "%+.1f" output.
std::string format(Kind kind, float value, int typeStep);

// Typed text in display units, with a unit or a "k" for thousands where it fits the field
// ("1k", "1.5 kHz", "-3 dB", "+2.5", "0.7"). Answers the normalized value, held to 0..1, or
// nothing for text that is not such a number.
std::optional<float> parse(Kind kind, const std::string& text, int typeStep);

}  // namespace valuetext
