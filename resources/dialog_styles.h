/* SPDX-License-Identifier: MIT */
/* The styles that the dialog templates use, by the names and values of the Windows CE API. Only
   the resource compiler reads this file. */
#ifndef QUILL_RESOURCES_DIALOG_STYLES_H
#define QUILL_RESOURCES_DIALOG_STYLES_H

#define IDOK 1
#define IDCANCEL 2
#define IDC_STATIC (-1)

#define WS_POPUP 0x80000000
#define WS_CHILD 0x40000000
#define WS_VISIBLE 0x10000000
#define WS_CAPTION 0x00C00000
#define WS_BORDER 0x00800000
#define WS_VSCROLL 0x00200000
#define WS_HSCROLL 0x00100000
#define WS_SYSMENU 0x00080000
#define WS_GROUP 0x00020000
#define WS_TABSTOP 0x00010000

#define DS_MODALFRAME 0x80
#define BS_MULTILINE 0x2000
#define SS_LEFT 0x0
#define SS_NOTIFY 0x100
#define ES_PASSWORD 0x20
#define ES_AUTOHSCROLL 0x80
#define LBS_NOTIFY 0x1
#define LBS_NOINTEGRALHEIGHT 0x100
#define CBS_DROPDOWN 0x2
#define CBS_AUTOHSCROLL 0x40

#endif
