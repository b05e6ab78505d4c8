// Restarts the host after stopping its guests; see PowerActionDialog.
#pragma once
#include "system/PowerActionDialog.hpp"

namespace Lanyx {

class RebootConfirmDialog : public PowerActionDialog {
public:
    // `graceful` false forces the running guests off.
    RebootConfirmDialog(Frame* owner, bool graceful);
};

} // namespace Lanyx
