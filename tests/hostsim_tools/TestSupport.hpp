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
    TempRoot() {
        std::string pattern = (std::filesystem::temp_directory_path() / "hostsim-tools-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
        path_ = pattern;
        std::filesystem::create_directories(path_ + "/var/lib/hostsim");
        std::filesystem::create_directories(path_ + "/var/log");
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
    bool exited = false;     // ended by itself with `status`
    int status = -1;
    bool signaled = false;   // ended on a signal
    bool timedOut = false;   // killed by the runner at its deadline
    std::string out;
    std::string err;
};

// A child on pipes, with only PYTHONHOME=/ in its environment (as the console starts tools).
class Child {
public:
    explicit Child(const std::vector<std::string>& argv) {
        int out[2], err[2];
        if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
        pid_ = ::fork();
        if (pid_ < 0) throw std::runtime_error("fork failed");
        if (pid_ == 0) {
            int null = ::open("/dev/null", O_RDONLY);
            ::dup2(null, 0);
            ::dup2(out[1], 1);
            ::dup2(err[1], 2);
            std::vector<char*> args;
            for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
            args.push_back(nullptr);
            char env0[] = "PYTHONHOME=/";
            char* env[] = {env0, nullptr};
            ::execve(args[0], args.data(), env);
            ::_exit(127);
        }
        ::close(out[1]);
        ::close(err[1]);
        outFd_ = out[0];
        errFd_ = err[0];
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        if (pid_ > 0) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
        if (outFd_ >= 0) ::close(outFd_);
        if (errFd_ >= 0) ::close(errFd_);
    }

    // Reads the two streams until `done` holds or the deadline passes; true if `done` held.
    template <typename Done>
    bool ReadUntil(Done done, std::chrono::milliseconds limit) {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (!done()) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) return false;
            pollfd fds[2] = {{outFd_, POLLIN, 0}, {errFd_, POLLIN, 0}};
            const int ready = ::poll(fds, 2, static_cast<int>(left.count()));
            if (ready < 0 && errno != EINTR) return false;
            for (int i = 0; i < 2; ++i) {
                if (fds[i].fd < 0 || (fds[i].revents & (POLLIN | POLLHUP | POLLERR)) == 0) continue;
                char buffer[4096];
                const ssize_t n = ::read(fds[i].fd, buffer, sizeof buffer);
                int& fd = i == 0 ? outFd_ : errFd_;
                if (n > 0)
                    (i == 0 ? result_.out : result_.err).append(buffer, static_cast<size_t>(n));
                else if (n == 0 || errno != EINTR) {
                    ::close(fd);
                    fd = -1;
                }
            }
        }
        return true;
    }

    bool StreamsClosed() const { return outFd_ < 0 && errFd_ < 0; }
    const ChildResult& Result() const { return result_; }

    // True once the child has been collected.
    bool Reap(bool block) {
        if (pid_ <= 0) return true;
        int status = 0;
        const pid_t done = ::waitpid(pid_, &status, block ? 0 : WNOHANG);
        if (done != pid_) return false;
        pid_ = -1;
        result_.exited = WIFEXITED(status);
        result_.status = result_.exited ? WEXITSTATUS(status) : -1;
        result_.signaled = WIFSIGNALED(status);
        return true;
    }

    // Ends the child by SIGKILL and collects it.
    void Kill() {
        if (pid_ > 0) {
            ::kill(pid_, SIGKILL);
            Reap(true);
        }
    }

    // Waits for the end of both streams and the child, killing it at the deadline.
    ChildResult Finish(std::chrono::milliseconds limit) {
        if (!ReadUntil([this] { return StreamsClosed(); }, limit)) {
            result_.timedOut = true;
            Kill();
            return result_;
        }
        // Both streams closed: the child has ended or is ending; a blocking wait is bounded by that.
        Reap(true);
        return result_;
    }

private:
    pid_t pid_ = -1;
    int outFd_ = -1;
    int errFd_ = -1;
    ChildResult result_;
};

inline ChildResult Run(const std::vector<std::string>& argv, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    Child child(argv);
    return child.Finish(limit);
}

} // namespace HostSimTest
