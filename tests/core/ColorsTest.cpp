#include <gtest/gtest.h>

#include <set>

#include "core/Colors.hpp"
#include "core/Globals.hpp"

namespace Lanyx {
namespace {

TEST(ColorAttr, MonochromeIsStandoutOnDarkBackgroundsOnly) {
    for (int foreground : {0, 1, 2, 3, 6, 7}) {
        EXPECT_EQ(ColorAttrFor(ColorBlack, foreground, true, 8), A_STANDOUT);
        EXPECT_EQ(ColorAttrFor(ColorDarkGrey, foreground, true, 8), A_STANDOUT);
        for (int background : {1, 2, 3, 7})
            EXPECT_EQ(ColorAttrFor(background, foreground, true, 8), A_NORMAL)
                << background << "/" << foreground;
    }
    monochrome = true;
    EXPECT_EQ(ColorAttr(ColorDarkGrey, ColorWhite), A_STANDOUT);
    monochrome = false;
}

// Beyond what the pair field holds, pairs are numbered as for eight colours instead of spilling
// into the video attributes.
TEST(Palette, EveryPairColorAttrAsksForIsInitialisedAndFitsItsField) {
    const int order[6] = {7, 0, 3, 2, 6, 1};
    for (int colors : {8, 16, 35, 36, 88, 256}) {
        const auto pairs = PairDefinitions(colors);
        std::set<int> numbers;
        for (size_t i = 0; i < pairs.size(); ++i) {
            EXPECT_EQ(pairs[i].background, order[i / 6]);
            EXPECT_EQ(pairs[i].foreground, order[i % 6]);
            EXPECT_LE(pairs[i].pair, 255);
            EXPECT_EQ(ColorAttrFor(pairs[i].background, pairs[i].foreground, false, colors) >> 8,
                      static_cast<attr_t>(pairs[i].pair));
            numbers.insert(pairs[i].pair);
        }
        EXPECT_EQ(numbers.size(), 36u) << colors;
        EXPECT_GT(*numbers.begin(), 0) << "pair 0 is the terminal's own and cannot be set";
        EXPECT_EQ(ColorAttrFor(ColorWhite, ColorWhite, false, colors) & ~A_COLOR, attr_t{0});
    }
}

} // namespace
} // namespace Lanyx
