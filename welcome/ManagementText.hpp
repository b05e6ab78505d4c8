// The text of the welcome screen that tells where the host is managed, composed from facts
// already read from the host, so that its rules do not depend on a live host.
#pragma once
#include <string>
#include <vector>

#include "core/StringFactory.hpp"

namespace Lanyx {

// Address types of the host library that the screen names.
enum Ipv6AddressType : int {
    Ipv6Static = 0,
    Ipv6Autoconf = 7,
    Ipv6Dhcp = 9,
};

struct Ipv6Entry {
    std::string address;
    int type = Ipv6Static;
};

struct ManagementFacts {
    std::string hostname;         // empty or "localhost": no host name line
    std::string ipv4 = "0.0.0.0"; // address in force
    bool useDhcp = false;
    bool useNone = false;         // no IPv4 address configured
    bool dhcpServerKnown = false; // a DHCP server has answered
    bool ipv6Enabled = false;
    std::vector<Ipv6Entry> ipv6; // in the host's order
};

// "To manage this host, go to:" and the URLs: host name, IPv4 with its mode, IPv6 addresses.
std::string ComposeManagementText(const ManagementFacts& facts, StringFactory& strings);

// The lines of the IPv6 addresses, each ending in a newline: four at most (five when there are
// exactly five), shortest first, then "..." when some were left out.
std::string ComposeIpv6Lines(const std::vector<Ipv6Entry>& entries, StringFactory& strings);

} // namespace Lanyx
