// The details page of one standard switch: its counts and its lists whole.
#pragma once
#include "restore/switches/Switches.hpp"
#include "text/InfoDialog.hpp"

namespace Lanyx {

class StandardSwitchInfoDialog : public InfoDialog {
public:
    StandardSwitchInfoDialog(Frame* owner, StandardSwitchInfo info);

    const StandardSwitchInfo& GetInfo() const { return info; }

private:
    StandardSwitchInfo info;
};

} // namespace Lanyx
