#include "common/encoding/convert.h"

#include <climits>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/win32.h"

namespace encoding {
namespace {

// The length passed to the system includes the terminating null, which is also converted.
template <class Char>
int length_with_null(const std::basic_string<Char>& source) {
    return source.size() < INT_MAX ? static_cast<int>(source.size()) + 1 : 0;
}

int convert(UINT page, const std::wstring& source, char* target, int size) {
    return WideCharToMultiByte(page, 0, source.c_str(), length_with_null(source), target, size, nullptr, nullptr);
}

int convert(UINT page, const std::string& source, wchar_t* target, int size) {
    return MultiByteToWideChar(page, 0, source.c_str(), length_with_null(source), target, size);
}

template <class To, class From>
bool try_convert(UINT page, const std::basic_string<From>& source, std::basic_string<To>& result) {
    const int size = convert(page, source, static_cast<To*>(nullptr), 0);
    if (size < 1) return false;
    result.assign(static_cast<std::size_t>(size) + 1, To{});
    if (convert(page, source, result.data(), size + 1) < 1) return false;
    result.resize(std::char_traits<To>::length(result.c_str()));
    return true;
}

std::string to_narrow(UINT page, const std::wstring& source, const char* sentence) {
    std::string result;
    if (!source.empty() && !try_convert(page, source, result)) {
        exc::raise_win_error(GetLastError(), sentence);
    }
    return result;
}

std::wstring to_wide(UINT page, const std::string& source, const char* sentence) {
    std::wstring result;
    if (!source.empty() && !try_convert(page, source, result)) {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, exc::format_message(sentence, source));
    }
    return result;
}

}  // namespace

std::string wide_to_ansi(const std::wstring& source) {
    return to_narrow(CP_ACP, source, "Unicode string cannot be converted to multibyte string.");
}

std::string wide_to_ansi(const wchar_t* source) { return wide_to_ansi(std::wstring(source)); }

std::wstring ansi_to_wide(const std::string& source) {
    return to_wide(CP_ACP, source, "Multibyte string cannot be converted to unicode string. Source string: [%1].");
}

std::string wide_to_utf8(const std::wstring& source) {
    return to_narrow(CP_UTF8, source, "Unicode string cannot be converted to UTF8 string.");
}

std::wstring utf8_to_wide(const std::string& source) {
    return to_wide(CP_UTF8, source,
                   "Multibyte UTF8 string cannot be converted to unicode string. Source string: [%1].");
}

std::string wide_to_utf8_or_empty(const wchar_t* source) noexcept try {
    std::string result;
    return try_convert(CP_UTF8, std::wstring(source), result) ? result : std::string();
} catch (const std::exception&) {
    return {};
}

}  // namespace encoding
