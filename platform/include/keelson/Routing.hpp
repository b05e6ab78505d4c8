// Host control library: default routes of a network stack.
#pragma once
#include <string>

#include "keelson/Address.hpp"
#include "keelson/Lib.hpp"

namespace TesselCtl::Network {

class RoutingInfoImpl : public virtual Keelson::Lib::KeelsonObject {
public:
    // The network stack's name, always "defaultTcpipStack".
    explicit RoutingInfoImpl(std::string stack);

    // 0.0.0.0 / :: when there is none.
    Keelson::Network::Ipv4Address GetTesselDefaultGateway() const;
    // 0.0.0.0 removes the route.
    void SetTesselDefaultGateway(const Keelson::Network::Ipv4Address& gateway, bool persistOnly);
    Keelson::Network::Ipv6Address GetIpv6TesselDefaultGateway() const;
    void SetIpv6TesselDefaultGateway(const Keelson::Network::Ipv6Address& gateway);

private:
    std::string stack_;
};

} // namespace TesselCtl::Network
