/* SPDX-License-Identifier: MIT */
/* The numbers of resources and commands, shared by quill.rc and the program. */
#ifndef QUILL_RESOURCES_RESOURCE_IDS_H
#define QUILL_RESOURCES_RESOURCE_IDS_H

#define IDI_PROGRAM 101 /* drawn in icons/101-program.txt */

#define IDR_ACCELERATORS 3
#define IDR_MENU_OFFLINE 102
#define IDR_MENU_ONLINE 129

#define IDB_DISCONNECT 1539 /* the other buttons' bitmaps: settings/toolbars.cpp */

#define IDM_AUTO_LOGIN 126
#define IDM_EXIT 40002
#define IDM_ABOUT 40003
#define IDM_FONT 40004
#define IDM_LARGER_FONT 40009
#define IDM_SMALLER_FONT 40010
#define IDM_CONNECT 40011
#define IDM_PROPERTIES 40012
#define IDM_COPY 40018
#define IDM_PASTE 40019
#define IDM_TOOLBAR_FIRST 40020 /* plus the button's position */
#define IDM_TOOLBAR_LAST 40069
#define IDM_COLOR_BG 40101
#define IDM_COLOR_CURSOR 40102
#define IDM_COLOR_TEXT 40103
#define IDM_COLOR_BOLD 40104
#define IDM_RESET 40111
#define IDM_HELP 40113
#define IDM_F1 40114
#define IDM_F20 40133
#define IDM_KEY_PAGE_UP 40138
#define IDM_KEY_PAGE_DOWN 40140
#define IDM_KEY_ENTER 40153
#define IDM_KEY_ESC 40156
#define IDM_KEY_LEFT 40157
#define IDM_KEY_RIGHT 40158
#define IDM_KEY_UP 40159
#define IDM_KEY_DOWN 40160

/* The settings dialogs and their controls. */
#define IDD_ABOUT 103
#define IDD_FONT 104
#define IDD_CONNECT 108
#define IDD_TOOLBAR_PAGE 113
#define IDD_CONNECT_ADVANCED 118
#define IDD_AUTO_LOGIN 127
#define IDD_OTHER_PAGE 1051
#define IDD_KEYBOARD_PAGE 1054
#define IDD_CHANGE_KEY 1055
#define IDD_COLOR 1544
#define IDD_SIGN_ON 1545

#define IDC_HOST 1255 /* Connect */
#define IDC_ADVANCED 1242

#define IDC_AUTOCONNECT 1249 /* Connect Advanced */
#define IDC_EXIT_DIS 1251
#define IDC_CONFIRM_EXIT 1252
#define IDC_XBOX 1254
#define IDC_PORT 1002
#define IDC_SSH 1258
#define IDC_SSH1 1261
#define IDC_SSH2 1262
#define IDC_DES 1205
#define IDC_TRIPLE_DES 1206
#define IDC_BLOWFISH 1259

#define IDC_TERMTYPE 1002 /* Properties, Other */
#define IDC_RAS 1003
#define IDC_HIDESTATUS 1201
#define IDC_FOLLOWCURSOR 1202
#define IDC_BELL 1204
#define IDC_NEGO 1248
#define IDC_HOTSPOT 1249
#define IDC_ALIVE 1251

#define IDC_BAR1 1244 /* Properties, Toolbar */
#define IDC_BAR2 1245
#define IDC_BAR3 1247

#define IDC_KEYS 1221 /* Properties, Keyboard */
#define IDC_KEYSTROKE 1222
#define IDC_CHANGE 1243
#define IDC_KEY_TEXT 1002 /* Change */

#define IDC_FONTS 1001 /* Font */
#define IDC_FONT_BOLD 1249
#define IDC_FONT_ITALIC 1251

#define IDC_SEAR1 1002 /* Auto Login */
#define IDC_RESP1 1003
#define IDC_SEAR2 1253
#define IDC_RESP2 1256

#define IDC_SSH_U 1002 /* Sign on to the host */
#define IDC_SSH_P 1003
#define IDC_SSH_DEF 1249

#define COLOR_LUMSCROLL 702 /* Color: the numbers of the system's colour dialog */
#define COLOR_HUE 703
#define COLOR_SAT 704
#define COLOR_LUM 705
#define COLOR_RED 706
#define COLOR_GREEN 707
#define COLOR_BLUE 708
#define COLOR_CURRENT 709
#define COLOR_RAINBOW 710
#define COLOR_ADD 712
#define COLOR_MIX 719
#define COLOR_BOX1 720
#define COLOR_CUSTOM1 721
#define COLOR_HUEACCEL 723
#define COLOR_SATACCEL 724
#define COLOR_LUMACCEL 725
#define COLOR_REDACCEL 726
#define COLOR_GREENACCEL 727
#define COLOR_BLUEACCEL 728

#endif
