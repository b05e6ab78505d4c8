// Says that the fabric has no uplinks on this host to choose from.
#pragma once
#include "text/Dialog.hpp"

namespace Lanyx {

class NoUplinksDialog : public Dialog {
public:
    explicit NoUplinksDialog(Frame* owner);

    // True on Enter, false on Esc; the caller goes back to its form either way.
    bool Execute() override;
};

} // namespace Lanyx
