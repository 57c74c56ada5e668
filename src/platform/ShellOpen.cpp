#include "platform/ShellOpen.h"

namespace platform {

namespace {
// xdg-open's exit status when no tool to open the document was found.
constexpr int kXdgOpenNoTool = 3;
}  // namespace

ShellOpen::ShellOpen(const std::string& path) {
    if (path.empty() || !opener.start({"xdg-open", path})) result = Result::Failed;
}

ShellOpen::Result ShellOpen::poll() {
    if (result != Result::Pending || !opener.poll()) return result;
    const int code = opener.exitCode();
    result = code == 0 ? Result::Opened : code == kXdgOpenNoTool ? Result::NoApplication : Result::Failed;
    return result;
}

}  // namespace platform
