// The management network's screens on a simulated host with 256 NICs and 1000 port groups:
// opening the network menu, opening the adapter list, and one arrow key on that list. The
// screens run as the operator meets them, on an off-screen curses screen whose keyboard is a
// pipe: each run is ended by an Esc typed before it starts. With `changed:1` the host's state
// is rewritten before each run, so the simulated library parses its document once in the run.
#include <benchmark/benchmark.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <curses.h>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "core/StringFactory.hpp"
#include "network/AdaptersDialog.hpp"
#include "network/NetworkWindow.hpp"
#include "store/StateStore.hpp"
#include "text/ItemList.hpp"

namespace {

using namespace Lanyx;

constexpr size_t kNics = 256;
constexpr const char* kEscape = "\x1b";

// A host root made by the hostsim command from the large profile; LANYX_HOST_ROOT points at it
// while it lives.
class LargeHost {
public:
    LargeHost() {
        const char* tmp = std::getenv("TMPDIR");
        std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/lanyx-bench-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr)
            return;
        parent = pattern;
        const std::string root = parent + "/root";
        const std::string command =
            std::string(LANYX_BENCH_HOSTSIM) + " create " + root + " --profile large >/dev/null";
        ready = std::system(command.c_str()) == 0;
        setenv("LANYX_HOST_ROOT", root.c_str(), 1);
    }
    // The same document written anew, as a host tool's change would leave it.
    void Rewrite() const {
        HostSim::StateStore().Update([](nlohmann::json&) {});
    }
    ~LargeHost() {
        unsetenv("LANYX_HOST_ROOT");
        std::error_code ignored;
        if (!parent.empty())
            std::filesystem::remove_all(parent, ignored);
    }
    LargeHost(const LargeHost&) = delete;
    LargeHost& operator=(const LargeHost&) = delete;

    bool ready = false;

private:
    std::string parent;
};

// Curses on an 80 x 25 screen that goes nowhere, with the keyboard on a pipe at descriptor 0.
// A lone Esc is taken at once: no wait for the rest of a sequence that will not come.
class KeyedCurses {
public:
    KeyedCurses() {
        std::setlocale(LC_ALL, "C.UTF-8");
        setenv("LINES", "25", 1);
        setenv("COLUMNS", "80", 1);
        int keys[2];
        if (pipe(keys) != 0 || dup2(keys[0], 0) != 0)
            return;
        close(keys[0]);
        keyWriter = keys[1];
        input = fdopen(0, "r");
        output = std::fopen("/dev/null", "w");
        screen = newterm("xterm", output, input);
        if (screen == nullptr)
            return;
        set_term(screen);
        start_color();
        cbreak();
        noecho();
        keypad(stdscr, true);
        set_escdelay(0);
        SetStringFactorySource(&GetStringFactory);
    }
    ~KeyedCurses() {
        if (screen != nullptr) {
            endwin();
            delscreen(screen);
        }
        if (output != nullptr)
            std::fclose(output);
        if (input != nullptr)
            std::fclose(input);
        if (keyWriter >= 0)
            close(keyWriter);
    }
    KeyedCurses(const KeyedCurses&) = delete;
    KeyedCurses& operator=(const KeyedCurses&) = delete;

    bool Ready() const { return screen != nullptr; }
    bool Type(const std::string& bytes) const {
        return write(keyWriter, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    }

private:
    SCREEN* screen = nullptr;
    FILE* output = nullptr;
    FILE* input = nullptr;
    int keyWriter = -1;
};

// Both live for the whole program: the root takes a second or two to make.
LargeHost& Host() {
    static LargeHost host;
    return host;
}

KeyedCurses& Curses() {
    static KeyedCurses curses;
    return curses;
}

// Outside the timing: the state rewritten when the benchmark's argument asks for it.
void PrepareRun(benchmark::State& state) {
    if (state.range(0) == 0)
        return;
    state.PauseTiming();
    Host().Rewrite();
    state.ResumeTiming();
}

bool Ready(benchmark::State& state) {
    if (!Host().ready) {
        state.SkipWithError("hostsim create --profile large failed");
        return false;
    }
    if (!Curses().Ready()) {
        state.SkipWithError("no curses screen");
        return false;
    }
    return true;
}

// The adapter choice as the menu hands it over on this host.
AdaptersDialog MakeAdaptersDialog() {
    return AdaptersDialog(nullptr, {"hwport0", "hwport1"}, 2, "switch0");
}

// The menu built, the host read into the pending configuration, the menu and the adapters pane
// drawn, Esc read, the window closed.
void BM_NetworkMenuOpen(benchmark::State& state) {
    if (!Ready(state))
        return;
    for (auto _ : state) {
        PrepareRun(state);
        NetworkWindow window(nullptr);
        Curses().Type(kEscape);
        if (!window.RunModal() || window.Pending().adapters.size() != 2) {
            state.SkipWithError("the network menu did not open on the large host");
            break;
        }
    }
}
BENCHMARK(BM_NetworkMenuOpen)
    ->ArgName("changed")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Every NIC and the switches that hold them read, one row built per NIC, the dialog and its
// list drawn, Esc read, the dialog closed.
void BM_AdapterListOpen(benchmark::State& state) {
    if (!Ready(state))
        return;
    for (auto _ : state) {
        PrepareRun(state);
        AdaptersDialog dialog = MakeAdaptersDialog();
        Curses().Type(kEscape);
        dialog.RunModal();
        if (dialog.GetRows().Count() != kNics) {
            state.SkipWithError("the adapter list did not show every NIC");
            break;
        }
    }
}
BENCHMARK(BM_AdapterListOpen)
    ->ArgName("changed")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// One step down or up the list of 256 rows, drawn: what an arrow key costs there.
void BM_AdapterListArrowKey(benchmark::State& state) {
    if (!Ready(state))
        return;
    AdaptersDialog dialog = MakeAdaptersDialog();
    Curses().Type(kEscape);
    dialog.RunModal();
    ItemList* list = dialog.GetItemList();
    bool down = true;
    for (auto _ : state) {
        const uint32_t before = list->GetSelectedOrdinal();
        down ? list->SelectNext() : list->SelectPrevious();
        if (list->GetSelectedOrdinal() == before)
            down = !down;
    }
}
BENCHMARK(BM_AdapterListArrowKey)->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
