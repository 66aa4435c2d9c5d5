/* The numbers of resources and commands, shared by quill.rc and the program. */
#ifndef QUILL_RESOURCES_RESOURCE_IDS_H
#define QUILL_RESOURCES_RESOURCE_IDS_H

#define IDR_ACCELERATORS 3

#define IDM_EXIT 40002
#define IDM_LARGER_FONT 40009
#define IDM_SMALLER_FONT 40010
#define IDM_CONNECT 40011
#define IDM_RESET 40111
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

#endif
