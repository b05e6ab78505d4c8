#include "harness/Session.hpp"

namespace LanyxE2E {

Session::Session(const std::string& profile, SessionOptions options)
    : host_(std::make_unique<HostRoot>(profile)) {
    Restart(std::move(options));
}

void Session::Restart(SessionOptions options) {
    console_.reset();
    for (const auto& [name, value] : options.settings)
        host_->Set(name, value);
    for (const auto& fault : options.faults)
        host_->Fault(fault);
    if (options.prepare)
        options.prepare(*host_);
    ConsoleOptions start;
    start.argv = options.launcher;
    // valgrind runs the program in its own process; strace forks it.
    start.tracer = !options.launcher.empty() && options.launcher[0].ends_with("/strace");
    start.argv.push_back(options.keyTestFrame ? LANYX_E2E_KEYTEST : LanyxBinary());
    start.argv.insert(start.argv.end(), options.args.begin(), options.args.end());
    start.hostRoot = host_->Path();
    start.term = options.term;
    start.rows = options.rows;
    start.cols = options.cols;
    start.faketime = options.faketime;
    console_ = std::make_unique<Console>(start);
}

::testing::AssertionResult Session::AwaitWelcome() {
    if (auto shown = console_->WaitForFullScreen(kWelcomeReady, "Authentication"); !shown)
        return shown;
    return Settle();
}

::testing::AssertionResult Session::OpenLogin() {
    if (!Key(Keys::F(2)))
        return ::testing::AssertionFailure() << "F2 not sent";
    if (auto shown = console_->WaitForText("Authentication Required"); !shown)
        return shown;
    return Settle();
}

::testing::AssertionResult Session::LogIn(const std::string& user, const std::string& password) {
    if (auto box = OpenLogin(); !box)
        return box;
    return Enter(user, password, "System Customization");
}

::testing::AssertionResult Session::OpenShutdown() {
    if (auto box = Press({Keys::F(12)}); !box)
        return box;
    return Enter("root", kRootPassword, "<F2> Shut Down  <F11> Restart");
}

::testing::AssertionResult Session::Enter(const std::string& user, const std::string& password,
                                          std::string_view shown) {
    // The name line is selected with its default selected whole: typing replaces it.
    if (!Type(user) || !Key(Keys::Enter) || !Type(password) || !Key(Keys::Enter))
        return ::testing::AssertionFailure() << "the login was not typed";
    if (auto next = console_->WaitForText(shown); !next)
        return next;
    return Settle();
}

std::string Session::RightTitle() const {
    const int column = console_->Cols() / 2 + 2;
    return console_->Text(1, column, console_->Cols() - column - 4);
}

namespace {

// Menus on any size: the list's text from row 4, column 3; the right pane's from the middle.
constexpr int kMenuTop = 4, kListColumn = 3;

std::string MenuColumn(const Console& console, int column, int width, int rows) {
    std::string text;
    for (int row = kMenuTop; row < kMenuTop + rows; ++row)
        text += console.Text(row, column, width) + "\n";
    return text.erase(text.find_last_not_of('\n') + 1);
}

} // namespace

std::string Session::List(int rows) const {
    return MenuColumn(*console_, kListColumn, console_->Cols() / 2 - 4, rows);
}

std::string Session::Detail(int rows) const {
    return MenuColumn(*console_, console_->Cols() / 2 + 2, console_->Cols() / 2 - 4, rows);
}

std::string Session::RightFooter() const {
    return console_->Text(console_->Rows() - 3, console_->Cols() / 2 + 1, console_->Cols() / 2 - 3);
}

bool Session::Greyed(int line) const {
    const Cell cell = console_->CellAt(kMenuTop + line, kListColumn);
    return cell.bg.IsIndex(3) && cell.fg.IsIndex(6);
}

::testing::AssertionResult Session::SelectEntry(const std::string& title) {
    if (auto settled = Settle(); !settled)
        return settled;
    for (std::string_view key : {Keys::Down, Keys::Up}) {
        for (;;) {
            if (RightTitle() == title)
                return ::testing::AssertionSuccess();
            const std::string before = RightTitle();
            if (!Key(key))
                return ::testing::AssertionFailure() << "no key sent";
            if (auto settled = Settle(); !settled)
                return settled;
            if (RightTitle() == before)
                break; // the end of the list in this direction
        }
    }
    return ::testing::AssertionFailure() << "no entry \"" << title << "\" in the menu\n"
                                         << console_->Describe();
}

::testing::AssertionResult Session::OpenEntry(const std::string& title) {
    if (auto selected = SelectEntry(title); !selected)
        return selected;
    if (!Key(Keys::Enter))
        return ::testing::AssertionFailure() << "Enter not sent";
    return Settle();
}

::testing::AssertionResult Session::Walk(const std::vector<std::string>& steps) {
    if (auto shown = Settle(); !shown)
        return shown;
    for (const std::string& step : steps) {
        ::testing::AssertionResult done = ::testing::AssertionSuccess();
        if (step == "@login")
            done = LogIn();
        else if (step == "@f2")
            done = OpenLogin();
        else if (step == "@f12")
            done = Press({Keys::F(12)});
        else if (step == "@shutdown")
            done = OpenShutdown();
        else if (step.starts_with("="))
            done = SelectEntry(step.substr(1));
        else
            done = OpenEntry(step);
        if (!done)
            return done << " (step \"" << step << "\")";
    }
    return Settle();
}

} // namespace LanyxE2E
