// What the crash handling calls in the debug-help library, for a test that loads this program in its place: a writer
// that fails, and a symbol engine that remembers its search path.
#include <string>
#include <utility>

#include "common/win32.h"

static std::wstring symbol_search_path;
std::wstring take_symbol_search_path() { return std::exchange(symbol_search_path, L""); }

extern "C" {
#define EXPORT __declspec(dllexport)
EXPORT BOOL MiniDumpWriteDump() {
    SetLastError(ERROR_READ_FAULT);
    return FALSE;
}
EXPORT BOOL SymInitializeW(HANDLE, const wchar_t* path, BOOL) {
    symbol_search_path = path;
    return TRUE;
}
EXPORT BOOL SymGetModuleInfoW64() { return FALSE; }
EXPORT BOOL SymFromAddrW() { return FALSE; }
EXPORT BOOL SymCleanup() { return TRUE; }
EXPORT DWORD SymSetOptions(DWORD options) { return options; }
}
