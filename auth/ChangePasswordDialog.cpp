#include "auth/ChangePasswordDialog.hpp"

#include "auth/LoginAccess.hpp"
#include "auth/Pam.hpp"
#include "auth/SamePasswordConfirmDialog.hpp"
#include "core/Keys.hpp"
#include "host/Accounts.hpp"
#include "host/CommandRunner.hpp"
#include "host/GuardedStep.hpp"
#include "host/Log.hpp"
#include "host/Records.hpp"
#include "keelson/Authentication.hpp"
#include "text/CatalogueIds.hpp"
#include "text/MessageDialog.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 14;
constexpr int kTitleHeight = 6;
constexpr int kFieldWidth = 30;

enum Field : uint32_t { OldField = 0, NewField = 1, ConfirmField = 2 };

} // namespace

ChangePasswordDialog::ChangePasswordDialog(Frame* owner)
    : FormDialog(owner, kWidth, kHeight, kTitleHeight) {
    CreateList();
    oldItem = AddField(CatalogueText(Ids::OldPassword), "", kFieldWidth, Filters::Printable);
    newItem = AddField(CatalogueText(Ids::NewPassword), "", kFieldWidth, Filters::Printable);
    confirmItem =
        AddField(CatalogueText(Ids::ConfirmPassword), "", kFieldWidth, Filters::Printable);
    for (InputItem* field : {oldItem, newItem, confirmItem})
        field->masked = true;
    ShowItems();
}

void ChangePasswordDialog::Open() {
    SetTitle(CatalogueText(Ids::PasswordTitle));
    SetMessage(CatalogueText(Ids::PasswordMessage));
    SetFooter(Footers::kOkCancel);
}

FormDialog::KeyResult ChangePasswordDialog::HandleKey(int key) {
    const uint32_t field = list->GetSelectedOrdinal();
    const bool forward = key == Keys::Enter || key == Keys::Tab || key == Keys::Down;
    if (field == OldField && forward) {
        CheckOldPassword();
    } else if (field == NewField && forward) {
        SelectOrdinal(ConfirmField);
    } else if (field == ConfirmField && key == Keys::Enter) {
        return Accept() ? KeyResult::Accept : KeyResult::Continue;
    } else if (field == ConfirmField && (key == Keys::Tab || key == Keys::Up)) {
        // Back one field, never to the old password.
        SelectOrdinal(NewField);
    } else if (key == Keys::Escape) {
        return KeyResult::Cancel;
    }
    return KeyResult::Continue;
}

void ChangePasswordDialog::CheckOldPassword() {
    const int result = PamCheckLogin(loginUser, oldItem->GetValue());
    // An expired password is still the right one: changing it is the point.
    if (result == PAM_SUCCESS || result == PAM_NEW_AUTHTOK_REQD) {
        SelectOrdinal(NewField);
        return;
    }
    Reject(OldField, Ids::PasswordErrorTitle, Ids::OldPasswordIncorrect);
    oldItem->SetValue("");
    Redraw();
}

void ChangePasswordDialog::ResetNewPassword(uint32_t messageId) {
    Reject(NewField, Ids::PasswordErrorTitle, messageId);
    newItem->SetValue("");
    confirmItem->SetValue("");
    Redraw();
}

bool ChangePasswordDialog::Accept() {
    const std::string& newText = newItem->GetValue();
    if (newText != confirmItem->GetValue()) {
        ResetNewPassword(Ids::PasswordsDiffer);
        return false;
    }
    if (newText.empty()) {
        ResetNewPassword(Ids::EmptyPassword);
        return false;
    }
    if (newText == oldItem->GetValue() && !SamePasswordConfirmDialog(this).RunModal()) {
        Redraw();
        return false;
    }
    if (!ChangePassword()) {
        ResetNewPassword(Ids::PasswordChangeFailed);
        return false;
    }
    StoreAndRecord();
    // The new text is not empty, so the menu's warning about an empty password goes.
    passwordIsEmpty = false;
    return true;
}

bool ChangePasswordDialog::ChangePassword() {
    return PamChangePassword(loginUser, oldItem->GetValue(), newItem->GetValue());
}

void ChangePasswordDialog::StoreAndRecord() {
    // The password has changed on the running host whatever follows; a failed store only
    // risks it not surviving a reboot, which the operator is told.
    GuardedStep(
        [] { Keelson::Authentication::StoreUserAccountsToCs(); },
        [this](const Keelson::Lib::KeelsonException& e) {
            Log(LOG_WARNING,
                "Error while storing user account information to persistent storage. The new "
                "information may not be available after reboot. Error: %s",
                e.what());
            MessageDialog(this, Ids::PasswordErrorTitle, Ids::AccountStoreFailed).RunModal();
        });
    const char* const stateSave[] = {"stateSave.sh", "0", nullptr};
    RunCommand("/sbin/stateSave.sh", stateSave);
    HelmqRefresh();
    Log(LOG_INFO, "Login password for user %s has changed", loginUser.c_str());
    PostEvent(Events::passwordChanged, loginUser);
}

} // namespace Lanyx
