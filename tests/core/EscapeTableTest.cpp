#include <gtest/gtest.h>

#include <map>
#include <set>

#include "core/EscapeTable.hpp"
#include "core/Keys.hpp"

namespace Lanyx {
namespace {

TEST(EscapeTable, DistinctEscapeSequencesWithByte127Last) {
    const auto& table = EscapeTable();
    ASSERT_EQ(table.size(), 68u);
    std::set<std::string> distinct;
    for (size_t i = 0; i < table.size(); ++i) {
        EXPECT_TRUE(distinct.insert(table[i].sequence).second) << "twice: " << table[i].sequence;
        if (i + 1 < table.size()) {
            ASSERT_GE(table[i].sequence.size(), 2u);
            EXPECT_EQ(table[i].sequence[0], '\x1b') << i;
        }
    }
    EXPECT_EQ(table.front().code, Keys::Resize);
    EXPECT_EQ(table.back().sequence, "\x7f");
    EXPECT_EQ(table.back().code, Keys::CursesBackspace);
}

TEST(EscapeTable, EachFamilyMapsToItsKeys) {
    std::map<std::string, int> map;
    for (const auto& binding : EscapeTable())
        map[binding.sequence] = binding.code;
    const std::pair<const char*, int> expected[] = {
        {"[11~", Keys::F(1)}, {"[17~", Keys::F(6)},      {"[24~", Keys::F12},
        {"1", Keys::F(1)},    {"0", Keys::F(10)},        {"@", Keys::F12},
        {"[M", Keys::F(1)},   {"[X", Keys::F12},         {"OP", Keys::F(1)},
        {"OX", Keys::F(9)},   {"OY", Keys::F12},         {"h", Keys::Home},
        {"k", Keys::End},     {"+", Keys::InsertChar},   {"-", Keys::DeleteChar},
        {"?", Keys::PageUp},  {"/", Keys::PageDown},     {"OA", Keys::Up},
        {"[D", Keys::Left},   {"[3~", Keys::DeleteChar}, {"[1~", Keys::Home},
        {"[4~", Keys::End},   {"[6~", Keys::PageDown},
    };
    for (const auto& [sequence, code] : expected)
        EXPECT_EQ(map.at(std::string("\x1b") + sequence), code) << sequence;
    // The SS3 family has nothing for F10 and F11.
    for (const auto& [sequence, code] : map)
        if (sequence.size() == 3 && sequence[1] == 'O') {
            EXPECT_TRUE(code != Keys::F10 && code != Keys::F11) << sequence;
        }
}

} // namespace
} // namespace Lanyx
