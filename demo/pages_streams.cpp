// Pages that send lines: slowly by the clock, and as fast as the connection takes them.
#include <cstdio>
#include "demo/screens.h"

namespace {

constexpr long long kSlowPause = 200;
constexpr int kSlowLines = 300;
constexpr int kFastLines = 5000;

void EnterSlowStream(Session& session) {
    session.out += "The gate's log. Press any key to return to the menu.\r\n\r\n";
    session.wake = Now();
}

void TickSlowStream(Session& session) {
    const int n = ++session.step;
    char text[100];
    snprintf(text, sizeof text, "%02d:%02d  gate %d  lorry %03d %s  %d pallets\r\n", 6 + n / 60,
             n % 60, n % 4 + 1, 100 + n * 7 % 900, n % 3 == 0 ? "out" : "in ", 2 + n * 5 % 17);
    session.out += text;
    session.wake = n < kSlowLines ? Now() + kSlowPause : 0;
    if (n == kSlowLines) session.out += "\r\nThe gate is shut. Press any key.\r\n";
}

void EnterFastStream(Session& session) {
    session.out += "Stock list, 5,000 lines.\r\n";
    session.wake = Now();
}

void WriteStockLine(std::string& out, int number) {
    static const char* const kGoods[] = {"hemp rope", "sailcloth", "lanterns", "oak planks",
                                         "anchors",   "tar",       "biscuit",  "fresh water"};
    char text[100];
    snprintf(text, sizeof text, "%05d  HS-%04d  %-12s bay %c  %6d in stock  %5d on order\r\n",
             number, 1000 + number, kGoods[number % 8], 'A' + number % 26, number * 7919 % 100000,
             number * 31 % 500);
    out += text;
}

void TickFastStream(Session& session) {
    while (session.step < kFastLines && session.out.size() < kOutLimit) {
        WriteStockLine(session.out, ++session.step);
    }
    if (session.step < kFastLines) return;
    session.out += "\r\n5,000 lines sent. Press any key to return to the menu.\r\n";
    session.wake = 0;
}

}  // namespace

const Screen kSlowStreamPage = {EnterSlowStream, BackToMenu, TickSlowStream};
const Screen kFastStreamPage = {EnterFastStream, BackToMenu, TickFastStream};
