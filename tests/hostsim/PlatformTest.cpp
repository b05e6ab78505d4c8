#include <syslog.h>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <memory>

#include <gtest/gtest.h>

#include "TempRoot.hpp"
#include "keelson/Adv.hpp"
#include "keelson/Hardware.hpp"
#include "keelson/Lib.hpp"
#include "keelson/Util.hpp"
#include "zephora/notauser.h"
#include "zephora/probe.h"
#include "zephora/support.h"

using HostSimTest::TempRoot;
using Keelson::Lib::KeelsonException;

namespace {

nlohmann::json SmallState() {
    return {{"product", {{"name", "Zephora Ostra"}, {"version", "8.0.3"}, {"build", 123}}},
            {"bootOption", {{"auditMode", true}}},
            {"advancedOptions",
             {{"/UserVars/LanyxTimeOut", {{"type", "integer"}, {"value", 600}, {"min", 0}, {"max", 86400}}},
              {"/UserVars/Banner", {{"type", "string"}, {"value", "hello"}}}}},
            {"userOptions", {{"PXEBootEnabled", "true"}}},
            {"smartCard",
             {{"slots", {{{"name", "empty"}, {"token", nullptr}},
                         {{"name", "card"}, {"token", {{"label", "PIV"}, {"userIds", {"root"}}}}}}}}},
            {"faults", {{"lib", nlohmann::json::object()}, {"tool", nlohmann::json::object()}}}};
}

void SetFault(const TempRoot& root, const std::string& operation, const std::string& text) {
    root.Store().Update([&](nlohmann::json& s) { s["faults"]["lib"][operation] = text; });
}

std::string ThrownText(const std::function<void()>& call) {
    try {
        call();
    } catch (const KeelsonException& e) {
        return e.what();
    }
    return "<nothing thrown>";
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t nl; (nl = text.find('\n', start)) != std::string::npos; start = nl + 1) {
        lines.push_back(text.substr(start, nl - start));
    }
    EXPECT_EQ(start, text.size()) << "last record not ended by a newline";
    return lines;
}

// The line behind its "YYYY-MM-DDTHH:MM:SS " stamp, or a note that the stamp is wrong.
std::string AfterStamp(const std::string& line) {
    const std::string shape = "dddd-dd-ddTdd:dd:dd ";
    if (line.size() < shape.size()) return "<no stamp> " + line;
    for (size_t i = 0; i < shape.size(); ++i) {
        bool ok = shape[i] == 'd' ? std::isdigit(static_cast<unsigned char>(line[i])) != 0 : line[i] == shape[i];
        if (!ok) return "<bad stamp> " + line;
    }
    return line.substr(shape.size());
}

} // namespace

TEST(Platform, DamagedOrMissingStateBecomesKeelsonExceptionNamingTheFile) {
    TempRoot root;
    std::string text = ThrownText([] { delete TesselCtl::Adv::AdvancedOptionImpl::FindOption("/UserVars/LanyxTimeOut"); });
    EXPECT_NE(text.find("state.json"), std::string::npos) << text;
    root.WriteRaw("/var/lib/hostsim/state.json", "{\"product\": ");
    text = ThrownText([] { TesselCtl::Hardware::GetSmartCardInfo().GetAllSlots(); });
    EXPECT_NE(text.find("damaged"), std::string::npos) << text;
    EXPECT_EQ(root.Read("/var/lib/hostsim/state.json"), "{\"product\": ");
    char record[PROBE_SYSTEM_VERSION_SIZE];
    EXPECT_NE(Probe_Get(Probe_NODE_system_version, record, sizeof record), 0);
    EXPECT_NE(NotaUserLib_Init(), 0);
}

TEST(Platform, FaultsMakeTheNamedOperationFail) {
    TempRoot root;
    root.Store().Write(SmallState());
    SetFault(root, "AdvancedOptionImpl::FindOption", "options broken");
    SetFault(root, "SmartCardInfoImpl::GetToken", "reader broken");
    SetFault(root, "SysinfoUtil::SysinfoGet", "node broken");
    SetFault(root, "TesselCtl_Exec", "exec broken");
    SetFault(root, "NotaUserLib_Init", "no notad");

    EXPECT_EQ(ThrownText([] { delete TesselCtl::Adv::AdvancedOptionImpl::FindOption("/UserVars/LanyxTimeOut"); }),
              "options broken");
    Keelson::Hardware::SmartCardToken token;
    EXPECT_EQ(ThrownText([&] { TesselCtl::Hardware::GetSmartCardInfo().GetToken("card", token); }), "reader broken");
    // Other operations of the same object are not touched.
    EXPECT_EQ(TesselCtl::Hardware::GetSmartCardInfo().GetAllSlots().size(), 2u);
    char record[PROBE_SYSTEM_VERSION_SIZE];
    EXPECT_EQ(ThrownText([&] { TesselCtl::Util::SysinfoUtil::SysinfoGet(Probe_NODE_system_version, record, sizeof record); }),
              "node broken");
    EXPECT_EQ(ThrownText([] { TesselCtl::Util::TesselCtl_Exec("true", false, true, false); }), "exec broken");
    EXPECT_NE(NotaUserLib_Init(), 0);
}

TEST(Platform, VersionAndBootNodesCarryTheProduct) {
    TempRoot root;
    root.Store().Write(SmallState());
    unsigned char record[PROBE_SYSTEM_VERSION_SIZE];
    std::memset(record, 0xff, sizeof record);
    TesselCtl::Util::SysinfoUtil::SysinfoGet(Probe_NODE_system_version, record, sizeof record);
    EXPECT_STREQ(reinterpret_cast<char*>(record + PROBE_SYSTEM_VERSION_PRODUCT), "Zephora Ostra");
    EXPECT_STREQ(reinterpret_cast<char*>(record + PROBE_SYSTEM_VERSION_VERSION), "8.0.3");
    uint32_t build = 0;
    std::memcpy(&build, record + PROBE_SYSTEM_VERSION_BUILD, sizeof build);
    EXPECT_EQ(build, 123u);
    unsigned char boot[4] = {9, 9, 9, 9};
    ASSERT_EQ(Probe_Get(Probe_NODE_system_bootOption, boot, sizeof boot), 0);
    EXPECT_EQ(boot[0], 1);
    EXPECT_NE(Probe_Get(Probe_NODE_system_version, record, 10), 0);
    EXPECT_STREQ(ProductState_GetName(), "Zephora Ostra");
    EXPECT_STREQ(ProductState_GetBuildNumberString(), "123");
}

TEST(Platform, AdvancedOptionsReadAndWriteTheState) {
    TempRoot root;
    root.Store().Write(SmallState());
    using TesselCtl::Adv::AdvancedOptionImpl;
    std::unique_ptr<Keelson::Adv::AdvancedOption> option(AdvancedOptionImpl::FindOption("/UserVars/LanyxTimeOut"));
    auto* integer = dynamic_cast<Keelson::Adv::AdvancedIntegerOption*>(option.get());
    ASSERT_NE(integer, nullptr);
    EXPECT_EQ(integer->GetValue(), 600);
    integer->SetValue(1200);
    EXPECT_EQ(root.Store().Read()["advancedOptions"]["/UserVars/LanyxTimeOut"]["value"], 1200);
    EXPECT_THROW(integer->SetValue(-5), KeelsonException);
    EXPECT_EQ(integer->GetValue(), 1200);

    std::unique_ptr<Keelson::Adv::AdvancedOption> banner(AdvancedOptionImpl::FindOption("/UserVars/Banner"));
    auto* text = dynamic_cast<Keelson::Adv::AdvancedStringOption*>(banner.get());
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->GetValue(), "hello");
    EXPECT_EQ(AdvancedOptionImpl::FindOption("/UserVars/Nothing"), nullptr);
    EXPECT_TRUE(TesselCtl::Adv::UserAdvancedOptionImpl::HasUserOption("PXEBootEnabled"));
    EXPECT_FALSE(TesselCtl::Adv::UserAdvancedOptionImpl::HasUserOption("Other"));
}

TEST(Platform, SmartCardSlotsAndTokens) {
    TempRoot root;
    root.Store().Write(SmallState());
    auto& card = TesselCtl::Hardware::GetSmartCardInfo();
    EXPECT_EQ(card.GetAllSlots(), (std::vector<std::string>{"empty", "card"}));
    Keelson::Hardware::SmartCardToken token;
    EXPECT_FALSE(card.GetToken("empty", token));
    ASSERT_TRUE(card.GetToken("card", token));
    EXPECT_EQ(token.userIds, std::vector<std::string>{"root"});
    EXPECT_THROW(card.GetToken("nosuch", token), KeelsonException);
}

TEST(Platform, ExecRunsTheLineAndGivesItsStatus) {
    TempRoot root;
    root.Store().Write(SmallState());
    EXPECT_EQ(TesselCtl::Util::TesselCtl_Exec("exit 7", false, true, false), 7);
    const std::string marker = root.File("/tmp-marker");
    EXPECT_EQ(TesselCtl::Util::TesselCtl_Exec("echo hi > " + marker, false, true, false), 0);
    EXPECT_EQ(root.Read("/tmp-marker"), "hi\n");
    EXPECT_THROW(TesselCtl::Util::TesselCtl_Exec("kill -9 $$", false, true, false), KeelsonException);
}

TEST(Platform, SyslogRecordsHonourFacilityMaskAndErrno) {
    TempRoot root;
    openlog("LANYX", LOG_PID, LOG_USER);
    setlogmask(0x7F);
    syslog(LOG_INFO, "Starting %s", "LANYX");
    syslog(LOG_DEBUG, "not shown");
    syslog(LOG_AUTH | LOG_ERR, "Authentication of user %s failed", "bob");
    errno = ENOENT;
    syslog(LOG_LOCAL3 | LOG_WARNING, "open: %m, 100%% sure");
    closelog();
    setlogmask(0xFF);
    auto lines = Lines(root.Read("/var/log/syslog.log"));
    ASSERT_EQ(lines.size(), 3u);
    const std::string pid = std::to_string(::getpid());
    EXPECT_EQ(AfterStamp(lines[0]), "user.info LANYX[" + pid + "]: Starting LANYX");
    EXPECT_EQ(AfterStamp(lines[1]), "auth.err LANYX[" + pid + "]: Authentication of user bob failed");
    EXPECT_EQ(AfterStamp(lines[2]), "local3.warning LANYX[" + pid + "]: open: No such file or directory, 100% sure");
}

TEST(Platform, EventAndAuditRecords) {
    TempRoot root;
    root.Store().Write(SmallState());
    ASSERT_EQ(NotaUserLib_Init(), 0);
    NotaUserLib_AddNota("@&!*@*@(nota.user.lanyx.login.failed)Authentication of user %s failed", "bob");
    NotaUserLib_Close();
    ZephAudit_VLog("lanyx.login", "root", "lanyx", 0, "reason", "Invalid login", nullptr);
    ZephAudit_VLog("lanyx.login", "root", "lanyx", 1, nullptr);
    auto events = Lines(root.Read("/var/log/notad.log"));
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(AfterStamp(events[0]), "@&!*@*@(nota.user.lanyx.login.failed)Authentication of user bob failed");
    auto audit = Lines(root.Read("/var/log/audit.log"));
    ASSERT_EQ(audit.size(), 2u);
    EXPECT_EQ(AfterStamp(audit[0]), "action=lanyx.login user=root service=lanyx success=0 reason=\"Invalid login\"");
    EXPECT_EQ(AfterStamp(audit[1]), "action=lanyx.login user=root service=lanyx success=1");
}

TEST(Platform, LibraryHelpers) {
    EXPECT_EQ(Keelson::Misc::StrPrintf("%s-%05u", "build", 123u), "build-00123");
    EXPECT_EQ(Keelson::Misc::StrCat("ab", 2, "cdef", 2, nullptr, 0), "abcd");
    char buffer[6];
    EXPECT_EQ(Str_Sprintf(buffer, sizeof buffer, "%u", 86400u), 5);
    EXPECT_STREQ(buffer, "86400");
    EXPECT_EQ(Str_Sprintf(buffer, sizeof buffer, "%u", 1234567u), 5);
    EXPECT_STREQ(buffer, "12345");
}
