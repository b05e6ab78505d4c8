#include <gtest/gtest.h>

#include "Screen.hpp"
#include "core/Keys.hpp"
#include "text/InputItem.hpp"
#include "text/ItemList.hpp"
#include "text/LabelItem.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {
namespace {

using namespace Testing;

// Fields in a list at the pane's origin: row texts are 27 cells wide from pane column 1, so a
// field of width W starts in pane column 26 - W and its " ]" ends in column 27.
class InputItemTest : public ::testing::Test {
protected:
    Window pane{0, 0, 40, 8, 3, 7};
    ItemList* list = new ItemList(&pane, 0, 0, 30, 4);
    LabelItem heading{"Heading", false};
    InputItem port{"Port:", "8080", 5};
    InputItem name{"Name:", "", 16};
    static constexpr int kPortStart = 21;

    void SetUp() override {
        list->SetItems({&heading, &port, &name});
        list->Draw();
    }
    std::string Row(int row) { return RowText(pane.GetHandle(), 1, row, 27); }
    int Pair(int column, int row = 1) { return PairAt(pane.GetHandle(), column, row); }
    static std::string PortRow(const std::string& shown) {
        return "Port:" + std::string(12, ' ') + " [ " + shown + std::string(5 - shown.size(), ' ') +
               " ]";
    }
};

TEST_F(InputItemTest, NewFieldIsSelectedWholeUntilAKey) {
    EXPECT_EQ(Row(1), PortRow("8080"));
    EXPECT_EQ(Pair(kPortStart), PairOf(7, 0)) << "inverted while all is selected";
    EXPECT_EQ(Pair(kPortStart + 4), PairOf(0, 7));
    EXPECT_EQ(Window::cursorX, kPortStart + 4);
    EXPECT_EQ(Window::cursorY, 1);

    // A character replaces the value, a move keeps it, any other key clears it.
    port.HandleKey('9');
    list->Draw();
    EXPECT_EQ(Row(1), PortRow("9"));
    EXPECT_EQ(Pair(kPortStart), PairOf(0, 7));
    for (int key : {Keys::Left, Keys::Right, Keys::Home, Keys::End, Keys::DeleteChar,
                    Keys::Backspace, Keys::F2}) {
        InputItem field{"", "abc", 5};
        field.HandleKey(key);
        const bool move =
            key == Keys::Left || key == Keys::Right || key == Keys::Home || key == Keys::End;
        EXPECT_EQ(field.GetValue(), move ? "abc" : "") << "key " << key;
        EXPECT_FALSE(field.IsSelectAll()) << "key " << key;
    }

    // Leaving and coming back selects it all again.
    list->SelectNext();
    EXPECT_EQ(Window::cursorX, 26 - 16) << "an empty field puts the cursor at its start";
    list->SelectPrevious();
    EXPECT_TRUE(port.IsSelectAll());
}

TEST_F(InputItemTest, LongAndMaskedValuesScrollWithTheCursor) {
    port.SetValue("1234567");
    list->Draw();
    EXPECT_EQ(Row(1), PortRow("34567"));
    EXPECT_EQ(Window::cursorX, kPortStart + 5) << "after the last character, on the blank";
    port.HandleKey(Keys::Home);
    list->Draw();
    EXPECT_EQ(Row(1), PortRow("12345"));
    for (int i = 0; i < 6; ++i)
        port.HandleKey(Keys::Right);
    list->Draw();
    EXPECT_EQ(Row(1), PortRow("23456"));
    EXPECT_EQ(Window::cursorX, kPortStart + 5);

    port.masked = true;
    port.SetValue("secret");
    list->Draw();
    port.HandleKey(Keys::Left);
    port.HandleKey(Keys::Left);
    list->Draw();
    EXPECT_EQ(Row(1), PortRow("*****"));
    EXPECT_EQ(Window::cursorX, kPortStart + 3);
    EXPECT_EQ(port.GetValue(), "secret");

    // Width -1: half the row less one, ending at the row's edge.
    InputItem wide{"Password:", "abc", -1};
    list->SetItems({&wide});
    list->Draw();
    EXPECT_EQ(Row(0), "Password:  [ abc" + std::string(9, ' ') + " ]");
}

TEST(InputItemKeys, EditingWithoutSelection) {
    InputItem field{"", "abcdef", 3};
    const struct {
        int key;
        const char* value;
        int cursor;
    } steps[] = {
        {Keys::End, "abcdef", 6},      {Keys::Backspace, "abcde", 5},
        {Keys::Left, "abcde", 4},      {Keys::DeleteChar, "abcd", 4},
        {Keys::DeleteChar, "abcd", 4}, {Keys::Right, "abcd", 4},
        {Keys::Home, "abcd", 0},       {Keys::Left, "abcd", 0},
        {Keys::Backspace, "abcd", 0},  {'x', "xabcd", 1},
        {Keys::F2, "xabcd", 1},        {'\t', "xabcd", 1},
        {0x1234, "xabcd", 1},          {-1, "xabcd", 1},
    };
    for (const auto& step : steps) {
        field.HandleKey(step.key);
        EXPECT_EQ(field.GetValue(), step.value) << "key " << step.key;
        EXPECT_EQ(field.GetCursor(), step.cursor) << "key " << step.key;
    }
}

TEST(InputItemKeys, CursorDragsTheOffsetAndBackspaceLeftOfItShowsTheEnd) {
    InputItem field{"", "abcdefgh", 3};
    Window pane{0, 0, 40, 2, 3, 7};
    TextArea* row = new TextArea(&pane, 0, 0, 20, 1, -1);
    field.Draw(row);
    EXPECT_EQ(field.GetOffset(), 5);
    for (int i = 0; i < 4; ++i)
        field.HandleKey(Keys::Left);
    EXPECT_EQ(field.GetCursor(), 4);
    EXPECT_EQ(field.GetOffset(), 4) << "the cursor stood at the offset and took it along";
    // Offset 5 with the cursor at 5: deleting before it leaves the cursor left of the offset.
    field.SetValue("abcdefgh");
    field.Draw(row);
    for (int i = 0; i < 3; ++i)
        field.HandleKey(Keys::Left);
    field.HandleKey(Keys::Backspace);
    EXPECT_EQ(field.GetValue(), "abcdfgh");
    EXPECT_EQ(field.GetOffset(), 0);
    EXPECT_EQ(field.GetCursor(), 7);
}

} // namespace
} // namespace Lanyx
