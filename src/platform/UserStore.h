#pragma once
// The per-user settings store: named values that outlive the plug-in, shared by every instance
// the user runs. Each value is one file in the store's folder, named as the value:
//   $TYX_VIREO_CONFIG_DIR when set (tests point it at a folder of their own), otherwise
//   $XDG_CONFIG_HOME/Tyx-fonica/TyxVireo, or ~/.config/Tyx-fonica/TyxVireo when that is unset.
// 4-byte values are stored as 4 little-endian bytes, binary values as their bytes, strings as
// UTF-8 without a terminator. Every write replaces the whole file in one step (see
// AtomicFile.h), so two instances writing at once never leave a half-written value.
//
// Failures are answered, never thrown: a read that fails gives nothing, a write false.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

class UserStore {
public:
    // Largest value a read accepts unless the caller asks for less: far above any preset or
    // bank image, far below anything that would hurt to hold in memory.
    static constexpr size_t kMaxValueBytes = 16u << 20;

    // The store of the user running the process, located from the environment at this moment.
    static UserStore forCurrentUser();
    // The folder that forCurrentUser would use; empty when no home can be found.
    static std::string currentUserFolder();

    // A store in the given folder (created on the first write).
    explicit UserStore(std::string folder);

    const std::string& folder() const { return folder_; }

    bool writeDword(std::string_view name, uint32_t value) const;
    // The value when it exists and is exactly 4 bytes long.
    std::optional<uint32_t> readDword(std::string_view name) const;

    bool writeBinary(std::string_view name, const void* data, size_t size) const;
    std::optional<std::vector<uint8_t>> readBinary(std::string_view name, size_t maxBytes = kMaxValueBytes) const;

    bool writeString(std::string_view name, std::string_view text) const;
    // The text up to its first NUL (a stored terminator, and anything after it, is tolerated);
    // nothing when the value is missing or its text is longer than maxBytes.
    std::optional<std::string> readString(std::string_view name, size_t maxBytes = kMaxValueBytes) const;

    // True when the value no longer exists afterwards (also when it never did).
    bool remove(std::string_view name) const;
    bool contains(std::string_view name) const;

    // Value names are plain file names: not empty, no '/', no NUL, not starting with '.'
    // (the store's temporary files do).
    static bool isValidName(std::string_view name);

private:
    std::optional<std::string> pathOf(std::string_view name) const;
    bool ensureFolder() const;

    std::string folder_;
};

}  // namespace platform
