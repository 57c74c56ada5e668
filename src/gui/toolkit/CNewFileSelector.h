#pragma once
// The desktop's file dialog, run as a separate program (zenity, else kdialog) so that the
// host's user-interface thread never waits for the user: the frame polls the program from its
// idle and calls back when it ends. Where neither program exists, the frame says which package
// to install.

#include <functional>
#include <string>
#include <vector>

class CFrame;

class CFileExtension {
public:
    CFileExtension(std::string description, std::string extension)
        : description(std::move(description)), extension(std::move(extension)) {}
    const std::string& getDescription() const { return description; }
    const std::string& getExtension() const { return extension; }

private:
    std::string description;
    std::string extension;
};

class CNewFileSelector {
public:
    enum Style { kSelectFile, kSelectSaveFile };
    // Called with the chosen path, or with null when the user cancelled or the dialog failed.
    using Callback = std::function<void(const char* path)>;

    CNewFileSelector(CFrame* frame, Style style = kSelectFile) : frame(frame), style(style) {}

    void setTitle(const std::string& t) { title = t; }
    void setInitialDirectory(const std::string& d) { directory = d; }
    void setDefaultSaveName(const std::string& n) { saveName = n; }
    void addFileExtension(const CFileExtension& e) { extensions.push_back(e); }

    // Starts the dialog; the selector itself may go away at once. False when no dialog could
    // be started (the callback is then never called).
    bool run(Callback callback);

    // The arguments that start the dialog with the given program ("zenity" or "kdialog").
    std::vector<std::string> commandLine(const std::string& program) const;
    // The dialog program this desktop offers, empty when it has none.
    static std::string findDialogProgram();

private:
    std::string proposedPath() const;

    CFrame* frame;
    Style style;
    std::string title;
    std::string directory;
    std::string saveName;
    std::vector<CFileExtension> extensions;
};
