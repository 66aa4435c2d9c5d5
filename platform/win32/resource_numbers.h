/* SPDX-License-Identifier: MIT */
/* The numbers of the Windows program's own resources; read by the resource compiler too. */
#ifndef QUILL_PLATFORM_WIN32_RESOURCE_NUMBERS_H
#define QUILL_PLATFORM_WIN32_RESOURCE_NUMBERS_H

#define IDI_DESKTOP 100   /* the first icon of the file is the one that folders show */
#define IDR_HELP_PAGE 100 /* RCDATA */

#endif
