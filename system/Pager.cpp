#include "system/Pager.hpp"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" char** environ;

namespace Lanyx {

pid_t StartOnTerminal(const char* path, const char* const argv[])
{
    // A start that fails in the child reports its errno here; a successful exec closes it.
    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0)
        return -1;
    const pid_t pid = ::fork();
    if (pid < 0) {
        ::close(report[0]);
        ::close(report[1]);
        return -1;
    }
    if (pid == 0) {
        // Only async-signal-safe calls between fork and exec.
        sigset_t none;
        sigemptyset(&none);
        ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
        const auto reportFd = static_cast<unsigned>(report[1]);
        if (reportFd > 3)
            ::close_range(3, reportFd - 1, 0);
        ::close_range(reportFd + 1, ~0U, 0);
        ::execve(path, const_cast<char* const*>(argv), environ);
        const int error = errno;
        [[maybe_unused]] const ssize_t ignored = ::write(report[1], &error, sizeof error);
        ::_exit(127);
    }
    ::close(report[1]);
    int startError = 0;
    ssize_t got;
    do {
        got = ::read(report[0], &startError, sizeof startError);
    } while (got < 0 && errno == EINTR);
    ::close(report[0]);
    if (got > 0) {
        WaitForChild(pid);
        errno = startError;
        return -1;
    }
    return pid;
}

void WaitForChild(pid_t pid)
{
    while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace Lanyx
