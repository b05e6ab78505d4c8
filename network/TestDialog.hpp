// The targets of the network test: up to three addresses to ping and a name to resolve, proposed
// from the host's live gateways and name servers. Enter runs the test with what the fields hold.
#pragma once
#include <array>
#include <string>
#include <vector>

#include "keelson/Dns.hpp"
#include "keelson/Routing.hpp"
#include "text/FormDialog.hpp"

namespace Lanyx {

class TestDialog : public FormDialog {
public:
    // Reads the host's gateways, name servers and name; library exceptions pass.
    explicit TestDialog(Frame* owner);

    InputItem* GetAddressItem(size_t n) const { return addressItems.at(n); }
    InputItem* GetHostnameItem() const { return hostnameItem; }

protected:
    void Open() override;
    // Every address field empty or an address; then the test runs and the form ends.
    bool Accept() override;

private:
    TesselCtl::Network::DnsConfigImpl dns;
    TesselCtl::Network::RoutingInfoImpl routing;
    std::array<InputItem*, 3> addressItems{};
    InputItem* hostnameItem = nullptr;
};

// The default ping targets in the order they fill the fields: IPv4 gateway, IPv6 gateway (only
// with IPv6 on), first IPv4 and IPv6 servers, second IPv4 and IPv6 servers. Empty texts,
// "0.0.0.0" and "::" are no target; at most three.
std::vector<std::string> DefaultPingTargets(const std::string& gateway,
                                            const std::string& ipv6Gateway, bool ipv6Enabled,
                                            const std::vector<std::string>& servers,
                                            const std::vector<std::string>& ipv6Servers);

} // namespace Lanyx
