#pragma once
// Requests of our own that a tool sends through effVendorSpecific (the opcode's index names
// the request). Standard library only, so that tools may include it.

#include <cstdint>

namespace vendor {

constexpr int32_t code(char a, char b, char c, char d) {
    return static_cast<int32_t>((static_cast<uint32_t>(a) << 24) | (static_cast<uint32_t>(b) << 16) |
                                (static_cast<uint32_t>(c) << 8) | static_cast<uint32_t>(d));
}

// ptr: a NUL-terminated file path. The editor is drawn for the current preset and written there
// as a PNG; the answer is 1 when the file was written.
constexpr int32_t kSnapshotRequest = code('T', 'x', 'S', 'n');

// value 1: the editor is opened without a window, as a host would open it, so that the audio
// path feeds the analyzer and later snapshots show that editor; value 0 closes it again.
// The answer is 1 when the editor is then in the state asked for.
constexpr int32_t kOffscreenEditorRequest = code('T', 'x', 'E', 'o');

// value: the page the response plot shows in the open editor (0 the plot, 1 the settings page,
// 2 the product information); the answer is 1 when an editor was open to show it.
constexpr int32_t kPlotPageRequest = code('T', 'x', 'P', 'g');

}  // namespace vendor
