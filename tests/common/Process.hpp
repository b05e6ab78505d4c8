// Running a helper program to completion, with its output captured and a deadline.
#pragma once
#include <chrono>
#include <string>
#include <vector>

namespace LanyxTest {

using namespace std::chrono_literals;
using Duration = std::chrono::milliseconds;

// How a child ended, decoded from a wait status.
struct ExitInfo {
    int status = 0; // raw wait status

    bool Exited() const;
    int Code() const; // exit code, -1 when the process did not exit normally
    std::string Describe() const;
};

struct ProcessResult {
    ExitInfo exit;
    bool timedOut = false; // killed at the deadline
    std::string output;    // stdout and stderr, interleaved as written

    bool Succeeded() const { return !timedOut && exit.Exited() && exit.Code() == 0; }
};

// Runs argv[0] (a path) with the given arguments; stdin is /dev/null. The environment is the
// caller's, or exactly `env` ("NAME=value") when given. The child gets its own process group,
// which is killed at the deadline.
ProcessResult RunProcess(const std::vector<std::string>& argv, Duration timeout = 30s,
                         const std::vector<std::string>* env = nullptr);

// Quotes a command line for messages.
std::string JoinCommand(const std::vector<std::string>& argv);

} // namespace LanyxTest
