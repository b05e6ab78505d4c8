// Starts a program on the console's own terminal, for as long as the operator looks at it.
#pragma once
#include <sys/types.h>

namespace Lanyx {

// Starts the program at `path` (already mapped) with the null-terminated `argv`, the process's
// whole environment and descriptors 0, 1 and 2 as they are; nothing else is inherited, and the
// signals the console routes through its signal thread are unblocked again for the child.
// Gives the child's process id, or -1 when it could not start.
pid_t StartOnTerminal(const char* path, const char* const argv[]);

// Blocking wait for a child started above, through interruptions.
void WaitForChild(pid_t pid);

} // namespace Lanyx
