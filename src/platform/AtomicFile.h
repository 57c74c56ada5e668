#pragma once
// Whole-file reads and writes for small data files (settings values, preset and bank files).
// A write never leaves a half-written file behind: the bytes go to a fresh temporary file in
// the target's folder, which is flushed and then renamed over the target in one step, so a
// reader, a crash or a second writer sees either the old contents or the new ones.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace platform {

// Replaces the file at path with size bytes of data. A new file gets createMode (less the
// process umask); an existing one keeps its permission bits. False on any failure, in which
// case the previous file, if any, is untouched and no temporary file remains.
bool writeFileAtomically(const std::string& path, const void* data, size_t size, unsigned createMode = 0666);

// The whole contents of the regular file at path, or nothing when it is missing, unreadable,
// not a regular file or longer than maxBytes.
std::optional<std::vector<uint8_t>> readWholeFile(const std::string& path, size_t maxBytes);

}  // namespace platform
