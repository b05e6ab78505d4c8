// Asks whether the new management port may go without uplinks.
#pragma once
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class UsedUplinksDialog : public Dialog {
public:
    explicit UsedUplinksDialog(Frame* owner);

    // True on Enter, false on Esc.
    bool Execute() override;

private:
    TextArea* question = nullptr; // a child window, owned by the window tree
};

} // namespace Lanyx
