// A tiny curses program that the harness is checked against, independent of the console.
// Keys: q ends normally (status 0), x ends with status 3 without restoring the terminal,
// t waits 60 seconds of clock time in poll and reports it,
// b writes many lines after leaving curses and ends with status 5, f is busy a moment and then
// drops what was typed meanwhile (as the console does when a screen opens), p hands the terminal
// to a shell that reads one line.
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <sys/time.h>

#include <curses.h>

namespace {

void Show(int row, const char* text) {
    move(row, 0);
    clrtoeol();
    mvaddstr(row, 0, text);
    refresh();
}

} // namespace

int main() {
    initscr();
    cbreak();
    noecho();
    keypad(stdscr, TRUE);
    start_color();
    use_default_colors();
    if (can_change_color())
        init_color(COLOR_CYAN, 334, 334, 334);
    init_pair(1, COLOR_CYAN, COLOR_BLACK);
    curs_set(0);

    char line[256];
    mvaddstr(0, 0, "probe ready");
    std::snprintf(line, sizeof line, "size %dx%d", COLS, LINES);
    Show(1, line);
    attron(COLOR_PAIR(1));
    mvaddstr(2, 0, "dim");
    attroff(COLOR_PAIR(1));
    // A full last row: curses draws long runs and the bottom-right cell with special sequences.
    mvhline(LINES - 1, 0, ACS_HLINE, COLS);
    attron(A_REVERSE);
    mvaddstr(3, 0, "rev");
    attroff(A_REVERSE);
    refresh();

    for (;;) {
        const int key = getch();
        if (key == KEY_RESIZE) {
            std::snprintf(line, sizeof line, "size %dx%d", COLS, LINES);
            Show(1, line);
            continue;
        }
        std::snprintf(line, sizeof line, "key %d", key);
        Show(4, line);
        if (key == 'q') {
            endwin();
            return 0;
        }
        if (key == 'x')
            std::exit(3);
        if (key == 't') {
            timeval before{}, after{};
            gettimeofday(&before, nullptr);
            poll(nullptr, 0, 60000);
            gettimeofday(&after, nullptr);
            std::snprintf(line, sizeof line, "slept %ld",
                          static_cast<long>(after.tv_sec - before.tv_sec));
            Show(5, line);
        }
        if (key == 'f') {
            napms(300);
            flushinp();
            Show(7, "flushed");
        }
        if (key == 'p') {
            def_prog_mode();
            endwin();
            const int status = std::system("read answer; printf 'answer %s\\n' \"$answer\"");
            reset_prog_mode();
            std::snprintf(line, sizeof line, "back %d", status);
            Show(8, line);
        }
        if (key == 'b') {
            endwin();
            for (int i = 0; i < 3000; ++i)
                std::printf("line %d\n", i);
            std::printf("done\n");
            std::fflush(stdout);
            std::exit(5);
        }
    }
}
