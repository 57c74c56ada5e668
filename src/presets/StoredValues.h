#pragma once
// The names and limits of the values the preset system keeps in the per-user store.

#include <cstddef>
#include <string_view>

namespace presets::stored {

// Record images (see RecordImage.h).
constexpr std::string_view kDefaultPreset = "DefaultPreset";
constexpr std::string_view kDefaultBank = "DefaultBank";
constexpr std::string_view kMemoA = "MemoA";
constexpr std::string_view kMemoB = "MemoB";
// Only ever removed: nothing in this system writes or reads it.
constexpr std::string_view kDefaultMidi = "DefaultMidi";

// The file dialogs' folder and last file names.
constexpr std::string_view kCurrentDirectory = "CurrDir";
constexpr std::string_view kCurrentBankFile = "CurrBank";
constexpr std::string_view kCurrentPresetFile = "CurrPreset";

// 1 when the editor takes the keyboard focus, 0 otherwise.
constexpr std::string_view kKeyboardFocus = "KeyboardFocus";
// Full path of the user manual, set by whoever installs one.
constexpr std::string_view kManualPath = "ManualPath";

// A manual path of up to 1024 characters, each up to 4 bytes in UTF-8.
constexpr size_t kManualPathMaxBytes = 4096;

// Largest preset or bank file or stored image a loader reads: ample room for images with more
// slots or records than this version writes.
constexpr size_t kMaxImageBytes = 16u << 20;

}  // namespace presets::stored
