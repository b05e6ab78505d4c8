// Host control library: DNS configuration of a network stack (names only so far).
#pragma once
#include <string>

#include "keelson/Lib.hpp"

namespace TesselCtl::Network {

class DnsConfigImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    // The network stack's name, always "defaultTcpipStack".
    explicit DnsConfigImpl(std::string stack);
    std::string GetHostname() const;
    std::string GetDomain() const;

private:
    std::string stack_;
};

} // namespace TesselCtl::Network
