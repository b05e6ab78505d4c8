// Start-up time, peak memory and idle CPU of the console on a pseudo-terminal, next to a minimal
// curses program measured the same way. Start-up runs until the screen is complete as the
// operator sees it; the idle minute runs under an accelerated clock.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "HostRoot.hpp"
#include "harness/Console.hpp"

using namespace LanyxE2E;
using namespace std::chrono_literals;

namespace {

struct Subject {
    std::string name;
    std::function<ConsoleOptions()> options;
    std::string ready; // text on the screen once it is complete
};

// Peak resident set (kB) of a running process.
long PeakKiB(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmHWM:", 0) == 0)
            return std::stol(line.substr(6));
    }
    return -1;
}

// CPU time (ms) a running process has used so far, to the nanosecond.
double CpuMs(pid_t pid) {
    std::ifstream schedstat("/proc/" + std::to_string(pid) + "/schedstat");
    double nanoseconds = -1;
    schedstat >> nanoseconds;
    return nanoseconds / 1e6;
}

// User plus system CPU of a running process, in clock ticks.
long CpuTicks(pid_t pid) {
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
    // Fields after the command name, which ends with the last ')'.
    std::istringstream rest(text.substr(text.rfind(')') + 2));
    std::string field;
    long utime = 0, stime = 0;
    for (int index = 3; rest >> field; ++index) {
        if (index == 14)
            utime = std::stol(field);
        if (index == 15) {
            stime = std::stol(field);
            break;
        }
    }
    return utime + stime;
}

bool Complete(Console& console, const std::string& ready) {
    return console.WaitForFullScreen(ready);
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct Figures {
    std::vector<double> startMs, firstOutputMs, cpuMs, peakKiB;
};

// One start until the screen is complete; false with the screen printed when it never is.
bool StartOnce(const Subject& subject, Figures& figures) {
    const auto since = [](std::chrono::steady_clock::time_point begin) {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
            .count();
    };
    const auto begin = std::chrono::steady_clock::now();
    Console console(subject.options());
    // The first byte on the terminal splits the process's own start from its painting.
    if (console.WaitFor([&] { return !console.Transcript().empty(); }))
        figures.firstOutputMs.push_back(since(begin));
    if (!Complete(console, subject.ready)) {
        std::printf("%s: screen not complete\n%s\n", subject.name.c_str(),
                    console.Describe().c_str());
        return false;
    }
    figures.startMs.push_back(since(begin));
    figures.cpuMs.push_back(CpuMs(console.Pid()));
    figures.peakKiB.push_back(static_cast<double>(PeakKiB(console.Pid())));
    return true;
}

// Five minutes of idling at sixty times the speed of the clock: five seconds of real time.
double IdleCpuMsPerMinute(const Subject& subject) {
    ConsoleOptions idle = subject.options();
    idle.faketime = "+0 x60";
    Console console(idle);
    if (!Complete(console, subject.ready))
        return -1;
    const long before = CpuTicks(console.Pid());
    const auto end = std::chrono::steady_clock::now() + 5s;
    while (std::chrono::steady_clock::now() < end)
        console.Pump(std::chrono::duration_cast<Duration>(end - std::chrono::steady_clock::now()));
    const long after = CpuTicks(console.Pid());
    return 1000.0 * static_cast<double>(after - before) /
           static_cast<double>(sysconf(_SC_CLK_TCK)) / 5;
}

} // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
    HostRoot root("default");
    const std::vector<Subject> subjects = {
        {"lanyx", [&] { return LanyxOptions(root.Path()); }, "To manage this host, go to:"},
        {"minimal curses",
         [] {
             ConsoleOptions options;
             options.argv = {LANYX_BENCH_MINIMAL};
             return options;
         },
         "minimal screen ready"},
    };
    std::printf("%d runs each on an 80x25 pseudo-terminal (xterm-256color), taking turns\n", runs);
    // The programs take turns, so a change in the machine's load falls on both alike; the
    // ratio is the median of the ratios of each pair of runs.
    std::vector<Figures> figures(subjects.size());
    std::vector<double> ratios;
    for (int run = 0; run < runs; ++run) {
        for (size_t i = 0; i < subjects.size(); ++i)
            if (!StartOnce(subjects[i], figures[i]))
                return 1;
        ratios.push_back(figures[0].startMs.back() / figures[1].startMs.back());
    }
    for (size_t i = 0; i < subjects.size(); ++i) {
        const Figures& f = figures[i];
        std::printf(
            "%-16s start-up median %7.1f ms (min %7.1f, first output %5.1f, CPU %5.1f)  peak RSS "
            "%7.0f KiB  CPU per idle minute %5.1f ms\n",
            subjects[i].name.c_str(), Median(f.startMs),
            *std::min_element(f.startMs.begin(), f.startMs.end()), Median(f.firstOutputMs),
            Median(f.cpuMs), Median(f.peakKiB), IdleCpuMsPerMinute(subjects[i]));
    }
    std::printf("start-up ratio, median of pairs: %.2f\n", Median(ratios));
    return 0;
}
