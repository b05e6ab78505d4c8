// Splitting the support file into pages: comments, page ends, the empty pages at the edges.
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "system/menu/SupportPages.hpp"

namespace {

using Pages = std::vector<std::string>;

TEST(SupportPages, SplitsAtDollarLinesAndDropsComments) {
    struct Case {
        const char* file;
        Pages pages;
    };
    const std::vector<Case> cases = {
        {"", {""}},
        {"one\n\ntwo", {"one\n\ntwo\n"}},
        // The rest of a "$" line goes, "#" only counts at the start of a line.
        {"# note\na #1\n$ page 2\nb\n$\n", {"a #1\n", "b\n", ""}},
        {"$\n$x\n", {"", "", ""}},
        {"{color:white}x{/color}\n  # kept\n", {"{color:white}x{/color}\n  # kept\n"}},
    };
    const std::string path = ::testing::TempDir() + "support-pages-test";
    for (const Case& c : cases) {
        std::ofstream(path, std::ios::trunc) << c.file;
        EXPECT_EQ(Lanyx::ReadSupportPages(path), c.pages) << '"' << c.file << '"';
    }
    std::remove(path.c_str());
    EXPECT_TRUE(Lanyx::ReadSupportPages(path).empty()) << "no file, no pages";
}

} // namespace
