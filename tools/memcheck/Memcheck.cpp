// One operator's session with the console under valgrind's memcheck: the welcome screen, the
// login, a walk down the whole menu, a log in the pager, the log out and the end by SIGTERM.
// Passes when memcheck reports no error and no memory definitely lost.
//
//     lanyx_memcheck        (from a build without sanitizers: the console and the simulated
//                            host's PAM module must be plain programs for valgrind)
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

#include <unistd.h>

#include "harness/Session.hpp"

using namespace LanyxE2E;

namespace {

// Memcheck slows the console some twentyfold: each step gets its own generous bound.
constexpr auto kSlow = 120s;

bool Step(const ::testing::AssertionResult& result, const char* what, Session& s) {
    if (!result)
        std::cerr << "memcheck session: " << what << " failed: " << result.message() << "\n"
                  << s.Screen().Describe() << "\n";
    return static_cast<bool>(result);
}

bool Walk(Session& s) {
    Console& console = s.Screen();
    if (!Step(console.WaitForText(kWelcomeReady, kSlow), "welcome screen", s) ||
        !Step(console.WaitUntilReading(kSlow), "first key wait", s) ||
        !Step(s.Key(Keys::F(2)) ? console.WaitForText("Authentication Required", kSlow)
                                : ::testing::AssertionFailure(),
              "login box", s) ||
        !Step(console.WaitUntilReading(kSlow), "login box", s))
        return false;
    s.Type("root");
    s.Key(Keys::Enter);
    s.Type(kRootPassword);
    s.Key(Keys::Enter);
    if (!Step(console.WaitForText("System Customization", kSlow), "menu", s))
        return false;
    for (int entry = 0; entry < 16; ++entry)
        if (!Step(s.Key(Keys::Down) ? console.WaitUntilReading(kSlow)
                                    : ::testing::AssertionFailure(),
                  "menu walk", s))
            return false;
    if (!Step(s.SelectEntry("View System Logs"), "log entry", s))
        return false;
    s.Key("1");
    if (!Step(console.WaitForText("<Q> Quit", kSlow), "pager", s))
        return false;
    s.Key("q");
    if (!Step(console.WaitForText("System Customization", kSlow), "back from the pager", s) ||
        !Step(console.WaitUntilReading(kSlow), "menu again", s))
        return false;
    s.Key(Keys::Escape);
    if (!Step(console.WaitForText(kWelcomeReady, kSlow), "log out", s) ||
        !Step(console.WaitUntilReading(kSlow), "welcome again", s))
        return false;
    console.Signal(SIGTERM);
    return Step(console.ExitsWith(0, kSlow), "end", s);
}

} // namespace

int main() {
    const std::string log = "/tmp/lanyx-memcheck-" + std::to_string(getpid()) + ".log";
    bool walked = false;
    {
        Session s("default",
                  {
                      .launcher = {"/usr/bin/valgrind", "--tool=memcheck", "--leak-check=full",
                                   "--errors-for-leak-kinds=definite", "--track-fds=no",
                                   "--log-file=" + log},
                  });
        walked = Walk(s);
        std::ifstream in(log);
        const std::string report(std::istreambuf_iterator<char>(in), {});
        const bool clean = report.find("ERROR SUMMARY: 0 errors") != std::string::npos;
        std::remove(log.c_str());
        std::cout << report << "\n";
        if (!walked || !clean) {
            std::cout << "memcheck session FAILED\n";
            return 1;
        }
    }
    std::cout << "memcheck session passed: no error, nothing definitely lost\n";
    return 0;
}
