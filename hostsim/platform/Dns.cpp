// Name servers, search domains, default routes and the hosts file of the simulated host.
#include <unistd.h>

#include <cctype>
#include <fstream>
#include <functional>
#include <sstream>

#include "keelson/Dns.hpp"
#include "keelson/Routing.hpp"
#include "platform/HostState.hpp"
#include "platform/NetworkState.hpp"

namespace {

using nlohmann::json;
using namespace HostSim::Platform::Net;
using HostSim::Platform::CheckFault;
using HostSim::Platform::StateFor;
using HostSim::Platform::UpdateState;
using Keelson::Lib::KeelsonException;
namespace KN = Keelson::Network;

json& Dns(json& state) {
    return Object(Object(state, "network"), "dns");
}

// The DNS section of a state as read; an empty object where it is missing or of another type.
const json& Dns(const json& state) {
    static const json empty = json::object();
    const auto object = [](const json& parent, const char* key) -> const json& {
        const auto found = parent.find(key);
        return found != parent.end() && found->is_object() ? *found : empty;
    };
    return object(object(state, "network"), "dns");
}

// One change of the DNS section; it is live at once and unsaved until SaveConfig.
void ChangeDns(const char* operation, const std::function<void(json& state, json& dns)>& change) {
    UpdateState([&](json& state) {
        CheckFault(state, {operation});
        json& dns = Dns(state);
        change(state, dns);
        dns["saved"] = false;
    });
}

std::vector<std::string> SplitDomains(const std::string& text) {
    std::vector<std::string> domains;
    std::string current;
    for (char c : text) {
        if (c == ',' || std::isspace(static_cast<unsigned char>(c))) {
            if (!current.empty())
                domains.push_back(current);
            current.clear();
        } else {
            current += c;
        }
    }
    if (!current.empty())
        domains.push_back(current);
    return domains;
}

// The simulated host has the one stack.
void CheckStack(const std::string& stack) {
    if (stack != "defaultTcpipStack")
        throw KeelsonException("Unknown network stack \"" + stack + "\"");
}

void CheckHostname(const std::string& name) {
    if (name.empty())
        throw KeelsonException("Invalid hostname: the name is empty");
    for (char c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '-' && c != '.')
            throw KeelsonException("Invalid hostname \"" + name + "\"");
    }
}

} // namespace

namespace TesselCtl::Network {

void DnsConfigImpl::Refresh() {
    CheckStack(stack_);
    const auto document = StateFor({"DnsConfigImpl::Refresh"});
    const json& state = *document;
    const json dns = Dns(state);
    searchDomains_ = Strings(dns, "searchDomains");
    nameServers_.clear();
    ipv6NameServers_.clear();
    for (const std::string& server : Strings(dns, "servers")) {
        if (KN::Ipv4Address::IsValidAddress(server))
            nameServers_.emplace_back(server);
        else if (KN::Ipv6Address::IsValidAddress(server))
            ipv6NameServers_.emplace_back(server);
    }
    stale_ = false;
}

std::vector<std::string> DnsConfigImpl::GetSearchDomains() {
    CheckFault(*HostSim::Platform::ReadState(), {"DnsConfigImpl::GetSearchDomains"});
    if (stale_)
        Refresh();
    return searchDomains_;
}

std::vector<KN::Ipv4Address> DnsConfigImpl::GetNameServers() {
    CheckFault(*HostSim::Platform::ReadState(), {"DnsConfigImpl::GetNameServers"});
    if (stale_)
        Refresh();
    return nameServers_;
}

std::vector<KN::Ipv6Address> DnsConfigImpl::GetIpv6NameServers(bool dhcpOnly) {
    const auto document = StateFor({"DnsConfigImpl::GetIpv6NameServers"});
    const json& state = *document;
    if (stale_)
        Refresh();
    if (dhcpOnly && !Dns(state).value("dhcp", false))
        return {};
    return ipv6NameServers_;
}

void DnsConfigImpl::SetHostname(const std::string& hostname, bool) {
    CheckHostname(hostname);
    ChangeDns("DnsConfigImpl::SetHostname",
              [&](json& state, json&) { Object(state, "host")["hostname"] = hostname; });
    stale_ = true;
}

void DnsConfigImpl::SetFqdn(const std::string& fqdn, bool, const std::string& searchDomain) {
    CheckHostname(fqdn);
    const size_t dot = fqdn.find('.');
    if (dot == 0 || dot == fqdn.size() - 1)
        throw KeelsonException("Invalid fully qualified name \"" + fqdn + "\"");
    ChangeDns("DnsConfigImpl::SetFqdn", [&](json& state, json& dns) {
        json& host = Object(state, "host");
        host["hostname"] = fqdn.substr(0, dot);
        host["domain"] = dot == std::string::npos ? std::string() : fqdn.substr(dot + 1);
        if (!searchDomain.empty() && !HasString(Array(dns, "searchDomains"), searchDomain))
            Array(dns, "searchDomains").push_back(searchDomain);
    });
    stale_ = true;
}

void DnsConfigImpl::RemoveNameServers() {
    ChangeDns("DnsConfigImpl::RemoveNameServers",
              [](json&, json& dns) { dns["servers"] = json::array(); });
    stale_ = true;
}

void DnsConfigImpl::AddUserNameServer(const KN::IpAddress& server) {
    const std::string text = server.GetStringAddress();
    ChangeDns("DnsConfigImpl::AddUserNameServer", [&](json&, json& dns) {
        json& servers = Array(dns, "servers");
        if (!HasString(servers, text))
            servers.push_back(text);
    });
    stale_ = true;
}

void DnsConfigImpl::SetSearchDomainsString(const std::string& domains) {
    ChangeDns("DnsConfigImpl::SetSearchDomainsString",
              [&](json&, json& dns) { dns["searchDomains"] = SplitDomains(domains); });
    stale_ = true;
}

void DnsConfigImpl::AddUserSearchDomain(const std::string& domain) {
    if (domain.empty())
        throw KeelsonException("Invalid search domain: the name is empty");
    ChangeDns("DnsConfigImpl::AddUserSearchDomain", [&](json&, json& dns) {
        json& list = Array(dns, "searchDomains");
        if (!HasString(list, domain))
            list.push_back(domain);
    });
    stale_ = true;
}

void DnsConfigImpl::SaveConfig() {
    UpdateState([&](json& state) {
        CheckFault(state, {"DnsConfigImpl::SaveConfig"});
        Dns(state)["saved"] = true;
        HostSim::Platform::RecordCall(state, "DnsConfigImpl::SaveConfig", stack_);
    });
}

// ---- HostsFile

void HostsFile::RemoveEntryByHostName(const std::string& name) {
    StateFor({"HostsFile::RemoveEntryByHostName"});
    const std::string path = HostSim::Platform::HostFile("/etc/hosts");
    std::ifstream in(path);
    if (!in)
        throw KeelsonException("Cannot read " + path);
    std::ostringstream out;
    std::string line;
    while (std::getline(in, line)) {
        const size_t hash = line.find('#');
        std::istringstream words(line.substr(0, hash));
        std::string address, word;
        std::vector<std::string> names;
        bool removed = false;
        words >> address;
        while (words >> word) {
            if (word == name)
                removed = true;
            else
                names.push_back(word);
        }
        if (!removed) {
            out << line << '\n';
            continue;
        }
        if (names.empty())
            continue;
        out << address;
        for (const std::string& kept : names)
            out << '\t' << kept;
        if (hash != std::string::npos)
            out << ' ' << line.substr(hash);
        out << '\n';
    }
    in.close();
    // Written beside and renamed over, so a reader sees the old file or the new one.
    const std::string temporary = path + ".tmp" + std::to_string(getpid());
    {
        std::ofstream file(temporary, std::ios::trunc);
        file << out.str();
        if (!file.flush())
            throw KeelsonException("Cannot write " + temporary);
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        throw KeelsonException("Cannot replace " + path);
    }
}

// ---- RoutingInfoImpl

RoutingInfoImpl::RoutingInfoImpl(std::string stack) : stack_(std::move(stack)) {}

KN::Ipv4Address RoutingInfoImpl::GetTesselDefaultGateway() const {
    CheckStack(stack_);
    return V4(Text(
        StateFor({"RoutingInfoImpl::GetTesselDefaultGateway"})->value("network", json::object()),
        "gateway"));
}

void RoutingInfoImpl::SetTesselDefaultGateway(const KN::Ipv4Address& gateway, bool) {
    UpdateState([&](json& state) {
        CheckFault(state, {"RoutingInfoImpl::SetTesselDefaultGateway"});
        Object(state, "network")["gateway"] =
            gateway.GetBinaryAddress() == 0 ? "" : gateway.GetStringAddress();
    });
}

KN::Ipv6Address RoutingInfoImpl::GetIpv6TesselDefaultGateway() const {
    CheckStack(stack_);
    return V6(Text(StateFor({"RoutingInfoImpl::GetIpv6TesselDefaultGateway"})
                       ->value("network", json::object()),
                   "ipv6Gateway"));
}

void RoutingInfoImpl::SetIpv6TesselDefaultGateway(const KN::Ipv6Address& gateway) {
    UpdateState([&](json& state) {
        CheckFault(state, {"RoutingInfoImpl::SetIpv6TesselDefaultGateway"});
        Object(state, "network")["ipv6Gateway"] =
            gateway.IsUnspecified() ? "" : gateway.GetScopedStringAddress();
    });
}

} // namespace TesselCtl::Network
