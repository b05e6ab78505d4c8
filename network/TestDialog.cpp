#include "network/TestDialog.hpp"

#include <memory>

#include "keelson/Network.hpp"
#include "network/DNSConfigurationDialog.hpp"
#include "network/RunTestDialog.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

using Keelson::Network::IpAddress;

constexpr int kWidth = 70;
constexpr int kHeight = 14;
constexpr int kTitleHeight = 6;
constexpr int kFieldWidth = 30;
constexpr size_t kTargets = 3;

constexpr const char* kFooter =
    "{color:black}<Up/Down>{/color} {color:dark-grey}Select{/color}{align:right}"
    "{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";

template <class Address> std::vector<std::string> Texts(const std::vector<Address>& list) {
    std::vector<std::string> texts;
    for (const Address& address : list)
        texts.push_back(address.GetStringAddress());
    return texts;
}

} // namespace

std::vector<std::string> DefaultPingTargets(const std::string& gateway,
                                            const std::string& ipv6Gateway, bool ipv6Enabled,
                                            const std::vector<std::string>& servers,
                                            const std::vector<std::string>& ipv6Servers) {
    auto nth = [](const std::vector<std::string>& list, size_t n) {
        return n < list.size() ? list[n] : "";
    };
    const std::string candidates[] = {
        gateway,         ipv6Enabled ? ipv6Gateway : "",
        nth(servers, 0), nth(ipv6Servers, 0),
        nth(servers, 1), nth(ipv6Servers, 1),
    };
    std::vector<std::string> targets;
    for (const std::string& candidate : candidates) {
        if (targets.size() == kTargets)
            break;
        if (!candidate.empty() && candidate != "0.0.0.0" && candidate != "::")
            targets.push_back(candidate);
    }
    return targets;
}

TestDialog::TestDialog(Frame* owner)
    : FormDialog(owner, kWidth, kHeight, kTitleHeight), dns("defaultTcpipStack"),
      routing("defaultTcpipStack") {
    CreateList();
    for (size_t n = 0; n < addressItems.size(); ++n) {
        const std::string label =
            std::string(CatalogueText(Ids::PingAddress)) + " #" + std::to_string(n + 1) + ":";
        addressItems[n] = AddField(label, "", kFieldWidth, Filters::IpAddress);
    }
    std::string name = dns.GetHostname();
    if (const std::string domain = dns.GetDomain(); !domain.empty())
        name += "." + domain;
    hostnameItem =
        AddField(CatalogueText(Ids::ResolveHostname), name, kFieldWidth, Filters::Visible);

    const bool ipv6Enabled = TesselCtl::Network::NetworkInfoImpl().IsTesselIpv6Enabled();
    const std::string ipv6Gateway =
        ipv6Enabled ? routing.GetIpv6TesselDefaultGateway().GetStringAddress() : "";
    const std::vector<std::string> targets = DefaultPingTargets(
        routing.GetTesselDefaultGateway().GetStringAddress(), ipv6Gateway, ipv6Enabled,
        Texts(dns.GetNameServers()), Texts(dns.GetIpv6NameServers(false)));
    for (size_t n = 0; n < targets.size(); ++n)
        addressItems[n]->SetValue(targets[n]);
    ShowItems();
}

void TestDialog::Open() {
    SetTitle(CatalogueText(Ids::TestNetworkTitle));
    SetMessage(CatalogueText(Ids::TestNetworkMessage));
    SetFooter(kFooter);
}

bool TestDialog::Accept() {
    std::array<std::unique_ptr<IpAddress>, kTargets> targets;
    for (size_t n = 0; n < kTargets; ++n) {
        const std::string& text = addressItems[n]->GetValue();
        if (!text.empty() && !IsServerAddress(text)) {
            Reject(static_cast<uint32_t>(n), Ids::InvalidAddressTitle, Ids::InvalidIpOrIpv6Address);
            return false;
        }
        targets[n] = ParseServerAddress(text);
    }
    ShowCursor(false);
    RunTestDialog(this, targets[0].get(), targets[1].get(), targets[2].get(),
                  hostnameItem->GetValue())
        .RunModal();
    return true;
}

} // namespace Lanyx
