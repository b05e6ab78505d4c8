#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>

#include "text/Markup.hpp"

namespace Lanyx {
namespace {

std::string Blanks(size_t n) {
    return std::string(n, ' ');
}

class FormatTest : public ::testing::Test {
protected:
    std::string F(const std::string& text, int width) { return Format(text, width, sources); }

    void SetValue(const std::string& tag, const std::string& value) {
        sources[tag] = [value] { return value; };
    }

    TagSourceMap sources;
};

TEST_F(FormatTest, AlignmentRegions) {
    EXPECT_EQ(F("{align:right}OK{/align}", 10), Blanks(8) + "OK");
    EXPECT_EQ(F("{align:center}OK{/align}", 10), Blanks(4) + "OK");
    EXPECT_EQ(F("{align:center}OK{/align}", 11), Blanks(4) + "OK");
    EXPECT_EQ(F("Left{align:right}Right{/align}", 20), "Left" + Blanks(11) + "Right");
    // Centring uses what is left of the line, not the whole line.
    EXPECT_EQ(F("ab{align:center}cd{/align}", 10), "ab" + Blanks(3) + "cd");
    EXPECT_EQ(F("{align:left}a{/align}b", 10), "ab");
    EXPECT_EQ(F("{align}a{/align}b", 10), "ab");
    EXPECT_EQ(F("a{/align}b", 10), "ab");
}

TEST_F(FormatTest, AfterAnAlignedRegionNothingFitsOnTheLine) {
    EXPECT_EQ(F("{align:right}a{/align}b", 5), Blanks(4) + "a\nb");
    EXPECT_EQ(F("{align:center}a{/align}b", 5), Blanks(2) + "a\nb");
    // The break point before the region does not pull the aligned text apart.
    EXPECT_EQ(F("x y{align:right}z{/align}w", 6), "x y  z\nw");
}

TEST_F(FormatTest, RegionsDoNotNest) {
    EXPECT_EQ(F("{align:right}a{align:center}b{/align}c{/align}", 10), Blanks(8) + "ab\nc");
}

TEST_F(FormatTest, PaddingColumns) {
    EXPECT_EQ(F("{align:padding:5}abcdefgh{/align}x", 20), "abcdex");
    EXPECT_EQ(F("{align:padding:5}ab{/align}x", 20), "ab" + Blanks(3) + "x");
    EXPECT_EQ(F("{align:padding:3}ab{/align}{align:padding:3}c{/align}|", 20), "ab c  |");
    // Nonsense widths give an empty column rather than a runaway one.
    EXPECT_EQ(F("{align:padding:-3}ab{/align}x", 20), "x");
    EXPECT_EQ(F("{align:padding:zz}ab{/align}x", 20), "x");
    // The column's filling stops at the edge of the line.
    EXPECT_EQ(F("abc{align:padding:9}d{/align}x", 6), "abcd  \nx");
}

TEST_F(FormatTest, WrapsAtTheBlankBeforeTheWord) {
    EXPECT_EQ(F("aaa bbb", 5), "aaa\nbbb");
    EXPECT_EQ(F("abcdefg", 5), "abcde\nfg");
    EXPECT_EQ(F("abcde\nf", 5), "abcde\nf");
    EXPECT_EQ(F("abcde f", 5), "abcde\nf");
    EXPECT_EQ(F("ab\n\ncd", 5), "ab\n\ncd");
    EXPECT_EQ(F("a b c d e f", 5), "a b c\nd e f");
}

TEST_F(FormatTest, TheBlankCountsAsTheFirstCellOfTheWord) {
    // After the break the moved word has the whole next line: "cdefg" fits in five.
    EXPECT_EQ(F("ab cdefg", 5), "ab\ncdefg");
    EXPECT_EQ(F("ab cdefgh", 5), "ab\ncdefg\nh");
    EXPECT_EQ(F(" abcde", 5), "\nabcde");
}

TEST_F(FormatTest, RightRegionThatWrapsKeepsBothLinesRight) {
    EXPECT_EQ(F("{align:right}aaa bbb{/align}", 5), "  aaa\n  bbb");
}

TEST_F(FormatTest, TagsInsideWordsTakeNoRoom) {
    EXPECT_EQ(F("{color:red}abcde{/color}", 5), "{color:red}abcde{/color}");
    EXPECT_EQ(F("ab c{color:red}d{/color}e", 5), "ab\nc{color:red}d{/color}e");
    EXPECT_EQ(F("ab c{color:red}d{/color}e", 6), "ab c{color:red}d{/color}e");
    EXPECT_EQ(F("{color:white}<Esc>{/color} Back", 10), "{color:white}<Esc>{/color} Back");
}

TEST_F(FormatTest, UnknownEmptyAndUnclosedTags) {
    EXPECT_EQ(F("a{}b", 10), "ab");
    EXPECT_EQ(F("a{/foo}b", 10), "a{/foo}b");
    EXPECT_EQ(F("ab{color:red", 10), "ab");
    EXPECT_EQ(F("ab{", 10), "ab");
    EXPECT_EQ(F("a}b", 10), "a}b");
    EXPECT_EQ(F("{x{y}z", 10), "{x{y}z");
    SetValue("ip", "1.2.3.4");
    // The whole tag must equal the key, and names are case-sensitive.
    EXPECT_EQ(F("{ip:x}{IP}{ip}", 20), "{ip:x}{IP}1.2.3.4");
}

TEST_F(FormatTest, SubstitutionValues) {
    SetValue("ip", "192.168.100.200");
    EXPECT_EQ(F("IP {ip}.", 30), "IP 192.168.100.200.");
    EXPECT_EQ(F("{align:padding:7}{ip}{/align}|", 30), "192.168|");
    SetValue("v", "1234567");
    EXPECT_EQ(F("abc{v}", 5), "abc12\n34567");
}

TEST_F(FormatTest, NoBreakPointInsideAValue) {
    SetValue("v", "ab cd");
    EXPECT_EQ(F("{v}x", 5), "ab cd\nx");
    EXPECT_EQ(F("ab cdx", 5), "ab\ncdx");
}

TEST_F(FormatTest, WordMovedWithAValueStillFitsItsLine) {
    SetValue("v", "xy");
    EXPECT_EQ(F("ab {v}cdefg", 5), "ab\nxycde\nfg");
    SetValue("v", "12\n345");
    EXPECT_EQ(F("{v}abc", 5), "12\n345ab\nc");
    EXPECT_EQ(F("z {v}abc", 5), "z 12\n345ab\nc");
}

TEST_F(FormatTest, SourceIsCalledAtEveryLayoutAndMayThrow) {
    int calls = 0;
    sources["n"] = [&calls] { return std::to_string(++calls); };
    EXPECT_EQ(F("{n}", 5), "1");
    EXPECT_EQ(F("{n}{n}", 5), "23");
    sources["bad"] = []() -> std::string { throw std::runtime_error("host"); };
    EXPECT_THROW(F("a{bad}", 5), std::runtime_error);
}

TEST_F(FormatTest, EmptyTextAndDegenerateWidths) {
    EXPECT_EQ(F("", 10), "");
    EXPECT_EQ(F("abc", 0), "");
    EXPECT_EQ(F("abc", -4), "");
    EXPECT_EQ(F("ab c", 1), "a\nb\nc");
}

TEST(TagRegistryTest, UnpluggedTagsGiveTheirFallback) {
    const TagSourceMap sources = MakeTagSources();
    EXPECT_EQ(sources.size(), SubstitutionTags().size());
    EXPECT_EQ(Format("{ip}|{servicetag}|{hostname}|{CPLDversion}", 80, sources),
              "0.0.0.0|N/A||N/A");

    int calls = 0;
    RegisterTagSource("hostname", [&calls] {
        ++calls;
        return std::string("host.example");
    });
    // A source plugged after the map was built is found at layout time.
    EXPECT_EQ(Format("{hostname}", 80, sources), "host.example");
    EXPECT_EQ(Format("{hostname}", 80, sources), "host.example");
    EXPECT_EQ(calls, 2);
    RegisterTagSource("hostname", nullptr);
    EXPECT_EQ(Format("{hostname}", 80, sources), "");
    EXPECT_TRUE(IsSubstitutionTag("ssl-thumbprint-sha-256"));
    EXPECT_FALSE(IsSubstitutionTag("color"));
}

// Random markup from the pieces that interact: words, blanks, newlines, all kinds of tags.
std::string RandomMarkup(std::mt19937& rng) {
    static const char* const pieces[] = {
        "a",
        "bb",
        "cccccc",
        " ",
        "  ",
        "\n",
        "\t",
        "{color:red}",
        "{/color}",
        "{bgcolor:black}",
        "{align:right}",
        "{align:center}",
        "{align:padding:4}",
        "{align:padding:0}",
        "{/align}",
        "{v}",
        "{w}",
        "{",
        "}",
        "{}",
        "{x{y}",
        "\xc3\xa9",
        "\xff",
    };
    std::uniform_int_distribution<size_t> pick(0, std::size(pieces) - 1);
    std::uniform_int_distribution<int> count(0, 40);
    std::string text;
    for (int n = count(rng); n > 0; --n) {
        text += pieces[pick(rng)];
    }
    return text;
}

TEST_F(FormatTest, NoLineIsEverWiderThanTheWindow) {
    SetValue("v", "val ue");
    SetValue("w", "x\nyyyyyyyyy");
    std::mt19937 rng(20261123);
    for (int round = 0; round < 20000; ++round) {
        const std::string text = RandomMarkup(rng);
        const int width = 1 + round % 12;
        const std::string out = F(text, width);
        for (int cells : LineCells(out)) {
            ASSERT_LE(cells, width)
                << "width " << width << " text [" << text << "] out [" << out << "]";
        }
    }
}

} // namespace
} // namespace Lanyx
