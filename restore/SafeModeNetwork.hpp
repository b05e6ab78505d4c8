// The move of the management network off a fabric onto a new standard switch, and the names the
// host gets for what is created.
#pragma once
#include <functional>
#include <string>

#include "keelson/Network.hpp"

namespace Lanyx {

// Whether the host already has something of that name.
using NameTaken = std::function<bool(const std::string&)>;

// "xbar0", "xbar1", ...: the first name no switch of either kind has.
std::string FreeSwitchName(const NameTaken& taken);
// "Management Network1", "Management Network2", ...: never the plain "Management Network".
std::string FreePortGroupName(const NameTaken& taken);

// New switch and port group, every kernel interface disabled, the management interface moved
// onto the new port group with the old switch's uplinks, and only it enabled again. Failures are
// logged; what was done stays, but the management interface is never left disabled.
void MoveToStandardSwitch();

// Takes the uplink off whatever holds it and adds it to the switch of `portGroup` and to that
// switch's team. A failure is logged and the caller goes on with the next uplink.
void MoveUplink(Keelson::Network::PortGroup& portGroup, const std::string& uplink);

} // namespace Lanyx
