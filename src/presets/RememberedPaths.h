#pragma once
// Where the file dialogs were last: the folder and the last preset and bank file names, kept
// as 8-bit (UTF-8) text buffers and in the per-user store between sessions.

#include <string_view>

namespace platform {
class UserStore;
}

namespace presets {

struct RememberedPaths {
    static constexpr int kBufferBytes = 257;  // 256 bytes of text and a NUL

    char currentDirectory[kBufferBytes] = {};
    char currentBankFile[kBufferBytes] = {};
    char currentPresetFile[kBufferBytes] = {};
    // Set when a file operation changed the buffers since they were last restored or stored.
    bool changed = false;

    // Splits a chosen path at its last '/': the part up to and including it becomes the folder,
    // the rest the file name. A part too long for its buffer leaves that buffer empty: a cut
    // path would name somewhere else.
    void rememberPresetFile(std::string_view path);
    void rememberBankFile(std::string_view path);

    // Writes the three buffers; false when any write failed.
    bool store(const platform::UserStore& to);
    // Reads them back; missing or overlong values leave empty buffers.
    void restore(const platform::UserStore& from);

private:
    void remember(std::string_view path, char (&fileBuffer)[kBufferBytes]);
};

}  // namespace presets
