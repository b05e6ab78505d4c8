// A new standard switch with one physical NIC as its uplink, made by the host's tool. A NIC that
// another switch holds is taken from it only when the operator agrees.
#pragma once
#include <memory>

#include "network/AdapterRows.hpp"
#include "text/FormDialog.hpp"
#include "text/RadioGroup.hpp"

namespace Lanyx {

class CreateXbsDialog : public FormDialog {
public:
    // Gathers the NICs once; without any the form does not open.
    explicit CreateXbsDialog(Frame* owner);

    bool IsReady() const { return ready; }

protected:
    bool Prepare() override { return ready; }
    void Open() override;
    // <D> shows the selected NIC, <Space> checks it.
    KeyResult HandleKey(int key) override;
    // The name field stops taking characters at the longest name the form hands on.
    bool FieldTakes(const InputItem& field, int key) const override;
    // Creates the switch on the checked NIC; a refusal or a failure keeps the form open.
    bool Accept() override;

private:
    // Shows the outcome of a step that keeps the form open.
    void Notify(int width, uint32_t titleId, const std::string& message);

    AdapterRows rows;
    bool ready = false;
    InputItem* nameItem = nullptr;
    std::unique_ptr<RadioGroup> group;
};

} // namespace Lanyx
