// The fixed texts of the catalogue, indexed by id.
#pragma once
#include <cstddef>

namespace Lanyx {

inline constexpr size_t kStringCount = 290;
inline constexpr unsigned kVersionLineId = 2;

// Entry 2 is a placeholder: the version line is computed when it is asked for.
extern const char* const kStringTable[kStringCount];

} // namespace Lanyx
