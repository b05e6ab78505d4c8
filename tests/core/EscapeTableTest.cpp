#include <gtest/gtest.h>

#include <set>

#include "core/EscapeTable.hpp"
#include "core/Keys.hpp"

namespace Lanyx {
namespace {

// How each family decodes is the end-to-end tests' matter; here, what the table must hold whole.
TEST(EscapeTable, DistinctEscapeSequencesWithByte127LastAndNoSs3F10OrF11) {
    const auto& table = EscapeTable();
    std::set<std::string> distinct;
    for (size_t i = 0; i < table.size(); ++i) {
        const std::string& sequence = table[i].sequence;
        EXPECT_TRUE(distinct.insert(sequence).second) << "twice: " << sequence;
        if (i + 1 < table.size()) {
            ASSERT_GE(sequence.size(), 2u);
            EXPECT_EQ(sequence[0], '\x1b') << i;
        }
        if (sequence.size() == 3 && sequence[1] == 'O') {
            EXPECT_TRUE(table[i].code != Keys::F10 && table[i].code != Keys::F11) << sequence;
        }
    }
    EXPECT_EQ(table.front().code, Keys::Resize);
    EXPECT_EQ(table.back().sequence, "\x7f");
    EXPECT_EQ(table.back().code, Keys::CursesBackspace);
}

} // namespace
} // namespace Lanyx
