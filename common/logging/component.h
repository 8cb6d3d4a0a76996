// A record, and the component through which it is logged.
#pragma once

#include <string_view>

namespace logging {

// Levels 1 and 2 differ only in the filter.
enum level_t : unsigned {
    level_detail = 0,
    level_info = 1,
    level_notice = 2,
    level_warning = 3,
    level_error = 4,
};

struct record_t {
    unsigned level = level_info;
    bool highlighted = false;
    unsigned depth = 0;         // levels of indentation, two spaces each
    std::string_view prefix{};  // goes before the level marker
    std::string_view text{};    // UTF-8; line feeds cut it into several lines
};

// A named part of the product that logs.
class component_t {
public:
    // The name must outlive the component; components are constants of the whole process.
    constexpr explicit component_t(std::string_view name) : name_(name) {}

    constexpr std::string_view name() const { return name_; }

    // Any thread may log, at any time: before the log is open and after it was closed, records reach only the debugger
    // output. Never throws; a record that cannot be written never ends the caller's work. Blocks while another thread
    // logs.
    void log(const record_t& record) const noexcept;
    void log(unsigned level, std::string_view text) const noexcept { log(record_t{.level = level, .text = text}); }
    void info(std::string_view text) const noexcept { log(level_info, text); }

private:
    std::string_view name_;
};

inline constexpr component_t azure("azure");  // this one and the next: not used here, fixed from outside
inline constexpr component_t oraplug("oraplug");

}  // namespace logging
