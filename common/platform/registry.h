// Reading of values below HKEY_LOCAL_MACHINE.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace platform {

class registry_value_t {
public:
    registry_value_t(std::uint32_t type, std::vector<unsigned char> data) : type_(type), data_(std::move(data)) {}

    // The text of a REG_SZ value, or of a REG_EXPAND_SZ value with its variables replaced; nothing for other types.
    std::optional<std::wstring> text() const;

    std::optional<std::uint32_t> dword() const;  // REG_DWORD alone
    std::optional<std::uint64_t> qword() const;  // REG_QWORD alone

private:
    std::uint32_t type_;
    std::vector<unsigned char> data_;
};

// Raises exc::win_sys_exc_t "Cannot open registry key [%1]." or "Cannot read registry value [%1].", also when there
// is no such key or value.
registry_value_t read_registry_value(const std::wstring& key, const std::wstring& name);

// Nothing when the value cannot be read, for whatever reason.
std::optional<registry_value_t> find_registry_value(const std::wstring& key, const std::wstring& name);

}  // namespace platform
