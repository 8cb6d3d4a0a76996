// Takes the place of the imported conversion functions in this test program.
#include "tests/base/failing_conversion.h"

#include "common/win32.h"

namespace {

int calls_until_failure = 0;

bool Fails() {
    if (calls_until_failure == 0 || --calls_until_failure > 0) return false;
    SetLastError(ERROR_NO_UNICODE_TRANSLATION);
    return true;
}

template <class Function>
Function Real(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name)));
}

int WINAPI ToWide(UINT page, DWORD flags, LPCCH source, int length, LPWSTR target, int size) {
    if (Fails()) return 0;
    return Real<decltype(&ToWide)>("MultiByteToWideChar")(page, flags, source, length, target, size);
}

int WINAPI ToNarrow(UINT page, DWORD flags, LPCWCH source, int length, LPSTR target, int size, LPCCH other,
                    LPBOOL used) {
    if (Fails()) return 0;
    return Real<decltype(&ToNarrow)>("WideCharToMultiByte")(page, flags, source, length, target, size, other, used);
}

}  // namespace

// The names under which the linker looks for an imported function.
extern "C" {
decltype(&ToWide) __imp_MultiByteToWideChar = &ToWide;
decltype(&ToNarrow) __imp_WideCharToMultiByte = &ToNarrow;
}

namespace test_support {

void FailConversionCall(int n) { calls_until_failure = n; }

}  // namespace test_support
