// The decisions of the start-up sequence, kept apart from the terminal and the host so that
// each is a plain function of its inputs.
#pragma once
#include <optional>
#include <string>
#include <sys/types.h>

namespace Lanyx {

// The virtual terminal named on the command line: strtol's value when it is 1 to 63, else none.
std::optional<int> ParseVtNumber(const char* text);

struct TerminalDecision {
    bool consoleMode = false;
    // The value TERM is overwritten with, when it is.
    std::optional<std::string> term;
};

// `term` and `sshClient` are the environment values, null when not set.
TerminalDecision DecideTerminalType(bool isVirtualTerminal, const char* term,
                                    const char* sshClient);

enum class PidFileResult {
    Written,       // the own pid is in the file now
    HeldByAnother, // the file names a running process and was left alone
};

// Takes over the pid file unless it names a running process. A write failure is not reported.
PidFileResult ClaimPidFile(const std::string& path, pid_t self);

} // namespace Lanyx
