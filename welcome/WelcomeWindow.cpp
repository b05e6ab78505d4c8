#include "welcome/WelcomeWindow.hpp"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "core/Colors.hpp"
#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/Keys.hpp"
#include "host/Log.hpp"
#include "host/Records.hpp"
#include "keelson/Hardware.hpp"
#include "keelson/Lib.hpp"
#include "text/CatalogueIds.hpp"
#include "welcome/HostFacts.hpp"
#include "welcome/ManagementNetwork.hpp"
#include "zephora/probe.h"

namespace Lanyx {

bool adapterAlertSent = false;

namespace {

constexpr char noAdapterText[] =
    "No compatible network adapter found. Please consult the product's Hardware Compatibility "
    "Guide (HCG) for a list of supported adapters.";
constexpr char noAdapterAlert[] = "No compatible network adapter found.";

bool HostInAuditMode() {
    unsigned char bootOption[4] = {};
    return Probe_Get(Probe_NODE_system_bootOption, bootOption, sizeof bootOption) == 0 &&
           bootOption[0] == 1;
}

std::string HardwareLines() {
    const TesselCtl::Hardware::CpuInfoImpl cpu;
    const TesselCtl::Hardware::MemoryInfoImpl memory;
    std::ostringstream lines;
    const int packages = cpu.GetNumCpuPackages();
    const std::string model = CollapseWhitespace(cpu.GetModelName());
    if (packages < 2)
        lines << model;
    else
        lines << packages << " x " << model;
    lines << "\n" << FormatMemoryLine(memory.GetTotalPages() * memory.GetPageSize());
    return lines.str();
}

} // namespace

WelcomeWindow::WelcomeWindow(SessionHooks sessionHooks)
    : Frame(nullptr, 0, 0, COLS, LINES, ColorBlack, ColorWhite), hooks(std::move(sessionHooks)) {
    RegisterHostFactTags();
}

WelcomeWindow::~WelcomeWindow() = default;

void WelcomeWindow::Reload() {
    // The host's facts are all read before the screen goes out, in one pass.
    const UpdateBatch batch;
    if (!systemInfo.GetWelcomeMessage().empty())
        ShowCustomLayout();
    else
        ShowDefaultLayout();
    // A dimmed screen stays dimmed when it is reloaded.
    Window::SetActive(active);
    Update();
}

void WelcomeWindow::DropDefaultLayout() {
    DeleteChildren();
    topPane = bottomPane = nullptr;
    versionText = vendorText = hardwareText = managementText = warningText = footerText = nullptr;
}

void WelcomeWindow::DropCustomLayout() {
    DeleteChildren();
    customText = nullptr;
}

void WelcomeWindow::ShowCustomLayout() {
    if (topPane)
        DropDefaultLayout();
    if (!customText) {
        if (handle) {
            werase(handle.get());
            box(handle.get(), 0, 0);
        }
        customText = new TextArea(this, 2, 2, COLS - 4, LINES - 4, ColorWhite);
    }
    // Asked again: the message may have changed since the layout was chosen.
    customText->SetText(systemInfo.GetWelcomeMessage());
}

void WelcomeWindow::ShowDefaultLayout() {
    if (customText)
        DropCustomLayout();
    if (!topPane)
        BuildDefaultLayout();
    FillDefaultLayout();
}

void WelcomeWindow::BuildDefaultLayout() {
    if (handle)
        werase(handle.get());
    const int lines = LINES;
    topPane = CreateChild(0, 0, COLS, lines / 2, ColorDarkGrey, ColorWhite);
    // An odd line count gives the lower half the extra line.
    bottomPane = CreateChild(0, lines / 2, COLS, lines / 2 + lines % 2, ColorAmber, ColorWhite);
    if (handle)
        box(handle.get(), 0, 0);
    warningText = new TextArea(bottomPane, 16, 9, COLS - 32, 6, ColorDarkGrey);
    const int paneWidth = bottomPane->GetWidth();
    const int paneHeight = bottomPane->GetHeight();
    footerText = new TextArea(bottomPane, 2, paneHeight - 2, paneWidth - 4, 1, ColorBlack);
    footerText->SetText(std::string("<F2> {color:dark-grey}") +
                        strings->GetString(Ids::CustomizeSystem) +
                        "{/color}{align:right}<F12> {color:dark-grey}" +
                        strings->GetString(Ids::ShutDownRestart) + "{/color}{/align}");
}

void WelcomeWindow::FillDefaultLayout() {
    ManagementFacts facts;
    facts.ipv6Enabled = IsIpv6Enabled();
    try {
        if (ReadManagementInterface(facts)) {
            warningText->SetText(facts.useDhcp && !facts.dhcpServerKnown
                                     ? strings->GetString(Ids::DhcpWarning)
                                     : "");
        }
        // Comes last: audit mode outweighs a failed DHCP lookup.
        if (HostInAuditMode())
            warningText->SetText(strings->GetString(Ids::AuditModeWarning));

        facts.hostname = dnsConfig.GetHostname();
        const std::string composed = ComposeManagementText(facts, *strings);

        if (!managementText) {
            managementText = new TextArea(bottomPane, 8, 1, COLS - 16, 7, ColorBlack);
            hardwareText = new TextArea(topPane, 8, 9, COLS - 16, 2, -1);
            versionText = new TextArea(topPane, 8, 5, COLS - 16, 1, -1);
            vendorText = new TextArea(topPane, 8, 7, COLS - 16, 1, -1);
        }

        if (!HasPhysicalAdapters()) {
            managementText->SetText(noAdapterText);
            if (!adapterAlertSent) {
                systemInfo.SetSystemAlert(noAdapterAlert);
                adapterAlertSent = true;
            }
        } else {
            managementText->SetText(composed);
        }

        versionText->SetText(strings->GetString(Ids::VersionLine));
        const TesselCtl::Hardware::HardwareInfoImpl hardware;
        vendorText->SetText(FormatVendorLine(hardware.GetVendorName(), hardware.GetProductName()));
        hardwareText->SetText(HardwareLines());
    } catch (const Keelson::Lib::KeelsonException&) {
        // What was already set stands; only the addresses go, as they may be wrong.
        if (managementText)
            managementText->SetText("");
    }
}

bool WelcomeWindow::Execute() {
    Reload();
    for (;;)
        HandleKey(ReadKey(false));
}

void WelcomeWindow::HandleKey(int key) {
    if (key != Keys::F2 && key != Keys::F12) {
        if (key == Keys::F4 && can_change_color())
            monochrome = !monochrome;
        else
            clearok(curscr, TRUE);
        Reload();
    } else {
        RunLoginRound(key);
    }
    SetSessionActive(false);
    if (exitPending)
        std::exit(0);
}

void WelcomeWindow::RunLoginRound(int key) {
    std::unique_ptr<Frame> login;
    try {
        login = hooks.createLoginDialog ? hooks.createLoginDialog(this) : nullptr;
        if (login && login->RunModal()) {
            if (key == Keys::F2) {
                SetSessionActive(true);
                if (hooks.runSystemCustomization)
                    hooks.runSystemCustomization(this);
                SetSessionActive(false);
                Log(LOG_INFO, "User %s logged out", loginUser.c_str());
                Audit(AuditRecord::logout, loginUser, true,
                      {{AuditRecord::reasonKey, AuditRecord::sessionClosed}});
                Reload();
            } else {
                // No session around the shutdown dialog.
                if (hooks.runShutdown)
                    hooks.runShutdown(this);
                Reload();
            }
        }
    } catch (const LanyxTimeout&) {
        Log(LOG_INFO, "User %s logged out due to time out", loginUser.c_str());
        Audit(AuditRecord::logout, loginUser, true,
              {{AuditRecord::reasonKey, AuditRecord::timeOut}});
        Window::SetActive(true);
        Reload();
    }
    login.reset();
}

} // namespace Lanyx
