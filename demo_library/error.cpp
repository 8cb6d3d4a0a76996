#include "demo_library/error.h"

#include <algorithm>
#include <iterator>

#include <windows.h>

namespace demo_library {
namespace {

std::wstring system_text(std::uint32_t code) {
    wchar_t buffer[512];
    DWORD size = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, buffer,
                                static_cast<DWORD>(std::size(buffer)), nullptr);
    while (size > 0 && (buffer[size - 1] == L'\n' || buffer[size - 1] == L'\r')) --size;
    const std::wstring number = L"(error " + std::to_wstring(code) + L")";
    return size == 0 ? number : std::wstring(buffer, size) + L" " + number;
}

}  // namespace

void throw_system_error(std::uint32_t code, const std::wstring& sentence) {
    throw error_t(sentence + L": " + system_text(code));
}

void require_out(std::initializer_list<const void*> out) {
    if (std::find(out.begin(), out.end(), nullptr) != out.end())
        throw error_t(L"An argument that takes a result is null.");
}

}  // namespace demo_library
