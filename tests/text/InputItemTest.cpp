#include <gtest/gtest.h>

#include <memory>

#include "Screen.hpp"
#include "core/Keys.hpp"
#include "text/InputItem.hpp"
#include "text/ItemList.hpp"
#include "text/LabelItem.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {
namespace {

using namespace Testing;

// Fields in a list at the pane's origin: row texts are 27 cells wide and start in pane column
// 1, so a field of width W starts in pane column 1 + 25 - W and its " ]" ends in column 27.
class InputItemTest : public ::testing::Test {
protected:
    Window pane{0, 0, 40, 8, 3, 7};
    ItemList* list = new ItemList(&pane, 0, 0, 30, 4);
    LabelItem heading{"Heading", false};
    InputItem port{"Port:", "8080", 5};
    InputItem name{"Name:", "", 16};

    void SetUp() override {
        list->SetItems({&heading, &port, &name});
        list->Draw();
    }

    std::string Row(int row) { return RowText(pane.GetHandle(), 1, row, 27); }
    int PairAtColumn(int column, int row) { return PairAt(pane.GetHandle(), column, row); }
    // The field's first cell in pane columns.
    static int FieldStart(int width) { return 1 + 25 - width; }
    static int Column() { return Window::cursorX; }
    static std::string Blanks(size_t n) { return std::string(n, ' '); }
    // "Port:" and 12 blanks put a field of 5 against the edge of 27 cells.
    static std::string PortRow(const std::string& shown) {
        return "Port:" + Blanks(12) + " [ " + shown + Blanks(5 - shown.size()) + " ]";
    }
};

TEST_F(InputItemTest, NewFieldShowsItsValueSelectedWholeWithTheCursorBehindIt) {
    EXPECT_EQ(Row(1), PortRow("8080"));
    const int start = FieldStart(5);
    EXPECT_EQ(start, 21);
    EXPECT_EQ(PairAtColumn(start, 1), PairOf(7, 0)) << "inverted while all is selected";
    EXPECT_EQ(PairAtColumn(start + 3, 1), PairOf(7, 0));
    EXPECT_EQ(PairAtColumn(start + 4, 1), PairOf(0, 7)) << "the rest of the field is plain";
    EXPECT_EQ(Column(), start + 4);
    EXPECT_EQ(Window::cursorY, 1);
    EXPECT_EQ(Row(2), "Name:" + Blanks(1) + " [ " + Blanks(16) + " ]");
}

TEST_F(InputItemTest, FirstLetterReplacesTheValueAndMovesKeepIt) {
    port.HandleKey('9');
    list->Draw();
    EXPECT_EQ(port.GetValue(), "9");
    EXPECT_FALSE(port.IsSelectAll());
    EXPECT_EQ(Row(1), PortRow("9"));
    EXPECT_EQ(PairAtColumn(FieldStart(5), 1), PairOf(0, 7));
    EXPECT_EQ(Column(), FieldStart(5) + 1);

    for (int key : {Keys::Left, Keys::Right, Keys::Home, Keys::End}) {
        port.SetValue("8080");
        port.HandleKey(key);
        EXPECT_EQ(port.GetValue(), "8080") << "key " << key;
        EXPECT_FALSE(port.IsSelectAll()) << "key " << key;
    }
    port.SetValue("8080");
    port.HandleKey(Keys::Home);
    port.HandleKey('1');
    EXPECT_EQ(port.GetValue(), "18080");
    EXPECT_EQ(port.GetCursor(), 1);
}

TEST_F(InputItemTest, LeavingAndReturningSelectsAllAgain) {
    port.HandleKey(Keys::End);
    list->Draw();
    EXPECT_FALSE(port.IsSelectAll());
    list->SelectNext();
    list->SelectPrevious();
    EXPECT_TRUE(port.IsSelectAll());
    EXPECT_EQ(PairAtColumn(FieldStart(5), 1), PairOf(7, 0));
}

TEST_F(InputItemTest, EmptyFieldPutsTheCursorAtItsStartAndIgnoresBackspace) {
    list->SelectNext();
    EXPECT_EQ(Column(), FieldStart(16));
    EXPECT_EQ(Window::cursorY, 2);
    name.HandleKey(Keys::Backspace);
    name.HandleKey(Keys::CursesBackspace);
    list->Draw();
    EXPECT_EQ(name.GetValue(), "");
    EXPECT_EQ(name.GetCursor(), 0);
    EXPECT_EQ(Column(), FieldStart(16));
}

TEST_F(InputItemTest, LongValueShowsItsEndUntilHome) {
    port.SetValue("1234567");
    list->Draw();
    EXPECT_EQ(Row(1), PortRow("34567"));
    EXPECT_EQ(port.GetOffset(), 2);
    EXPECT_EQ(Column(), FieldStart(5) + 5) << "after the last character, on the blank";
    port.HandleKey(Keys::Home);
    list->Draw();
    EXPECT_EQ(Row(1), PortRow("12345"));
    EXPECT_EQ(Column(), FieldStart(5));
    for (int i = 0; i < 6; ++i) {
        port.HandleKey(Keys::Right);
    }
    list->Draw();
    EXPECT_EQ(port.GetOffset(), 1);
    EXPECT_EQ(Row(1), PortRow("23456"));
    EXPECT_EQ(Column(), FieldStart(5) + 5);
}

TEST_F(InputItemTest, MaskedValueShowsStarsAndTheCursorMovesAsUsual) {
    port.masked = true;
    port.SetValue("secret");
    list->Draw();
    EXPECT_EQ(Row(1), PortRow("*****"));
    port.HandleKey(Keys::Left);
    port.HandleKey(Keys::Left);
    list->Draw();
    EXPECT_EQ(Column(), FieldStart(5) + 3);
    EXPECT_EQ(port.GetValue(), "secret");
}

TEST_F(InputItemTest, HalfWidthFieldEndsAtTheRowsEdge) {
    InputItem wide{"Password:", "abc", -1};
    list->SetItems({&wide});
    list->Draw();
    // 27 / 2 - 1 = 12 cells.
    EXPECT_EQ(Row(0), "Password:" + Blanks(1) + " [ abc" + Blanks(9) + " ]");
    EXPECT_EQ(Column(), FieldStart(12) + 3);
}

TEST(InputItemKeys, EditingKeysWithoutSelection) {
    InputItem field{"", "abcdef", 3};
    field.HandleKey(Keys::End);
    field.HandleKey(Keys::Backspace);
    EXPECT_EQ(field.GetValue(), "abcde");
    EXPECT_EQ(field.GetCursor(), 5);
    field.HandleKey(Keys::Left);
    field.HandleKey(Keys::DeleteChar);
    EXPECT_EQ(field.GetValue(), "abcd");
    EXPECT_EQ(field.GetCursor(), 4);
    field.HandleKey(Keys::DeleteChar);
    EXPECT_EQ(field.GetValue(), "abcd") << "nothing under the cursor at the end";
    field.HandleKey(Keys::Right);
    EXPECT_EQ(field.GetCursor(), 4) << "not beyond the end";
    field.HandleKey(Keys::Home);
    field.HandleKey(Keys::Left);
    EXPECT_EQ(field.GetCursor(), 0);
    field.HandleKey('x');
    field.HandleKey(Keys::F2);
    field.HandleKey('\t');
    field.HandleKey(0x1234);
    field.HandleKey(-1);
    EXPECT_EQ(field.GetValue(), "xabcd") << "keys that are no characters insert nothing";
    EXPECT_EQ(field.GetCursor(), 1);
}

TEST(InputItemKeys, EveryOtherKeyClearsAWholeSelection) {
    for (int key : {Keys::DeleteChar, Keys::Backspace, Keys::CursesBackspace, Keys::F2, int{'q'}}) {
        InputItem field{"", "abc", 5};
        field.HandleKey(key);
        EXPECT_EQ(field.GetValue(), key == 'q' ? "q" : "") << "key " << key;
        EXPECT_EQ(field.GetCursor(), key == 'q' ? 1 : 0);
        EXPECT_EQ(field.GetOffset(), 0);
        EXPECT_FALSE(field.IsSelectAll());
    }
    InputItem empty{"", "", 5};
    empty.HandleKey(Keys::End);
    EXPECT_EQ(empty.GetCursor(), 0);
}

TEST(InputItemKeys, CursorDragsTheOffsetAndBackspaceLeftOfItShowsTheEnd) {
    InputItem field{"", "abcdefgh", 3};
    Window pane{0, 0, 40, 2, 3, 7};
    TextArea* row = new TextArea(&pane, 0, 0, 20, 1, -1);
    field.Draw(row);
    EXPECT_EQ(field.GetOffset(), 5);
    field.HandleKey(Keys::Left);
    field.HandleKey(Keys::Left);
    field.HandleKey(Keys::Left);
    EXPECT_EQ(field.GetCursor(), 5);
    EXPECT_EQ(field.GetOffset(), 5);
    field.HandleKey(Keys::Left);
    EXPECT_EQ(field.GetCursor(), 4);
    EXPECT_EQ(field.GetOffset(), 4) << "the cursor stood at the offset and took it along";
    field.SetValue("abcdefgh");
    field.Draw(row);
    field.HandleKey(Keys::Home);
    field.HandleKey(Keys::Right);
    EXPECT_EQ(field.GetOffset(), 0);
    // Offset 5 with the cursor at 5: deleting before it leaves the cursor left of the offset.
    field.SetValue("abcdefgh");
    field.Draw(row);
    field.HandleKey(Keys::Left);
    field.HandleKey(Keys::Left);
    field.HandleKey(Keys::Left);
    field.HandleKey(Keys::Backspace);
    EXPECT_EQ(field.GetValue(), "abcdfgh");
    EXPECT_EQ(field.GetOffset(), 0);
    EXPECT_EQ(field.GetCursor(), 7);
}

} // namespace
} // namespace Lanyx
