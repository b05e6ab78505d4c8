#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "Screen.hpp"
#include "text/CheckItem.hpp"
#include "text/ItemList.hpp"
#include "text/LabelItem.hpp"
#include "text/RadioItem.hpp"

namespace Lanyx {
namespace {

using namespace Testing;

// A list of width 30 at (2, 1) in an amber pane: texts of 27 cells from pane column 3, and
// the scroll bar in pane column 31.
class ItemListTest : public ::testing::Test {
protected:
    Window pane{0, 0, 40, 14, 3, 7};

    ItemList* MakeList(int rows) { return new ItemList(&pane, 2, 1, 30, rows); }

    template <typename T = LabelItem, typename... Args> T* Make(Args&&... args) {
        owned.push_back(std::make_unique<T>(std::forward<Args>(args)...));
        return static_cast<T*>(owned.back().get());
    }
    LabelItem* Heading(const char* text) { return Make(text, false); }
    LabelItem* Disabled(const char* text) {
        LabelItem* item = Make(text, true);
        item->SetEnabled(false);
        return item;
    }
    std::vector<Item*> Labels(int count) {
        std::vector<Item*> items;
        for (int i = 0; i < count; ++i)
            items.push_back(Make("item " + std::to_string(i), true));
        return items;
    }

    std::string RowOf(int row) { return RowText(pane.GetHandle(), 3, 1 + row, 27); }
    int TextPair(int row, int column = 0) { return PairAt(pane.GetHandle(), 3 + column, 1 + row); }
    std::string Bar(int rows) {
        std::string bar;
        for (int row = 0; row < rows; ++row) {
            const std::string cell = CellText(pane.GetHandle(), 31, 1 + row);
            bar += cell == "\u2588" ? '#' : cell == "\u2593" ? '|' : cell == " " ? ' ' : '?';
        }
        return bar;
    }

    std::vector<std::unique_ptr<Item>> owned;
};

TEST_F(ItemListTest, DrawsEachItemAndTheSelectionWhiteOnBlack) {
    ItemList* list = MakeList(6);
    CheckItem* check = Make<CheckItem>("Enabled", true, 2);
    RadioItem* radio = Make<RadioItem>("DHCP", false);
    list->SetItems({Heading("Heading"), Make("First", true), check, radio,
                    Make("a{color:red}b{/color}c", true)});
    EXPECT_EQ(list->GetSelectedRow(), 1u) << "the heading is skipped";
    list->Draw();
    EXPECT_EQ(RowOf(2), "  [X] Enabled");
    EXPECT_EQ(RowOf(3), "( ) DHCP");
    EXPECT_EQ(RowOf(4), "abc");
    EXPECT_EQ(TextPair(1, 26), PairOf(0, 7)) << "the bar spans the text area";
    EXPECT_EQ(PairAt(pane.GetHandle(), 2, 2), PairOf(3, 7)) << "not the row's edge";

    check->SetChecked(false);
    radio->SetChecked(true);
    list->SelectNext();
    EXPECT_EQ(RowOf(2), "  [ ] Enabled");
    EXPECT_EQ(RowOf(3), "(o) DHCP");
    EXPECT_EQ(TextPair(1), PairOf(3, 0)) << "the old selection returns to the item's colours";
    EXPECT_EQ(TextPair(2), PairOf(0, 7));
}

TEST_F(ItemListTest, DisabledItemsAreGreySkippedButCounted) {
    ItemList* list = MakeList(6);
    LabelItem* also = Disabled("Also off");
    list->SetItems(
        {Disabled("Off"), Make("On", true), Heading("Heading"), also, Make("Last", true)});
    EXPECT_EQ(list->GetSelectedRow(), 1u);
    EXPECT_EQ(list->GetSelectedOrdinal(), 1u) << "a disabled selectable item counts";
    list->Draw();
    EXPECT_EQ(TextPair(0), PairOf(3, 6));

    const struct {
        bool next;
        size_t row, ordinal;
    } moves[] = {{true, 4, 3}, {true, 4, 3} /* no wrap-around */, {false, 1, 1}, {false, 1, 1}};
    for (const auto& move : moves) {
        move.next ? list->SelectNext() : list->SelectPrevious();
        EXPECT_EQ(list->GetSelectedRow(), move.row);
        EXPECT_EQ(list->GetSelectedOrdinal(), move.ordinal);
    }
    also->SetEnabled(true);
    list->SelectNext();
    EXPECT_EQ(list->GetSelectedRow(), 3u);

    // By number, a disabled item can be chosen; a number beyond the items changes nothing.
    list->SetItems({Heading("Heading"), Make("zero", true), Disabled("one"), Heading("Blank"),
                    Make("two", true)});
    for (auto [ordinal, row] : {std::pair{2u, 4u}, {1u, 2u}, {3u, 2u}}) {
        list->SelectOrdinal(ordinal);
        EXPECT_EQ(list->GetSelectedRow(), row) << ordinal;
    }
}

TEST_F(ItemListTest, ScrollsWithTheSelectionAndHeadingsOnlyComeAlong) {
    ItemList* list = MakeList(3);
    list->SetItems(
        {Heading("Top"), Make("a", true), Make("b", true), Heading("Mid"), Make("c", true)});
    list->SelectNext();
    list->SelectNext();
    EXPECT_EQ(list->GetTopIndex(), 2);
    EXPECT_EQ(list->GetSelectedRow(), 2u) << "the new item becomes the bottom row";
    list->Draw();
    EXPECT_EQ(RowOf(2), "c");
    list->SelectPrevious();
    list->SelectPrevious();
    EXPECT_EQ(list->GetTopIndex(), 1) << "the item above becomes the top row";
    list->SelectPrevious();
    EXPECT_EQ(list->GetTopIndex(), 1) << "a heading alone never scrolls into view";

    list->SetItems(Labels(8));
    list->SelectOrdinal(6);
    EXPECT_EQ(list->GetTopIndex(), 4);
    EXPECT_EQ(list->GetSelectedRow(), 2u);

    // New items start over; a list without choice keeps its row.
    list->SetItems({Heading("none"), Heading("either")});
    EXPECT_EQ(list->GetTopIndex(), 0);
    EXPECT_EQ(list->GetSelectedRow(), 2u);
    list->SelectNext();
    list->SelectPrevious();
    list->Draw();
    EXPECT_EQ(RowOf(0), "none");
}

TEST_F(ItemListTest, ScrollBarMarksThePositionOnlyWhenNotAllFits) {
    ItemList* list = MakeList(10);
    list->SetItems(Labels(20));
    list->Draw();
    EXPECT_EQ(Bar(10), "#|||||||||");
    for (int i = 0; i < 14; ++i)
        list->SelectNext();
    EXPECT_EQ(RowOf(0), "item 5");
    EXPECT_EQ(Bar(10), "||||#|||||");
    for (int i = 0; i < 10; ++i)
        list->SelectNext();
    EXPECT_EQ(Bar(10), "|||||||||#");
    list->SetItems(Labels(10));
    list->Draw();
    EXPECT_EQ(Bar(10), "          ") << "everything fits, so no bar";
    list->SetItems(Labels(2));
    list->Draw();
    EXPECT_EQ(RowOf(2), "") << "rows without an item are blank";
}

} // namespace
} // namespace Lanyx
