#pragma once
// A program started without a shell (arguments passed as they are, so no quoting can go
// wrong) and watched without blocking: the user-interface thread polls it from its idle.
// Its standard output is collected; its standard input and error go to /dev/null.

#include <string>
#include <sys/types.h>
#include <vector>

namespace platform {

// The full path of an executable program found on PATH, empty when there is none.
std::string findProgram(const std::string& name);

class ChildProcess {
public:
    ChildProcess() = default;
    // A program still running when its owner goes away is terminated and reaped.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // argv[0] is looked up on PATH. False when the program could not be started.
    bool start(const std::vector<std::string>& argv);

    // Collects output and answers true once the program has ended (or was never started).
    bool poll();
    bool running() const { return pid > 0; }

    // Valid once poll() answered true: the exit status (-1 when killed by a signal or never
    // started) and everything it wrote to its standard output.
    int exitCode() const { return status; }
    const std::string& output() const { return out; }

private:
    void drainOutput();
    void closeOutput();

    pid_t pid = -1;
    int outFd = -1;
    int status = -1;
    std::string out;
};

}  // namespace platform
