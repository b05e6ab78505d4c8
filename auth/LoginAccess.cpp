#include "auth/LoginAccess.hpp"

#include <unistd.h>

#include "host/HostRoot.hpp"
#include "keelson/Dns.hpp"

namespace Lanyx {

bool passwordIsEmpty = false;

bool LoginMarkerPresent() {
    return access(HostPath("/var/run/zephora/show-lanyx-login").c_str(), F_OK) == 0;
}

std::string HostGreeting(const std::string& lead) {
    const TesselCtl::Network::DnsConfigImpl dns("defaultTcpipStack");
    // An empty domain keeps both dots: "for host..".
    return lead + dns.GetHostname() + "." + dns.GetDomain() + ".";
}

} // namespace Lanyx
