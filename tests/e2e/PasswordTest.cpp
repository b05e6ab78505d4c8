// The password change from the menu and at an expired login: its field keys, its refusals, the
// change through the host's PAM stack with what follows it, and the login with the new password.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "harness/Session.hpp"

using namespace LanyxE2E;
using nlohmann::json;

namespace {

constexpr const char* kTitle = "Configure Password";
constexpr const char* kNewPassword = "Better-Pass2";

// What the field labelled `label` shows between its brackets.
std::string Field(const Console& console, const std::string& label) {
    const auto at = console.Find(label);
    if (!at)
        return "<no field " + label + ">";
    const std::string row = console.Row(at->first);
    const size_t open = row.find(" [ ", at->second);
    const size_t close = row.find(" ]", open);
    if (open == std::string::npos || close == std::string::npos)
        return "<no brackets: " + row + ">";
    return Trimmed(row.substr(open + 3, close - open - 3));
}

// The field row that is selected: white on black at the start of its label.
bool Selected(const Console& console, const std::string& label) {
    const auto at = console.Find(label);
    if (!at)
        return false;
    const Cell cell = console.CellAt(at->first, at->second);
    return cell.bg.IsIndex(0) && cell.fg.IsIndex(7);
}

::testing::AssertionResult TypeIn(Session& s, std::string_view text,
                                  std::string_view key = Keys::Enter) {
    if (!s.Type(text) || !s.Key(key))
        return ::testing::AssertionFailure() << "not typed";
    return s.Settle();
}

json Account(const HostRoot& host, const std::string& user) {
    const json state = host.State();
    for (const json& account : state["accounts"])
        if (account["name"] == user)
            return account;
    return json::object();
}

std::string Hash(const HostRoot& host, const std::string& user) {
    return Account(host, user).value("hash", "");
}

// The records of one change by `user`: the log line, the event, the state save and the refresh.
void ExpectChangeRecords(const HostRoot& host, const std::string& user) {
    // The event comes last.
    ASSERT_TRUE(host.WaitForLine(Record::Notad, "Login password for user " + user + " changed"));
    EXPECT_EQ(
        host.Matching(Record::Syslog, "]: Login password for user " + user + " has changed").size(),
        1u);
    EXPECT_EQ(host.Matching(Record::Notad,
                            "(nota.user.lanyx.login.passwd.changed)Login password for user " + user)
                  .size(),
              1u);
    EXPECT_EQ(host.ToolRuns("stateSave.sh"), std::vector<std::string>{"0"});
    EXPECT_EQ(std::ranges::count(host.ToolRuns("helmq"), "-U " + user + " helmcore/refresh"), 1);
}

// ---------------------------------------------------------------- from the menu

TEST(Password, RefusalsInTheFormThenTheChangeAndALoginWithIt) {
    Session s;
    Console& console = s.Screen();
    HostRoot& host = s.Host();
    const std::string oldHash = Hash(host, "root");
    ASSERT_TRUE(s.Walk({"@login", kTitle}));
    ASSERT_TRUE(console.WaitForText("Setting the password will prevent"));
    EXPECT_TRUE(Selected(console, "Old Password:"));
    EXPECT_TRUE(console.CursorVisible());

    // A wrong old password is named and emptied; Up there does nothing.
    ASSERT_TRUE(TypeIn(s, "wrong-Pass"));
    EXPECT_TRUE(console.Find("The old password you entered is incorrect")) << console.Describe();
    ASSERT_TRUE(s.Press({Keys::Enter, Keys::Up}));
    EXPECT_EQ(Field(console, "Old Password:"), "");
    EXPECT_TRUE(Selected(console, "Old Password:"));

    // The right one leads on (Tab and Down as well as Enter); Up never goes back to it.
    ASSERT_TRUE(TypeIn(s, kRootPassword, Keys::Tab));
    EXPECT_TRUE(Selected(console, "New Password:"));
    ASSERT_TRUE(s.Press({Keys::Up}));
    EXPECT_TRUE(Selected(console, "New Password:"));

    struct Attempt {
        const char* name;
        std::string newText, confirmText, message;
    };
    const std::string mismatch = "The new password and the confirmed password do not match.";
    // clang-format off
    const std::vector<Attempt> attempts = {
        {"texts that differ", "abc", "abd", mismatch},
        {"the mismatch is found before the empty confirmation", "abc", "", mismatch},
        {"both empty", "", "", "Empty passwords are not allowed."},
        {"too simple for the host", "abcdefgh", "abcdefgh", "The password change operation failed."},
    };
    // clang-format on
    for (const Attempt& attempt : attempts) {
        SCOPED_TRACE(attempt.name);
        ASSERT_TRUE(TypeIn(s, attempt.newText));
        EXPECT_TRUE(Selected(console, "Confirm Password:"));
        ASSERT_TRUE(TypeIn(s, attempt.confirmText));
        EXPECT_TRUE(console.Find(attempt.message)) << console.Describe();
        EXPECT_TRUE(console.Find("Configure Password: Error"));
        ASSERT_TRUE(s.Press({Keys::Enter}));
        // Back on an empty new password; the old one stays.
        EXPECT_TRUE(Selected(console, "New Password:"));
        EXPECT_EQ(Field(console, "New Password:"), "");
        EXPECT_EQ(Field(console, "Confirm Password:"), "");
        EXPECT_EQ(Field(console, "Old Password:"), "***********");
        EXPECT_EQ(Hash(host, "root"), oldHash);
    }

    // Down in the confirmation does nothing, Tab goes back one field only.
    ASSERT_TRUE(TypeIn(s, kNewPassword));
    ASSERT_TRUE(s.Press({Keys::Down}));
    EXPECT_TRUE(Selected(console, "Confirm Password:"));
    ASSERT_TRUE(s.Press({Keys::Tab}));
    EXPECT_TRUE(Selected(console, "New Password:"));
    ASSERT_TRUE(s.Press({Keys::Tab}));
    ASSERT_TRUE(TypeIn(s, kNewPassword));
    ASSERT_TRUE(console.WaitForText("System Customization"));
    EXPECT_FALSE(console.CursorVisible());
    EXPECT_NE(Hash(host, "root"), oldHash);
    EXPECT_EQ(host.State()["configStore"]["accounts"], host.State()["accounts"]);
    ExpectChangeRecords(host, "root");
    EXPECT_TRUE(host.Messages("user.warning").empty());

    // The next login takes the new password and refuses the old one.
    ASSERT_TRUE(s.Press({Keys::Escape}));
    ASSERT_TRUE(s.AwaitWelcome());
    ASSERT_TRUE(s.OpenLogin());
    ASSERT_TRUE(TypeIn(s, "root"));
    ASSERT_TRUE(TypeIn(s, kRootPassword));
    EXPECT_TRUE(console.Find("Invalid login or password."));
    ASSERT_TRUE(s.Press({Keys::Enter, Keys::Escape}));
    ASSERT_TRUE(s.AwaitWelcome());
    ASSERT_TRUE(s.LogIn("root", kNewPassword));
}

// The same password again is asked about; once confirmed, a store that fails is told of and the
// change stands.
TEST(Password, SamePasswordAskedAboutAndAFailedStoreTold) {
    Session s("default",
              {.faults = {{"lib", "Authentication::StoreUserAccountsToCs", "store offline"}}});
    Console& console = s.Screen();
    HostRoot& host = s.Host();
    ASSERT_TRUE(s.Walk({"@login", kTitle}));
    ASSERT_TRUE(TypeIn(s, kRootPassword));
    ASSERT_TRUE(TypeIn(s, kRootPassword));
    ASSERT_TRUE(TypeIn(s, kRootPassword));
    EXPECT_TRUE(console.Find("New password is same as old password. Are you sure?"))
        << console.Describe();
    EXPECT_TRUE(console.Find("Configure Password: Warning"));
    // Other keys leave the question open; Esc goes back with every field as it was.
    ASSERT_TRUE(s.Press({"y", Keys::Escape}));
    EXPECT_TRUE(Selected(console, "Confirm Password:"));
    EXPECT_EQ(Field(console, "New Password:"), "***********");
    EXPECT_EQ(Field(console, "Confirm Password:"), "***********");
    EXPECT_TRUE(host.Matching(Record::Syslog, "has changed").empty());
    // Enter there confirms, and the change is made.
    ASSERT_TRUE(s.Press({Keys::Enter, Keys::Enter}));
    EXPECT_TRUE(console.Find("Error while storing user account information to persistent"))
        << console.Describe();
    EXPECT_EQ(host.Messages("user.warning"),
              std::vector<std::string>{
                  "Error while storing user account information to persistent storage. The new "
                  "information may not be available after reboot. Error: store offline"});
    // The account data has not reached the store, but the password has changed on the host.
    EXPECT_FALSE(host.State().contains("configStore"));
    ASSERT_TRUE(s.Press({Keys::Enter}));
    ASSERT_TRUE(console.WaitForTextGone("Setting the password will prevent"));
    ExpectChangeRecords(host, "root");
}

TEST(Password, EmptyPasswordWarningGoesWithTheChange) {
    Session s("default", {.prepare = [](HostRoot& h) {
                  h.Edit([](json& state) { state["accounts"][0]["hash"] = ""; });
              }});
    Console& console = s.Screen();
    ASSERT_TRUE(s.LogIn("root", ""));
    EXPECT_TRUE(console.Find("Change default password")) << console.Describe();
    EXPECT_TRUE(console.Find("Not set"));
    ASSERT_TRUE(s.OpenEntry(kTitle));
    ASSERT_TRUE(s.Press({Keys::Enter}));
    EXPECT_TRUE(Selected(console, "New Password:")) << "the empty old password is right";
    ASSERT_TRUE(TypeIn(s, kNewPassword));
    ASSERT_TRUE(TypeIn(s, kNewPassword));
    ASSERT_TRUE(console.WaitForText("System Customization"));
    ASSERT_TRUE(s.Settle());
    EXPECT_FALSE(console.Find("Change default password"));
    EXPECT_FALSE(console.Find("Not set"));
    EXPECT_EQ(Trimmed(console.Text(22, 2, 37)), "<Up/Down> Select");
}

// ---------------------------------------------------------------- at an expired login

TEST(Password, ExpiredPasswordIsChangedAtTheLoginThenUsed) {
    Session s;
    Console& console = s.Screen();
    HostRoot& host = s.Host();
    ASSERT_TRUE(s.OpenLogin());
    ASSERT_TRUE(TypeIn(s, "expired"));
    ASSERT_TRUE(TypeIn(s, "expired-Pass1"));
    EXPECT_TRUE(console.Find("Password has expired.")) << console.Describe();
    ASSERT_TRUE(s.Press({Keys::Enter}));
    ASSERT_TRUE(console.WaitForText("Setting the password will prevent"));
    // The expired password counts as the old one.
    ASSERT_TRUE(TypeIn(s, "expired-Pass1"));
    EXPECT_TRUE(Selected(console, "New Password:"));
    ASSERT_TRUE(TypeIn(s, "Fresh-Pass3"));
    ASSERT_TRUE(TypeIn(s, "Fresh-Pass3"));
    // Back in the login box, on an empty password: the change logs nobody in.
    ASSERT_TRUE(console.WaitForText("Authentication Required"));
    EXPECT_FALSE(console.Find("Setting the password"));
    EXPECT_TRUE(host.Matching(Record::Syslog, "logged in").empty());
    ExpectChangeRecords(host, "expired");
    EXPECT_FALSE(Account(host, "expired").value("expired", true));

    ASSERT_TRUE(TypeIn(s, "Fresh-Pass3"));
    ASSERT_TRUE(console.WaitForText("System Customization"));
    // The refusal was recorded before the change, the login after it.
    const std::vector<std::string> lines = host.Messages();
    const auto at = [&](const std::string& text) {
        for (size_t i = 0; i < lines.size(); ++i)
            if (lines[i].find(text) != std::string::npos)
                return i;
        return lines.size();
    };
    EXPECT_LT(at("Password has expired for user expired"),
              at("Login password for user expired has changed"));
    EXPECT_LT(at("Login password for user expired has changed"), at("User expired logged in"));
    EXPECT_LT(at("User expired logged in"), lines.size());
}

} // namespace
