// Writing the pending configuration to the host: one straight walk of guarded stages, uplinks and
// VLAN first, then the IP configuration, routes, leases, the VLAN restart, DNS, and last the
// reboot and the host agent's refresh. A failed stage is logged and shown and the walk goes on;
// nothing done is undone.
#pragma once
#include <string>

#include "keelson/Dns.hpp"
#include "keelson/Lib.hpp"
#include "keelson/Network.hpp"
#include "keelson/Routing.hpp"
#include "network/PendingConfiguration.hpp"

namespace Lanyx {

// What the walk needs of the screen that runs it.
class ApplyWalkScreen {
public:
    virtual ~ApplyWalkScreen() = default;
    // A guarded stage failed; `message` is already in the log. Returns once the operator saw it.
    virtual void ShowFailure(const std::string& message) = 0;
    // A new static or none IPv4 configuration was written.
    virtual void AddressWritten() = 0;
    // IPv6 support was switched: restart the host. Returns only when the restart cannot start.
    virtual void RebootHost() = 0;
};

// The middle of a library message: after its first "=" up to its last ";".
std::string ExceptionSummary(const Keelson::Lib::KeelsonException& e);

// Exceptions of the unguarded steps (lease renewal, interface restart) leave the walk after the
// host agent's refresh; the interface is enabled again before that if the restart failed.
void ApplyPendingConfiguration(Keelson::Network::NetworkInterface& nic,
                               PendingConfiguration& pending,
                               TesselCtl::Network::DnsConfigImpl& dns,
                               TesselCtl::Network::RoutingInfoImpl& routing,
                               ApplyWalkScreen& screen);

} // namespace Lanyx
