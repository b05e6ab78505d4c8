#include "network/IPConfigurationDialog.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"
#include "text/Footers.hpp"
#include "text/LabelItem.hpp"

namespace Lanyx {

namespace {

namespace KN = Keelson::Network;

constexpr int kFieldWidth = 16;

} // namespace

IPConfigurationDialog::IPConfigurationDialog(Frame* owner, bool useNone, bool useDhcp,
                                             const KN::IpConfig& pending)
    : FormDialog(owner, 78, 19, 7), config(pending) {
    CreateList();
    RadioItem* none = Add(std::make_unique<RadioItem>(CatalogueText(Ids::Ipv4None), false));
    RadioItem* dhcp = Add(std::make_unique<RadioItem>(CatalogueText(Ids::Ipv4Dhcp), false));
    RadioItem* manual = Add(std::make_unique<RadioItem>(CatalogueText(Ids::Ipv4Static), false));
    Add(std::make_unique<LabelItem>("", false));
    // A DHCP host shows the address of its lease here, dimmed.
    addressItem = AddField(CatalogueText(Ids::Ipv4AddressHeading),
                           config.GetIpv4Address().GetStringAddress(), kFieldWidth, Filters::Ipv4);
    netmaskItem = AddField(CatalogueText(Ids::SubnetMask),
                           config.GetIpv4Netmask().GetStringAddress(), kFieldWidth, Filters::Ipv4);
    gatewayItem = AddField(CatalogueText(Ids::DefaultGateway),
                           config.GetIpv4Gateway().GetStringAddress(), kFieldWidth, Filters::Ipv4);
    radios = std::make_unique<RadioGroup>(std::vector<RadioItem*>{none, dhcp, manual},
                                          useNone   ? kNone
                                          : useDhcp ? kDhcp
                                                    : kStatic);
    radios->SetDependents(kStatic, {addressItem, netmaskItem, gatewayItem});
    ShowItems();
}

void IPConfigurationDialog::Open() {
    SetTitle(CatalogueText(Ids::Ipv4Title));
    SetMessage(CatalogueText(Ids::Ipv4Message));
    SetFooter(Footers::kSelectMarkOkCancel);
}

FormDialog::KeyResult IPConfigurationDialog::HandleKey(int key) {
    if (key == ' ') {
        radios->SelectItem(list->GetSelectedItem());
        Redraw();
        return KeyResult::Continue;
    }
    return FormDialog::HandleKey(key);
}

bool IPConfigurationDialog::Accept() {
    config.SetUseDhcp(UseDhcp());
    if (UseNone())
        config.SetIpv4UseNone();
    if (!UseStatic()) {
        // The fields are not read: whatever they hold, dimmed, is not handed on.
        config.SetIpv4Gateway(KN::Ipv4Address());
        return true;
    }
    const std::string& address = addressItem->GetValue();
    const std::string& netmask = netmaskItem->GetValue();
    const std::string& gateway = gatewayItem->GetValue();
    if (!KN::Ipv4Address::IsValidAddress(address)) {
        Reject(3, Ids::InvalidAddressTitle, Ids::InvalidIpv4Address);
        return false;
    }
    if (!KN::Ipv4Address::IsValidAddress(netmask) || !KN::Ipv4Address(netmask).IsValidNetmask()) {
        Reject(4, Ids::InvalidSubnetTitle, Ids::InvalidSubnet);
        return false;
    }
    if (!KN::Ipv4Address::IsValidAddress(gateway)) {
        Reject(5, Ids::InvalidGatewayTitle, Ids::InvalidIpv4Gateway);
        return false;
    }
    config.SetIpv4Address(KN::Ipv4Address(address));
    config.SetIpv4Netmask(KN::Ipv4Address(netmask));
    config.SetIpv4Gateway(KN::Ipv4Address(gateway));
    return true;
}

} // namespace Lanyx
