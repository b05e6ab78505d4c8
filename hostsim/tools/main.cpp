// hostsim-tool --root <abs root> <toolname> args...
// The root's tool scripts exec this program; the environment is not looked at.
#include <csignal>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

#include "Tool.hpp"

namespace {

using namespace HostSim::Tools;

constexpr int kUsage = 2;

void PrintProgramUsage() {
    std::fputs("usage: hostsim-tool --root <absolute host root> <tool> [arguments...]\ntools:",
               stderr);
    for (const auto& name : ToolNames())
        std::fprintf(stderr, " %s", name.c_str());
    std::fputs("\n", stderr);
}

// Traces the run; then a fault set for this tool: print, hang or exit as told. Returns the status
// to exit with, or -1 when no fault applies and the tool should run.
int ApplyFault(const Context& context) {
    const nlohmann::json state = context.store.Read();
    std::string call = "tool " + context.name;
    for (const std::string& arg : context.args)
        call += " " + arg;
    HostSim::TraceCall(context.root, state, call);
    auto faults = state.find("faults");
    if (faults == state.end() || !faults->is_object())
        return -1;
    auto tools = faults->find("tool");
    if (tools == faults->end() || !tools->is_object())
        return -1;
    auto fault = tools->find(context.name);
    if (fault == tools->end() || !fault->is_object() || fault->empty())
        return -1;

    auto output = fault->find("output");
    if (output != fault->end() && output->is_string()) {
        std::string text = output->get<std::string>();
        if (!text.empty() && text.back() != '\n')
            text += '\n';
        std::fputs(text.c_str(), stdout);
        std::fflush(stdout);
    }
    if (BoolAt(*fault, "signal", false)) {
        // Ends on a signal: under a shell that runs it last, the whole command counts as killed.
        ::kill(::getpid(), SIGKILL);
    }
    if (BoolAt(*fault, "hang", false)) {
        // Until someone kills us: the console's time-outs and Esc paths are what is tested.
        for (;;)
            pause();
    }
    auto exit = fault->find("exit");
    if (exit != fault->end() && exit->is_number_integer())
        return static_cast<int>(exit->get<long long>() & 0xff);
    if (output != fault->end() && output->is_string())
        return 0;
    return -1;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() < 3 || words[0] != "--root") {
        PrintProgramUsage();
        return kUsage;
    }
    const std::string root = words[1];
    if (root.empty() || root.front() != '/') {
        std::fprintf(stderr, "hostsim-tool: the host root must be an absolute path, not '%s'\n",
                     root.c_str());
        return kUsage;
    }
    // The scripts pass the short name; a path is tolerated so that argv[0]-style names work too.
    std::string name = words[2];
    if (auto slash = name.rfind('/'); slash != std::string::npos)
        name = name.substr(slash + 1);
    ToolFunction tool = FindTool(name);
    if (tool == nullptr) {
        std::fprintf(stderr, "hostsim-tool: unknown tool '%s'\n", name.c_str());
        PrintProgramUsage();
        return kUsage;
    }

    Context context(root, name, std::vector<std::string>(words.begin() + 3, words.end()));
    int status = 0;
    try {
        status = ApplyFault(context);
        if (status < 0)
            status = tool(context);
    } catch (const UsageError& e) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(), e.what());
        status = kUsage;
    } catch (const ToolFailure& e) {
        std::FILE* stream = e.OnStdout() ? stdout : stderr;
        std::fprintf(stream, "%s\n", e.what());
        status = e.Status();
    } catch (const HostSim::StateError& e) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(), e.what());
        status = 1;
    } catch (const nlohmann::json::exception& e) {
        std::fprintf(stderr, "%s: the host state in %s is damaged: %s\n", name.c_str(),
                     context.store.StatePath().c_str(), e.what());
        status = 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(), e.what());
        status = 1;
    }
    if (std::fflush(stdout) != 0 && status == 0)
        status = 1;
    return status;
}
