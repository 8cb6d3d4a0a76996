// Reads values below HKEY_LOCAL_MACHINE.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace platform {

class registry_value_t {
public:
    registry_value_t(std::uint32_t type, std::vector<unsigned char> data) : type_(type), data_(std::move(data)) {}

    // Returns the text of a REG_SZ value, or of a REG_EXPAND_SZ value with its variables replaced; nothing for other
    // types.
    std::optional<std::wstring> text() const;

    std::optional<std::uint32_t> dword() const;  // only for REG_DWORD
    std::optional<std::uint64_t> qword() const;  // only for REG_QWORD

private:
    std::uint32_t type_;
    std::vector<unsigned char> data_;
};

// Throws exc::win_sys_exc_t with the name of the key or value, also if that does not exist.
registry_value_t read_registry_value(const std::wstring& key, const std::wstring& name);

// Returns nothing if the value cannot be read for any reason.
std::optional<registry_value_t> find_registry_value(const std::wstring& key, const std::wstring& name);

}  // namespace platform
