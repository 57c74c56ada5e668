#pragma once
// A folder of stand-in programs put in front of PATH for one test: shell scripts named like
// the desktop programs the toolkit starts (dialogs, the document opener).

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "ToolkitSupport.h"

class FakePrograms {
public:
    // replacePath: PATH holds only the fake folder (so real programs are not found).
    explicit FakePrograms(bool replacePath = false) {
        folder = std::filesystem::path(testing::TempDir()) /
                 ("fake-programs-" + std::to_string(reinterpret_cast<uintptr_t>(this)));
        std::filesystem::create_directories(folder);
        const char* old = std::getenv("PATH");
        savedPath = old ? old : "";
        const std::string path = replacePath ? folder.string() : folder.string() + ":" + savedPath;
        setenv("PATH", path.c_str(), 1);
    }
    ~FakePrograms() {
        setenv("PATH", savedPath.c_str(), 1);
        std::filesystem::remove_all(folder);
    }

    // A program that runs body as a POSIX shell script.
    void add(const std::string& name, const std::string& body) {
        const auto file = folder / name;
        std::ofstream(file) << "#!/bin/sh\n" << body << "\n";
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }
    std::string file(const std::string& name) const { return (folder / name).string(); }

private:
    std::filesystem::path folder;
    std::string savedPath;
};
