// An off-screen curses screen for the tests of windows and widgets: output goes to /dev/null,
// the keyboard is a pipe on descriptor 0 that the tests fill with key bytes. Cells are read
// back from the windows themselves, which share them with their children.
#pragma once
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <curses.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <unistd.h>

#include "core/Colors.hpp"
#include "core/Globals.hpp"
#include "core/Window.hpp"

namespace Lanyx::Testing {

class CursesScreen : public ::testing::Environment {
public:
    CursesScreen(int lines, int columns, const char* term)
        : lines(lines), columns(columns), term(term) {}

    void SetUp() override {
        ASSERT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr);
        setenv("LINES", std::to_string(lines).c_str(), 1);
        setenv("COLUMNS", std::to_string(columns).c_str(), 1);
        int keys[2];
        ASSERT_EQ(pipe(keys), 0);
        ASSERT_EQ(dup2(keys[0], 0), 0);
        close(keys[0]);
        keyWriter = keys[1];
        input = fdopen(0, "r");
        output = std::fopen("/dev/null", "w");
        screen = newterm(term, output, input);
        ASSERT_NE(screen, nullptr);
        set_term(screen);
        start_color();
        cbreak();
        noecho();
    }
    void TearDown() override {
        endwin();
        delscreen(screen);
        std::fclose(output);
        std::fclose(input);
        close(keyWriter);
    }

    int keyWriter = -1;

private:
    int lines;
    int columns;
    const char* term;
    SCREEN* screen = nullptr;
    FILE* output = nullptr;
    FILE* input = nullptr;
};

// The one screen of a test program, made before the first test.
inline CursesScreen* AddCursesScreen(int lines = 24, int columns = 80, const char* term = "xterm") {
    static CursesScreen* const screen = static_cast<CursesScreen*>(
        ::testing::AddGlobalTestEnvironment(new CursesScreen(lines, columns, term)));
    return screen;
}

// Queues bytes as if typed; read by the next ReadKey.
inline void Type(const std::string& bytes) {
    ASSERT_EQ(write(AddCursesScreen()->keyWriter, bytes.data(), bytes.size()),
              static_cast<ssize_t>(bytes.size()));
}

// True when every typed byte has been read.
inline bool InputDrained() {
    pollfd fd{0, POLLIN, 0};
    return poll(&fd, 1, 0) == 0;
}

// The character of a cell as UTF-8 (line-drawing characters as their curses letter).
inline std::string CellText(WINDOW* window, int x, int y) {
    cchar_t cell;
    if (mvwin_wch(window, y, x, &cell) == ERR)
        return "";
    wchar_t text[CCHARW_MAX + 1] = {};
    attr_t attributes = 0;
    short pair = 0;
    getcchar(&cell, text, &attributes, &pair, nullptr);
    char bytes[MB_LEN_MAX * (CCHARW_MAX + 1)] = {};
    const size_t length = wcstombs(bytes, text, sizeof bytes);
    return length == static_cast<size_t>(-1) ? "?" : std::string(bytes, length);
}

// The characters of `width` cells from x, blanks at the end dropped.
inline std::string RowText(WINDOW* window, int x, int y, int width) {
    std::string row;
    for (int i = 0; i < width; ++i) {
        const std::string cell = CellText(window, x + i, y);
        row += cell.empty() ? " " : cell;
    }
    return row.substr(0, row.find_last_not_of(' ') + 1);
}

inline std::string RowText(const Window& window, int y) {
    return RowText(window.GetHandle(), 0, y, window.GetWidth());
}

inline int PairAt(WINDOW* window, int x, int y) {
    return static_cast<int>(PAIR_NUMBER(mvwinch(window, y, x)));
}

// The pair that ColorAttr gives for these colours in colour mode.
inline int PairOf(int background, int foreground) {
    return static_cast<int>(PAIR_NUMBER(ColorAttr(background, foreground)));
}

inline bool IsLine(WINDOW* window, int x, int y, chtype acs) {
    const chtype cell = mvwinch(window, y, x);
    return (cell & A_ALTCHARSET) != 0 && (cell & A_CHARTEXT) == (acs & A_CHARTEXT);
}

inline bool Standout(WINDOW* window, int x, int y) {
    return (mvwinch(window, y, x) & A_STANDOUT) != 0;
}

} // namespace Lanyx::Testing
