#pragma once
// The settings that belong to the user rather than to a song: the analyzer's, AutoZoom and the
// latency compensation mode. Each is one 4-byte value in the per-user store (the analyzer
// values hold the float bits of the parameter's normalized value).

#include <optional>

#include "platform/UserStore.h"
#include "presets/Parameters.h"

namespace globals {

struct Row {
    const char* name;
    int parameter;      // -1 for the latency mode, which is no parameter
    float missing;      // the value used when the store holds none
};

// In the order they are read, written and applied.
constexpr Row kRows[] = {
    {"latencycomp", -1, 0.0f},
    {"autozoom", params::kAutoZoom, 0.25f},
    {"spantype", params::kSpanType, 1.0f / 32},
    {"spancolor", params::kSpanColor, 5.0f / 32},
    {"spanspeed", params::kSpanSpeed, 1.0f / 32},
    {"spanmode", params::kSpanMode, 3.0f / 32},
    {"spanhold", params::kSpanHold, 1.0f / 32},
    {"spanweight", params::kSpanResp, 1.0f / 32},
    {"spanwidth", params::kSpanWidth, 1.0f / 32},
    {"spanorder", params::kSpanFilter, 3.0f / 32},
};
constexpr int kRowCount = sizeof kRows / sizeof kRows[0];
constexpr int kDefaultLatencyMode = 2;

struct Values {
    int latencyMode = kDefaultLatencyMode;
    float parameters[kRowCount] = {};  // by row; row 0 unused
};

// What the store holds, row by row, or nothing when the store's folder does not exist yet (a
// first run: the caller keeps the values it has).
std::optional<Values> load(const platform::UserStore& store);

// Writes every row; false when the store could not be written.
bool save(const platform::UserStore& store, const Values& values);

}  // namespace globals
