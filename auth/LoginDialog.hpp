// The login box: a name and a password, or a smart card's user id and its PIN, checked through
// PAM. A true run means that a user is authenticated and loginUser is set.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "text/Dialog.hpp"
#include "text/InputItem.hpp"
#include "text/ItemList.hpp"
#include "text/LabelItem.hpp"

namespace Lanyx {

class LoginDialog : public Dialog {
public:
    explicit LoginDialog(Frame* owner);

    // Fills the texts of password mode or PIN mode; the name field gets its default again and
    // the secret field is emptied.
    void SetMode(bool pin);
    bool Execute() override;

    bool IsPinMode() const { return pinMode; }
    // The name as entered at the last try.
    const std::string& GetUser() const { return user; }
    ItemList* GetItemList() const { return itemList; }
    // Null unless the console runs on the machine's own screen.
    LabelItem* GetKeyboardLine() const { return keyboardLine.get(); }
    InputItem* GetNameItem() const { return nameItem.get(); }
    InputItem* GetSecretItem() const { return secretItem.get(); }

private:
    // What the outcome of one attempt leaves; true when the user is in.
    bool Attempt();
    void Refuse(int pamResult);
    void RunKeyboardLayoutChoice();
    void ShowConfiguredLayout();
    uint32_t NameIndex() const { return keyboardLine ? 1 : 0; }
    uint32_t SecretIndex() const { return NameIndex() + 1; }

    ItemList* itemList = nullptr; // a child window, owned by the window tree
    std::unique_ptr<LabelItem> keyboardLine;
    std::unique_ptr<InputItem> nameItem;
    std::unique_ptr<InputItem> secretItem;
    std::string user;
    bool pinMode = false;
    std::vector<Item*> items;
};

} // namespace Lanyx
