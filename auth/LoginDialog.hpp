// The login box: a name and a password, or a smart card's user id and its PIN, checked through
// PAM. A true run means that a user is authenticated and loginUser is set.
#pragma once
#include <cstdint>
#include <string>

#include "text/FormDialog.hpp"
#include "text/LabelItem.hpp"

namespace Lanyx {

class LoginDialog : public FormDialog {
public:
    explicit LoginDialog(Frame* owner);

    // Fills the texts of password mode or PIN mode; the name field gets its default again and
    // the secret field is emptied.
    void SetMode(bool pin);

    bool IsPinMode() const { return pinMode; }
    // The name as entered at the last try.
    const std::string& GetUser() const { return user; }
    // Null unless the console runs on the machine's own screen.
    LabelItem* GetKeyboardLine() const { return keyboardLine; }
    InputItem* GetNameItem() const { return nameItem; }
    InputItem* GetSecretItem() const { return secretItem; }

protected:
    void Open() override;
    KeyResult HandleKey(int key) override;
    // One attempt with what is typed; true when the user is in.
    bool Accept() override;

private:
    void Refuse(int pamResult);
    void RunKeyboardLayoutChoice();
    void ShowConfiguredLayout();
    uint32_t NameIndex() const { return keyboardLine ? 1 : 0; }
    uint32_t SecretIndex() const { return NameIndex() + 1; }

    LabelItem* keyboardLine = nullptr;
    InputItem* nameItem = nullptr;
    InputItem* secretItem = nullptr;
    std::string user;
    bool pinMode = false;
};

} // namespace Lanyx
