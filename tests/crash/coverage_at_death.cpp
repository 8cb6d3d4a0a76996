// In a coverage build a process notes what has run when it exits by itself. One that is ended notes it here.
#include "common/win32.h"

using terminate_process_t = decltype(&TerminateProcess);

// The linker gives these names to the two sides of a replaced symbol.
extern "C" {
void __gcov_dump();
extern terminate_process_t __real___imp_TerminateProcess;

static BOOL WINAPI note_and_terminate(HANDLE process, UINT code) {
    __gcov_dump();
    return __real___imp_TerminateProcess(process, code);
}

extern terminate_process_t __wrap___imp_TerminateProcess;
terminate_process_t __wrap___imp_TerminateProcess = note_and_terminate;
}
