// An off-screen curses screen for the widget tests: output goes nowhere, input comes from a
// pipe on descriptor 0 that the tests fill with key bytes, and the catalogue is a fixed table.
// Cells are read back from the windows themselves, which share them with their children.
#pragma once
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <curses.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <poll.h>
#include <sstream>
#include <string>
#include <unistd.h>

#include "core/Colors.hpp"
#include "core/Globals.hpp"
#include "core/StringFactory.hpp"
#include "core/Window.hpp"

namespace Lanyx::Testing {

class TableFactory : public StringFactory {
public:
    const char* GetString(uint32_t id) override {
        auto it = entries.find(id);
        return it == entries.end() ? "" : it->second.c_str();
    }
    std::map<uint32_t, std::string> entries;
};

inline TableFactory& Catalogue() {
    static TableFactory factory;
    return factory;
}

inline StringFactory* CatalogueSource(const std::string&) {
    return &Catalogue();
}

class OffscreenScreen : public ::testing::Environment {
public:
    void SetUp() override {
        char pattern[] = "/tmp/lanyx-text-root-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        root = pattern;
        std::filesystem::create_directories(root + "/var/log");
        setenv("LANYX_HOST_ROOT", root.c_str(), 1);

        ASSERT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr);
        setenv("LINES", "24", 1);
        setenv("COLUMNS", "80", 1);
        int keys[2];
        ASSERT_EQ(pipe(keys), 0);
        ASSERT_EQ(dup2(keys[0], 0), 0);
        close(keys[0]);
        keyWriter = keys[1];
        input = fdopen(0, "r");
        output = std::fopen("/dev/null", "w");
        screen = newterm("xterm", output, input);
        ASSERT_NE(screen, nullptr);
        set_term(screen);
        start_color();
        cbreak();
        noecho();
        SetStringFactorySource(&CatalogueSource);
    }
    void TearDown() override {
        endwin();
        delscreen(screen);
        std::fclose(output);
        std::fclose(input);
        close(keyWriter);
        std::filesystem::remove_all(root);
    }

    std::string root;
    int keyWriter = -1;

private:
    SCREEN* screen = nullptr;
    FILE* output = nullptr;
    FILE* input = nullptr;
};

inline OffscreenScreen* const offscreen =
    static_cast<OffscreenScreen*>(::testing::AddGlobalTestEnvironment(new OffscreenScreen));

// Queues bytes as if typed; read by the next ReadKey.
inline void Type(const std::string& bytes) {
    ASSERT_EQ(write(offscreen->keyWriter, bytes.data(), bytes.size()),
              static_cast<ssize_t>(bytes.size()));
}

// True when every typed byte has been read.
inline bool InputDrained() {
    pollfd fd{0, POLLIN, 0};
    return poll(&fd, 1, 0) == 0;
}

inline std::string SystemLog() {
    std::ifstream file(offscreen->root + "/var/log/syslog.log");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// The character of a cell as UTF-8 (line-drawing characters as their curses letter).
inline std::string CellText(WINDOW* window, int x, int y) {
    cchar_t cell;
    if (mvwin_wch(window, y, x, &cell) == ERR) {
        return "";
    }
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
        std::string cell = CellText(window, x + i, y);
        row += cell.empty() ? " " : cell;
    }
    return row.substr(0, row.find_last_not_of(' ') + 1);
}

inline std::string RowText(const Window& window, int y) {
    return RowText(window.GetHandle(), 0, y, window.GetWidth());
}

inline chtype Cell(WINDOW* window, int x, int y) {
    return mvwinch(window, y, x);
}

inline int PairAt(WINDOW* window, int x, int y) {
    return static_cast<int>(PAIR_NUMBER(Cell(window, x, y)));
}

// The pair that ColorAttr gives for these colours in colour mode.
inline int PairOf(int background, int foreground) {
    return static_cast<int>(PAIR_NUMBER(ColorAttr(background, foreground)));
}

inline bool IsLine(WINDOW* window, int x, int y, chtype acs) {
    const chtype cell = Cell(window, x, y);
    return (cell & A_ALTCHARSET) != 0 && (cell & A_CHARTEXT) == (acs & A_CHARTEXT);
}

inline bool Standout(WINDOW* window, int x, int y) {
    return (Cell(window, x, y) & A_STANDOUT) != 0;
}

// Switches the console to monochrome for one scope.
class MonochromeScope {
public:
    MonochromeScope() { monochrome = true; }
    ~MonochromeScope() { monochrome = false; }
};

} // namespace Lanyx::Testing
