// Asks whether a NIC that another switch holds may be taken from it for the new switch.
#pragma once
#include "restore/switches/Switches.hpp"
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class HwportInUseDialog : public Dialog {
public:
    HwportInUseDialog(Frame* owner, AdapterInfo adapter);

    // True on Y and N, false on Esc; the answer is GetDetach, so Esc counts as no.
    bool Execute() override;

    bool GetDetach() const { return detach; }

private:
    TextArea* text = nullptr; // a child window, owned by the window tree
    AdapterInfo info;
    bool detach = false;
};

} // namespace Lanyx
