// Every child process of the console starts here: the host's tools, their captured output,
// their time-outs, and the small operations built on them.
#pragma once
#include <string>

#include <sys/types.h>

#include "host/Accounts.hpp"

namespace Lanyx {

// How a child stands to the console's terminal.
enum class ChildJob {
    ConsoleGroup,       // in the console's process group, with the console's signal mask
    TerminalForeground, // a process group of its own that has the terminal on descriptor 0,
                        // with no signal blocked: the terminal's Ctrl-C reaches it alone
};

// Starts the program at `path` (a real path, already mapped) with the null-terminated `argv` and
// `envp`. The child has exactly `childFds` as its descriptors 0, 1 and 2, nothing else. Gives the
// child's process id, or -1 with errno set when it could not start. The host kernel's one-step
// start where it has one; fork and exec here.
pid_t TesselForkExec(const char* path, const char* const argv[], const char* const envp[],
                     const int childFds[3], ChildJob job = ChildJob::ConsoleGroup);

// Runs the tool at the host path `path` (mapped under the host root) with the null-terminated
// argument vector `argv` (argument 0 is the tool's short name). The child gets exactly
// descriptors 0, 1, 2 and the environment "PYTHONHOME=/".
//
// Captures: `out`/`outLength` and `err`/`errLength` are optional; on entry the length is the
// buffer's capacity, on return the number of bytes kept (the rest is discarded). The text is not
// terminated. `input`/`inputLength` are optional bytes for the child's standard input.
// `timeoutSeconds` below 1 waits for ever; otherwise the child is killed when it expires.
//
// Result: the exit status 0..255, or -1 when the child could not start, ended on a signal or
// was killed at its time-out.
int RunCommand(const char* path, const char* const argv[], char* out = nullptr,
               int* outLength = nullptr, char* err = nullptr, int* errLength = nullptr,
               const char* input = nullptr, int inputLength = 0, int timeoutSeconds = 0);

// "sh -c <line>" through the host's /bin/sh; nothing captured, no time-out. Host paths inside
// the line are the caller's to map.
int RunShell(const std::string& line);

// Captures 255 bytes of each stream and logs success or failure with the command line.
int RunCommandLogged(const char* path, const char* const argv[]);

// Runs /bin/ostraq with `argv` ("ostraq", ...), capturing 255 bytes of stdout, and logs.
int RunOstraq(const char* const argv[]);

// Runs helmq with a vector "helmq", "-U", user, command, null; no time-out. A result of 255
// means the tool refused the user: entry 2 of `argv` is then replaced by `lanyxUser` and the
// command runs once more; that result is returned.
int RunHelmq(const char* path, const char* argv[], char* out = nullptr, int* outLength = nullptr,
             char* err = nullptr, int* errLength = nullptr);

// Asks helmq as `lanyxUser`; true when its output begins with "true".
bool HelmqQueryBool(const std::string& command);

// Asks the host agent to reread the host, as `loginUser`.
void HelmqRefresh();

// Stops autostart and halts the guests; `graceful` false forces them off.
void HaltGuestsAndAutostop(bool graceful);

// The overlay network agent. `stopped` tells GridmeshAgentStart whether the stop happened here;
// a start is skipped when it did not.
void GridmeshAgentStop(bool& stopped);
void GridmeshAgentStart(bool stopped);
// True when the agent is present and at version 3 or above.
bool GridmeshAgentUsable();
// Moves the kernel interface `interfaceName` to the port `portName` through the agent's tool.
bool GridmeshCfgMove(const std::string& portName, const std::string& interfaceName);

// Standard switch operations through ostraq; true on exit status 0.
bool AddXbar(const std::string& switchName);
bool SetXbarUplink(const std::string& switchName, const std::string& uplinkName, bool add);
bool AddXbarPortGroup(const std::string& portGroupName, const std::string& switchName);

// Status line of the overlay agent (a host path inside it, so it is built under the host root).
std::string GridmeshAgentLine(const char* action);
// The version test of the overlay agent; its ostraq comes from the host shell's PATH.
extern const char* const gridmeshVersionLine;

} // namespace Lanyx
