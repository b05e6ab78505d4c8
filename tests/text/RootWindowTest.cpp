#include <gtest/gtest.h>

#include <cstring>

#include "Screen.hpp"
#include "text/LabelItem.hpp"
#include "text/RootWindow.hpp"

namespace Lanyx {
namespace {

using namespace Testing;

constexpr const char* kVersion = "Lanyx 8.0 (Tessel 8.0 Build 4711)"; // 33 characters

class MenuWindow : public RootWindow {
public:
    using RootWindow::RootWindow;
    bool Execute() override { return false; }
    void UpdateContent() override {
        ++updates;
        SetLeftTitle("Left title");
        SetRightTitle("Right title");
        detailText->SetText("Details");
        itemList->SetItems({&entry});
        itemList->Draw();
        // The last row of the list and of the details is the footers' row.
        SetLeftFooter("Left footer");
        SetRightFooter("Right footer");
    }
    int updates = 0;
    LabelItem entry{"Entry", true};
};

// Each test lays the screen out for its own size.
class RootWindowTest : public ::testing::Test {
protected:
    void SetUp() override { Catalogue().entries[2] = kVersion; }
    void TearDown() override {
        resizeterm(24, 80);
        Catalogue().entries.clear();
    }
};

TEST_F(RootWindowTest, PanesCaptionsAndListCellByCell) {
    MenuWindow menu{nullptr};
    menu.Draw();
    WINDOW* cells = menu.GetHandle();
    ASSERT_NE(cells, nullptr);
    EXPECT_EQ(menu.updates, 1);
    EXPECT_EQ(menu.GetWidth(), 80);
    EXPECT_EQ(menu.GetHeight(), 24);

    // Frame of the main area and the line under the captions.
    EXPECT_TRUE(IsLine(cells, 0, 0, ACS_ULCORNER));
    EXPECT_TRUE(IsLine(cells, 79, 0, ACS_URCORNER));
    EXPECT_TRUE(IsLine(cells, 0, 22, ACS_LLCORNER));
    EXPECT_TRUE(IsLine(cells, 79, 22, ACS_LRCORNER));
    EXPECT_TRUE(IsLine(cells, 0, 2, ACS_VLINE));
    EXPECT_TRUE(IsLine(cells, 79, 2, ACS_VLINE));
    for (int x = 1; x < 79; ++x) {
        ASSERT_TRUE(IsLine(cells, x, 2, ACS_HLINE)) << x;
    }

    // Amber on the left, dark grey on the right; the frame keeps the main area's colours.
    EXPECT_EQ(PairAt(cells, 0, 10), PairOf(2, 7));
    EXPECT_EQ(PairAt(cells, 20, 2), PairOf(2, 7));
    EXPECT_EQ(PairAt(cells, 1, 3), PairOf(3, 7));
    EXPECT_EQ(PairAt(cells, 39, 3), PairOf(3, 7));
    EXPECT_EQ(PairAt(cells, 40, 3), PairOf(6, 7));
    EXPECT_EQ(PairAt(cells, 79, 10), PairOf(2, 7));
    EXPECT_EQ(PairAt(cells, 78, 10), PairOf(6, 7));

    EXPECT_EQ(RowText(cells, 3, 1, 34), "Left title");
    EXPECT_EQ(PairAt(cells, 3, 1), PairOf(3, 0));
    EXPECT_EQ(RowText(cells, 42, 1, 34), "Right title");
    EXPECT_EQ(PairAt(cells, 42, 1), PairOf(6, 7));
    EXPECT_EQ(RowText(cells, 2, 21, 37), "Left footer");
    EXPECT_EQ(PairAt(cells, 2, 21), PairOf(3, 0));
    EXPECT_EQ(RowText(cells, 41, 21, 37), "Right footer");
    EXPECT_EQ(PairAt(cells, 41, 21), PairOf(6, 7));
    EXPECT_EQ(RowText(cells, 42, 4, 36), "Details");
    EXPECT_EQ(PairAt(cells, 42, 4), PairOf(6, 2));

    // The list: at (2, 4) of the left pane, 38 x 18, its texts one cell in.
    ItemList* list = menu.GetItemList();
    EXPECT_EQ(list->GetX(), 2);
    EXPECT_EQ(list->GetY(), 4);
    EXPECT_EQ(list->GetWidth(), 38);
    EXPECT_EQ(list->GetRowCount(), 18);
    EXPECT_EQ(RowText(cells, 3, 4, 35), "Entry");
    EXPECT_EQ(PairAt(cells, 3, 4), PairOf(0, 7));

    // Status line: light grey on black, the version line centred.
    const int column = 40 - static_cast<int>(std::strlen(kVersion)) / 2;
    EXPECT_EQ(RowText(cells, 0, 23, 80), std::string(column, ' ') + kVersion);
    EXPECT_EQ(PairAt(cells, 0, 23), PairOf(0, 2));
    EXPECT_EQ(PairAt(cells, column, 23), PairOf(0, 2));

    EXPECT_NE(SystemLog().find("COLS=80, LINES=24"), std::string::npos);
}

TEST_F(RootWindowTest, OddWidthLeavesTheLastColumnToTheMainArea) {
    resizeterm(25, 81);
    MenuWindow menu{nullptr};
    menu.Draw();
    WINDOW* cells = menu.GetHandle();
    ASSERT_NE(cells, nullptr);
    EXPECT_EQ(menu.GetRightPane()->GetX(), 40);
    EXPECT_EQ(menu.GetRightPane()->GetWidth(), 40);
    EXPECT_EQ(PairAt(cells, 79, 10), PairOf(6, 7)) << "the right pane ends one short";
    EXPECT_TRUE(IsLine(cells, 80, 10, ACS_VLINE));
    EXPECT_EQ(PairAt(cells, 80, 10), PairOf(2, 7));
    EXPECT_EQ(PairAt(cells, 80, 24), PairOf(0, 2));
    EXPECT_TRUE(IsLine(cells, 80, 23, ACS_LRCORNER));
    EXPECT_EQ(menu.GetItemList()->GetRowCount(), 19);

    const int column = 81 / 2 - static_cast<int>(std::strlen(kVersion)) / 2;
    EXPECT_EQ(RowText(cells, 0, 24, 81), std::string(column, ' ') + kVersion);
    EXPECT_NE(SystemLog().find("COLS=81, LINES=25"), std::string::npos);
}

TEST_F(RootWindowTest, DimmedScreenIsGreyOnBlack) {
    MenuWindow menu{nullptr};
    menu.Draw();
    menu.SetActive(false);
    WINDOW* cells = menu.GetHandle();
    for (auto [x, y] : {std::pair{0, 0}, {3, 1}, {3, 4}, {42, 4}, {79, 10}, {40, 23}}) {
        EXPECT_EQ(PairAt(cells, x, y), PairOf(0, 6)) << x << "," << y;
    }
    EXPECT_EQ(RowText(cells, 3, 1, 34), "Left title");
    menu.Draw();
    EXPECT_EQ(menu.updates, 2);
    EXPECT_EQ(PairAt(cells, 42, 4), PairOf(6, 2));
}

TEST_F(RootWindowTest, MonochromeMarksTheDarkPartsAsStandout) {
    MonochromeScope mono;
    MenuWindow menu{nullptr};
    menu.Draw();
    WINDOW* cells = menu.GetHandle();
    EXPECT_FALSE(Standout(cells, 10, 10)) << "amber";
    EXPECT_TRUE(Standout(cells, 50, 10)) << "dark grey";
    EXPECT_TRUE(Standout(cells, 3, 4)) << "the selected row";
    EXPECT_TRUE(Standout(cells, 0, 23)) << "the status line";
}

TEST_F(RootWindowTest, StatusLineWithoutAVersionStaysEmpty) {
    Catalogue().entries.erase(2);
    MenuWindow menu{nullptr};
    menu.Draw();
    EXPECT_EQ(RowText(menu.GetHandle(), 0, 23, 80), "");
}

TEST_F(RootWindowTest, ScreenTooSmallForTheLayoutStaysSafe) {
    resizeterm(5, 12);
    MenuWindow menu{nullptr};
    menu.Draw();
    menu.SetActive(false);
    menu.SetActive(true);
    EXPECT_EQ(menu.updates, 1);
}

} // namespace
} // namespace Lanyx
