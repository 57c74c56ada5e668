#pragma once
// The two kinds of failure the tool reports: a command line it cannot make sense of (exit 2,
// with a hint to --help) and anything that goes wrong while doing the work (exit 1).

#include <stdexcept>
#include <string>

namespace render {

struct UsageError : std::runtime_error {
    explicit UsageError(const std::string& what) : std::runtime_error(what) {}
};

struct RunError : std::runtime_error {
    explicit RunError(const std::string& what) : std::runtime_error(what) {}
};

// Quotes a user-supplied name or path for a message.
inline std::string quoted(const std::string& text) { return "'" + text + "'"; }

}  // namespace render
