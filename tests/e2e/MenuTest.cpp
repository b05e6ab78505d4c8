// The System Customization menu after a login on simulated hosts: entries and greyed ones, the
// right pane of the selected entry, the support pages, the log table and the pager.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

// The right pane's first text cell on 80 x 25.
constexpr int kTop = 4, kDetailColumn = 42;

// The console on `profile` after a login as root, the first entry selected.
std::unique_ptr<Session> LogIn(const std::string& profile = "default",
                               SessionOptions options = {}) {
    auto s = std::make_unique<Session>(profile, std::move(options));
    EXPECT_TRUE(s->LogIn());
    EXPECT_EQ(s->RightTitle(), "Configure Password");
    return s;
}

const std::string kDefaultList = "Configure Password\nConfigure Lockdown Mode\n\nConfigure "
                                 "Management Network\nRestart Management Network\n"
                                 "Test Management Network\nNetwork Restore "
                                 "Options\n\nTroubleshooting Options\n\nView System Logs\n\n"
                                 "View Support Information\n\nReset System Configuration";

// ---------------------------------------------------------------- entries and panes

TEST(Menu, DefaultHostMenuAfterLoginAndLogout) {
    auto s = LogIn();
    Console& console = s->Screen();
    EXPECT_EQ(s->List(), kDefaultList) << console.Describe();
    EXPECT_EQ(
        s->Detail(),
        "Set\n\nTo prevent unauthorized access to\nthis system, set the password for\nthe user.");
    EXPECT_EQ(s->RightFooter(), "<Enter> Change          <Esc> Log Out");
    EXPECT_EQ(console.Text(22, 2, 37), "<Up/Down> Select");
    EXPECT_TRUE(console.Row(24).find("Zephora Ostra 8.0.3 (Tessel 8.0.3 Build ") !=
                std::string::npos);
    EXPECT_TRUE(console.CellAt(kTop, kDetailColumn).fg.IsIndex(7)) << "the value in white";

    ASSERT_TRUE(s->SelectEntry("Configure Lockdown Mode"));
    EXPECT_TRUE(s->Detail().starts_with("Disabled\n\nWhen enabled, lockdown mode"))
        << console.Describe();
    ASSERT_TRUE(s->SelectEntry("Reset System Configuration"));
    EXPECT_EQ(s->RightFooter(), "<Enter> Reset           <Esc> Log Out");
    s->Key(Keys::Escape);
    EXPECT_TRUE(s->AwaitWelcome());
}

TEST(Menu, EntriesGreyedAndSkippedByHost) {
    struct Case {
        std::string profile, term;
        std::vector<int> greyed;       // list lines
        std::string from;              // the entry the walk starts on
        std::vector<std::string> walk; // what Down selects from there
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"pxe-boot", "xterm-256color", {14}, "View System Logs", {"View Support Information", "View Support Information"}},
        {"no-nics", "xterm-256color", {3, 4, 5}, "Configure Password", {"Configure Lockdown Mode", "Network Restore Options"}},
        // A plain xterm counts as the machine's own screen: the keyboard line comes in.
        {"default", "xterm", {}, "Network Restore Options", {"Configure Keyboard", "Troubleshooting Options"}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.profile + " on " + c.term);
        auto s = LogIn(c.profile, {.term = c.term});
        for (int line = 0; line < 17; ++line)
            EXPECT_EQ(s->Greyed(line), std::ranges::count(c.greyed, line) == 1) << line;
        ASSERT_TRUE(s->SelectEntry(c.from));
        for (const std::string& title : c.walk) {
            ASSERT_TRUE(s->Press({Keys::Down}));
            ASSERT_EQ(s->RightTitle(), title);
            if (title == "Configure Keyboard") {
                EXPECT_EQ(s->Detail(),
                          "US Default\n\nTo select the layout type for the\nkeyboard of this host, "
                          "press\n<Enter>.");
            }
        }
    }
}

TEST(Menu, ManagementNetworkSummary) {
    const std::string help =
        "To view or modify this host's\nmanagement network settings in\ndetail, press <Enter>.";
    const std::string head = "Hostname:\nlanyx-lab01\n\nIPv4 Address:\n";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"default",
         head + "192.168.10.21\n\nIPv6 Addresses:\nfe80::250:56ff:fe6a:1001/64\n\n" + help},
        {"dhcp",
         head +
             "192.168.10.57\n\nNetwork identity acquired from DHCP\nserver 192.168.10.254\n\n"
             "IPv6 Addresses:\nfe80::250:56ff:fe6a:1001/64\n\n" +
             help},
        // Of six addresses, two and a mark.
        {"ipv6", head +
                     "192.168.10.21\n\nIPv6 "
                     "Addresses:\nfe80::250:56ff:fe6a:1001/64\n2001:db8:10::21/64\n...\n\n" +
                     help},
    };
    for (const auto& [profile, summary] : cases) {
        SCOPED_TRACE(profile);
        auto s = LogIn(profile);
        ASSERT_TRUE(s->SelectEntry("Configure Management Network"));
        EXPECT_EQ(s->Detail(), summary) << s->Screen().Describe();
        EXPECT_EQ(s->RightFooter(), "<Enter> More            <Esc> Log Out");
    }

    // A failing host library: the summary says so, and the restart entry names the failure.
    auto s = LogIn();
    Console& console = s->Screen();
    s->Host().Fault({"lib", "NetworkInfoImpl::GetManagementInterface", "simulated failure"});
    ASSERT_TRUE(s->SelectEntry("Configure Management Network"));
    EXPECT_TRUE(
        s->Detail().starts_with("Hostname:\nUnknown\n\nIPv4 Address:\nUnknown\n\nIPv6 Addresses:\n"
                                "Unknown\n\n"))
        << console.Describe();
    ASSERT_TRUE(s->OpenEntry("Restart Management Network"));
    EXPECT_TRUE(console.Find("Operation on the management network interface failed."))
        << console.Describe();
    EXPECT_TRUE(console.Find("Restart Management Network: Error"));
    s->Key(Keys::Enter);
    ASSERT_TRUE(s->Settle());
    EXPECT_FALSE(console.Find("Restart Management Network: Error"));
}

// ---------------------------------------------------------------- support pages and logs

TEST(Menu, SupportPagesTurnAndStartOverOnReturn) {
    auto s = LogIn();
    Console& console = s->Screen();
    ASSERT_TRUE(s->SelectEntry("View Support Information"));
    EXPECT_EQ(s->RightFooter(), "                        <Esc> Log Out");
    const auto white = [&](int column) {
        return console.CellAt(kTop, kDetailColumn + column).fg.IsIndex(7);
    };
    // After each key, the page the header names.
    const auto page = [&](std::string_view key, const std::string& number) {
        if (!key.empty())
            s->Key(key);
        EXPECT_TRUE(s->Settle());
        return console.Text(kTop, kDetailColumn, 36) ==
               "<Page Up>       " + number + "     <Page Down>";
    };
    ASSERT_TRUE(page("", "1/3"));
    EXPECT_TRUE(!white(0) && white(16) && white(24)) << "Page Up grey on the first page";
    ASSERT_TRUE(page(Keys::PageDown, "2/3"));
    EXPECT_TRUE(white(0));
    ASSERT_TRUE(page(Keys::PageDown, "3/3"));
    EXPECT_FALSE(white(24)) << "Page Down grey on the last page";
    EXPECT_EQ(s->Detail(), "<Page Up>       3/3     <Page Down>\nOn the web\n\nKnowledge base:\n"
                           "https://support.example.test/kb");
    // Page Down at the end does nothing; leaving the entry and coming back starts at page 1.
    ASSERT_TRUE(page(Keys::PageDown, "3/3"));
    ASSERT_TRUE(page(Keys::PageUp, "2/3"));
    ASSERT_TRUE(s->SelectEntry("View System Logs"));
    s->Key(Keys::PageDown);
    ASSERT_TRUE(s->SelectEntry("View Support Information"));
    EXPECT_TRUE(page("", "1/3"));
}

TEST(Menu, LogTableNumbersThePresentLogsAndThePagerComesBack) {
    auto s = LogIn();
    Console& console = s->Screen();
    s->Host().Remove("/var/log/tessel.log");
    ASSERT_TRUE(s->SelectEntry("View System Logs"));
    EXPECT_EQ(s->Detail(),
              "<1> Syslog\n<2> Config\n<3> Management Agent (helmd)\n"
              "<4> High Availibility Agent (cairnd)\n<5> Zephora Ostra Observation log\n(notad)\n\n"
              "Press the corresponding key to view\na log.\nPress <Q> to return to this screen.");

    // A digit without a row, and digits on other entries, do nothing.
    s->Key("6");
    ASSERT_TRUE(s->SelectEntry("Troubleshooting Options"));
    s->Key("2");
    ASSERT_TRUE(s->SelectEntry("View System Logs"));
    EXPECT_FALSE(console.Find("sysboot:"));

    // The second row on the screen is the third log; the pager refuses a shell, leaves its
    // follow mode on Ctrl-C and gives the terminal back on q.
    s->Key("2");
    ASSERT_TRUE(console.WaitForText("<Q> Quit </> RegExp Search <H> Help"));
    EXPECT_TRUE(console.Find("sysboot: Loading configuration from /bootbank/state.tgz"));
    s->Key("!");
    ASSERT_TRUE(console.WaitForText("Command not available"));
    s->Key(Keys::Enter);
    ASSERT_TRUE(console.WaitForTextGone("Command not available"));
    // Follow mode ends only on an interrupt: Ctrl-C reaches the pager, and not the console.
    s->Key("F");
    ASSERT_TRUE(console.WaitForText("Waiting for data... (interrupt to abort)"));
    console.Send("\x03");
    ASSERT_TRUE(console.WaitForTextGone("Waiting for data"));
    s->Key("q");
    ASSERT_TRUE(console.WaitForText("System Customization"));
    ASSERT_TRUE(s->Settle());
    EXPECT_EQ(s->RightTitle(), "View System Logs");
    EXPECT_FALSE(console.Find("sysboot:"));
    EXPECT_EQ(s->List(), kDefaultList);
    ASSERT_TRUE(s->SelectEntry("View Support Information"));
    EXPECT_EQ(console.Modes().c_lflag & ECHO, 0u) << "the console's terminal modes are back";
}

} // namespace
