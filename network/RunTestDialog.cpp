#include "network/RunTestDialog.hpp"

#include <netdb.h>

#include <boost/filesystem.hpp>
#include <memory>
#include <thread>

#include "core/Keys.hpp"
#include "host/HostRoot.hpp"
#include "host/Log.hpp"
#include "keelson/Dns.hpp"
#include "keelson/Lib.hpp"
#include "keelson/Network.hpp"
#include "keelson/Util.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

namespace fs = boost::filesystem;

constexpr int kWidth = 75;
constexpr int kHeight = 13;
constexpr int kTitleHeight = 5;
// How long one read of the keyboard waits while a step runs.
constexpr int kPollMilliseconds = 10;

constexpr const char* kCancelFooter =
    "{align:right}{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
constexpr const char* kOkFooter =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}{/align}";

constexpr const char* kHosts = "/etc/hosts";
constexpr const char* kHostsBackup = "/etc/hosts.backup";

// Takes the hosts file back from its copy; a failure is logged and changes no outcome.
void RestoreHosts() {
    try {
        fs::remove(HostPath(kHosts));
        fs::rename(HostPath(kHostsBackup), HostPath(kHosts));
    } catch (const fs::filesystem_error& error) {
        Log(LOG_INFO, "failed to restore /etc/hosts: %s", error.what());
    }
}

} // namespace

void PingWorker(std::string interfaceName, std::string address, TestStatus status) {
    std::string command = HostPath("/bin/tesselping") + " -c 3 ";
    if (!interfaceName.empty())
        command += "-I " + interfaceName;
    command += " " + address;
    int32_t outcome = 1;
    try {
        outcome = TesselCtl::Util::TesselCtl_Exec(command, false, true, false);
    } catch (const Keelson::Lib::KeelsonException&) {
        outcome = 1;
    }
    status->store(outcome);
}

void ResolveWorker(std::string hostname, TestStatus status) {
    try {
        // Refuses to overwrite: a copy left over means an earlier lookup has not put it back yet.
        fs::copy_file(HostPath(kHosts), HostPath(kHostsBackup), fs::copy_options::none);
    } catch (const fs::filesystem_error& error) {
        Log(LOG_INFO, "failed to backup /etc/hosts: %s", error.what());
        status->store(1);
        return;
    }
    addrinfo* result = nullptr;
    try {
        TesselCtl::Network::HostsFile().RemoveEntryByHostName(hostname);
        addrinfo hints{};
        hints.ai_flags = AI_CANONNAME | AI_ADDRCONFIG;
        // Only whether an answer came counts, not the code.
        (void)getaddrinfo(hostname.c_str(), nullptr, &hints, &result);
    } catch (const std::exception&) {
        // Nobody on this thread could report it: the step fails and the file still goes back.
        result = nullptr;
    }
    RestoreHosts();
    if (result) {
        freeaddrinfo(result);
        status->store(0);
    } else {
        status->store(1);
    }
}

RunTestDialog::RunTestDialog(Frame* owner, const Keelson::Network::IpAddress* target1,
                             const Keelson::Network::IpAddress* target2,
                             const Keelson::Network::IpAddress* target3, std::string name)
    : Dialog(owner, kWidth, kHeight, kTitleHeight), targets{target1, target2, target3},
      hostname(std::move(name)) {
    resultText = new TextArea(contentWindow, 0, 0, contentWindow->GetWidth(),
                              contentWindow->GetHeight(), -1);
}

bool RunTestDialog::Execute() {
    wtimeout(stdscr, kPollMilliseconds);
    SetTitle(CatalogueText(Ids::TestingNetwork));
    SetMessage(CatalogueText(Ids::InterruptTest));
    SetFooter(kCancelFooter);
    bool finished = true;
    for (size_t n = 0; n < targets.size() && finished; ++n) {
        if (targets[n])
            finished = PingTarget(*targets[n], static_cast<int>(n + 1));
    }
    if (finished && !hostname.empty()) {
        resultText->AppendText(std::string(CatalogueText(Ids::ResolvingHostname)) + " (" +
                               hostname + ").");
        auto status = std::make_shared<std::atomic<int32_t>>(kTestRunning);
        std::thread(ResolveWorker, hostname, status).detach();
        finished = AwaitStatus(status);
    }
    wtimeout(stdscr, -1);
    if (!finished)
        return false;
    SetFooter(kOkFooter);
    while (ReadKey(true) != Keys::Enter) {
    }
    return true;
}

bool RunTestDialog::PingTarget(const Keelson::Network::IpAddress& address, int number) {
    const std::unique_ptr<Keelson::Network::NetworkInterface> nic(
        TesselCtl::Network::NetworkInfoImpl().GetManagementInterface());
    const std::string interfaceName = nic ? nic->GetInterfaceName() : std::string();
    const std::string text = address.GetStringAddress();
    // The scope is for the screen: the tool gets the bare address and the interface.
    std::string scope;
    const auto* ipv6 = dynamic_cast<const Keelson::Network::Ipv6Address*>(&address);
    if (ipv6 && nic && ipv6->IsLinkLocal())
        scope = "%" + interfaceName;
    resultText->AppendText(std::string(CatalogueText(Ids::PingingAddress)) + " #" +
                           std::to_string(number) + " (" + text + scope + ").");
    auto status = std::make_shared<std::atomic<int32_t>>(kTestRunning);
    std::thread(PingWorker, interfaceName, text, status).detach();
    return AwaitStatus(status);
}

bool RunTestDialog::AwaitStatus(const TestStatus& status) {
    for (;;) {
        if (wgetch(stdscr) == Keys::Escape)
            return false;
        const int32_t outcome = status->load();
        if (outcome != kTestRunning) {
            ShowResult(outcome);
            return true;
        }
    }
}

void RunTestDialog::ShowResult(int32_t status) {
    resultText->AppendText(std::string("{align:right}") +
                           CatalogueText(status == 0 ? Ids::Ok : Ids::Failed) + "{/align}\n");
}

} // namespace Lanyx
