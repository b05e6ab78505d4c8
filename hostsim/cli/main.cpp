// hostsim: makes and adjusts simulated host roots.
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "cli/Commands.hpp"
#include "cli/CreateRoot.hpp"
#include "cli/Helpers.hpp"
#include "cli/Profiles.hpp"
#include "store/StateStore.hpp"

namespace {

using namespace HostSim::Cli;

void Help(std::ostream& out) {
    out << "usage:\n"
           "  hostsim create DIR [--profile NAME] [--force]   make a simulated host root\n"
           "  hostsim profiles                                list the profiles\n"
           "  hostsim state DIR                               print the state document\n"
           "  hostsim set DIR NAME VALUE                      change one setting\n"
           "  hostsim fault DIR lib OPERATION TEXT            make a library operation throw TEXT\n"
           "  hostsim fault DIR tool NAME exit STATUS         make a tool exit with STATUS\n"
           "  hostsim fault DIR tool NAME output TEXT         make a tool print TEXT\n"
           "  hostsim fault DIR tool NAME hang                make a tool sleep until killed\n"
           "  hostsim fault DIR tool NAME signal              make a tool end on signal 9\n"
           "  hostsim fault DIR tool NAME absent              take a tool's files out of the root\n"
           "  hostsim fault DIR clear [NAME]                  remove one fault or all\n"
           "  hostsim fault DIR trace on|off                  list each library call and tool run\n"
           "                                                  in DIR/var/lib/hostsim/calls.log\n"
           "  hostsim --help\n\nsettings:\n";
    for (const Setting& setting : Settings()) {
        out << "  " << setting.name
            << std::string(20 - std::min<size_t>(19, std::string(setting.name).size()), ' ')
            << setting.help << "\n";
    }
    out << "\nprofiles:\n";
    for (const Profile& profile : Profiles())
        out << "  " << profile.name << "\n";
    out << "\nfault operations:\n";
    for (const std::string& name : FaultOperations())
        out << "  " << name << "\n";
    out << "\ntools:\n";
    for (const std::string& name : FaultTools())
        out << "  " << name << "\n";
}

// The programs the root calls, found from this program's own folder.
Helpers ProgramHelpers() {
    char path[PATH_MAX];
    ssize_t length = ::readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0)
        throw CreateError("Cannot find the hostsim program's folder");
    path[length] = '\0';
    return FindHelpers(std::filesystem::path(path).parent_path().string(), HOSTSIM_INSTALLED_TOOL,
                       HOSTSIM_INSTALLED_PAM_MODULE);
}

// A root given on the command line must hold a host already.
std::string ExistingRoot(const std::string& dir) {
    std::error_code error;
    auto absolute = std::filesystem::canonical(dir, error);
    if (error)
        throw UsageError("No such folder: " + dir);
    return absolute.string();
}

int Run(const std::vector<std::string>& args) {
    if (args.empty()) {
        Help(std::cerr);
        return 2;
    }
    const std::string& command = args[0];
    if (command == "--help" || command == "-h" || command == "help") {
        Help(std::cout);
        return 0;
    }
    if (command == "profiles") {
        if (args.size() != 1)
            throw UsageError("usage: hostsim profiles");
        for (const Profile& profile : Profiles()) {
            std::cout << profile.name
                      << std::string(16 - std::min<size_t>(15, profile.name.size()), ' ')
                      << profile.description << "\n";
        }
        return 0;
    }
    if (command == "create") {
        std::string dir, profile = "default";
        bool force = false;
        for (size_t i = 1; i < args.size(); ++i) {
            if (args[i] == "--profile") {
                if (++i >= args.size())
                    throw UsageError("--profile needs a name");
                profile = args[i];
            } else if (args[i] == "--force") {
                force = true;
            } else if (dir.empty() && !args[i].empty() && args[i][0] != '-') {
                dir = args[i];
            } else {
                throw UsageError("Unexpected argument \"" + args[i] +
                                 "\" (usage: hostsim create DIR [--profile NAME])");
            }
        }
        if (dir.empty())
            throw UsageError("usage: hostsim create DIR [--profile NAME]");
        if (FindProfile(profile) == nullptr)
            throw UsageError("Unknown profile \"" + profile + "\" (hostsim profiles lists them)");
        CreateRoot(dir, profile, ProgramHelpers(), force);
        return 0;
    }
    if (command == "state") {
        if (args.size() != 2)
            throw UsageError("usage: hostsim state DIR");
        std::cout << HostSim::StateStore(ExistingRoot(args[1])).Read().dump(2) << "\n";
        return 0;
    }
    if (command == "set") {
        if (args.size() != 4)
            throw UsageError("usage: hostsim set DIR NAME VALUE");
        ApplySetting(ExistingRoot(args[1]), args[2], args[3]);
        return 0;
    }
    if (command == "fault") {
        if (args.size() < 3)
            throw UsageError("usage: hostsim fault DIR lib|tool|trace|clear ...");
        ApplyFault(ExistingRoot(args[1]), std::vector<std::string>(args.begin() + 2, args.end()));
        return 0;
    }
    throw UsageError("Unknown command \"" + command + "\" (hostsim --help lists them)");
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const UsageError& e) {
        std::cerr << "hostsim: " << e.what() << "\n";
        return 2;
    } catch (const std::exception& e) {
        std::cerr << "hostsim: " << e.what() << "\n";
        return 1;
    }
}
