// The question before the management interface is stopped and started: F11 restarts, Esc goes
// back. Library failures pass to the caller, which owns the interface.
#pragma once
#include "keelson/Network.hpp"
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class RestartNetworkDialog : public Dialog {
public:
    RestartNetworkDialog(Frame* owner, Keelson::Network::NetworkInterface* interface);

    // True when the restart ran.
    bool Execute() override;

private:
    Keelson::Network::NetworkInterface* interface; // not owned
    TextArea* questionText = nullptr;
};

} // namespace Lanyx
