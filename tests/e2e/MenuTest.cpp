// The System Customization menu after a login on simulated hosts: its entries and the greyed
// ones, the right pane of the selected entry, the support pages, the log table and the pager.
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "harness/Console.hpp"
#include "harness/HostRoot.hpp"

using namespace LanyxE2E;

namespace {

// The two panes on 80 x 25: list rows from row 4 with their text from column 3, the right pane's
// text from column 42 in 36 cells, titles on row 1, footers on row 22.
constexpr int kListRow = 4, kListColumn = 3, kListWidth = 35;
constexpr int kDetailRow = 4, kDetailColumn = 42, kDetailWidth = 36, kDetailRows = 18;
constexpr int kTitleRow = 1, kFooterRow = 22;
constexpr const char* kMenuTitle = "System Customization";

std::string Trimmed(std::string text)
{
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

std::string ListLine(const Console& console, int line)
{
    return Trimmed(console.Text(kListRow + line, kListColumn, kListWidth));
}

// The list as shown, one entry a line, blank lines kept, up to the last entry.
std::vector<std::string> ListLines(const Console& console)
{
    std::vector<std::string> lines;
    for (int line = 0; line < 18; ++line)
        lines.push_back(ListLine(console, line));
    while (!lines.empty() && lines.back().empty())
        lines.pop_back();
    return lines;
}

bool Selected(const Console& console, int line)
{
    const Cell cell = console.CellAt(kListRow + line, kListColumn);
    return cell.bg.IsIndex(0) && cell.fg.IsIndex(7);
}

bool Greyed(const Console& console, int line)
{
    const Cell cell = console.CellAt(kListRow + line, kListColumn);
    return cell.bg.IsIndex(3) && cell.fg.IsIndex(6);
}

// The right pane's text, its lines joined with '\n', trailing empty lines dropped.
std::string Detail(const Console& console)
{
    std::string text;
    int kept = 0;
    std::vector<std::string> lines;
    for (int row = 0; row < kDetailRows; ++row) {
        lines.push_back(Trimmed(console.Text(kDetailRow + row, kDetailColumn, kDetailWidth)));
        if (!lines.back().empty())
            kept = row + 1;
    }
    for (int row = 0; row < kept; ++row)
        text += (row ? "\n" : "") + lines[static_cast<size_t>(row)];
    return text;
}

std::string RightTitle(const Console& console) { return Trimmed(console.Text(kTitleRow, kDetailColumn, 34)); }
std::string RightFooter(const Console& console) { return Trimmed(console.Text(kFooterRow, 41, 37)); }
std::string LeftFooter(const Console& console) { return Trimmed(console.Text(kFooterRow, 2, 37)); }

class Menu : public ::testing::Test {
protected:
    void Use(const std::string& profile) { root = std::make_unique<HostRoot>(profile); }

    // Starts the console and logs in as root, up to the menu with its first entry selected.
    std::unique_ptr<Console> LogIn(const std::string& term = "xterm-256color")
    {
        if (!root)
            Use("default");
        ConsoleOptions options = LanyxOptions(root->Path());
        options.term = term;
        auto console = std::make_unique<Console>(options);
        EXPECT_TRUE(console->WaitFor([&] { return console->CellAt(24, 79).text == "┘"; }, 10s, "the welcome screen"));
        // Keys typed while a screen opens are dropped, so F2 is repeated until the box shows.
        EXPECT_TRUE(console->WaitFor(
            [&] {
                if (console->Find("Authentication Required"))
                    return true;
                console->Send(Keys::F(2));
                console->Pump(300ms);
                return console->Find("Authentication Required").has_value();
            },
            10s, "the login box"));
        EXPECT_TRUE(console->WaitFor([&] { return console->Find("[ root").has_value(); }, 10s, "the name field"));
        console->Send(Keys::Enter);
        EXPECT_TRUE(console->WaitFor([&] { return console->Find("Password: ").has_value(); }, 10s, "the password field"));
        console->Send("lanyx-Root1");
        EXPECT_TRUE(console->WaitForText("***********"));
        console->Send(Keys::Enter);
        EXPECT_TRUE(AwaitEntry(*console, "Configure Password"));
        return console;
    }

    // Waits until entry `title` is selected and its panes drawn whole: a move blanks the left
    // footer, which comes back last.
    static ::testing::AssertionResult AwaitEntry(Console& console, const std::string& title)
    {
        return console.WaitFor(
            [&] {
                return console.Text(kTitleRow, 3, 20) == kMenuTitle && RightTitle(console) == title &&
                       !LeftFooter(console).empty() && !console.Row(24).empty();
            },
            10s, "entry \"" + title + "\" shown");
    }

    // Moves down (or up) until entry `title` is selected.
    static ::testing::AssertionResult MoveTo(Console& console, const std::string& title, bool down = true)
    {
        for (int step = 0; step < 20; ++step) {
            if (RightTitle(console) == title)
                return AwaitEntry(console, title);
            const std::string before = RightTitle(console);
            console.Send(down ? Keys::Down : Keys::Up);
            if (!console.WaitFor([&] { return RightTitle(console) != before; }, 5s, "the selection moved"))
                return ::testing::AssertionFailure() << "stuck at \"" << before << "\" before \"" << title << "\"\n"
                                                     << console.Describe();
        }
        return ::testing::AssertionFailure() << "no entry \"" << title << "\"";
    }

    std::unique_ptr<HostRoot> root;
};

const std::vector<std::string> kDefaultList = {
    "Configure Password",
    "Configure Lockdown Mode",
    "",
    "Configure Management Network",
    "Restart Management Network",
    "Test Management Network",
    "Network Restore Options",
    "",
    "Troubleshooting Options",
    "",
    "View System Logs",
    "",
    "View Support Information",
    "",
    "Reset System Configuration",
};

// ---------------------------------------------------------------- entries and panes

TEST_F(Menu, DefaultHostMenuAfterLoginAndLogout)
{
    auto console = LogIn();
    EXPECT_EQ(ListLines(*console), kDefaultList) << console->Describe();
    EXPECT_TRUE(Selected(*console, 0));
    for (int line = 0; line < 15; ++line)
        EXPECT_FALSE(Greyed(*console, line)) << line;
    EXPECT_EQ(Detail(*console), "Set\n\nTo prevent unauthorized access to\nthis system, set the password for\nthe user.")
        << console->Describe();
    EXPECT_EQ(RightFooter(*console), "<Enter> Change          <Esc> Log Out");
    EXPECT_EQ(LeftFooter(*console), "<Up/Down> Select");
    EXPECT_TRUE(console->Row(24).find("Zephora Ostra 8.0.3 (Tessel 8.0.3 Build ") != std::string::npos);
    const Cell value = console->CellAt(kDetailRow, kDetailColumn);
    EXPECT_TRUE(value.fg.IsIndex(7) && value.bg.IsIndex(6)) << value;

    // Lockdown possible but off; Up at the top and Down at the bottom stay put.
    console->Send(Keys::Up);
    ASSERT_TRUE(MoveTo(*console, "Configure Lockdown Mode"));
    EXPECT_TRUE(Detail(*console).starts_with("Disabled\n\nWhen enabled, lockdown mode")) << console->Describe();
    ASSERT_TRUE(MoveTo(*console, "Reset System Configuration"));
    EXPECT_EQ(RightFooter(*console), "<Enter> Reset           <Esc> Log Out");
    console->Send(Keys::Down);
    console->Send(Keys::Escape);
    ASSERT_TRUE(console->WaitForTextGone(kMenuTitle));
    EXPECT_TRUE(console->WaitForText("To manage this host, go to:"));
    EXPECT_TRUE(root->WaitForLine(Record::Syslog, "]: User root logged out"));
    EXPECT_TRUE(root->WaitForLine(Record::Audit,
                                  "action=lanyx.logout user=root service=lanyx success=1 reason=\"Session closed\""));
}

TEST_F(Menu, EntriesGreyedAndSkippedByHost)
{
    struct Case {
        std::string profile, term;
        std::vector<int> greyed;     // list lines
        std::vector<std::string> walk; // the titles Down visits from the first entry
    };
    const std::vector<Case> cases = {
        {"pxe-boot", "xterm-256color", {14},
         {"Configure Lockdown Mode", "Configure Management Network", "Restart Management Network",
          "Test Management Network", "Network Restore Options", "Troubleshooting Options", "View System Logs",
          "View Support Information"}},
        {"no-nics", "xterm-256color", {3, 4, 5},
         {"Configure Lockdown Mode", "Network Restore Options", "Troubleshooting Options"}},
        // A plain xterm counts as the machine's own screen: the keyboard line comes in.
        {"default", "xterm", {},
         {"Configure Lockdown Mode", "Configure Management Network", "Restart Management Network",
          "Test Management Network", "Network Restore Options", "Configure Keyboard"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.profile + " on " + c.term);
        Use(c.profile);
        auto console = LogIn(c.term);
        for (int line = 0; line < 17; ++line) {
            const bool greyed = std::find(c.greyed.begin(), c.greyed.end(), line) != c.greyed.end();
            EXPECT_EQ(Greyed(*console, line), greyed) << line << "\n" << console->Describe();
        }
        for (const std::string& title : c.walk) {
            const std::string before = RightTitle(*console);
            console->Send(Keys::Down);
            ASSERT_TRUE(console->WaitFor([&] { return RightTitle(*console) != before; }, 5s, "the next entry"));
            ASSERT_TRUE(AwaitEntry(*console, title));
        }
        if (c.profile == "pxe-boot") {
            // The greyed last entry cannot be reached.
            console->Send(Keys::Down);
            console->Send(Keys::Up);
            ASSERT_TRUE(AwaitEntry(*console, "View System Logs"));
        }
        if (c.term == "xterm") {
            EXPECT_EQ(ListLine(*console, 8), "Configure Keyboard");
            EXPECT_EQ(ListLine(*console, 9), "Troubleshooting Options");
            EXPECT_EQ(Detail(*console), "US Default\n\nTo select the layout type for the\nkeyboard of this host, "
                                        "press\n<Enter>.")
                << console->Describe();
        }
    }
}

TEST_F(Menu, ManagementNetworkSummary)
{
    struct Case {
        std::string profile;
        std::string summary;
    };
    const std::string help = "To view or modify this host's\nmanagement network settings in\ndetail, press <Enter>.";
    const std::vector<Case> cases = {
        {"default", "Hostname:\nlanyx-lab01\n\nIPv4 Address:\n192.168.10.21\n\nIPv6 Addresses:\n"
                    "fe80::250:56ff:fe6a:1001/64\n\n" + help},
        {"dhcp", "Hostname:\nlanyx-lab01\n\nIPv4 Address:\n192.168.10.57\n\nNetwork identity acquired from DHCP\n"
                 "server 192.168.10.254\n\nIPv6 Addresses:\nfe80::250:56ff:fe6a:1001/64\n\n" + help},
        // Of six addresses two and a mark.
        {"ipv6", "Hostname:\nlanyx-lab01\n\nIPv4 Address:\n192.168.10.21\n\nIPv6 Addresses:\n"
                 "fe80::250:56ff:fe6a:1001/64\n2001:db8:10::21/64\n...\n\n" + help},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.profile);
        Use(c.profile);
        auto console = LogIn();
        ASSERT_TRUE(MoveTo(*console, "Configure Management Network"));
        EXPECT_EQ(Detail(*console), c.summary) << console->Describe();
        EXPECT_EQ(RightFooter(*console), "<Enter> More            <Esc> Log Out");
    }

    // A host library that fails: the summary says so, and the restart entry names the failure.
    Use("default");
    auto console = LogIn();
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
    ASSERT_TRUE(console->WaitForTextGone("Restart Management Network: Error"));
    EXPECT_TRUE(AwaitEntry(*console, "Restart Management Network"));
}

// ---------------------------------------------------------------- support pages and logs

TEST_F(Menu, SupportPagesTurnAndStartOverOnReturn)
{
    auto console = LogIn();
    ASSERT_TRUE(MoveTo(*console, "View Support Information"));
    EXPECT_EQ(RightFooter(*console), "                        <Esc> Log Out");
    const auto header = [&] { return Trimmed(console->Text(kDetailRow, kDetailColumn, kDetailWidth)); };
    const auto white = [&](int column) { return console->CellAt(kDetailRow, kDetailColumn + column).fg.IsIndex(7); };
    EXPECT_EQ(header(), "<Page Up>       1/3     <Page Down>");
    EXPECT_FALSE(white(0));
    EXPECT_TRUE(white(16));
    EXPECT_TRUE(white(24));
    EXPECT_EQ(Trimmed(console->Text(kDetailRow + 1, kDetailColumn, kDetailWidth)), "Contacting support");

    console->Send(Keys::PageDown);
    ASSERT_TRUE(console->WaitFor([&] { return header().find("2/3") != std::string::npos; }, 5s, "page 2"));
    EXPECT_TRUE(white(0));
    EXPECT_TRUE(console->Find("Before you call"));
    console->Send(Keys::PageDown);
    ASSERT_TRUE(console->WaitFor([&] { return header().find("3/3") != std::string::npos; }, 5s, "page 3"));
    EXPECT_FALSE(white(24));
    EXPECT_EQ(Detail(*console), "<Page Up>       3/3     <Page Down>\nOn the web\n\n"
                                "Knowledge base:\nhttps://support.example.test/kb")
        << console->Describe();
    // At the last page Page Down does nothing; Page Up goes back.
    console->Send(Keys::PageDown);
    console->Send(Keys::PageUp);
    ASSERT_TRUE(console->WaitFor([&] { return header().find("2/3") != std::string::npos; }, 5s, "page 2 again"));
    // Leaving the entry and coming back starts at page 1.
    console->Send(Keys::Up);
    ASSERT_TRUE(AwaitEntry(*console, "View System Logs"));
    console->Send(Keys::PageDown);
    console->Send(Keys::Down);
    ASSERT_TRUE(AwaitEntry(*console, "View Support Information"));
    EXPECT_EQ(header(), "<Page Up>       1/3     <Page Down>");
}

TEST_F(Menu, LogTableNumbersThePresentLogsAndThePagerComesBack)
{
    Use("default");
    std::filesystem::remove(root->File("/var/log/tessel.log"));
    auto console = LogIn();
    ASSERT_TRUE(MoveTo(*console, "View System Logs"));
    EXPECT_EQ(Detail(*console), "<1> Syslog\n<2> Config\n<3> Management Agent (helmd)\n"
                                "<4> High Availibility Agent (cairnd)\n<5> Zephora Ostra Observation log\n(notad)\n\n"
                                "Press the corresponding key to view\na log.\nPress <Q> to return to this screen.")
        << console->Describe();

    // Digits elsewhere and digits without a row do nothing.
    console->Send("6");
    console->Send(Keys::Up);
    ASSERT_TRUE(AwaitEntry(*console, "Troubleshooting Options"));
    console->Send("2");
    console->Send(Keys::Down);
    ASSERT_TRUE(AwaitEntry(*console, "View System Logs"));
    EXPECT_FALSE(console->Find("sysboot:"));

    // The second row on the screen is the third log.
    console->Send("2");
    ASSERT_TRUE(console->WaitForText("sysboot: Loading configuration from /bootbank/state.tgz"));
    ASSERT_TRUE(console->WaitForText("<Q> Quit </> RegExp Search <H> Help"));
    EXPECT_FALSE(console->Find(kMenuTitle));
    // No shell from the pager.
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
    EXPECT_EQ(ListLines(*console), kDefaultList);
    // The menu has the keys again.
    console->Send(Keys::Down);
    ASSERT_TRUE(AwaitEntry(*console, "View Support Information"));
    EXPECT_EQ(console->Modes().c_lflag & ECHO, 0u);
}

} // namespace
