#include "cli/CreateRoot.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "cli/Profiles.hpp"
#include "cli/RootFiles.hpp"
#include "store/StateStore.hpp"

extern "C" char** environ;

namespace HostSim::Cli {

namespace fs = std::filesystem;

namespace {

void MakeFolder(const std::string& path) {
    std::error_code error;
    fs::create_directories(path, error);
    if (error)
        throw CreateError("Cannot create folder " + path + ": " + error.message());
}

void WriteFile(const std::string& path, const std::string& text, mode_t mode = 0644) {
    MakeFolder(fs::path(path).parent_path().string());
    std::ofstream out(path, std::ios::trunc | std::ios::binary);
    out << text;
    out.close();
    if (!out)
        throw CreateError("Cannot write " + path);
    if (::chmod(path.c_str(), mode) != 0)
        throw CreateError("Cannot set the mode of " + path + ": " + std::strerror(errno));
}

void Link(const std::string& target, const std::string& path) {
    MakeFolder(fs::path(path).parent_path().string());
    std::error_code error;
    fs::remove(path, error);
    fs::create_symlink(target, path, error);
    if (error)
        throw CreateError("Cannot link " + path + " to " + target + ": " + error.message());
}

// The real program of that name on the machine's own PATH folders.
std::string RealProgram(const std::string& name) {
    for (const char* folder : {"/usr/bin", "/bin", "/usr/sbin", "/sbin"}) {
        std::string path = std::string(folder) + "/" + name;
        if (::access(path.c_str(), X_OK) == 0)
            return path;
    }
    throw CreateError("The program " + name + " is not installed on this machine");
}

// Runs a real program quietly; its failure is a CreateError naming the command.
void Run(const std::vector<std::string>& argv) {
    std::vector<char*> args;
    for (const std::string& arg : argv)
        args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    int rc = ::posix_spawn(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0)
        throw CreateError("Cannot run " + argv[0] + ": " + std::strerror(rc));
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::string line;
        for (const std::string& arg : argv)
            line += (line.empty() ? "" : " ") + arg;
        throw CreateError("Command failed: " + line);
    }
}

std::string Absolute(const std::string& dir) {
    char resolved[PATH_MAX];
    if (::realpath(dir.c_str(), resolved) == nullptr)
        throw CreateError("Cannot resolve " + dir + ": " + std::strerror(errno));
    return resolved;
}

void MakeToolScripts(const std::string& root, const std::string& tool) {
    for (const ToolPath& entry : ToolPaths()) {
        WriteFile(RootPath(root, entry.path),
                  "#!/bin/sh\nexec " + tool + " --root " + root + " " + entry.tool + " \"$@\"\n",
                  0755);
    }
    WriteFile(
        RootPath(root, "/bin/sh"),
        "#!/bin/sh\n"
        "PATH=" +
            root + "/bin:" + root + "/sbin:" + root + "/usr/bin:" + root +
            "/usr/sbin\n"
            "export PATH\n"
            // The host's shell knows `let`, which the agent's version line uses; dash does not.
            "exec /bin/bash \"$@\"\n",
        0755);
    for (const char* utility : {"awk", "cat", "echo", "grep", "sed", "sleep", "test", "true",
                                "false", "printf", "ls", "head", "tail", "tr", "cut", "wc", "["}) {
        Link(RealProgram(utility), RootPath(root, std::string("/bin/") + utility));
    }
    Link(RealProgram("less"), RootPath(root, "/bin/less"));
    Link(RealProgram("openssl"), RootPath(root, "/bin/openssl"));
    Link(RealProgram("ssh-keygen"), RootPath(root, "/usr/lib/zephora/openssh/bin/ssh-keygen"));
}

void MakeKeys(const std::string& root, const std::string& fqdn) {
    const std::string ssl = RootPath(root, "/etc/zephora/ssl");
    MakeFolder(ssl);
    Run({RealProgram("openssl"), "req", "-x509", "-newkey", "ec", "-pkeyopt",
         "ec_paramgen_curve:prime256v1", "-nodes", "-keyout", ssl + "/node.key", "-out",
         ssl + "/node.crt", "-days", "3650", "-subj", "/O=Lanyx Lab/CN=" + fqdn});
    const std::string ssh = RootPath(root, "/etc/ssh");
    MakeFolder(ssh);
    for (const char* type : {"rsa", "dsa", "ecdsa", "ed25519"}) {
        std::string key = ssh + "/ssh_host_" + type + "_key";
        std::error_code ignored;
        fs::remove(key, ignored);
        fs::remove(key + ".pub", ignored);
        std::vector<std::string> argv = {
            RealProgram("ssh-keygen"),   "-q", "-t", type, "-N", "", "-C",
            std::string("root@") + fqdn, "-f", key};
        if (std::string(type) == "rsa")
            argv.insert(argv.begin() + 4, {"-b", "2048"});
        Run(argv);
    }
}

// What the reset script puts back: the host's configuration as it was made, with the software
// defaults' empty root password and no registered guests.
nlohmann::json FactoryCopy(const nlohmann::json& state) {
    nlohmann::json factory = nlohmann::json::object();
    for (const char* key :
         {"host", "network", "switches", "portGroups", "fabrics", "advancedOptions", "userOptions",
          "services", "lockdown", "keyboard", "welcomeMessage", "accounts"}) {
        if (state.contains(key))
            factory[key] = state[key];
    }
    if (factory.contains("accounts") && factory["accounts"].is_array()) {
        for (nlohmann::json& account : factory["accounts"])
            if (account.is_object() && account.value("name", "") == "root")
                account["hash"] = "";
    }
    factory["guests"] = nlohmann::json::array();
    return factory;
}

} // namespace

const std::vector<ToolPath>& ToolPaths() {
    static const std::vector<ToolPath> paths = {
        {"/bin/helmq", "helmq"},
        {"/bin/haltGuests", "haltGuests"},
        {"/sbin/haltGuests", "haltGuests"},
        {"/sbin/stateSave.sh", "stateSave.sh"},
        {"/sbin/ostra-tune", "ostra-tune"},
        {"/sbin/ostraq", "ostraq"},
        {"/bin/ostraq", "ostraq"},
        {"/sbin/benchq", "benchq"},
        {"/usr/lib64/zephora/gridmesh-opsagent/bin/gridmeshcfg-xbar", "gridmeshcfg-xbar"},
        {"/etc/init.d/OstraShell", "OstraShell"},
        {"/etc/init.d/SSH", "SSH"},
        {"/etc/init.d/gridmesh-opsagent", "gridmesh-opsagent"},
        {"/sbin/factoryState.py", "factoryState.py"},
        {"/sbin/agents.sh", "agents.sh"},
        {"/sbin/tesseltrace", "tesseltrace"},
        {"/bin/tesselping", "tesselping"},
        {"/bin/reboot", "reboot"},
        {"/sbin/reboot", "reboot"},
        {"/bin/poweroff", "poweroff"},
        {"/sbin/poweroff", "poweroff"},
        {"/bin/halt", "halt"},
        {"/sbin/halt", "halt"},
        {"/bin/shutdown", "shutdown"},
        {"/sbin/shutdown", "shutdown"},
    };
    return paths;
}

void CreateRoot(const std::string& dir, const std::string& profile, const Helpers& helpers,
                bool force) {
    const Profile* chosen = FindProfile(profile);
    if (chosen == nullptr)
        throw CreateError("Unknown profile \"" + profile + "\" (hostsim profiles lists them)");
    MakeFolder(dir);
    const std::string root = Absolute(dir);
    if (root == "/")
        throw CreateError("Refusing to make a simulated host in /");
    StateStore store(root);
    if (!force && fs::exists(store.StatePath()))
        throw CreateError(root + " already holds a simulated host (use --force to replace it)");

    for (const char* folder :
         {"/bin", "/sbin", "/usr/bin", "/usr/sbin", "/etc/init.d", "/etc/pam.d", "/etc/ssh",
          "/etc/zephora/ssl", "/var/lib/hostsim", "/var/log", "/var/run/zephora", "/tmp"}) {
        MakeFolder(RootPath(root, folder));
    }
    nlohmann::json state = ProfileState(profile);
    state["factory"] = FactoryCopy(state);
    store.Write(state);

    MakeToolScripts(root, helpers.tool);
    WriteFile(RootPath(root, "/etc/pam.d/lanyx"), PamService(root, helpers.pamModule));
    // PAM reads the fallback service whenever it opens a service folder; without one it logs an
    // error at every login. Any other service is refused.
    WriteFile(RootPath(root, "/etc/pam.d/other"),
              "# Services without a file of their own are refused\n"
              "auth     required pam_deny.so\naccount  required pam_deny.so\n"
              "password required pam_deny.so\nsession  required pam_deny.so\n");
    const std::string marker = RootPath(root, "/var/run/zephora/show-lanyx-login");
    if (chosen->loginMarker) {
        WriteFile(marker, "");
    } else {
        std::error_code ignored;
        fs::remove(marker, ignored);
    }
    WriteFile(RootPath(root, "/etc/zephora/support"), SupportFile(state));
    for (const auto& [path, text] : LogFiles(state))
        WriteFile(RootPath(root, path), text);
    WriteFile(RootPath(root, "/etc/hosts"), HostsFile(state));
    std::error_code ignored;
    fs::remove(RootPath(root, "/etc/hosts.backup"), ignored);
    const std::string hostname = state["host"].value("hostname", "localhost");
    const std::string domain = state["host"].value("domain", "");
    MakeKeys(root, domain.empty() ? hostname : hostname + "." + domain);
}

} // namespace HostSim::Cli
