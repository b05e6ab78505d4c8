// A standard switch as a row of the port group form and as its details page.
#pragma once
#include <string>

#include "restore/switches/Switches.hpp"

namespace Lanyx {

// Name, uplinks, port groups, used and configured ports, each cut to its column; "  ..." behind
// says that <D> shows more.
std::string FormatSwitchRow(const StandardSwitchInfo& info);
// Plain text; an empty list shows as "None".
std::string FormatSwitchDetails(const StandardSwitchInfo& info);

} // namespace Lanyx
