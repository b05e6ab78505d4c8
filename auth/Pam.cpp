#include "auth/Pam.hpp"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <syslog.h>

#include "host/HostRoot.hpp"
#include "host/Log.hpp"

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

// The PAM library, loaded at the first exchange rather than at start: it and the libraries it
// pulls in cost the first screen more page faults than the rest of the console's start.
struct PamLibrary {
    int (*start)(const char*, const char*, const pam_conv*, pam_handle_t**) = nullptr;
    int (*startConfdir)(const char*, const char*, const pam_conv*, const char*,
                        pam_handle_t**) = nullptr;
    int (*authenticate)(pam_handle_t*, int) = nullptr;
    int (*acctMgmt)(pam_handle_t*, int) = nullptr;
    int (*chauthtok)(pam_handle_t*, int) = nullptr;
    int (*setcred)(pam_handle_t*, int) = nullptr;
    int (*end)(pam_handle_t*, int) = nullptr;
};

template <typename Function> bool Bind(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

// Null when the library or one of its functions is missing; said once in the system log.
const PamLibrary* Pam() {
    static const PamLibrary* const loaded = []() -> const PamLibrary* {
        static PamLibrary pam;
        // Kept for the life of the process: modules it loaded may still be referenced.
        void* library = dlopen("libpam.so.0", RTLD_NOW | RTLD_LOCAL);
        if (library && Bind(library, "pam_start", pam.start) &&
            Bind(library, "pam_start_confdir", pam.startConfdir) &&
            Bind(library, "pam_authenticate", pam.authenticate) &&
            Bind(library, "pam_acct_mgmt", pam.acctMgmt) &&
            Bind(library, "pam_chauthtok", pam.chauthtok) &&
            Bind(library, "pam_setcred", pam.setcred) && Bind(library, "pam_end", pam.end))
            return &pam;
        const char* why = dlerror();
        Log(LOG_ERR, "Cannot load the PAM library: %s", why ? why : "unknown error");
        return nullptr;
    }();
    return loaded;
}

int StartExchange(const PamLibrary& pam, const std::string& user, const pam_conv& conversation,
                  pam_handle_t** handle) {
    // Under a host root the service file lies there too, not in the machine's /etc/pam.d.
    return HostRootPrefix().empty() ? pam.start(pamService, user.c_str(), &conversation, handle)
                                    : pam.startConfdir(pamService, user.c_str(), &conversation,
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
    const PamLibrary* pam = Pam();
    if (!pam)
        return false;
    pam_handle_t* handle = nullptr;
    bool changed = false;
    int result = StartExchange(*pam, user, conversation, &handle);
    if (result == PAM_SUCCESS) {
        // An expired password still authenticates; the change is what it asks for.
        result = pam->authenticate(handle, PAM_SILENT);
        if (result == PAM_SUCCESS || result == PAM_NEW_AUTHTOK_REQD)
            result = pam->acctMgmt(handle, PAM_SILENT);
        if (result == PAM_SUCCESS || result == PAM_NEW_AUTHTOK_REQD)
            result = pam->chauthtok(handle, PAM_SILENT);
        if (result == PAM_SUCCESS) {
            result = pam->setcred(handle, PAM_REFRESH_CRED);
            changed = result == PAM_SUCCESS;
        }
    }
    if (handle)
        pam->end(handle, result);
    return changed;
}

int PamCheckLogin(const std::string& user, const std::string& secret) {
    SecretCopy copy(secret);
    const pam_conv conversation{PamLoginConversation, copy.Get()};
    const PamLibrary* pam = Pam();
    if (!pam)
        return PAM_SYSTEM_ERR;
    pam_handle_t* handle = nullptr;
    int result = StartExchange(*pam, user, conversation, &handle);
    if (result == PAM_SUCCESS) {
        result = pam->authenticate(handle, PAM_SILENT);
        if (result == PAM_SUCCESS)
            result = pam->acctMgmt(handle, PAM_SILENT);
    }
    if (handle)
        pam->end(handle, result);
    return result;
}

} // namespace Lanyx
