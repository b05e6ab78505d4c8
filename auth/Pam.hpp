// The PAM exchange of a login: authentication and the account check, nothing more (no
// credentials, no PAM session).
#pragma once
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

} // namespace Lanyx
