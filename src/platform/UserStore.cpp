#include "platform/UserStore.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <new>

#include "platform/AtomicFile.h"

namespace platform {

namespace {

constexpr const char* kFolderOverride = "TYX_VIREO_CONFIG_DIR";
constexpr const char* kStoreSubfolder = "Tyx-fonica/TyxVireo";
constexpr unsigned kFolderMode = 0700;  // settings are the user's own
constexpr unsigned kValueMode = 0600;

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

std::string homeFolder() {
    std::string home = environment("HOME");
    if (!home.empty()) return home;
    struct passwd entry;
    struct passwd* found = nullptr;
    char buffer[4096];
    if (::getpwuid_r(::getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found && found->pw_dir)
        return found->pw_dir;
    return {};
}

// mkdir -p: every missing folder along the path, the last one with mode.
bool makeFolders(const std::string& folder, unsigned mode) {
    if (folder.empty()) return false;
    for (size_t end = folder.find('/', 1);; end = folder.find('/', end + 1)) {
        const std::string part = folder.substr(0, end);
        if (!part.empty() && ::mkdir(part.c_str(), end == std::string::npos ? mode : 0755) != 0 && errno != EEXIST)
            return false;
        if (end == std::string::npos) break;
    }
    struct stat info;
    return ::stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

}  // namespace

std::string UserStore::currentUserFolder() {
    std::string folder = environment(kFolderOverride);
    if (!folder.empty()) return folder;
    std::string base = environment("XDG_CONFIG_HOME");
    if (base.empty() || base.front() != '/') {  // a relative value is to be ignored
        const std::string home = homeFolder();
        if (home.empty()) return {};
        base = home + "/.config";
    }
    return base + "/" + kStoreSubfolder;
}

UserStore UserStore::forCurrentUser() {
    try {
        return UserStore(currentUserFolder());
    } catch (const std::bad_alloc&) {
        return UserStore(std::string());
    }
}

UserStore::UserStore(std::string folder) : folder_(std::move(folder)) {
    while (folder_.size() > 1 && folder_.back() == '/') folder_.pop_back();
}

bool UserStore::isValidName(std::string_view name) {
    return !name.empty() && name.front() != '.' && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

std::optional<std::string> UserStore::pathOf(std::string_view name) const {
    if (folder_.empty() || !isValidName(name)) return std::nullopt;
    try {
        std::string path = folder_;
        if (path != "/") path += '/';
        path += name;
        return path;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

bool UserStore::ensureFolder() const { return makeFolders(folder_, kFolderMode); }

bool UserStore::writeBinary(std::string_view name, const void* data, size_t size) const {
    const auto path = pathOf(name);
    if (!path || !ensureFolder()) return false;
    return writeFileAtomically(*path, data, size, kValueMode);
}

std::optional<std::vector<uint8_t>> UserStore::readBinary(std::string_view name, size_t maxBytes) const {
    const auto path = pathOf(name);
    if (!path) return std::nullopt;
    return readWholeFile(*path, maxBytes);
}

bool UserStore::writeDword(std::string_view name, uint32_t value) const {
    const uint8_t bytes[4] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8),
                              static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 24)};
    return writeBinary(name, bytes, sizeof bytes);
}

std::optional<uint32_t> UserStore::readDword(std::string_view name) const {
    const auto bytes = readBinary(name, 4);
    if (!bytes || bytes->size() != 4) return std::nullopt;
    const std::vector<uint8_t>& b = *bytes;
    return static_cast<uint32_t>(b[0]) | static_cast<uint32_t>(b[1]) << 8 | static_cast<uint32_t>(b[2]) << 16 |
           static_cast<uint32_t>(b[3]) << 24;
}

bool UserStore::writeString(std::string_view name, std::string_view text) const {
    return writeBinary(name, text.data(), text.size());
}

std::optional<std::string> UserStore::readString(std::string_view name, size_t maxBytes) const {
    // Whatever follows a stored terminator does not count against the limit.
    const auto bytes = readBinary(name, kMaxValueBytes);
    if (!bytes) return std::nullopt;
    size_t length = 0;
    while (length < bytes->size() && (*bytes)[length] != 0) ++length;
    if (length > maxBytes) return std::nullopt;
    try {
        return std::string(reinterpret_cast<const char*>(bytes->data()), length);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

bool UserStore::remove(std::string_view name) const {
    const auto path = pathOf(name);
    if (!path) return false;
    return ::unlink(path->c_str()) == 0 || errno == ENOENT;
}

bool UserStore::contains(std::string_view name) const {
    const auto path = pathOf(name);
    struct stat info;
    return path && ::stat(path->c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

}  // namespace platform
