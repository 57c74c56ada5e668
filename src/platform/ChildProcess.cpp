#include "platform/ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace platform {

std::string findProgram(const std::string& name) {
    if (name.empty()) return {};
    if (name.find('/') != std::string::npos) return access(name.c_str(), X_OK) == 0 ? name : std::string{};
    const char* path = std::getenv("PATH");
    std::string dirs = path ? path : "/usr/bin:/bin";
    size_t begin = 0;
    while (begin <= dirs.size()) {
        size_t end = dirs.find(':', begin);
        if (end == std::string::npos) end = dirs.size();
        std::string dir = dirs.substr(begin, end - begin);
        std::string candidate = (dir.empty() ? std::string(".") : dir) + "/" + name;
        struct stat st{};
        if (stat(candidate.c_str(), &st) == 0 && S_ISREG(st.st_mode) && access(candidate.c_str(), X_OK) == 0)
            return candidate;
        begin = end + 1;
    }
    return {};
}

ChildProcess::~ChildProcess() {
    if (pid > 0) {
        kill(pid, SIGKILL);  // nothing a dialog or an opener holds is worth waiting for
        waitpid(pid, nullptr, 0);
    }
    closeOutput();
}

bool ChildProcess::start(const std::vector<std::string>& argv) {
    if (pid > 0 || argv.empty()) return false;
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) return false;

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, fds[1], 1);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);

    std::vector<char*> args;
    for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);

    pid_t child = -1;
    const int rc = posix_spawnp(&child, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    if (rc != 0) {
        close(fds[0]);
        return false;
    }
    pid = child;
    outFd = fds[0];
    fcntl(outFd, F_SETFL, fcntl(outFd, F_GETFL) | O_NONBLOCK);
    status = -1;
    out.clear();
    return true;
}

void ChildProcess::drainOutput() {
    if (outFd < 0) return;
    char buffer[4096];
    for (;;) {
        const ssize_t n = read(outFd, buffer, sizeof buffer);
        if (n > 0) {
            out.append(buffer, static_cast<size_t>(n));
        } else if (n == 0) {
            closeOutput();
            return;
        } else {
            if (errno == EINTR) continue;
            return;  // nothing more for now
        }
    }
}

void ChildProcess::closeOutput() {
    if (outFd >= 0) close(outFd);
    outFd = -1;
}

bool ChildProcess::poll() {
    if (pid <= 0) return true;
    drainOutput();
    int raw = 0;
    const pid_t r = waitpid(pid, &raw, WNOHANG);
    if (r == 0) return false;
    pid = -1;
    drainOutput();
    closeOutput();
    status = (r > 0 && WIFEXITED(raw)) ? WEXITSTATUS(raw) : -1;
    return true;
}

}  // namespace platform
