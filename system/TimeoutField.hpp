// The minutes of a time-out field, shared by the shell's and the console's time-out dialogs.
#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace Lanyx {

// The largest time-out in minutes; 0 switches a time-out off.
inline constexpr unsigned long kMaxTimeoutMinutes = 1440;

// The value of a field that lets in digits only: nullopt for an empty field, which leaves its
// setting alone. A value above kMaxTimeoutMinutes comes back as it is, for the caller to refuse.
std::optional<unsigned long> TimeoutMinutes(const std::string& text);

} // namespace Lanyx
