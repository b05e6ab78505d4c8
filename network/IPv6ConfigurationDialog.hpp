// IPv6 off, dynamic (router advertisement, or DHCPv6 with the tick) or static with up to three
// addresses and a gateway. The host's static addresses live in the fields while the form is
// open; only the static road puts them back into the result.
#pragma once
#include <array>
#include <memory>

#include "keelson/Address.hpp"
#include "text/CheckItem.hpp"
#include "text/FormDialog.hpp"
#include "text/RadioGroup.hpp"

namespace Lanyx {

class IPv6ConfigurationDialog : public FormDialog {
public:
    // `modes` gives the DHCPv6 and router-advertisement flags, `addresses` the working copy.
    IPv6ConfigurationDialog(Frame* owner, bool enabled, const Keelson::Network::IpConfig& modes,
                            const Keelson::Network::IpConfig& addresses);

    // After a true run: IPv6 on, the configuration with both flags and, on the static road, the
    // fields' addresses and gateway; and whether a key ever went to a static address field.
    bool GetEnabled() const { return enabled; }
    const Keelson::Network::IpConfig& GetConfig() const { return config; }
    bool GetAddressEdited() const { return addressEdited; }

    InputItem* GetAddressItem(size_t n) const { return addressItems.at(n); }
    InputItem* GetGatewayItem() const { return gatewayItem; }
    CheckItem* GetDhcpv6Item() const { return dhcpv6Item; }

protected:
    void Open() override;
    KeyResult HandleKey(int key) override;
    bool Accept() override;
    void FieldEdited(InputItem& field) override;

private:
    // Space on selection `ordinal`: the mode it stands for.
    void ChangeMode(uint32_t ordinal);
    // Radios, tick and fields again from `enabled` and the two flags.
    void ShowMode();
    bool Dynamic() const { return config.GetUseIpv6Dhcp() || config.GetUseIpv6RouterAdvertised(); }

    bool enabled;
    Keelson::Network::IpConfig config;
    bool addressEdited = false;
    RadioItem* disableItem = nullptr;
    RadioItem* dynamicItem = nullptr;
    CheckItem* dhcpv6Item = nullptr;
    RadioItem* staticItem = nullptr;
    std::array<InputItem*, 3> addressItems{};
    InputItem* gatewayItem = nullptr;
    std::unique_ptr<RadioGroup> modes;
};

} // namespace Lanyx
