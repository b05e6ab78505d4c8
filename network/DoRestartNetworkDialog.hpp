// Stops and starts the management interface in the foreground, with the steps as they happen
// and the static addresses it has afterwards. No configuration changes.
#pragma once
#include <string>
#include <vector>

#include "keelson/Network.hpp"
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class DoRestartNetworkDialog : public Dialog {
public:
    DoRestartNetworkDialog(Frame* owner, Keelson::Network::NetworkInterface* interface);

    // Ends with Enter only, once the interface is up again.
    bool Execute() override;

    TextArea* GetProgressText() const { return progressText; }

private:
    Keelson::Network::NetworkInterface* interface; // not owned
    TextArea* progressText = nullptr;
};

// The address lines shown after the interface came up: the IPv4 address of a static host, then
// the static IPv6 addresses that are not link-local, two of them and "..." when more follow.
std::string RestartedAddressLines(const std::string& ipAddressIs, bool useDhcp,
                                  const std::string& ipv4Address,
                                  const std::vector<Keelson::Network::Ipv6Network>& ipv6Networks);

} // namespace Lanyx
