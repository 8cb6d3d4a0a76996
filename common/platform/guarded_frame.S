# void ormacon_guarded_frame(void (*function)(void*), void* argument): as a __try with __except would be compiled. The
# scope table says which code is guarded, by which filter, and where the system goes on when the filter wants that.
    .text
    .globl ormacon_guarded_frame
    .def ormacon_guarded_frame; .scl 2; .type 32; .endef
    .seh_proc ormacon_guarded_frame
ormacon_guarded_frame:
    subq $40, %rsp
    .seh_stackalloc 40
    .seh_endprologue
    movq %rcx, %rax
    movq %rdx, %rcx
.Lguarded:
    call *%rax
    nop
.Lgo_on:
    addq $40, %rsp
    ret
    .seh_handler __C_specific_handler, @except
    .seh_handlerdata
    .long 1
    .rva .Lguarded, .Lgo_on, ormacon_guard_filter, .Lgo_on
    .text
    .seh_endproc
