// The details page of one physical NIC, as read when the adapter list opened. Only Enter closes it.
#pragma once
#include "restore/switches/Switches.hpp"
#include "text/Dialog.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {

class AdapterInfoDialog : public Dialog {
public:
    AdapterInfoDialog(Frame* owner, AdapterInfo info);

    bool Execute() override;

private:
    TextArea text;
    AdapterInfo info;
};

} // namespace Lanyx
