#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "text/Markup.hpp"

namespace Lanyx {

// Readable failures; found by the framework through the namespace of the step.
std::ostream& operator<<(std::ostream& os, const RenderStep& step) {
    if (step.kind == RenderStep::Kind::Print)
        return os << "Print(" << step.x << "," << step.y << ",\"" << step.text << "\")";
    return os << "Attr(" << step.offBg << "," << step.offFg << " -> " << step.onBg << ","
              << step.onFg << ")";
}

namespace {

struct Layout {
    const char* text;
    int width;
    const char* expected;
};

// Values: "ip" a long address, "v" a value with a blank, "nl" a value with a newline.
TagSourceMap Sources() {
    TagSourceMap sources;
    sources["ip"] = [] { return std::string("192.168.100.200"); };
    sources["v"] = [] { return std::string("ab cd"); };
    sources["nl"] = [] { return std::string("12\n345"); };
    return sources;
}

TEST(Format, LayoutRules) {
    const Layout cases[] = {
        // alignment regions: centring uses what is left of the line
        {"{align:right}OK{/align}", 10, "        OK"},
        {"{align:center}OK{/align}", 11, "    OK"},
        {"ab{align:center}cd{/align}", 10, "ab   cd"},
        {"{align}a{/align}b", 10, "ab"},
        // after an aligned region nothing fits on the line; regions do not nest
        {"{align:right}a{/align}b", 5, "    a\nb"},
        {"x y{align:right}z{/align}w", 6, "x y  z\nw"},
        {"{align:right}a{align:center}b{/align}c{/align}", 10, "        ab\nc"},
        {"{align:right}aaa bbb{/align}", 5, "  aaa\n  bbb"},
        // padding columns cut, fill, and stop at the edge of the line
        {"{align:padding:5}abcdefgh{/align}x", 20, "abcdex"},
        {"{align:padding:3}ab{/align}{align:padding:3}c{/align}|", 20, "ab c  |"},
        {"{align:padding:-3}ab{/align}x", 20, "x"},
        {"{align:padding:zz}ab{/align}x", 20, "x"},
        {"abc{align:padding:9}d{/align}x", 6, "abcd  \nx"},
        // wrapping at the blank before the word, which then has the whole next line
        {"aaa bbb", 5, "aaa\nbbb"},
        {"abcdefg", 5, "abcde\nfg"},
        {"abcde f", 5, "abcde\nf"},
        {"ab\n\ncd", 5, "ab\n\ncd"},
        {"ab cdefgh", 5, "ab\ncdefg\nh"},
        {" abcde", 5, "\nabcde"},
        {"ab c", 1, "a\nb\nc"},
        {"abc", 0, ""},
        {"abc", -4, ""},
        // tags take no room; unknown, empty and unclosed ones
        {"ab c{color:red}d{/color}e", 5, "ab\nc{color:red}d{/color}e"},
        {"ab c{color:red}d{/color}e", 6, "ab c{color:red}d{/color}e"},
        {"a{}b", 10, "ab"},
        {"a{/foo}b", 10, "a{/foo}b"},
        {"ab{color:red", 10, "ab"},
        {"a}b", 10, "a}b"},
        {"{x{y}z", 10, "{x{y}z"},
        {"{ip:x}{IP}{ip}", 20, "{ip:x}{IP}192.168.100.200"},
        // values: cut by padding, no break point inside one, a moved word still fits
        {"{align:padding:7}{ip}{/align}|", 30, "192.168|"},
        {"{v}x", 5, "ab cd\nx"},
        {"ab cdx", 5, "ab\ncdx"},
        {"{nl}abc", 5, "12\n345ab\nc"},
        {"z {nl}abc", 5, "z 12\n345ab\nc"},
    };
    const TagSourceMap sources = Sources();
    for (const Layout& c : cases)
        EXPECT_EQ(Format(c.text, c.width, sources), c.expected)
            << "[" << c.text << "] width " << c.width;
}

TEST(Format, SourceIsCalledAtEveryLayoutAndMayThrow) {
    int calls = 0;
    TagSourceMap sources;
    sources["n"] = [&calls] { return std::to_string(++calls); };
    EXPECT_EQ(Format("{n}", 5, sources), "1");
    EXPECT_EQ(Format("{n}{n}", 5, sources), "23");
    sources["bad"] = []() -> std::string { throw std::runtime_error("host"); };
    EXPECT_THROW(Format("a{bad}", 5, sources), std::runtime_error);
}

TEST(Format, RegisteredTagsAreLookedUpAtLayoutTime) {
    const TagSourceMap sources = MakeTagSources();
    EXPECT_EQ(sources.size(), SubstitutionTags().size());
    EXPECT_EQ(Format("{ip}|{servicetag}|{hostname}|{CPLDversion}", 80, sources),
              "0.0.0.0|N/A||N/A");
    RegisterTagSource("hostname", [] { return std::string("host.example"); });
    EXPECT_EQ(Format("{hostname}", 80, sources), "host.example");
    RegisterTagSource("hostname", nullptr);
    EXPECT_EQ(Format("{hostname}", 80, sources), "");
}

RenderStep Print(int x, int y, const std::string& text) {
    RenderStep step;
    step.kind = RenderStep::Kind::Print;
    std::tie(step.x, step.y, step.text) = std::tie(x, y, text);
    return step;
}

RenderStep Attr(int offBg, int offFg, int onBg, int onFg) {
    RenderStep step;
    step.kind = RenderStep::Kind::Attributes;
    std::tie(step.offBg, step.offFg, step.onBg, step.onFg) = std::tie(offBg, offFg, onBg, onFg);
    return step;
}

using Steps = std::vector<RenderStep>;

class Render : public ::testing::Test {
protected:
    Steps Plan(const std::string& formatted) {
        return PlanRender(formatted, window, MakeColorNames());
    }

    // Amber window with dark-grey text, as the dialogs' footers have.
    RenderWindow window{20, 3, 3, 6, true};
};

TEST_F(Render, ColourRunsSwitchAttributesDoNotNestAndNotWhileDimmed) {
    EXPECT_EQ(Plan("ab\n\ncd"), (Steps{Print(0, 0, "ab"), Print(0, 2, "cd")}));
    EXPECT_EQ(Plan("a{color:black}<Esc>{/color}b"),
              (Steps{Print(0, 0, "a"), Attr(3, 6, 3, 0), Print(1, 0, "<Esc>"), Attr(3, 0, 3, 6),
                     Print(6, 0, "b")}));
    EXPECT_EQ(Plan("{bgcolor:red}x{/bgcolor}y"),
              (Steps{Attr(3, 6, 1, 6), Print(0, 0, "x"), Attr(1, 6, 3, 6), Print(1, 0, "y")}));
    // The inner close returns to the window's colours; the outer one then does nothing.
    EXPECT_EQ(Plan("{color:red}a{color:white}b{/color}c{/color}d"),
              (Steps{Attr(3, 6, 3, 1), Print(0, 0, "a"), Attr(3, 6, 3, 7), Print(1, 0, "b"),
                     Attr(3, 7, 3, 6), Print(2, 0, "cd")}));
    // Unknown colours and other tags change nothing and do not split the text.
    EXPECT_EQ(Plan("{color:Red}x"), (Steps{Print(0, 0, "x")}));
    EXPECT_EQ(Plan("a{/foo}b{/color}{/bgcolor}{}c{ip:x}d"), (Steps{Print(0, 0, "abcd")}));
    // Dimmed text changes no attributes.
    window.active = false;
    EXPECT_EQ(Plan("a{color:red}b{/color}{bgcolor:black}c{/bgcolor}"),
              (Steps{Print(0, 0, "a"), Print(1, 0, "b"), Print(2, 0, "c")}));
}

TEST(PrintableCells, EveryByteStaysOneCellAtMost) {
    EXPECT_EQ(PrintableCells("a\tb\rc\x01\x7f", true), "a b c  ");
    EXPECT_EQ(PrintableCells("caf\xc3\xa9", true), "caf\xc3\xa9");
    EXPECT_EQ(PrintableCells("caf\xc3\xa9", false), "caf??");
    // Broken, overlong and cut sequences, and an encoded control character.
    EXPECT_EQ(PrintableCells("\xff\xc0\x80x\xe2\x82", true), "???x??");
    EXPECT_EQ(PrintableCells("\xc2\x85", true), "?");
    EXPECT_EQ(PrintableCells(std::string("a\0b", 3), true), "a b");
}

} // namespace
} // namespace Lanyx
