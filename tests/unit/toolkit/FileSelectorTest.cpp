// The file dialog as a separate program, with stand-ins for zenity and kdialog.
#include <gtest/gtest.h>

#include <optional>

#include "FakePrograms.h"
#include "gui/toolkit/CMessageBox.h"
#include "gui/toolkit/CNewFileSelector.h"

namespace {

using Args = std::vector<std::string>;

CNewFileSelector presetSaver(CFrame* frame) {
    CNewFileSelector s(frame, CNewFileSelector::kSelectSaveFile);
    s.setTitle("Save preset");
    s.addFileExtension(CFileExtension("Tyx Preset", "tyx"));
    s.setInitialDirectory("/home/u/presets");
    s.setDefaultSaveName("Warm.tyx");
    return s;
}

TEST(FileSelector, CommandLinesForBothDialogPrograms) {
    const CNewFileSelector save = presetSaver(nullptr);
    EXPECT_EQ(save.commandLine("zenity"),
              (Args{"zenity", "--file-selection", "--title=Save preset", "--save", "--confirm-overwrite",
                    "--filename=/home/u/presets/Warm.tyx", "--file-filter=Tyx Preset (*.tyx) | *.tyx"}));
    EXPECT_EQ(save.commandLine("kdialog"), (Args{"kdialog", "--title", "Save preset", "--getsavefilename",
                                                 "/home/u/presets/Warm.tyx", "*.tyx|Tyx Preset"}));

    CNewFileSelector load(nullptr, CNewFileSelector::kSelectFile);
    load.setTitle("Load bank (endian-reversed)");
    load.addFileExtension(CFileExtension("Tyx Bank", "tyb"));
    load.setDefaultSaveName("ignored.tyb");
    EXPECT_EQ(load.commandLine("zenity"), (Args{"zenity", "--file-selection", "--title=Load bank (endian-reversed)",
                                                "--file-filter=Tyx Bank (*.tyb) | *.tyb"}));
    EXPECT_EQ(load.commandLine("kdialog"),
              (Args{"kdialog", "--title", "Load bank (endian-reversed)", "--getopenfilename", ".", "*.tyb|Tyx Bank"}));
}

struct DialogRun {
    bool done = false;
    std::optional<std::string> path;
    CNewFileSelector::Callback callback() {
        return [this](const char* p) {
            done = true;
            if (p) path = p;
        };
    }
};

TEST(FileSelector, ChosenPathComesBackFromIdleAndCancelGivesNothing) {
    FakePrograms fakes;
    fakes.add("zenity", "echo '/home/u/My Preset.tyx'");
    CFrame frame(CRect(0, 0, 100, 100));
    DialogRun chosen;
    ASSERT_TRUE(presetSaver(&frame).run(chosen.callback()));
    EXPECT_FALSE(chosen.done);  // run never waits for the dialog
    ASSERT_TRUE(idleUntil(frame, [&] { return chosen.done; }));
    EXPECT_EQ(chosen.path, "/home/u/My Preset.tyx");

    fakes.add("zenity", "exit 1");
    DialogRun cancelled;
    ASSERT_TRUE(presetSaver(&frame).run(cancelled.callback()));
    ASSERT_TRUE(idleUntil(frame, [&] { return cancelled.done; }));
    EXPECT_FALSE(cancelled.path);
}

TEST(FileSelector, KdialogServesWhenZenityIsMissing) {
    FakePrograms fakes(true);
    fakes.add("kdialog", "echo \"$4\"");
    EXPECT_EQ(CNewFileSelector::findDialogProgram(), "kdialog");
    CFrame frame(CRect(0, 0, 100, 100));
    DialogRun run;
    ASSERT_TRUE(presetSaver(&frame).run(run.callback()));
    ASSERT_TRUE(idleUntil(frame, [&] { return run.done; }));
    EXPECT_EQ(run.path, "/home/u/presets/Warm.tyx");
}

TEST(FileSelector, WithoutADialogProgramTheFrameSaysWhatToInstall) {
    FakePrograms fakes(true);
    CFrame frame(CRect(0, 0, 750, 509));
    DialogRun run;
    EXPECT_FALSE(presetSaver(&frame).run(run.callback()));
    auto* box = dynamic_cast<CMessageBox*>(frame.getModalView());
    ASSERT_NE(box, nullptr);
    EXPECT_NE(box->getText().find("\"zenity\""), std::string::npos);
    EXPECT_NE(box->getText().find("\"kdialog\""), std::string::npos);
    frame.idle();
    EXPECT_FALSE(run.done);
}

TEST(FileSelector, ClosingTheFrameEndsTheDialogWithoutCallingBack) {
    FakePrograms fakes;
    fakes.add("zenity", "exec sleep 30");
    DialogRun run;
    {
        CFrame frame(CRect(0, 0, 100, 100));
        ASSERT_TRUE(presetSaver(&frame).run(run.callback()));
        frame.idle();
    }
    EXPECT_FALSE(run.done);
}

}  // namespace
