// Whole-line command execution: the line runs under the real /bin/sh, away from the terminal.
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include "keelson/Lib.hpp"
#include "keelson/Util.hpp"
#include "platform/HostState.hpp"

extern "C" char** environ;

namespace TesselCtl::Util {

int TesselCtl_Exec(const std::string& commandLine, bool /*background*/, bool /*wait*/,
                   bool /*useShell*/) {
    HostSim::Platform::StateFor({"TesselCtl_Exec"});
    const char* argv[] = {"sh", "-c", commandLine.c_str(), nullptr};
    // The command has no terminal: its output would land on the console's screen, and it must
    // not take the operator's keys.
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    int rc =
        ::posix_spawn(&pid, "/bin/sh", &actions, nullptr, const_cast<char* const*>(argv), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (rc != 0)
        throw Keelson::Lib::KeelsonException("Cannot run \"" + commandLine +
                                             "\": " + std::strerror(rc));
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR)
            throw Keelson::Lib::KeelsonException("Cannot wait for \"" + commandLine +
                                                 "\": " + std::strerror(errno));
    }
    if (WIFSIGNALED(status))
        throw Keelson::Lib::KeelsonException("\"" + commandLine + "\" ended on signal " +
                                             std::to_string(WTERMSIG(status)));
    return WEXITSTATUS(status);
}

} // namespace TesselCtl::Util
