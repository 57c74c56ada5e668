#pragma once
// Per-index facts of the parameter set: step counts, start values, host names.

#include "presets/Parameters.h"
#include "vst/aeffect.h"

namespace params {

// Number of steps of a stepped parameter, 0 for a continuous one.
int stepCount(int index);

// The value a parameter field holds before settings and presets are applied.
float startValue(int index);

// Whether a host may automate the parameter: Power, Output and the band parameters.
bool automatable(int index);

// The stepping a host offers for the parameter: integer steps for the switches, the band types
// and the analyzer's menus, float steps for the rest. Fields it does not name are left alone.
void describeSteps(int index, VstParameterProperties& p);

// The host-visible name ("FLT3 Gain R" for index 64); "dummy" for the spare slots.
void parameterName(int index, char* text);

enum BandField : int { kTypeField = 0, kFreqField = 1, kQField = 2, kGainField = 3 };

// Band parameters: which band (0..7), side (0 left/mid, 1 right/side) and field
// (0 type, 1 frequency, 2 Q, 3 gain) an index addresses; false for other indexes.
bool bandParameter(int index, int& band, int& side, int& field);
inline int bandIndex(int field, int side, int band) { return kType + field * 16 + side * 8 + band; }

}  // namespace params
