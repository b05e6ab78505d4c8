// A private host root for one test program: made before the first test, removed after the last.
#pragma once
#include <string>
#include <vector>

namespace HostTest {

// The root folder (no trailing slash); LANYX_HOST_ROOT points at it.
const std::string& Root();

// <root> + hostPath
std::string Under(const std::string& hostPath);

// Writes an executable sh script at the host path; `body` follows the "#!/bin/sh" line.
void WriteScript(const std::string& hostPath, const std::string& body);
// Writes a plain file at the host path (folders are made as needed).
void WriteFile(const std::string& hostPath, const std::string& text);
// The whole file at the host path, or "" when there is none.
std::string ReadFile(const std::string& hostPath);
void RemoveFile(const std::string& hostPath);

// Lines of <root>/var/log/syslog.log written since the mark, each as "<facility>.<level> <message>".
class LogMark {
public:
    LogMark();
    std::vector<std::string> Lines() const;

private:
    std::size_t offset_;
};

} // namespace HostTest
