#include "Process.hpp"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace LanyxTest {

bool ExitInfo::Exited() const {
    return WIFEXITED(status);
}
int ExitInfo::Code() const {
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
std::string ExitInfo::Describe() const {
    if (Exited())
        return "exited with status " + std::to_string(Code());
    if (WIFSIGNALED(status))
        return "killed by signal " + std::to_string(WTERMSIG(status)) + " (" +
               strsignal(WTERMSIG(status)) + ")";
    return "wait status " + std::to_string(status);
}

std::string JoinCommand(const std::vector<std::string>& argv) {
    std::string line;
    for (const auto& arg : argv) {
        if (!line.empty())
            line += ' ';
        if (arg.find_first_of(" \t'\"") == std::string::npos && !arg.empty())
            line += arg;
        else
            line += "'" + arg + "'";
    }
    return line;
}

ProcessResult RunProcess(const std::vector<std::string>& argv, Duration timeout,
                         const std::vector<std::string>* env) {
    ProcessResult result;
    int fds[2];
    if (argv.empty() || pipe2(fds, O_CLOEXEC) != 0) {
        result.exit.status = 127 << 8;
        result.output = "cannot start " + JoinCommand(argv);
        return result;
    }
    // Prepared before the fork: the child only execs.
    std::vector<char*> args, envp;
    for (const auto& arg : argv)
        args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    for (const auto& entry : env ? *env : std::vector<std::string>())
        envp.push_back(const_cast<char*>(entry.c_str()));
    envp.push_back(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        setpgid(0, 0);
        sigset_t all;
        sigemptyset(&all);
        sigprocmask(SIG_SETMASK, &all, nullptr);
        const int devNull = open("/dev/null", O_RDONLY);
        dup2(devNull, 0);
        dup2(fds[1], 1);
        dup2(fds[1], 2);
        execve(args[0], args.data(), env ? envp.data() : environ);
        [[maybe_unused]] auto n = write(2, "exec failed\n", 12);
        _exit(127);
    }
    close(fds[1]);
    if (pid < 0) {
        close(fds[0]);
        result.exit.status = 127 << 8;
        result.output = "fork failed";
        return result;
    }

    const auto deadline = std::chrono::steady_clock::now() + timeout;
    auto remainingMs = [&] {
        const auto left =
            std::chrono::duration_cast<Duration>(deadline - std::chrono::steady_clock::now());
        return static_cast<int>(std::max<long>(0, left.count()));
    };
    bool open = true;
    while (open) {
        pollfd pfd{fds[0], POLLIN, 0};
        const int ready = poll(&pfd, 1, remainingMs());
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0) {
            result.timedOut = true;
            break;
        }
        char buffer[4096];
        const ssize_t n = read(fds[0], buffer, sizeof buffer);
        if (n > 0)
            result.output.append(buffer, static_cast<size_t>(n));
        else if (n == 0 || errno != EINTR)
            open = false;
    }
    close(fds[0]);

    // The output is closed; the child normally ends at once, but it may have handed the pipe
    // away and kept running.
    int status = 0;
    while (!result.timedOut) {
        const pid_t done = waitpid(pid, &status, WNOHANG);
        if (done == pid) {
            result.exit.status = status;
            return result;
        }
        if (remainingMs() == 0)
            result.timedOut = true;
        else
            poll(nullptr, 0, 5);
    }
    kill(-pid, SIGKILL);
    kill(pid, SIGKILL);
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    result.exit.status = status;
    return result;
}

} // namespace LanyxTest
