// The question before the management network leaves its fabric for a new standard switch.
#pragma once
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class SafeModeNetworkDialog : public Dialog {
public:
    explicit SafeModeNetworkDialog(Frame* owner);

    // True after F11, whatever became of the move; false on Esc with nothing done.
    bool Execute() override;

private:
    TextArea* question = nullptr; // a child window, owned by the window tree
};

} // namespace Lanyx
