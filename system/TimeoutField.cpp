#include "system/TimeoutField.hpp"

#include <cstdlib>

namespace Lanyx {

std::optional<unsigned long> TimeoutMinutes(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    // Digits only reach the field, so the number cannot be negative; one too long to fit stops
    // at the largest value and is refused as out of range.
    return static_cast<unsigned long>(std::strtol(text.c_str(), nullptr, 10));
}

} // namespace Lanyx
