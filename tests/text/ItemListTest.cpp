#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "Screen.hpp"
#include "text/CheckItem.hpp"
#include "text/ItemList.hpp"
#include "text/LabelItem.hpp"
#include "text/RadioItem.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {
namespace {

using namespace Testing;

// A list of width 30 at (2, 1) in an amber pane: rows of 29 cells, texts of 27 from column 3
// of the pane, and the scroll bar in pane column 31.
class ItemListTest : public ::testing::Test {
protected:
    static constexpr int kListX = 2;
    static constexpr int kListY = 1;

    Window pane{0, 0, 40, 14, 3, 7};

    ItemList* MakeList(int rows) { return new ItemList(&pane, kListX, kListY, 30, rows); }

    LabelItem* Label(const std::string& text, bool selectable = true) {
        owned.push_back(std::make_unique<LabelItem>(text, selectable));
        return static_cast<LabelItem*>(owned.back().get());
    }

    template <typename T, typename... Args> T* Make(Args&&... args) {
        owned.push_back(std::make_unique<T>(std::forward<Args>(args)...));
        return static_cast<T*>(owned.back().get());
    }

    std::vector<Item*> Labels(int count) {
        std::vector<Item*> items;
        for (int i = 0; i < count; ++i) {
            items.push_back(Label("item " + std::to_string(i)));
        }
        return items;
    }

    // The text of list row `row`, from the text area's first cell.
    std::string RowOf(int row) { return RowText(pane.GetHandle(), kListX + 1, kListY + row, 27); }
    int TextPair(int row, int column = 0) {
        return PairAt(pane.GetHandle(), kListX + 1 + column, kListY + row);
    }
    std::string BarCell(int row) { return CellText(pane.GetHandle(), kListX + 29, kListY + row); }

    std::vector<std::unique_ptr<Item>> owned;
};

TEST_F(ItemListTest, DrawsEachItemInItsColoursAndTheSelectionWhiteOnBlack) {
    ItemList* list = MakeList(6);
    LabelItem* heading = Label("Heading", false);
    LabelItem* first = Label("First");
    CheckItem* check = Make<CheckItem>("Enabled", true, 2);
    RadioItem* radio = Make<RadioItem>("DHCP", false);
    LabelItem* marked = Label("a{color:red}b{/color}c");
    list->SetItems({heading, first, check, radio, marked});
    EXPECT_EQ(list->GetSelectedRow(), 1u) << "the heading is skipped";
    EXPECT_EQ(list->GetSelectedOrdinal(), 0u);
    list->Draw();

    EXPECT_EQ(RowOf(0), "Heading");
    EXPECT_EQ(RowOf(1), "First");
    EXPECT_EQ(RowOf(2), "  [X] Enabled");
    EXPECT_EQ(RowOf(3), "( ) DHCP");
    EXPECT_EQ(RowOf(4), "abc");
    EXPECT_EQ(RowOf(5), "");

    EXPECT_EQ(TextPair(0), PairOf(3, 0));
    EXPECT_EQ(TextPair(1), PairOf(0, 7));
    EXPECT_EQ(TextPair(1, 26), PairOf(0, 7)) << "the bar spans the text area";
    EXPECT_EQ(PairAt(pane.GetHandle(), kListX, kListY + 1), PairOf(3, 7)) << "not the row's edge";
    EXPECT_EQ(TextPair(4, 1), PairOf(3, 1));
    EXPECT_EQ(TextPair(4, 2), PairOf(3, 0));
    EXPECT_TRUE(first->IsSelected());
    EXPECT_FALSE(heading->IsSelected());
    EXPECT_EQ(BarCell(0), " ") << "everything fits, so no bar";

    check->SetChecked(false);
    radio->SetChecked(true);
    list->SelectNext();
    EXPECT_EQ(RowOf(2), "  [ ] Enabled");
    EXPECT_EQ(RowOf(3), "(o) DHCP");
    EXPECT_EQ(TextPair(1), PairOf(3, 0)) << "the old selection returns to the item's colours";
    EXPECT_EQ(TextPair(2), PairOf(0, 7));
    EXPECT_FALSE(first->IsSelected());
    EXPECT_TRUE(check->IsSelected());
}

TEST_F(ItemListTest, DisabledItemsAreGreySkippedAndCounted) {
    ItemList* list = MakeList(6);
    LabelItem* off = Label("Off");
    off->SetEnabled(false);
    LabelItem* on = Label("On");
    LabelItem* heading = Label("Heading", false);
    LabelItem* also = Label("Also off");
    also->SetEnabled(false);
    LabelItem* last = Label("Last");
    list->SetItems({off, on, heading, also, last});
    EXPECT_EQ(list->GetSelectedRow(), 1u);
    EXPECT_EQ(list->GetSelectedOrdinal(), 1u) << "a disabled selectable item counts";
    list->Draw();
    EXPECT_EQ(TextPair(0), PairOf(3, 6));
    EXPECT_EQ(TextPair(3), PairOf(3, 6));

    list->SelectNext();
    EXPECT_EQ(list->GetSelectedRow(), 4u);
    EXPECT_EQ(list->GetSelectedOrdinal(), 3u) << "the heading does not count, the disabled does";
    EXPECT_TRUE(last->IsSelected());

    list->SelectNext();
    EXPECT_EQ(list->GetSelectedRow(), 4u) << "no wrap-around at the end";
    EXPECT_EQ(list->GetSelectedOrdinal(), 3u);

    list->SelectPrevious();
    EXPECT_EQ(list->GetSelectedRow(), 1u);
    EXPECT_EQ(list->GetSelectedOrdinal(), 1u);
    list->SelectPrevious();
    EXPECT_EQ(list->GetSelectedRow(), 1u) << "only a disabled item above: nothing changes";
    EXPECT_EQ(list->GetSelectedOrdinal(), 1u);

    also->SetEnabled(true);
    EXPECT_EQ(also->GetForeground(), 0);
    list->SelectNext();
    EXPECT_EQ(list->GetSelectedRow(), 3u);
    EXPECT_EQ(list->GetSelectedOrdinal(), 2u);
}

TEST_F(ItemListTest, ScrollsWithTheSelectionAndHeadingsOnlyComeAlong) {
    ItemList* list = MakeList(3);
    std::vector<Item*> items = {Label("Top", false), Label("a"), Label("b"), Label("Mid", false),
                                Label("c")};
    list->SetItems(items);
    list->Draw();
    EXPECT_EQ(RowOf(0), "Top");

    list->SelectNext();
    list->SelectNext();
    EXPECT_EQ(list->GetTopIndex(), 2);
    EXPECT_EQ(list->GetSelectedRow(), 2u) << "the new item becomes the bottom row";
    EXPECT_EQ(list->GetSelectedOrdinal(), 2u);
    EXPECT_EQ(RowOf(0), "b");
    EXPECT_EQ(RowOf(1), "Mid");
    EXPECT_EQ(RowOf(2), "c");
    EXPECT_EQ(TextPair(2), PairOf(0, 7));

    list->SelectPrevious();
    EXPECT_EQ(list->GetTopIndex(), 2);
    EXPECT_EQ(list->GetSelectedRow(), 0u);
    list->SelectPrevious();
    EXPECT_EQ(list->GetTopIndex(), 1) << "the item above becomes the top row";
    EXPECT_EQ(list->GetSelectedRow(), 0u);
    EXPECT_EQ(list->GetSelectedOrdinal(), 0u);
    list->SelectPrevious();
    EXPECT_EQ(list->GetTopIndex(), 1) << "a heading alone never scrolls into view";
    EXPECT_EQ(RowOf(0), "a");
}

TEST_F(ItemListTest, ScrollBarMarksThePosition) {
    ItemList* list = MakeList(10);
    list->SetItems(Labels(20));
    list->Draw();
    EXPECT_EQ(BarCell(0), "\u2588");
    for (int row = 1; row < 10; ++row) {
        EXPECT_EQ(BarCell(row), "\u2593") << "row " << row;
    }

    for (int i = 0; i < 14; ++i) {
        list->SelectNext();
    }
    ASSERT_EQ(list->GetTopIndex(), 5);
    EXPECT_EQ(RowOf(0), "item 5");
    EXPECT_EQ(RowOf(9), "item 14");
    for (int row = 0; row < 10; ++row) {
        EXPECT_EQ(BarCell(row), row == 4 ? "\u2588" : "\u2593") << "row " << row;
    }

    for (int i = 0; i < 10; ++i) {
        list->SelectNext();
    }
    EXPECT_EQ(list->GetTopIndex(), 10);
    EXPECT_EQ(BarCell(9), "\u2588");
    EXPECT_EQ(BarCell(0), "\u2593");
}

TEST_F(ItemListTest, FullListAndShortListLeaveTheBarColumnEmpty) {
    ItemList* list = MakeList(4);
    list->SetItems(Labels(6));
    list->Draw();
    ASSERT_EQ(BarCell(0), "\u2588");
    list->SetItems(Labels(4));
    list->Draw();
    for (int row = 0; row < 4; ++row) {
        EXPECT_EQ(BarCell(row), " ");
    }
    list->SetItems(Labels(2));
    list->Draw();
    EXPECT_EQ(RowOf(2), "") << "rows without an item are blank";
    EXPECT_EQ(TextPair(2), PairOf(3, 7));
}

TEST_F(ItemListTest, SelectOrdinalCountsSelectableItems) {
    ItemList* list = MakeList(8);
    LabelItem* disabled = Label("Disabled");
    disabled->SetEnabled(false);
    list->SetItems({Label("Heading", false), Label("zero"), disabled, Label("Blank", false),
                    Label("two")});
    list->SelectOrdinal(2);
    EXPECT_EQ(list->GetSelectedRow(), 4u);
    EXPECT_EQ(list->GetSelectedOrdinal(), 2u);
    list->SelectOrdinal(1);
    EXPECT_EQ(list->GetSelectedRow(), 2u) << "a disabled item can be chosen by number";
    list->SelectOrdinal(3);
    EXPECT_EQ(list->GetSelectedRow(), 2u) << "no such item: nothing changes";
    EXPECT_EQ(list->GetSelectedOrdinal(), 1u);
}

TEST_F(ItemListTest, SelectOrdinalBringsAnItemOutOfSightIntoView) {
    ItemList* list = MakeList(3);
    list->SetItems(Labels(8));
    list->SelectOrdinal(6);
    EXPECT_EQ(list->GetTopIndex(), 4);
    EXPECT_EQ(list->GetSelectedRow(), 2u);
    list->SelectOrdinal(1);
    EXPECT_EQ(list->GetTopIndex(), 1);
    EXPECT_EQ(list->GetSelectedRow(), 0u);
    list->Draw();
    EXPECT_EQ(RowOf(0), "item 1");
    EXPECT_EQ(TextPair(0), PairOf(0, 7));
}

TEST_F(ItemListTest, SetItemsStartsOverAndAListWithoutChoiceKeepsItsRow) {
    ItemList* list = MakeList(3);
    list->SetItems(Labels(8));
    for (int i = 0; i < 5; ++i) {
        list->SelectNext();
    }
    list->SetItems({Label("none", false), Label("either", false)});
    EXPECT_EQ(list->GetTopIndex(), 0);
    EXPECT_EQ(list->GetSelectedOrdinal(), 0u);
    EXPECT_EQ(list->GetSelectedRow(), 2u);
    list->Draw();
    list->SelectNext();
    list->SelectPrevious();
    EXPECT_EQ(RowOf(0), "none");
}

TEST_F(ItemListTest, DimmedListLosesItsColoursAndRegainsThem) {
    ItemList* list = MakeList(3);
    LabelItem* off = Label("Off");
    off->SetEnabled(false);
    list->SetItems({Label("On"), off});
    list->Draw();
    pane.SetActive(false);
    EXPECT_EQ(RowOf(0), "On");
    EXPECT_EQ(TextPair(0), PairOf(0, 6));
    EXPECT_EQ(TextPair(1), PairOf(0, 6));
    pane.SetActive(true);
    EXPECT_EQ(TextPair(0), PairOf(0, 7));
    EXPECT_EQ(TextPair(1), PairOf(3, 6));
}

TEST_F(ItemListTest, MonochromeShowsTheSelectionAsStandout) {
    MonochromeScope mono;
    Window monoPane{0, 0, 40, 6, 3, 7};
    ItemList* list = new ItemList(&monoPane, 2, 1, 30, 3);
    LabelItem* off = Label("Off");
    off->SetEnabled(false);
    list->SetItems({Label("On"), off, Label("Other")});
    list->Draw();
    EXPECT_TRUE(Standout(monoPane.GetHandle(), 3, 1));
    EXPECT_FALSE(Standout(monoPane.GetHandle(), 3, 2)) << "grey on amber is plain";
    EXPECT_FALSE(Standout(monoPane.GetHandle(), 3, 3));
    list->SelectNext();
    EXPECT_FALSE(Standout(monoPane.GetHandle(), 3, 1));
    EXPECT_TRUE(Standout(monoPane.GetHandle(), 3, 3));
}

} // namespace
} // namespace Lanyx
