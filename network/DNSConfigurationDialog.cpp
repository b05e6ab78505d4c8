#include "network/DNSConfigurationDialog.hpp"

#include "text/CatalogueIds.hpp"
#include "text/LabelItem.hpp"

namespace Lanyx {

namespace {

using Keelson::Network::IpAddress;
using Keelson::Network::Ipv4Address;
using Keelson::Network::Ipv6Address;

constexpr int kWidth = 78;
constexpr int kHeight = 17;
constexpr int kTitleHeight = 6;
constexpr int kFieldWidth = 44;

enum : uint32_t { kAuto = 0, kManual = 1, kPrimary = 2, kAlternate = 3 };
enum : size_t { kRadioAuto = 0, kRadioManual = 1 };
// Shorter than this, the second field is no IPv6 address any more and says so.
constexpr size_t kIpv6LabelKeeps = 3;

std::unique_ptr<IpAddress> Copy(const IpAddress* address) {
    return std::unique_ptr<IpAddress>(address ? address->Clone() : nullptr);
}

std::string TextOf(const IpAddress* address) {
    return address ? address->GetStringAddress() : std::string();
}

} // namespace

bool IsServerAddress(const std::string& text) {
    return Ipv6Address::IsValidAddress(text) || Ipv4Address::IsValidAddress(text);
}

std::unique_ptr<IpAddress> ParseServerAddress(const std::string& text) {
    if (text.empty())
        return nullptr;
    if (Ipv6Address::IsValidAddress(text))
        return std::make_unique<Ipv6Address>(text);
    return std::make_unique<Ipv4Address>(text);
}

DNSConfigurationDialog::DNSConfigurationDialog(Frame* owner, bool dhcp, bool dhcpAvailable,
                                               const IpAddress* primaryServer,
                                               const IpAddress* alternateServer,
                                               const std::string& host)
    : FormDialog(owner, kWidth, kHeight, kTitleHeight), useDhcp(dhcp), primary(Copy(primaryServer)),
      alternate(Copy(alternateServer)), hostname(host) {
    CreateList();
    autoItem = Add(std::make_unique<RadioItem>(CatalogueText(Ids::DnsAutomatic), false));
    manualItem = Add(std::make_unique<RadioItem>(CatalogueText(Ids::DnsManual), false));
    Add(std::make_unique<LabelItem>("", false));
    primaryItem = AddField(CatalogueText(Ids::PrimaryDns), TextOf(primaryServer), kFieldWidth,
                           Filters::IpAddress);
    // An IPv4 primary beside an IPv6 second server: the second is the IPv6 one.
    const bool ipv6Second = primaryServer && alternateServer &&
                            primaryServer->GetAddressFamily() == 0 &&
                            alternateServer->GetAddressFamily() == 1;
    alternateItem = AddField(CatalogueText(ipv6Second ? Ids::Ipv6Dns : Ids::AlternateDns),
                             TextOf(alternateServer), kFieldWidth, Filters::IpAddress);
    hostnameItem =
        AddField(CatalogueText(Ids::HostnameHeading), hostname, kFieldWidth, Filters::HostName);

    choice = std::make_unique<RadioGroup>(std::vector<RadioItem*>{autoItem, manualItem},
                                          useDhcp ? kRadioAuto : kRadioManual);
    choice->SetDependents(kRadioManual, {primaryItem, alternateItem, hostnameItem});
    autoItem->SetEnabled(dhcpAvailable);
    manualItem->SetEnabled(dhcpAvailable);
    ShowItems();
}

void DNSConfigurationDialog::Open() {
    SetTitle(CatalogueText(Ids::DnsTitle));
    SetMessage(CatalogueText(Ids::DnsMessage));
    SetFooter(Footers::kSelectMarkOkCancel);
}

FormDialog::KeyResult DNSConfigurationDialog::HandleKey(int key) {
    if (key != ' ')
        return FormDialog::HandleKey(key);
    const uint32_t selected = list->GetSelectedOrdinal();
    if (selected == kAuto || selected == kManual) {
        useDhcp = selected == kAuto;
        choice->Select(useDhcp ? kRadioAuto : kRadioManual);
    }
    Redraw();
    return KeyResult::Continue;
}

void DNSConfigurationDialog::FieldEdited(InputItem& field) {
    if (&field == alternateItem && field.GetValue().size() < kIpv6LabelKeeps)
        field.SetLabel(CatalogueText(Ids::AlternateDns));
}

bool DNSConfigurationDialog::Accept() {
    if (useDhcp)
        return true;
    const std::string& primaryText = primaryItem->GetValue();
    if (!primaryText.empty() && !IsServerAddress(primaryText)) {
        Reject(kPrimary, Ids::InvalidDnsTitle, Ids::InvalidDnsServer);
        return false;
    }
    const std::string& alternateText = alternateItem->GetValue();
    if (!alternateText.empty() && !IsServerAddress(alternateText)) {
        Reject(kAlternate, Ids::InvalidDnsTitle, Ids::InvalidDnsServer);
        return false;
    }
    primary = ParseServerAddress(primaryText);
    alternate = ParseServerAddress(alternateText);
    hostname = hostnameItem->GetValue();
    return true;
}

} // namespace Lanyx
