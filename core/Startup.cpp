#include "core/Startup.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <signal.h>

#include "host/UniqueFd.hpp"

namespace Lanyx {

std::optional<int> ParseVtNumber(const char* text) {
    if (!text)
        return std::nullopt;
    const long value = std::strtol(text, nullptr, 10);
    if (value < 1 || value > 63)
        return std::nullopt;
    return static_cast<int>(value);
}

TerminalDecision DecideTerminalType(bool isVirtualTerminal, const char* term,
                                    const char* sshClient) {
    TerminalDecision decision;
    if (isVirtualTerminal) {
        decision.consoleMode = true;
        decision.term = "linux";
    } else if (term && std::strcmp(term, "linux") == 0) {
        // The linux type is only right on a real console.
        decision.term = "vt102";
    } else if (term && std::strcmp(term, "xterm") == 0 && !sshClient) {
        decision.consoleMode = true;
    }
    return decision;
}

PidFileResult ClaimPidFile(const std::string& path, pid_t self) {
    {
        std::ifstream in(path);
        long pid = 0;
        if (in >> pid && pid > 0 && pid <= INT32_MAX && kill(static_cast<pid_t>(pid), 0) == 0)
            return PidFileResult::HeldByAnother;
    }
    UniqueFd fd(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    if (fd.Valid()) {
        const std::string text = std::to_string(self);
        [[maybe_unused]] ssize_t written = write(fd.Get(), text.data(), text.size());
    }
    return PidFileResult::Written;
}

} // namespace Lanyx
