#pragma once
// The built-in presets that fill the bank of every new instance.

#include "presets/PresetRecord.h"

namespace presets {

// Writes the 21 factory presets, in bank order, into bank (which holds kPresetCount records).
void loadFactoryBank(PresetRecord* bank);

}  // namespace presets
