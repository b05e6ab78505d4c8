// Temporary host roots and a bounded child runner for the host tool and PAM tests.
#pragma once
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "store/StateStore.hpp"

namespace HostSimTest {

// A fresh host root under the temporary folder, removed with everything in it.
class TempRoot {
public:
    TempRoot() : path_((std::filesystem::temp_directory_path() / "hostsim-tools-XXXXXX").string()) {
        if (::mkdtemp(path_.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
        for (const char* folder : {"/var/lib/hostsim", "/var/log"})
            std::filesystem::create_directories(path_ + folder);
    }
    TempRoot(const TempRoot&) = delete;
    TempRoot& operator=(const TempRoot&) = delete;
    ~TempRoot() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::string& Path() const { return path_; }
    HostSim::StateStore Store() const { return HostSim::StateStore(path_); }

private:
    std::string path_;
};

struct ChildResult {
    int status = -1;        // exit status, -1 when it did not exit by itself
    bool timedOut = false;  // killed at the deadline
    std::string out;        // stdout and stderr together
};

// Runs a child with only PYTHONHOME=/ in its environment (as the console starts tools), reading its
// output until it closes or the deadline passes; then the child is killed.
inline ChildResult Run(const std::vector<std::string>& argv,
                       std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    int pipeFds[2];
    if (::pipe2(pipeFds, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
    const pid_t pid = ::fork();
    if (pid < 0) throw std::runtime_error("fork failed");
    if (pid == 0) {
        ::dup2(::open("/dev/null", O_RDONLY), 0);
        ::dup2(pipeFds[1], 1);
        ::dup2(pipeFds[1], 2);
        std::vector<char*> args;
        for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
        args.push_back(nullptr);
        char env0[] = "PYTHONHOME=/";
        char* env[] = {env0, nullptr};
        ::execve(args[0], args.data(), env);
        ::_exit(127);
    }
    ::close(pipeFds[1]);
    ChildResult result;
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd fd = {pipeFds[0], POLLIN, 0};
        const int ready = left.count() <= 0 ? 0 : ::poll(&fd, 1, static_cast<int>(left.count()));
        if (ready == 0) {
            result.timedOut = true;
            break;
        }
        if (ready < 0) continue;
        char buffer[4096];
        const ssize_t n = ::read(pipeFds[0], buffer, sizeof buffer);
        if (n > 0)
            result.out.append(buffer, static_cast<size_t>(n));
        else if (n == 0 || errno != EINTR)
            break;
    }
    ::close(pipeFds[0]);
    if (result.timedOut) ::kill(pid, SIGKILL);
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    return result;
}

} // namespace HostSimTest
