// Layout of a welcome text that fills an 80 x 24 screen, and redraws of a list of 200 items on
// an off-screen curses screen.
#include <benchmark/benchmark.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <curses.h>
#include <memory>
#include <string>
#include <vector>

#include "core/Window.hpp"
#include "text/ItemList.hpp"
#include "text/LabelItem.hpp"
#include "text/Markup.hpp"

namespace {

using namespace Lanyx;

std::string WelcomeText() {
    std::string text = "{bgcolor:black}{align:center}{color:white}Lanyx Hypervisor 8.0.3 "
                       "(Tessel 8.0.3 Build 24280767){/color}{/align}{/bgcolor}\n\n";
    text += "{align:center}{ostraproduct} {ostraversion}{/align}\n";
    text += "{align:center}{memory} Memory{/align}\n\n\n";
    text += "{color:white}Download tools to manage this host from:{/color}\n";
    text += "http://{hostname}/ (DHCP)\nhttp://[{ip}]/ (STATIC)\n\n";
    text += "{align:padding:24}Serial number:{/align}{serial-number}\n";
    text += "{align:padding:24}Service tag:{/align}{servicetag}\n";
    text += "{align:padding:24}BIOS:{/align}{BIOSversion}\n";
    text += "{align:padding:24}SSL thumbprint (SHA1):{/align}{ssl-thumbprint-sha-1}\n";
    for (int i = 0; i < 6; ++i) {
        text += "This host is managed centrally; changes made here may be overwritten by the "
                "management server at its next synchronisation run.\n";
    }
    text += "\n{bgcolor:yellow}{color:black}<F2>{/color} Customize System/View Logs"
            "{align:right}{color:black}<F12>{/color} Shut Down/Restart{/align}{/bgcolor}";
    return text;
}

void BM_FormatWelcomeScreen(benchmark::State& state) {
    const std::string text = WelcomeText();
    const TagSourceMap sources = MakeTagSources();
    for (auto _ : state) {
        benchmark::DoNotOptimize(Format(text, 80, sources));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_FormatWelcomeScreen);

// Curses on a screen that goes nowhere, as large as the console's usual terminal.
class OffscreenCurses {
public:
    OffscreenCurses() {
        std::setlocale(LC_ALL, "C.UTF-8");
        setenv("LINES", "24", 1);
        setenv("COLUMNS", "80", 1);
        output = std::fopen("/dev/null", "w");
        input = std::fopen("/dev/null", "r");
        screen = newterm("xterm", output, input);
        set_term(screen);
        start_color();
    }
    ~OffscreenCurses() {
        endwin();
        delscreen(screen);
        std::fclose(output);
        std::fclose(input);
    }
    bool Ready() const { return screen != nullptr; }

private:
    SCREEN* screen = nullptr;
    FILE* output = nullptr;
    FILE* input = nullptr;
};

// The left pane of a root window on 80 x 24: a list of 38 x 18.
struct ListFixture {
    Window pane{0, 0, 40, 23, 3, 7};
    ItemList* list = new ItemList(&pane, 2, 4, 38, 18);
    std::vector<std::unique_ptr<LabelItem>> owned;

    ListFixture() {
        std::vector<Item*> items;
        for (int i = 0; i < 200; ++i) {
            const bool heading = i % 10 == 0;
            owned.push_back(std::make_unique<LabelItem>(
                heading ? "{color:white}Group " + std::to_string(i / 10) + "{/color}"
                        : "  hwport" + std::to_string(i) + "{align:right}Connected{/align}",
                !heading));
            items.push_back(owned.back().get());
        }
        list->SetItems(items);
    }
};

void BM_ItemListDraw200(benchmark::State& state) {
    OffscreenCurses curses;
    if (!curses.Ready()) {
        state.SkipWithError("no curses screen");
        return;
    }
    ListFixture fixture;
    for (int i = 0; i < 100; ++i) {
        fixture.list->SelectNext();
    }
    for (auto _ : state) {
        fixture.list->Draw();
    }
}
BENCHMARK(BM_ItemListDraw200)->Unit(benchmark::kMicrosecond);

// One step down or up the list, drawn: what an arrow key costs.
void BM_ItemListScroll200(benchmark::State& state) {
    OffscreenCurses curses;
    if (!curses.Ready()) {
        state.SkipWithError("no curses screen");
        return;
    }
    ListFixture fixture;
    bool down = true;
    for (auto _ : state) {
        const uint32_t before = fixture.list->GetSelectedOrdinal();
        down ? fixture.list->SelectNext() : fixture.list->SelectPrevious();
        if (fixture.list->GetSelectedOrdinal() == before) {
            down = !down;
        }
    }
}
BENCHMARK(BM_ItemListScroll200)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
