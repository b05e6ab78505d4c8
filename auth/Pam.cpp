#include "auth/Pam.hpp"

#include <cstdlib>
#include <cstring>

#include "host/HostRoot.hpp"

namespace Lanyx {

namespace {

// A heap copy of the secret that is wiped before its memory goes back.
class SecretCopy {
public:
    explicit SecretCopy(const std::string& secret) : text(strdup(secret.c_str())) {}
    SecretCopy(const SecretCopy&) = delete;
    SecretCopy& operator=(const SecretCopy&) = delete;
    ~SecretCopy() {
        if (!text)
            return;
        volatile char* p = text;
        for (size_t i = 0, n = std::strlen(text); i < n; ++i)
            p[i] = 0;
        std::free(text);
    }
    char* Get() const { return text; }

private:
    char* text;
};

} // namespace

int PamLoginConversation(int count, const pam_message** messages, pam_response** responses,
                         void* appdata) {
    const char* secret = static_cast<const char*>(appdata);
    if (count != 1 || !messages || !messages[0] || !responses || !secret)
        return PAM_CONV_ERR;
    auto* response = static_cast<pam_response*>(std::calloc(1, sizeof(pam_response)));
    if (!response)
        return PAM_BUF_ERR;
    if (messages[0]->msg_style == PAM_PROMPT_ECHO_OFF) {
        response->resp = strdup(secret);
        if (!response->resp) {
            std::free(response);
            return PAM_BUF_ERR;
        }
    }
    *responses = response;
    return PAM_SUCCESS;
}

namespace {

int StartExchange(const std::string& user, const pam_conv& conversation, pam_handle_t** handle) {
    // Under a host root the service file lies there too, not in the machine's /etc/pam.d.
    return HostRootPrefix().empty() ? pam_start(pamService, user.c_str(), &conversation, handle)
                                    : pam_start_confdir(pamService, user.c_str(), &conversation,
                                                        HostPath("/etc/pam.d").c_str(), handle);
}

} // namespace

uint32_t passwordPromptsAnswered = 0;

int PamChangeConversation(int count, const pam_message** messages, pam_response** responses,
                          void* appdata) {
    const auto* pair = static_cast<const PasswordPair*>(appdata);
    if (count <= 0 || !messages || !responses || !pair)
        return PAM_SUCCESS;
    auto* answers =
        static_cast<pam_response*>(std::calloc(static_cast<size_t>(count), sizeof(pam_response)));
    if (!answers)
        return PAM_SUCCESS;
    for (int i = 0; i < count; ++i) {
        if (!messages[i] || messages[i]->msg_style != PAM_PROMPT_ECHO_OFF ||
            passwordPromptsAnswered > 2)
            continue;
        // The stack asks once at authentication (the old password) and twice at the change.
        const char* secret = passwordPromptsAnswered == 0 ? pair->oldPassword : pair->newPassword;
        answers[i].resp = secret ? strdup(secret) : nullptr;
        ++passwordPromptsAnswered;
    }
    *responses = answers;
    return PAM_SUCCESS;
}

bool PamChangePassword(const std::string& user, const std::string& oldPassword,
                       const std::string& newPassword) {
    SecretCopy oldCopy(oldPassword);
    SecretCopy newCopy(newPassword);
    passwordPromptsAnswered = 0;
    PasswordPair pair{oldCopy.Get(), newCopy.Get()};
    const pam_conv conversation{PamChangeConversation, &pair};
    pam_handle_t* handle = nullptr;
    bool changed = false;
    int result = StartExchange(user, conversation, &handle);
    if (result == PAM_SUCCESS) {
        // An expired password still authenticates; the change is what it asks for.
        result = pam_authenticate(handle, PAM_SILENT);
        if (result == PAM_SUCCESS || result == PAM_NEW_AUTHTOK_REQD)
            result = pam_acct_mgmt(handle, PAM_SILENT);
        if (result == PAM_SUCCESS || result == PAM_NEW_AUTHTOK_REQD)
            result = pam_chauthtok(handle, PAM_SILENT);
        if (result == PAM_SUCCESS) {
            result = pam_setcred(handle, PAM_REFRESH_CRED);
            changed = result == PAM_SUCCESS;
        }
    }
    if (handle)
        pam_end(handle, result);
    return changed;
}

int PamCheckLogin(const std::string& user, const std::string& secret) {
    SecretCopy copy(secret);
    const pam_conv conversation{PamLoginConversation, copy.Get()};
    pam_handle_t* handle = nullptr;
    int result = StartExchange(user, conversation, &handle);
    if (result == PAM_SUCCESS) {
        result = pam_authenticate(handle, PAM_SILENT);
        if (result == PAM_SUCCESS)
            result = pam_acct_mgmt(handle, PAM_SILENT);
    }
    if (handle)
        pam_end(handle, result);
    return result;
}

} // namespace Lanyx
