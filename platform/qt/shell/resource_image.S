/* SPDX-License-Identifier: MIT */
/* The compiled resources and the help page, as bytes of the program. */
#if defined(__CET__)
#include <cet.h> /* a note: nothing here hinders control-flow enforcement */
#endif
    .section .rodata
    .global quill_resources
    .global quill_resources_end
quill_resources:
    .incbin QUILL_RESOURCE_FILE
quill_resources_end:
    .byte 0
    .global quill_help_page
    .global quill_help_page_end
quill_help_page:
    .incbin QUILL_HELP_PAGE
quill_help_page_end:
    .byte 0
    .section .note.GNU-stack, "", %progbits
