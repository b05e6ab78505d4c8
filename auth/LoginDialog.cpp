#include "auth/LoginDialog.hpp"

#include "auth/ChangePasswordDialog.hpp"
#include "auth/KeyboardDialog.hpp"
#include "auth/LoginAccess.hpp"
#include "auth/Pam.hpp"
#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/Keys.hpp"
#include "host/Log.hpp"
#include "host/Records.hpp"
#include "keelson/System.hpp"
#include "text/CatalogueIds.hpp"
#include "text/MessageDialog.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 13;
constexpr int kTitleHeight = 6;
constexpr int kFieldWidth = 30;

// The first colour tag carries a stray ">": the markup keeps the text's own black for a colour
// name it does not know, so the key name still shows in black. Kept as the footer is worded.
constexpr char pinFooter[] =
    "{align:left}{color:black>}<F3>{/color} {color:dark-grey}Switch PIN/Password Login{/color}"
    "{/align}{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";

std::string ConfiguredLayoutText() {
    const TesselCtl::System::SystemInfoImpl systemInfo;
    return "Configured Keyboard (" + systemInfo.GetKeyboardLayout() + ")";
}

} // namespace

LoginDialog::LoginDialog(Frame* owner) : FormDialog(owner, kWidth, kHeight, kTitleHeight) {
    CreateList(0, consoleMode ? 3 : 2);
    if (consoleMode) {
        keyboardLine = Add(std::make_unique<LabelItem>("", true));
        ShowConfiguredLayout();
    }
    nameItem = AddField(CatalogueText(Ids::LoginName), "root", kFieldWidth, Filters::Printable);
    secretItem = AddField(CatalogueText(Ids::PasswordLabel), "", kFieldWidth, Filters::Printable);
    secretItem->masked = true;
    ShowItems();
    CheckSmartCard();
    pinMode = !cardUser.empty();
    SetMode(pinMode);
}

void LoginDialog::SetMode(bool pin) {
    SetMessage(HostGreeting(CatalogueText(pin ? Ids::PinLead : Ids::PasswordLead)));
    SetFooter(pin ? pinFooter : Footers::kOkCancel);
    nameItem->SetLabel(CatalogueText(pin ? Ids::LoginId : Ids::LoginName));
    nameItem->SetValue(pin ? cardUser : "root");
    secretItem->SetLabel(CatalogueText(pin ? Ids::PinLabel : Ids::PasswordLabel));
    secretItem->SetValue("");
}

void LoginDialog::Open() {
    SetTitle(CatalogueText(Ids::LoginTitle));
    SetMode(pinMode);
    list->SelectOrdinal(NameIndex());
}

FormDialog::KeyResult LoginDialog::HandleKey(int key) {
    const uint32_t line = list->GetSelectedOrdinal();
    const bool onLastLine = line == SecretIndex();
    if (key == Keys::F3) {
        pinMode = !pinMode;
        SetMode(pinMode);
        Redraw();
    } else if (key == Keys::Escape) {
        SetActive(false);
        return KeyResult::Cancel;
    } else if (key == Keys::Enter && keyboardLine && line == 0) {
        RunKeyboardLayoutChoice();
        SetActive(true);
        ShowConfiguredLayout();
        Redraw();
    } else if ((key == Keys::Tab || key == Keys::Enter) && !onLastLine) {
        SelectNext();
    } else if (key == Keys::Tab) {
        SelectOrdinal(0);
    } else {
        return FormDialog::HandleKey(key);
    }
    return KeyResult::Continue;
}

bool LoginDialog::Accept() {
    user = nameItem->GetValue();
    const std::string& secret = secretItem->GetValue();
    const int result = PamCheckLogin(user, secret);
    if (result == PAM_SUCCESS) {
        SetLoginUser(user);
        passwordIsEmpty = secret.empty();
        Log(logAuthSuccess, "Authentication of user %s succeeded", user.c_str());
        Log(LOG_INFO, "User %s logged in", user.c_str());
        Audit(AuditRecord::login, user, true);
        return true;
    }
    Refuse(result);
    // Every refusal leaves the operator on an empty secret, ready for the next try.
    secretItem->SetValue("");
    secretItem->masked = true;
    SelectOrdinal(SecretIndex());
    return false;
}

void LoginDialog::Refuse(int pamResult) {
    const char* reason = AuditRecord::invalidLogin;
    const EventKind* event = &Events::loginFailed;
    uint32_t message = Ids::InvalidLogin;
    if (pamResult == PAM_PERM_DENIED) {
        Log(logAuthError, "Access denied for user %s", user.c_str());
        reason = AuditRecord::noPermission;
        event = &Events::loginDenied;
        message = Ids::NoPermission;
    } else if (pamResult == PAM_NEW_AUTHTOK_REQD) {
        // The password change that follows runs for this user.
        SetLoginUser(user);
        Log(logAuthError, "Password has expired for user %s", user.c_str());
        reason = AuditRecord::passwordExpired;
        event = &Events::loginDenied;
        message = Ids::PasswordExpired;
    } else {
        Log(logAuthError, "Authentication of user %s failed", user.c_str());
    }
    Audit(AuditRecord::login, user, false, {{AuditRecord::reasonKey, reason}});
    PostEvent(*event, user);
    MessageDialog(this, Ids::LoginFailedTitle, message).RunModal();
    if (pamResult == PAM_NEW_AUTHTOK_REQD) {
        // Whatever its outcome, the operator stays in this box and logs in again.
        ChangePasswordDialog(this).RunModal();
    }
}

void LoginDialog::RunKeyboardLayoutChoice() {
    KeyboardDialog(this).RunModal();
}

void LoginDialog::ShowConfiguredLayout() {
    if (keyboardLine)
        keyboardLine->SetText(ConfiguredLayoutText());
}

} // namespace Lanyx
