// Lines appended to the simulated host's record files (system log, events, audit).
#pragma once
#include <cstdarg>
#include <string>

namespace HostSim::Platform {

// "YYYY-MM-DDTHH:MM:SS" in local time.
std::string Timestamp();

// Appends text + "\n" to <root><hostPath> with one write() on an O_APPEND descriptor,
// so that concurrent writers never interleave within a line. Failures are dropped.
void AppendRecord(const std::string& hostPath, std::string text);

// vprintf into a new string; `args` is consumed.
std::string VFormat(const char* format, va_list args);

} // namespace HostSim::Platform
