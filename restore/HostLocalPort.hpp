// The id of a new host-local port on a fabric, and the VLAN it is given.
#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace Lanyx {

// The id for a port that replaces `oldId`: "hlp-" + old id + `suffix` ("#<number>"). An old id
// that is itself a host-local port of an earlier repair ("hlp-...#<digits>") keeps everything
// before its last "#" and takes the new suffix there, so ids never grow a second prefix.
std::string HostLocalPortId(const std::string& oldId, const std::string& suffix);

// The VLAN field's text as a decimal number, empty as 0; nothing when above 4094.
std::optional<uint16_t> FabricVlan(const std::string& text);

} // namespace Lanyx
