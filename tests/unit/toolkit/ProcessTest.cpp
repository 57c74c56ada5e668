// Programs started without a shell and polled: the dialog and opener plumbing underneath.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "FakePrograms.h"
#include "platform/ChildProcess.h"
#include "platform/ShellOpen.h"

namespace {

template <typename Poll>
auto pollUntilDone(Poll poll) {
    for (int i = 0; i < 1000; ++i) {
        if (auto done = poll()) return done;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return poll();
}

TEST(ChildProcess, ArgumentsArriveUnchangedAndOutputAndStatusComeBack) {
    FakePrograms fakes;
    fakes.add("echo-args", "for a in \"$@\"; do echo \"[$a]\"; done; exit 7");
    platform::ChildProcess child;
    ASSERT_TRUE(child.start({"echo-args", "two words", "$HOME", "a;b|c", ""}));
    EXPECT_TRUE(pollUntilDone([&] { return child.poll(); }));
    EXPECT_EQ(child.output(), "[two words]\n[$HOME]\n[a;b|c]\n[]\n");
    EXPECT_EQ(child.exitCode(), 7);
}

TEST(ChildProcess, MissingProgramDoesNotStart) {
    platform::ChildProcess child;
    EXPECT_FALSE(child.start({"tyx-no-such-program"}));
    EXPECT_TRUE(child.poll());
    EXPECT_TRUE(platform::findProgram("tyx-no-such-program").empty());
    EXPECT_FALSE(platform::findProgram("sh").empty());
}

TEST(ChildProcess, OwnerGoingAwayEndsARunningProgram) {
    FakePrograms fakes;
    fakes.add("wait-long", "echo $$; exec sleep 30");
    pid_t pid = 0;
    {
        platform::ChildProcess child;
        ASSERT_TRUE(child.start({"wait-long"}));
        EXPECT_TRUE(pollUntilDone([&] { return !child.poll() && !child.output().empty(); }));
        pid = std::stoi(child.output());
        EXPECT_EQ(kill(pid, 0), 0);
    }
    EXPECT_EQ(kill(pid, 0), -1);  // ended and reaped, not a zombie
}

TEST(ShellOpen, OpenerStatusMapsToTheResult) {
    using R = platform::ShellOpen::Result;
    const std::pair<const char*, R> cases[] = {{"exit 0", R::Opened}, {"exit 3", R::NoApplication}, {"exit 4", R::Failed}};
    for (auto [script, expected] : cases) {
        FakePrograms fakes(true);
        fakes.add("xdg-open", "[ \"$1\" = \"/tmp/manual file.pdf\" ] || exit 9\n" + std::string(script));
        platform::ShellOpen open("/tmp/manual file.pdf");
        EXPECT_TRUE(pollUntilDone([&] { return open.poll() != R::Pending; }));
        EXPECT_EQ(open.poll(), expected) << script;
    }
}

TEST(ShellOpen, MissingOpenerOrEmptyPathFails) {
    using R = platform::ShellOpen::Result;
    FakePrograms fakes(true);
    EXPECT_EQ(platform::ShellOpen("/tmp/manual.pdf").poll(), R::Failed);
    fakes.add("xdg-open", "exit 0");
    EXPECT_EQ(platform::ShellOpen("").poll(), R::Failed);
}

}  // namespace
