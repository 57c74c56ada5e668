#pragma once
// Parameter changes whose consequences need the design lock (band settings, FAT, Resolution,
// LinPhase, Solo), recorded so that whichever thread holds that lock can apply them: one
// queue of these is how the audio thread's automation reaches the design without waiting
// (EqualizerControl.h has the rule). A change posted twice before anyone drains it is applied
// once, with its last value, which is the value the parameter has anyway.

#include "platform/PostedValues.h"
#include "presets/Parameters.h"

using DesignHandover = platform::PostedValues<params::kUsedParameters>;
