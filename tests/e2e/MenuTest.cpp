// The System Customization menu after a login on simulated hosts: entries and greyed ones, the
// right pane of the selected entry, the support pages, the log table and the pager.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Console.hpp"
#include "harness/HostRoot.hpp"

using namespace LanyxE2E;

namespace {

// On 80 x 25: list text from row 4, column 3; right pane text from row 4, column 42, 36 cells;
// titles on row 1, footers on row 22.
constexpr int kTop = 4, kListColumn = 3, kDetailColumn = 42;

std::string Trimmed(std::string text)
{
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::string RightTitle(const Console& console) { return Trimmed(console.Text(1, kDetailColumn, 34)); }
std::string RightFooter(const Console& console) { return Trimmed(console.Text(22, 41, 37)); }

bool Greyed(const Console& console, int line)
{
    const Cell cell = console.CellAt(kTop + line, kListColumn);
    return cell.bg.IsIndex(3) && cell.fg.IsIndex(6);
}

// The list (or the right pane) as shown, lines joined with '\n', trailing empty lines dropped.
std::string Column(const Console& console, int column, int width)
{
    std::string text;
    for (int row = kTop; row < kTop + 18; ++row)
        text += Trimmed(console.Text(row, column, width)) + "\n";
    return text.erase(text.find_last_not_of('\n') + 1);
}

std::string Detail(const Console& console) { return Column(console, kDetailColumn, 36); }

class Menu : public ::testing::Test {
protected:
    // Starts the console on `profile` and logs in as root, up to the menu.
    std::unique_ptr<Console> LogIn(const std::string& profile, const std::string& term = "xterm-256color",
                                   const std::string& idleLimit = "", const std::string& faketime = "")
    {
        root = std::make_unique<HostRoot>(profile);
        if (!idleLimit.empty())
            root->Set("lanyx-timeout", idleLimit);
        ConsoleOptions options = LanyxOptions(root->Path());
        options.term = term;
        options.faketime = faketime;
        auto console = std::make_unique<Console>(options);
        EXPECT_TRUE(console->WaitForFullScreen("<F2> Customize System/View Logs"));
        // Keys typed while a screen opens are dropped, so F2 is repeated until the box shows.
        EXPECT_TRUE(console->WaitFor(
            [&] {
                console->Send(Keys::F(2));
                console->Pump(300ms);
                return console->Find("[ root").has_value();
            },
            10s, "the login box"));
        console->Send(Keys::Enter);
        EXPECT_TRUE(console->WaitFor([&] { return console->Find("Password: ").has_value(); }, 10s, "the password"));
        console->Send("lanyx-Root1");
        EXPECT_TRUE(console->WaitForText("***********"));
        console->Send(Keys::Enter);
        EXPECT_TRUE(AwaitEntry(*console, "Configure Password"));
        return console;
    }

    // Entry `title` selected and drawn whole: a move blanks the left footer, which comes last.
    static ::testing::AssertionResult AwaitEntry(Console& console, const std::string& title)
    {
        return console.WaitFor(
            [&] {
                return console.Text(1, 3, 20) == "System Customization" && RightTitle(console) == title &&
                       !Trimmed(console.Text(22, 2, 37)).empty() && !console.Row(24).empty();
            },
            10s, "entry \"" + title + "\"");
    }

    // One key at a time until `title` is selected; fails where a key no longer moves.
    static ::testing::AssertionResult MoveTo(Console& console, const std::string& title,
                                             std::string_view key = Keys::Down)
    {
        while (RightTitle(console) != title) {
            const std::string before = RightTitle(console);
            console.Send(key);
            if (!console.WaitFor([&] { return RightTitle(console) != before; }, 5s, "a move from " + before))
                return ::testing::AssertionFailure() << "no entry \"" << title << "\" below \"" << before << "\"";
        }
        return AwaitEntry(console, title);
    }

    std::unique_ptr<HostRoot> root;
};

const std::string kDefaultList =
    "Configure Password\nConfigure Lockdown Mode\n\nConfigure Management Network\nRestart Management Network\n"
    "Test Management Network\nNetwork Restore Options\n\nTroubleshooting Options\n\nView System Logs\n\n"
    "View Support Information\n\nReset System Configuration";

// ---------------------------------------------------------------- entries and panes

TEST_F(Menu, DefaultHostMenuAfterLoginAndLogout)
{
    auto console = LogIn("default");
    EXPECT_EQ(Column(*console, kListColumn, 35), kDefaultList) << console->Describe();
    EXPECT_EQ(Detail(*console), "Set\n\nTo prevent unauthorized access to\nthis system, set the password for\nthe user.");
    EXPECT_EQ(RightFooter(*console), "<Enter> Change          <Esc> Log Out");
    EXPECT_EQ(Trimmed(console->Text(22, 2, 37)), "<Up/Down> Select");
    EXPECT_TRUE(console->Row(24).find("Zephora Ostra 8.0.3 (Tessel 8.0.3 Build ") != std::string::npos);
    EXPECT_TRUE(console->CellAt(kTop, kDetailColumn).fg.IsIndex(7)) << "the value in white";

    ASSERT_TRUE(MoveTo(*console, "Configure Lockdown Mode"));
    EXPECT_TRUE(Detail(*console).starts_with("Disabled\n\nWhen enabled, lockdown mode")) << console->Describe();
    ASSERT_TRUE(MoveTo(*console, "Reset System Configuration"));
    EXPECT_EQ(RightFooter(*console), "<Enter> Reset           <Esc> Log Out");
    console->Send(Keys::Escape);
    EXPECT_TRUE(console->WaitForText("To manage this host, go to:"));
    // Its audit record is the login tests' matter.
    EXPECT_TRUE(root->WaitForLine(Record::Syslog, "]: User root logged out"));
}

TEST_F(Menu, IdleLimitEndsTheSessionWithItsRecords)
{
    // 120 seconds of the console's clock are 6 real seconds at twenty times the speed: room for
    // the login, which keys keep alive, and the menu, which nobody touches.
    const auto start = std::chrono::steady_clock::now();
    auto console = LogIn("default", "xterm-256color", "120", "+0 x20");
    ASSERT_TRUE(root->WaitForLine(Record::Syslog, "]: User root logged out due to time out", 20s));
    // The limit runs from the last key, typed after the start: it cannot end any sooner.
    EXPECT_GE(std::chrono::steady_clock::now() - start, 5900ms);
    EXPECT_TRUE(console->WaitForText("To manage this host, go to:"));
    EXPECT_TRUE(root->WaitForLine(Record::Audit,
                                  "action=lanyx.logout user=root service=lanyx success=1 reason=\"Time out\""));
    EXPECT_TRUE(root->Matching(Record::Syslog, "]: User root logged out\n").empty());
    EXPECT_TRUE(console->Running());
}

TEST_F(Menu, EntriesGreyedAndSkippedByHost)
{
    struct Case {
        std::string profile, term;
        std::vector<int> greyed;        // list lines
        std::vector<std::string> walk;  // what Down selects, from the first entry to the last it reaches
    };
    const std::vector<Case> cases = {
        {"pxe-boot", "xterm-256color", {14}, {"Configure Lockdown Mode", "Configure Management Network",
                                              "Restart Management Network", "Test Management Network",
                                              "Network Restore Options", "Troubleshooting Options", "View System Logs",
                                              "View Support Information"}},
        {"no-nics", "xterm-256color", {3, 4, 5}, {"Configure Lockdown Mode", "Network Restore Options"}},
        // A plain xterm counts as the machine's own screen: the keyboard line comes in.
        {"default", "xterm", {}, {"Configure Lockdown Mode", "Configure Management Network",
                                  "Restart Management Network", "Test Management Network", "Network Restore Options",
                                  "Configure Keyboard", "Troubleshooting Options"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.profile + " on " + c.term);
        auto console = LogIn(c.profile, c.term);
        for (int line = 0; line < 17; ++line)
            EXPECT_EQ(Greyed(*console, line), std::ranges::count(c.greyed, line) == 1) << line;
        for (const std::string& title : c.walk) {
            const std::string before = RightTitle(*console);
            console->Send(Keys::Down);
            ASSERT_TRUE(console->WaitFor([&] { return RightTitle(*console) != before; }, 5s, "a move"));
            ASSERT_TRUE(AwaitEntry(*console, title));
            if (title == "Configure Keyboard") {
                EXPECT_EQ(Detail(*console), "US Default\n\nTo select the layout type for the\nkeyboard of this host, "
                                            "press\n<Enter>.");
            }
        }
        if (c.profile == "pxe-boot") {
            // Down stays on the support line, so Up leads to the logs and not back to it.
            console->Send(Keys::Down);
            console->Send(Keys::Up);
            EXPECT_TRUE(AwaitEntry(*console, "View System Logs"));
        }
    }
}

TEST_F(Menu, ManagementNetworkSummary)
{
    const std::string help = "To view or modify this host's\nmanagement network settings in\ndetail, press <Enter>.";
    const std::string head = "Hostname:\nlanyx-lab01\n\nIPv4 Address:\n";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"default", head + "192.168.10.21\n\nIPv6 Addresses:\nfe80::250:56ff:fe6a:1001/64\n\n" + help},
        {"dhcp", head + "192.168.10.57\n\nNetwork identity acquired from DHCP\nserver 192.168.10.254\n\n"
                        "IPv6 Addresses:\nfe80::250:56ff:fe6a:1001/64\n\n" + help},
        // Of six addresses, two and a mark.
        {"ipv6", head + "192.168.10.21\n\nIPv6 Addresses:\nfe80::250:56ff:fe6a:1001/64\n2001:db8:10::21/64\n...\n\n" +
                     help},
    };
    for (const auto& [profile, summary] : cases) {
        SCOPED_TRACE(profile);
        auto console = LogIn(profile);
        ASSERT_TRUE(MoveTo(*console, "Configure Management Network"));
        EXPECT_EQ(Detail(*console), summary) << console->Describe();
        EXPECT_EQ(RightFooter(*console), "<Enter> More            <Esc> Log Out");
    }

    // A failing host library: the summary says so, and the restart entry names the failure.
    auto console = LogIn("default");
    root->Fault({"lib", "NetworkInfoImpl::GetManagementInterface", "simulated failure"});
    ASSERT_TRUE(MoveTo(*console, "Configure Management Network"));
    EXPECT_TRUE(Detail(*console).starts_with("Hostname:\nUnknown\n\nIPv4 Address:\nUnknown\n\nIPv6 Addresses:\n"
                                             "Unknown\n\n"))
        << console->Describe();
    ASSERT_TRUE(MoveTo(*console, "Restart Management Network"));
    console->Send(Keys::Enter);
    ASSERT_TRUE(console->WaitForText("Operation on the management network interface failed."));
    EXPECT_TRUE(console->Find("Restart Management Network: Error"));
    console->Send(Keys::Enter);
    EXPECT_TRUE(console->WaitForTextGone("Restart Management Network: Error"));
}

// ---------------------------------------------------------------- support pages and logs

TEST_F(Menu, SupportPagesTurnAndStartOverOnReturn)
{
    auto console = LogIn("default");
    ASSERT_TRUE(MoveTo(*console, "View Support Information"));
    EXPECT_EQ(RightFooter(*console), "                        <Esc> Log Out");
    const auto header = [&] { return Trimmed(console->Text(kTop, kDetailColumn, 36)); };
    const auto white = [&](int column) { return console->CellAt(kTop, kDetailColumn + column).fg.IsIndex(7); };
    const auto page = [&](const std::string& number) {
        return console->WaitFor([&] { return header() == "<Page Up>       " + number + "     <Page Down>"; }, 5s,
                                "page " + number);
    };
    ASSERT_TRUE(page("1/3"));
    EXPECT_TRUE(!white(0) && white(16) && white(24)) << "Page Up grey on the first page";
    console->Send(Keys::PageDown);
    ASSERT_TRUE(page("2/3"));
    EXPECT_TRUE(white(0));
    console->Send(Keys::PageDown);
    ASSERT_TRUE(page("3/3"));
    EXPECT_FALSE(white(24)) << "Page Down grey on the last page";
    EXPECT_EQ(Detail(*console), "<Page Up>       3/3     <Page Down>\nOn the web\n\nKnowledge base:\n"
                                "https://support.example.test/kb");
    // Page Down at the end does nothing; leaving the entry and coming back starts at page 1.
    console->Send(Keys::PageDown);
    console->Send(Keys::PageUp);
    ASSERT_TRUE(page("2/3"));
    console->Send(Keys::Up);
    ASSERT_TRUE(AwaitEntry(*console, "View System Logs"));
    console->Send(Keys::PageDown);
    console->Send(Keys::Down);
    ASSERT_TRUE(AwaitEntry(*console, "View Support Information"));
    EXPECT_TRUE(page("1/3"));
}

TEST_F(Menu, LogTableNumbersThePresentLogsAndThePagerComesBack)
{
    auto console = LogIn("default");
    std::filesystem::remove(root->File("/var/log/tessel.log"));
    ASSERT_TRUE(MoveTo(*console, "View System Logs"));
    EXPECT_EQ(Detail(*console), "<1> Syslog\n<2> Config\n<3> Management Agent (helmd)\n"
                                "<4> High Availibility Agent (cairnd)\n<5> Zephora Ostra Observation log\n(notad)\n\n"
                                "Press the corresponding key to view\na log.\nPress <Q> to return to this screen.");

    // A digit without a row, and digits on other entries, do nothing.
    console->Send("6");
    ASSERT_TRUE(MoveTo(*console, "Troubleshooting Options", Keys::Up));
    console->Send("2");
    ASSERT_TRUE(MoveTo(*console, "View System Logs"));
    EXPECT_FALSE(console->Find("sysboot:"));

    // The second row on the screen is the third log; the pager refuses a shell.
    console->Send("2");
    ASSERT_TRUE(console->WaitForText("sysboot: Loading configuration from /bootbank/state.tgz"));
    ASSERT_TRUE(console->WaitForText("<Q> Quit </> RegExp Search <H> Help"));
    console->Send("!");
    ASSERT_TRUE(console->WaitForText("Command not available"));
    console->Send(Keys::Enter);
    ASSERT_TRUE(console->WaitForTextGone("Command not available"));
    // Keys typed while the menu lights up again are dropped; the clear of the whole screen comes
    // after that, so once it is seen with the menu, keys count again.
    const size_t mark = console->Transcript().size();
    console->Send("q");
    ASSERT_TRUE(console->WaitFor([&] { return console->Transcript().find("\x1b[H\x1b[2J", mark) != std::string::npos; },
                                 10s, "the screen cleared for the repaint"));
    ASSERT_TRUE(AwaitEntry(*console, "View System Logs"));
    EXPECT_FALSE(console->Find("sysboot:"));
    EXPECT_EQ(Column(*console, kListColumn, 35), kDefaultList);
    console->Send(Keys::Down);
    EXPECT_TRUE(AwaitEntry(*console, "View Support Information"));
    EXPECT_EQ(console->Modes().c_lflag & ECHO, 0u) << "the console's terminal modes are back";
}

} // namespace
