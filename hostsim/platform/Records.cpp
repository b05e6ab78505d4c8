#include "platform/Records.hpp"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

#include "platform/HostState.hpp"

namespace HostSim::Platform {

std::string VFormat(const char* format, va_list args) {
    va_list copy;
    va_copy(copy, args);
    int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, args);
        text.resize(static_cast<size_t>(length));
    }
    return text;
}

std::string Timestamp() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
    return text;
}

void AppendRecord(const std::string& hostPath, std::string text) {
    int saved = errno;
    // A record is one line: embedded newlines would split it.
    for (char& c : text) {
        if (c == '\n')
            c = ' ';
    }
    text.push_back('\n');
    int fd = ::open(HostFile(hostPath).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (fd >= 0) {
        ssize_t written;
        do {
            written = ::write(fd, text.data(), text.size());
        } while (written < 0 && errno == EINTR);
        ::close(fd);
    }
    errno = saved;
}

} // namespace HostSim::Platform
