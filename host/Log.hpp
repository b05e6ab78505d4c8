// The system log, under the identifier opened at start ("LANYX").
#pragma once
#include <syslog.h>

namespace Lanyx {

// syslog with a printf format; priority as syslog takes it (LOG_INFO, LOG_AUTH | LOG_ERR, ...).
void Log(int priority, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Error level "<what> with errno(<n>): <text>", from the current errno.
void LogErrno(const char* what);

} // namespace Lanyx
