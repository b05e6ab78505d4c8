// The login behind F2 on simulated hosts: the box in both modes, its keys, the PAM outcomes with
// their records, the closed console and the idle limit while the box is open.
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Console.hpp"
#include "harness/HostRoot.hpp"

using namespace LanyxE2E;

namespace {

// The box of 60 x 13 centred on 80 x 25: title at row 7, message from row 9, the list rows from
// row 13 with their text from column 13, the footer on row 17.
constexpr int kTitleRow = 7, kMessageRow = 9, kListRow = 13, kFooterRow = 17;
constexpr int kBoxColumn = 10, kTextColumn = 13, kRowWidth = 53;
constexpr const char* kTitle = "Authentication Required";
constexpr const char* kWelcomeReady = "To manage this host, go to:";
constexpr const char* kPasswordFooter = "<Enter> OK  <Esc> Cancel";
constexpr const char* kPinHint = "<F3> Switch PIN/Password Login";

std::string Trimmed(std::string text)
{
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

// What a field row shows between its brackets, trailing blanks removed.
std::string FieldValue(const Console& console, int line)
{
    const std::string row = console.Text(kListRow + line, kTextColumn, kRowWidth);
    const size_t open = row.find(" [ ");
    const size_t close = row.rfind(" ]");
    if (open == std::string::npos || close == std::string::npos || close < open + 3)
        return "<no field: " + row + ">";
    return Trimmed(row.substr(open + 3, close - open - 3));
}

// The label of a field row: what stands before the blanks that lead to the field.
std::string FieldLabel(const Console& console, int line)
{
    const std::string row = console.Text(kListRow + line, kTextColumn, kRowWidth);
    return Trimmed(row.substr(0, row.find(" [ ")));
}

// White on black; a terminal without its own palette shows it in reverse instead.
bool Selected(const Console& console, int line)
{
    const Cell cell = console.CellAt(kListRow + line, kTextColumn);
    return (cell.bg.IsIndex(0) && cell.fg.IsIndex(7)) || cell.reverse;
}

// The list is drawn row by row and the selected line last of all: once that line shows its whole
// field in the selection's colours, the box stands complete.
bool Drawn(const Console& console, int line)
{
    return Selected(console, line) && !FieldLabel(console, line).empty() &&
           console.Text(kListRow + line, kTextColumn + kRowWidth - 2, 2) == " ]";
}

// The message in the title pane, its two lines joined.
std::string Message(const Console& console)
{
    return Trimmed(Trimmed(console.Text(kMessageRow, kTextColumn, 54)) + " " +
                   Trimmed(console.Text(kMessageRow + 1, kTextColumn, 54)));
}

constexpr const char* kFailedEvent = "@&!*@*@(nota.user.lanyx.login.failed)";

class Login : public ::testing::Test {
protected:
    void Use(const std::string& profile) { root = std::make_unique<HostRoot>(profile); }

    std::unique_ptr<Console> Start(const std::string& term = "xterm-256color", const std::string& faketime = "")
    {
        if (!root)
            Use("default");
        ConsoleOptions options = LanyxOptions(root->Path());
        options.term = term;
        options.faketime = faketime;
        auto console = std::make_unique<Console>(options);
        EXPECT_TRUE(AwaitWelcome(*console));
        return console;
    }

    static ::testing::AssertionResult AwaitWelcome(Console& console)
    {
        return console.WaitForFullScreen(kWelcomeReady, kTitle);
    }

    // Keys typed while a screen opens are dropped, so the key is repeated until the box shows;
    // a spare one that reaches the box is ignored there. The box is whole once `drawn` holds:
    // the login box draws its list last, selected line at the very end.
    static ::testing::AssertionResult OpenBox(Console& console, std::string_view key, const std::string& title,
                                              const std::function<bool()>& drawn)
    {
        if (!console.WaitFor(
                [&] {
                    if (console.Find(title))
                        return true;
                    console.Send(key);
                    console.Pump(300ms);
                    return console.Find(title).has_value();
                },
                10s, "the box \"" + title + "\""))
            return ::testing::AssertionFailure() << "no box \"" << title << "\"\n" << console.Describe();
        return console.WaitFor(drawn, 10s, "the box \"" + title + "\" drawn whole");
    }

    static ::testing::AssertionResult OpenLogin(Console& console)
    {
        return OpenBox(console, Keys::F(2), kTitle, [&] { return Drawn(console, 0) || Drawn(console, 1); });
    }

    static ::testing::AssertionResult OpenRefusal(Console& console, std::string_view key)
    {
        return OpenBox(console, key, "Authentication Denied", [&] { return console.Find("<Enter> OK").has_value(); });
    }

    // A field line counts once it is drawn whole; the keyboard line has no field.
    ::testing::AssertionResult WaitSelected(Console& console, int line, bool field = true)
    {
        return console.WaitFor([&] { return field ? Drawn(console, line) : Selected(console, line); }, 10s,
                               "list line " + std::to_string(line) + " selected");
    }

    ::testing::AssertionResult WaitLabel(Console& console, int line, const std::string& label)
    {
        return console.WaitFor([&] { return FieldLabel(console, line) == label; }, 10s, "the label " + label);
    }

    // From the name line: a new name, Enter to the secret line, the secret, Enter.
    void TryLogin(Console& console, const std::string& name, const std::string& secret)
    {
        ASSERT_TRUE(WaitSelected(console, 0));
        console.Send(name);
        ASSERT_TRUE(console.WaitFor([&] { return FieldValue(console, 0) == name; }, 10s, "the name typed"));
        console.Send(Keys::Enter);
        ASSERT_TRUE(WaitSelected(console, 1));
        console.Send(secret);
        ASSERT_TRUE(console.WaitFor([&] { return FieldValue(console, 1) == std::string(secret.size(), '*'); }, 10s,
                                    "the secret typed, masked"));
        console.Send(Keys::Enter);
    }

    std::unique_ptr<HostRoot> root;
};

// ---------------------------------------------------------------- the box

TEST_F(Login, PasswordModeLooksAndMoves)
{
    auto console = Start();
    ASSERT_TRUE(OpenLogin(*console));
    EXPECT_EQ(console->Find(kTitle), std::make_pair(kTitleRow, kTextColumn)) << console->Describe();
    EXPECT_EQ(Message(*console), "Enter an authorized login name and password for lanyx-lab01.lab.example.test.");
    // No keyboard line outside console mode: the name is line 0, selected, with the cursor.
    EXPECT_EQ(FieldLabel(*console, 0), "Login Name:");
    EXPECT_EQ(FieldValue(*console, 0), "root");
    EXPECT_EQ(FieldLabel(*console, 1), "Password:");
    EXPECT_EQ(FieldValue(*console, 1), "");
    EXPECT_FALSE(Selected(*console, 1));
    EXPECT_TRUE(console->CursorVisible());
    EXPECT_EQ(Trimmed(console->Text(kFooterRow, kBoxColumn + 1, 57)), std::string(57 - 24, ' ') + kPasswordFooter);
    EXPECT_FALSE(console->Find(kPinHint));

    // Enter on the name moves on without an attempt; Tab on the last line goes back to line 0;
    // each field takes only its own keys.
    console->Send(Keys::Enter);
    ASSERT_TRUE(WaitSelected(*console, 1));
    console->Send("ab");
    ASSERT_TRUE(console->WaitFor([&] { return FieldValue(*console, 1) == "**"; }, 10s, "two masked letters"));
    console->Send(Keys::Tab);
    ASSERT_TRUE(WaitSelected(*console, 0));
    console->Send(Keys::End);
    console->Send("x");
    ASSERT_TRUE(console->WaitFor([&] { return FieldValue(*console, 0) == "rootx"; }, 10s, "a letter after the name"));
    console->Send(Keys::Down);
    ASSERT_TRUE(WaitSelected(*console, 1));
    console->Send(Keys::Backspace);
    ASSERT_TRUE(console->WaitFor([&] { return FieldValue(*console, 1) == ""; }, 10s, "the secret cleared"));
    EXPECT_EQ(FieldValue(*console, 0), "rootx");
    EXPECT_TRUE(root->Matching(Record::Syslog, "Authentication of user").empty());

    // F3 gives PIN mode and back, each time with the mode's default name; the line stays.
    console->Send(Keys::F(3));
    ASSERT_TRUE(WaitLabel(*console, 1, "PIN:"));
    EXPECT_TRUE(console->Find(kPinHint));
    EXPECT_EQ(Message(*console), "Enter the smart card login PIN for lanyx-lab01.lab.example.test.");
    EXPECT_EQ(FieldLabel(*console, 0), "Login Id:");
    EXPECT_EQ(FieldValue(*console, 0), "") << "no card: no user id";
    EXPECT_TRUE(Selected(*console, 1));
    console->Send(Keys::F(3));
    ASSERT_TRUE(WaitLabel(*console, 1, "Password:"));
    EXPECT_FALSE(console->Find(kPinHint));
    EXPECT_EQ(FieldValue(*console, 0), "root");

    // Esc cancels without a record; the next F2 opens a fresh box.
    console->Send(Keys::Escape);
    ASSERT_TRUE(AwaitWelcome(*console));
    EXPECT_FALSE(console->CursorVisible());
    EXPECT_TRUE(root->Lines(Record::Audit).empty());
    ASSERT_TRUE(OpenLogin(*console));
    EXPECT_TRUE(Selected(*console, 0));
}

TEST_F(Login, ConsoleModeAddsTheKeyboardLine)
{
    // A plain xterm outside a remote session counts as the machine's own screen.
    Use("default");
    root->Set("keyboard-layout", "German");
    auto console = Start("xterm");
    ASSERT_TRUE(OpenLogin(*console));
    EXPECT_EQ(Trimmed(console->Text(kListRow, kTextColumn, kRowWidth)), "Configured Keyboard (German)");
    EXPECT_EQ(FieldLabel(*console, 1), "Login Name:");
    EXPECT_EQ(FieldLabel(*console, 2), "Password:");
    EXPECT_TRUE(Selected(*console, 1));
    // Tab on the secret wraps to the keyboard line; a letter there changes nothing, Enter keeps
    // the box open. The box lights itself anew after that Enter and drops keys typed meanwhile,
    // so Down is repeated until one lands.
    console->Send(Keys::Tab);
    ASSERT_TRUE(WaitSelected(*console, 2));
    console->Send(Keys::Tab);
    ASSERT_TRUE(WaitSelected(*console, 0, false));
    console->Send("q");
    console->Send(Keys::Enter);
    ASSERT_TRUE(console->WaitFor(
        [&] {
            if (!Selected(*console, 0))
                return true;
            console->Send(Keys::Down);
            console->Pump(300ms);
            return !Selected(*console, 0);
        },
        10s, "Down taken after Enter on the keyboard line"));
    ASSERT_TRUE(WaitSelected(*console, 1));
    EXPECT_EQ(FieldValue(*console, 1), "root");
    EXPECT_EQ(FieldValue(*console, 2), "");
    EXPECT_TRUE(console->Find(kTitle));
}

// ---------------------------------------------------------------- the attempt

TEST_F(Login, RefusalsThenSuccessWithTheirRecords)
{
    struct Refusal {
        std::string name, secret, log, auditReason, event, message;
    };
    const std::vector<Refusal> refusals = {
        {"root", "wrong-Pass1", "Authentication of user root failed", "Invalid login",
         "Authentication of user root failed", "Invalid login or password."},
        {"guest", "guest-Pass1", "Access denied for user guest", "No permission", "Access denied for user guest",
         "User does not have permission to login to LANYX."},
        {"expired", "expired-Pass1", "Password has expired for user expired", "Password expired",
         "Access denied for user expired", "You will be prompted to set a new password and then login again."},
        // An empty secret goes to PAM like any other.
        {"nobody", "", "Authentication of user nobody failed", "Invalid login", "Authentication of user nobody failed",
         "Invalid login or password."},
    };
    auto console = Start();
    ASSERT_TRUE(OpenLogin(*console));
    // One box for all: the attempt repeats without limit.
    for (size_t i = 0; i < refusals.size(); ++i) {
        const Refusal& refusal = refusals[i];
        SCOPED_TRACE(refusal.name);
        if (i > 0)
            console->Send(Keys::Up);
        TryLogin(*console, refusal.name, refusal.secret);
        ASSERT_TRUE(console->WaitForText(refusal.message));
        EXPECT_TRUE(console->Find("Authentication failed"));
        // Other keys leave the message open; Enter closes it.
        console->Send("x");
        console->Pump(100ms);
        EXPECT_TRUE(console->Find(refusal.message));
        console->Send(Keys::Enter);
        ASSERT_TRUE(console->WaitForTextGone(refusal.message));
        // Back in the box on an emptied secret.
        ASSERT_TRUE(console->WaitFor([&] { return FieldValue(*console, 1).empty() && Drawn(*console, 1); }, 10s,
                                     "the secret emptied and selected"));
        EXPECT_EQ(FieldValue(*console, 0), refusal.name);

        const auto log = root->Matching(Record::Syslog, "]: " + refusal.log);
        ASSERT_EQ(log.size(), 1u);
        EXPECT_NE(log[0].find(" auth.err LANYX["), std::string::npos) << log[0];
        const auto audit = root->Lines(Record::Audit);
        ASSERT_EQ(audit.size(), i + 1);
        EXPECT_TRUE(audit.back().ends_with(" action=lanyx.login user=" + refusal.name +
                                           " service=lanyx success=0 reason=\"" + refusal.auditReason + "\""))
            << audit.back();
        const auto events = root->Lines(Record::Notad);
        ASSERT_EQ(events.size(), i + 1);
        EXPECT_TRUE(events.back().ends_with(std::string(" ") + kFailedEvent + refusal.event)) << events.back();
    }

    // After all that the right password still gets in.
    console->Send(Keys::Up);
    TryLogin(*console, "root", "lanyx-Root1");
    ASSERT_TRUE(console->WaitForText("System Customization"));
    console->Send(Keys::Escape);
    ASSERT_TRUE(AwaitWelcome(*console));
    ASSERT_TRUE(root->WaitForLine(Record::Audit, "action=lanyx.logout"));
    // The PAM stack of the simulated host is complete: no configuration complaint in the log.
    EXPECT_TRUE(root->Matching(Record::Syslog, "_pam_init_handlers").empty());
    const auto success = root->Matching(Record::Syslog, "]: Authentication of user root succeeded");
    ASSERT_EQ(success.size(), 1u);
    EXPECT_NE(success[0].find(" auth.emerg LANYX["), std::string::npos) << success[0];
    const auto loggedIn = root->Matching(Record::Syslog, "]: User root logged in");
    ASSERT_EQ(loggedIn.size(), 1u);
    EXPECT_NE(loggedIn[0].find(" user.info LANYX["), std::string::npos) << loggedIn[0];
    const auto audit = root->Lines(Record::Audit);
    ASSERT_EQ(audit.size(), refusals.size() + 2);
    EXPECT_TRUE(audit[refusals.size()].ends_with(" action=lanyx.login user=root service=lanyx success=1"));
    // Esc in the menu closed the session, with its own record.
    EXPECT_TRUE(audit.back().ends_with(" user=root service=lanyx success=1 reason=\"Session closed\""));
    EXPECT_EQ(root->Lines(Record::Notad).size(), refusals.size());
}

// ---------------------------------------------------------------- hosts of other kinds

TEST_F(Login, SmartCardOpensInPinModeAndThePinGoesToPam)
{
    Use("smartcard");
    auto console = Start();
    ASSERT_TRUE(OpenLogin(*console));
    EXPECT_TRUE(console->Find(kPinHint)) << console->Describe();
    EXPECT_EQ(FieldLabel(*console, 0), "Login Id:");
    EXPECT_EQ(FieldValue(*console, 0), "root");
    EXPECT_EQ(FieldLabel(*console, 1), "PIN:");
    EXPECT_TRUE(Selected(*console, 0));
    EXPECT_EQ(root->Matching(Record::Syslog, "Found smart card with user id 'root'").size(), 1u);
    TryLogin(*console, "root", "lanyx-Root1");
    ASSERT_TRUE(AwaitWelcome(*console));
    EXPECT_TRUE(root->WaitForLine(Record::Audit, "action=lanyx.login user=root service=lanyx success=1"));
}

TEST_F(Login, ClosedConsoleDeniesEvenWithACard)
{
    Use("no-login");
    root->Set("smartcard-user", "root");
    root->Set("domain", "");
    auto console = Start();
    ASSERT_TRUE(OpenRefusal(*console, Keys::F(2)));
    // The box of 60 x 9: message from row 11. An empty domain keeps both dots.
    EXPECT_EQ(Trimmed(Trimmed(console->Text(11, kTextColumn, 54)) + " " + Trimmed(console->Text(12, kTextColumn, 54))),
              "Direct console access has been disabled by the administrator for lanyx-lab01..");
    EXPECT_FALSE(console->Find("Login"));
    // Other keys keep it; Enter and Esc close it, with no record; F12 leads there as well.
    console->Send("a");
    console->Pump(100ms);
    EXPECT_TRUE(console->Find("Authentication Denied"));
    console->Send(Keys::Enter);
    ASSERT_TRUE(AwaitWelcome(*console));
    ASSERT_TRUE(OpenRefusal(*console, Keys::F(12)));
    console->Send(Keys::Escape);
    ASSERT_TRUE(console->WaitForTextGone("Authentication Denied"));
    EXPECT_TRUE(root->Lines(Record::Audit).empty());
}

// ---------------------------------------------------------------- the idle limit

TEST_F(Login, IdleLimitInTheBoxEndsTheRoundWithTheLastUser)
{
    // A limit of 60 seconds is 3 real seconds at twenty times the speed: ample for each step.
    Use("default");
    root->Set("lanyx-timeout", "60");
    auto console = Start("xterm-256color", "+0 x20");
    ASSERT_TRUE(OpenLogin(*console));
    // An expired account gets past the password, so it is the user the time-out names.
    TryLogin(*console, "expired", "expired-Pass1");
    ASSERT_TRUE(console->WaitForText("Password has expired."));
    console->Send(Keys::Enter);
    ASSERT_TRUE(console->WaitForTextGone("Password has expired."));
    ASSERT_TRUE(root->WaitForLine(Record::Syslog, "]: User expired logged out due to time out"));
    ASSERT_TRUE(AwaitWelcome(*console));
    EXPECT_TRUE(root->WaitForLine(Record::Audit,
                                  "action=lanyx.logout user=expired service=lanyx success=1 reason=\"Time out\""));
    // The welcome screen is lit again and takes F2 once more.
    const Cell version = console->CellAt(5, 8);
    EXPECT_TRUE(version.fg.IsIndex(7) && version.bg.IsIndex(6)) << version;
    ASSERT_TRUE(OpenLogin(*console));
}

} // namespace
