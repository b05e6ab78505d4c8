// IPv4 of the management interface: none, DHCP, or a static address with netmask and gateway.
#pragma once
#include <memory>

#include "keelson/Address.hpp"
#include "text/FormDialog.hpp"
#include "text/RadioGroup.hpp"
#include "text/RadioItem.hpp"

namespace Lanyx {

class IPConfigurationDialog : public FormDialog {
public:
    // `config`: the pending addresses; the three fields start with its address, mask, gateway.
    IPConfigurationDialog(Frame* owner, bool useNone, bool useDhcp,
                          const Keelson::Network::IpConfig& config);

    bool UseNone() const { return radios->IsSelected(kNone); }
    bool UseDhcp() const { return radios->IsSelected(kDhcp); }
    bool UseStatic() const { return radios->IsSelected(kStatic); }

    // The result once the dialog accepted.
    Keelson::Network::IpConfig config;

protected:
    void Open() override;
    KeyResult HandleKey(int key) override;
    bool Accept() override;

private:
    enum Radio : size_t { kNone, kDhcp, kStatic };

    InputItem* addressItem = nullptr;
    InputItem* netmaskItem = nullptr;
    InputItem* gatewayItem = nullptr;
    std::unique_ptr<RadioGroup> radios;
};

} // namespace Lanyx
