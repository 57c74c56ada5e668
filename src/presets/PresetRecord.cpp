#include "presets/PresetRecord.h"

#include <cstring>

namespace presets {

void storePresetName(char (&field)[kNameField], const char* name) {
    const size_t length = strnlen(name, kNameField);
    if (length >= kNameField - 1) {
        std::memcpy(field, name, kNameField);
        field[kNameField - 1] = 0;
    } else {
        std::memcpy(field, name, length + 1);
    }
}

void takeNameField(char (&field)[kNameField], const char* text) {
    std::memset(field, 0, kNameField);
    std::memcpy(field, text, strnlen(text, kNameField));
}

}  // namespace presets
