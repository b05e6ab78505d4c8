// The rows of the kernel NIC migration: the host's port groups and its kernel interfaces.
#pragma once
#include <vector>

#include "text/PortGroupInfo.hpp"
#include "text/TesselNicInfo.hpp"

namespace Lanyx {

// Every port group with its switch, active clients and VLAN. False when the library failed.
bool GatherPortGroups(std::vector<PortGroupInfo>& rows);
// Every kernel interface with where it is connected; "N/A" where it is not, or not to a port group.
bool GatherTesselNics(std::vector<TesselNicInfo>& rows);

} // namespace Lanyx
