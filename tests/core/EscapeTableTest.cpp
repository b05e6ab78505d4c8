#include <gtest/gtest.h>

#include <map>
#include <set>

#include "core/EscapeTable.hpp"
#include "core/Keys.hpp"

namespace Lanyx {
namespace {

std::map<std::string, int> AsMap()
{
    std::map<std::string, int> map;
    for (const auto& binding : EscapeTable())
        map[binding.sequence] = binding.code;
    return map;
}

TEST(EscapeTable, EveryBindingIsEscapeSequenceExceptByte127Last)
{
    const auto& table = EscapeTable();
    ASSERT_EQ(table.size(), 68u);
    for (size_t i = 0; i + 1 < table.size(); ++i) {
        ASSERT_GE(table[i].sequence.size(), 2u);
        EXPECT_EQ(table[i].sequence[0], '\x1b') << i;
    }
    EXPECT_EQ(table.back().sequence, "\x7f");
    EXPECT_EQ(table.back().code, Keys::CursesBackspace);
    std::set<std::string> distinct;
    for (const auto& binding : table)
        EXPECT_TRUE(distinct.insert(binding.sequence).second) << "twice: " << binding.sequence;
}

TEST(EscapeTable, InstalledInTheTableOrder)
{
    const auto& table = EscapeTable();
    EXPECT_EQ(table[0].sequence, "\x1bR");
    EXPECT_EQ(table[0].code, Keys::Resize);
    // The families follow one another: "[nn~" F1..F12, digits F1..F12, then the six
    // navigation letters.
    EXPECT_EQ(table[1].sequence, "\x1b[11~");
    EXPECT_EQ(table[12].sequence, "\x1b[24~");
    EXPECT_EQ(table[13].sequence, "\x1b" "1");
    EXPECT_EQ(table[24].sequence, "\x1b@");
    EXPECT_EQ(table[25].sequence, "\x1bh");
    EXPECT_EQ(table[30].sequence, "\x1b/");
    EXPECT_EQ(table[31].sequence, "\x1b[M");
    EXPECT_EQ(table[43].sequence, "\x1bOP");
    EXPECT_EQ(table[52].sequence, "\x1bOY");
    EXPECT_EQ(table[53].sequence, "\x1bOA");
    EXPECT_EQ(table[57].sequence, "\x1b[A");
    EXPECT_EQ(table[61].sequence, "\x1b[2~");
    EXPECT_EQ(table[66].sequence, "\x1b[6~");
}

TEST(EscapeTable, FunctionKeyFamilies)
{
    const auto map = AsMap();
    const char* tilde[12] = {"[11~", "[12~", "[13~", "[14~", "[15~", "[17~",
                             "[18~", "[19~", "[20~", "[21~", "[23~", "[24~"};
    const char* digits[12] = {"1", "2", "3", "4", "5", "6", "7", "8", "9", "0", "!", "@"};
    const char* letters[12] = {"[M", "[N", "[O", "[P", "[Q", "[R",
                               "[S", "[T", "[U", "[V", "[W", "[X"};
    for (int n = 1; n <= 12; ++n) {
        EXPECT_EQ(map.at(std::string("\x1b") + tilde[n - 1]), Keys::F(n));
        EXPECT_EQ(map.at(std::string("\x1b") + digits[n - 1]), Keys::F(n));
        EXPECT_EQ(map.at(std::string("\x1b") + letters[n - 1]), Keys::F(n));
    }
    const char* ss3[9] = {"OP", "OQ", "OR", "OS", "OT", "OU", "OV", "OW", "OX"};
    for (int n = 1; n <= 9; ++n)
        EXPECT_EQ(map.at(std::string("\x1b") + ss3[n - 1]), Keys::F(n));
    // "OY" is F12, and this family has nothing for F10 and F11.
    EXPECT_EQ(map.at("\x1bOY"), Keys::F12);
    for (const auto& [sequence, code] : map)
        if (sequence.size() == 3 && sequence[1] == 'O') {
            EXPECT_TRUE(code != Keys::F10 && code != Keys::F11) << sequence;
        }
}

TEST(EscapeTable, NavigationKeys)
{
    const auto map = AsMap();
    const std::pair<const char*, int> expected[] = {
        {"\x1bh", Keys::Home},         {"\x1bk", Keys::End},
        {"\x1b+", Keys::InsertChar},   {"\x1b-", Keys::DeleteChar},
        {"\x1b?", Keys::PageUp},       {"\x1b/", Keys::PageDown},
        {"\x1bOA", Keys::Up},          {"\x1bOB", Keys::Down},
        {"\x1bOC", Keys::Right},       {"\x1bOD", Keys::Left},
        {"\x1b[A", Keys::Up},          {"\x1b[B", Keys::Down},
        {"\x1b[C", Keys::Right},       {"\x1b[D", Keys::Left},
        {"\x1b[2~", Keys::InsertChar}, {"\x1b[3~", Keys::DeleteChar},
        {"\x1b[1~", Keys::Home},       {"\x1b[4~", Keys::End},
        {"\x1b[5~", Keys::PageUp},     {"\x1b[6~", Keys::PageDown},
    };
    for (const auto& [sequence, code] : expected)
        EXPECT_EQ(map.at(sequence), code) << sequence + 1;
}

TEST(Keys, CodesOfTheCursesLibrary)
{
    EXPECT_EQ(Keys::Enter, 10);
    EXPECT_EQ(Keys::Escape, 27);
    EXPECT_EQ(Keys::F2, 266);
    EXPECT_EQ(Keys::F11, 275);
    EXPECT_EQ(Keys::F12, 276);
    EXPECT_EQ(Keys::F(10), 274);
    EXPECT_EQ(Keys::Resize, 410);
}

} // namespace
} // namespace Lanyx
