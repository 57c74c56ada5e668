#include "plugin/GlobalSettings.h"

#include <cstring>
#include <sys/stat.h>

namespace globals {
namespace {

float floatFromBits(uint32_t bits) {
    float v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

uint32_t bitsFromFloat(float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    return bits;
}

}  // namespace

std::optional<Values> load(const platform::UserStore& store) {
    struct stat info;
    if (store.folder().empty() || stat(store.folder().c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        return std::nullopt;
    Values v;
    const auto mode = store.readDword(kRows[0].name);
    v.latencyMode = mode ? static_cast<int>(*mode) : kDefaultLatencyMode;
    for (int row = 1; row < kRowCount; ++row) {
        const auto bits = store.readDword(kRows[row].name);
        v.parameters[row] = bits ? floatFromBits(*bits) : kRows[row].missing;
    }
    return v;
}

bool save(const platform::UserStore& store, const Values& values) {
    bool ok = store.writeDword(kRows[0].name, static_cast<uint32_t>(values.latencyMode));
    for (int row = 1; row < kRowCount; ++row) ok = store.writeDword(kRows[row].name, bitsFromFloat(values.parameters[row])) && ok;
    return ok;
}

}  // namespace globals
