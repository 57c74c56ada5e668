#pragma once
// A scratch folder of the test's own with the plug-in's per-user store pointed inside it, for the
// lifetime of the object: tests never read or write the developer's own stored settings. The
// store folder itself does not exist until something is written into it, as on a first run.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// Sets (or, for nullptr, clears) an environment variable for the lifetime of the object.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value) : name_(name), had_(std::getenv(name)), old_(had_ ? std::getenv(name) : "") {
        value ? setenv(name, value, 1) : unsetenv(name);
    }
    ~ScopedEnv() { had_ ? setenv(name_, old_.c_str(), 1) : unsetenv(name_); }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    const char* name_;
    bool had_;
    std::string old_;
};

inline std::vector<uint8_t> fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

inline void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

inline std::vector<std::string> folderEntries(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(folder)) names.push_back(e.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

class ScopedStoreFolder {
public:
    ScopedStoreFolder() = default;
    ScopedStoreFolder(const ScopedStoreFolder&) = delete;
    ScopedStoreFolder& operator=(const ScopedStoreFolder&) = delete;
    ~ScopedStoreFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    const std::string& scratch() const { return folder_; }
    std::string store() const { return folder_ + "/store"; }

    // A value as the store keeps it: its bytes in a file of its name.
    void writeValue(const std::string& name, const std::string& bytes) const {
        writeBytes(store() + "/" + name, std::vector<uint8_t>(bytes.begin(), bytes.end()));
    }
    // A number as the store keeps it: 4 little-endian bytes.
    void writeDword(const std::string& name, uint32_t v) const {
        writeValue(name, {char(v), char(v >> 8), char(v >> 16), char(v >> 24)});
    }

private:
    static std::string makeFolder() {
        char pattern[] = "/tmp/tyx-vireo-test-XXXXXX";
        return mkdtemp(pattern) ? pattern : "";
    }
    std::string folder_ = makeFolder();
    ScopedEnv env_{"TYX_VIREO_CONFIG_DIR", store().c_str()};
};
