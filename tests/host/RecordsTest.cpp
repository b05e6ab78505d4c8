// Events as the simulated host's daemon receives them (audit records are checked end to end).
#include "host/Records.hpp"

#include "ProgramRoot.hpp"

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <store/StateStore.hpp>

using namespace Lanyx;
using ::testing::ElementsAre;

namespace {

void ResetHost(const nlohmann::json& faults) {
    std::filesystem::create_directories(HostTest::Host().File("/var/lib/hostsim"));
    HostSim::StateStore().Write({{"schema", 1}, {"faults", faults}});
    HostTest::Host().Remove("/var/log/notad.log");
}

TEST(Records, EventCarriesMarkerIdAndMessage) {
    ResetHost(nlohmann::json::object());
    HostTest::Host().Mark();
    PostEvent(Events::rebootHost);
    PostEvent(Events::networkRestart, std::string("tnic0"));
    PostEvent(Events::passwordChanged, "100%s"); // a name is data, never format
    std::vector<std::string> events;             // without their time stamps
    std::istringstream text(HostTest::Host().Read("/var/log/notad.log"));
    for (std::string line; std::getline(text, line);)
        events.push_back(line.substr(line.find(' ') + 1));
    EXPECT_THAT(events,
                ElementsAre("@&!*@*@(nota.user.lanyx.reboot.host)Rebooting host",
                            "@&!*@*@(nota.user.lanyx.network.restart)Restarting tnic0",
                            "@&!*@*@(nota.user.lanyx.login.passwd.changed)Login password for user "
                            "100%s changed"));
    EXPECT_EQ(HostTest::Host().Messages().size(), 3u);
}

TEST(Records, EventIsDroppedWhenTheLibraryDoesNotOpen) {
    ResetHost({{"lib", {{"NotaUserLib_Init", "down"}}}});
    HostTest::Host().Mark();
    PostEvent(Events::shutdownHost);
    EXPECT_EQ(HostTest::Host().Read("/var/log/notad.log"), "");
    EXPECT_THAT(
        HostTest::Host().Messages(),
        ElementsAre("user.info Initializing notauser library",
                    ::testing::MatchesRegex("user\\.err Unable to initialize notauser "
                                            "library from LANYX\\. Error code: -?[1-9][0-9]*")));
}

} // namespace
