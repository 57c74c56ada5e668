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

}  // namespace vendor
