# The system's DLLs that Kelpkit.dll loads when it first calls them, which is what /DELAYLOAD does with Visual Studio.
# Most programs call few of them, and with user32 among them they make up most of the time that loading takes. Functions
# that are not listed here are imported at loading.
#
# The tables are those of the delay-load helper that Visual Studio defines and mingw's runtime has. Binutils could make
# them, too, but its code loses the first argument where that is a floating-point number.

# delay NAME, FUNCTION ...: of NAME.dll, for which there may be several lines.
.macro delay dll, functions:vararg
    # GNU ld has no directory entry for these; whoever looks for them finds the section.
    .section .didat, "dr"
descriptor_\@:
    .long 1                                     # the addresses below are relative to the image
    .rva name_\@, module_\@, slots_\@, names_\@
    .long 0, 0, 0

    .section .rdata, "dr"
name_\@:
    .asciz "\dll\().dll"

    .data
    .balign 8
module_\@:
    .quad 0
slots_\@:
    .irp function, \functions
    .globl __imp_\function
__imp_\function:
    .quad first_\function
    .endr
    .quad 0

    .section .rdata, "dr"
    .balign 8
names_\@:
    .irp function, \functions
    .rva hint_\function
    .long 0
    .endr
    .quad 0
    .irp function, \functions
    .balign 2
hint_\function:
    .short 0
    .asciz "\function"
    .endr

    .text
    .irp function, \functions
    # For headers that do not declare the function as one of a DLL.
    .globl \function
\function:
    jmp *__imp_\function(%rip)
first_\function:
    lea __imp_\function(%rip), %rax
    jmp resolve_\@
    .endr
resolve_\@:
    lea descriptor_\@(%rip), %r10
    jmp resolve
.endm

# Fills the slot in %rax by way of the descriptor in %r10, and goes on to the function with the caller's arguments.
    .text
    .seh_proc resolve
resolve:
    sub $0x68, %rsp
    .seh_stackalloc 0x68
    .seh_endprologue
    mov %rcx, 0x70(%rsp)
    mov %rdx, 0x78(%rsp)
    mov %r8, 0x80(%rsp)
    mov %r9, 0x88(%rsp)
    movaps %xmm0, 0x20(%rsp)
    movaps %xmm1, 0x30(%rsp)
    movaps %xmm2, 0x40(%rsp)
    movaps %xmm3, 0x50(%rsp)
    mov %r10, %rcx
    mov %rax, %rdx
    call __delayLoadHelper2
    mov 0x70(%rsp), %rcx
    mov 0x78(%rsp), %rdx
    mov 0x80(%rsp), %r8
    mov 0x88(%rsp), %r9
    movaps 0x20(%rsp), %xmm0
    movaps 0x30(%rsp), %xmm1
    movaps 0x40(%rsp), %xmm2
    movaps 0x50(%rsp), %xmm3
    add $0x68, %rsp
    jmp *%rax
    .seh_endproc

delay bcrypt, BCryptGenRandom
delay ole32, CoCreateInstance, CoInitializeEx, CoInitializeSecurity, CoSetProxyBlanket, CoUninitialize
delay oleaut32, SysAllocString, SysFreeString, VariantClear, VariantInit
delay oleaut32, SystemTimeToVariantTime, VarDateFromStr, VarUdateFromDate, VariantTimeToSystemTime
delay shlwapi, PathFileExistsW
delay user32, EnumWindows, GetParent, GetWindowThreadProcessId, InvalidateRect, IsWindow, LoadStringW, MessageBoxW
delay user32, MoveWindow, PostMessageW, SetParent, SetWindowLongW, SetWindowPos, ShowWindow, WaitForInputIdle

    # The end of the descriptors.
    .section .didat, "dr"
    .fill 8, 4, 0
