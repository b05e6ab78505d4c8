// The system log of the simulated host. These definitions take the place of the C library's
// syslog family in any program linked with this library, so nothing reaches the machine's log.
// <syslog.h> is deliberately not included: its fortified inline wrappers would clash.
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <unistd.h>

#include "platform/Records.hpp"

extern "C" char* program_invocation_short_name;

namespace {

constexpr int kFacilityMask = 0x03f8;
constexpr int kLevelMask = 0x07;
constexpr int kUserFacility = 1 << 3;

struct LogSettings {
    std::mutex mutex;
    std::string ident;
    bool identSet = false;
    int facility = kUserFacility;
    int mask = 0xff;
};

LogSettings& Settings() {
    static LogSettings settings;
    return settings;
}

const char* LevelName(int level) {
    static const char* const names[] = {"emerg",   "alert",  "crit", "err",
                                        "warning", "notice", "info", "debug"};
    return names[level & kLevelMask];
}

std::string FacilityName(int facility) {
    static const char* const names[] = {"kern", "user", "mail", "daemon", "auth",     "syslog",
                                        "lpr",  "news", "uucp", "cron",   "authpriv", "ftp"};
    int number = facility >> 3;
    if (number >= 0 && number < 12)
        return names[number];
    if (number >= 16 && number <= 23)
        return "local" + std::to_string(number - 16);
    return std::to_string(number);
}

// Replaces each "%m" with the text of the saved errno, keeping "%%" as it is.
std::string ExpandErrno(const char* format, int savedErrno) {
    std::string out;
    for (const char* p = format; *p != '\0'; ++p) {
        if (p[0] == '%' && p[1] == '%') {
            out += "%%";
            ++p;
        } else if (p[0] == '%' && p[1] == 'm') {
            for (const char* e = std::strerror(savedErrno); *e != '\0'; ++e) {
                if (*e == '%')
                    out += '%';
                out += *e;
            }
            ++p;
        } else {
            out += *p;
        }
    }
    return out;
}

void Write(int priority, const char* format, va_list args) {
    int savedErrno = errno;
    if (format == nullptr)
        return;
    LogSettings& s = Settings();
    std::string ident;
    int facility;
    {
        std::lock_guard<std::mutex> lock(s.mutex);
        if ((s.mask & (1 << (priority & kLevelMask))) == 0)
            return;
        ident =
            s.identSet
                ? s.ident
                : std::string(program_invocation_short_name ? program_invocation_short_name : "");
        facility = (priority & kFacilityMask) != 0 ? (priority & kFacilityMask) : s.facility;
    }
    std::string expanded = ExpandErrno(format, savedErrno);
    va_list copy;
    va_copy(copy, args);
    int length = std::vsnprintf(nullptr, 0, expanded.c_str(), copy);
    va_end(copy);
    std::string message;
    if (length > 0) {
        message.resize(static_cast<size_t>(length) + 1);
        std::vsnprintf(message.data(), message.size(), expanded.c_str(), args);
        message.resize(static_cast<size_t>(length));
    }
    HostSim::Platform::AppendRecord("/var/log/syslog.log",
                                    HostSim::Platform::Timestamp() + " " + FacilityName(facility) +
                                        "." + LevelName(priority) + " " + ident + "[" +
                                        std::to_string(::getpid()) + "]: " + message);
    errno = savedErrno;
}

} // namespace

extern "C" {

void openlog(const char* ident, int /*option*/, int facility) {
    LogSettings& s = Settings();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.identSet = ident != nullptr;
    s.ident = ident != nullptr ? ident : "";
    if (facility != 0)
        s.facility = facility & kFacilityMask;
}

void closelog(void) {
    LogSettings& s = Settings();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.identSet = false;
    s.ident.clear();
    s.facility = kUserFacility;
}

int setlogmask(int mask) {
    LogSettings& s = Settings();
    std::lock_guard<std::mutex> lock(s.mutex);
    int old = s.mask;
    if (mask != 0)
        s.mask = mask;
    return old;
}

void vsyslog(int priority, const char* format, va_list args) {
    Write(priority, format, args);
}

void syslog(int priority, const char* format, ...) {
    va_list args;
    va_start(args, format);
    Write(priority, format, args);
    va_end(args);
}

void __vsyslog_chk(int priority, int /*flag*/, const char* format, va_list args) {
    Write(priority, format, args);
}

void __syslog_chk(int priority, int /*flag*/, const char* format, ...) {
    va_list args;
    va_start(args, format);
    Write(priority, format, args);
    va_end(args);
}

} // extern "C"
