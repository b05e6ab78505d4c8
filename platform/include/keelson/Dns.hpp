// Host control library: DNS configuration of a network stack, and the hosts file.
#pragma once
#include <string>
#include <vector>

#include "keelson/Address.hpp"
#include "keelson/Lib.hpp"

namespace TesselCtl::Network {

// Caches the name servers and search domains it reports: their getters refresh first when the
// object is stale and then clear the mark; every change marks it stale. Host name and domain are
// read afresh on each call. Changes act at once; SaveConfig makes them last across restarts.
class DnsConfigImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    // The network stack's name, always "defaultTcpipStack".
    explicit DnsConfigImpl(std::string stack);
    std::string GetHostname() const;
    std::string GetDomain() const;

    bool IsStale() const { return stale_; }
    void SetStale(bool stale) { stale_ = stale; }
    void Refresh();

    std::vector<std::string> GetSearchDomains();
    std::vector<Keelson::Network::Ipv4Address> GetNameServers();
    // `dhcpOnly` true: only the servers DHCP gave.
    std::vector<Keelson::Network::Ipv6Address> GetIpv6NameServers(bool dhcpOnly);

    void SetHostname(const std::string& hostname, bool fromDhcp);
    // "host.domain": host name and domain in one; `searchDomain` empty leaves the search list.
    void SetFqdn(const std::string& fqdn, bool fromDhcp, const std::string& searchDomain);
    void RemoveNameServers();
    void AddUserNameServer(const Keelson::Network::IpAddress& server);
    // Replaces the search list by the domains of the text (parted by blanks or commas).
    void SetSearchDomainsString(const std::string& domains);
    void AddUserSearchDomain(const std::string& domain);
    void SaveConfig();

private:
    std::string stack_;
    bool stale_ = true;
    std::vector<std::string> searchDomains_;
    std::vector<Keelson::Network::Ipv4Address> nameServers_;
    std::vector<Keelson::Network::Ipv6Address> ipv6NameServers_;
};

// The host's "/etc/hosts".
class HostsFile : public virtual Keelson::Lib::KeelsonObject {
public:
    // Removes the name from every entry; an entry left without names goes.
    void RemoveEntryByHostName(const std::string& name);
};

} // namespace TesselCtl::Network
