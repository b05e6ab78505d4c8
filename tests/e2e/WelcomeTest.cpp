// What the operator sees on the welcome screen of simulated hosts of several kinds, and how the
// screen follows the host: reload, repaint, colours, failures of the host library.
#include <memory>
#include <string>
#include <tuple>
#include <utility>

#include <csignal>

#include <termios.h>

#include <gtest/gtest.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

// Rows of the default layout on a terminal of 25 lines (the top half has 12 of them).
constexpr int kVersionRow = 5, kVendorRow = 7, kHardwareRow = 9, kManagementRow = 13;
constexpr int kTextColumn = 8;
// A terminal tall enough for the warning text (it needs 29 lines); its warning starts on row 24.
constexpr int kTallRows = 30, kTallWarningRow = 24;

size_t Count(const std::string& text, const std::string& what) {
    size_t count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++count;
    return count;
}

// What a row of the default layout shows from the text column on.
std::string At(const Console& console, int row, int col = kTextColumn) {
    return console.Text(row, col, console.Cols() - col - 1);
}

// The console on `profile`, its first screen standing whole with `ready` on it.
std::unique_ptr<Session> Start(const std::string& profile = "default", SessionOptions options = {},
                               const std::string& ready = kWelcomeReady) {
    auto s = std::make_unique<Session>(profile, std::move(options));
    EXPECT_TRUE(s->Screen().WaitForFullScreen(ready));
    EXPECT_TRUE(s->Settle());
    return s;
}

// ---------------------------------------------------------------- default layout

TEST(Welcome, DefaultHostInItsColoursThenReloadedWithItsChanges) {
    auto s = Start();
    Console& console = s->Screen();
    EXPECT_TRUE(At(console, kVersionRow).starts_with("Zephora Ostra 8.0.3 (Tessel 8.0.3 Build "))
        << console.Describe();
    EXPECT_EQ(At(console, kVendorRow), "Northwind Systems NX-2840 Rack Server");
    EXPECT_EQ(At(console, kHardwareRow), "2 x Tessellate(R) Core Gold 6430 @ 2.10GHz");
    EXPECT_EQ(At(console, kHardwareRow + 1), "127.7 GiB Memory");
    EXPECT_EQ(At(console, kManagementRow), "To manage this host, go to:");
    EXPECT_EQ(At(console, kManagementRow + 1), "https://lanyx-lab01/");
    EXPECT_EQ(At(console, kManagementRow + 2), "https://192.168.10.21/ (STATIC)");
    EXPECT_EQ(At(console, kManagementRow + 3), "https://[fe80::250:56ff:fe6a:1001]/");
    EXPECT_EQ(At(console, kManagementRow + 4), "");
    // The footer: F2 on the left, F12 against the right edge of the text.
    EXPECT_EQ(console.Text(23, 2, 31), "<F2> Customize System/View Logs");
    EXPECT_EQ(console.Text(23, 55, 23), "<F12> Shut Down/Restart");
    EXPECT_EQ(console.CellAt(23, 79).text, "│") << "the box around the screen";
    EXPECT_FALSE(console.CursorVisible());

    // White on dark grey above, black on amber below; key names in black, their meaning in dark
    // grey.
    const std::tuple<int, int, int, int> colours[] = {{kVersionRow, kTextColumn, 7, 6},
                                                      {kManagementRow, kTextColumn, 0, 3},
                                                      {23, 2, 0, 3},
                                                      {23, 7, 6, 3}};
    for (const auto& [row, col, fg, bg] : colours) {
        const Cell cell = console.CellAt(row, col);
        EXPECT_TRUE(cell.fg.IsIndex(fg) && cell.bg.IsIndex(bg))
            << row << "," << col << ": " << cell;
    }
    // An odd number of lines gives the lower half the extra one.
    EXPECT_TRUE(console.CellAt(11, 40).bg.IsIndex(6)) << console.CellAt(11, 40);
    EXPECT_TRUE(console.CellAt(12, 40).bg.IsIndex(3)) << console.CellAt(12, 40);

    // The welcome message comes and goes with the next reload by signal (a key reloads too: the
    // spine test).
    HostRoot& root = s->Host();
    root.Set("welcome-message", "Maintenance window until Friday");
    console.Signal(SIGUSR1);
    ASSERT_TRUE(console.WaitForText("Maintenance window until Friday"));
    EXPECT_TRUE(console.WaitForTextGone("To manage this host"));
    EXPECT_EQ(console.Find("Maintenance window until Friday"),
              std::make_optional(std::make_pair(2, 2)));
    root.Set("welcome-message", "");
    console.Signal(SIGUSR1);
    ASSERT_TRUE(console.WaitForText("To manage this host, go to:"));
    EXPECT_TRUE(console.WaitForTextGone("Maintenance window"));
    EXPECT_TRUE(console.WaitForText("127.7 GiB Memory"));
}

// The warning below the addresses needs 29 lines; it is wrapped in the text's 48 cells. Which
// warning wins is checked in memory.
TEST(Welcome, WarningPlacedWhereItFits) {
    for (int rows : {kTallRows, kTallRows - 2}) {
        SCOPED_TRACE(std::to_string(rows) + " lines");
        auto s = Start("dhcp-no-server", {.rows = rows}, "<F2> Customize System/View Logs");
        Console& console = s->Screen();
        EXPECT_TRUE(console.WaitForText("https://0.0.0.0/ (Waiting for DHCP...)"));
        if (rows < kTallRows) {
            EXPECT_FALSE(console.Find("Warning")) << console.Describe();
            EXPECT_TRUE(console.Find("<F2> Customize System/View Logs"));
            continue;
        }
        ASSERT_TRUE(console.WaitForText("Warning: DHCP lookup failed."));
        EXPECT_EQ(At(console, kTallWarningRow, 16),
                  "Warning: DHCP lookup failed. You may be unable")
            << console.Describe();
        EXPECT_EQ(At(console, kTallWarningRow + 1, 16),
                  "to access this system until you customize its");
        const Cell cell = console.CellAt(kTallWarningRow, 16);
        EXPECT_TRUE(cell.fg.IsIndex(6) && cell.bg.IsIndex(3)) << cell;
    }
}

// ---------------------------------------------------------------- custom layout

// A custom message with its substitutions in place of the default layout; then, after a reload,
// one with the certificate's thumbprint and the SSH key's fingerprint.
TEST(Welcome, CustomMessageWithItsSubstitutions) {
    const std::string ready = "Zephora Ostra 8.0.3 build-24280767";
    auto s = Start("custom-welcome", {}, ready);
    Console& console = s->Screen();
    // Centred in the text of 76 cells that starts in column 2.
    EXPECT_EQ(console.Find(ready), std::make_optional(std::make_pair(2, 2 + (76 - 34) / 2)));
    EXPECT_EQ(At(console, 4, 2), "Host lanyx-lab01.lab.example.test (192.168.10.21)");
    EXPECT_EQ(At(console, 5, 2), "Memory: 127.7 GB  Serial: NWS7Q4K2B19  Service tag: 7Q4K2B1");
    EXPECT_EQ(At(console, 6, 2), "BIOS: 2.14.1 (2.14) 03/11/2026  Asset tag: LAB-0042");
    EXPECT_EQ(At(console, 8, 2), "Authorized use only.");
    // No default footer, no hardware lines; the box stays.
    EXPECT_FALSE(console.Find("To manage this host"));
    EXPECT_FALSE(console.Find("Customize System/View Logs"));
    EXPECT_FALSE(console.Find("GiB Memory"));
    EXPECT_EQ(console.CellAt(0, 0).text, "┌");
    EXPECT_TRUE(console.CellAt(4, 2).bg.IsIndex(0)) << console.CellAt(4, 2);

    s->Host().Set("welcome-message", "SHA1 {ssl-thumbprint-sha-1}\nRSA {ssh-rsa-fingerprint}\nEnd");
    console.Signal(SIGUSR1);
    ASSERT_TRUE(console.WaitForText("RSA SHA256:") && s->Settle());
    const std::string sha1 = At(console, 2, 2);
    EXPECT_EQ(sha1.size(), 5u + 59u) << sha1;
    EXPECT_EQ(Count(sha1, ":"), 19u) << sha1;
    EXPECT_TRUE(At(console, 3, 2).starts_with("RSA SHA256:")) << console.Describe();
    EXPECT_TRUE(s->Host().Matching(Record::Syslog, "SSL thumbprint").empty());
}

// ---------------------------------------------------------------- following the host

// F4 toggles monochrome: standout for the dark zones, amber without. "linux" on something that is
// no virtual terminal becomes "vt102", as does no TERM at all: monochrome from the start, no
// colour redefined, and F4 only repaints (a toggle would leave the upper half without standout).
TEST(Welcome, MonochromeByF4OrByTheTerminal) {
    for (const char* term : {"xterm-256color", "linux", ""}) {
        SCOPED_TRACE(std::string("TERM=") + term);
        const bool colour = std::string(term) == "xterm-256color";
        auto s = Start("default", {.term = term});
        Console& console = s->Screen();
        const auto version = [&] { return console.CellAt(kVersionRow, kTextColumn); };
        EXPECT_EQ(console.Redefined(6).has_value(), colour);
        for (bool monochrome : {!colour, true, !colour}) {
            EXPECT_EQ(version().reverse, monochrome) << version();
            EXPECT_TRUE(monochrome ? version().bg.kind == Color::Kind::Default
                                   : version().bg.IsIndex(6))
                << version();
            EXPECT_FALSE(console.CellAt(kManagementRow, kTextColumn).reverse)
                << "amber has no standout";
            if (monochrome && !colour) {
                EXPECT_EQ(version().fg.kind, Color::Kind::Default) << version();
            }
            s->Key(Keys::F(4));
            ASSERT_TRUE(s->Settle());
        }
    }
}

TEST(Welcome, LibraryFailureLeavesTheAddressesEmpty) {
    // The host name is asked before the texts of the upper half are made, so only the footer
    // stands after the first filling.
    auto s =
        Start("default", {.faults = {{"lib", "DnsConfigImpl::GetHostname", "name service down"}}},
              "<F2> Customize System/View Logs");
    Console& console = s->Screen();
    HostRoot& root = s->Host();
    EXPECT_FALSE(console.Find("To manage this host"));
    EXPECT_FALSE(console.Find("Northwind"));
    // Once the host answers again, a reload brings everything.
    root.Fault({"clear"});
    console.Signal(SIGUSR1);
    EXPECT_TRUE(console.WaitForText("https://lanyx-lab01/"));
    EXPECT_TRUE(console.WaitForText("Northwind Systems NX-2840 Rack Server"));
    // A failure on a screen that has its texts empties only the addresses.
    root.Fault({"lib", "DnsConfigImpl::GetHostname", "name service down"});
    console.Signal(SIGUSR1);
    EXPECT_TRUE(console.WaitForTextGone("To manage this host"));
    EXPECT_TRUE(console.Find("Northwind Systems NX-2840 Rack Server"));
    EXPECT_TRUE(root.Matching(Record::Syslog, "name service down").empty()) << "nothing is logged";
}

// Without its welcome message there is no screen: the program ends through its top-level
// handler, the terminal restored. (A damaged state takes the same way: the library's exception
// names the file, PlatformTest.)
TEST(Welcome, UnreadableHostEndsTheProgram) {
    Session s("default",
              {.faults = {{"lib", "SystemInfoImpl::GetWelcomeMessage", "message store gone"}}});
    ASSERT_TRUE(s.Screen().ExitsWith(0));
    ASSERT_TRUE(s.Host().WaitForLine(Record::Syslog, "LANYX aborted by exception: "));
    const auto aborted = s.Host().Matching(Record::Syslog, "LANYX aborted by exception: ");
    ASSERT_EQ(aborted.size(), 1u);
    EXPECT_NE(aborted[0].find("message store gone"), std::string::npos) << aborted[0];
    EXPECT_TRUE(s.Screen().Modes().c_lflag & ICANON) << "terminal modes restored";
}

} // namespace
