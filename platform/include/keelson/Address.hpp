// Host control library: network value types (addresses, networks, MAC addresses, IP configuration).
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "keelson/Lib.hpp"

namespace Keelson::Network {

// An IPv4 or IPv6 address. The text comes through the first virtual operation.
class IpAddress : public virtual Lib::KeelsonObject {
public:
    virtual std::string GetStringAddress() const = 0;
    // 0 for IPv4, 1 for IPv6.
    virtual int GetAddressFamily() const = 0;
    // A new copy of the same class, owned by the caller.
    virtual IpAddress* Clone() const = 0;
};

class Ipv4Address : public IpAddress {
public:
    Ipv4Address() = default; // 0.0.0.0
    // Dotted text; throws KeelsonException when it is no valid address.
    explicit Ipv4Address(const std::string& text);
    // Host byte order: 192.168.0.1 is 0xc0a80001.
    explicit Ipv4Address(uint32_t binary);
    Ipv4Address(const Ipv4Address&) = default;
    Ipv4Address& operator=(const Ipv4Address&) = default;

    std::string GetStringAddress() const override;
    int GetAddressFamily() const override { return 0; }
    Ipv4Address* Clone() const override { return new Ipv4Address(*this); }

    uint32_t GetBinaryAddress() const { return binary_; }
    // Contiguous ones from the top, at least one.
    bool IsValidNetmask() const;
    // Four decimal parts from 0 to 255 parted by dots, nothing else.
    static bool IsValidAddress(const std::string& text);

    bool operator==(const Ipv4Address& other) const { return binary_ == other.binary_; }

private:
    uint32_t binary_ = 0;
};

class Ipv6Address : public IpAddress {
public:
    Ipv6Address(); // ::
    // Text form, optionally with "%zone"; throws KeelsonException when it is no valid address.
    explicit Ipv6Address(const std::string& text);
    Ipv6Address(const Ipv6Address&) = default;
    Ipv6Address& operator=(const Ipv6Address&) = default;

    // Compressed text form without the zone.
    std::string GetStringAddress() const override;
    int GetAddressFamily() const override { return 1; }
    Ipv6Address* Clone() const override { return new Ipv6Address(*this); }

    // Text form with "%zone" when the address has a zone.
    std::string GetScopedStringAddress() const;
    const std::string& GetZone() const { return zone_; }
    const std::array<uint8_t, 16>& GetBytes() const { return bytes_; }
    bool IsUnspecified() const;
    // In fe80::/10.
    bool IsLinkLocal() const;
    static bool IsValidAddress(const std::string& text);

    bool operator==(const Ipv6Address& other) const {
        return bytes_ == other.bytes_ && zone_ == other.zone_;
    }

private:
    std::array<uint8_t, 16> bytes_{};
    std::string zone_;
};

// An IPv6 address with its prefix length, address type and scope.
// Address types: 0 static, 1 link-local, 2 other, 7 autoconfigured, 9 from DHCPv6.
// Scopes: 1 link-local, 3 global (what a static address gets).
class Ipv6Network : public virtual Lib::KeelsonObject {
public:
    Ipv6Network() = default;
    // "address/length"; throws KeelsonException unless IsValidAddressAndNetmask.
    explicit Ipv6Network(const std::string& text);
    Ipv6Network(const Ipv6Address& address, int prefixLength);
    Ipv6Network(const Ipv6Network&) = default;
    Ipv6Network& operator=(const Ipv6Network&) = default;

    const Ipv6Address& GetAddress() const { return address_; }
    int GetPrefixLength() const { return prefixLength_; }
    // "address/length", the form the constructor takes.
    std::string GetStringAddress() const;
    int GetIpv6AddressType() const { return type_; }
    void SetIpv6AddressType(int type) { type_ = type; }
    int GetIpv6Scope() const { return scope_; }
    void SetIpv6Scope(int scope) { scope_ = scope; }

    static bool IsValidAddressAndNetmask(const std::string& text);

    // Same address and prefix length; type and scope do not count.
    bool operator==(const Ipv6Network& other) const {
        return address_.GetBytes() == other.address_.GetBytes() &&
               prefixLength_ == other.prefixLength_;
    }

private:
    Ipv6Address address_;
    int prefixLength_ = 0;
    int type_ = 0;
    int scope_ = 3;
};

class MacAddress : public virtual Lib::KeelsonObject {
public:
    MacAddress() = default;
    // "xx:xx:xx:xx:xx:xx"; throws KeelsonException otherwise.
    explicit MacAddress(const std::string& text);
    MacAddress(const MacAddress&) = default;
    MacAddress& operator=(const MacAddress&) = default;

    // Lower-case, colon-separated.
    std::string GetStringAddress() const;
    const std::array<uint8_t, 6>& GetBytes() const { return bytes_; }
    bool operator==(const MacAddress& other) const { return bytes_ == other.bytes_; }

private:
    std::array<uint8_t, 6> bytes_{};
};

// The IP configuration of one kernel interface, by value. The live reading (GetIpConfig) holds the
// addresses in force; the configured reading (GetConfiguredIpConfig) holds what is configured.
class IpConfig : public virtual Lib::KeelsonObject {
public:
    IpConfig() = default;
    IpConfig(const IpConfig&) = default;
    IpConfig& operator=(const IpConfig&) = default;

    const Ipv4Address& GetIpv4Address() const { return ipv4Address_; }
    void SetIpv4Address(const Ipv4Address& address) { ipv4Address_ = address; }
    const Ipv4Address& GetIpv4Netmask() const { return ipv4Netmask_; }
    void SetIpv4Netmask(const Ipv4Address& netmask) { ipv4Netmask_ = netmask; }
    const Ipv4Address& GetIpv4Gateway() const { return ipv4Gateway_; }
    void SetIpv4Gateway(const Ipv4Address& gateway) { ipv4Gateway_ = gateway; }

    // No IPv4 configuration at all.
    bool GetIpv4UseNone() const { return ipv4UseNone_; }
    void SetIpv4UseNone() {
        ipv4UseNone_ = true;
        useDhcp_ = false;
    }
    bool GetUseDhcp() const { return useDhcp_; }
    // SetUseDhcp(true): DHCP; (false, false): static; (false, true): no IPv4 configuration.
    void SetUseDhcp(bool useDhcp, bool useNone = false) {
        useDhcp_ = useDhcp;
        ipv4UseNone_ = !useDhcp && useNone;
    }
    // DNS servers and host name from DHCP.
    bool GetDhcpDns() const { return dhcpDns_; }
    void SetDhcpDns(bool dhcpDns) { dhcpDns_ = dhcpDns; }
    // Some DHCP (v4 or v6) is in use, so DNS could come from it.
    bool IsUsingDhcp() const { return useDhcp_ || useIpv6Dhcp_; }

    bool GetIpv6Enabled() const { return ipv6Enabled_; }
    void EnableIpv6() { ipv6Enabled_ = true; }
    bool GetUseIpv6Dhcp() const { return useIpv6Dhcp_; }
    void SetUseIpv6Dhcp(bool use) { useIpv6Dhcp_ = use; }
    bool GetUseIpv6RouterAdvertised() const { return useIpv6RouterAdvertised_; }
    void SetUseIpv6RouterAdvertised(bool use) { useIpv6RouterAdvertised_ = use; }
    const std::vector<Ipv6Network>& GetIpv6Network() const { return ipv6Networks_; }
    void AddIpv6Network(const Ipv6Network& network);
    // Removes the entry with the same address and prefix length; nothing when there is none.
    void RemoveIpv6Network(const Ipv6Network& network);
    const Ipv6Address& GetIpv6Gateway() const { return ipv6Gateway_; }
    void SetIpv6Gateway(const Ipv6Address& gateway) { ipv6Gateway_ = gateway; }

private:
    Ipv4Address ipv4Address_;
    Ipv4Address ipv4Netmask_;
    Ipv4Address ipv4Gateway_;
    bool ipv4UseNone_ = false;
    bool useDhcp_ = false;
    bool dhcpDns_ = false;
    bool ipv6Enabled_ = false;
    bool useIpv6Dhcp_ = false;
    bool useIpv6RouterAdvertised_ = false;
    std::vector<Ipv6Network> ipv6Networks_;
    Ipv6Address ipv6Gateway_;
};

} // namespace Keelson::Network
