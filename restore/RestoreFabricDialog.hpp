// The repair of a misconfigured management port on a fabric: a new host-local port on the same
// fabric takes over the old port's properties, with the blocked state, the uplinks and the VLAN
// the operator sets here, and the management interface moves onto it.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "keelson/Network.hpp"
#include "text/CheckItem.hpp"
#include "text/FormDialog.hpp"

namespace Lanyx {

class RestoreFabricDialog : public FormDialog {
public:
    // Reads the management interface's port; a failure leaves empty names, VLAN 0 and no port.
    explicit RestoreFabricDialog(Frame* owner);

    const std::vector<std::string>& GetSelectedUplinks() const { return selectedUplinks; }

protected:
    void Open() override;
    // F11 restores and closes, whatever came of it; Enter on the uplink line chooses uplinks.
    KeyResult HandleKey(int key) override;

private:
    // The fabric's uplinks by the names of their uplink ports; empty after a refusal.
    std::vector<std::string> GatherUplinks();
    void ChooseUplinks();
    void RestorePort();

    std::unique_ptr<Keelson::Network::FabricPort> port;
    std::vector<std::string> selectedUplinks;
    bool unblock = false;
    CheckItem* unblockItem = nullptr;
    InputItem* vlanItem = nullptr;
};

} // namespace Lanyx
