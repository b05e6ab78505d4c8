// The warning before NICs are taken from the switches that hold them: Enter takes them, Esc keeps
// the adapter choice as it was.
#pragma once
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class UsedAdaptersDialog : public Dialog {
public:
    explicit UsedAdaptersDialog(Frame* owner);

    bool Execute() override;

private:
    TextArea text;
};

} // namespace Lanyx
