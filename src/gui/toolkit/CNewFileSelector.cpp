#include "gui/toolkit/CNewFileSelector.h"

#include <memory>

#include "gui/toolkit/CFrame.h"
#include "platform/ChildProcess.h"

namespace {

// The dialog programs in order of preference, with the package that brings each.
struct DialogProgram {
    const char* name;
    const char* package;
};
constexpr DialogProgram kDialogPrograms[] = {{"zenity", "zenity"}, {"kdialog", "kdialog"}};

class FileDialogTask : public FrameIdleTask {
public:
    explicit FileDialogTask(CNewFileSelector::Callback callback) : callback(std::move(callback)) {}
    bool start(const std::vector<std::string>& argv) { return dialog.start(argv); }

    bool idle(CFrame&) override {
        if (!dialog.poll()) return true;
        std::string path = dialog.output();
        while (!path.empty() && (path.back() == '\n' || path.back() == '\r')) path.pop_back();
        // Exit status 0 with a path is a choice; anything else is a cancel.
        if (dialog.exitCode() == 0 && !path.empty())
            callback(path.c_str());
        else
            callback(nullptr);
        return false;
    }

private:
    platform::ChildProcess dialog;
    CNewFileSelector::Callback callback;
};

}  // namespace

std::string CNewFileSelector::findDialogProgram() {
    for (const auto& program : kDialogPrograms)
        if (!platform::findProgram(program.name).empty()) return program.name;
    return {};
}

std::string CNewFileSelector::proposedPath() const {
    std::string path = directory;
    if (!path.empty() && path.back() != '/') path += '/';
    if (style == kSelectSaveFile) path += saveName;
    return path;
}

std::vector<std::string> CNewFileSelector::commandLine(const std::string& program) const {
    std::vector<std::string> argv{program};
    const std::string start = proposedPath();
    if (program == "kdialog") {
        argv.push_back("--title");
        argv.push_back(title);
        argv.push_back(style == kSelectSaveFile ? "--getsavefilename" : "--getopenfilename");
        argv.push_back(start.empty() ? "." : start);
        std::string filters;
        for (const auto& e : extensions) {
            if (!filters.empty()) filters += '\n';
            filters += "*." + e.getExtension() + "|" + e.getDescription();
        }
        if (!filters.empty()) argv.push_back(filters);
        return argv;
    }
    argv.push_back("--file-selection");
    argv.push_back("--title=" + title);
    if (style == kSelectSaveFile) {
        argv.push_back("--save");
        argv.push_back("--confirm-overwrite");
    }
    if (!start.empty()) argv.push_back("--filename=" + start);
    for (const auto& e : extensions)
        argv.push_back("--file-filter=" + e.getDescription() + " (*." + e.getExtension() + ") | *." + e.getExtension());
    return argv;
}

bool CNewFileSelector::run(Callback callback) {
    if (!frame || !callback) return false;
    const std::string program = findDialogProgram();
    if (program.empty()) {
        std::string packages;
        for (const auto& p : kDialogPrograms) packages += std::string(packages.empty() ? "" : " or ") + "\"" + p.package + "\"";
        frame->showMessage("Please install the package " + packages + " to choose files.", "No file dialog available");
        return false;
    }
    auto task = std::make_unique<FileDialogTask>(std::move(callback));
    if (!task->start(commandLine(program))) return false;
    frame->addIdleTask(std::move(task));
    return true;
}
