// SPDX-License-Identifier: MIT
// The walks: what a user does in each program.
#include "tests/hosts/program_walks.h"

static const char kRedraw[] = "\x0c";  // Ctrl+L

// clang-format off
static const ProgramWalk kVim = {
    "vim", "vim",
    {"-u", "NONE", "-i", "NONE", "-n", "-N",
     "--cmd", "set ttimeout ttimeoutlen=5 noshowcmd noruler scrolloff=0", "lines.txt"},
    kRedraw, "quill",
    {"G", "gg", "<pgdn>", "<pgdn>", "<pgup>", "10G", "5dd", "p", "P", "u", "u",
     "oa new line\033", "Oanother one\033", "3J", "dd", "3P", "\x05", "\x05", "\x19", "\x04", "\x15",
     "zt", "zb", "z.", ":split\r", "dd", "4P", "\x17w", "7dd", "u", ":vsplit\r", "\x04",
     ":only\r", ":set number\r", "5x", "Aat the end\033", "0ifront \033", "30i-\033", "~",
     "/line 77\r", "n", "N", ":5,9d\r", ":set list\r", ":set nowrap\r", "<end>", "<home>",
     "<down><down><right>", "<up><left>", "<del>", ":set wrap\r", "ggVGd", "u", "gg", "9\x05",
     "3\x19", ":%s/line/LINE/\r", "10G", "4dd", "2P", "G", "15\x19"},
};

static const ProgramWalk kNano = {
    "nano", "nano",
    {"--ignorercfiles", "lines.txt"},
    nullptr, "quill",
    {"\x16", "\x16", "\x19", "typed text\r", "\r\r\r", "\x0b", "\x0b\x0b", "\x15", "\x15",
     "<down><down><down>", "<up>", "<pgdn>", "<pgup>", "<end>", "<home>", "<del>",
     "one\rtwo\rthree\r", "\b\b\b", "\x0b\x0b\x0b\x0b", "\x15", "\033\\", "\r", "<pgdn><pgdn>",
     "\x0b\x0b", "\x15\x15", "\033/", "\r\r", "<up><up><up>", "\x15", "<f2>"},
};

static const ProgramWalk kLess = {
    "less", "less",
    {"lines.txt"},
    kRedraw, "quill",
    {" ", " ", "b", "j", "j", "jjj", "k", "kkk", "d", "u", "G", "b", "k", "g", "<down>", "<down>",
     "<up>", "<pgdn>", "<pgup>", "/line 90\r", "n", "n", "N", "-S\r", "<right>", "<left>", "5j", "5k",
     "50g", "15k", "12j", "-N\r", " ", "kkkk", "h", "jjj", "q"},
};

// As quill-7: keys with an 8-bit introducer are not known to mc.
static const ProgramWalk kMc = {
    "mc", "mc",
    {"-b", "-d", "-u", "--nokeymap"},
    kRedraw, "quill-7",
    {"<down>", "<down><down>", "<pgdn>", "<pgup>", "<end>", "<up>", "<home>", "\t", "<f1>",
     "<down><down>", "<f10>", "<f9>", "<right>", "<down>", "<right>", "<down><down>", "\x1b\x1b",
     "<down><down><down><down>", "<f3>", "<pgdn>", "<down><down>", "<up>", "<f10>", "<f4>",
     "words\r", "<down><down>", "<f8>", "<f9>", "\x1b\x1b", "<f10>", "<right>\r", "<f7>", "made",
     "\r", "<f2>", "\x1b\x1b", "<f5>", "\x1b\x1b"},
};

static const ProgramWalk kDialogMenu = {
    "dialog_menu", "sh",
    {"-c", "dialog --title Choose --menu 'One of these:' 20 60 12 $(seq 1 40 | sed 's/$/ item/') 2>out;"
           " cat out; dialog --checklist Some: 15 50 8 a A off b B on c C off 2>out; cat out;"
           " dialog --textbox lines.txt 20 76; dialog --yesno Sure? 7 30; dialog --inputbox Name: 9 40 2>out;"
           " dialog --gauge Wait 7 50 40 </dev/null; read x"},
    nullptr, "quill",
    {"<down>", "<down><down>", "<pgdn>", "<pgdn>", "<pgup>", "<end>", "<up><up>", "<home>", "<down>\r",
     "<down> ", "<down> ", "<up>", "\r", "<down>", "<pgdn>", "<down><down><down>", "<up>", "<pgup>",
     "<right>", "\r", "<right>", "<left>", "\r", "some text", "<left><left>", "x", "\r"},
};

static const ProgramWalk kHtop = {
    "htop", "htop",
    {"-C", "-d", "900"},
    nullptr, "quill",
    {"<down>", "<down><down>", "<pgdn>", "<pgup>", "<end>", "<home>", "<f5>", "<f5>", "<f6>", "<down>",
     "\033\033", "<f1>", "x", "<f2>", "<down>", "<right>", "<down>", "\033\033", "<f3>", "sh", "\033\033", "<f4>s",
     "\033\033"},
};

static const ProgramWalk kTop = {
    "top", "top",
    {"-d", "900"},
    nullptr, "quill",
    {"h", "q", "<down>", "<down>", "<pgdn>", "<up>", "f", "<down>", "<down>", "q", "V", "c", "z", "b",
     "<right>", "<left>", "<end>", "<home>"},
};

static const ProgramWalk kTmux = {
    "tmux", "tmux",
    {"-f", "/dev/null", "new-session", "sh", ";", "set", "-g", "status-right", "", ";", "set", "-g", "status-interval",
     "0", ";", "set", "-s", "escape-time", "5"},
    "\x02r", "quill",
    {"seq 40\r", "\x02\"", "cat lines.txt\r", "\x02o", "seq 100\r", "\x02%", "cat lines.txt\r",
     "\x02o", "less lines.txt\r", " ", "jjj", "kkk", "b", "q", "\x02[", "<pgup>", "<up><up>", "q",
     "\x02z", "seq 30\r", "\x02z", "\x02o", "vim -u NONE -i NONE -n -N lines.txt\r", "4dd", "3P",
     "10\x05", "5\x19", "\x04", "Oabove\033", "\x02""c", "seq 200\r", "\x02n",
     "nano --ignorercfiles lines.txt\r", "\x16", "\x0b\x0b", "\x15", "\x18", "n"},
};

static const ProgramWalk kW3m = {
    "w3m", "w3m",
    {"-M", "page.html"},
    kRedraw, "quill",
    {" ", " ", "b", "j", "jj", "k", "J", "J", "K", "<down>", "<down><down>", "<up>", "<right>", "<left>",
     "\t", "\t", "G", "g", "/words\r", "n", "n", "=", "B", "H", "B", "<pgdn>", "<pgup>", "<end>",
     "<home>"},
};
// clang-format on

const std::vector<ProgramWalk>& ProgramWalks() {
    static const std::vector<ProgramWalk> walks = {kVim,  kNano, kLess, kMc, kDialogMenu,
                                                   kHtop, kTop,  kTmux, kW3m};
    return walks;
}
