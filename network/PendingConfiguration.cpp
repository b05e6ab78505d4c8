#include "network/PendingConfiguration.hpp"

#include "restore/switches/Switches.hpp"

namespace Lanyx {

namespace KN = Keelson::Network;

std::string AddressText(const KN::IpAddress* address) {
    return address ? address->GetStringAddress() : std::string();
}

void PendingConfiguration::TakeAdapters(const std::vector<std::string>& selected) {
    if (selected != adapters)
        changed = true;
    adapters = selected;
}

void PendingConfiguration::TakeVlan(uint16_t value) {
    if (value != vlanId)
        changed = true;
    vlanId = value;
}

void PendingConfiguration::TakeIpv4(const KN::IpConfig& result) {
    bool differs = result.GetUseDhcp() != configuredIpConfig.GetUseDhcp() ||
                   result.GetIpv4UseNone() != ipConfig.GetIpv4UseNone();
    if (!differs && !result.GetUseDhcp() && !result.GetIpv4UseNone()) {
        differs = result.GetIpv4Address().GetBinaryAddress() !=
                      ipConfig.GetIpv4Address().GetBinaryAddress() ||
                  result.GetIpv4Netmask().GetBinaryAddress() !=
                      ipConfig.GetIpv4Netmask().GetBinaryAddress() ||
                  result.GetIpv4Gateway().GetBinaryAddress() !=
                      ipConfig.GetIpv4Gateway().GetBinaryAddress();
    }
    if (!differs)
        return;
    changed = true;
    configuredIpConfig.SetUseDhcp(result.GetUseDhcp());
    if (result.GetIpv4UseNone()) {
        ipConfig.SetIpv4UseNone();
    } else {
        // Leaving none: the pane would otherwise still say "None" for a static address.
        if (ipConfig.GetIpv4UseNone())
            ipConfig.SetUseDhcp(false, false);
        ipConfig.SetIpv4Address(result.GetIpv4Address());
        ipConfig.SetIpv4Netmask(result.GetIpv4Netmask());
    }
    ipConfig.SetIpv4Gateway(result.GetIpv4Gateway());
}

void PendingConfiguration::TakeIpv6(bool enabled, const KN::IpConfig& result, bool addressEdited) {
    const bool gatewayDiffers = !(result.GetIpv6Gateway() == ipConfig.GetIpv6Gateway());
    if (enabled != ipv6Enabled)
        changed = true;
    else if (result.GetUseIpv6Dhcp() != configuredIpConfig.GetUseIpv6Dhcp() ||
             result.GetUseIpv6RouterAdvertised() !=
                 configuredIpConfig.GetUseIpv6RouterAdvertised() ||
             gatewayDiffers || addressEdited)
        changed = true;
    ipv6Enabled = enabled;
    if (!enabled)
        return;
    if (gatewayDiffers)
        ipv6GatewayChanged = true;
    configuredIpConfig.SetUseIpv6Dhcp(result.GetUseIpv6Dhcp());
    configuredIpConfig.SetUseIpv6RouterAdvertised(result.GetUseIpv6RouterAdvertised());
    KN::IpConfig taken = result;
    taken.SetIpv4Address(ipConfig.GetIpv4Address());
    taken.SetIpv4Netmask(ipConfig.GetIpv4Netmask());
    ipConfig = taken;
    ipConfig.SetIpv6Gateway(result.GetIpv6Gateway());
}

void PendingConfiguration::TakeDns(bool useDhcp, std::unique_ptr<KN::IpAddress> primary,
                                   std::unique_ptr<KN::IpAddress> alternate,
                                   const std::string& newHostname) {
    if (useDhcp != configuredIpConfig.GetDhcpDns())
        changed = true;
    else if (!useDhcp && (AddressText(primary.get()) != AddressText(primaryDns.get()) ||
                          AddressText(alternate.get()) != AddressText(alternateDns.get()) ||
                          newHostname != hostname))
        changed = true;
    configuredIpConfig.SetDhcpDns(useDhcp);
    if (useDhcp)
        return;
    hostname = newHostname;
    primaryDns = std::move(primary);
    alternateDns = std::move(alternate);
}

void PendingConfiguration::TakeSuffixes(const std::string& text) {
    if (text != suffixes)
        changed = true;
    suffixes = text;
}

void ReadAddresses(KN::NetworkInterface& nic, PendingConfiguration& pending) {
    pending.configuredIpConfig = nic.GetConfiguredIpConfig();
    pending.ipConfig = nic.GetIpConfig();
}

ReadResult ReadPendingConfiguration(KN::NetworkInterface& nic,
                                    TesselCtl::Network::RoutingInfoImpl& routing,
                                    TesselCtl::Network::DnsConfigImpl& dns,
                                    PendingConfiguration& pending) {

    pending.fabric = IsFabricInUse();
    pending.adapters.clear();
    pending.vlanId = 0;
    if (!pending.fabric) {
        if (!GetUplinks(&nic, pending.adapters) ||
            !GetMaxActiveUplinks(&nic, pending.maxActiveUplinks) ||
            !GetVlanId(&nic, pending.vlanId))
            return ReadResult::SwitchUnreadable;
    }

    pending.ipConfig.SetIpv4Gateway(routing.GetTesselDefaultGateway());
    pending.hostname = dns.GetHostname();
    pending.ipConfig.SetIpv6Gateway(routing.GetIpv6TesselDefaultGateway());
    if (dns.IsStale()) {
        dns.Refresh();
        dns.SetStale(false);
    }
    pending.searchDomains = dns.GetSearchDomains();

    // Two servers are held: IPv4 first, then IPv6; the rest are lost at apply.
    const std::vector<KN::Ipv4Address> v4 = dns.GetNameServers();
    const std::vector<KN::Ipv6Address> v6 = dns.GetIpv6NameServers(false);
    pending.primaryDns.reset();
    pending.alternateDns.reset();
    if (!v4.empty()) {
        pending.primaryDns = std::make_unique<KN::Ipv4Address>(v4[0]);
        if (!v6.empty())
            pending.alternateDns = std::make_unique<KN::Ipv6Address>(v6[0]);
        else if (v4.size() > 1)
            pending.alternateDns = std::make_unique<KN::Ipv4Address>(v4[1]);
    } else if (!v6.empty()) {
        pending.primaryDns = std::make_unique<KN::Ipv6Address>(v6[0]);
        if (v6.size() > 1)
            pending.alternateDns = std::make_unique<KN::Ipv6Address>(v6[1]);
    }

    pending.suffixes.clear();
    for (const std::string& domain : pending.searchDomains) {
        if (!pending.suffixes.empty())
            pending.suffixes += ", ";
        pending.suffixes += domain;
    }
    return ReadResult::Read;
}

} // namespace Lanyx
