#include "KeyTestWindow.hpp"

#include <cstdlib>
#include <string>

#include "core/Colors.hpp"
#include "core/Globals.hpp"
#include "core/InputLoop.hpp"
#include "core/Keys.hpp"
#include "keelson/Lib.hpp"

namespace Lanyx {

namespace {

constexpr int textColumn = 2;
constexpr int titleRow = 1;
constexpr int keyRow = 3;
constexpr int reloadRow = 5;
constexpr int sessionRow = 7;
// Wide enough for any earlier text on a row to be blanked out.
constexpr size_t fieldWidth = 24;

std::string Padded(std::string text)
{
    if (text.size() < fieldWidth)
        text.append(fieldWidth - text.size(), ' ');
    return text;
}

} // namespace

KeyTestWindow::KeyTestWindow() : Frame(nullptr, 0, 0, COLS, LINES, ColorBlack, ColorWhite)
{
    if (handle) {
        werase(handle.get());
        box(handle.get(), 0, 0);
    }
    Print(textColumn, titleRow, "lanyx key test");
    Print(textColumn, keyRow, Padded("Last key: none"));
}

void KeyTestWindow::ShowLastKey(int key)
{
    Print(textColumn, keyRow, Padded("Last key: " + std::to_string(key)));
    Update();
}

void KeyTestWindow::ShowSessionState(const char* text)
{
    Print(textColumn, sessionRow, Padded(text));
    Update();
}

void KeyTestWindow::Reload()
{
    ++reloads;
    Print(textColumn, reloadRow, Padded("Reloaded " + std::to_string(reloads)));
    Update();
}

void KeyTestWindow::RunSession()
{
    SetSessionActive(true);
    ShowSessionState("Session active");
    try {
        for (;;) {
            const int key = ReadKey(true);
            ShowLastKey(key);
            if (key == Keys::F10)
                throw Keelson::Lib::KeelsonException("first frame test");
            if (key == Keys::F8)
                break;
        }
        SetSessionActive(false);
        ShowSessionState("");
    } catch (const LanyxTimeout&) {
        SetSessionActive(false);
        Window::SetActive(true);
        ShowSessionState("Session timed out");
    }
    if (exitPending)
        std::exit(0);
}

bool KeyTestWindow::Execute()
{
    Update();
    for (;;) {
        const int key = ReadKey(false);
        ShowLastKey(key);
        if (key == Keys::F10)
            throw Keelson::Lib::KeelsonException("first frame test");
        if (key == Keys::F9)
            RunSession();
    }
}

} // namespace Lanyx
