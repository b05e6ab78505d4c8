#include "auth/LoginDialog.hpp"

#include <cctype>

#include "auth/LoginAccess.hpp"
#include "auth/Pam.hpp"
#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/Keys.hpp"
#include "host/Log.hpp"
#include "host/Records.hpp"
#include "keelson/System.hpp"
#include "text/MessageDialog.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 13;
constexpr int kTitleHeight = 6;
constexpr int kFieldWidth = 30;

enum CatalogueId : uint32_t {
    TitleId = 142,
    PasswordLeadId = 143,
    PinLeadId = 144,
    LoginNameId = 147,
    LoginIdId = 148,
    PasswordLabelId = 149,
    PinLabelId = 150,
    FailedTitleId = 151,
    InvalidLoginId = 152,
    NoPermissionId = 153,
    ExpiredId = 154,
};

constexpr char passwordFooter[] =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
// The first colour tag carries a stray ">": the markup keeps the text's own black for a colour
// name it does not know, so the key name still shows in black. Kept as the footer is worded.
constexpr char pinFooter[] =
    "{align:left}{color:black>}<F3>{/color} {color:dark-grey}Switch PIN/Password Login{/color}"
    "{/align}{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";

// Keys that edit the selected field.
bool IsEditingKey(int key)
{
    switch (key) {
    case Keys::Backspace:
    case Keys::CursesBackspace:
    case Keys::DeleteChar:
    case Keys::Left:
    case Keys::Right:
    case Keys::Home:
    case Keys::End:
        return true;
    default:
        return key >= 0 && key <= 0xff && std::isprint(key);
    }
}

std::string ConfiguredLayoutText()
{
    const TesselCtl::System::SystemInfoImpl systemInfo;
    return "Configured Keyboard (" + systemInfo.GetKeyboardLayout() + ")";
}

} // namespace

LoginDialog::LoginDialog(Frame* owner) : Dialog(owner, kWidth, kHeight, kTitleHeight)
{
    Window* content = contentWindow;
    itemList = new ItemList(content, 0, 0, content->GetWidth(), consoleMode ? 3 : 2);
    if (consoleMode) {
        keyboardLine = std::make_unique<LabelItem>("", true);
        ShowConfiguredLayout();
        items.push_back(keyboardLine.get());
    }
    nameItem = std::make_unique<InputItem>(CatalogueText(LoginNameId), "root", kFieldWidth);
    secretItem = std::make_unique<InputItem>(CatalogueText(PasswordLabelId), "", kFieldWidth);
    secretItem->masked = true;
    items.push_back(nameItem.get());
    items.push_back(secretItem.get());
    itemList->SetItems(items);
    CheckSmartCard();
    pinMode = !cardUser.empty();
    SetMode(pinMode);
}

void LoginDialog::SetMode(bool pin)
{
    SetMessage(HostGreeting(CatalogueText(pin ? PinLeadId : PasswordLeadId)));
    SetFooter(pin ? pinFooter : passwordFooter);
    nameItem->SetLabel(CatalogueText(pin ? LoginIdId : LoginNameId));
    nameItem->SetValue(pin ? cardUser : "root");
    secretItem->SetLabel(CatalogueText(pin ? PinLabelId : PasswordLabelId));
    secretItem->SetValue("");
}

bool LoginDialog::Execute()
{
    SetTitle(CatalogueText(TitleId));
    SetMode(pinMode);
    ShowCursor(true);
    itemList->SelectOrdinal(NameIndex());
    itemList->Draw();
    for (;;) {
        const int key = ReadKey(true);
        const uint32_t line = itemList->GetSelectedOrdinal();
        const bool onLastLine = line == SecretIndex();
        if (key == Keys::Down) {
            itemList->SelectNext();
        } else if (key == Keys::Up) {
            itemList->SelectPrevious();
        } else if (key == Keys::F3) {
            pinMode = !pinMode;
            SetMode(pinMode);
            itemList->Draw();
        } else if (IsEditingKey(key)) {
            if (line == NameIndex())
                nameItem->HandleKey(key);
            else if (line == SecretIndex())
                secretItem->HandleKey(key);
            itemList->Draw();
        } else if (key == Keys::Escape) {
            ShowCursor(false);
            SetActive(false);
            return false;
        } else if (key == Keys::Enter && keyboardLine && line == 0) {
            RunKeyboardLayoutChoice();
            SetActive(true);
            ShowConfiguredLayout();
            itemList->Draw();
        } else if ((key == Keys::Tab || key == Keys::Enter) && !onLastLine) {
            itemList->SelectNext();
        } else if (key == Keys::Tab) {
            itemList->SelectOrdinal(0);
            itemList->Draw();
        } else if (key == Keys::Enter && Attempt()) {
            return true;
        }
    }
}

bool LoginDialog::Attempt()
{
    user = nameItem->GetValue();
    const std::string& secret = secretItem->GetValue();
    const int result = PamCheckLogin(user, secret);
    if (result == PAM_SUCCESS) {
        SetLoginUser(user);
        passwordIsEmpty = secret.empty();
        Log(logAuthSuccess, "Authentication of user %s succeeded", user.c_str());
        Log(LOG_INFO, "User %s logged in", user.c_str());
        Audit(AuditRecord::login, user, true);
        ShowCursor(false);
        return true;
    }
    Refuse(result);
    // Every refusal leaves the operator on an empty secret, ready for the next try.
    secretItem->SetValue("");
    secretItem->masked = true;
    itemList->SelectOrdinal(SecretIndex());
    itemList->Draw();
    return false;
}

void LoginDialog::Refuse(int pamResult)
{
    const char* reason = AuditRecord::invalidLogin;
    const EventKind* event = &Events::loginFailed;
    uint32_t message = InvalidLoginId;
    if (pamResult == PAM_PERM_DENIED) {
        Log(logAuthError, "Access denied for user %s", user.c_str());
        reason = AuditRecord::noPermission;
        event = &Events::loginDenied;
        message = NoPermissionId;
    } else if (pamResult == PAM_NEW_AUTHTOK_REQD) {
        // The password change that follows runs for this user.
        SetLoginUser(user);
        Log(logAuthError, "Password has expired for user %s", user.c_str());
        reason = AuditRecord::passwordExpired;
        event = &Events::loginDenied;
        message = ExpiredId;
    } else {
        Log(logAuthError, "Authentication of user %s failed", user.c_str());
    }
    Audit(AuditRecord::login, user, false, {{AuditRecord::reasonKey, reason}});
    PostEvent(*event, user);
    MessageDialog(this, FailedTitleId, message).RunModal();
    if (pamResult == PAM_NEW_AUTHTOK_REQD) {
        // The password change dialog runs here once it exists. Whatever its outcome, the
        // operator stays in this box and logs in again with the new password.
    }
}

void LoginDialog::RunKeyboardLayoutChoice()
{
    // The keyboard layout dialog is not built yet; the line keeps its place and its key.
}

void LoginDialog::ShowConfiguredLayout()
{
    if (keyboardLine)
        keyboardLine->SetText(ConfiguredLayoutText());
}

} // namespace Lanyx
