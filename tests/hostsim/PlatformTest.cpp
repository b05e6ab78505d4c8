#include <syslog.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <sstream>
#include <string_view>

#include <gtest/gtest.h>

#include "HostRoot.hpp"
#include "keelson/Adv.hpp"
#include "keelson/Hardware.hpp"
#include "keelson/Lib.hpp"
#include "keelson/Util.hpp"
#include "store/StateStore.hpp"
#include "zephora/notauser.h"
#include "zephora/probe.h"
#include "zephora/support.h"

using TempRoot = LanyxTest::HostRoot;
using Keelson::Lib::KeelsonException;

namespace {

nlohmann::json SmallState() {
    return {{"product", {{"name", "Zephora Ostra"}, {"version", "8.0.3"}, {"build", 123}}},
            {"advancedOptions",
             {{"/UserVars/LanyxTimeOut",
               {{"type", "integer"}, {"value", 600}, {"min", 0}, {"max", 86400}}}}},
            {"smartCard",
             {{"slots",
               {{{"name", "empty"}, {"token", nullptr}},
                {{"name", "card"}, {"token", {{"label", "PIV"}, {"userIds", {"root"}}}}}}}}},
            {"faults", {{"lib", nlohmann::json::object()}, {"tool", nlohmann::json::object()}}}};
}

std::string ThrownText(const std::function<void()>& call) {
    try {
        call();
    } catch (const KeelsonException& e) {
        return e.what();
    }
    return "<nothing thrown>";
}

// The records without their "YYYY-MM-DDTHH:MM:SS " stamps; a malformed stamp stays in the text.
std::string WithoutStamps(const std::string& text) {
    static constexpr std::string_view shape = "dddd-dd-ddTdd:dd:dd ";
    std::istringstream in(text);
    std::string out;
    for (std::string line; std::getline(in, line);) {
        bool stamped = line.size() >= shape.size();
        for (std::size_t i = 0; stamped && i < shape.size(); ++i)
            stamped = shape[i] == 'd' ? std::isdigit(static_cast<unsigned char>(line[i])) != 0
                                      : line[i] == shape[i];
        out += line.substr(stamped ? shape.size() : 0) + "\n";
    }
    return out;
}

// A bare root with a small state of its own.
class Platform : public ::testing::Test {
protected:
    void SetUp() override { HostSim::StateStore(root.Path()).Write(SmallState()); }
    TempRoot root{""};
};

} // namespace

TEST_F(Platform, DamagedOrMissingStateBecomesKeelsonExceptionNamingTheFile) {
    root.Remove("/var/lib/hostsim/state.json");
    std::string text = ThrownText(
        [] { delete TesselCtl::Adv::AdvancedOptionImpl::FindOption("/UserVars/LanyxTimeOut"); });
    EXPECT_NE(text.find("state.json"), std::string::npos) << text;
    root.Write("/var/lib/hostsim/state.json", "{\"product\": ");
    text = ThrownText([] { TesselCtl::Hardware::GetSmartCardInfo().GetAllSlots(); });
    EXPECT_NE(text.find("damaged"), std::string::npos) << text;
    EXPECT_EQ(root.Read("/var/lib/hostsim/state.json"), "{\"product\": ");
    char record[PROBE_SYSTEM_VERSION_SIZE];
    EXPECT_NE(Probe_Get(Probe_NODE_system_version, record, sizeof record), 0);
    EXPECT_NE(NotaUserLib_Init(), 0);
}

TEST_F(Platform, TraceListsEachFaultableCallInOrderWhileOn) {
    root.LibFault("TesselCtl_Exec", "exec broken");
    EXPECT_EQ(NotaUserLib_Init(), 0);
    EXPECT_EQ(root.Read("/var/lib/hostsim/calls.log"), "") << "off by default";

    root.Edit([](nlohmann::json& document) { document["faults"]["trace"] = true; });
    EXPECT_EQ(NotaUserLib_Init(), 0);
    delete TesselCtl::Adv::AdvancedOptionImpl::FindOption("/UserVars/LanyxTimeOut");
    // A call that throws is listed too: it was made.
    EXPECT_EQ(ThrownText([] { TesselCtl::Util::TesselCtl_Exec("true", false, true, false); }),
              "exec broken");
    const std::string listed =
        "lib NotaUserLib_Init\nlib AdvancedOptionImpl::FindOption\nlib TesselCtl_Exec\n";
    EXPECT_EQ(root.Read("/var/lib/hostsim/calls.log"), listed);

    root.Edit([](nlohmann::json& document) { document["faults"]["trace"] = "yes"; });
    EXPECT_EQ(NotaUserLib_Init(), 0);
    EXPECT_EQ(root.Read("/var/lib/hostsim/calls.log"), listed) << "only true turns it on";
}

TEST_F(Platform, ExecRunsTheLineAndGivesItsStatus) {
    EXPECT_EQ(TesselCtl::Util::TesselCtl_Exec("exit 7", false, true, false), 7);
    const std::string marker = root.File("/tmp-marker");
    EXPECT_EQ(TesselCtl::Util::TesselCtl_Exec("echo hi > " + marker, false, true, false), 0);
    EXPECT_EQ(root.Read("/tmp-marker"), "hi\n");
    EXPECT_THROW(TesselCtl::Util::TesselCtl_Exec("kill -9 $$", false, true, false),
                 KeelsonException);
}

TEST_F(Platform, SyslogRecordsHonourFacilityMaskAndErrno) {
    openlog("LANYX", LOG_PID, LOG_USER);
    setlogmask(0x7F);
    syslog(LOG_INFO, "Starting %s", "LANYX");
    syslog(LOG_DEBUG, "not shown");
    syslog(LOG_AUTH | LOG_ERR, "Authentication of user %s failed", "bob");
    errno = ENOENT;
    syslog(LOG_LOCAL3 | LOG_WARNING, "open: %m, 100%% sure");
    closelog();
    setlogmask(0xFF);
    const std::string tag = " LANYX[" + std::to_string(::getpid()) + "]: ";
    EXPECT_EQ(WithoutStamps(root.Read("/var/log/syslog.log")),
              "user.info" + tag + "Starting LANYX\nauth.err" + tag +
                  "Authentication of user bob failed\n"
                  "local3.warning" +
                  tag + "open: No such file or directory, 100% sure\n");
}
