/* The default data file, laid into the program's read-only data as it stands. */
#if defined(_WIN32)
    .section .rdata, "dr"
#else
    .section .rodata, "a"
#endif
    .balign 16
    .globl velnlsDataBegin
velnlsDataBegin:
    .incbin VELNLS_DATA_FILE
    .globl velnlsDataEnd
velnlsDataEnd:
    .byte 0
#if defined(__ELF__)
    .section .note.GNU-stack, "", %progbits
#endif
