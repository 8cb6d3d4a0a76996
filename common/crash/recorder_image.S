    .section .rdata, "dr"
    .balign 16
    .globl ormacon_recorder_begin
    .globl ormacon_recorder_end
ormacon_recorder_begin:
    .incbin RECORDER_FILE
ormacon_recorder_end:
    .byte 0
