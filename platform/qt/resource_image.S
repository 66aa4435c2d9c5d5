/* The compiled resources, as bytes of the program. */
    .section .rodata
    .global quill_resources
    .global quill_resources_end
quill_resources:
    .incbin QUILL_RESOURCE_FILE
quill_resources_end:
    .byte 0
    .section .note.GNU-stack, "", %progbits
