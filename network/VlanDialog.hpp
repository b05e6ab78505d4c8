// The VLAN id of the management port group: a number from 1 to 4095, or nothing for no VLAN.
#pragma once
#include <cstdint>

#include "text/FormDialog.hpp"

namespace Lanyx {

class VlanDialog : public FormDialog {
public:
    VlanDialog(Frame* owner, uint16_t vlanId);

    // 0 for an empty field, else the field's number.
    uint16_t GetValue() const;

protected:
    void Open() override;
    bool Accept() override;

private:
    InputItem* vlanItem = nullptr;
};

} // namespace Lanyx
