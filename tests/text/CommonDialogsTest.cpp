#include <gtest/gtest.h>

#include "Screen.hpp"
#include "text/InfoDialog.hpp"
#include "text/Markup.hpp"
#include "text/MessageDialog.hpp"
#include "text/NotificationDialog.hpp"
#include "text/PortGroupInfo.hpp"
#include "text/TesselNicInfo.hpp"

namespace Lanyx {
namespace {

using namespace Testing;

class CommonDialogsTest : public ::testing::Test {
protected:
    void SetUp() override {
        Catalogue().entries[16] = "Restart Management Network: Error";
        Catalogue().entries[19] = "Management network interface cannot be found.";
    }
    void TearDown() override { Catalogue().entries.clear(); }

    // Runs a dialog on keys that must not close it, then Enter.
    static void RunPastOtherKeys(Frame& dialog) {
        Type("\x1b x\x7f\t\n");
        EXPECT_TRUE(dialog.RunModal());
        EXPECT_TRUE(InputDrained()) << "only the last key, Enter, closes it";
    }
    static std::string Footer(int blanks) { return std::string(blanks, ' ') + "<Enter> OK"; }
};

TEST_F(CommonDialogsTest, MessageDialogFetchesItsMessageOnceAndItsTitleAtEveryRun) {
    MessageDialog dialog{nullptr, 16, 19u};
    EXPECT_EQ(dialog.GetX(), 5);
    EXPECT_EQ(dialog.GetY(), 7);
    Catalogue().entries[19] = "changed";
    Catalogue().entries[16] = "Later title";
    RunPastOtherKeys(dialog);
    WINDOW* cells = dialog.GetHandle();
    EXPECT_EQ(RowText(cells, 3, 1, 64), "Later title");
    EXPECT_EQ(RowText(cells, 3, 3, 64), "Management network interface cannot be found.");

    MessageDialog own{nullptr, 999, std::string("Please enter a valid VLAN ID.")};
    Type("\n");
    EXPECT_TRUE(own.RunModal());
    EXPECT_EQ(RowText(own.GetHandle(), 3, 1, 64), "") << "an unknown title is empty";
    EXPECT_EQ(RowText(own.GetHandle(), 3, 3, 64), "Please enter a valid VLAN ID.");
}

TEST_F(CommonDialogsTest, NotificationsCentredAndInvisibleWhenTooWide) {
    NotificationDialog small{
        nullptr, 51, 8, 5, "Operation Failed", "Please check the syslog for more information."};
    EXPECT_EQ(small.GetX(), 14);
    EXPECT_EQ(small.GetY(), 8);
    RunPastOtherKeys(small);
    EXPECT_EQ(RowText(small.GetHandle(), 3, 3, 45),
              "Please check the syslog for more information.");
    EXPECT_EQ(RowText(small.GetHandle(), 2, 6, 47), Footer(37));

    NotificationDialog tooWide{nullptr, 85, 8, 5, "Operation Cancelled", "Nothing was changed."};
    EXPECT_EQ(tooWide.GetHandle(), nullptr);
    RunPastOtherKeys(tooWide);
}

TEST_F(CommonDialogsTest, InfoDialogShowsItsBodyFromTheStart) {
    InfoDialog dialog{nullptr, "Name: tnic0\nMAC Address: 00:50:56:01:02:03", "Tessel NIC Details",
                      "Tessel NIC Name: tnic0", Footers::kOk};
    WINDOW* cells = dialog.GetHandle();
    EXPECT_EQ(dialog.GetY(), 4);
    EXPECT_EQ(RowText(cells, 3, 3, 64), "Tessel NIC Name: tnic0");
    EXPECT_EQ(RowText(cells, 2, 7, 66), "MAC Address: 00:50:56:01:02:03");
    EXPECT_EQ(PairAt(cells, 2, 6), PairOf(3, 6));
    EXPECT_EQ(RowText(cells, 2, 13, 66), Footer(56));
    RunPastOtherKeys(dialog);
    EXPECT_EQ(RowText(cells, 2, 6, 66), "Name: tnic0") << "the body survives the activation";
}

// Header and rows must line up once laid out: a cut field keeps its column's width.
TEST(InfoTypeRow, RowsLineUpUnderTheirHeaderAndDetailsKeepWholeFields) {
    const std::string nic7 = "tnic123", group19 = "abcdefghijklmnopqrs";
    TesselNicInfo nic{nic7, "00:50:56:01:02:03", "N/A", group19};
    EXPECT_EQ(nic.GetRow(),
              "{align:padding:8}tni...{/align}{align:padding:19}00:50:56:01:02:03{/align}"
              "{align:padding:10}N/A{/align}{align:padding:20}abcdefghijklmno...{/align}");
    EXPECT_EQ(nic.GetDetails(),
              "Name: tnic123\nMAC Address: 00:50:56:01:02:03\nPortset: N/A\nPortgroup: " + group19);
    EXPECT_EQ(nic.GetDetailsHeading(), "Tessel NIC Name: tnic123");

    PortGroupInfo whole{"abcdefghijklmnopqr", "switch-number1", 4294967295, 4095};
    PortGroupInfo cut{group19, "switch-number12", 0, 0};
    const TagSourceMap none;
    const std::string header = Format(whole.GetColumnHeader(), 66, none);
    const std::string wholeRow = Format("  " + whole.GetRow(), 66, none);
    const std::string cutRow = Format("  " + cut.GetRow(), 66, none);
    EXPECT_EQ(header, "  Portgroup Name      Virtual Switch  Active Clients  VLAN ID");
    EXPECT_EQ(wholeRow, "  abcdefghijklmnopqr  switch-number1  4294967295      4095   ");
    EXPECT_EQ(cutRow, "  abcdefghijklmno...  switch-numb...  0               0      ");
    EXPECT_EQ(cut.GetDetails(),
              "Name: " + group19 +
                  "\nVirtual Switch: switch-number12\nActive Clients: 0\nVLAN ID: 0");
    EXPECT_EQ(std::string(whole.GetDetailsFooter()),
              "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}{/align}  ");
}

} // namespace
} // namespace Lanyx
