#pragma once
// Opens a document with the desktop's preferred application (xdg-open, started without a
// shell). The opener may take a while, so it is polled rather than waited for.

#include <string>

#include "platform/ChildProcess.h"

namespace platform {

class ShellOpen {
public:
    enum class Result { Pending, Opened, NoApplication, Failed };

    // Starts the opener; poll() then tells how it went.
    explicit ShellOpen(const std::string& path);

    // Pending while the opener runs. NoApplication: nothing on this desktop handles the
    // document's type. Failed: the opener is missing, or the document could not be opened.
    Result poll();

private:
    ChildProcess opener;
    Result result = Result::Pending;
};

}  // namespace platform
