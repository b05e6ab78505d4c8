#include "network/NetworkWindow.hpp"

#include "host/Log.hpp"
#include "network/AdaptersDialog.hpp"
#include "network/ApplyChangesDialog.hpp"
#include "network/DNSConfigurationDialog.hpp"
#include "network/IPConfigurationDialog.hpp"
#include "network/IPv6ConfigurationDialog.hpp"
#include "network/SuffixesDialog.hpp"
#include "network/VlanDialog.hpp"
#include "restore/switches/Switches.hpp"
#include "system/RebootConfirmDialog.hpp"
#include "text/CatalogueIds.hpp"
#include "text/Footers.hpp"
#include "text/MessageDialog.hpp"

namespace Lanyx {

namespace KN = Keelson::Network;
using Keelson::Lib::KeelsonException;

NetworkWindow::NetworkWindow(Frame* owner)
    : MenuWindow(owner, Ids::NetworkMenuTitle, Footers::kMenuSelect) {
    AddEntry(Ids::AdaptersEntry);
    AddEntry(Ids::VlanEntry);
    AddBlank();
    AddEntry(Ids::Ipv4Entry);
    AddEntry(Ids::Ipv6Entry);
    AddEntry(Ids::DnsEntry);
    AddEntry(Ids::SuffixesEntry);
    ShowEntries();
}

NetworkWindow::~NetworkWindow() = default;

bool NetworkWindow::Execute() {
    if (!Open())
        return false;
    return MenuWindow::Execute();
}

bool NetworkWindow::Open() {
    TesselCtl::Network::NetworkInfoImpl info;
    pending.changed = false;
    pending.ipv6GatewayChanged = false;
    pending.ipv6Enabled = pending.ipv6EnabledAtOpen = info.IsTesselIpv6Enabled();
    try {
        managementInterface = FindManagementInterface();
        if (!managementInterface) {
            Log(LOG_ERR, "Could not get a suitable management interface");
            MessageDialog(this, Ids::EnableNetworkError, Ids::InterfaceNotFound).RunModal();
            return false;
        }
        ReadAddresses(*managementInterface, pending);
    } catch (const KeelsonException&) {
        return false;
    }
    if (ReadPendingConfiguration(*managementInterface, routingInfo, dnsConfig, pending) !=
        ReadResult::Read)
        return false;
    if (pending.fabric) {
        GreyEntry(Ids::AdaptersEntry);
        GreyEntry(Ids::VlanEntry);
        ShowEntries(); // the selection moves to the first entry left
    }
    return true;
}

void NetworkWindow::RunEntry(uint32_t id) {
    switch (id) {
    case Ids::AdaptersEntry: {
        std::string switchName;
        if (!GetSwitchName(managementInterface.get(), switchName))
            break;
        AdaptersDialog dialog(this, pending.adapters, pending.maxActiveUplinks, switchName);
        if (dialog.RunModal())
            pending.TakeAdapters(dialog.GetSelectedNames());
        break;
    }
    case Ids::VlanEntry: {
        VlanDialog dialog(this, pending.vlanId);
        if (dialog.RunModal())
            pending.TakeVlan(dialog.GetValue());
        break;
    }
    case Ids::Ipv4Entry: {
        IPConfigurationDialog dialog(this, pending.ipConfig.GetIpv4UseNone(),
                                     pending.configuredIpConfig.GetUseDhcp(), pending.ipConfig);
        if (dialog.RunModal())
            pending.TakeIpv4(dialog.config);
        break;
    }
    case Ids::Ipv6Entry: {
        IPv6ConfigurationDialog dialog(this, pending.ipv6Enabled, pending.configuredIpConfig,
                                       pending.ipConfig);
        if (dialog.RunModal())
            pending.TakeIpv6(dialog.GetEnabled(), dialog.GetConfig(), dialog.GetAddressEdited());
        break;
    }
    case Ids::DnsEntry: {
        DNSConfigurationDialog dialog(
            this, pending.configuredIpConfig.GetDhcpDns(), pending.configuredIpConfig.GetUseDhcp(),
            pending.primaryDns.get(), pending.alternateDns.get(), pending.hostname);
        if (!dialog.RunModal())
            break;
        // Servers from DHCP are not the operator's: the record takes new ones only when typed.
        const bool useDhcp = dialog.GetUseDhcp();
        pending.TakeDns(useDhcp, useDhcp ? nullptr : dialog.TakePrimary(),
                        useDhcp ? nullptr : dialog.TakeAlternate(), dialog.GetHostname());
        break;
    }
    case Ids::SuffixesEntry: {
        SuffixesDialog dialog(this, pending.suffixes);
        if (dialog.RunModal())
            pending.TakeSuffixes(dialog.GetValue());
        break;
    }
    default:
        return;
    }
    ShowDetails();
}

bool NetworkWindow::ConfirmLeave() {
    if (!pending.HasEdits())
        return true;
    ApplyChangesDialog question(this, pending.RebootNeeded());
    if (!question.RunModal())
        return false; // back to editing, the record intact
    if (question.apply) {
        ApplyChanges();
        Log(LOG_INFO, "Network settings changed.");
    }
    return true;
}

bool NetworkWindow::ApplyChanges() {
    ApplyPendingConfiguration(*managementInterface, pending, dnsConfig, routingInfo, *this);
    return true;
}

void NetworkWindow::ShowFailure(const std::string& message) {
    MessageDialog(this, Ids::EnableNetworkError, message).RunModal();
}

void NetworkWindow::AddressWritten() {
    ShowDetails();
    RedrawTree();
}

void NetworkWindow::RebootHost() {
    // Comes back only when the reboot command cannot be started.
    RebootConfirmDialog(this, true).RunModal();
}

void NetworkWindow::ShowDetails() {
    if (!strings)
        return;
    const uint32_t id = GetSelectedEntry();
    std::string text;
    switch (id) {
    case Ids::AdaptersEntry:
        text = AdaptersText();
        break;
    case Ids::VlanEntry:
        text = VlanText();
        break;
    case Ids::Ipv4Entry:
        text = Ipv4Text();
        break;
    case Ids::Ipv6Entry:
        text = Ipv6Text();
        break;
    case Ids::DnsEntry:
        text = DnsText();
        break;
    case Ids::SuffixesEntry:
        text = SuffixesText();
        break;
    default:
        break;
    }
    SetRightTitle(CatalogueText(id));
    detailText->SetText(text);
    SetLeftFooter(Footers::kMenuSelect);
    SetRightFooter(Footers::kChangeExit);
}

std::string NetworkWindow::OrNotSet(const std::string& text) const {
    return text.empty() ? CatalogueText(Ids::NotSet) : text;
}

std::string NetworkWindow::AdapterLabel(const std::string& name) const {
    // A NIC named in the record may have left the host since; the record keeps it, and the line
    // says so instead of closing the screen.
    try {
        const AdapterInfo info = GatherAdapterInfo(name, UplinkUsers{{name, ""}});
        return info.hardwareLabel == "N/A" ? info.macAddress : info.hardwareLabel;
    } catch (const KeelsonException& e) {
        Log(LOG_WARNING, "Adapter %s cannot be read: %s", name.c_str(), e.what());
        return "not found on this host";
    }
}

std::string NetworkWindow::AdaptersText() {
    std::string text = "{color:white}";
    for (const std::string& name : pending.adapters)
        text += name + " (" + AdapterLabel(name) + ")\n";
    return text + "\n{/color}{color:light-grey}" + CatalogueText(Ids::AdaptersHelp) + "{/color}";
}

std::string NetworkWindow::VlanText() const {
    return "{color:white}" + OrNotSet(pending.vlanId ? std::to_string(pending.vlanId) : "") +
           "\n\n{/color}{color:light-grey}" + CatalogueText(Ids::VlanHelp) + "{/color}";
}

std::string NetworkWindow::Ipv4Text() const {
    const KN::IpConfig& addresses = pending.ipConfig;
    const uint32_t mode = pending.configuredIpConfig.GetUseDhcp() ? Ids::Automatic
                          : addresses.GetIpv4UseNone()            ? Ids::None
                                                                  : Ids::Manual;
    const auto value = [&](const KN::Ipv4Address& address) {
        return OrNotSet(address.GetBinaryAddress() ? address.GetStringAddress() : "");
    };
    return std::string("{color:white}") + CatalogueText(mode) + "\n\n" +
           CatalogueText(Ids::Ipv4AddressHeading) + ": " + value(addresses.GetIpv4Address()) +
           "\n" + CatalogueText(Ids::SubnetMask) + ": " + value(addresses.GetIpv4Netmask()) + "\n" +
           CatalogueText(Ids::DefaultGateway) + ": " + value(addresses.GetIpv4Gateway()) +
           "\n\n{/color}{color:light-grey}" + CatalogueText(Ids::Ipv4Help) + "{/color}";
}

std::string NetworkWindow::Ipv6Text() const {
    std::string text =
        std::string("{color:white}") +
        CatalogueText(pending.ipv6Enabled ? Ids::Ipv6IsEnabled : Ids::Ipv6IsDisabled) + "\n\n";
    if (pending.ipv6Enabled && !pending.ipv6EnabledAtOpen)
        return text + "{/color}{color:light-grey}" + CatalogueText(Ids::Ipv6AfterRebootHelp) +
               "{/color}";
    if (!TesselCtl::Network::NetworkInfoImpl().IsTesselIpv6Enabled())
        return text + "{/color}{color:light-grey}" + CatalogueText(Ids::Ipv6DisabledHelp) +
               "{/color}";

    const KN::IpConfig& modes = pending.configuredIpConfig;
    text +=
        CatalogueText(modes.GetUseIpv6Dhcp() || modes.GetUseIpv6RouterAdvertised() ? Ids::Automatic
                                                                                   : Ids::Manual);
    text += std::string("\n\n") + CatalogueText(Ids::Ipv6AddressesHeading) + ":\n";
    const std::vector<KN::Ipv6Network>& networks = pending.ipConfig.GetIpv6Network();
    for (size_t i = 0; i < networks.size() && i < 3; ++i)
        text += networks[i].GetStringAddress() + "\n";
    if (networks.size() >= 4)
        text += "...\n";
    if (networks.empty())
        text += std::string(CatalogueText(Ids::NotSet)) + "\n";
    const std::string gateway = pending.ipConfig.GetIpv6Gateway().GetScopedStringAddress();
    text += std::string("\n") + CatalogueText(Ids::DefaultGateway) + ":\n" +
            OrNotSet(gateway == "::" ? "" : gateway);
    return text + "\n\n{/color}{color:light-grey}" + CatalogueText(Ids::Ipv6Help) + "{/color}";
}

std::string NetworkWindow::DnsText() const {
    const KN::IpAddress* primary = pending.primaryDns.get();
    const KN::IpAddress* alternate = pending.alternateDns.get();
    const bool ipv6Second = primary && alternate && primary->GetAddressFamily() == 0 &&
                            alternate->GetAddressFamily() == 1;
    return std::string("{color:white}") +
           CatalogueText(pending.configuredIpConfig.GetDhcpDns() ? Ids::Automatic : Ids::Manual) +
           "\n\n" + CatalogueText(Ids::PrimaryDns) + ":\n" + OrNotSet(AddressText(primary)) + "\n" +
           CatalogueText(ipv6Second ? Ids::Ipv6Dns : Ids::AlternateDns) + ":\n" +
           OrNotSet(AddressText(alternate)) + "\n\n" + CatalogueText(Ids::HostnameHeading) + "\n" +
           pending.hostname + "\n\n{/color}{color:light-grey}" + CatalogueText(Ids::DnsHelp) +
           "{/color}";
}

std::string NetworkWindow::SuffixesText() const {
    return "{color:white}" + OrNotSet(pending.suffixes) + "\n\n{/color}{color:light-grey}" +
           CatalogueText(Ids::SuffixesHelp) + "{/color}";
}

} // namespace Lanyx
