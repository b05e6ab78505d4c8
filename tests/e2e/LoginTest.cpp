// The login behind F2 on simulated hosts: the box in both modes, its keys, the keyboard layout
// from the box and from the menu, the PAM outcomes with their records and the closed console.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

// The box of 60 x 13 centred on 80 x 25: title at row 7, message from row 9, the list rows from
// row 13 with their text from column 13, the footer on row 17.
constexpr int kTitleRow = 7, kMessageRow = 9, kListRow = 13, kFooterRow = 17;
constexpr int kBoxColumn = 10, kTextColumn = 13, kRowWidth = 53;
constexpr const char* kTitle = "Authentication Required";
constexpr const char* kPasswordFooter = "<Enter> OK  <Esc> Cancel";
constexpr const char* kPinHint = "<F3> Switch PIN/Password Login";
constexpr const char* kKeyboardMessage = "If you are having difficulty using your keyboard";

// What a field row shows between its brackets, trailing blanks removed.
std::string FieldValue(const Console& console, int line) {
    const std::string row = console.Text(kListRow + line, kTextColumn, kRowWidth);
    const size_t open = row.find(" [ ");
    const size_t close = row.rfind(" ]");
    if (open == std::string::npos || close == std::string::npos || close < open + 3)
        return "<no field: " + row + ">";
    return Trimmed(row.substr(open + 3, close - open - 3));
}

// The label of a field row: what stands before the blanks that lead to the field.
std::string FieldLabel(const Console& console, int line) {
    const std::string row = console.Text(kListRow + line, kTextColumn, kRowWidth);
    return Trimmed(row.substr(0, row.find(" [ ")));
}

// White on black; a terminal without its own palette shows it in reverse instead.
bool Selected(const Console& console, int line) {
    const Cell cell = console.CellAt(kListRow + line, kTextColumn);
    return (cell.bg.IsIndex(0) && cell.fg.IsIndex(7)) || cell.reverse;
}

// The message in the title pane, its two lines joined.
std::string Message(const Console& console, int row = kMessageRow) {
    return Trimmed(console.Text(row, kTextColumn, 54) + " " +
                   console.Text(row + 1, kTextColumn, 54));
}

// The name and the secret typed in turn, each with Enter; from the secret line Up goes back
// to the name first.
bool Attempt(Session& s, const std::string& name, const std::string& secret, bool up = false) {
    return (!up || s.Key(Keys::Up)) && s.Type(name) && s.Key(Keys::Enter) && s.Type(secret) &&
           s.Key(Keys::Enter);
}

// ---------------------------------------------------------------- the box

TEST(Login, PasswordModeLooksAndMoves) {
    Session s;
    Console& console = s.Screen();
    ASSERT_TRUE(s.OpenLogin());
    EXPECT_EQ(console.Find(kTitle), std::make_pair(kTitleRow, kTextColumn)) << console.Describe();
    EXPECT_EQ(Message(console),
              "Enter an authorized login name and password for lanyx-lab01.lab.example.test.");
    // No keyboard line outside console mode: the name is line 0, selected, with the cursor.
    EXPECT_EQ(FieldLabel(console, 0), "Login Name:");
    EXPECT_EQ(FieldValue(console, 0), "root");
    EXPECT_EQ(FieldLabel(console, 1), "Password:");
    EXPECT_EQ(FieldValue(console, 1), "");
    EXPECT_TRUE(Selected(console, 0));
    EXPECT_FALSE(Selected(console, 1));
    EXPECT_TRUE(console.CursorVisible());
    EXPECT_EQ(console.Text(kFooterRow, kBoxColumn + 1, 57),
              std::string(57 - 24, ' ') + kPasswordFooter);
    EXPECT_FALSE(console.Find(kPinHint));

    // Enter on the name moves on without an attempt; Tab on the last line goes back to line 0;
    // each field takes only its own keys.
    ASSERT_TRUE(s.Press({Keys::Enter, "a", "b"}));
    EXPECT_TRUE(Selected(console, 1));
    EXPECT_EQ(FieldValue(console, 1), "**");
    ASSERT_TRUE(s.Press({Keys::Tab, Keys::End, "x"}));
    EXPECT_EQ(FieldValue(console, 0), "rootx");
    ASSERT_TRUE(s.Press({Keys::Down, Keys::Backspace}));
    EXPECT_TRUE(Selected(console, 1));
    EXPECT_EQ(FieldValue(console, 1), "") << "a field entered again is selected whole";
    EXPECT_TRUE(s.Host().Matching(Record::Syslog, "Authentication of user").empty());

    // F3 gives PIN mode and back, each time with the mode's default name; the line stays.
    ASSERT_TRUE(s.Press({Keys::F(3)}));
    EXPECT_EQ(FieldLabel(console, 1), "PIN:");
    EXPECT_TRUE(console.Find(kPinHint));
    EXPECT_EQ(Message(console), "Enter the smart card login PIN for lanyx-lab01.lab.example.test.");
    EXPECT_EQ(FieldLabel(console, 0), "Login Id:");
    EXPECT_EQ(FieldValue(console, 0), "") << "no card: no user id";
    EXPECT_TRUE(Selected(console, 1));
    ASSERT_TRUE(s.Press({Keys::F(3)}));
    EXPECT_EQ(FieldLabel(console, 1), "Password:");
    EXPECT_FALSE(console.Find(kPinHint));
    EXPECT_EQ(FieldValue(console, 0), "root");

    // Esc cancels without a record; the next F2 opens a fresh box.
    s.Key(Keys::Escape);
    ASSERT_TRUE(s.AwaitWelcome());
    EXPECT_FALSE(console.CursorVisible());
    EXPECT_TRUE(s.Host().Lines(Record::Audit).empty());
    ASSERT_TRUE(s.OpenLogin());
    EXPECT_TRUE(Selected(console, 0));
    EXPECT_EQ(FieldValue(console, 1), "");
}

// A plain xterm outside a remote session counts as the machine's own screen: the keyboard line
// comes first, and the layout chosen there applies before anyone has logged in. The menu's own
// keyboard entry then chooses again.
TEST(Login, KeyboardLayoutFromTheLoginBoxThenFromTheMenu) {
    Session s("default", {.settings = {{"keyboard-layout", "Croatian"}}, .term = "xterm"});
    Console& console = s.Screen();
    HostRoot& host = s.Host();
    ASSERT_TRUE(s.OpenLogin());
    EXPECT_EQ(console.Text(kListRow, kTextColumn, kRowWidth), "Configured Keyboard (Croatian)");
    EXPECT_EQ(FieldLabel(console, 1), "Login Name:");
    EXPECT_EQ(FieldLabel(console, 2), "Password:");
    EXPECT_TRUE(Selected(console, 1));
    // Tab on the secret wraps to the keyboard line; a letter there changes nothing, Enter opens
    // the layout choice and Esc there comes back to the box.
    ASSERT_TRUE(s.Press({Keys::Tab, Keys::Tab}));
    EXPECT_TRUE(Selected(console, 0));
    for (std::string_view leave : {Keys::Escape, std::string_view(" ")}) {
        ASSERT_TRUE(s.Press({"q", Keys::Enter}));
        ASSERT_TRUE(console.WaitForText(kKeyboardMessage));
        ASSERT_TRUE(s.Press({leave}));
    }
    // Space ticked the first layout; Enter applies it.
    ASSERT_TRUE(s.Press({Keys::Enter}));
    ASSERT_TRUE(console.WaitForText("Configured Keyboard (Belgian)"));
    EXPECT_EQ(host.State()["keyboard"]["layout"], "Belgian");
    EXPECT_EQ(host.State()["keyboard"]["loaded"], "Belgian");
    EXPECT_EQ(host.Matching(Record::Syslog, "]: Keyboard Layout changed to ").size(), 1u);
    // The box is as before: Down leads to the name, and the login goes on from there.
    ASSERT_TRUE(s.Press({Keys::Down}));
    EXPECT_TRUE(Selected(console, 1));
    EXPECT_EQ(FieldValue(console, 1), "root");
    EXPECT_EQ(FieldValue(console, 2), "");
    ASSERT_TRUE(Attempt(s, "root", kRootPassword));
    ASSERT_TRUE(console.WaitForText("System Customization"));

    struct Round {
        const char* name;
        std::vector<std::string_view> keys;
        std::string layout; // afterwards, loaded and shown in the menu too
    };
    // clang-format off
    const std::vector<Round> rounds = {
        {"Esc changes nothing", {Keys::Down, " ", Keys::Escape}, "Belgian"},
        // Up at the top and letters change nothing; Space on the ticked line keeps it ticked.
        {"Space on the ticked line", {Keys::Up, "x", " ", Keys::Enter}, "Belgian"},
        {"Space ticks the selected line", {Keys::Down, " ", Keys::Enter}, "Brazilian"},
        // Moving alone ticks nothing: Enter applies the ticked layout again, with its log line.
        {"moving alone ticks nothing", {Keys::Down, Keys::Down, Keys::Down, Keys::Enter}, "Brazilian"},
    };
    // clang-format on
    std::string ticked = "Belgian";
    for (const Round& round : rounds) {
        SCOPED_TRACE(round.name);
        ASSERT_TRUE(s.OpenEntry("Configure Keyboard"));
        ASSERT_TRUE(console.WaitForText(kKeyboardMessage));
        EXPECT_TRUE(console.Find("(o) " + ticked)) << console.Describe();
        EXPECT_TRUE(console.Find("( ) Croatian"));
        for (std::string_view key : round.keys)
            ASSERT_TRUE(s.Press({key}));
        ASSERT_TRUE(console.WaitForTextGone(kKeyboardMessage));
        ASSERT_TRUE(s.Settle());
        EXPECT_EQ(host.State()["keyboard"]["layout"], round.layout);
        EXPECT_EQ(host.State()["keyboard"]["loaded"], round.layout);
        EXPECT_TRUE(console.Find(round.layout)) << console.Describe();
        ticked = round.layout;
    }
    for (const auto& [layout, times] : {std::pair{"Belgian", 2u}, std::pair{"Brazilian", 2u}})
        EXPECT_EQ(
            host.Matching(Record::Syslog, std::string("]: Keyboard Layout changed to ") + layout)
                .size(),
            times)
            << layout;
}

// ---------------------------------------------------------------- the attempt

TEST(Login, RefusalsThenSuccessWithTheirRecords) {
    struct Refusal {
        std::string name, secret, log, auditReason, event, message;
    };
    const std::string invalid = "Invalid login or password.";
    // clang-format off
    const std::vector<Refusal> refusals = {
        {"root", "wrong-Pass1", "Authentication of user root failed", "Invalid login", "Authentication of user root failed", invalid},
        {"guest", "guest-Pass1", "Access denied for user guest", "No permission", "Access denied for user guest",
         "User does not have permission to login to LANYX."},
        {"expired", "expired-Pass1", "Password has expired for user expired", "Password expired", "Access denied for user expired",
         "You will be prompted to set a new password and then login again."},
        // An empty secret goes to PAM like any other.
        {"nobody", "", "Authentication of user nobody failed", "Invalid login", "Authentication of user nobody failed", invalid},
    };
    // clang-format on
    Session s;
    Console& console = s.Screen();
    HostRoot& host = s.Host();
    ASSERT_TRUE(s.OpenLogin());
    // One box for all: the attempt repeats without limit.
    for (size_t i = 0; i < refusals.size(); ++i) {
        const Refusal& refusal = refusals[i];
        SCOPED_TRACE(refusal.name);
        ASSERT_TRUE(Attempt(s, refusal.name, refusal.secret, i > 0));
        ASSERT_TRUE(console.WaitForText(refusal.message));
        EXPECT_TRUE(console.Find("Authentication failed"));
        // Other keys leave the message open; Enter closes it.
        ASSERT_TRUE(s.Press({"x"}));
        EXPECT_TRUE(console.Find(refusal.message));
        ASSERT_TRUE(s.Press({Keys::Enter}));
        if (refusal.name == "expired") {
            // The password change comes next; its own tests go through it.
            EXPECT_TRUE(console.WaitForText("Old Password:"));
            ASSERT_TRUE(s.Press({Keys::Escape}));
        }
        // Back in the box on an emptied secret.
        EXPECT_FALSE(console.Find(refusal.message));
        EXPECT_TRUE(Selected(console, 1));
        EXPECT_EQ(FieldValue(console, 1), "");
        EXPECT_EQ(FieldValue(console, 0), refusal.name);
        EXPECT_TRUE(console.CursorVisible()) << "the secret has the cursor again";

        const auto log = host.Matching(Record::Syslog, "]: " + refusal.log);
        ASSERT_EQ(log.size(), 1u);
        EXPECT_NE(log[0].find(" auth.err LANYX["), std::string::npos) << log[0];
        const auto audit = host.Lines(Record::Audit);
        ASSERT_EQ(audit.size(), i + 1);
        EXPECT_TRUE(audit.back().ends_with(" action=lanyx.login user=" + refusal.name +
                                           " service=lanyx success=0 reason=\"" +
                                           refusal.auditReason + "\""))
            << audit.back();
        const auto events = host.Lines(Record::Notad);
        ASSERT_EQ(events.size(), i + 1);
        EXPECT_TRUE(
            events.back().ends_with(" @&!*@*@(nota.user.lanyx.login.failed)" + refusal.event))
            << events.back();
    }

    // After all that the right password still gets in; Esc in the menu ends the session.
    ASSERT_TRUE(Attempt(s, "root", kRootPassword, true));
    ASSERT_TRUE(console.WaitForText("System Customization"));
    s.Key(Keys::Escape);
    ASSERT_TRUE(s.AwaitWelcome());
    ASSERT_TRUE(host.WaitForLine(Record::Audit, "action=lanyx.logout"));
    // The PAM stack of the simulated host is complete: no configuration complaint in the log.
    EXPECT_TRUE(host.Matching(Record::Syslog, "_pam_init_handlers").empty());
    for (const auto& [message, priority] :
         {std::pair{"Authentication of user root succeeded", " auth.emerg "},
          std::pair{"User root logged in", " user.info "},
          std::pair{"User root logged out", " user.info "}}) {
        const auto lines = host.Matching(Record::Syslog, std::string("]: ") + message);
        ASSERT_EQ(lines.size(), 1u) << message;
        EXPECT_NE(lines[0].find(priority), std::string::npos) << lines[0];
    }
    const auto audit = host.Lines(Record::Audit);
    ASSERT_EQ(audit.size(), refusals.size() + 2);
    EXPECT_TRUE(
        audit[refusals.size()].ends_with(" action=lanyx.login user=root service=lanyx success=1"));
    EXPECT_TRUE(
        audit.back().ends_with(" user=root service=lanyx success=1 reason=\"Session closed\""));
    EXPECT_EQ(host.Lines(Record::Notad).size(), refusals.size());
}

// ---------------------------------------------------------------- hosts of other kinds

TEST(Login, SmartCardOpensInPinModeAndThePinGoesToPam) {
    Session s("smartcard");
    Console& console = s.Screen();
    ASSERT_TRUE(s.OpenLogin());
    EXPECT_TRUE(console.Find(kPinHint)) << console.Describe();
    EXPECT_EQ(FieldLabel(console, 0), "Login Id:");
    EXPECT_EQ(FieldValue(console, 0), "root");
    EXPECT_EQ(FieldLabel(console, 1), "PIN:");
    EXPECT_TRUE(Selected(console, 0));
    EXPECT_EQ(s.Host().Matching(Record::Syslog, "Found smart card with user id 'root'").size(), 1u);
    ASSERT_TRUE(Attempt(s, "root", kRootPassword));
    ASSERT_TRUE(s.AwaitWelcome());
    EXPECT_TRUE(s.Host().WaitForLine(Record::Audit,
                                     "action=lanyx.login user=root service=lanyx success=1"));
}

TEST(Login, ClosedConsoleDeniesEvenWithACard) {
    Session s("no-login", {.settings = {{"smartcard-user", "root"}, {"domain", ""}}});
    Console& console = s.Screen();
    ASSERT_TRUE(s.AwaitWelcome());
    // F2 and F12 lead there; other keys keep it; Enter and Esc close it, with no record.
    for (std::string_view open : {Keys::F(2), Keys::F(12)}) {
        ASSERT_TRUE(s.Press({open}));
        ASSERT_TRUE(console.Find("Authentication Denied")) << console.Describe();
        // The box of 60 x 9: message from row 11. An empty domain keeps both dots.
        EXPECT_EQ(Message(console, 11),
                  "Direct console access has been disabled by the administrator for lanyx-lab01..");
        EXPECT_FALSE(console.Find("Login"));
        ASSERT_TRUE(s.Press({"a"}));
        EXPECT_TRUE(console.Find("Authentication Denied"));
        s.Key(open == Keys::F(2) ? Keys::Enter : Keys::Escape);
        ASSERT_TRUE(s.AwaitWelcome());
    }
    EXPECT_TRUE(s.Host().Lines(Record::Audit).empty());
}

} // namespace
