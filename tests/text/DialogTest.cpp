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
        while (ReadKey(true) != Keys::Enter)
            ++ignored;
        return true;
    }
    int ignored = 0;
};

// 70 x 10 with a title pane of 7 on 80 x 24: the box stands at (5, 7).
class DialogTest : public ::testing::Test {
protected:
    PlainDialog dialog{nullptr, 70, 10, 7};
    WINDOW* cells = dialog.GetHandle();
};

TEST_F(DialogTest, CentredWithTitleMessageAndFooterInTheirPlaces) {
    ASSERT_NE(cells, nullptr);
    EXPECT_EQ(dialog.GetX(), 5);
    EXPECT_EQ(dialog.GetY(), 7);
    EXPECT_EQ(dialog.GetContentWindow(), nullptr) << "a body of 3 lines has no content window";
    dialog.SetActive(true);
    dialog.SetTitle("Title {color:red}here{/color}");
    dialog.SetMessage(
        "one two three four five six seven eight nine ten eleven twelve thirteen fourteen");
    dialog.SetFooter(Footers::kOk);
    EXPECT_EQ(RowText(cells, 3, 1, 64), "Title here");
    EXPECT_EQ(PairAt(cells, 9, 1), PairOf(6, 1));
    EXPECT_EQ(RowText(cells, 1, 2, 68), "") << "row 2 of the title pane stays empty";
    EXPECT_EQ(RowText(cells, 3, 3, 64),
              "one two three four five six seven eight nine ten eleven twelve");
    EXPECT_EQ(RowText(cells, 3, 4, 64), "thirteen fourteen");
    // The frame keeps the dialog's colours; the footer ends short of it, right-aligned.
    EXPECT_EQ(PairAt(cells, 0, 8), PairOf(0, 7));
    EXPECT_EQ(RowText(cells, 2, 8, 66), std::string(56, ' ') + "<Enter> OK");
    EXPECT_TRUE(IsLine(cells, 69, 8, ACS_VLINE));

    dialog.SetActive(false);
    EXPECT_EQ(RowText(cells, 3, 1, 64), "Title here");
    for (auto [x, y] : {std::pair{0, 0}, {3, 1}, {9, 1} /* red */, {40, 5}, {58, 8}})
        EXPECT_EQ(PairAt(cells, x, y), PairOf(0, 6)) << x << "," << y;
    dialog.SetActive(true);
    EXPECT_EQ(PairAt(cells, 58, 8), PairOf(3, 0));
}

TEST_F(DialogTest, ContentWindowOnlyWithABodyOfFiveLinesOrMore) {
    for (auto [height, rows] : {std::pair{15, 6}, {10, 1}, {9, 0}}) {
        PlainDialog box{nullptr, 60, height, 5};
        Window* content = box.GetContentWindow();
        ASSERT_EQ(content != nullptr, rows > 0) << height;
        if (!content)
            continue;
        EXPECT_EQ(content->GetHeight(), rows);
        EXPECT_EQ(content->GetWidth(), 56);
        EXPECT_EQ(content->GetX(), box.GetX() + 2);
        EXPECT_EQ(content->GetY(), box.GetY() + 6);
    }
}

TEST_F(DialogTest, GoingActiveRepaintsTheOwnerFirst) {
    struct Backdrop : Frame {
        Backdrop() : Frame(nullptr, 0, 0, COLS, LINES, 2, 7) {}
        bool Execute() override { return false; }
    } backdrop;
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
    EXPECT_EQ(wide.GetFooterText()->GetHandle(), nullptr);
    wide.SetTitle("Title");
    wide.SetMessage("Message");
    wide.SetFooter(Footers::kOk);
    wide.SetActive(false);
    wide.RedrawTree();
    Type("\x1b x\n");
    EXPECT_TRUE(wide.RunModal());
    EXPECT_EQ(wide.ignored, 3);
    EXPECT_TRUE(InputDrained());

    PlainDialog tall{nullptr, 60, 30, 7};
    ASSERT_NE(tall.GetContentWindow(), nullptr);
    EXPECT_EQ(tall.GetContentWindow()->GetHandle(), nullptr);
    Type("\n");
    EXPECT_TRUE(tall.RunModal());
}

} // namespace
} // namespace Lanyx
