#include "host/CommandRunner.hpp"

#include "host/HostRoot.hpp"
#include "host/Log.hpp"
#include "host/UniqueFd.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <ctime>
#include <new>
#include <string_view>
#include <termios.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Lanyx {

const char* const gridmeshVersionLine =
    "let v=`ostraq --formatter=keyvalue software plank get -n gridmesh-opsagent | awk "
    "'/Version/{ split($0, kv, \"=\"); split(kv[2], ver, \".\"); print ver[1] }'`; "
    "(exit $((v < 3)))";

namespace {

constexpr long stepMicroseconds = 20000;
constexpr int loggedCapture = 255;

struct Pipe {
    UniqueFd read;
    UniqueFd write;

    bool Make() {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            return false;
        read.Reset(ends[0]);
        write.Reset(ends[1]);
        return true;
    }
};

// One captured stream: keeps at most the capacity, drops what comes after, so the child never
// stalls on a full pipe.
struct Sink {
    UniqueFd* fd = nullptr;
    char* buffer = nullptr;
    int capacity = 0;
    int kept = 0;

    bool Active() const { return fd && fd->Valid(); }

    // Reads what is there now; closes the descriptor at end of file or on a hard error.
    void Drain() {
        char scratch[4096];
        while (Active()) {
            char* target = scratch;
            size_t room = sizeof scratch;
            if (buffer && kept < capacity) {
                target = buffer + kept;
                room = static_cast<size_t>(capacity - kept);
            }
            const ssize_t got = ::read(fd->Get(), target, room);
            if (got > 0) {
                if (target != scratch)
                    kept += static_cast<int>(got);
                continue;
            }
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0 && errno == EAGAIN)
                return;
            fd->Reset();
        }
    }
};

void SetNonBlocking(int fd) {
    const int flags = ::fcntl(fd, F_GETFL);
    if (flags >= 0)
        ::fcntl(fd, F_SETFL, flags | O_NONBLOCK);
}

// Waits up to `microseconds` for output on the sinks, draining whatever arrives; returns early
// when a stream reaches its end.
void PumpFor(Sink* sinks, long microseconds) {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    const long long deadline = now.tv_sec * 1000000LL + now.tv_nsec / 1000 + microseconds;
    for (;;) {
        pollfd fds[2];
        Sink* owners[2];
        nfds_t count = 0;
        for (int i = 0; i < 2; ++i) {
            if (sinks[i].Active()) {
                fds[count] = pollfd{sinks[i].fd->Get(), POLLIN, 0};
                owners[count++] = &sinks[i];
            }
        }
        ::clock_gettime(CLOCK_MONOTONIC, &now);
        const long long left = deadline - (now.tv_sec * 1000000LL + now.tv_nsec / 1000);
        if (left <= 0)
            return;
        if (count == 0) {
            const timespec pause{0, static_cast<long>(left * 1000)};
            ::nanosleep(&pause, nullptr);
            return;
        }
        const int ready = ::poll(fds, count, static_cast<int>((left + 999) / 1000));
        if (ready <= 0)
            continue;
        bool closed = false;
        for (nfds_t i = 0; i < count; ++i) {
            if (fds[i].revents != 0) {
                owners[i]->Drain();
                closed = closed || !owners[i]->Active();
            }
        }
        // A stream that ended often means the child did: let the caller look.
        if (closed)
            return;
    }
}

// Writes the child's input while keeping its output flowing. A closed reader must not raise
// SIGPIPE in the console, so SIGPIPE is held back on this thread for the write only.
// With a time-out the wait for a child that reads nothing counts against `budget`.
void FeedInput(int fd, const char* input, int length, Sink* sinks, bool timed, long long& budget) {
    sigset_t pipeSignal, previous, pending;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipeSignal, &previous);
    sigemptyset(&pending);
    ::sigpending(&pending);
    const bool wasPending = sigismember(&pending, SIGPIPE) == 1;
    bool broken = false;

    int written = 0;
    while (written < length) {
        const ssize_t n = ::write(fd, input + written, static_cast<size_t>(length - written));
        if (n > 0) {
            written += static_cast<int>(n);
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && errno == EAGAIN) {
            pollfd out{fd, POLLOUT, 0};
            ::poll(&out, 1, 0);
            if ((out.revents & POLLOUT) == 0) {
                if (timed && budget <= 0)
                    break;
                PumpFor(sinks, stepMicroseconds);
                budget -= stepMicroseconds;
            }
            continue;
        }
        broken = n < 0 && errno == EPIPE;
        break;
    }

    if (broken && !wasPending) {
        const timespec none{0, 0};
        while (::sigtimedwait(&pipeSignal, nullptr, &none) < 0 && errno == EINTR) {
        }
    }
    ::pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

// Child side, between fork and exec: only async-signal-safe calls.
[[noreturn]] void StartChild(const char* path, const char* const argv[], const char* const envp[],
                             const int childFds[3], int reportFd, int maxFd, ChildJob job) {
    // The signal mask is inherited as it is: the signals the console routes through its signal
    // thread stay blocked in every child but a terminal job, which clears it below.
    // Lift the three ends clear of 0..2 first, so that no dup2 overwrites another end.
    const int ends[3] = {::fcntl(childFds[0], F_DUPFD, 3), ::fcntl(childFds[1], F_DUPFD, 3),
                         ::fcntl(childFds[2], F_DUPFD, 3)};
    for (int target = 0; target < 3; ++target) {
        if (ends[target] < 0 || ::dup2(ends[target], target) != target) {
            const int error = errno;
            [[maybe_unused]] ssize_t ignored = ::write(reportFd, &error, sizeof error);
            ::_exit(127);
        }
    }
    // The report descriptor closes itself at exec; everything else beyond 2 goes now.
    const auto report = static_cast<unsigned>(reportFd);
    if ((report > 3 && ::close_range(3, report - 1, 0) != 0) ||
        ::close_range(report + 1, ~0U, 0) != 0) {
        for (int fd = 3; fd < maxFd; ++fd) {
            if (fd != reportFd)
                ::close(fd);
        }
    }
    if (job == ChildJob::TerminalForeground) {
        // Taking the terminal from a background group needs SIGTTOU held off.
        sigset_t mask;
        ::sigemptyset(&mask);
        ::sigaddset(&mask, SIGTTOU);
        ::sigprocmask(SIG_BLOCK, &mask, nullptr);
        if (::setpgid(0, 0) == 0)
            ::tcsetpgrp(0, ::getpid());
        ::sigemptyset(&mask);
        ::sigprocmask(SIG_SETMASK, &mask, nullptr);
    }
    ::execve(path, const_cast<char* const*>(argv), const_cast<char* const*>(envp));
    const int error = errno;
    [[maybe_unused]] ssize_t ignored = ::write(reportFd, &error, sizeof error);
    ::_exit(127);
}

// Waits for the child that the parent SIGKILLed, briefly: a child stuck in the kernel is left.
void CollectKilled(pid_t pid) {
    for (int i = 0; i < 50; ++i) {
        const pid_t got = ::waitpid(pid, nullptr, WNOHANG);
        if (got == pid || (got < 0 && errno != EINTR))
            return;
        const timespec pause{0, stepMicroseconds * 1000};
        ::nanosleep(&pause, nullptr);
    }
}

std::string JoinVector(const char* const argv[]) {
    std::string line;
    for (int i = 0; argv[i]; ++i) {
        if (i > 0)
            line += ' ';
        line += argv[i];
    }
    return line;
}

} // namespace

pid_t TesselForkExec(const char* path, const char* const argv[], const char* const envp[],
                     const int childFds[3], ChildJob job) {
    // The report pipe stays silent and closes at a successful exec; a number in it is the errno
    // of a start that failed.
    Pipe report;
    if (!report.Make())
        return -1;
    long openMax = ::sysconf(_SC_OPEN_MAX);
    if (openMax < 0 || openMax > 65536)
        openMax = 65536;

    const pid_t pid = ::fork();
    if (pid < 0)
        return -1;
    if (pid == 0)
        StartChild(path, argv, envp, childFds, report.write.Get(), static_cast<int>(openMax), job);
    report.write.Reset();

    int startError = 0;
    ssize_t got;
    do {
        got = ::read(report.read.Get(), &startError, sizeof startError);
    } while (got < 0 && errno == EINTR);
    if (got > 0) {
        while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
        }
        errno = startError;
        return -1;
    }
    return pid;
}

int RunCommand(const char* path, const char* const argv[], char* out, int* outLength, char* err,
               int* errLength, const char* input, int inputLength, int timeoutSeconds) {
    const int outCapacity = out && outLength ? std::max(*outLength, 0) : 0;
    const int errCapacity = err && errLength ? std::max(*errLength, 0) : 0;
    if (outLength)
        *outLength = 0;
    if (errLength)
        *errLength = 0;

    Pipe in, output, error;
    if (!in.Make() || !output.Make() || !error.Make())
        return -1;

    const std::string hostPath = HostPath(path);
    static const char* const environment[] = {"PYTHONHOME=/", nullptr};
    const int childFds[3] = {in.read.Get(), output.write.Get(), error.write.Get()};
    const pid_t pid = TesselForkExec(hostPath.c_str(), argv, environment, childFds);
    in.read.Reset();
    output.write.Reset();
    error.write.Reset();
    if (pid < 0)
        return -1;

    SetNonBlocking(output.read.Get());
    SetNonBlocking(error.read.Get());
    Sink sinks[2] = {{&output.read, out, outCapacity, 0}, {&error.read, err, errCapacity, 0}};

    const bool timed = timeoutSeconds >= 1;
    long long budget = timed ? static_cast<long long>(timeoutSeconds) * 1000000 : 0;
    if (input && inputLength > 0) {
        SetNonBlocking(in.write.Get());
        FeedInput(in.write.Get(), input, inputLength, sinks, timed, budget);
    }
    in.write.Reset();

    int status = 0;
    bool collected = false;
    for (;;) {
        pid_t done = ::waitpid(pid, &status, WNOHANG);
        if (done == pid) {
            collected = true;
            break;
        }
        if (done < 0 && errno != EINTR)
            break;
        if (!timed && !sinks[0].Active() && !sinks[1].Active()) {
            // Nothing left to drain: the one blocking wait.
            do {
                done = ::waitpid(pid, &status, 0);
            } while (done < 0 && errno == EINTR);
            collected = done == pid;
            break;
        }
        if (timed && budget <= 0) {
            Log(LOG_WARNING, "Killing process because %d seconds timeout expired", timeoutSeconds);
            ::kill(pid, SIGKILL);
            CollectKilled(pid);
            break;
        }
        PumpFor(sinks, stepMicroseconds);
        budget -= stepMicroseconds;
    }

    // All the child wrote is in the pipes now; take it without waiting for a grandchild that may
    // still hold a write end.
    sinks[0].Drain();
    sinks[1].Drain();
    if (outLength && out)
        *outLength = sinks[0].kept;
    if (errLength && err)
        *errLength = sinks[1].kept;

    if (!collected || !WIFEXITED(status)) {
        Log(LOG_ERR, "Run Command did not terminate normally");
        return -1;
    }
    return WEXITSTATUS(status);
}

int RunShell(const std::string& line) {
    const char* const argv[] = {"sh", "-c", line.c_str(), nullptr};
    return RunCommand("/bin/sh", argv);
}

int RunCommandLogged(const char* path, const char* const argv[]) {
    const std::string line = JoinVector(argv);
    char out[loggedCapture + 1];
    char err[loggedCapture + 1];
    int outLength = loggedCapture;
    int errLength = loggedCapture;
    const int result = RunCommand(path, argv, out, &outLength, err, &errLength);
    out[outLength] = '\0';
    err[errLength] = '\0';
    if (result != 0)
        Log(LOG_ERR, "Command \"%s\" failed (rc=%d): (stdout=%s, stderr=%s)", line.c_str(), result,
            out, err);
    else
        Log(LOG_INFO, "Command \"%s\" succeeded", line.c_str());
    return result;
}

int RunOstraq(const char* const argv[]) {
    const std::string line = JoinVector(argv);
    char out[loggedCapture + 1];
    int outLength = loggedCapture;
    const int result = RunCommand("/bin/ostraq", argv, out, &outLength);
    out[outLength] = '\0';
    if (result != 0)
        Log(LOG_ERR, "Command \"%s\" failed (rc=%d): %s", line.c_str(), result, out);
    else
        Log(LOG_INFO, "Command \"%s\" succeeded", line.c_str());
    return result;
}

int RunHelmq(const char* path, const char* argv[], char* out, int* outLength, char* err,
             int* errLength) {
    // The retry gets the caller's full buffers again; a buffer is never read past its capacity.
    const int outCapacity = outLength ? *outLength : 0;
    const int errCapacity = errLength ? *errLength : 0;
    const int result = RunCommand(path, argv, out, outLength, err, errLength);
    if (result != 255)
        return result;

    Log(LOG_INFO, "Unable to execute command helmq %s using user %s. Using user %s", argv[3],
        argv[2], lanyxUser.c_str());
    argv[2] = lanyxUser.c_str();
    if (outLength)
        *outLength = outCapacity;
    if (errLength)
        *errLength = errCapacity;
    return RunCommand(path, argv, out, outLength, err, errLength);
}

bool HelmqQueryBool(const std::string& command) {
    std::string copy;
    try {
        copy = command;
    } catch (const std::bad_alloc&) {
        Log(LOG_ERR, "helmq invocation failure: %s", std::strerror(ENOMEM));
        return false;
    }
    Log(LOG_INFO, "helmq invocation: get %s", copy.c_str());

    const char* const argv[] = {"helmq", "-U", lanyxUser.c_str(), copy.c_str(), nullptr};
    char out[loggedCapture];
    int outLength = loggedCapture;
    const int result =
        RunCommand("/bin/helmq", argv, out, &outLength, nullptr, nullptr, nullptr, 0, 120);
    if (result != 0)
        Log(LOG_ERR, "helmq invocation failure: %m");
    return outLength >= 4 && std::memcmp(out, "true", 4) == 0;
}

void HelmqRefresh() {
    const char* argv[] = {"helmq", "-U", loginUser.c_str(), "helmcore/refresh", nullptr};
    RunHelmq("/bin/helmq", argv);
}

void HaltGuestsAndAutostop(bool graceful) {
    const char* helmq[] = {"helmq", "-U", loginUser.c_str(), "helmnode/autostartmanager/autostop",
                           nullptr};
    RunHelmq("/bin/helmq", helmq);

    const char* const gentle[] = {"haltGuests", nullptr};
    const char* const forced[] = {"haltGuests", "--terminate", nullptr};
    RunCommand("/bin/haltGuests", graceful ? gentle : forced);
}

std::string GridmeshAgentLine(const char* action) {
    return HostPath("/etc/init.d/gridmesh-opsagent") + " " + action;
}

void GridmeshAgentStop(bool& stopped) {
    Log(LOG_INFO, "Stopping gridmesh-opsagent.");
    stopped = RunShell(GridmeshAgentLine("stop")) == 0;
    if (stopped)
        Log(LOG_INFO, "gridmesh-opsagent has been successfully stopped.");
    else
        Log(LOG_ERR, "Failed to stop gridmesh-opsagent.");
}

void GridmeshAgentStart(bool stopped) {
    if (!stopped) {
        Log(LOG_INFO, "Skipping gridmesh-opsagent start.");
        return;
    }
    Log(LOG_INFO, "Starting gridmesh-opsagent.");
    if (RunShell(GridmeshAgentLine("start")) == 0)
        Log(LOG_INFO, "gridmesh-opsagent has been successfully started.");
    else
        Log(LOG_ERR, "Failed to start gridmesh-opsagent.");
}

bool GridmeshAgentUsable() {
    // The log names the line as the host knows it, not as mapped under a test root.
    Log(LOG_INFO, "Running: %s", "/etc/init.d/gridmesh-opsagent status");
    const bool present = RunShell(GridmeshAgentLine("status")) == 0;
    Log(LOG_INFO, "gridmesh-opsagent is %spresent on the system.", present ? "" : "not ");
    if (!present)
        return false;

    Log(LOG_INFO, "Running: %s", gridmeshVersionLine);
    if (RunShell(gridmeshVersionLine) != 0)
        return false;
    Log(LOG_INFO, "gridmesh-opsagent version >= 3 detected");
    return true;
}

bool GridmeshCfgMove(const std::string& portName, const std::string& interfaceName) {
    const char* const argv[] = {"gridmeshcfg-xbar",    "-m",   "-p", portName.c_str(), "-I",
                                interfaceName.c_str(), nullptr};
    return RunCommandLogged("/usr/lib64/zephora/gridmesh-opsagent/bin/gridmeshcfg-xbar", argv) == 0;
}

bool AddXbar(const std::string& switchName) {
    const char* const argv[] = {"ostraq", "network",          "xbar", "standard", "add",
                                "-v",     switchName.c_str(), nullptr};
    return RunOstraq(argv) == 0;
}

bool SetXbarUplink(const std::string& switchName, const std::string& uplinkName, bool add) {
    const char* const argv[] = {
        "ostraq", "network",          "xbar", "standard",         "uplink", add ? "add" : "remove",
        "-u",     uplinkName.c_str(), "-v",   switchName.c_str(), nullptr};
    return RunOstraq(argv) == 0;
}

bool AddXbarPortGroup(const std::string& portGroupName, const std::string& switchName) {
    const char* const argv[] = {"ostraq",    "network",
                                "xbar",      "standard",
                                "portgroup", "add",
                                "-p",        portGroupName.c_str(),
                                "-v",        switchName.c_str(),
                                nullptr};
    return RunOstraq(argv) == 0;
}

} // namespace Lanyx
