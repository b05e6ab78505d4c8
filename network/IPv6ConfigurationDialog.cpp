#include "network/IPv6ConfigurationDialog.hpp"

#include "core/Keys.hpp"
#include "keelson/Lib.hpp"
#include "text/CatalogueIds.hpp"
#include "text/LabelItem.hpp"

namespace Lanyx {

namespace {

using Keelson::Network::Ipv6Address;
using Keelson::Network::Ipv6Network;

constexpr int kWidth = 78;
constexpr int kHeight = 21;
constexpr int kTitleHeight = 7;
constexpr int kFieldWidth = 42;

// Selections of the list.
enum : uint32_t {
    kDisable = 0,
    kDynamic = 1,
    kDhcpv6 = 2,
    kStatic = 3,
    kFirstAddress = 4,
    kGateway = 7
};
// The radios in the group.
enum : size_t { kRadioDisable = 0, kRadioDynamic = 1, kRadioStatic = 2 };

constexpr int kStaticType = 0;
constexpr int kLinkLocalScope = 1;
constexpr int kGlobalScope = 3;

} // namespace

IPv6ConfigurationDialog::IPv6ConfigurationDialog(Frame* owner, bool ipv6Enabled,
                                                 const Keelson::Network::IpConfig& modeConfig,
                                                 const Keelson::Network::IpConfig& addresses)
    : FormDialog(owner, kWidth, kHeight, kTitleHeight), enabled(ipv6Enabled), config(addresses) {
    const bool dhcp = modeConfig.GetUseIpv6Dhcp();
    const bool ra = modeConfig.GetUseIpv6RouterAdvertised();
    config.SetUseIpv6Dhcp(dhcp);
    config.SetUseIpv6RouterAdvertised(ra);

    CreateList();
    disableItem = Add(std::make_unique<RadioItem>(CatalogueText(Ids::Ipv6Disable), false));
    dynamicItem = Add(std::make_unique<RadioItem>(CatalogueText(Ids::Ipv6Dynamic), false));
    dhcpv6Item = Add(std::make_unique<CheckItem>(CatalogueText(Ids::Ipv6UseDhcp), dhcp, 4));
    staticItem = Add(std::make_unique<RadioItem>(CatalogueText(Ids::Ipv6Static), false));
    Add(std::make_unique<LabelItem>("", false));
    for (size_t n = 0; n < addressItems.size(); ++n) {
        const std::string label =
            std::string(CatalogueText(Ids::StaticAddressLabel)) + " #" + std::to_string(n + 1);
        addressItems[n] = AddField(label, "", kFieldWidth, Filters::Ipv6Network);
    }
    gatewayItem =
        AddField(CatalogueText(Ids::DefaultGatewayLabel), "", kFieldWidth, Filters::Ipv6Network);

    modes = std::make_unique<RadioGroup>(
        std::vector<RadioItem*>{disableItem, dynamicItem, staticItem}, kRadioDisable);
    modes->SetDependents(kRadioDynamic, {dhcpv6Item});
    modes->SetDependents(kRadioStatic,
                         {addressItems[0], addressItems[1], addressItems[2], gatewayItem});
    ShowMode();
    // At opening a DHCPv6-only host keeps its gateway editable; the first Space ends that.
    gatewayItem->SetEnabled(enabled && !ra);

    // The host's static addresses move into the fields; learned and link-local ones stay.
    size_t free = 0;
    const std::vector<Ipv6Network> networks = config.GetIpv6Network();
    for (const Ipv6Network& network : networks) {
        if (free == addressItems.size())
            break;
        if (network.GetIpv6AddressType() != kStaticType ||
            network.GetIpv6Scope() == kLinkLocalScope)
            continue;
        addressItems[free++]->SetValue(network.GetStringAddress());
        config.RemoveIpv6Network(network);
    }
    const std::string gateway = config.GetIpv6Gateway().GetScopedStringAddress();
    if (gateway != "::")
        gatewayItem->SetValue(gateway);
    ShowItems();
}

void IPv6ConfigurationDialog::Open() {
    SetTitle(CatalogueText(Ids::Ipv6Title));
    SetMessage(CatalogueText(Ids::Ipv6Message));
    SetFooter(Footers::kSelectMarkOkCancel);
}

void IPv6ConfigurationDialog::ShowMode() {
    const bool dynamic = Dynamic();
    modes->Select(!enabled ? kRadioDisable : dynamic ? kRadioDynamic : kRadioStatic);
    dhcpv6Item->SetChecked(config.GetUseIpv6Dhcp());
}

void IPv6ConfigurationDialog::ChangeMode(uint32_t ordinal) {
    const bool ticked = dhcpv6Item->IsChecked();
    switch (ordinal) {
    case kDisable:
        enabled = false;
        break;
    case kDynamic:
    case kDhcpv6: {
        // The tick toggles; the radio keeps what the tick says. Never both flags.
        const bool useDhcp = ordinal == kDynamic ? ticked : !ticked;
        enabled = true;
        config.SetUseIpv6Dhcp(useDhcp);
        config.SetUseIpv6RouterAdvertised(!useDhcp);
        break;
    }
    case kStatic:
        enabled = true;
        config.SetUseIpv6Dhcp(false);
        config.SetUseIpv6RouterAdvertised(false);
        break;
    default:
        return;
    }
    ShowMode();
}

FormDialog::KeyResult IPv6ConfigurationDialog::HandleKey(int key) {
    if (key != ' ')
        return FormDialog::HandleKey(key);
    ChangeMode(list->GetSelectedOrdinal());
    Redraw();
    return KeyResult::Continue;
}

void IPv6ConfigurationDialog::FieldEdited(InputItem& field) {
    if (&field != gatewayItem)
        addressEdited = true;
}

bool IPv6ConfigurationDialog::Accept() {
    if (!enabled || Dynamic())
        return true;
    for (size_t n = 0; n < addressItems.size(); ++n) {
        const std::string& text = addressItems[n]->GetValue();
        if (text.empty())
            continue;
        const uint32_t ordinal = kFirstAddress + static_cast<uint32_t>(n);
        if (!Ipv6Network::IsValidAddressAndNetmask(text)) {
            Reject(ordinal, Ids::InvalidAddressTitle, Ids::InvalidIpv6Address);
            return false;
        }
        if (Ipv6Network(text).GetAddress().IsLinkLocal()) {
            Reject(ordinal, Ids::InvalidScopeTitle, Ids::LinkLocalStatic);
            return false;
        }
    }
    const std::string& gateway = gatewayItem->GetValue();
    if (!gateway.empty() && !Ipv6Address::IsValidAddress(gateway)) {
        Reject(kGateway, Ids::InvalidGatewayTitle, Ids::InvalidIpv6Gateway);
        return false;
    }

    for (InputItem* field : addressItems) {
        if (field->GetValue().empty())
            continue;
        Ipv6Network network(field->GetValue());
        network.SetIpv6AddressType(kStaticType);
        network.SetIpv6Scope(kGlobalScope);
        config.AddIpv6Network(network);
    }
    if (gateway == config.GetIpv6Gateway().GetScopedStringAddress())
        return true;
    config.SetIpv6Gateway(gateway.empty() ? Ipv6Address() : Ipv6Address(gateway));
    return true;
}

} // namespace Lanyx
