#include "demo_library/host_form.h"

#include <algorithm>
#include <string_view>

#include <winsock2.h>
#include <windows.h>
#include <ws2tcpip.h>

namespace demo_library {
namespace {

bool is_address(int family, const std::wstring& text) {
    IN6_ADDR address;  // room for both families
    return InetPtonW(family, text.c_str(), &address) == 1;
}

bool is_ipv6_address(const std::wstring& text) {
    const std::size_t zone = text.find(L'%');
    return zone + 1 != text.size() && is_address(AF_INET6, text.substr(0, zone));
}

bool is_name_character(wchar_t c) {
    if (c == L'-' || c == L'_' || IS_HIGH_SURROGATE(c) || IS_LOW_SURROGATE(c)) return true;
    WORD type = 0;
    return GetStringTypeW(CT_CTYPE1, &c, 1, &type) && (type & (C1_ALPHA | C1_DIGIT)) != 0;
}

bool is_label(std::wstring_view label) {
    return !label.empty() && label.size() <= 63 && label.front() != L'-' && label.back() != L'-' &&
           std::all_of(label.begin(), label.end(), is_name_character);
}

bool is_name(std::wstring_view name) {
    if (name.ends_with(L'.')) name.remove_suffix(1);
    if (name.size() > 253) return false;
    for (;;) {
        const std::size_t dot = name.find(L'.');
        if (!is_label(name.substr(0, dot))) return false;
        if (dot == std::wstring_view::npos) return true;
        name.remove_prefix(dot + 1);
    }
}

}  // namespace

bool is_plausible_host(const std::wstring& host) {
    if (host.find(L':') != std::wstring::npos) return is_ipv6_address(host);
    if (host.find_first_not_of(L"0123456789.") == std::wstring::npos) return is_address(AF_INET, host);
    return is_name(host);
}

}  // namespace demo_library
