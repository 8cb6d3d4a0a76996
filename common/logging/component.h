// The named parts of the product that log. A component is the handle through which everything is logged.
#pragma once

#include <string_view>

#include "common/logging/record.h"

namespace logging {

class component_t {
public:
    // The name must outlive the component; components are constants of the whole process.
    constexpr explicit component_t(std::string_view name) : name_(name) {}

    constexpr std::string_view name() const { return name_; }

    // Any thread may log, at any time: before the log is open and after it was closed records reach the debugger
    // output alone. Never raises; a record that cannot be written never ends the caller's work.
    void log(const record_t& record) const noexcept;
    void log(unsigned level, std::string_view text) const noexcept { log(record_t{.level = level, .text = text}); }
    void info(std::string_view text) const noexcept { log(level_info, text); }

private:
    std::string_view name_;
};

inline constexpr component_t ormacon_tool("ormacon_tool");
inline constexpr component_t plugin_common("plugin_common");
inline constexpr component_t azure("azure");
inline constexpr component_t oraplug("oraplug");

}  // namespace logging
