#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "FakeSysinfo.hpp"
#include "text/StringTable.hpp"
#include "text/en_US_Factory.hpp"

namespace Lanyx {
namespace {

using Testing::Sysinfo;

constexpr const char* kVersionLine = "Lanyx Host 8.0.3 (Tessel 8.0.3 Build 24280767)";

// The catalogue keeps its instance and its version line for the life of the process, so each
// case runs in a child process of its own, forked before anything asked the catalogue.
void InFreshProcess(const std::function<void()>& body) {
    EXPECT_EXIT(
        {
            body();
            std::exit(::testing::Test::HasFailure() ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "");
}

class Catalogue : public ::testing::Test {
protected:
    void SetUp() override {
        Sysinfo() = {};
        for (auto [offset, text] : {std::pair<size_t, const char*>{0, "Lanyx Host"},
                                    {32, "8.0.3"},
                                    {96, "8.0.3"},
                                    {128, "24280767"}})
            std::memcpy(Sysinfo().record + offset, text, std::strlen(text) + 1);
    }
};

TEST_F(Catalogue, OneInstanceWhateverTheLocaleAndEveryEntryFilled) {
    InFreshProcess([] {
        StringFactory* strings = GetStringFactory("en_US");
        ASSERT_NE(strings, nullptr);
        EXPECT_EQ(GetStringFactory("de_DE"), strings);
        for (uint32_t id = 0; id < kStringCount; ++id) {
            if (id != 2 && id != 3) {
                EXPECT_STRNE(strings->GetString(id), "") << "id " << id;
            }
        }
        EXPECT_STREQ(strings->GetString(3), "");
        EXPECT_STREQ(strings->GetString(kStringCount), "");
        EXPECT_STREQ(strings->GetString(UINT32_MAX), "");
        // Texts are kept as written, double blanks and markup included.
        EXPECT_NE(std::string(strings->GetString(266)).find("allowed.  Changes"),
                  std::string::npos);
        EXPECT_EQ(std::string(strings->GetString(245)).rfind("{color:red}Warning! Restarting", 0),
                  0u);
    });
}

TEST_F(Catalogue, VersionLineIsReadOnceButRetriedAfterAFailure) {
    InFreshProcess([] {
        StringFactory* strings = GetStringFactory("en_US");
        Sysinfo().fail = true;
        EXPECT_STREQ(strings->GetString(2), "");
        EXPECT_STREQ(strings->GetString(2), "");
        Sysinfo().fail = false;
        const char* line = strings->GetString(2);
        EXPECT_STREQ(line, kVersionLine);
        EXPECT_EQ(strings->GetString(2), line);
        EXPECT_EQ(Sysinfo().reads, 3);
    });
}

TEST_F(Catalogue, UnterminatedFieldsStopAtTheNextField) {
    InFreshProcess([] {
        std::memset(Sysinfo().record, 'A', sizeof Sysinfo().record);
        const std::string expected = std::string(32, 'A') + " " + std::string(64, 'A') +
                                     " (Tessel " + std::string(32, 'A') + " Build " +
                                     std::string(216, 'A') + ")";
        EXPECT_EQ(GetStringFactory("en_US")->GetString(2), expected);
    });
}

} // namespace
} // namespace Lanyx
