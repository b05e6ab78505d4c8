// Asks before guests that run are powered off: Enter goes on, Esc leaves them running.
#pragma once
#include "text/Dialog.hpp"

namespace Lanyx {

class RunningVMsWarningDialog : public Dialog {
public:
    explicit RunningVMsWarningDialog(Frame* owner);

    // True on Enter, false on Esc; other keys are ignored.
    bool Execute() override;
};

} // namespace Lanyx
