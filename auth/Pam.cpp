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
    ~SecretCopy()
    {
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
                         void* appdata)
{
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

int PamCheckLogin(const std::string& user, const std::string& secret)
{
    SecretCopy copy(secret);
    const pam_conv conversation{PamLoginConversation, copy.Get()};
    pam_handle_t* handle = nullptr;
    // Under a host root the service file lies there too, not in the machine's /etc/pam.d.
    int result = HostRootPrefix().empty()
                     ? pam_start(pamService, user.c_str(), &conversation, &handle)
                     : pam_start_confdir(pamService, user.c_str(), &conversation,
                                         HostPath("/etc/pam.d").c_str(), &handle);
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
