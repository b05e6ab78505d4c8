#include "system/TroubleShootingWindow.hpp"

#include "system/RestartAgentsDialog.hpp"

#include <memory>
#include <string>

#include "host/Accounts.hpp"
#include "host/CommandRunner.hpp"
#include "host/GuardedStep.hpp"
#include "host/HostRoot.hpp"
#include "host/Log.hpp"
#include "keelson/System.hpp"
#include "system/LanyxTimeoutDialog.hpp"
#include "system/RestartAgentsDialog.hpp"
#include "system/ShellTimeoutDialog.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr const char* kShellScript = "/etc/init.d/OstraShell";
constexpr const char* kSshScript = "/etc/init.d/SSH";

constexpr const char* kChangeFooter =
    "{color:white}<Enter>{/color}{color:light-grey} Change{/color}{align:right}"
    "{color:white}<Esc>{/color}{color:light-grey} Exit{/color}{/align}";
constexpr const char* kRestartFooter =
    "{color:white}<Enter>{/color}{color:light-grey} Restart{/color}{align:right}"
    "{color:white}<Esc>{/color}{color:light-grey} Exit{/color}{/align}";

// The scripts take host paths as arguments of the host's shell, so those are mapped too.
int RunInitScript(const char* script, const char* action) {
    const std::string path = HostPath(script);
    const char* const argv[] = {"sh", path.c_str(), action, nullptr};
    return RunCommand("/bin/sh", argv);
}

} // namespace

struct TroubleShootingWindow::Service {
    const char* initScript;
    const char* stopCommand;
    const char* startCommand;
    const char* disableCommand;
    const char* enableCommand;
    const char* runWarning;
    const char* enableWarning;
    const char* disabledLog;
    const char* enabledLog;
    uint32_t enableEntry;
    uint32_t disableEntry;
    bool hasFirewall;
};

TroubleShootingWindow::TroubleShootingWindow(Frame* owner)
    : MenuWindow(owner, Ids::TroubleshootingTitle, Footers::kMenuSelect) {
    shellEnabled = RunInitScript(kShellScript, "status") == 0;
    sshEnabled = RunInitScript(kSshScript, "status") == 0;
    AddEntry(shellEnabled ? Ids::DisableShell : Ids::EnableShell);
    AddEntry(sshEnabled ? Ids::DisableSsh : Ids::EnableSsh);
    // The time-outs are set only while neither service runs.
    AddEntry(Ids::ShellTimeoutsEntry, !shellEnabled && !sshEnabled);
    AddEntry(Ids::LanyxTimeoutEntry);
    AddEntry(Ids::RestartAgentsEntry);
    ShowEntries();
}

void TroubleShootingWindow::UpdateContent() {
    MenuWindow::UpdateContent();
    SetRightFooter(Footers::kChangeExit);
}

void TroubleShootingWindow::ShowSelectedEntry() {
    if (!strings)
        return;
    detailText->SetText("");
    const uint32_t id = GetSelectedEntry();
    std::string text;
    uint32_t title = id;
    const char* footer = kChangeFooter;
    switch (id) {
    case Ids::EnableShell:
    case Ids::DisableShell:
        title = Ids::ShellTitle;
        text = std::string("{/color}{color:white}") +
               CatalogueText(shellEnabled ? Ids::ShellEnabled : Ids::ShellDisabled) +
               "{/color}\n\n{color:light-grey}" + CatalogueText(Ids::ShellStateHelp) + "{/color}";
        break;
    case Ids::EnableSsh:
    case Ids::DisableSsh:
        title = Ids::SshTitle;
        text = std::string("{/color}{color:white}") +
               CatalogueText(sshEnabled ? Ids::SshEnabled : Ids::SshDisabled) +
               "\n\n{/color}{color:light-grey}" + CatalogueText(Ids::SshStateHelp) + "{/color}";
        break;
    case Ids::ShellTimeoutsEntry:
        text =
            std::string("{color:light-grey}") + CatalogueText(Ids::ShellTimeoutsHelp) + "{/color}";
        break;
    case Ids::LanyxTimeoutEntry:
        text =
            std::string("{color:light-grey}") + CatalogueText(Ids::LanyxTimeoutHelp) + "{/color}";
        break;
    case Ids::RestartAgentsEntry:
        text =
            std::string("{color:light-grey}") + CatalogueText(Ids::RestartAgentsHelp) + "{/color}";
        footer = kRestartFooter;
        break;
    default:
        footer = "";
        break;
    }
    SetRightTitle(CatalogueText(title));
    detailText->SetText(text);
    SetRightFooter(footer);
    // A list redraw blanks the footer line under the list, so it is written with every pane.
    SetLeftFooter(Footers::kMenuSelect);
}

void TroubleShootingWindow::RunEntry(uint32_t id) {
    static const Service shell{kShellScript,
                               "helmnode/stop_ostra_shell",
                               "helmnode/start_ostra_shell",
                               "helmnode/disable_ostra_shell",
                               "helmnode/enable_ostra_shell",
                               "Unable to run helmq to start/stop Ostra Shell",
                               "Unable to run helmq to enable/disable Ostra Shell",
                               "User %s disabled Ostra Shell",
                               "User %s enabled Ostra Shell",
                               Ids::EnableShell,
                               Ids::DisableShell,
                               false};
    static const Service ssh{kSshScript,
                             "helmnode/stop_ssh",
                             "helmnode/start_ssh",
                             "helmnode/disable_ssh",
                             "helmnode/enable_ssh",
                             "Unable to run helmq to start/stop ssh",
                             "Unable to run helmq to enable/disable ssh",
                             "User %s disabled SSH",
                             "User %s enabled SSH",
                             Ids::EnableSsh,
                             Ids::DisableSsh,
                             true};
    switch (id) {
    case Ids::EnableShell:
    case Ids::DisableShell:
        Toggle(shell, shellEnabled);
        break;
    case Ids::EnableSsh:
    case Ids::DisableSsh:
        Toggle(ssh, sshEnabled);
        break;
    case Ids::ShellTimeoutsEntry:
        ShellTimeoutDialog(this).RunModal();
        Draw();
        break;
    case Ids::LanyxTimeoutEntry:
        LanyxTimeoutDialog(this).RunModal();
        Draw();
        break;
    case Ids::RestartAgentsEntry:
        RestartAgentsDialog(this).RunModal();
        Draw();
        break;
    default:
        break;
    }
}

void TroubleShootingWindow::Toggle(const Service& service, bool& enabled) {
    const bool stopping = enabled;
    // One vector for both calls: a fall back to the console's own account holds for the second.
    const char* argv[] = {"helmq", "-U", loginUser.c_str(),
                          stopping ? service.stopCommand : service.startCommand, nullptr};
    if (RunHelmq("/bin/helmq", argv) != 0) {
        Log(LOG_WARNING, "%s", service.runWarning);
        RunInitScript(service.initScript, stopping ? "stop" : "start");
        if (service.hasFirewall)
            SetSshFirewall(!stopping);
    }
    argv[3] = stopping ? service.disableCommand : service.enableCommand;
    if (RunHelmq("/bin/helmq", argv) != 0)
        Log(LOG_WARNING, "%s", service.enableWarning);

    enabled = !stopping;
    Log(LOG_INFO, stopping ? service.disabledLog : service.enabledLog, loginUser.c_str());
    if (stopping)
        ReplaceEntry(service.disableEntry, service.enableEntry);
    else
        ReplaceEntry(service.enableEntry, service.disableEntry);
    SetEntrySelectable(Ids::ShellTimeoutsEntry, !shellEnabled && !sshEnabled);
    Draw();
}

void TroubleShootingWindow::SetSshFirewall(bool open) {
    GuardedStep(
        [open] {
            const std::unique_ptr<Keelson::System::FirewallRuleset> ruleset =
                TesselCtl::System::SystemInfoImpl().GetFirewallRulesetById("sshServer");
            if (!ruleset->FollowsService())
                return;
            if (open)
                ruleset->Enable();
            else
                ruleset->Disable();
        },
        [](const Keelson::Lib::KeelsonException& e) {
            Log(LOG_WARNING, "Failed to update firewall sshServer ruleset status: %s", e.what());
        });
}

} // namespace Lanyx
