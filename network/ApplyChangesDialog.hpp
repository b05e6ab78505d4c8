// The question on leaving the network menu with edits: apply them (and restart the network, or
// the host when IPv6 support was switched), drop them, or go back to editing.
#pragma once
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class ApplyChangesDialog : public Dialog {
public:
    ApplyChangesDialog(Frame* owner, bool rebootNeeded);

    // y or n give true with the answer in `apply`; Esc gives false.
    bool Execute() override;

    bool apply = false;

private:
    TextArea question;
};

} // namespace Lanyx
