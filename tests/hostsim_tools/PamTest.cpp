// The PAM module through the real Linux-PAM library, with a service file in a temporary pam.d.
#include <gtest/gtest.h>

#include <security/pam_appl.h>

#include <crypt.h>

#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <memory>

#include "TestSupport.hpp"

namespace {

using HostSimTest::TempRoot;
using nlohmann::json;

std::string Hash(const std::string& password, const std::string& salt) {
    crypt_data data{};
    const char* hash = crypt_r(password.c_str(), ("$6$" + salt + "$").c_str(), &data);
    if (hash == nullptr || hash[0] != '$') throw std::runtime_error("crypt_r failed");
    return hash;
}

// What the application side of a conversation saw and answers.
struct Conversation {
    std::deque<std::string> answers;           // for PAM_PROMPT_ECHO_OFF, in order
    std::vector<std::pair<int, std::string>> messages;
    std::vector<int> callSizes;                // messages per call

    static int Converse(int count, const pam_message** messages, pam_response** responses, void* data) {
        auto* self = static_cast<Conversation*>(data);
        self->callSizes.push_back(count);
        auto* list = static_cast<pam_response*>(std::calloc(static_cast<size_t>(count), sizeof(pam_response)));
        for (int i = 0; i < count; ++i) {
            self->messages.emplace_back(messages[i]->msg_style, messages[i]->msg ? messages[i]->msg : "");
            if (messages[i]->msg_style == PAM_PROMPT_ECHO_OFF && !self->answers.empty()) {
                list[i].resp = strdup(self->answers.front().c_str());
                self->answers.pop_front();
            }
        }
        *responses = list;
        return PAM_SUCCESS;
    }

    std::vector<std::string> Prompts() const {
        std::vector<std::string> prompts;
        for (const auto& [style, text] : messages)
            if (style == PAM_PROMPT_ECHO_OFF) prompts.push_back(text);
        return prompts;
    }
    bool SawError() const {
        for (const auto& [style, text] : messages)
            if (style == PAM_ERROR_MSG && !text.empty()) return true;
        return false;
    }
};

class PamSession {
public:
    PamSession(const std::string& confdir, const std::string& user, Conversation& conversation)
        : conv_{Conversation::Converse, &conversation} {
        started_ = pam_start_confdir("lanyx", user.c_str(), &conv_, confdir.c_str(), &handle_);
    }
    PamSession(const PamSession&) = delete;
    PamSession& operator=(const PamSession&) = delete;
    ~PamSession() {
        if (handle_ != nullptr) pam_end(handle_, last_);
    }
    int Started() const { return started_; }
    int Authenticate(int flags = PAM_SILENT) { return last_ = pam_authenticate(handle_, flags); }
    int Account(int flags = PAM_SILENT) { return last_ = pam_acct_mgmt(handle_, flags); }
    int ChangeToken(int flags = PAM_SILENT) { return last_ = pam_chauthtok(handle_, flags); }
    int RefreshCredentials() { return last_ = pam_setcred(handle_, PAM_REFRESH_CRED); }

private:
    pam_conv conv_;
    pam_handle_t* handle_ = nullptr;
    int started_ = PAM_SYSTEM_ERR;
    int last_ = PAM_SUCCESS;
};

class PamTest : public ::testing::Test {
protected:
    void SetUp() override {
        json state = {{"schema", 1},
                      {"accounts",
                       {{{"name", "root"}, {"hash", Hash("lanyx-Root1", "rootsalt")}, {"expired", false}, {"permitted", true}},
                        {{"name", "guest"}, {"hash", Hash("guest-Pass1", "guestsalt")}, {"expired", false}, {"permitted", false}},
                        {{"name", "expired"}, {"hash", Hash("expired-Pass1", "oldsalt")}, {"expired", true}, {"permitted", true}},
                        {{"name", "open"}, {"hash", ""}, {"expired", false}, {"permitted", true}}}}};
        root_.Store().Write(state);
        confdir_ = root_.Path() + "/etc/pam.d";
        std::filesystem::create_directories(confdir_);
        WriteService("root=" + root_.Path());
    }

    void WriteService(const std::string& arguments) {
        std::ofstream file(confdir_ + "/lanyx");
        for (const char* type : {"auth", "account", "password", "session"})
            file << type << " required " << PAM_MODULE << " " << arguments << "\n";
    }

    // pam_authenticate then pam_acct_mgmt, as the console's login check does.
    int CheckLogin(const std::string& user, const std::string& password) {
        Conversation conversation;
        conversation.answers = {password};
        PamSession session(confdir_, user, conversation);
        if (session.Started() != PAM_SUCCESS) return session.Started();
        int result = session.Authenticate();
        if (result == PAM_SUCCESS) result = session.Account();
        for (int size : conversation.callSizes) EXPECT_EQ(size, 1);
        return result;
    }

    // The console's password change: one old password, then the new one twice.
    int ChangePassword(const std::string& user, const std::string& oldPassword, const std::string& newPassword,
                       const std::string& confirmation, Conversation& conversation, int flags = PAM_SILENT) {
        conversation.answers = {oldPassword, newPassword, confirmation};
        PamSession session(confdir_, user, conversation);
        if (session.Started() != PAM_SUCCESS) return session.Started();
        int result = session.Authenticate();
        if (result != PAM_SUCCESS && result != PAM_NEW_AUTHTOK_REQD) return result;
        result = session.Account();
        if (result != PAM_SUCCESS && result != PAM_NEW_AUTHTOK_REQD) return result;
        result = session.ChangeToken(flags);
        if (result != PAM_SUCCESS) return result;
        return session.RefreshCredentials();
    }

    json Account(const std::string& name) {
        const json state = root_.Store().Read();
        for (const auto& account : state["accounts"])
            if (account["name"] == name) return account;
        return nullptr;
    }

    TempRoot root_;
    std::string confdir_;
};

TEST_F(PamTest, LoginResults) {
    EXPECT_EQ(CheckLogin("root", "lanyx-Root1"), PAM_SUCCESS);
    EXPECT_EQ(CheckLogin("root", "lanyx-root1"), PAM_AUTH_ERR);
    EXPECT_EQ(CheckLogin("root", ""), PAM_AUTH_ERR);
    EXPECT_EQ(CheckLogin("nobody", "lanyx-Root1"), PAM_AUTH_ERR);
    EXPECT_EQ(CheckLogin("guest", "guest-Pass1"), PAM_PERM_DENIED);
    EXPECT_EQ(CheckLogin("guest", "wrong"), PAM_AUTH_ERR);
    EXPECT_EQ(CheckLogin("expired", "expired-Pass1"), PAM_NEW_AUTHTOK_REQD);
    // An account without a password takes the empty one only.
    EXPECT_EQ(CheckLogin("open", ""), PAM_SUCCESS);
    EXPECT_EQ(CheckLogin("open", "x"), PAM_AUTH_ERR);
}

TEST_F(PamTest, AuthenticationAsksOncePerCallForThePassword) {
    Conversation conversation;
    conversation.answers = {"lanyx-Root1"};
    PamSession session(confdir_, "root", conversation);
    ASSERT_EQ(session.Started(), PAM_SUCCESS);
    EXPECT_EQ(session.Authenticate(), PAM_SUCCESS);
    EXPECT_EQ(conversation.Prompts(), std::vector<std::string>({"Password: "}));
    EXPECT_EQ(conversation.callSizes, std::vector<int>({1}));
}

TEST_F(PamTest, ServiceFileWithoutRootOrWithADamagedStateFails) {
    WriteService("");
    EXPECT_NE(CheckLogin("root", "lanyx-Root1"), PAM_SUCCESS);
    WriteService("root=relative");
    EXPECT_NE(CheckLogin("root", "lanyx-Root1"), PAM_SUCCESS);
    WriteService("root=" + root_.Path() + " debug");
    EXPECT_NE(CheckLogin("root", "lanyx-Root1"), PAM_SUCCESS);

    WriteService("root=" + root_.Path());
    { std::ofstream(root_.Store().StatePath()) << "[broken"; }
    EXPECT_EQ(CheckLogin("root", "lanyx-Root1"), PAM_AUTHINFO_UNAVAIL);
}

TEST_F(PamTest, PasswordChangeRefusesMismatchAndWeakPasswords) {
    const json before = Account("root");
    Conversation mismatch;
    EXPECT_EQ(ChangePassword("root", "lanyx-Root1", "Better-Pass2", "Better-Pass3", mismatch, 0), PAM_AUTHTOK_ERR);
    EXPECT_TRUE(mismatch.SawError());
    EXPECT_EQ(mismatch.Prompts(), std::vector<std::string>({"Password: ", "New password: ", "Retype new password: "}));

    for (const std::string weak : {"Sh0rt-x", "alllowercase", "lowerUPPER", "12345678", ""}) {
        Conversation conversation;
        EXPECT_EQ(ChangePassword("root", "lanyx-Root1", weak, weak, conversation, 0), PAM_AUTHTOK_ERR) << weak;
        EXPECT_TRUE(conversation.SawError()) << weak;
    }
    // Silent exchanges get no message, only the result.
    Conversation silent;
    EXPECT_EQ(ChangePassword("root", "lanyx-Root1", "short", "short", silent), PAM_AUTHTOK_ERR);
    EXPECT_FALSE(silent.SawError());

    Conversation wrongOld;
    EXPECT_EQ(ChangePassword("root", "not-it", "Better-Pass2", "Better-Pass2", wrongOld), PAM_AUTH_ERR);
    EXPECT_EQ(Account("root"), before);
}

TEST_F(PamTest, PasswordChangeStoresANewHash) {
    Conversation conversation;
    ASSERT_EQ(ChangePassword("root", "lanyx-Root1", "lowerUPPER9", "lowerUPPER9", conversation), PAM_SUCCESS);
    EXPECT_EQ(Account("root")["hash"].get<std::string>().rfind("$6$", 0), 0u);
    EXPECT_EQ(CheckLogin("root", "lanyx-Root1"), PAM_AUTH_ERR);
    EXPECT_EQ(CheckLogin("root", "lowerUPPER9"), PAM_SUCCESS);
    // Three classes are enough, any three.
    Conversation again;
    EXPECT_EQ(ChangePassword("root", "lowerUPPER9", "digits-and-lower1", "digits-and-lower1", again), PAM_SUCCESS);
    EXPECT_EQ(CheckLogin("root", "digits-and-lower1"), PAM_SUCCESS);
}

TEST_F(PamTest, ExpiredAccountChangesItsPasswordAndThenLogsIn) {
    Conversation conversation;
    ASSERT_EQ(ChangePassword("expired", "expired-Pass1", "Fresh-Pass22", "Fresh-Pass22", conversation), PAM_SUCCESS);
    EXPECT_FALSE(Account("expired")["expired"].get<bool>());
    EXPECT_EQ(CheckLogin("expired", "Fresh-Pass22"), PAM_SUCCESS);
    // Other accounts are untouched.
    EXPECT_EQ(CheckLogin("root", "lanyx-Root1"), PAM_SUCCESS);
}

} // namespace
