// The factory restore of the network as it happens: guests off when some run and the operator
// agrees, network dump off, configuration cleared, defaults configured. Nothing is undone when a
// stage fails; the text says how far it got.
#pragma once
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class DoRestoreNetworkDialog : public Dialog {
public:
    explicit DoRestoreNetworkDialog(Frame* owner);

    // False when the operator kept the guests running (nothing changed); else true, also after
    // a failure.
    bool Execute() override;

private:
    TextArea* progress = nullptr; // a child window, owned by the window tree
};

} // namespace Lanyx
