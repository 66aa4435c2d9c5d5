// SPDX-License-Identifier: MIT
// A curses program that shows the name of each key it is sent, at the top of the screen.
#include <clocale>
#include <cstdio>

#include <curses.h>

int main() {
    setlocale(LC_ALL, "");
    initscr();
    raw();
    noecho();
    keypad(stdscr, TRUE);
    for (;;) {
        const int key = getch();
        if (key == ERR || key == 'q') break;
        const char* name = keyname(key);
        mvprintw(0, 0, "got %s.", name ? name : "?");
        clrtoeol();
        refresh();
    }
    endwin();
    return 0;
}
