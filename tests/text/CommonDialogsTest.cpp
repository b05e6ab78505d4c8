#include <gtest/gtest.h>

#include "Screen.hpp"
#include "text/InfoDialog.hpp"
#include "text/InfoType.hpp"
#include "text/MessageDialog.hpp"
#include "text/NotificationDialog.hpp"

namespace Lanyx {
namespace {

using namespace Testing;

constexpr const char* kWaitFooterText = "<Enter> OK";

class CommonDialogsTest : public ::testing::Test {
protected:
    void SetUp() override {
        Catalogue().entries[16] = "Restart Management Network: Error";
        Catalogue().entries[19] = "Management network interface cannot be found.";
    }
    void TearDown() override { Catalogue().entries.clear(); }

    // Runs a dialog on keys that must not close it, then Enter.
    static void RunPastOtherKeys(Frame& dialog) {
        Type("\x1b x\x7f\t");
        Type("\n");
        EXPECT_TRUE(dialog.RunModal());
        EXPECT_TRUE(InputDrained()) << "only the last key, Enter, closes it";
    }
};

TEST_F(CommonDialogsTest, MessageDialogTakesTitleAndMessageFromTheCatalogue) {
    MessageDialog dialog{nullptr, 16, 19u};
    EXPECT_EQ(dialog.GetX(), 5);
    EXPECT_EQ(dialog.GetY(), 7);
    EXPECT_EQ(dialog.GetWidth(), 70);
    EXPECT_EQ(dialog.GetHeight(), 10);
    EXPECT_EQ(dialog.GetMessageText()->GetHeight(), 3);
    EXPECT_EQ(dialog.GetContentWindow(), nullptr);
    // The message is fetched once; the title at every run.
    Catalogue().entries[19] = "changed";
    Catalogue().entries[16] = "Later title";
    RunPastOtherKeys(dialog);

    WINDOW* cells = dialog.GetHandle();
    EXPECT_EQ(RowText(cells, 3, 1, 64), "Later title");
    EXPECT_EQ(RowText(cells, 3, 3, 64), "Management network interface cannot be found.");
    EXPECT_EQ(RowText(cells, 2, 8, 66), std::string(56, ' ') + kWaitFooterText);
}

TEST_F(CommonDialogsTest, MessageDialogWithItsOwnMessageAndAnUnknownTitle) {
    MessageDialog dialog{nullptr, 999, std::string("Please enter a valid VLAN ID.")};
    Type("\n");
    EXPECT_TRUE(dialog.RunModal());
    EXPECT_EQ(RowText(dialog.GetHandle(), 3, 1, 64), "");
    EXPECT_EQ(RowText(dialog.GetHandle(), 3, 3, 64), "Please enter a valid VLAN ID.");
}

TEST_F(CommonDialogsTest, NotificationShortForm) {
    NotificationDialog dialog{nullptr, 51, 8, 5, "Operation Failed",
                              "Please check the syslog for more information."};
    EXPECT_EQ(dialog.GetX(), 14);
    EXPECT_EQ(dialog.GetY(), 8);
    EXPECT_EQ(dialog.GetMessageText()->GetHeight(), 1);
    RunPastOtherKeys(dialog);
    WINDOW* cells = dialog.GetHandle();
    EXPECT_EQ(RowText(cells, 3, 1, 45), "Operation Failed");
    EXPECT_EQ(RowText(cells, 3, 3, 45), "Please check the syslog for more information.");
    EXPECT_EQ(PairAt(cells, 3, 3), PairOf(6, 2));
    EXPECT_EQ(RowText(cells, 2, 6, 47), std::string(37, ' ') + kWaitFooterText);
    EXPECT_TRUE(IsLine(cells, 50, 7, ACS_LRCORNER));
}

TEST_F(CommonDialogsTest, NotificationLongFormWrapsOverThreeLines) {
    const std::string message =
        "Standard switch 'lab-sw01' has been created successfully and the uplink has been "
        "added. The port group can now be created on it, and the kernel interface moved.";
    NotificationDialog dialog{nullptr, 75, 10, 7, "Operation Succeeded", message};
    EXPECT_EQ(dialog.GetX(), 2);
    EXPECT_EQ(dialog.GetY(), 7);
    Type("\n");
    EXPECT_TRUE(dialog.RunModal());
    WINDOW* cells = dialog.GetHandle();
    EXPECT_EQ(RowText(cells, 3, 3, 69),
              "Standard switch 'lab-sw01' has been created successfully and the");
    EXPECT_EQ(RowText(cells, 3, 4, 69),
              "uplink has been added. The port group can now be created on it, and");
    EXPECT_EQ(RowText(cells, 3, 5, 69), "the kernel interface moved.");
    EXPECT_EQ(RowText(cells, 2, 8, 71), std::string(61, ' ') + kWaitFooterText);
}

TEST_F(CommonDialogsTest, InfoDialogShowsEverythingAtConstruction) {
    InfoDialog dialog{nullptr, "Name: tnic0\nMAC Address: 00:50:56:01:02:03", "Tessel NIC Details",
                      "Tessel NIC Name: tnic0", kOkFooter};
    WINDOW* cells = dialog.GetHandle();
    EXPECT_EQ(dialog.GetX(), 5);
    EXPECT_EQ(dialog.GetY(), 4);
    TextArea& text = dialog.GetText();
    EXPECT_EQ(text.GetX(), 5 + 2);
    EXPECT_EQ(text.GetY(), 4 + 6);
    EXPECT_EQ(text.GetWidth(), 66);
    EXPECT_EQ(text.GetHeight(), 6);
    EXPECT_EQ(text.GetForeground(), 6);
    EXPECT_EQ(RowText(cells, 3, 1, 64), "Tessel NIC Details");
    EXPECT_EQ(RowText(cells, 3, 3, 64), "Tessel NIC Name: tnic0");
    EXPECT_EQ(RowText(cells, 2, 6, 66), "Name: tnic0");
    EXPECT_EQ(RowText(cells, 2, 7, 66), "MAC Address: 00:50:56:01:02:03");
    EXPECT_EQ(PairAt(cells, 2, 6), PairOf(3, 6));
    EXPECT_EQ(RowText(cells, 2, 13, 66), std::string(56, ' ') + kWaitFooterText);
    RunPastOtherKeys(dialog);
    EXPECT_EQ(RowText(cells, 2, 6, 66), "Name: tnic0") << "the body survives the activation";
}

TEST_F(CommonDialogsTest, DialogsTooWideForTheScreenStillWaitForEnter) {
    NotificationDialog dialog{nullptr, 85, 8, 5, "Operation Cancelled", "Nothing was changed."};
    EXPECT_EQ(dialog.GetHandle(), nullptr);
    RunPastOtherKeys(dialog);
}

TEST(InfoTypeRow, FieldsAreCutToTheirColumns) {
    EXPECT_EQ(ShortenField("nic123", 6, 3), "nic123");
    EXPECT_EQ(ShortenField("nic1234", 6, 3), "nic...");
    const std::string name18 = "abcdefghijklmnopqr";
    EXPECT_EQ(ShortenField(name18, 18, 15), name18);
    EXPECT_EQ(ShortenField(name18 + "s", 18, 15), "abcdefghijklmno...");
    EXPECT_EQ(ShortenField("", 6, 3), "");
}

} // namespace
} // namespace Lanyx
