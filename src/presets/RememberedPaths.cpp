#include "presets/RememberedPaths.h"

#include <cstring>

#include "platform/UserStore.h"
#include "presets/StoredValues.h"

namespace presets {

namespace {

template <size_t N>
void setBuffer(char (&buffer)[N], std::string_view text) {
    std::memset(buffer, 0, N);
    if (!text.empty() && text.size() < N && text.find('\0') == std::string_view::npos)
        std::memcpy(buffer, text.data(), text.size());
}

template <size_t N>
std::string_view textOf(const char (&buffer)[N]) {
    return std::string_view(buffer, strnlen(buffer, N));
}

}  // namespace

void RememberedPaths::remember(std::string_view path, char (&fileBuffer)[kBufferBytes]) {
    const size_t slash = path.find_last_of('/');
    const size_t fileStart = slash == std::string_view::npos ? 0 : slash + 1;
    setBuffer(currentDirectory, path.substr(0, fileStart));
    setBuffer(fileBuffer, path.substr(fileStart));
    changed = true;
}

void RememberedPaths::rememberPresetFile(std::string_view path) { remember(path, currentPresetFile); }

void RememberedPaths::rememberBankFile(std::string_view path) { remember(path, currentBankFile); }

bool RememberedPaths::store(const platform::UserStore& to) {
    bool ok = to.writeString(stored::kCurrentDirectory, textOf(currentDirectory));
    ok = to.writeString(stored::kCurrentBankFile, textOf(currentBankFile)) && ok;
    ok = to.writeString(stored::kCurrentPresetFile, textOf(currentPresetFile)) && ok;
    if (ok) changed = false;
    return ok;
}

void RememberedPaths::restore(const platform::UserStore& from) {
    constexpr size_t kTextBytes = kBufferBytes - 1;
    auto read = [&from](std::string_view name, char (&buffer)[kBufferBytes]) {
        const auto text = from.readString(name, kTextBytes);
        setBuffer(buffer, text ? std::string_view(*text) : std::string_view());
    };
    read(stored::kCurrentDirectory, currentDirectory);
    read(stored::kCurrentBankFile, currentBankFile);
    read(stored::kCurrentPresetFile, currentPresetFile);
    changed = false;
}

}  // namespace presets
