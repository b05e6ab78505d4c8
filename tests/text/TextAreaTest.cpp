#include <gtest/gtest.h>

#include "Screen.hpp"
#include "text/TextArea.hpp"

namespace Lanyx {
namespace {

using namespace Testing;

// In a dialog-like parent: amber background, dark-grey text.
class TextAreaTest : public ::testing::Test {
protected:
    Window parent{0, 0, 30, 6, 3, 6};
    // Owned by the parent, as every child window is.
    TextArea* area = new TextArea(&parent, 1, 1, 12, 2, -1);
};

TEST_F(TextAreaTest, LaysOutForItsOwnWidthAndCutsBelow) {
    area->SetText("aaa bbb ccc ddd eee fff ggg");
    EXPECT_EQ(RowText(*area, 0), "aaa bbb ccc");
    EXPECT_EQ(RowText(*area, 1), "ddd eee fff");
    EXPECT_EQ(RowText(parent, 3), "") << "the parent's row under the area stays untouched";
    area->SetText("hi");
    area->AppendText(" there{align:right}!{/align}");
    EXPECT_EQ(RowText(*area, 0), "hi there   !");
    EXPECT_EQ(RowText(*area, 1), "");
    area->SetText("a\tb\xff"
                  "c\x01");
    EXPECT_EQ(RowText(*area, 0), "a b?c");
}

TEST_F(TextAreaTest, SubstitutionsAreEvaluatedAtEveryLayout) {
    int calls = 0;
    RegisterTagSource("hostname", [&calls] { return "host" + std::to_string(++calls); });
    area->SetText("{hostname}");
    EXPECT_EQ(RowText(*area, 0), "host1");
    area->SetActive(false);
    area->SetActive(true);
    EXPECT_EQ(RowText(*area, 0), "host3");
    RegisterTagSource("hostname", nullptr);
}

} // namespace
} // namespace Lanyx
