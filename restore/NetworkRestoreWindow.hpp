// The network restore menu: six repairs of the host's virtual network. Entries that cannot work
// on this host (no overlay agent, no fabric in use) stay in the list greyed.
#pragma once
#include <cstdint>

#include "text/MenuWindow.hpp"

namespace Lanyx {

class NetworkRestoreWindow : public MenuWindow {
public:
    explicit NetworkRestoreWindow(Frame* owner);

    // After a full draw the right footer offers "Change" until the selection moves.
    void UpdateContent() override;

protected:
    void ShowSelectedEntry() override;
    void RunEntry(uint32_t id) override;
};

} // namespace Lanyx
