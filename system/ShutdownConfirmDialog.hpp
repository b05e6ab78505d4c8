// Powers the host off after stopping its guests; see PowerActionDialog.
#pragma once
#include "system/PowerActionDialog.hpp"

namespace Lanyx {

class ShutdownConfirmDialog : public PowerActionDialog {
public:
    // `graceful` false forces the running guests off.
    ShutdownConfirmDialog(Frame* owner, bool graceful);
};

} // namespace Lanyx
