#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

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

TEST_F(RootWindowTest, TwoPanesCaptionsFootersListAndStatusLine) {
    MenuWindow menu{nullptr};
    menu.Draw();
    WINDOW* cells = menu.GetHandle();
    ASSERT_NE(cells, nullptr);
    // Amber on the left, dark grey on the right; the frame keeps the main area's colours.
    EXPECT_EQ(PairAt(cells, 0, 10), PairOf(2, 7));
    EXPECT_EQ(PairAt(cells, 39, 3), PairOf(3, 7));
    EXPECT_EQ(PairAt(cells, 40, 3), PairOf(6, 7));
    // Where the texts stand is checked end to end; here, their colours.
    for (const auto& [x, y, pair] : {std::tuple{3, 1, PairOf(3, 0)},
                                     {42, 1, PairOf(6, 7)},
                                     {2, 21, PairOf(3, 0)},
                                     {42, 4, PairOf(6, 2)},
                                     {3, 4, PairOf(0, 7)}})
        EXPECT_EQ(PairAt(cells, x, y), pair) << x << "," << y;
    EXPECT_EQ(menu.GetItemList()->GetRowCount(), 18);
    const int column = 40 - static_cast<int>(std::strlen(kVersion)) / 2;
    EXPECT_EQ(RowText(cells, 0, 23, 80), std::string(column, ' ') + kVersion);
    EXPECT_EQ(PairAt(cells, 0, 23), PairOf(0, 2));
    EXPECT_NE(SystemLog().find("COLS=80, LINES=24"), std::string::npos);

    menu.SetActive(false);
    for (auto [x, y] : {std::pair{0, 0}, {3, 1}, {3, 4}, {42, 4}, {40, 23}})
        EXPECT_EQ(PairAt(cells, x, y), PairOf(0, 6)) << x << "," << y;
    menu.Draw();
    EXPECT_EQ(menu.updates, 2);
    EXPECT_EQ(PairAt(cells, 42, 4), PairOf(6, 2));
}

TEST_F(RootWindowTest, OddWidthLeavesTheLastColumnToTheMainArea) {
    resizeterm(25, 81);
    MenuWindow menu{nullptr};
    menu.Draw();
    WINDOW* cells = menu.GetHandle();
    ASSERT_NE(cells, nullptr);
    EXPECT_EQ(menu.GetRightPane()->GetWidth(), 40);
    EXPECT_TRUE(IsLine(cells, 80, 10, ACS_VLINE));
    EXPECT_EQ(menu.GetItemList()->GetRowCount(), 19);
    const int column = 81 / 2 - static_cast<int>(std::strlen(kVersion)) / 2;
    EXPECT_EQ(RowText(cells, 0, 24, 81), std::string(column, ' ') + kVersion);
}

TEST_F(RootWindowTest, NoVersionAndTinyScreensAreSafe) {
    Catalogue().entries.erase(2);
    {
        MenuWindow menu{nullptr};
        menu.Draw();
        EXPECT_EQ(RowText(menu.GetHandle(), 0, 23, 80), "");
    }
    resizeterm(5, 12);
    MenuWindow menu{nullptr};
    menu.Draw();
    menu.SetActive(false);
    menu.SetActive(true);
    EXPECT_EQ(menu.updates, 1);
}

} // namespace
} // namespace Lanyx
