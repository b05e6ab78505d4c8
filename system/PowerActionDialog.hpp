// What shutting down and restarting have in common: a box that only tells what is going on,
// stops the guests and runs the host's power command. Nothing is asked here.
#pragma once
#include <cstdint>
#include <string>

#include "text/Dialog.hpp"

namespace Lanyx {

class PowerActionDialog : public Dialog {
public:
    // Comes back only when the power command could not be started (false); otherwise it waits
    // for the host to go down, and only the idle limit ends it.
    bool Execute() override;

    // False forces the running guests off.
    bool graceful;

protected:
    PowerActionDialog(Frame* owner, bool graceful, uint32_t titleId, uint32_t messageId,
                      std::string command);

private:
    uint32_t titleId;
    uint32_t messageId;
    std::string command;
};

} // namespace Lanyx
