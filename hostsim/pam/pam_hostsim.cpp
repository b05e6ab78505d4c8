// PAM module of the simulated host: the accounts live in the host state ("accounts").
// Module argument: root=<absolute host root>.
#define PAM_SM_AUTH
#define PAM_SM_ACCOUNT
#define PAM_SM_PASSWORD
#define PAM_SM_SESSION

#include <security/pam_ext.h>
#include <security/pam_modules.h>

#include <crypt.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "store/StateStore.hpp"

#define HOSTSIM_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

constexpr size_t kMinLength = 8;
constexpr int kMinClasses = 3;

// A secret that is wiped before its memory goes back.
class Secret {
public:
    Secret() = default;
    explicit Secret(const char* text) : text_(text) {}
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
    Secret(Secret&& other) noexcept : text_(std::move(other.text_)) { other.Wipe(); }
    ~Secret() { Wipe(); }
    const std::string& Text() const { return text_; }

private:
    void Wipe() {
        volatile char* p = text_.data();
        for (size_t i = 0; i < text_.size(); ++i)
            p[i] = 0;
        text_.clear();
    }
    std::string text_;
};

// Responses from the application's conversation, freed (and wiped) on every path.
struct Responses {
    pam_response* list = nullptr;
    int count = 0;
    ~Responses() {
        if (list == nullptr)
            return;
        for (int i = 0; i < count; ++i) {
            if (list[i].resp != nullptr) {
                std::memset(list[i].resp, 0, std::strlen(list[i].resp));
                std::free(list[i].resp);
            }
        }
        std::free(list);
    }
};

// One message through the conversation. For prompts the answer is returned; nullopt when the
// conversation failed or gave no answer.
std::optional<Secret> Converse(pam_handle_t* pamh, int style, const char* text) {
    const void* item = nullptr;
    if (pam_get_item(pamh, PAM_CONV, &item) != PAM_SUCCESS || item == nullptr)
        return std::nullopt;
    const auto* conv = static_cast<const pam_conv*>(item);
    if (conv->conv == nullptr)
        return std::nullopt;
    pam_message message{style, text};
    const pam_message* messages[] = {&message};
    Responses responses;
    responses.count = 1;
    if (conv->conv(1, messages, &responses.list, conv->appdata_ptr) != PAM_SUCCESS)
        return std::nullopt;
    if (responses.list == nullptr || responses.list[0].resp == nullptr)
        return std::nullopt;
    return Secret(responses.list[0].resp);
}

void ErrorMessage(pam_handle_t* pamh, int flags, const char* text) {
    if ((flags & PAM_SILENT) == 0)
        Converse(pamh, PAM_ERROR_MSG, text);
}

// root=<absolute path>; anything else is a mistake in the service file.
std::optional<std::string> RootArgument(int argc, const char** argv) {
    std::optional<std::string> root;
    for (int i = 0; i < argc; ++i) {
        const char* arg = argv[i];
        if (std::strncmp(arg, "root=", 5) != 0 || root)
            return std::nullopt;
        root = std::string(arg + 5);
        if (root->empty() || root->front() != '/')
            return std::nullopt;
    }
    return root;
}

const char* User(pam_handle_t* pamh) {
    const char* user = nullptr;
    if (pam_get_user(pamh, &user, nullptr) != PAM_SUCCESS || user == nullptr || *user == '\0')
        return nullptr;
    return user;
}

// The account of that name: nullopt when there is none. StateError passes through.
std::optional<nlohmann::json> FindAccount(const std::string& root, const std::string& name) {
    const nlohmann::json state = HostSim::StateStore(root).Read();
    auto accounts = state.find("accounts");
    if (accounts == state.end() || !accounts->is_array())
        return std::nullopt;
    for (const auto& account : *accounts) {
        if (account.is_object() && account.value("name", std::string()) == name)
            return account;
    }
    return std::nullopt;
}

bool SameBytes(const char* a, const char* b) {
    const size_t length = std::strlen(a);
    if (length != std::strlen(b))
        return false;
    unsigned char difference = 0;
    for (size_t i = 0; i < length; ++i)
        difference |= static_cast<unsigned char>(a[i] ^ b[i]);
    return difference == 0;
}

bool PasswordMatches(const std::string& password, const std::string& hash) {
    if (hash.empty())
        return password.empty();
    auto data = std::make_unique<crypt_data>();
    const char* result = crypt_r(password.c_str(), hash.c_str(), data.get());
    // Failures come back as null or as a text beginning with '*', which never equals a hash.
    const bool match = result != nullptr && result[0] != '*' && SameBytes(result, hash.c_str());
    std::memset(data.get(), 0, sizeof(crypt_data));
    return match;
}

std::optional<std::string> NewHash(const std::string& password) {
    char setting[CRYPT_GENSALT_OUTPUT_SIZE];
    if (crypt_gensalt_rn("$6$", 0, nullptr, 0, setting, sizeof setting) == nullptr)
        return std::nullopt;
    auto data = std::make_unique<crypt_data>();
    const char* result = crypt_r(password.c_str(), setting, data.get());
    std::optional<std::string> hash;
    if (result != nullptr && result[0] == '$')
        hash = std::string(result);
    std::memset(data.get(), 0, sizeof(crypt_data));
    return hash;
}

// The reason a password is too weak, or null when it is strong enough.
const char* Weakness(const std::string& password) {
    if (password.size() < kMinLength)
        return "The password is too short: it needs at least 8 characters.";
    bool lower = false, upper = false, digit = false, other = false;
    for (unsigned char c : password) {
        if (c >= 'a' && c <= 'z')
            lower = true;
        else if (c >= 'A' && c <= 'Z')
            upper = true;
        else if (c >= '0' && c <= '9')
            digit = true;
        else
            other = true;
    }
    if (int(lower) + int(upper) + int(digit) + int(other) < kMinClasses)
        return "The password is too simple: it needs characters of at least 3 of these classes: "
               "lower-case letters, upper-case letters, digits, other characters.";
    return nullptr;
}

int Authenticate(pam_handle_t* pamh, int flags, int argc, const char** argv) {
    auto root = RootArgument(argc, argv);
    if (!root)
        return PAM_SERVICE_ERR;
    const char* user = User(pamh);
    if (user == nullptr)
        return PAM_AUTH_ERR;
    auto password = Converse(pamh, PAM_PROMPT_ECHO_OFF, "Password: ");
    if (!password)
        return PAM_CONV_ERR;
    std::optional<nlohmann::json> account;
    try {
        account = FindAccount(*root, user);
    } catch (const std::exception&) {
        return PAM_AUTHINFO_UNAVAIL;
    }
    // An unknown user is told apart from a wrong password by nobody.
    const std::string hash = account ? account->value("hash", std::string()) : std::string("*");
    if (!account || !PasswordMatches(password->Text(), hash))
        return PAM_AUTH_ERR;
    if (hash.empty() && (flags & PAM_DISALLOW_NULL_AUTHTOK))
        return PAM_AUTH_ERR;
    return PAM_SUCCESS;
}

int AccountManagement(pam_handle_t* pamh, int argc, const char** argv) {
    auto root = RootArgument(argc, argv);
    if (!root)
        return PAM_SERVICE_ERR;
    const char* user = User(pamh);
    if (user == nullptr)
        return PAM_USER_UNKNOWN;
    std::optional<nlohmann::json> account;
    try {
        account = FindAccount(*root, user);
    } catch (const std::exception&) {
        return PAM_AUTHINFO_UNAVAIL;
    }
    if (!account)
        return PAM_USER_UNKNOWN;
    if (!account->value("permitted", false))
        return PAM_PERM_DENIED;
    if (account->value("expired", false))
        return PAM_NEW_AUTHTOK_REQD;
    return PAM_SUCCESS;
}

int ChangeToken(pam_handle_t* pamh, int flags, int argc, const char** argv) {
    auto root = RootArgument(argc, argv);
    if (!root)
        return PAM_SERVICE_ERR;
    const char* name = User(pamh);
    if (name == nullptr)
        return PAM_USER_UNKNOWN;
    const std::string user = name;

    if (flags & PAM_PRELIM_CHECK) {
        try {
            return FindAccount(*root, user) ? PAM_SUCCESS : PAM_USER_UNKNOWN;
        } catch (const std::exception&) {
            return PAM_TRY_AGAIN;
        }
    }
    if ((flags & PAM_UPDATE_AUTHTOK) == 0)
        return PAM_SERVICE_ERR;

    // One prompt per conversation call: the console's conversation keeps a count of prompts.
    auto first = Converse(pamh, PAM_PROMPT_ECHO_OFF, "New password: ");
    if (!first)
        return PAM_AUTHTOK_ERR;
    auto second = Converse(pamh, PAM_PROMPT_ECHO_OFF, "Retype new password: ");
    if (!second)
        return PAM_AUTHTOK_ERR;
    if (first->Text() != second->Text()) {
        ErrorMessage(pamh, flags, "The passwords do not match.");
        return PAM_AUTHTOK_ERR;
    }
    if (const char* weakness = Weakness(first->Text())) {
        ErrorMessage(pamh, flags, weakness);
        return PAM_AUTHTOK_ERR;
    }
    auto hash = NewHash(first->Text());
    if (!hash)
        return PAM_AUTHTOK_ERR;

    int result = PAM_SUCCESS;
    try {
        HostSim::StateStore(*root).Update([&](nlohmann::json& state) {
            auto accounts = state.find("accounts");
            if (accounts == state.end() || !accounts->is_array()) {
                result = PAM_USER_UNKNOWN;
                return;
            }
            for (auto& account : *accounts) {
                if (account.is_object() && account.value("name", std::string()) == user) {
                    account["hash"] = *hash;
                    account["expired"] = false;
                    return;
                }
            }
            result = PAM_USER_UNKNOWN;
        });
    } catch (const std::exception&) {
        return PAM_AUTHTOK_ERR;
    }
    return result;
}

} // namespace

HOSTSIM_EXPORT int pam_sm_authenticate(pam_handle_t* pamh, int flags, int argc, const char** argv) {
    try {
        return Authenticate(pamh, flags, argc, argv);
    } catch (...) {
        return PAM_SERVICE_ERR;
    }
}

HOSTSIM_EXPORT int pam_sm_setcred(pam_handle_t* /*pamh*/, int /*flags*/, int /*argc*/,
                                  const char** /*argv*/) {
    return PAM_SUCCESS;
}

HOSTSIM_EXPORT int pam_sm_acct_mgmt(pam_handle_t* pamh, int /*flags*/, int argc,
                                    const char** argv) {
    try {
        return AccountManagement(pamh, argc, argv);
    } catch (...) {
        return PAM_SERVICE_ERR;
    }
}

HOSTSIM_EXPORT int pam_sm_chauthtok(pam_handle_t* pamh, int flags, int argc, const char** argv) {
    try {
        return ChangeToken(pamh, flags, argc, argv);
    } catch (...) {
        return PAM_SERVICE_ERR;
    }
}

HOSTSIM_EXPORT int pam_sm_open_session(pam_handle_t* /*pamh*/, int /*flags*/, int /*argc*/,
                                       const char** /*argv*/) {
    return PAM_SUCCESS;
}

HOSTSIM_EXPORT int pam_sm_close_session(pam_handle_t* /*pamh*/, int /*flags*/, int /*argc*/,
                                        const char** /*argv*/) {
    return PAM_SUCCESS;
}
