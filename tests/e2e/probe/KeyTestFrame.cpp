// The console with a bare first frame in place of the welcome screen: it shows the key codes it
// reads, so that the input loop, signals, idle limit and exit paths can be driven from outside.
// F9 enters a session, F8 leaves it, F10 throws.
#include <cstdlib>
#include <string>

#include "core/Colors.hpp"
#include "core/Console.hpp"
#include "core/Frame.hpp"
#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/Keys.hpp"
#include "core/StringFactory.hpp"
#include "keelson/Lib.hpp"

namespace {

using namespace Lanyx;

constexpr int textColumn = 2, keyRow = 3, reloadRow = 5, sessionRow = 7;

class KeyTestFrame : public Frame {
public:
    KeyTestFrame() : Frame(nullptr, 0, 0, COLS, LINES, ColorBlack, ColorWhite) {
        if (handle) {
            werase(handle.get());
            box(handle.get(), 0, 0);
        }
        Print(textColumn, 1, "lanyx key test");
        Show(keyRow, "Last key: none");
    }

    bool Execute() override {
        Update();
        for (;;) {
            const int key = ReadAndShow(false);
            if (key == Keys::F9)
                RunSession();
        }
    }

    void Reload() override { Show(reloadRow, "Reloaded " + std::to_string(++reloads)); }

private:
    // Wide enough to blank out any earlier text of the row.
    void Show(int row, std::string text) {
        text.resize(24, ' ');
        Print(textColumn, row, text);
        Update();
    }

    int ReadAndShow(bool enforceIdleLimit) {
        const int key = ReadKey(enforceIdleLimit);
        Show(keyRow, "Last key: " + std::to_string(key));
        if (key == Keys::F10)
            throw Keelson::Lib::KeelsonException("first frame test");
        return key;
    }

    void RunSession() {
        SetSessionActive(true);
        Show(sessionRow, "Session active");
        try {
            while (ReadAndShow(true) != Keys::F8) {
            }
            SetSessionActive(false);
            Show(sessionRow, "");
        } catch (const LanyxTimeout&) {
            SetSessionActive(false);
            Window::SetActive(true);
            Show(sessionRow, "Session timed out");
        }
        if (exitPending)
            std::exit(0);
    }

    int reloads = 0;
};

} // namespace

int main(int argc, char** argv) {
    SetStringFactorySource(&GetStringFactory);
    return RunConsole(argc, argv, [] { return std::make_unique<KeyTestFrame>(); });
}
