// The PAM module through the real Linux-PAM library, with a service file in a temporary pam.d.
#include <gtest/gtest.h>

#include <security/pam_appl.h>

#include <crypt.h>

#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <tuple>

#include "HostRoot.hpp"
#include "store/StateStore.hpp"

namespace {

using nlohmann::json;
using Strings = std::vector<std::string>;

std::string Hash(const std::string& password) {
    crypt_data data{};
    const char* hash = crypt_r(password.c_str(), "$6$salt$", &data);
    if (hash == nullptr || hash[0] != '$')
        throw std::runtime_error("crypt_r failed");
    return hash;
}

// The application side of a conversation: answers hidden prompts in order, keeps what it was shown.
struct Conversation {
    std::deque<std::string> answers;
    Strings prompts;
    int largestCall = 0;

    static int Converse(int count, const pam_message** messages, pam_response** responses,
                        void* data) {
        auto* self = static_cast<Conversation*>(data);
        self->largestCall = std::max(self->largestCall, count);
        auto* list = static_cast<pam_response*>(
            std::calloc(static_cast<size_t>(count), sizeof(pam_response)));
        for (int i = 0; i < count; ++i) {
            const std::string text = messages[i]->msg ? messages[i]->msg : "";
            if (messages[i]->msg_style == PAM_PROMPT_ECHO_OFF) {
                self->prompts.push_back(text);
                if (!self->answers.empty()) {
                    list[i].resp = strdup(self->answers.front().c_str());
                    self->answers.pop_front();
                }
            }
        }
        *responses = list;
        return PAM_SUCCESS;
    }
};

class PamTest : public ::testing::Test {
protected:
    void SetUp() override {
        json accounts = json::array();
        for (const auto& [name, password, expired, permitted] :
             {std::tuple{"root", "lanyx-Root1", false, true},
              std::tuple{"guest", "guest-Pass1", false, false},
              std::tuple{"expired", "expired-Pass1", true, true},
              std::tuple{"open", "", false, true}})
            accounts.push_back({{"name", name},
                                {"hash", *password ? Hash(password) : ""},
                                {"expired", expired},
                                {"permitted", permitted}});
        HostSim::StateStore(root_.Path()).Write({{"schema", 1}, {"accounts", accounts}});
        std::filesystem::create_directories(root_.Path() + "/etc/pam.d");
        WriteService("root=" + root_.Path());
    }

    void WriteService(const std::string& arguments) {
        std::ofstream file(root_.Path() + "/etc/pam.d/lanyx");
        for (const char* type : {"auth", "account", "password", "session"})
            file << type << " required " << PAM_MODULE << " " << arguments << "\n";
    }

    // Authentication and account check as the console's login does.
    int Login(const std::string& user, const Strings& answers, Conversation& conversation) {
        conversation.answers.assign(answers.begin(), answers.end());
        const pam_conv conv = {Conversation::Converse, &conversation};
        pam_handle_t* handle = nullptr;
        int result = pam_start_confdir("lanyx", user.c_str(), &conv,
                                       (root_.Path() + "/etc/pam.d").c_str(), &handle);
        const auto going = [&result] {
            return result == PAM_SUCCESS || result == PAM_NEW_AUTHTOK_REQD;
        };
        if (result == PAM_SUCCESS)
            result = pam_authenticate(handle, PAM_SILENT);
        if (going())
            result = pam_acct_mgmt(handle, PAM_SILENT);
        if (handle)
            pam_end(handle, result);
        return result;
    }
    int CheckLogin(const std::string& user, const std::string& password) {
        Conversation conversation;
        const int result = Login(user, {password}, conversation);
        EXPECT_EQ(conversation.largestCall, 1) << "one message per call";
        EXPECT_EQ(conversation.prompts, Strings({"Password: "})) << "the password asked once";
        return result;
    }
    LanyxTest::HostRoot root_{""};
};

TEST_F(PamTest, LoginResultsAreThoseTheConsoleTellsApart) {
    for (const auto& [user, password, result] :
         {std::tuple{"root", "lanyx-Root1", PAM_SUCCESS},
          std::tuple{"root", "lanyx-root1", PAM_AUTH_ERR},
          std::tuple{"nobody", "lanyx-Root1", PAM_AUTH_ERR},
          std::tuple{"guest", "guest-Pass1", PAM_PERM_DENIED},
          std::tuple{"guest", "wrong", PAM_AUTH_ERR},
          std::tuple{"expired", "expired-Pass1", PAM_NEW_AUTHTOK_REQD},
          std::tuple{"open", "", PAM_SUCCESS}, std::tuple{"open", "x", PAM_AUTH_ERR}})
        EXPECT_EQ(CheckLogin(user, password), result) << user << ' ' << password;
}

TEST_F(PamTest, ServiceFileWithoutRootOrWithADamagedStateFails) {
    WriteService("");
    Conversation conversation;
    EXPECT_NE(Login("root", {"lanyx-Root1"}, conversation), PAM_SUCCESS);
    WriteService("root=" + root_.Path());
    std::ofstream(HostSim::StateStore(root_.Path()).StatePath()) << "[broken";
    EXPECT_EQ(Login("root", {"lanyx-Root1"}, conversation), PAM_AUTHINFO_UNAVAIL);
}

} // namespace
