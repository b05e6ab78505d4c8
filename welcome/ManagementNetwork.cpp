#include "welcome/ManagementNetwork.hpp"

#include <memory>

#include "keelson/Network.hpp"
#include "restore/switches/Switches.hpp"
#include "welcome/HostFacts.hpp"

namespace Lanyx {

bool IsIpv6Enabled() {
    return TesselCtl::Network::NetworkInfoImpl().IsTesselIpv6Enabled();
}

bool ReadManagementInterface(ManagementFacts& facts) {
    const std::unique_ptr<Keelson::Network::NetworkInterface> nic = FindManagementInterface();
    if (!nic)
        return false;
    const Keelson::Network::IpConfig configured = nic->GetConfiguredIpConfig();
    facts.useDhcp = configured.GetUseDhcp();
    facts.useNone = configured.GetIpv4UseNone();
    if (auto* tesselNic = dynamic_cast<Keelson::Network::TesselNic*>(nic.get()))
        facts.dhcpServerKnown = tesselNic->GetDhcpServer().GetBinaryAddress() != 0;
    const Keelson::Network::IpConfig live = nic->GetIpConfig();
    facts.ipv6.clear();
    for (const Keelson::Network::Ipv6Network& network : live.GetIpv6Network())
        facts.ipv6.push_back(
            {network.GetAddress().GetStringAddress(), network.GetIpv6AddressType()});
    facts.ipv4 = live.GetIpv4Address().GetStringAddress();
    return true;
}

bool HasPhysicalAdapters() {
    return !TesselCtl::Network::NetworkInfoImpl().GetPnics(0).empty();
}

std::string GetManagementAddress() {
    const std::unique_ptr<Keelson::Network::NetworkInterface> nic = FindManagementInterface();
    if (nic)
        return nic->GetIpConfig().GetIpv4Address().GetStringAddress();
    return Keelson::Network::Ipv4Address("0.0.0.0").GetStringAddress();
}

} // namespace Lanyx
