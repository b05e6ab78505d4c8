// Events and audit records as the simulated host's daemon and audit log receive them.
#include "host/Records.hpp"

#include "TestRoot.hpp"

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <store/StateStore.hpp>

using namespace Lanyx;
using HostTest::LogMark;
using ::testing::ElementsAre;

namespace {

// Lines of a record file without their time stamps.
std::vector<std::string> Records(const char* hostPath)
{
    std::vector<std::string> lines;
    std::istringstream text(HostTest::ReadFile(hostPath));
    for (std::string line; std::getline(text, line);)
        lines.push_back(line.substr(line.find(' ') + 1));
    return lines;
}

class RecordsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(HostTest::Under("/var/lib/hostsim"));
        HostSim::StateStore().Write({{"schema", 1}, {"faults", nlohmann::json::object()}});
        HostTest::RemoveFile("/var/log/notad.log");
        HostTest::RemoveFile("/var/log/audit.log");
    }
};

TEST_F(RecordsTest, EventCarriesMarkerIdAndMessage)
{
    const LogMark mark;
    PostEvent(Events::loginFailed, "bob");
    PostEvent(Events::rebootHost);
    PostEvent(Events::networkRestart, std::string("tnic0"));
    // A name is data, never format.
    PostEvent(Events::passwordChanged, "100%s");
    EXPECT_THAT(Records("/var/log/notad.log"),
                ElementsAre("@&!*@*@(nota.user.lanyx.login.failed)Authentication of user bob failed",
                            "@&!*@*@(nota.user.lanyx.reboot.host)Rebooting host",
                            "@&!*@*@(nota.user.lanyx.network.restart)Restarting tnic0",
                            "@&!*@*@(nota.user.lanyx.login.passwd.changed)Login password for user "
                            "100%s changed"));
    EXPECT_EQ(mark.Lines().size(), 4u);
    EXPECT_EQ(mark.Lines().front(), "user.info Initializing notauser library");
}

TEST_F(RecordsTest, EventIsDroppedWhenTheLibraryDoesNotOpen)
{
    HostSim::StateStore().Update(
        [](nlohmann::json& state) { state["faults"]["lib"]["NotaUserLib_Init"] = "down"; });
    const LogMark mark;
    PostEvent(Events::shutdownHost);
    EXPECT_TRUE(Records("/var/log/notad.log").empty());
    const auto lines = mark.Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "user.info Initializing notauser library");
    EXPECT_THAT(lines[1], ::testing::MatchesRegex(
                              "user\\.err Unable to initialize notauser library from LANYX\\. "
                              "Error code: -?[1-9][0-9]*"));
}

TEST_F(RecordsTest, AuditRecordsNameServiceSuccessAndPairs)
{
    Audit(AuditRecord::login, "root", true);
    Audit(AuditRecord::login, "bob", false, {{AuditRecord::reasonKey, AuditRecord::invalidLogin}});
    Audit(AuditRecord::logout, "root", true, {{AuditRecord::reasonKey, AuditRecord::timeOut}});
    EXPECT_THAT(Records("/var/log/audit.log"),
                ElementsAre("action=lanyx.login user=root service=lanyx success=1",
                            "action=lanyx.login user=bob service=lanyx success=0 reason=\"Invalid login\"",
                            "action=lanyx.logout user=root service=lanyx success=1 reason=\"Time out\""));
}

} // namespace
