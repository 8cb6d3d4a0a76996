#include "common/platform/module.h"

#include <boost/filesystem.hpp>

#include "common/exc/raise.h"
#include "common/platform/path.h"

namespace platform {
namespace {

HMODULE module_of_this_code() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&module_path), &module);
    return module;
}

}  // namespace

std::wstring module_path(HMODULE module) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (size == 0) exc::raise_win_error(GetLastError(), "Cannot get module path.");
        if (size < path.size()) {
            path.resize(size);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

module_path_t current_module_path() {
    const HMODULE module = module_of_this_code();
    return {module_path(module), module != GetModuleHandleW(nullptr)};
}

std::optional<std::wstring> symlink_target(const std::wstring& path) {
    boost::system::error_code failure;
    const boost::filesystem::path target = boost::filesystem::read_symlink(path, failure);
    if (failure || target.empty()) return std::nullopt;
    return target.wstring();
}

std::wstring resolve_link(const std::wstring& link, const std::wstring& target) {
    return boost::filesystem::absolute(target, parent_of(link)).lexically_normal().make_preferred().wstring();
}

}  // namespace platform
