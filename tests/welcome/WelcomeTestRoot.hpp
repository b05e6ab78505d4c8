// One simulated host for a whole test program, made by the hostsim command before the first
// test and removed after the last. Each test starts from the state as it was made.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace WelcomeTest {

// The root (LANYX_HOST_ROOT points at it).
const std::string& Root();

// Puts back the state the root was made with, then applies `change` to it.
void ResetState(const std::function<void(nlohmann::json&)>& change = {});
// Changes the current state.
void ChangeState(const std::function<void(nlohmann::json&)>& change);
// Makes a library operation throw with `text`.
void SetLibFault(const std::string& operation, const std::string& text);

// Lines of a record file under the root ("/var/log/syslog.log", "/var/log/audit.log") written
// since the last ResetState.
std::vector<std::string> RecordLines(const std::string& hostPath);
// Those lines that contain `text`.
std::vector<std::string> Matching(const std::string& hostPath, const std::string& text);

inline constexpr char syslogPath[] = "/var/log/syslog.log";
inline constexpr char auditPath[] = "/var/log/audit.log";

} // namespace WelcomeTest
