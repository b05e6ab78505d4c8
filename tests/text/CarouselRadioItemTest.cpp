// The carousel row: its text, and Left and Right wrapping at both ends.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "text/CarouselRadioItem.hpp"
#include "text/InfoDialog.hpp"
#include "text/PortGroupInfo.hpp"

namespace Lanyx {
namespace {

using Carousel = CarouselRadioItem<PortGroupInfo, InfoDialog, void>;

std::vector<PortGroupInfo> Groups(const std::vector<std::string>& names) {
    std::vector<PortGroupInfo> rows;
    for (const std::string& name : names)
        rows.emplace_back(name, "switch0", 1, 0);
    return rows;
}

TEST(CarouselRadioItem, TurnsBothWaysWithWrapAround) {
    struct Case {
        std::vector<std::string> names;
        std::string keys; // 'L' and 'R'
        size_t shown;
    };
    const std::vector<Case> cases = {
        {{"a", "b", "c"}, "", 0},    {{"a", "b", "c"}, "L", 2}, {{"a", "b", "c"}, "RRR", 0},
        {{"a", "b", "c"}, "RRL", 1}, {{"a"}, "L", 0},           {{"a"}, "RR", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.keys + " over " + std::to_string(c.names.size()));
        Carousel item(nullptr, Groups(c.names));
        for (char key : c.keys)
            key == 'L' ? item.Previous() : item.Next();
        EXPECT_EQ(item.CurrentIndex(), c.shown);
        EXPECT_EQ(item.Current().Name(), c.names[c.shown]);
        EXPECT_EQ(item.GetText(), "< " + item.Current().GetRow() + " >");
        EXPECT_TRUE(item.IsSelectable());
    }
    // Without rows the item stays put and shows an empty frame instead of failing.
    Carousel empty(nullptr, {});
    empty.Next();
    empty.Previous();
    empty.ShowDetails();
    EXPECT_TRUE(empty.Empty());
    EXPECT_EQ(empty.GetText(), "< >");
}

} // namespace
} // namespace Lanyx
