#include "network/ApplyWalk.hpp"

#include <algorithm>
#include <cctype>

#include "host/CommandRunner.hpp"
#include "host/GuardedStep.hpp"
#include "host/Log.hpp"
#include "restore/switches/Switches.hpp"

namespace Lanyx {

namespace KN = Keelson::Network;
using Keelson::Lib::KeelsonException;

std::string ExceptionSummary(const KeelsonException& e) {
    const std::string text = e.what();
    const size_t equals = text.find('=');
    const size_t start = equals == std::string::npos ? 0 : equals + 1;
    size_t end = text.rfind(';');
    if (end == std::string::npos || end < start)
        end = text.size();
    return text.substr(start, end - start);
}

namespace {

bool Contains(const std::vector<std::string>& list, const std::string& name) {
    return std::find(list.begin(), list.end(), name) != list.end();
}

// Blanks and commas part the entries; runs of them give no empty entry.
std::vector<std::string> SplitSuffixes(const std::string& text) {
    std::vector<std::string> tokens;
    std::string token;
    for (const char c : text) {
        if (c == ',' || std::isspace(static_cast<unsigned char>(c))) {
            if (!token.empty())
                tokens.push_back(token);
            token.clear();
        } else {
            token += c;
        }
    }
    if (!token.empty())
        tokens.push_back(token);
    return tokens;
}

// The host agent rereads the host however the walk ends; what that throws is dropped.
class RefreshHostAgentAtEnd {
public:
    RefreshHostAgentAtEnd() = default;
    RefreshHostAgentAtEnd(const RefreshHostAgentAtEnd&) = delete;
    RefreshHostAgentAtEnd& operator=(const RefreshHostAgentAtEnd&) = delete;
    ~RefreshHostAgentAtEnd() {
        try {
            HelmqRefresh();
        } catch (...) {
        }
    }
};

class Walk {
public:
    Walk(KN::NetworkInterface& nic, PendingConfiguration& pending,
         TesselCtl::Network::DnsConfigImpl& dns, TesselCtl::Network::RoutingInfoImpl& routing,
         ApplyWalkScreen& screen)
        : nic(nic), p(pending), dns(dns), routing(routing), screen(screen),
          tesselNic(dynamic_cast<KN::TesselNic*>(&nic)) {}

    void Run() {
        const RefreshHostAgentAtEnd refresh;
        if (!IsFabricInUse()) {
            Adapters();
            Vlan();
        }
        if (!Guarded("Setting ip configuration failed: ", [&] { Ipv4(); })) {
            addressChanged = false;
            renewV4 = uplinksChanged;
        }
        if (!Guarded("Setting ipv6 configuration failed: ", [&] { Ipv6(); }))
            renewV6 = false;
        DnsMode();
        Guarded("Setting ip/ipv6 configuration failed: ", [&] { WriteIpConfig(); });
        if (!p.ipConfig.GetUseDhcp())
            GuardedStep([&] { Ipv4Gateway(); },
                        [&](const KeelsonException& e) {
                            Report(std::string("Setting default gateway failed: ") + e.what());
                        });
        if (p.ipv6Enabled && p.ipv6GatewayChanged)
            Guarded("Setting default ipv6 gateway failed: ", [&] { Ipv6Gateway(); });
        Leases();
        RestartForVlan();
        Guarded("Setting DNS failed: ", [&] { Dns(); });
        if (p.RebootNeeded())
            screen.RebootHost();
    }

private:
    template <class Step> bool Guarded(const char* failure, Step&& step) {
        return GuardedStep(std::forward<Step>(step), [&](const KeelsonException& e) {
            Report(failure + ExceptionSummary(e));
        });
    }

    void Report(const std::string& message) {
        Log(LOG_ERR, "%s", message.c_str());
        screen.ShowFailure(message);
    }

    void Adapters() {
        std::string line = "Setting adapters to";
        for (const std::string& name : p.adapters)
            line += " " + name;
        Log(LOG_INFO, "%s", line.c_str());

        std::vector<std::string> current;
        if (GetUplinks(&nic, current)) {
            for (const std::string& name : current) {
                if (!Contains(p.adapters, name) && RemoveUplink(&nic, name))
                    uplinksChanged = true;
            }
            for (const std::string& name : p.adapters) {
                if (!Contains(current, name) && AddUplink(&nic, name))
                    uplinksChanged = true;
            }
        } else {
            current.clear();
        }
        if (p.adapters.empty() || (!current.empty() && current.front() == p.adapters.front()))
            return;
        Guarded("Setting mac address of hwport failed: ", [&] {
            TesselCtl::Network::PnicImpl pnic(p.adapters.front());
            if (auto* impl = dynamic_cast<TesselCtl::Network::TesselNicImpl*>(&nic)) {
                impl->SetMacAddressFromPnic(&pnic);
                return;
            }
            if (pnic.IsStale()) {
                pnic.Refresh();
                pnic.SetStale(false);
            }
            nic.SetMacAddress(pnic.GetMacAddress());
        });
    }

    void Vlan() {
        uint16_t current = 0;
        if (GetVlanId(&nic, current) && current != p.vlanId)
            vlanChanged = SetVlanId(&nic, p.vlanId);
    }

    void Ipv4() {
        const KN::IpConfig configuredNow = nic.GetConfiguredIpConfig();
        const KN::IpConfig runningNow = nic.GetIpConfig();
        if (p.configuredIpConfig.GetUseDhcp()) {
            if (!configuredNow.GetUseDhcp())
                Log(LOG_INFO, "Switching to DHCP on %s", nic.GetInterfaceName().c_str());
            else
                renewV4 = uplinksChanged;
            p.ipConfig.SetUseDhcp(true);
            return;
        }
        const bool hostIsNone = !configuredNow.GetUseDhcp() &&
                                runningNow.GetIpv4Address().GetBinaryAddress() == 0 &&
                                runningNow.GetIpv4Netmask().GetBinaryAddress() == 0;
        if (p.ipConfig.GetIpv4UseNone() && !hostIsNone) {
            Log(LOG_INFO, "Setting ipv4 configuration to none on %s",
                nic.GetInterfaceName().c_str());
            p.ipConfig.SetUseDhcp(false, true);
            addressChanged = true;
            return;
        }
        if (!configuredNow.GetUseDhcp() &&
            p.ipConfig.GetIpv4Address().GetBinaryAddress() ==
                runningNow.GetIpv4Address().GetBinaryAddress() &&
            p.ipConfig.GetIpv4Netmask().GetBinaryAddress() ==
                runningNow.GetIpv4Netmask().GetBinaryAddress())
            return;
        Log(LOG_INFO, "Setting ipv4 configuration to %s %s on %s",
            p.ipConfig.GetIpv4Address().GetStringAddress().c_str(),
            p.ipConfig.GetIpv4Netmask().GetStringAddress().c_str(), nic.GetInterfaceName().c_str());
        p.ipConfig.SetUseDhcp(false, false);
        addressChanged = true;
    }

    void Ipv6() {
        info.SetTesselIpv6Enabled(p.ipv6Enabled);
        if (!p.ipv6Enabled) {
            // Without IPv6 after the restart, DHCP DNS has to come over IPv4 again.
            if (p.configuredIpConfig.GetUseDhcp() && p.configuredIpConfig.GetDhcpDns() &&
                p.ipv6EnabledAtOpen)
                renewV4 = true;
            return;
        }
        Log(LOG_INFO, "Setting ipv6 configuration");
        if (!p.ipv6EnabledAtOpen)
            p.ipConfig.EnableIpv6();
        p.ipConfig.SetUseIpv6Dhcp(p.configuredIpConfig.GetUseIpv6Dhcp());
        p.ipConfig.SetUseIpv6RouterAdvertised(p.configuredIpConfig.GetUseIpv6RouterAdvertised());
        if (p.configuredIpConfig.GetUseIpv6Dhcp() && nic.GetConfiguredIpConfig().GetUseIpv6Dhcp())
            renewV6 = uplinksChanged;
    }

    // Automatic DNS survives only with something to bring it.
    void DnsMode() {
        const bool want = p.configuredIpConfig.GetDhcpDns() &&
                          (p.ipConfig.GetUseDhcp() ||
                           (info.IsTesselIpv6Enabled() && p.ipConfig.GetUseIpv6Dhcp()));
        p.ipConfig.SetDhcpDns(want);
        p.configuredIpConfig.SetDhcpDns(p.ipConfig.GetDhcpDns());
    }

    void WriteIpConfig() {
        const bool bound = tesselNic ? tesselNic->GetDhcpBound() : false;
        nic.SetIpConfig(p.ipConfig);
        if (addressChanged)
            screen.AddressWritten();
        if (tesselNic && p.ipConfig.GetUseDhcp() && bound)
            tesselNic->SetDhcpBound(true);
    }

    void Ipv4Gateway() {
        const KN::Ipv4Address current = routing.GetTesselDefaultGateway();
        const KN::Ipv4Address& gateway = p.ipConfig.GetIpv4Gateway();
        if (!addressChanged && current.GetBinaryAddress() == gateway.GetBinaryAddress())
            return;
        Log(LOG_INFO, "Setting default gateway to %s", gateway.GetStringAddress().c_str());
        routing.SetTesselDefaultGateway(gateway, false);
    }

    void Ipv6Gateway() {
        const KN::Ipv6Address& gateway = p.ipConfig.GetIpv6Gateway();
        Log(LOG_INFO, "Setting default ipv6 gateway to %s",
            gateway.GetScopedStringAddress().c_str());
        routing.SetIpv6TesselDefaultGateway(gateway);
    }

    void Leases() {
        if (!renewV4 && !renewV6)
            return;
        Log(LOG_INFO, "Renew DHCP lease on %s", nic.GetInterfaceName().c_str());
        if (!tesselNic)
            return;
        if (renewV4)
            tesselNic->RenewDhcp();
        if (renewV6)
            tesselNic->RenewDhcp6();
    }

    // The console never leaves the interface stopped: a failed stop or reread still starts it
    // again before the failure travels on.
    void RestartForVlan() {
        if (!vlanChanged)
            return;
        Log(LOG_INFO, "Changed vlan, restarting management interface");
        try {
            nic.Disable();
            nic.Refresh();
        } catch (const KeelsonException&) {
            try {
                nic.Enable();
            } catch (const KeelsonException& e) {
                Log(LOG_ERR, "Enabling %s after a failed restart failed: %s", nic.GetName().c_str(),
                    e.what());
            }
            throw;
        }
        nic.Enable();
    }

    void Dns() {
        if (!p.configuredIpConfig.GetDhcpDns()) {
            Log(LOG_INFO, "Setting hostname to %s", p.hostname.c_str());
            if (p.hostname.find('.') != std::string::npos)
                dns.SetFqdn(p.hostname, false, Keelson::emptyString);
            else
                dns.SetHostname(p.hostname, false);
            Log(LOG_INFO, "Setting nameservers to %s %s", AddressText(p.primaryDns.get()).c_str(),
                AddressText(p.alternateDns.get()).c_str());
            dns.RemoveNameServers();
            for (const KN::IpAddress* server : {p.primaryDns.get(), p.alternateDns.get()}) {
                if (!server)
                    continue;
                // Unspecified addresses stand for an empty field and are not added.
                const auto* v4 = dynamic_cast<const KN::Ipv4Address*>(server);
                if (v4 ? v4->GetBinaryAddress() != 0 : server->GetStringAddress() != "::")
                    dns.AddUserNameServer(*server);
            }
        }
        Log(LOG_INFO, "Setting suffixes to %s", p.suffixes.c_str());
        dns.SetSearchDomainsString(dns.GetDomain());
        for (const std::string& suffix : SplitSuffixes(p.suffixes))
            dns.AddUserSearchDomain(suffix);
        dns.SaveConfig();
    }

    KN::NetworkInterface& nic;
    PendingConfiguration& p;
    TesselCtl::Network::DnsConfigImpl& dns;
    TesselCtl::Network::RoutingInfoImpl& routing;
    ApplyWalkScreen& screen;
    KN::TesselNic* tesselNic;
    TesselCtl::Network::NetworkInfoImpl info;
    bool uplinksChanged = false;
    bool vlanChanged = false;
    bool addressChanged = false;
    bool renewV4 = false;
    bool renewV6 = false;
};

} // namespace

void ApplyPendingConfiguration(KN::NetworkInterface& nic, PendingConfiguration& pending,
                               TesselCtl::Network::DnsConfigImpl& dns,
                               TesselCtl::Network::RoutingInfoImpl& routing,
                               ApplyWalkScreen& screen) {
    Walk(nic, pending, dns, routing, screen).Run();
}

} // namespace Lanyx
