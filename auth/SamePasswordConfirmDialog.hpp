// The question before a password is set to what it already is.
#pragma once
#include "text/Dialog.hpp"

namespace Lanyx {

class SamePasswordConfirmDialog : public Dialog {
public:
    explicit SamePasswordConfirmDialog(Frame* owner);
    // True on Enter, false on Escape; other keys do nothing.
    bool Execute() override;
};

} // namespace Lanyx
