// Network value types: parsing and text forms of addresses, and the IPv6 list of an IP
// configuration.
#include <arpa/inet.h>

#include <algorithm>
#include <cstdio>

#include "keelson/Address.hpp"

namespace Keelson::Network {

namespace {

bool ParsePrefixLength(const std::string& text, int& length) {
    if (text.empty() || text.size() > 3 ||
        !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return false;
    length = std::stoi(text);
    return length <= 128;
}

// Address part and zone of "address%zone"; false when the text is no IPv6 address.
bool ParseIpv6(const std::string& text, std::array<uint8_t, 16>& bytes, std::string& zone) {
    const size_t percent = text.find('%');
    const std::string address = text.substr(0, percent);
    if (percent != std::string::npos) {
        zone = text.substr(percent + 1);
        if (zone.empty())
            return false;
    } else {
        zone.clear();
    }
    return inet_pton(AF_INET6, address.c_str(), bytes.data()) == 1;
}

} // namespace

Ipv4Address::Ipv4Address(const std::string& text) {
    in_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) != 1)
        throw Lib::KeelsonException("Invalid IPv4 address \"" + text + "\"");
    binary_ = ntohl(address.s_addr);
}

Ipv4Address::Ipv4Address(uint32_t binary) : binary_(binary) {}

std::string Ipv4Address::GetStringAddress() const {
    char text[INET_ADDRSTRLEN];
    in_addr address{htonl(binary_)};
    inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

bool Ipv4Address::IsValidNetmask() const {
    if (binary_ == 0)
        return false;
    const uint32_t inverted = ~binary_;
    return (inverted & (inverted + 1)) == 0;
}

bool Ipv4Address::IsValidAddress(const std::string& text) {
    in_addr address{};
    return inet_pton(AF_INET, text.c_str(), &address) == 1;
}

Ipv6Address::Ipv6Address() = default;

Ipv6Address::Ipv6Address(const std::string& text) {
    if (!ParseIpv6(text, bytes_, zone_))
        throw Lib::KeelsonException("Invalid IPv6 address \"" + text + "\"");
}

std::string Ipv6Address::GetStringAddress() const {
    char text[INET6_ADDRSTRLEN];
    inet_ntop(AF_INET6, bytes_.data(), text, sizeof text);
    return text;
}

std::string Ipv6Address::GetScopedStringAddress() const {
    return zone_.empty() ? GetStringAddress() : GetStringAddress() + "%" + zone_;
}

bool Ipv6Address::IsUnspecified() const {
    return std::all_of(bytes_.begin(), bytes_.end(), [](uint8_t b) { return b == 0; });
}

bool Ipv6Address::IsLinkLocal() const {
    return bytes_[0] == 0xfe && (bytes_[1] & 0xc0) == 0x80;
}

bool Ipv6Address::IsValidAddress(const std::string& text) {
    std::array<uint8_t, 16> bytes{};
    std::string zone;
    return ParseIpv6(text, bytes, zone);
}

Ipv6Network::Ipv6Network(const std::string& text) {
    if (!IsValidAddressAndNetmask(text))
        throw Lib::KeelsonException("Invalid IPv6 network \"" + text + "\"");
    const size_t slash = text.rfind('/');
    address_ = Ipv6Address(text.substr(0, slash));
    ParsePrefixLength(text.substr(slash + 1), prefixLength_);
    scope_ = address_.IsLinkLocal() ? 1 : 3;
}

Ipv6Network::Ipv6Network(const Ipv6Address& address, int prefixLength)
    : address_(address), prefixLength_(prefixLength), scope_(address.IsLinkLocal() ? 1 : 3) {
    if (prefixLength < 0 || prefixLength > 128)
        throw Lib::KeelsonException("Invalid IPv6 prefix length " + std::to_string(prefixLength));
}

std::string Ipv6Network::GetStringAddress() const {
    return address_.GetStringAddress() + "/" + std::to_string(prefixLength_);
}

bool Ipv6Network::IsValidAddressAndNetmask(const std::string& text) {
    const size_t slash = text.rfind('/');
    if (slash == std::string::npos)
        return false;
    int length = 0;
    const std::string address = text.substr(0, slash);
    return ParsePrefixLength(text.substr(slash + 1), length) &&
           address.find('%') == std::string::npos && Ipv6Address::IsValidAddress(address);
}

MacAddress::MacAddress(const std::string& text) {
    unsigned parts[6];
    char end = 0;
    if (text.size() != 17 ||
        std::sscanf(text.c_str(), "%2x:%2x:%2x:%2x:%2x:%2x%c", &parts[0], &parts[1], &parts[2],
                    &parts[3], &parts[4], &parts[5], &end) != 6)
        throw Lib::KeelsonException("Invalid MAC address \"" + text + "\"");
    for (size_t i = 0; i < 6; ++i)
        bytes_[i] = static_cast<uint8_t>(parts[i]);
}

std::string MacAddress::GetStringAddress() const {
    char text[18];
    std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", bytes_[0], bytes_[1],
                  bytes_[2], bytes_[3], bytes_[4], bytes_[5]);
    return text;
}

void IpConfig::AddIpv6Network(const Ipv6Network& network) {
    if (std::find(ipv6Networks_.begin(), ipv6Networks_.end(), network) == ipv6Networks_.end())
        ipv6Networks_.push_back(network);
}

void IpConfig::RemoveIpv6Network(const Ipv6Network& network) {
    auto it = std::find(ipv6Networks_.begin(), ipv6Networks_.end(), network);
    if (it != ipv6Networks_.end())
        ipv6Networks_.erase(it);
}

} // namespace Keelson::Network
