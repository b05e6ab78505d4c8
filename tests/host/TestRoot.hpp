// A private host root for one test program: made before the first test, removed after the last.
#pragma once
#include <string>
#include <vector>

namespace HostTest {

const std::string& Root(); // LANYX_HOST_ROOT points at it
std::string Under(const std::string& hostPath);

void WriteFile(const std::string& hostPath, const std::string& text);
// An executable sh script; `body` follows the "#!/bin/sh" line.
void WriteScript(const std::string& hostPath, const std::string& body);
std::string ReadFile(const std::string& hostPath); // "" when there is none
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
