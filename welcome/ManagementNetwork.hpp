// The network facts behind the welcome screen, read through the host library. Every call asks
// the host again; a KeelsonException of the library passes to the caller.
#pragma once
#include "welcome/ManagementText.hpp"

namespace Lanyx {

// IPv6 on the host's network stack.
bool IsIpv6Enabled();

// Fills mode, addresses and DHCP server of `facts` from the management interface. False when
// the host has no management interface (then `facts` is left as it was).
bool ReadManagementInterface(ManagementFacts& facts);

// Whether the host has at least one physical network adapter.
bool HasPhysicalAdapters();

} // namespace Lanyx
