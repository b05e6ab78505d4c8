#include "cli/RootFiles.hpp"

#include <sstream>

namespace HostSim::Cli {

namespace {

std::string Fqdn(const nlohmann::json& state) {
    const nlohmann::json host = state.value("host", nlohmann::json::object());
    std::string name = host.value("hostname", "localhost");
    std::string domain = host.value("domain", "");
    return domain.empty() ? name : name + "." + domain;
}

std::string Address(const nlohmann::json& state) {
    try {
        return state.at("network").at("interfaces").at(0).at("ipv4").value("address", "0.0.0.0");
    } catch (const nlohmann::json::exception&) {
        return "0.0.0.0";
    }
}

} // namespace

std::string PamService(const std::string& root, const std::string& module) {
    const std::string entry = module + " root=" + root;
    std::string text = "# Console login of the simulated host\n";
    for (const char* type : {"auth", "account", "password", "session"}) {
        text += std::string(type) + std::string(9 - std::string(type).size(), ' ') + "required " +
                entry + "\n";
    }
    return text;
}

std::string SupportFile(const nlohmann::json& state) {
    const nlohmann::json hardware = state.value("hardware", nlohmann::json::object());
    std::ostringstream out;
    out << "# Support information shown on the console; '$' ends a page.\n"
        << "{color:white}Contacting support{/color}\n"
        << "\n"
        << "Call the support line at +1 555 0100 and give the serial number\n"
        << "{color:white}" << hardware.value("serialNumber", "") << "{/color} of this host.\n"
        << "$ page 2\n"
        << "{color:white}Before you call{/color}\n"
        << "\n"
        << "Write down the product version and the management address\n"
        << "(" << Address(state) << ") shown on the welcome screen.\n"
        << "Keep the system log at hand: System Customization, View System Logs.\n"
        << "$ page 3\n"
        << "# Last page: web resources.\n"
        << "{color:white}On the web{/color}\n"
        << "\n"
        << "Knowledge base: https://support.example.test/kb\n";
    return out.str();
}

std::vector<std::pair<std::string, std::string>> LogFiles(const nlohmann::json& state) {
    const std::string host =
        state.value("host", nlohmann::json::object()).value("hostname", "localhost");
    const std::string address = Address(state);
    std::vector<std::pair<std::string, std::string>> files;
    files.emplace_back("/var/log/syslog.log", "");
    files.emplace_back("/var/log/notad.log", "");
    files.emplace_back("/var/log/audit.log", "");
    files.emplace_back(
        "/var/log/tessel.log",
        "2026-11-23T08:00:01.114Z cpu0:1)Boot Successful\n"
        "2026-11-23T08:00:03.562Z cpu2:2097)NetPort: 1712: enabled port 0x2000002 with mac "
        "00:50:56:6a:10:01\n"
        "2026-11-23T08:00:04.901Z cpu5:2098)Uplink: hwport0 link up, 10000 Mbps, full duplex\n"
        "2026-11-23T08:00:04.903Z cpu5:2098)Uplink: hwport1 link up, 10000 Mbps, full duplex\n"
        "2026-11-23T08:00:05.220Z cpu1:2101)Storage: storbus0 claimed by nvme_pcie\n");
    files.emplace_back(
        "/var/log/sysboot.log",
        "2026-11-23T07:59:50Z sysboot: Loading configuration from /bootbank/state.tgz\n"
        "2026-11-23T07:59:52Z sysboot: Hostname set to " +
            host +
            "\n"
            "2026-11-23T07:59:53Z sysboot: tnic0 configured with " +
            address +
            "\n"
            "2026-11-23T07:59:55Z sysboot: All services started\n");
    files.emplace_back(
        "/var/log/helmd.log",
        "2026-11-23T08:00:10.001Z info helmd[2105] Host agent started, version 8.0.3\n"
        "2026-11-23T08:00:11.442Z info helmd[2105] Inventory loaded: 3 guests\n"
        "2026-11-23T08:05:00.000Z verbose helmd[2111] Heartbeat sent\n");
    files.emplace_back(
        "/var/log/cairnd.log",
        "2026-11-23T08:00:20Z cairnd[2201]: High availability agent starting\n"
        "2026-11-23T08:00:21Z cairnd[2201]: Not part of a cluster; waiting for configuration\n");
    return files;
}

std::string HostsFile(const nlohmann::json& state) {
    const nlohmann::json host = state.value("host", nlohmann::json::object());
    const std::string name = host.value("hostname", "localhost");
    return "127.0.0.1\tlocalhost.localdomain localhost\n::1\tlocalhost.localdomain localhost\n" +
           Address(state) + "\t" + Fqdn(state) + " " + name + "\n";
}

} // namespace HostSim::Cli
