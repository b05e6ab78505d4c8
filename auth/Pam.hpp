// The PAM exchanges of the console: the login's authentication and account check (no
// credentials, no PAM session), and the change of a password.
#pragma once
#include <cstdint>
#include <string>

#include <security/pam_appl.h>

namespace Lanyx {

// The service every exchange of the console names.
inline constexpr char pamService[] = "lanyx";

// Runs authentication and, when that passes, the account check for `user` with `secret` as
// the answer to the password prompt. 0 on success, otherwise the PAM code of the failing step
// (PAM_PERM_DENIED, PAM_NEW_AUTHTOK_REQD, PAM_AUTH_ERR, ...).
int PamCheckLogin(const std::string& user, const std::string& secret);

// The conversation of PamCheckLogin; `appdata` is the secret as a C string. Answers exactly one
// message: a hidden prompt gets a copy of the secret, any other style an empty response.
int PamLoginConversation(int count, const pam_message** messages, pam_response** responses,
                         void* appdata);

// Changes the password of `user` from `oldPassword` to `newPassword`: authentication (an expired
// account passes), account check, the change itself and a refresh of the credentials. True only
// when all of them passed.
bool PamChangePassword(const std::string& user, const std::string& oldPassword,
                       const std::string& newPassword);

// What the conversation of PamChangePassword answers with.
struct PasswordPair {
    const char* oldPassword;
    const char* newPassword;
};

// Prompts answered in the current password change; set to 0 at the start of each.
extern uint32_t passwordPromptsAnswered;

// The conversation of PamChangePassword; `appdata` is a PasswordPair. Every message gets a
// response: the first hidden prompt the old password, the second and third the new one, any
// other message and any later prompt an empty response. Never refuses.
int PamChangeConversation(int count, const pam_message** messages, pam_response** responses,
                          void* appdata);

} // namespace Lanyx
