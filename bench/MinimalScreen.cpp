// The yardstick for the console's start-up figures: one boxed screen with a line of text, drawn by
// plain curses, then a wait for any key.
#include <clocale>

#include <curses.h>

int main() {
    std::setlocale(LC_ALL, "");
    initscr();
    cbreak();
    noecho();
    curs_set(0);
    box(stdscr, 0, 0);
    mvaddstr(LINES / 2, 2, "minimal screen ready");
    refresh();
    getch();
    endwin();
    return 0;
}
