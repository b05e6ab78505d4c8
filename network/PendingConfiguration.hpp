// The management interface's settings as the operator edits them: read from the host once when
// the network menu opens, changed by its dialogs, written back only by the apply walk. Each
// Take... folds one dialog's accepted result in; a result is compared with what the record held
// when the dialog opened, never with the host, and `changed` once set stays set.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "keelson/Address.hpp"
#include "keelson/Dns.hpp"
#include "keelson/Network.hpp"
#include "keelson/Routing.hpp"

namespace Lanyx {

struct PendingConfiguration {
    // Addresses (and the IPv4 none state); the gateways come from the routing object.
    Keelson::Network::IpConfig ipConfig;
    // Modes: DHCP, DHCP DNS, DHCPv6, router advertisement.
    Keelson::Network::IpConfig configuredIpConfig;
    std::vector<std::string> adapters; // uplink order, first is first choice
    uint32_t maxActiveUplinks = 0;
    uint16_t vlanId = 0; // 0: not set
    std::string hostname;
    std::vector<std::string> searchDomains;
    std::unique_ptr<Keelson::Network::IpAddress> primaryDns;
    std::unique_ptr<Keelson::Network::IpAddress> alternateDns;
    std::string suffixes; // as the operator sees them, joined by ", "
    bool fabric = false;  // the interface hangs on a fabric: adapters and VLAN are left alone
    bool changed = false;
    bool ipv6GatewayChanged = false;
    bool ipv6Enabled = false;
    bool ipv6EnabledAtOpen = false;

    void TakeAdapters(const std::vector<std::string>& selected);
    void TakeVlan(uint16_t value);
    // `result`: the IPv4 dialog's configuration (its DHCP and none flags, address, mask, gateway).
    void TakeIpv4(const Keelson::Network::IpConfig& result);
    // `result`: the IPv6 dialog's configuration; `addressEdited`: a static address field was typed
    // in.
    void TakeIpv6(bool enabled, const Keelson::Network::IpConfig& result, bool addressEdited);
    // The DNS dialog's choice; with a manual choice its address objects replace the pending ones.
    void TakeDns(bool useDhcp, std::unique_ptr<Keelson::Network::IpAddress> primary,
                 std::unique_ptr<Keelson::Network::IpAddress> alternate,
                 const std::string& newHostname);
    void TakeSuffixes(const std::string& text);

    // Anything to ask about when the operator leaves.
    bool HasEdits() const { return changed || ipv6Enabled != ipv6EnabledAtOpen; }
    // Leaving changes IPv6 support, which needs a restart of the host.
    bool RebootNeeded() const { return ipv6Enabled != ipv6EnabledAtOpen; }
};

// The text of an address for comparisons and logs; empty for none.
std::string AddressText(const Keelson::Network::IpAddress* address);

// What reading the record from the host came to.
enum class ReadResult {
    Read,
    // GetUplinks, GetMaxActiveUplinks or GetVlanId failed; the log says why.
    SwitchUnreadable,
};

// The two IP configurations of the interface: addresses in force and configured modes.
void ReadAddresses(Keelson::Network::NetworkInterface& nic, PendingConfiguration& pending);

// The rest of the record after ReadAddresses: switch, gateways, host name and DNS, in the order
// the host is read when the menu opens. Library exceptions pass to the caller.
ReadResult ReadPendingConfiguration(Keelson::Network::NetworkInterface& nic,
                                    TesselCtl::Network::RoutingInfoImpl& routing,
                                    TesselCtl::Network::DnsConfigImpl& dns,
                                    PendingConfiguration& pending);

} // namespace Lanyx
