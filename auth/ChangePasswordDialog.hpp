// The change of the logged-in operator's password (or of an expired one at login) through PAM,
// followed by the host's own bookkeeping: the configuration store, the state save, the agent.
#pragma once
#include <cstdint>

#include "text/FormDialog.hpp"

namespace Lanyx {

class ChangePasswordDialog : public FormDialog {
public:
    explicit ChangePasswordDialog(Frame* owner);

    InputItem* GetOldItem() const { return oldItem; }
    InputItem* GetNewItem() const { return newItem; }
    InputItem* GetConfirmItem() const { return confirmItem; }

protected:
    void Open() override;
    // The key table of the three fields: each field has its own Enter, Tab, Up and Down.
    KeyResult HandleKey(int key) override;
    // Enter on the confirmation: the checks, the change and what follows it.
    bool Accept() override;

    // PamChangePassword for loginUser with the old and the new text; a seam for tests.
    virtual bool ChangePassword();

private:
    void CheckOldPassword();
    // The rule broken is named; the new and confirmed texts go, the old one stays.
    void ResetNewPassword(uint32_t messageId);
    void StoreAndRecord();

    InputItem* oldItem = nullptr;
    InputItem* newItem = nullptr;
    InputItem* confirmItem = nullptr;
};

} // namespace Lanyx
