// The troubleshooting menu: the host's local shell and SSH switched on and off, the time-outs of
// both and of this console, and the restart of the management agents.
#pragma once
#include <cstdint>

#include "text/MenuWindow.hpp"

namespace Lanyx {

class TroubleShootingWindow : public MenuWindow {
public:
    // Asks the init scripts whether the two services run; not asked again while the window lives.
    explicit TroubleShootingWindow(Frame* owner);

    bool IsShellEnabled() const { return shellEnabled; }
    bool IsSshEnabled() const { return sshEnabled; }

    // The menu's panes, with the one right footer that stands until the selection moves.
    void UpdateContent() override;

protected:
    void ShowSelectedEntry() override;
    void RunEntry(uint32_t id) override;

private:
    struct Service;
    // Switches a service through the host agent, with the init script (and for SSH the firewall)
    // as the way round an agent that fails. `enabled` flips whatever the outcome.
    void Toggle(const Service& service, bool& enabled);
    // SSH started or stopped by hand: its firewall ruleset follows by hand too.
    static void SetSshFirewall(bool open);

    bool shellEnabled = false;
    bool sshEnabled = false;
};

} // namespace Lanyx
