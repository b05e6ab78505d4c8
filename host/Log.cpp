#include "host/Log.hpp"

#include <cerrno>
#include <cstdarg>
#include <cstring>

namespace Lanyx {

void Log(int priority, const char* format, ...) {
    va_list args;
    va_start(args, format);
    vsyslog(priority, format, args);
    va_end(args);
}

void LogErrno(const char* what) {
    const int error = errno;
    char text[256] = {};
    // GNU strerror_r may return a static string instead of filling the buffer.
    const char* message = strerror_r(error, text, sizeof text);
    Log(LOG_ERR, "%s with errno(%d): %s", what, error, message);
}

} // namespace Lanyx
