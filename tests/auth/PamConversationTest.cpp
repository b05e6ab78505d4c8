// The conversation of a password change: which prompt gets which password, over the calls of
// one exchange, whatever the PAM stack asks in between.
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "auth/Pam.hpp"

namespace Lanyx {
namespace {

constexpr int kHidden = PAM_PROMPT_ECHO_OFF;
constexpr int kShown = PAM_PROMPT_ECHO_ON;
constexpr int kInfo = PAM_TEXT_INFO;
constexpr int kError = PAM_ERROR_MSG;

// One call with messages of the given styles; each response as text, "-" for none.
std::vector<std::string> Converse(const std::vector<int>& styles) {
    std::vector<pam_message> messages(styles.size());
    std::vector<const pam_message*> pointers;
    for (size_t i = 0; i < styles.size(); ++i) {
        messages[i] = pam_message{styles[i], "prompt"};
        pointers.push_back(&messages[i]);
    }
    PasswordPair pair{"old-Pass1", "new-Pass1"};
    pam_response* responses = nullptr;
    EXPECT_EQ(
        PamChangeConversation(static_cast<int>(styles.size()), pointers.data(), &responses, &pair),
        PAM_SUCCESS);
    std::vector<std::string> answers;
    for (size_t i = 0; responses && i < styles.size(); ++i) {
        answers.push_back(responses[i].resp ? responses[i].resp : "-");
        std::free(responses[i].resp);
    }
    std::free(responses);
    return answers;
}

TEST(PamChangeConversation, PromptsAnsweredOldThenNewTwiceThenNothing) {
    struct Case {
        const char* name;
        std::vector<std::vector<int>> calls;
        std::vector<std::vector<std::string>> answers;
        uint32_t counted;
    };
    const std::vector<Case> cases = {
        {"one prompt per call, as the host's stack asks",
         {{kHidden}, {kHidden}, {kHidden}},
         {{"old-Pass1"}, {"new-Pass1"}, {"new-Pass1"}},
         3},
        {"a fourth prompt gets nothing",
         {{kHidden, kHidden}, {kHidden, kHidden}},
         {{"old-Pass1", "new-Pass1"}, {"new-Pass1", "-"}},
         3},
        {"texts and shown prompts get nothing and do not count",
         {{kInfo, kHidden}, {kShown}, {kError, kHidden, kHidden}},
         {{"-", "old-Pass1"}, {"-"}, {"-", "new-Pass1", "new-Pass1"}},
         3},
        {"a stack that asks only once", {{kHidden}}, {{"old-Pass1"}}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        // Each exchange starts counting afresh.
        passwordPromptsAnswered = 0;
        for (size_t call = 0; call < c.calls.size(); ++call)
            EXPECT_EQ(Converse(c.calls[call]), c.answers[call]) << "call " << call;
        EXPECT_EQ(passwordPromptsAnswered, c.counted);
    }
}

} // namespace
} // namespace Lanyx
