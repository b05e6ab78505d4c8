// A new port group on one of the host's standard switches, by name, made by the host's tool.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "restore/switches/Switches.hpp"
#include "text/FormDialog.hpp"
#include "text/RadioGroup.hpp"

namespace Lanyx {

class CreatePortGroupDialog : public FormDialog {
public:
    // Gathers the standard switches; without any the form does not open.
    explicit CreatePortGroupDialog(Frame* owner);

    bool IsReady() const { return ready; }
    const std::vector<StandardSwitchInfo>& GetSwitches() const { return switches; }

protected:
    bool Prepare() override { return ready; }
    void Open() override;
    // <D> shows the selected switch, <Space> checks it.
    KeyResult HandleKey(int key) override;
    // Creates the port group on the checked switch; a refusal keeps the form open.
    bool Accept() override;

private:
    std::vector<StandardSwitchInfo> switches;
    bool ready = false;
    InputItem* nameItem = nullptr;
    std::unique_ptr<RadioGroup> group;
};

} // namespace Lanyx
