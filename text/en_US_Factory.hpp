// The catalogue of numbered fixed texts for the one locale there is.
#pragma once
#include <cstdint>
#include <string>

#include "core/StringFactory.hpp"

namespace Lanyx {

class en_US_Factory final : public StringFactory {
public:
    const char* GetString(uint32_t id) override;
};

// The version line of id 2, e.g. "Product 1.0 (Tessel 1.0 Build 123)". Empty while the kernel
// node cannot be read; the next call then tries again. Filled once, kept for the process.
const char* VersionLine();

} // namespace Lanyx
