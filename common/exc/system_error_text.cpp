#include "common/exc/system_error_text.h"

#include <memory>

#include <boost/system/error_code.hpp>

#include "common/encoding/convert.h"
#include "common/win32.h"

namespace exc {
namespace {

struct local_free_t {
    void operator()(wchar_t* memory) const { LocalFree(memory); }
};

struct free_library_t {
    void operator()(HMODULE module) const { FreeLibrary(module); }
};

constexpr DWORD from_system =
    FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
constexpr DWORD from_module = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_HMODULE;
constexpr DWORD english = 0x409;

void trim_line_breaks(std::string& text) { text.erase(text.find_last_not_of("\r\n") + 1); }

// Empty if there is no such text, or if it cannot be converted: throwing here would ask for an error text again.
std::string system_text(DWORD flags, HMODULE module, std::uint32_t code, DWORD language) {
    wchar_t* allocated = nullptr;
    FormatMessageW(flags, module, code, language, reinterpret_cast<wchar_t*>(&allocated), 0, nullptr);
    const std::unique_ptr<wchar_t, local_free_t> buffer(allocated);
    if (!buffer) return {};
    std::string text = encoding::wide_to_utf8_or_empty(buffer.get());
    trim_line_breaks(text);
    return text;
}

std::string wininet_text(std::uint32_t code) {
    const std::unique_ptr<std::remove_pointer_t<HMODULE>, free_library_t> module(
        LoadLibraryExW(L"wininet.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    return module ? system_text(from_module, module.get(), code, 0) : std::string();
}

}  // namespace

std::string get_error_text(std::uint32_t code) {
    std::string text = system_text(from_system, nullptr, code, english);
    if (text.empty()) text = wininet_text(code);
    if (text.empty()) text = boost::system::system_category().message(static_cast<int>(code));
    return text;
}

}  // namespace exc
