#include "common/platform/registry.h"

#include <cstring>

#include "common/exc/raise.h"
#include "common/platform/owned.h"
#include "common/platform/path.h"

namespace platform {
namespace {

template <class Number>
std::optional<Number> number_of(const std::vector<unsigned char>& data) {
    Number value{};
    if (data.size() != sizeof value) return std::nullopt;
    std::memcpy(&value, data.data(), sizeof value);
    return value;
}

void check(LSTATUS status, const char* sentence, const std::wstring& name) {
    if (status != ERROR_SUCCESS) exc::raise_path_error(static_cast<DWORD>(status), sentence, name);
}

}  // namespace

std::optional<std::wstring> registry_value_t::text() const {
    if (type_ != REG_SZ && type_ != REG_EXPAND_SZ) return std::nullopt;
    // The system stores whatever was written: the length may be odd, and the null may be missing.
    std::wstring value(data_.size() / sizeof(wchar_t), L'\0');
    if (!value.empty()) std::memcpy(value.data(), data_.data(), value.size() * sizeof(wchar_t));
    value.resize(std::wcslen(value.c_str()));
    return type_ == REG_EXPAND_SZ ? expand_variables(value) : value;
}

std::optional<std::uint32_t> registry_value_t::dword() const {
    return type_ == REG_DWORD ? number_of<std::uint32_t>(data_) : std::nullopt;
}

std::optional<std::uint64_t> registry_value_t::qword() const {
    return type_ == REG_QWORD ? number_of<std::uint64_t>(data_) : std::nullopt;
}

registry_value_t read_registry_value(const std::wstring& key, const std::wstring& name) {
    constexpr const char* unreadable = "Cannot read registry value [%1].";
    unique_registry_key opened;
    LSTATUS status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_QUERY_VALUE | KEY_WOW64_64KEY, opened.put());
    check(status, "Cannot open registry key [%1].", key);

    DWORD type = 0;
    DWORD size = 0;
    status = RegQueryValueExW(opened.get(), name.c_str(), nullptr, &type, nullptr, &size);
    check(status, unreadable, name);

    std::vector<unsigned char> data(size);
    status = RegQueryValueExW(opened.get(), name.c_str(), nullptr, &type, data.data(), &size);
    check(status, unreadable, name);
    data.resize(size);
    return {type, std::move(data)};
}

std::optional<registry_value_t> find_registry_value(const std::wstring& key, const std::wstring& name) try {
    return read_registry_value(key, name);
} catch (const exc::exc_base_t&) {
    return std::nullopt;
}

}  // namespace platform
