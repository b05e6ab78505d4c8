#include <gtest/gtest.h>

#include "Screen.hpp"
#include "core/Keys.hpp"
#include "text/Dialog.hpp"

namespace Lanyx {
namespace {

using namespace Testing;

// Closes on Enter and counts the keys before it.
class PlainDialog : public Dialog {
public:
    using Dialog::Dialog;
    bool Execute() override {
        while (ReadKey(true) != Keys::Enter) {
            ++ignored;
        }
        return true;
    }
    int ignored = 0;
};

// A screen-sized frame to stand behind the dialogs.
class Backdrop : public Frame {
public:
    Backdrop() : Frame(nullptr, 0, 0, COLS, LINES, 2, 7) {}
    bool Execute() override { return false; }
};

// 70 x 10 with a title pane of 7 on 80 x 24: the box stands at (5, 7).
class DialogTest : public ::testing::Test {
protected:
    PlainDialog dialog{nullptr, 70, 10, 7};
    WINDOW* cells = dialog.GetHandle();
};

TEST_F(DialogTest, CentredWithTitlePaneBodyAndFrame) {
    ASSERT_NE(cells, nullptr);
    EXPECT_EQ(dialog.GetX(), 5);
    EXPECT_EQ(dialog.GetY(), 7);
    dialog.SetActive(true);

    EXPECT_TRUE(IsLine(cells, 0, 0, ACS_ULCORNER));
    EXPECT_TRUE(IsLine(cells, 69, 0, ACS_URCORNER));
    EXPECT_TRUE(IsLine(cells, 0, 9, ACS_LLCORNER));
    EXPECT_TRUE(IsLine(cells, 69, 9, ACS_LRCORNER));
    for (int x = 1; x < 69; ++x) {
        ASSERT_TRUE(IsLine(cells, x, 0, ACS_HLINE)) << x;
        ASSERT_TRUE(IsLine(cells, x, 9, ACS_HLINE)) << x;
    }
    for (int y = 1; y < 9; ++y) {
        ASSERT_TRUE(IsLine(cells, 0, y, ACS_VLINE)) << y;
        ASSERT_TRUE(IsLine(cells, 69, y, ACS_VLINE)) << y;
    }
    // The frame line keeps the dialog's own colours across both panes.
    EXPECT_EQ(PairAt(cells, 0, 3), PairOf(0, 7));
    EXPECT_EQ(PairAt(cells, 0, 8), PairOf(0, 7));
    EXPECT_EQ(PairAt(cells, 30, 0), PairOf(0, 7));
    for (int y = 1; y < 9; ++y) {
        EXPECT_EQ(PairAt(cells, 1, y), y < 7 ? PairOf(6, 7) : PairOf(3, 7)) << y;
        EXPECT_EQ(PairAt(cells, 68, y), y < 7 ? PairOf(6, 7) : PairOf(3, 7)) << y;
    }
    EXPECT_EQ(dialog.GetContentWindow(), nullptr) << "a body of 3 lines has no content window";
}

TEST_F(DialogTest, TitleMessageAndFooterLandInTheirPlaces) {
    dialog.SetActive(true);
    dialog.SetTitle("Title {color:red}here{/color}");
    dialog.SetMessage("one two three four five six seven eight nine ten eleven twelve thirteen "
                      "fourteen fifteen");
    dialog.SetFooter(kOkFooter);

    EXPECT_EQ(RowText(cells, 3, 1, 64), "Title here");
    EXPECT_EQ(PairAt(cells, 3, 1), PairOf(6, 7));
    EXPECT_EQ(PairAt(cells, 9, 1), PairOf(6, 1));
    EXPECT_EQ(RowText(cells, 1, 2, 68), "") << "row 2 of the title pane stays empty";
    EXPECT_EQ(RowText(cells, 3, 3, 64),
              "one two three four five six seven eight nine ten eleven twelve");
    EXPECT_EQ(RowText(cells, 3, 4, 64), "thirteen fourteen fifteen");
    EXPECT_EQ(PairAt(cells, 3, 3), PairOf(6, 2));
    EXPECT_EQ(dialog.GetMessageText()->GetHeight(), 3);

    // Footer: body row 1, from column 2, 66 cells wide, right-aligned.
    EXPECT_EQ(RowText(cells, 2, 8, 66), std::string(56, ' ') + "<Enter> OK");
    EXPECT_EQ(PairAt(cells, 58, 8), PairOf(3, 0));
    EXPECT_EQ(PairAt(cells, 66, 8), PairOf(3, 6));
    EXPECT_TRUE(IsLine(cells, 69, 8, ACS_VLINE)) << "the footer stops short of the frame";
}

TEST_F(DialogTest, ContentWindowOnlyWithABodyOfFiveLinesOrMore) {
    PlainDialog tall{nullptr, 60, 15, 5};
    Window* content = tall.GetContentWindow();
    ASSERT_NE(content, nullptr);
    EXPECT_EQ(content->GetX(), tall.GetX() + 2);
    EXPECT_EQ(content->GetY(), tall.GetY() + 6);
    EXPECT_EQ(content->GetWidth(), 56);
    EXPECT_EQ(content->GetHeight(), 6);
    EXPECT_EQ(content->GetBackground(), 3);
    EXPECT_EQ(content->GetForeground(), 6);
    EXPECT_EQ(tall.GetFooterText()->GetY(), tall.GetY() + 5 + 8);

    PlainDialog low{nullptr, 60, 9, 5};
    EXPECT_EQ(low.GetContentWindow(), nullptr);
    PlainDialog justEnough{nullptr, 60, 10, 5};
    ASSERT_NE(justEnough.GetContentWindow(), nullptr);
    EXPECT_EQ(justEnough.GetContentWindow()->GetHeight(), 1);
}

TEST_F(DialogTest, DimmedDialogIsGreyOnBlackWithItsTextKept) {
    dialog.SetActive(true);
    dialog.SetTitle("Title");
    dialog.SetFooter(kOkFooter);
    dialog.SetActive(false);
    EXPECT_EQ(RowText(cells, 3, 1, 64), "Title");
    for (int y = 0; y < 10; ++y) {
        for (int x : {0, 3, 40, 66, 69}) {
            ASSERT_EQ(PairAt(cells, x, y), PairOf(0, 6)) << x << "," << y;
        }
    }
    dialog.SetActive(true);
    EXPECT_EQ(PairAt(cells, 3, 1), PairOf(6, 7));
    EXPECT_EQ(PairAt(cells, 58, 8), PairOf(3, 0));
}

TEST_F(DialogTest, MonochromeShowsTheTitlePaneAsStandout) {
    MonochromeScope mono;
    PlainDialog box{nullptr, 70, 10, 7};
    box.SetActive(true);
    box.SetTitle("Title");
    WINDOW* boxCells = box.GetHandle();
    EXPECT_TRUE(Standout(boxCells, 3, 1));
    EXPECT_TRUE(Standout(boxCells, 0, 3));
    EXPECT_FALSE(Standout(boxCells, 3, 8));
    box.SetActive(false);
    EXPECT_TRUE(Standout(boxCells, 3, 8)) << "dimmed is grey on black: standout throughout";
}

TEST_F(DialogTest, GoingActiveRepaintsTheOwnerFirst) {
    Backdrop backdrop;
    backdrop.SetActive(false);
    backdrop.Update();
    // Written behind the dialog's back; only a refresh of the owner brings it to the screen.
    backdrop.Print(0, 0, "owner");
    PlainDialog box{&backdrop, 70, 10, 7};
    box.SetActive(true);
    EXPECT_EQ(RowText(curscr, 0, 0, 5), "owner");
}

TEST(DialogOutsideTheScreen, TooLargeForTheScreenRunsInvisibly) {
    PlainDialog wide{nullptr, 85, 10, 7};
    EXPECT_EQ(wide.GetHandle(), nullptr);
    EXPECT_EQ(wide.GetX(), -2);
    EXPECT_EQ(wide.GetTitlePane()->GetHandle(), nullptr);
    EXPECT_EQ(wide.GetFooterText()->GetHandle(), nullptr);
    wide.SetTitle("Title");
    wide.SetMessage("Message");
    wide.SetFooter(kOkFooter);
    wide.SetActive(false);
    wide.Update();
    wide.RedrawTree();
    Type("\x1b x\n");
    EXPECT_TRUE(wide.RunModal());
    EXPECT_EQ(wide.ignored, 3);
    EXPECT_TRUE(InputDrained());

    PlainDialog tall{nullptr, 60, 30, 7};
    EXPECT_EQ(tall.GetHandle(), nullptr);
    ASSERT_NE(tall.GetContentWindow(), nullptr);
    EXPECT_EQ(tall.GetContentWindow()->GetHandle(), nullptr);
    Type("\n");
    EXPECT_TRUE(tall.RunModal());
}

} // namespace
} // namespace Lanyx
