// One console on a fresh simulated host, and the operator's usual ways through it:
//
//     Session s("default");
//     ASSERT_TRUE(s.LogIn());
//     ASSERT_TRUE(s.OpenEntry("Configure Password"));
//     s.Screen().WaitForText(...);   s.Host().Matching(Record::Audit, ...);
//
// Every key goes through Console::SendKey, which waits until the console reads its terminal: no
// key is lost to a screen that opens, and after Settle() a key that should do nothing has had
// its chance to.
#pragma once
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "HostRoot.hpp"
#include "harness/Console.hpp"

namespace LanyxE2E {

inline constexpr const char* kRootPassword = "lanyx-Root1";
inline constexpr const char* kWelcomeReady = "To manage this host, go to:";

struct SessionOptions {
    std::vector<std::pair<std::string, std::string>> settings{}; // `hostsim set` before the start
    std::vector<std::vector<std::string>> faults{};              // `hostsim fault` before the start
    std::function<void(HostRoot&)> prepare{};                    // anything else before the start
    std::string term = "xterm-256color";
    int rows = 25, cols = 80;
    std::string faketime{};          // accelerated clock, e.g. "+0 x100"; such tests run serially
    std::vector<std::string> args{}; // the console's arguments
    bool keyTestFrame = false;       // the bare key test frame in place of the welcome screen
    std::vector<std::string> launcher{}; // put before the program, e.g. valgrind and its options
};

class Session {
public:
    explicit Session(const std::string& profile = "default", SessionOptions options = {});

    Console& Screen() { return *console_; }
    HostRoot& Host() { return *host_; }

    // Ends the running console and starts another on the same host.
    void Restart(SessionOptions options = {});

    bool Key(std::string_view key) { return console_->SendKey(key); }
    bool Type(std::string_view text) { return console_->Type(text); }
    // Waits until the console reads keys again, its screen complete.
    ::testing::AssertionResult Settle() { return console_->WaitUntilReading(); }
    // The keys in turn, then Settle.
    ::testing::AssertionResult Press(std::initializer_list<std::string_view> keys) {
        for (std::string_view key : keys)
            if (!Key(key))
                return ::testing::AssertionFailure() << "a key was not sent";
        return Settle();
    }

    // The welcome screen standing whole (also after a session ends).
    ::testing::AssertionResult AwaitWelcome();
    // F2 on the welcome screen: the login box, ready for keys.
    ::testing::AssertionResult OpenLogin();
    // From the welcome screen through the login box into the System Customization menu.
    ::testing::AssertionResult LogIn(const std::string& user = "root",
                                     const std::string& password = kRootPassword);
    // F12 on the welcome screen and root's login: the shutdown dialog, ready for keys.
    ::testing::AssertionResult OpenShutdown();
    // In a menu: moves the selection (Down, then Up) to the entry whose right pane has `title`.
    ::testing::AssertionResult SelectEntry(const std::string& title);
    // SelectEntry and Enter.
    ::testing::AssertionResult OpenEntry(const std::string& title);
    // Settles, then takes the steps in turn and settles again: "@login" logs in from the welcome
    // screen, "@f2" opens the login box, "@f12" the login behind F12, "@shutdown" logs in behind
    // it; "=title" selects a menu entry by its right pane's title, and a plain title opens it.
    ::testing::AssertionResult Walk(const std::vector<std::string>& steps);
    // The title of the right pane of a menu.
    std::string RightTitle() const;
    // A menu as shown: its list (or its right pane) from the first text row, `rows` rows joined
    // with '\n', trailing empty lines dropped; the right pane's footer; a greyed list line.
    std::string List(int rows = 18) const;
    std::string Detail(int rows = 18) const;
    std::string RightFooter() const;
    bool Greyed(int line) const;

private:
    // Name and password typed in the open login box, then `shown` awaited.
    ::testing::AssertionResult Enter(const std::string& user, const std::string& password,
                                     std::string_view shown);

    std::unique_ptr<HostRoot> host_;
    std::unique_ptr<Console> console_;
};

} // namespace LanyxE2E
