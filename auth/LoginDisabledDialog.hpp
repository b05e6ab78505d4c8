// The box shown instead of the login while the host keeps the console closed. Its run always
// gives false.
#pragma once
#include "text/Dialog.hpp"

namespace Lanyx {

class LoginDisabledDialog : public Dialog {
public:
    explicit LoginDisabledDialog(Frame* owner);

    // Waits for Enter or Escape.
    bool Execute() override;
};

} // namespace Lanyx
