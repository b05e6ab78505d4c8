// The question before the host's network goes back to factory settings; only F11 says yes.
#pragma once
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class RestoreNetworkDialog : public Dialog {
public:
    explicit RestoreNetworkDialog(Frame* owner);

    // True after F11 and the restore, false on Esc with nothing done.
    bool Execute() override;

private:
    TextArea* question = nullptr; // a child window, owned by the window tree
};

} // namespace Lanyx
