// The names the repairs give to what they create, the VLAN rule of the fabric restore and the rows
// of the switch list: pure rules, no host.
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "restore/HostLocalPort.hpp"
#include "restore/SafeModeNetwork.hpp"
#include "restore/SwitchRows.hpp"

namespace Lanyx {
namespace {

using Strings = std::vector<std::string>;

NameTaken TakenFrom(const Strings& names) {
    const std::set<std::string> taken(names.begin(), names.end());
    return [taken](const std::string& name) { return taken.count(name) > 0; };
}

TEST(RestoreNames, FirstFreeSwitchAndPortGroupName) {
    struct Case {
        Strings taken;
        std::string switchName, portGroupName;
    };
    const std::vector<Case> cases = {
        {{}, "xbar0", "Management Network1"},
        {{"xbar0", "xbar1", "Management Network1"}, "xbar2", "Management Network2"},
        // Gaps are filled; the plain name and look-alikes do not count.
        {{"xbar1", "Management Network", "Management Network2", "xbar"},
         "xbar0",
         "Management Network1"},
        {{"xbar0", "xbar2", "Management Network1", "Management Network3"},
         "xbar1",
         "Management Network2"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.taken));
        EXPECT_EQ(FreeSwitchName(TakenFrom(c.taken)), c.switchName);
        EXPECT_EQ(FreePortGroupName(TakenFrom(c.taken)), c.portGroupName);
    }
    EXPECT_THROW(FreeSwitchName([](const std::string&) { return true; }),
                 Keelson::Lib::KeelsonException)
        << "a library that calls every name taken ends the search";
}

TEST(RestoreNames, HostLocalPortIds) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"12", "hlp-12#4711"},
        {"", "hlp-#4711"},
        // An earlier repair's port: everything before the last "#" stays, the number is new.
        {"hlp-12#83", "hlp-12#4711"},
        {"hlp-12#", "hlp-12#4711"},
        {"hlp-a#1#23", "hlp-a#1#4711"},
        // Not a repair's port: no digits-only tail, or no "hlp-" at the start.
        {"hlp-12#8a", "hlp-hlp-12#8a#4711"},
        {"hlp-12", "hlp-hlp-12#4711"},
        {"xhlp-1#2", "hlp-xhlp-1#2#4711"},
        {"HLP-1#2", "hlp-HLP-1#2#4711"},
    };
    for (const auto& [oldId, newId] : cases)
        EXPECT_EQ(HostLocalPortId(oldId, "#4711"), newId) << oldId;
    // A second repair of a repaired port still has one prefix and one number.
    EXPECT_EQ(HostLocalPortId(HostLocalPortId("12", "#1"), "#2"), "hlp-12#2");
    EXPECT_EQ(HostLocalPortId("hlp-7#1", "$1#9"), "hlp-7$1#9") << "the suffix is taken literally";
}

TEST(RestoreNames, FabricVlanRange) {
    const std::vector<std::pair<std::string, std::optional<uint16_t>>> cases = {
        {"", 0},
        {"0", 0},
        {"0042", 42},
        {"4094", 4094},
        {"4095", std::nullopt},
        {"65536", std::nullopt},
        {"123456789012345678901234567890", std::nullopt},
    };
    for (const auto& [text, vlan] : cases)
        EXPECT_EQ(FabricVlan(text), vlan) << text;
}

TEST(SwitchRows, RowsCutToTheirColumnsAndDetailsWhole) {
    StandardSwitchInfo plain{
        "switch0", {"hwport0", "hwport1"}, {"Management Network", "VM Network"}, 2560, 6, 128};
    StandardSwitchInfo exact{std::string(18, 's'), {"hwport12"}, {"Management Net"}, 128, 0, 128};
    exact.portGroups = {std::string(13, 'p')};
    StandardSwitchInfo bare{"xbar0", {}, {}, 128, 0, 128};
    const std::vector<std::pair<const StandardSwitchInfo*, std::string>> rows = {
        {&plain,
         "{align:padding:20}switch0{/align}{align:padding:10}hwpor...{/align}{align:padding:15}"
         "Management...{/align}{align:padding:12}6{/align}{align:padding:16}128{/align}  ..."},
        {&exact, "{align:padding:20}" + std::string(18, 's') +
                     "{/align}{align:padding:10}hwport12{/align}"
                     "{align:padding:15}" +
                     std::string(13, 'p') +
                     "{/align}{align:padding:12}0{/align}"
                     "{align:padding:16}128{/align}  ..."},
        {&bare,
         "{align:padding:20}xbar0{/align}{align:padding:10}{/align}{align:padding:15}{/align}"
         "{align:padding:12}0{/align}{align:padding:16}128{/align}  ..."},
    };
    for (const auto& [info, row] : rows)
        EXPECT_EQ(FormatSwitchRow(*info), row) << info->name;
    StandardSwitchInfo longer = exact;
    longer.name += "s";
    EXPECT_TRUE(FormatSwitchRow(longer).starts_with("{align:padding:20}" + std::string(15, 's') +
                                                    "...{/align}"));

    EXPECT_EQ(FormatSwitchDetails(plain),
              "Number of ports: 2560\nUsed ports: 6\nConfigured ports: 128\n"
              "Uplinks: hwport0,hwport1\nPort groups: Management Network,VM Network");
    EXPECT_EQ(FormatSwitchDetails(bare),
              "Number of ports: 128\nUsed ports: 0\nConfigured ports: 128\n"
              "Uplinks: None\nPort groups: None");
}

} // namespace
} // namespace Lanyx
