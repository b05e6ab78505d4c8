// Random keys on every screen the menus lead to: printable and control bytes, function and
// cursor keys, escape sequences and invalid UTF-8. The console must keep reading keys (or end
// with status 0, or wait for a host going down where that is its answer), print no sanitizer
// report, and leave the terminal as it found it.
//
//     lanyx_soak [--keys N] [--seed S] [--only NAME] [--verbose 1]   (1: why each restart)
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <termios.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

// How to reach a screen: steps of Session::Walk.
struct Screen {
    std::string name;
    std::vector<std::string> steps;
    std::string term = "xterm-256color";
};

// clang-format off
const std::vector<Screen> kScreens = {
    {"welcome", {}},
    {"login", {"@f2"}},
    {"shutdown", {"@f12"}},
    {"menu", {"@login"}},
    {"password", {"@login", "Configure Password"}},
    {"lockdown", {"@login", "Configure Lockdown Mode"}},
    {"network", {"@login", "Configure Management Network"}},
    {"adapters", {"@login", "Configure Management Network", "Network Adapters"}},
    {"vlan", {"@login", "Configure Management Network", "VLAN (optional)"}},
    {"ipv4", {"@login", "Configure Management Network", "IPv4 Configuration"}},
    {"ipv6", {"@login", "Configure Management Network", "IPv6 Configuration"}},
    {"dns", {"@login", "Configure Management Network", "DNS Configuration"}},
    {"suffixes", {"@login", "Configure Management Network", "Custom DNS Suffixes"}},
    {"restart-network", {"@login", "Restart Management Network"}},
    {"test-network", {"@login", "Test Management Network"}},
    {"restore", {"@login", "Network Restore Options"}},
    {"restore-switch", {"@login", "Network Restore Options", "Create Standard Switch"}},
    {"restore-port-group", {"@login", "Network Restore Options", "Create Port Group"}},
    {"restore-settings", {"@login", "Network Restore Options", "Restore Network Settings"}},
    {"troubleshooting", {"@login", "Troubleshooting Options"}},
    {"shell-timeouts", {"@login", "Troubleshooting Options", "Modify Ostra Shell and SSH"}},
    {"idle-timeout", {"@login", "Troubleshooting Options", "Modify LANYX idle timeout"}},
    {"agents", {"@login", "Troubleshooting Options", "Restart Management Agents"}},
    {"logs", {"@login", "=View System Logs"}},
    {"support", {"@login", "=View Support Information"}},
    {"reset", {"@login", "Reset System Configuration"}},
    {"keyboard", {"@login", "Configure Keyboard"}, "xterm"},
};
// clang-format on

// Screens that stop reading keys on purpose: the host is going down.
const std::vector<std::string> kEndlessWaits = {"Shutdown in progress...", "Restart in progress...",
                                                "Default settings are restored."};

std::string RandomKey(std::mt19937& random) {
    // clang-format off
    static const std::vector<std::string> named = {
        "\x1bOA",  "\x1bOB",  "\x1bOC",   "\x1bOD",   "\x1bOH",   "\x1bOF",   "\x1b[2~",
        "\x1b[3~", "\x1b[5~", "\x1b[6~",  "\x1bOP",   "\x1bOQ",   "\x1bOR",   "\x1bOS",
        "\x1b[15~", "\x1b[17~", "\x1b[18~", "\x1b[19~", "\x1b[20~", "\x1b[21~", "\x1b[23~",
        "\x1b[24~", "\x1b[A",  "\x1b[D",  "\x1b[M",   "\x1b[X",   "\x1bOW",   "\x1bOY",
        "\x1b" "1",   "\x1b" "0",   "\x1bh",   "\x1bk",    "\x1b+",    "\x1b?",    "\x1b/",
        "\r",      "\t",      "\x7f",    "\x1b",     " ",        "\xc3\xa9", "\xe2\x82\xac"};
    // clang-format on
    std::uniform_int_distribution<int> kind(0, 99);
    const int k = kind(random);
    if (k < 40)
        return std::string(1,
                           static_cast<char>(std::uniform_int_distribution<int>(32, 126)(random)));
    if (k < 80)
        return named[std::uniform_int_distribution<size_t>(0, named.size() - 1)(random)];
    if (k < 88) // control bytes
        return std::string(1, static_cast<char>(std::uniform_int_distribution<int>(0, 31)(random)));
    if (k < 96) // a byte that starts or continues no valid UTF-8 here
        return std::string(1,
                           static_cast<char>(std::uniform_int_distribution<int>(128, 255)(random)));
    // An escape sequence of random parameters and final byte.
    std::string sequence = "\x1b[";
    for (int n = std::uniform_int_distribution<int>(0, 6)(random); n > 0; --n)
        sequence += "0123456789;"[std::uniform_int_distribution<int>(0, 10)(random)];
    sequence += static_cast<char>(std::uniform_int_distribution<int>(64, 126)(random));
    return sequence;
}

std::string Printable(const std::string& key) {
    std::ostringstream out;
    for (unsigned char c : key) {
        if (c >= 33 && c < 127)
            out << c;
        else
            out << "\\x" << std::hex << std::setw(2) << std::setfill('0') << int(c) << std::dec;
    }
    return out.str();
}

bool SanitizerReport(const Console& console) {
    return !console.SanitizerReports().empty();
}

class Soak {
public:
    Soak(int keys, unsigned seed, bool verbose) : keys_(keys), verbose_(verbose), random_(seed) {}

    // Sends the keys to one screen; false with a report on the first fault.
    bool Run(const Screen& screen) {
        auto s = Start(screen);
        if (!s)
            return false;
        std::vector<std::string> recent;
        int restarts = 0;
        for (int sent = 1; sent <= keys_; ++sent) {
            const std::string key = RandomKey(random_);
            recent.push_back(key);
            if (recent.size() > 30)
                recent.erase(recent.begin());
            s->Screen().Send(key);
            if (sent % 20 != 0 && sent != keys_)
                continue;
            Console& console = s->Screen();
            // A wait for the host to go down is seen at once; anything else gets the full time.
            const auto endless = [&] {
                for (const std::string& text : kEndlessWaits)
                    if (console.Find(text))
                        return true;
                return false;
            };
            if (console.WaitUntilReading(1s) || (!endless() && console.WaitUntilReading(14s)))
                continue;
            // The pager waits on purpose in two ways: with its output stopped by Ctrl-S (the
            // terminal's own modes), and in its follow mode, which an interrupt ends.
            if (console.OutputStopped()) {
                console.Send("\x11");
                if (console.WaitUntilReading(15s))
                    continue;
            }
            if (console.Find("Waiting for data... (interrupt to abort)")) {
                console.Send("\x03");
                if (console.WaitUntilReading(15s))
                    continue;
            }
            // Not reading: an end, a wait for the host to go down, or a fault.
            console.Pump();
            const bool ended = !console.Running();
            const bool expected = (ended && console.Exit() && console.Exit()->Exited() &&
                                   console.Exit()->Code() == 0) ||
                                  (!ended && endless());
            if (!expected || SanitizerReport(console))
                return Fail(screen, *s, sent, recent, ended ? "ended" : "stopped reading keys");
            ++restarts;
            if (verbose_)
                std::cout << screen.name << ": started again after " << sent << " keys ("
                          << (ended ? "ended with status 0" : "host going down") << "), last key "
                          << Printable(key) << std::endl;
            if (!(s = Start(screen)))
                return false;
        }
        Console& console = s->Screen();
        if (SanitizerReport(console))
            return Fail(screen, *s, keys_, recent, "sanitizer report");
        if (console.Running()) {
            // The console takes the signal only after the pager it waits for has ended; the
            // pager, a job of its own, gets the hangup that a unit's stop sends to the processes
            // left.
            console.SignalChildren(SIGHUP);
            console.Signal(SIGTERM);
            if (!console.ExitsWith(0, 15s))
                return Fail(screen, *s, keys_, recent, "no clean end on SIGTERM");
            const termios modes = console.Modes();
            if (!(modes.c_lflag & ICANON) || !(modes.c_lflag & ECHO) || console.AltScreen() ||
                !console.CursorVisible() || SanitizerReport(console))
                return Fail(screen, *s, keys_, recent,
                            std::string("terminal not restored:") +
                                (modes.c_lflag & ICANON ? "" : " no ICANON") +
                                (modes.c_lflag & ECHO ? "" : " no ECHO") +
                                (console.AltScreen() ? " alternate screen" : "") +
                                (console.CursorVisible() ? "" : " cursor hidden"));
        }
        std::cout << screen.name << ": " << keys_ << " keys, " << restarts << " restarts"
                  << std::endl;
        return true;
    }

private:
    std::unique_ptr<Session> Start(const Screen& screen) {
        auto s = std::make_unique<Session>("default", SessionOptions{.term = screen.term});
        if (auto reached = s->Walk(screen.steps); !reached) {
            std::cerr << screen.name << ": not reached: " << reached.message() << "\n";
            return nullptr;
        }
        return s;
    }

    bool Fail(const Screen& screen, Session& s, int sent, const std::vector<std::string>& recent,
              const std::string& what) {
        std::cerr << "FAIL " << screen.name << " after " << sent << " keys: " << what
                  << "\nlast keys:";
        for (const std::string& key : recent)
            std::cerr << " " << Printable(key);
        std::cerr << "\n" << s.Screen().Describe() << "\n" << s.Screen().SanitizerReports() << "\n";
        return false;
    }

    int keys_;
    bool verbose_;
    std::mt19937 random_;
};

} // namespace

int main(int argc, char** argv) {
    int keys = 10000;
    unsigned seed = std::random_device{}();
    std::string only;
    bool verbose = false;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        if (option == "--keys")
            keys = std::atoi(argv[i + 1]);
        else if (option == "--seed")
            seed = static_cast<unsigned>(std::strtoul(argv[i + 1], nullptr, 10));
        else if (option == "--verbose")
            verbose = argv[i + 1] == std::string("1");
        else if (option == "--only")
            only = argv[i + 1];
    }
    std::cout << "seed " << seed << ", " << keys << " keys per screen" << std::endl;
    int failures = 0;
    for (const Screen& screen : kScreens) {
        if (!only.empty() && screen.name != only)
            continue;
        // Each screen draws from its own stream, so one can be run again alone with the seed.
        Soak soak(keys, seed + static_cast<unsigned>(std::hash<std::string>{}(screen.name)),
                  verbose);
        failures += soak.Run(screen) ? 0 : 1;
    }
    std::cout << (failures ? "FAILED" : "passed") << " (seed " << seed << ")" << std::endl;
    return failures ? 1 : 0;
}
