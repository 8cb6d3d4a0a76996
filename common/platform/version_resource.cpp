#include "common/platform/version_resource.h"

#include <array>
#include <cstdio>
#include <vector>

#include "common/text/convert.h"
#include "common/win32.h"

namespace platform {
namespace {

struct translation_t {
    WORD language;
    WORD code_page;
};

template <class Value>
const Value* find(const std::vector<char>& resource, const wchar_t* name) {
    void* value = nullptr;
    UINT size = 0;
    return VerQueryValueW(resource.data(), name, &value, &size) && size > 0 ? static_cast<const Value*>(value)
                                                                            : nullptr;
}

std::string file_version(const std::vector<char>& resource) {
    const auto* info = find<VS_FIXEDFILEINFO>(resource, L"\\");
    if (info == nullptr) return {};
    std::array<char, 32> version{};
    std::snprintf(version.data(), version.size(), "%u.%u.%u.%u", HIWORD(info->dwFileVersionMS),
                  LOWORD(info->dwFileVersionMS), HIWORD(info->dwFileVersionLS), LOWORD(info->dwFileVersionLS));
    return version.data();
}

std::string comments(const std::vector<char>& resource) {
    const auto* translation = find<translation_t>(resource, L"\\VarFileInfo\\Translation");
    if (translation == nullptr) return {};
    std::array<wchar_t, 48> name{};
    swprintf(name.data(), name.size(), L"\\StringFileInfo\\%04x%04x\\Comments", translation->language,
             translation->code_page);
    const auto* value = find<wchar_t>(resource, name.data());
    return value == nullptr ? std::string() : text::wide_to_utf8(value);
}

}  // namespace

version_resource_t read_version_resource(const std::wstring& path) {
    std::vector<char> resource(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    if (!GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data())) return {};
    return {file_version(resource), comments(resource)};
}

}  // namespace platform
