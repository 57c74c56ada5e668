#pragma once
// One preset: a name and the normalized value of every parameter slot.

namespace presets {

constexpr int kPresetCount = 21;     // presets in the bank
constexpr int kPresetSlots = 94;     // parameter values held per preset
constexpr int kNameField = 24;       // bytes of the name field, NUL-padded (23 characters at most)

struct PresetRecord {
    char name[kNameField];
    float values[kPresetSlots];
};

// Stores name into field: a name of 23 characters or more keeps its first 23 and a NUL in the
// last byte; a shorter one is copied with its NUL and the rest of the field is left as it was.
void storePresetName(char (&field)[kNameField], const char* name);

// The first 24 characters of text (fewer if it ends sooner) in a zeroed field: a name field
// need not end in a NUL.
void takeNameField(char (&field)[kNameField], const char* text);

}  // namespace presets
