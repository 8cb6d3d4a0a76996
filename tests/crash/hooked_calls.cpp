#include "tests/crash/hooked_calls.h"

namespace {

template <class Function>
Function real(Function, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), name)));
}

HANDLE WINAPI create(LPCWSTR name, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES* security, DWORD disposition,
                     DWORD flags, HANDLE pattern) {
    std::wstring path = name;
    if (const DWORD code = hooked::create_file ? hooked::create_file(path, disposition) : 0) {
        SetLastError(code);
        return INVALID_HANDLE_VALUE;
    }
    return real(&create, "CreateFileW")(path.c_str(), access, sharing, security, disposition, flags, pattern);
}

BOOL WINAPI write(HANDLE file, const void* data, DWORD size, DWORD* written, OVERLAPPED* position) {
    if (hooked::write_file_failure == 0) return real(&write, "WriteFile")(file, data, size, written, position);
    SetLastError(hooked::write_file_failure);
    return FALSE;
}

BOOL WINAPI duplicate(HANDLE from, HANDLE handle, HANDLE to, HANDLE* made, DWORD access, BOOL inherited, DWORD flags) {
    if (hooked::duplicate_handle_failure == 0) {
        return real(&duplicate, "DuplicateHandle")(from, handle, to, made, access, inherited, flags);
    }
    SetLastError(hooked::duplicate_handle_failure);
    return FALSE;
}

HMODULE WINAPI load(LPCWSTR name, HANDLE file, DWORD flags) {
    if (!hooked::loaded_library) return real(&load, "LoadLibraryExW")(name, file, flags);
    SetLastError(ERROR_MOD_NOT_FOUND);
    return *hooked::loaded_library;
}

}  // namespace

extern "C" {
// The names under which the linker looks for an imported function.
decltype(&create) __imp_CreateFileW = &create;
decltype(&write) __imp_WriteFile = &write;
decltype(&duplicate) __imp_DuplicateHandle = &duplicate;
decltype(&load) __imp_LoadLibraryExW = &load;

#define EXPORT __declspec(dllexport)
EXPORT BOOL MiniDumpWriteDump() {
    SetLastError(ERROR_READ_FAULT);
    return FALSE;
}
EXPORT BOOL SymInitializeW(HANDLE, const wchar_t* path, BOOL) {
    hooked::symbol_search_path = path;
    return TRUE;
}
EXPORT BOOL SymGetModuleInfoW64() { return FALSE; }
EXPORT BOOL SymFromAddrW() { return FALSE; }
EXPORT BOOL SymCleanup() { return TRUE; }
EXPORT DWORD SymSetOptions(DWORD options) { return options; }
}
