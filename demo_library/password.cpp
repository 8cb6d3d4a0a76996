#include "demo_library/password.h"

#include <charconv>

#include "demo_library/error.h"

#include <wincrypt.h>

namespace demo_library {
namespace {

constexpr DWORD flags = CRYPTPROTECT_UI_FORBIDDEN | CRYPTPROTECT_LOCAL_MACHINE;

// Memory that the system allocated; it may hold clear text.
class system_blob_t : public DATA_BLOB {
public:
    system_blob_t() : DATA_BLOB{} {}
    ~system_blob_t() {
        if (pbData) SecureZeroMemory(pbData, cbData);
        LocalFree(pbData);
    }
    system_blob_t(const system_blob_t&) = delete;
    system_blob_t& operator=(const system_blob_t&) = delete;
};

DATA_BLOB blob(const void* data, std::size_t size) {
    return {static_cast<DWORD>(size), static_cast<BYTE*>(const_cast<void*>(data))};
}

std::string to_digits(const DATA_BLOB& bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (DWORD i = 0; i < bytes.cbData; ++i) {
        text += digits[bytes.pbData[i] >> 4];
        text += digits[bytes.pbData[i] & 15];
    }
    return text;
}

std::vector<BYTE> from_digits(const std::string& text) {
    std::vector<BYTE> bytes(text.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const char* first = text.data() + 2 * i;
        if (std::from_chars(first, first + 2, bytes[i], 16).ptr != first + 2) return {};
    }
    return text.size() % 2 == 0 ? bytes : std::vector<BYTE>();
}

}  // namespace

std::string protect(std::wstring_view password) {
    if (password.empty()) return {};
    DATA_BLOB clear = blob(password.data(), password.size() * sizeof(wchar_t));
    system_blob_t hidden;
    if (CryptProtectData(&clear, L"Tovak account password", nullptr, nullptr, nullptr, flags, &hidden))
        return to_digits(hidden);
    const DWORD code = GetLastError();
    throw_system_error(code, L"Cannot protect the password");
}

secret_t unprotect(const std::string& digits) {
    if (digits.empty()) return secret_t();
    const std::vector<BYTE> bytes = from_digits(digits);
    DATA_BLOB hidden = blob(bytes.data(), bytes.size());
    system_blob_t clear;
    if (!bytes.empty() && CryptUnprotectData(&hidden, nullptr, nullptr, nullptr, nullptr, flags, &clear))
        return secret_t({reinterpret_cast<const wchar_t*>(clear.pbData), clear.cbData / sizeof(wchar_t)});
    const DWORD code = bytes.empty() ? ERROR_INVALID_DATA : GetLastError();
    throw_system_error(code,
                       L"The stored password cannot be read: it is damaged or was protected on another host. "
                       L"Set it again with Ormacon.exe --set-credentials. The system says");
}

}  // namespace demo_library
