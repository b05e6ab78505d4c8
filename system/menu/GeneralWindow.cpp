#include "system/menu/GeneralWindow.hpp"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <pthread.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

#include "auth/ChangePasswordDialog.hpp"
#include "auth/KeyboardDialog.hpp"
#include "auth/LockdownDialog.hpp"
#include "auth/LoginAccess.hpp"
#include "core/Globals.hpp"
#include "core/Keys.hpp"
#include "host/CommandRunner.hpp"
#include "host/HostRoot.hpp"
#include "keelson/Adv.hpp"
#include "keelson/Lib.hpp"
#include "keelson/Network.hpp"
#include "keelson/System.hpp"
#include "network/NetworkWindow.hpp"
#include "network/RestartNetworkDialog.hpp"
#include "network/TestDialog.hpp"
#include "restore/NetworkRestoreWindow.hpp"
#include "restore/switches/Switches.hpp"
#include "system/RestoreDialog.hpp"
#include "system/TroubleShootingWindow.hpp"
#include "system/menu/SupportPages.hpp"
#include "text/CatalogueIds.hpp"
#include "text/MessageDialog.hpp"

namespace Lanyx {

namespace {

using Keelson::Lib::KeelsonException;

constexpr const char* kListFooter =
    "{color:black}<Up/Down>{/color}{color:dark-grey} Select{/color}";
constexpr const char* kMoreFooter =
    "{color:white}<Enter>{/color}{color:light-grey} More{/color}{align:right}"
    "{color:white}<Esc>{/color}{color:light-grey} Log Out{/color}{/align}";
constexpr const char* kChangeFooter =
    "{color:white}<Enter>{/color}{color:light-grey} Change{/color}{align:right}"
    "{color:white}<Esc>{/color}{color:light-grey} Log Out{/color}{/align}";
// The lockdown entry's own form: its <Enter> is never closed.
constexpr const char* kChangeFooter2 =
    "{color:white}<Enter>{color:light-grey} Change{/color}{align:right}"
    "{color:white}<Esc>{/color}{color:light-grey} Log Out{/color}{/align}";
constexpr const char* kRestartFooter =
    "{color:white}<Enter>{/color} {color:light-grey}Restart{align:right}"
    "{color:white}<Esc>{/color}{color:light-grey} Log Out{/color}{/align}";
constexpr const char* kRunTestFooter =
    "{color:white}<Enter>{/color}{color:light-grey} Run Test{/color}{align:right}"
    "{color:white}<Esc>{/color}{color:light-grey} Log Out{/color}{/align}";
constexpr const char* kResetFooter =
    "{color:white}<Enter>{/color}{color:light-grey} Reset{/color}{align:right}"
    "{color:white}<Esc>{/color}{color:light-grey} Log Out{/color}{/align}";
constexpr const char* kLogOutFooter =
    "{align:right}{color:white}<Esc>{/color}{color:light-grey} Log Out{/color}{/align}";

struct LogFile {
    const char* label;
    const char* path;
};

constexpr std::array<LogFile, 6> kLogFiles = {{
    {"Syslog", "/var/log/syslog.log"},
    {"Tessel", "/var/log/tessel.log"},
    {"Config", "/var/log/sysboot.log"},
    {"Management Agent (helmd)", "/var/log/helmd.log"},
    {"High Availibility Agent (cairnd)", "/var/log/cairnd.log"},
    {"Zephora Ostra Observation log (notad)", "/var/log/notad.log"},
}};

constexpr const char* kPagerPrompt = "<Q> Quit </> RegExp Search <H> Help";

// No management interface, a disabled one or a host library that cannot tell: all count as down.
bool ManagementInterfaceUp() {
    try {
        const std::unique_ptr<Keelson::Network::NetworkInterface> nic = FindManagementInterface();
        return nic && nic->IsEnabled();
    } catch (const KeelsonException&) {
        return false;
    }
}

// The IPv6 block of the network summary, with its blank line behind it; empty when IPv6 is off.
std::string Ipv6Summary(StringFactory& strings) {
    std::string text = std::string(strings.GetString(Ids::Ipv6AddressesHeading)) + ":\n";
    try {
        if (!TesselCtl::Network::NetworkInfoImpl().IsTesselIpv6Enabled())
            return "";
        std::vector<Keelson::Network::Ipv6Network> networks;
        if (const std::unique_ptr<Keelson::Network::NetworkInterface> nic =
                FindManagementInterface())
            networks = nic->GetIpConfig().GetIpv6Network();
        if (networks.empty()) {
            text += std::string(strings.GetString(Ids::NotSet)) + "\n";
        } else {
            // Three fit; of more, two and a mark that there are others.
            const size_t shown = networks.size() <= 3 ? networks.size() : 2;
            for (size_t i = 0; i < shown; ++i)
                text += networks[i].GetStringAddress() + "\n";
            if (shown < networks.size())
                text += "...\n";
        }
    } catch (const KeelsonException&) {
        text = std::string(strings.GetString(Ids::Ipv6AddressesHeading)) + ":\n" +
               strings.GetString(Ids::Unknown) + "\n";
    }
    return text + "\n";
}

} // namespace

GeneralWindow::GeneralWindow(Frame* owner)
    : MenuWindow(owner, Ids::SystemCustomization, kListFooter) {
    bool lockdownChangeable = HelmqQueryBool("helmsvc/auth/lockdown_is_enabled");
    if (!lockdownChangeable)
        lockdownChangeable = HelmqQueryBool("helmsvc/auth/lockdown_is_possible");
    const bool managementUp = ManagementInterfaceUp();
    const bool pxeBoot = TesselCtl::Adv::UserAdvancedOptionImpl::HasUserOption("PXEBootEnabled");

    AddEntry(Ids::ConfigurePassword);
    AddEntry(Ids::ConfigureLockdownMode, lockdownChangeable);
    AddBlank();
    AddEntry(Ids::ConfigureManagementNetwork, managementUp);
    AddEntry(Ids::RestartManagementNetwork, managementUp);
    AddEntry(Ids::TestManagementNetwork, managementUp);
    AddEntry(Ids::NetworkRestoreOptions);
    AddBlank();
    if (consoleMode)
        AddEntry(Ids::ConfigureKeyboard);
    AddEntry(Ids::TroubleshootingOptions);
    AddBlank();
    AddEntry(Ids::ViewSystemLogs);
    AddBlank();
    AddEntry(Ids::ViewSupportInformation);
    AddBlank();
    AddEntry(Ids::ResetSystemConfiguration, !pxeBoot);
    ShowEntries();

    lockdownEnabled = HelmqQueryBool("helmsvc/auth/lockdown_is_enabled");
    supportPages = ReadSupportPages(HostPath("/etc/zephora/support"));
    supportPage = 0;
}

GeneralWindow::~GeneralWindow() = default;

void GeneralWindow::ShowSelectedEntry() {
    if (!strings)
        return;
    StringFactory& text = *strings;
    detailText->SetText("");
    const uint32_t id = GetSelectedEntry();
    std::string body;
    const char* footer = kMoreFooter;
    switch (id) {
    case Ids::ConfigurePassword:
        body = std::string("{color:white}") +
               text.GetString(passwordIsEmpty ? Ids::NotSet : Ids::SetWord) + "{/color}\n\n" +
               text.GetString(Ids::PasswordHelp);
        footer = kChangeFooter;
        break;
    case Ids::ConfigureLockdownMode:
        body = std::string("{color:white}") +
               text.GetString(lockdownEnabled ? Ids::Enabled : Ids::Disabled) + "{/color}\n\n" +
               text.GetString(Ids::LockdownHelp);
        footer = kChangeFooter2;
        break;
    case Ids::ConfigureManagementNetwork:
        body = ManagementSummary();
        break;
    case Ids::RestartManagementNetwork:
        body = text.GetString(Ids::RestartNetworkHelp);
        footer = kRestartFooter;
        break;
    case Ids::TestManagementNetwork:
        body = text.GetString(Ids::TestNetworkHelp);
        footer = kRunTestFooter;
        break;
    case Ids::NetworkRestoreOptions:
        body = text.GetString(Ids::NetworkRestoreHelp);
        footer = kRestartFooter;
        break;
    case Ids::ViewSupportInformation:
        body = SupportText();
        footer = kLogOutFooter;
        break;
    case Ids::ViewSystemLogs:
        body = LogTable();
        footer = kLogOutFooter;
        break;
    case Ids::TroubleshootingOptions:
        body = text.GetString(Ids::TroubleshootingHelp);
        break;
    case Ids::ResetSystemConfiguration:
        body = text.GetString(Ids::ResetHelp);
        footer = kResetFooter;
        break;
    case Ids::ConfigureKeyboard:
        body = "{color:white}" + TesselCtl::System::SystemInfoImpl().GetKeyboardLayout() +
               "{/color}\n\n" + "{color:light-grey}" + text.GetString(Ids::KeyboardHelp) +
               "{/color}";
        break;
    default:
        footer = "";
        break;
    }
    SetRightTitle(text.GetString(id));
    detailText->SetText(body);
    SetRightFooter(footer);
    // The list's rows reach down to the footer line and a list redraw blanks it, so the footer
    // is written again with every pane.
    SetLeftFooter(passwordIsEmpty ? text.GetString(Ids::DefaultPasswordWarning) : kListFooter);
}

std::string GeneralWindow::ManagementSummary() {
    StringFactory& text = *strings;
    std::string hostname;
    std::string address = "0.0.0.0";
    bool useDhcp = false;
    uint32_t dhcpServer = 0;
    std::string dhcpServerText;
    try {
        hostname = dnsConfig.GetHostname();
        if (const std::unique_ptr<Keelson::Network::NetworkInterface> nic =
                FindManagementInterface()) {
            const Keelson::Network::IpConfig configured = nic->GetConfiguredIpConfig();
            useDhcp = configured.GetUseDhcp();
            if (configured.GetIpv4UseNone())
                address = text.GetString(Ids::NotSet);
            else
                address = nic->GetIpConfig().GetIpv4Address().GetStringAddress();
            if (auto* tesselNic = dynamic_cast<Keelson::Network::TesselNic*>(nic.get())) {
                const Keelson::Network::Ipv4Address server = tesselNic->GetDhcpServer();
                dhcpServer = server.GetBinaryAddress();
                dhcpServerText = server.GetStringAddress();
            }
        }
    } catch (const KeelsonException&) {
        hostname = address = text.GetString(Ids::Unknown);
        useDhcp = false;
    }

    std::string summary = std::string("{color:white}") + text.GetString(Ids::HostnameHeading) +
                          ":\n" + hostname + "\n\n" + text.GetString(Ids::Ipv4AddressHeading) +
                          ":\n" + address + "\n\n";
    if (useDhcp && dhcpServer != 0)
        summary += std::string(text.GetString(Ids::DhcpIdentity)) + " " + dhcpServerText + "\n\n";
    summary += Ipv6Summary(text);
    // Left open: the rest of the pane is this text.
    summary += std::string("{color:light-grey}") + text.GetString(Ids::NetworkHelp);
    return summary;
}

std::string GeneralWindow::SupportText() const {
    if (supportPages.empty())
        return "";
    const bool earlier = supportPage > 0;
    const bool later = supportPage + 1 < supportPages.size();
    std::string line = earlier ? "{color:white}" : "{color:light-grey}";
    line += "<Page Up>       {/color}";
    line += "{color:white}" + std::to_string(supportPage + 1) + "/" +
            std::to_string(supportPages.size()) + "{/color}";
    line += later ? "{color:white}" : "{color:light-grey}";
    line += "     <Page Down>{/color}";
    return line + "\n" + supportPages[supportPage];
}

std::string GeneralWindow::LogTable() {
    std::string table;
    int number = 0;
    for (size_t row = 0; row < kLogFiles.size(); ++row) {
        struct stat info;
        logPresent[row] = ::stat(HostPath(kLogFiles[row].path).c_str(), &info) == 0;
        if (!logPresent[row])
            continue;
        table += "{color:white}<" + std::to_string(++number) + "> {color:light-grey}" +
                 kLogFiles[row].label + "{/color}\n";
    }
    return table + "\n" + CatalogueText(Ids::LogsHelp);
}

void GeneralWindow::LeavingEntry(uint32_t id) {
    if (id == Ids::ViewSupportInformation)
        supportPage = 0;
}

void GeneralWindow::HandleOtherKey(uint32_t id, int key) {
    if (key == Keys::PageDown && id == Ids::ViewSupportInformation &&
        supportPage + 1 < supportPages.size()) {
        ++supportPage;
        ShowSelectedEntry();
    } else if (key == Keys::PageUp && id == Ids::ViewSupportInformation && supportPage > 0) {
        --supportPage;
        ShowSelectedEntry();
    } else if (key >= '1' && key <= '9' && id == Ids::ViewSystemLogs) {
        ViewLog(key - '0');
    }
}

void GeneralWindow::RunEntry(uint32_t id) {
    // Screens not built yet are left out; each plugs in at its entry and redraws afterwards.
    switch (id) {
    case Ids::RestartManagementNetwork:
        try {
            const std::unique_ptr<Keelson::Network::NetworkInterface> nic =
                FindManagementInterface();
            if (!nic)
                MessageDialog(this, Ids::RestartNetworkError, Ids::InterfaceNotFound).RunModal();
            else
                RestartNetworkDialog(this, nic.get()).RunModal();
        } catch (const KeelsonException&) {
            MessageDialog(this, Ids::RestartNetworkError, Ids::InterfaceOperationFailed).RunModal();
        }
        Draw();
        break;
    case Ids::ConfigureLockdownMode:
        // Asked anew: a failed change leaves the mode as the host has it.
        if (LockdownDialog(this).RunModal())
            lockdownEnabled = HelmqQueryBool("helmsvc/auth/lockdown_is_enabled");
        Draw();
        break;
    case Ids::ResetSystemConfiguration:
        RestoreDialog(this).RunModal();
        break;
    case Ids::ConfigurePassword:
        ChangePasswordDialog(this).RunModal();
        Draw();
        break;
    case Ids::TroubleshootingOptions:
        TroubleShootingWindow(this).RunModal();
        Draw();
        break;
    case Ids::ConfigureKeyboard:
        KeyboardDialog(this).RunModal();
        Draw();
        break;
    case Ids::ConfigureManagementNetwork:
        NetworkWindow(this).RunModal();
        Draw();
        break;
    case Ids::TestManagementNetwork:
        TestDialog(this).RunModal();
        Draw();
        break;
    case Ids::NetworkRestoreOptions:
        NetworkRestoreWindow(this).RunModal();
        Draw();
        break;
    default:
        break;
    }
}

void GeneralWindow::ViewLog(int number) {
    int shown = 0;
    const LogFile* log = nullptr;
    for (size_t row = 0; row < kLogFiles.size() && !log; ++row) {
        if (logPresent[row] && ++shown == number)
            log = &kLogFiles[row];
    }
    if (!log)
        return;

    // The pager owns the terminal until it ends; the console's modes come back afterwards.
    termios consoleModes{};
    ::tcgetattr(1, &consoleModes);
    ::tcsetattr(1, TCSANOW, &savedTermios);
    clear();
    refresh();
    activeFrame = nullptr;

    // The console's environment, with the pager kept from shell escapes, other files and
    // writing a history file in the operator's home.
    std::vector<std::string> pagerEnv;
    for (char** entry = environ; *entry; ++entry)
        if (!std::string_view(*entry).starts_with("LESSSECURE=") &&
            !std::string_view(*entry).starts_with("LESSHISTFILE="))
            pagerEnv.emplace_back(*entry);
    pagerEnv.emplace_back("LESSSECURE=1");
    pagerEnv.emplace_back("LESSHISTFILE=-");
    std::vector<char*> envp;
    for (std::string& entry : pagerEnv)
        envp.push_back(entry.data());
    envp.push_back(nullptr);
    const std::string pager = HostPath("/bin/less");
    const std::string file = HostPath(log->path);
    const char* const argv[] = {"less", "-cfP", kPagerPrompt, file.c_str(), nullptr};
    // The console's own terminal, unlike the host tools, and as a job of its own: its follow
    // mode and searches end only on an interrupt, so Ctrl-C must reach it, and it alone.
    const int terminal[3] = {0, 1, 2};
    const pid_t pid =
        TesselForkExec(pager.c_str(), argv, envp.data(), terminal, ChildJob::TerminalForeground);
    while (pid > 0 && ::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }

    // Until the terminal is the console's again, the console is a background group, which
    // SIGTTOU would stop (or refuse) at these calls.
    sigset_t ttou, previous;
    sigemptyset(&ttou);
    sigaddset(&ttou, SIGTTOU);
    ::pthread_sigmask(SIG_BLOCK, &ttou, &previous);
    ::tcsetattr(1, TCSANOW, &consoleModes);
    ::tcsetpgrp(1, ::getpgid(0));
    ::pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    keypad(stdscr, false);
    keypad(stdscr, true);
    SetActive(false);
    SetActive(true);
    activeFrame = this;
    clearok(curscr, true);
    Update();
}

} // namespace Lanyx
