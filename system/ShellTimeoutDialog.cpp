#include "system/ShellTimeoutDialog.hpp"

#include <cstdlib>
#include <string>

#include "host/CommandRunner.hpp"
#include "host/HostRoot.hpp"
#include "host/Log.hpp"
#include "system/TimeoutField.hpp"
#include "text/CatalogueIds.hpp"
#include "zephora/support.h"

namespace Lanyx {

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 21;
constexpr int kTitleHeight = 15;
constexpr int kFieldWidth = 5;
constexpr int kReadCapacity = 256;
// Five digits of seconds (1440 minutes are 86400) and the terminator.
constexpr size_t kSecondsBuffer = 6;

constexpr char kAvailabilityOption[] = "/UserVars/OstraShellTimeOut";
constexpr char kIdleOption[] = "/UserVars/OstraShellInteractiveTimeOut";

// The option's seconds as ostra-tune reports them, in whole minutes.
uint32_t ReadMinutes(const char* option) {
    char output[kReadCapacity] = {};
    int length = kReadCapacity;
    const char* const argv[] = {"ostra-tune", "-q", "-g", option, nullptr};
    RunCommand("/sbin/ostra-tune", argv, output, &length);
    // The last byte is the newline; a full buffer loses its last digit instead of overrunning.
    if (length > 0)
        output[length - 1] = '\0';
    output[kReadCapacity - 1] = '\0';
    return static_cast<uint32_t>(std::strtol(output, nullptr, 10) / 60);
}

// The option set through ostraq, or through benchq when ostraq fails; a failure of both is
// not told to anyone.
void WriteSeconds(const char* option, const char* seconds) {
    const char* argv[] = {"ostraq", "system", "settings", "advanced", "set",
                          "-o",     option,   "-i",       seconds,    nullptr};
    if (RunCommand("/sbin/ostraq", argv) != 0) {
        argv[0] = "benchq";
        RunCommand("/sbin/benchq", argv);
    }
}

// A service that runs is restarted, so that it takes the new time-out; a stopped one is left.
void RestartIfRunning(const char* script) {
    const std::string path = HostPath(script);
    const char* const status[] = {"sh", path.c_str(), "status", nullptr};
    if (RunCommand("/bin/sh", status) != 0)
        return;
    const char* const restart[] = {"sh", path.c_str(), "restart", nullptr};
    RunCommand("/bin/sh", restart);
}

} // namespace

struct ShellTimeoutDialog::Setting {
    const char* option;
    const char* disabledLog;
    const char* modifiedLog;
};

ShellTimeoutDialog::ShellTimeoutDialog(Frame* owner)
    : FormDialog(owner, kWidth, kHeight, kTitleHeight) {
    availabilityMinutes = ReadMinutes(kAvailabilityOption);
    idleMinutes = ReadMinutes(kIdleOption);
    CreateList(0, 2);
    availabilityItem = AddField(CatalogueText(Ids::AvailabilityTimeout),
                                std::to_string(availabilityMinutes), kFieldWidth, Filters::Digits);
    idleItem = AddField(CatalogueText(Ids::IdleTimeout), std::to_string(idleMinutes), kFieldWidth,
                        Filters::Digits);
    ShowItems();
}

void ShellTimeoutDialog::Open() {
    SetTitle(CatalogueText(Ids::ShellTimeoutsTitle));
    SetMessage(CatalogueText(Ids::ShellTimeoutsMessage));
    SetFooter(Footers::kOkCancel);
}

bool ShellTimeoutDialog::Accept() {
    static const Setting availability{kAvailabilityOption, "Disabled Shell timeout",
                                      "Modified Shell timeout to %d minutes"};
    static const Setting idle{kIdleOption, "Disabled shell interactive timeout",
                              "Modified shell interactive timeout to %d minutes"};
    Apply(availability, *availabilityItem, availabilityMinutes, true);
    Apply(idle, *idleItem, idleMinutes, false);
    return true;
}

void ShellTimeoutDialog::Apply(const Setting& setting, const InputItem& field, uint32_t current,
                               bool restartServices) {
    const std::optional<unsigned long> minutes = TimeoutMinutes(field.GetValue());
    if (!minutes)
        return;
    if (*minutes > kMaxTimeoutMinutes) {
        Reject(&field == availabilityItem ? 0 : 1, Ids::InvalidTimeoutTitle, Ids::InvalidTimeout);
        return;
    }
    if (*minutes == current)
        return;
    char seconds[kSecondsBuffer];
    Str_Sprintf(seconds, sizeof seconds, "%lu", *minutes * 60);
    WriteSeconds(setting.option, seconds);
    if (restartServices) {
        RestartIfRunning("/etc/init.d/OstraShell");
        RestartIfRunning("/etc/init.d/SSH");
    }
    if (*minutes == 0)
        Log(LOG_INFO, "%s", setting.disabledLog);
    else
        Log(LOG_INFO, setting.modifiedLog, static_cast<int>(*minutes));
}

} // namespace Lanyx
