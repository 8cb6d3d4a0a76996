#include "common/crash/symbol_path.h"

#include <sstream>

#include "common/platform/path.h"

namespace crash {
namespace {

constexpr const wchar_t* search_path = L"%_NT_SYMBOL_PATH%;%_NT_ALT_SYMBOL_PATH%;%SystemRoot%\\Symbols";

// No path holds an asterisk; what names a server does.
bool is_local(const std::wstring& place) {
    return place.find(L'*') == std::wstring::npos && !place.starts_with(L"\\\\") && !place.starts_with(L"//");
}

}  // namespace

std::wstring symbol_search_path() {
    std::wistringstream places(platform::expand_variables(search_path));
    std::wstring path;
    for (std::wstring place; std::getline(places, place, L';');) {
        if (is_local(place)) path += (path.empty() ? L"" : L";") + place;
    }
    return path;
}

}  // namespace crash
